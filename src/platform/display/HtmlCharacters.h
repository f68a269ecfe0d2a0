#pragma once

#include <QString>

/// Characters of HTML text: white space and character references.
namespace vmk {

/// The white space that HTML collapses: tab, line feed, form feed, carriage return, blank.
[[nodiscard]] constexpr bool IsHtmlSpace(char32_t c)
{
    return c == U' ' || c == U'\t' || c == U'\n' || c == U'\r' || c == U'\f';
}

/// Reads the character reference at the beginning of a text.
/// \param text    begins with `&`
/// \param length  receives the length of the reference, including `&` and semicolon
/// \return its code point; 0 if it is not a known reference, so that the `&` is plain text
[[nodiscard]] char32_t ReadReference(QStringView text, qsizetype& length);

/// Returns the text with every known reference replaced by its character.
[[nodiscard]] QString ResolveReferences(QStringView text);

} // namespace vmk
