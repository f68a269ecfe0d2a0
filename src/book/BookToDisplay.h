#pragma once

#include "DisplayValues.h"
#include "Seam.h"

#include <memory>
#include <optional>
#include <string>

namespace vmk {

struct BookLosses;
struct OutlinedText;

/// Called once for a book that the editor's own rules would change. Returns true to read it without these
/// losses, false to read it by the rules. Without a window, false.
[[nodiscard]] Seam<bool(const BookLosses& losses)>& LossSeam();

/// The display of a book that was read: its page, or the outline from which the page is made.
struct BookDisplay
{
    std::string page; ///< UTF-8; empty if there is an outline
    std::shared_ptr<OutlinedText> outline;
    DisplayValues values; ///< of the page of the outline
};

/// Converts the bytes of a book to its display.
///
/// Reads the settings (for a preview, the values of `PreviewValuesSeam`). Writes `BadBinaryPart` and
/// `BookHasCharRefs`, and except for a preview also `BinaryPart`, `BookKeepsText` and the variables of the
/// book's encoding. A preview uses the encoding variables of the book that is open, which is intended.
///
/// If the editor's own rules would lose something of the book, `LossSeam` decides how it is read. Any other
/// book is read without losses, with the same result.
/// \return nothing if the binary part is damaged. A book that is not well-formed is not a failure: it is
/// shown
///         without margins, after a box if `NamespaceErrorWarning` is 1.
[[nodiscard]] std::optional<BookDisplay> DisplayOfBook(std::string bytes, bool preview);

/// The same, with the whole page as the result.
/// \param text  in: the bytes; out: the page, in UTF-8
/// \return false, with `text` empty, if the binary part is damaged
[[nodiscard]] bool ConvertBookToDisplay(std::string& text, bool preview);

} // namespace vmk
