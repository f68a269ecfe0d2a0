#pragma once

#include "DisplayToBook.h"
#include "Files.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace vmk {

class DisplayDocument;

/// Returns the bytes of a book; if it cannot be read, reports it on standard error and returns nothing.
[[nodiscard]] std::optional<std::string> ReadBook(const QString& book);

/// The rules by which a command reads a book.
enum class BookReading
{
    Kept, ///< without losses; each avoided one is reported on standard error
    KeptSilently, ///< the same without the report, for a command that writes no book
    AsEditor ///< the editor's own rules
};

/// Converts the bytes of a book to the page of the display, with the current settings. Stores its binary part
/// and encoding in the shared variables. A book that is not well-formed has a page too, and is reported on
/// standard error.
/// \param book  its name, for messages
/// \return nothing, after a line on standard error, if its binary part is damaged
[[nodiscard]] std::optional<std::string> PageOfBook(const QString& book, std::string bytes,
                                                    BookReading reading);

/// The same into a document. Returns false, after a line on standard error, if the binary part is damaged.
[[nodiscard]] bool OpenBook(const QString& book, std::string bytes, DisplayDocument& document,
                            BookReading reading);

/// The file of the book that a document shows, with the settings in force. Characters that the encoding lacks
/// are reported on standard error; unless the book is read as the editor does, it is then saved in UTF-8.
/// \param book  its name, for the report
[[nodiscard]] BookFile FileOfDocument(const QString& book, const DisplayDocument& document,
                                      BookReading reading);

/// Replaces a file by `bytes`, completely or not at all; an empty name means standard output.
/// \param durability  a page that can be regenerated does not have to survive a crash of the machine
/// \return false, after a line on standard error, on failure
[[nodiscard]] bool WriteOutput(const QString& file, std::string_view bytes, Durability durability);

} // namespace vmk
