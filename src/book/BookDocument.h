#pragma once

#include "DisplayToBook.h"

#include <string>

/// The complete conversion of a book: from its bytes to the display document and back. Used by the editor and
/// `vmk`.
namespace vmk {

class DisplayDocument;
struct BookDisplay;

/// Reads a book into a document, as `ConvertBookToDisplay` does with the current settings.
/// \return false, with the document unchanged, if the binary part is damaged
[[nodiscard]] bool BookToDocument(std::string bytes, DisplayDocument& document);

/// Shows the display of a book in a document.
void ShowDisplay(BookDisplay display, DisplayDocument& document);

/// Returns the file of the book that a document shows, as `FileOfDisplayText` does with the current settings.
[[nodiscard]] BookFile DocumentToBook(const DisplayDocument& document);

} // namespace vmk
