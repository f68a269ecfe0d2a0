#pragma once

#include <QString>

#include <string_view>

namespace vmk {

/// How a file that is not accepted as a book is reported.
enum class BookRefusal
{
    StatusBar, ///< only the extension is checked, and reported in the status bar with a sound
    Box, ///< a missing file and a refused extension are each reported in a stop box
    BoxAndEnd ///< the same, and the process ends after the box; the caller returns at once
};

/// Checks whether `path` may be a book: its extension begins with "fb", in any case.
/// \return false if the file is refused
bool CheckBookFile(const QString& path, BookRefusal refusal);

/// The same for a file that exists: the extension alone decides.
bool CheckBookExtension(const QString& path, BookRefusal refusal);

/// Returns whether the extension begins with "fb", in any case.
[[nodiscard]] bool HasBookExtension(const QString& path);

/// Checks that the XML parser exists and works. If not, offers its download page, ends the process and
/// returns false; the caller returns at once.
[[nodiscard]] bool CheckMsxml();
/// The same with a parser of the caller: `parses` returns whether it accepts a small text.
[[nodiscard]] bool CheckMsxml(bool (*parses)(std::string_view text));

/// Validates a book file according to `ValidateOption`, without a window.
/// \return true if the file has an error or cannot be read. A schema that cannot be read is ignored.
[[nodiscard]] bool ValidateFileQuietly(const QString& path);

} // namespace vmk
