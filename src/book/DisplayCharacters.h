#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Characters that the display shows in place of others, and the way back.
///
/// In the display U+2039 and U+203A stand for `&lt;` and `&gt;`, `NbspMarker` for a non-breaking space, and a
/// bare ampersand for `&amp;`. A book may hold these characters itself. Then a *guard* follows: a variation
/// selector, which has no width and which no font draws. A guarded character stands for itself; a guarded
/// ampersand begins a reference. A guard of the book's own follows an *escape*, another such selector.
///
/// In comments, CDATA sections, processing instructions and document types an ampersand is always itself. In
/// a tag `&quot;`, `&apos;` and references by number are references, shown and typed as in XML; a value that
/// holds such a text literally shows it with `&amp;` for its ampersand.
namespace vmk {

/// Follows U+2039, U+203A, U+00A0, `NbspMarker` and `&`.
inline constexpr std::string_view DisplayGuard = "\xef\xb8\x8c";
/// Stands before a genuine guard.
inline constexpr std::string_view DisplayGuardEscape = "\xef\xb8\x8b";

/// Writes each byte that belongs to no character of UTF-8 as U+FFFD, a guard and an invisible character that
/// stands for the byte, so that a display can hold it. Returns how many there are.
size_t ProtectBytes(std::string& text);

/// What `ProtectCharacters` has met, for a reading that does not guard.
struct ProtectedCharacters
{
    size_t angleQuotes = 0; ///< genuine U+2039 and U+203A
    size_t markers = 0; ///< genuine characters 127 where these are the marker
    size_t nonBreaking = 0; ///< non-breaking spaces where the display shows none
    size_t lineEnds = 0; ///< line ends and tabs in text, written as references
};

/// Writes a book's text so that each angle bracket left is mark-up and each character means itself in the
/// display: `&lt;`, `&gt;` and the same by number become the marks, genuine marks are guarded.
/// \param text      XML in UTF-8, well-formed or not
/// \param showNbsp  whether `NbspMarker` stands for the non-breaking space
void ProtectCharacters(std::string& text, bool showNbsp, ProtectedCharacters& met);

/// Writes the references to "<" and ">" by number as references to the marks, so that they stay characters
/// of the text.
void ProtectNumericAngles(std::string& text);

/// Writes the ampersands of a text that is not well-formed for a page: references stay references.
/// \return HTML as far as ampersands are concerned
[[nodiscard]] std::string PageAmpersands(std::string_view text);

/// Turns the text of a display, in which each shown ampersand is `&amp;`, into XML: guards are resolved,
/// ampersands that are none in the text around them are written bare.
[[nodiscard]] std::string ResolveDisplayText(std::string text);

/// The place in a display's text that a place in its resolved text comes from. Both in bytes.
[[nodiscard]] size_t UnresolvedOffset(std::string_view text, size_t resolvedOffset);

} // namespace vmk
