#pragma once

#include <string>
#include <string_view>

/// The two steps that change a book's raw text before its conversion.
namespace vmk {

/// Cuts the `binary` elements out of a book's text: from the first "<binary" to the last "</binary>". The
/// text after them, including the book's end tag, is removed; a new "</FictionBook>" is appended to `text`.
/// \param binaryPart  receives the elements, unchanged; empty if there are none
/// \return false, with both parameters unchanged, if the part is damaged: no end tag after the first start
///         tag
[[nodiscard]] bool CutBinaryPart(std::string& text, std::string& binaryPart);

/// Returns true if the binary part cannot be cut: no end tag after the first start tag.
[[nodiscard]] bool IsBinaryPartDamaged(std::string_view text);

/// Cuts the binary part into `BinaryPart`; for a preview the part is discarded. If it is damaged, shows the
/// blank page and a box, sets `BadBinaryPart` (except for a preview) and returns false.
[[nodiscard]] bool SplitBinaryPart(std::string& text, bool preview);

/// Replaces every `&lt;` and `&gt;` by U+2039 and U+203A, so that each remaining angle bracket is mark-up.
void ProtectAngleBrackets(std::string& text);

/// The inverse of `ProtectAngleBrackets`.
void RestoreAngleBrackets(std::string& text);

/// Adds the program to `program-used` of the description. Does not change a book that names the program
/// already, or a book without a `description`.
void UpdateDescription(std::string& text);

} // namespace vmk
