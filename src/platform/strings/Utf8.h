#pragma once

#include <QChar>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace vmk {

/// One character of UTF-8.
struct Utf8Character
{
    char32_t character;
    /// In bytes; 0 for a byte that is not part of a character.
    std::size_t length;
};

/// Decodes the character at the beginning of `bytes`.
/// \param bytes  not empty
/// \return U+FFFD and length 0 if no character begins there: overlong forms, surrogates, values above
///         U+10FFFF and truncated sequences
[[nodiscard]] inline Utf8Character DecodeUtf8(std::string_view bytes)
{
    const auto byte = [bytes](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    const auto trails = [&](std::size_t count) {
        if (bytes.size() <= count)
            return false;
        for (std::size_t at = 1; at <= count; ++at) {
            if ((byte(at) & 0xc0) != 0x80)
                return false;
        }
        return true;
    };
    const auto bits = [&](std::size_t at) { return static_cast<char32_t>(byte(at) & 0x3f); };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return {lead, 1};
    if (lead >= 0xc2 && lead < 0xe0 && trails(1))
        return {(lead & 0x1fU) << 6 | bits(1), 2};
    if (lead >= 0xe0 && lead < 0xf0 && trails(2)) {
        const char32_t c = (lead & 0x0fU) << 12 | bits(1) << 6 | bits(2);
        if (c >= 0x800 && !QChar::isSurrogate(c))
            return {c, 3};
    }
    if (lead >= 0xf0 && lead < 0xf5 && trails(3)) {
        const char32_t c = (lead & 0x07U) << 18 | bits(1) << 12 | bits(2) << 6 | bits(3);
        if (c >= 0x10000 && c <= QChar::LastValidCodePoint)
            return {c, 4};
    }
    return {QChar::ReplacementCharacter, 0};
}

/// Returns the number of characters of a valid text.
[[nodiscard]] inline std::size_t CharacterCount(std::string_view utf8)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(utf8, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }));
}

/// Returns the number of characters of a valid text that are not ASCII.
[[nodiscard]] inline std::size_t NonAsciiCount(std::string_view utf8)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(utf8, [](char c) { return static_cast<unsigned char>(c) >= 0xC0; }));
}

} // namespace vmk
