#pragma once

namespace vmk {

/// Stands for a non-breaking space in the display, where the settings ask for visible ones.
inline constexpr char NbspMarker = '\x7f';
/// UTF-8 form of U+00A0 inside a byte string.
inline constexpr char Utf8Nbsp[] = "\xc2\xa0";

/// The character of the display for a non-breaking space.
[[nodiscard]] constexpr char16_t ShownNbsp(bool visible)
{
    return visible ? static_cast<unsigned char>(NbspMarker) : u'\u00a0';
}

} // namespace vmk
