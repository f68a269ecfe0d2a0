#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

/// Base64 one character at a time, into a preallocated result that is truncated at the end.
namespace vmk::reference {

inline constexpr char Base64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

inline uint8_t ByteShiftLeft2(uint8_t value)
{
    return static_cast<uint8_t>(value * 4);
}
inline uint8_t ByteShiftLeft4(uint8_t value)
{
    return static_cast<uint8_t>(value * 16);
}
inline uint8_t ByteShiftLeft6(uint8_t value)
{
    return static_cast<uint8_t>(value * 64);
}
inline uint8_t ByteShiftRight2(uint8_t value)
{
    return value / 4;
}
inline uint8_t ByteShiftRight4(uint8_t value)
{
    return value / 16;
}
inline uint8_t ByteShiftRight6(uint8_t value)
{
    return value / 64;
}

inline std::string EncodeGroup(std::array<uint8_t, 3> b)
{
    const int indices[]
        = {ByteShiftRight2(b[0]) & 63, ByteShiftLeft4(b[0] & 3) | (ByteShiftRight4(b[1]) & 15),
           ByteShiftLeft2(b[1] & 15) | (ByteShiftRight6(b[2]) & 3), b[2] & 63};
    std::string four;
    for (const int index : indices)
        four += Base64Alphabet[index];
    return four;
}

inline std::string Base64Encode(const std::string& data)
{
    const auto byte = [&data](size_t at) { return static_cast<uint8_t>(data[at]); };
    const size_t groups = data.size() / 3;
    std::string result;
    for (size_t i = 0; i < groups; ++i)
        result += EncodeGroup({byte(3 * i), byte(3 * i + 1), byte(3 * i + 2)});
    if (data.size() % 3 == 1)
        result += EncodeGroup({byte(3 * groups), 0, 0}).substr(0, 2) + "==";
    if (data.size() % 3 == 2)
        result += EncodeGroup({byte(3 * groups), byte(3 * groups + 1), 0}).substr(0, 3) + "=";
    return result;
}

inline std::array<int16_t, 256> ReverseTable()
{
    std::array<int16_t, 256> table;
    table.fill(-1);
    for (int16_t value = 0; value < 64; ++value)
        table[static_cast<uint8_t>(Base64Alphabet[value])] = value;
    table['='] = 64;
    return table;
}

inline std::array<uint8_t, 3> DecodeGroup(const std::array<uint8_t, 4>& s)
{
    return {static_cast<uint8_t>(ByteShiftLeft2(s[0]) | (ByteShiftRight4(s[1]) & 3)),
            static_cast<uint8_t>(ByteShiftLeft4(s[1] & 15) | (ByteShiftRight2(s[2]) & 15)),
            static_cast<uint8_t>(ByteShiftLeft6(s[2] & 3) | s[3])};
}

inline std::optional<std::string> Base64Decode(const std::string& text)
{
    const auto table = ReverseTable();
    std::string output(text.size() / 4 * 3, ' ');
    size_t written = 0;
    size_t filled = 0;
    std::array<uint8_t, 4> group{};
    for (const char character : text) {
        const int16_t sextet = table[static_cast<uint8_t>(character)];
        if (sextet == -1)
            return std::nullopt;
        group[filled++] = static_cast<uint8_t>(sextet);
        if (filled < 4)
            continue;
        for (const uint8_t byte : DecodeGroup(group))
            output[written++] = static_cast<char>(byte);
        for (const size_t place : {3, 2}) {
            if (group[place] == 64) {
                output.pop_back();
                --written;
            }
        }
        filled = 0;
    }
    return output;
}

} // namespace vmk::reference
