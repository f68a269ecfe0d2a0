#pragma once

#include "DisplayToBook.h"

#include <string>

/// The whole way of a book: from its bytes to the display's document and back. The editor and `vmk` take it.
namespace vmk {

class DisplayDocument;

/// Reads a book into a document, as `ConvertBookToDisplay` does with the settings in force. False if its
/// binary part is damaged; the document is unchanged then.
[[nodiscard]] bool BookToDocument(std::string bytes, DisplayDocument& document);

/// The file of the book that a document shows, as `FileOfDisplayText` makes it with the settings in force.
[[nodiscard]] BookFile DocumentToBook(const DisplayDocument& document);

} // namespace vmk
