#pragma once

#include <string>

namespace vmk {

/// Converts the bytes of a book to the page of the display.
///
/// Reads the settings (for a preview, the values of `PreviewValuesSeam`). Writes `BadBinaryPart` and
/// `BookHasCharRefs`, and except for a preview also `BinaryPart` and the variables of the book's encoding. A
/// preview uses the encoding variables of the book that is open, which is intended.
/// \param text  in: the bytes; out: the page, in UTF-8
/// \return false, with `text` empty, if the binary part is damaged. A book that is not well-formed is not a
///         failure: it is shown without margins, after a box if `NamespaceErrorWarning` is 1.
[[nodiscard]] bool ConvertBookToDisplay(std::string& text, bool preview);

} // namespace vmk
