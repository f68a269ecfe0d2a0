#pragma once

#include <string>
#include <string_view>

/// The two steps over a book's raw text before it is converted.
namespace vmk {

/// Cuts the `binary` elements off a book's text: from the first "<binary" to the last "</binary>". What
/// stood behind goes, the book's own end tag with it; `text` is closed anew by "</FictionBook>".
/// \param binaryPart  the elements, untouched; empty if there are none
/// \return false, with both left as they are, if the part is damaged: no end tag behind the first start tag
[[nodiscard]] bool CutBinaryPart(std::string& text, std::string& binaryPart);

/// `CutBinaryPart` into `BinaryPart`; for a preview into nowhere. A damaged part is refused with the blank
/// page, a box, and `BadBinaryPart` set unless for a preview.
[[nodiscard]] bool SplitBinaryPart(std::string& text, bool preview);

/// Writes every `&lt;` and `&gt;` as U+2039 and U+203A, so that each angle bracket left is mark-up.
void ProtectAngleBrackets(std::string& text);

/// The other way round.
void RestoreAngleBrackets(std::string& text);

/// Sees to it that `program-used` of the description names the program. A book that does so already is
/// unchanged; one without a `description` too.
void UpdateDescription(std::string& text);

} // namespace vmk
