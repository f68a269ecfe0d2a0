#pragma once

#include <string>

namespace vmk {

/// Turns the bytes of a book into the page of the display.
///
/// Reads the settings (for a preview the values of `PreviewValuesSeam`) and writes `BadBinaryPart` and
/// `BookHasCharRefs`, and unless for a preview `BinaryPart` and the variables of the book's encoding. A
/// preview uses those of the book before it, which is meant.
/// \param text  the bytes; then the page, in UTF-8
/// \return false, with `text` empty, if the binary part is damaged. A book that is not well-formed is no
///         failure: it is shown without margins, after a box if `NamespaceErrorWarning` is 1.
[[nodiscard]] bool ConvertBookToDisplay(std::string& text, bool preview);

} // namespace vmk
