#pragma once

#include <QString>

/// Characters of HTML text: what counts as white space, and character references.
namespace vmk {

/// The white space that HTML collapses: tab, line feed, form feed, carriage return, blank.
[[nodiscard]] constexpr bool isHtmlSpace(char32_t c)
{
    return c == U' ' || c == U'\t' || c == U'\n' || c == U'\r' || c == U'\f';
}

/// Reads the character reference at the front of a text.
/// @param text begins with `&`.
/// @param length set to the length of the reference, `&` and semicolon included.
/// @return its code point, or 0 when no known reference stands there; then the `&` is plain text.
[[nodiscard]] char32_t readReference(QStringView text, qsizetype& length);

/// The text with every known reference replaced by its character.
[[nodiscard]] QString resolveReferences(QStringView text);

} // namespace vmk
