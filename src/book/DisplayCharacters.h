#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Characters that the display shows instead of others, and their conversion back.
///
/// In the display U+2039 and U+203A represent `&lt;` and `&gt;`, `NbspMarker` represents a non-breaking
/// space, and a plain ampersand represents `&amp;`. A book may contain these characters itself. In that case
/// a *guard* follows: a variation selector, which has no width and which no font draws. A guarded character
/// represents itself; a guarded ampersand begins a reference. A guard that the book itself contains follows
/// an *escape*, another such selector.
///
/// In comments, CDATA sections, processing instructions and document types an ampersand always represents
/// itself. In a tag, `&quot;`, `&apos;` and numeric references are references, shown and typed as in XML; a
/// value that contains such a text literally shows it with `&amp;` for its ampersand.
namespace vmk {

/// Follows U+2039, U+203A, U+00A0, `NbspMarker` and `&`.
inline constexpr std::string_view DisplayGuard = "\xef\xb8\x8c";
/// Precedes a guard that the book itself contains.
inline constexpr std::string_view DisplayGuardEscape = "\xef\xb8\x8b";

/// Replaces each byte that is not part of a UTF-8 character by U+FFFD, a guard and an invisible character
/// that represents the byte, so that a display can contain it. Returns the number of such bytes.
size_t ProtectBytes(std::string& text);

/// The counts of `ProtectCharacters`, for a reading that does not guard.
struct ProtectedCharacters
{
    size_t angleQuotes = 0; ///< genuine U+2039 and U+203A
    size_t markers = 0; ///< genuine characters 127 if these are the marker
    size_t nonBreaking = 0; ///< non-breaking spaces if the display shows none
    size_t lineEnds = 0; ///< line ends and tabs in text, written as references
};

/// Rewrites a book's text so that each remaining angle bracket is mark-up and each character represents
/// itself in the display: `&lt;`, `&gt;` and their numeric references become the marks; genuine marks are
/// guarded.
/// \param text      XML in UTF-8, well-formed or not
/// \param showNbsp  whether `NbspMarker` represents the non-breaking space
void ProtectCharacters(std::string& text, bool showNbsp, ProtectedCharacters& met);

/// Replaces numeric references to "<" and ">" by references to the marks, so that they remain characters of
/// the text.
void ProtectNumericAngles(std::string& text);

/// Rewrites the ampersands of a text that is not well-formed for a page: references remain references.
/// \return HTML as far as ampersands are concerned
[[nodiscard]] std::string PageAmpersands(std::string_view text);

/// Converts the text of a display, in which each shown ampersand is `&amp;`, to XML: resolves guards, and
/// writes plain ampersands where the text around them requires it.
[[nodiscard]] std::string ResolveDisplayText(std::string text);

/// Returns the position in a display's text for a position in its resolved text, both in bytes.
[[nodiscard]] size_t UnresolvedOffset(std::string_view text, size_t resolvedOffset);

} // namespace vmk
