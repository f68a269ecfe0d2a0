#pragma once

#include "Files.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace vmk {

/// The bytes of a book; nothing, with a line on standard error, if it cannot be read.
[[nodiscard]] std::optional<std::string> ReadBook(const QString& book);

/// Converts the bytes of a book to the page of the display, with the settings in force; its binary part and
/// encoding stay in the shared variables. A book that is not well-formed gets a page too, and a line on
/// standard error.
/// \param book  its name, for what is said of it
/// \return nothing, with a line on standard error, if its binary part is damaged
[[nodiscard]] std::optional<std::string> PageOfBook(const QString& book, std::string bytes);

/// Puts `bytes` in place of a file, whole or not at all; an empty name means standard output.
/// \param durability  a page that can be made again need not outlast a failure of the machine
/// \return false, with a line on standard error, if that fails
[[nodiscard]] bool WriteOutput(const QString& file, std::string_view bytes, Durability durability);

} // namespace vmk
