#pragma once

namespace vmk {

/// Represents a non-breaking space in the display if the settings make it visible.
inline constexpr char NbspMarker = '\x7f';
/// U+00A0 in UTF-8.
inline constexpr char Utf8Nbsp[] = "\xc2\xa0";

/// The character of the display for a non-breaking space.
[[nodiscard]] constexpr char16_t ShownNbsp(bool visible)
{
    return visible ? static_cast<unsigned char>(NbspMarker) : u'\u00a0';
}

} // namespace vmk
