#include "Base64.h"

#include "Base64Vector.h"
#include "LargeBuffers.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace vmk {
namespace {

constexpr std::string_view Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint8_t Padding = 64;
constexpr uint8_t NoSextet = 255;

/// Results grow in blocks that fit the nearest cache: a multiple of three bytes and of four characters.
constexpr size_t BlockGroups = 4096;

constexpr uint32_t Byte(char c)
{
    return static_cast<unsigned char>(c);
}

// ---------------------------------------------------------------- encoding

/// The two characters of each 12 bits.
constexpr auto CharacterPairs = [] {
    std::array<std::array<char, 2>, 4096> pairs{};
    for (size_t bits = 0; bits < pairs.size(); ++bits)
        pairs[bits] = {Alphabet[bits >> 6], Alphabet[bits & 63]};
    return pairs;
}();

void EncodeGroup(const char* three, char* four)
{
    const uint32_t bits = Byte(three[0]) << 16 | Byte(three[1]) << 8 | Byte(three[2]);
    std::memcpy(four, CharacterPairs[bits >> 12].data(), 2);
    std::memcpy(four + 2, CharacterPairs[bits & 0xfff].data(), 2);
}

void EncodeGroups(const char* from, size_t groups, char* to)
{
    for (size_t group = EncodeGroupsByVector(from, groups, to); group < groups; ++group)
        EncodeGroup(from + 3 * group, to + 4 * group);
}

void AppendTail(std::string& result, std::string_view rest)
{
    if (rest.empty())
        return;
    char three[3] = {};
    std::copy(rest.begin(), rest.end(), three);
    char four[4];
    EncodeGroup(three, four);
    std::fill(four + rest.size() + 1, four + 4, '=');
    result.append(four, 4);
}

// ---------------------------------------------------------------- decoding

constexpr auto Sextets = [] {
    std::array<uint8_t, 256> sextets{};
    sextets.fill(NoSextet);
    for (size_t value = 0; value < Alphabet.size(); ++value)
        sextets[Byte(Alphabet[value])] = static_cast<uint8_t>(value);
    sextets[Byte('=')] = Padding;
    return sextets;
}();

/// Set for a character outside the alphabet; never set by sextets.
constexpr uint32_t Special = 1U << 31;

/// The bits that a character adds to the 24 bits of its group, for each of the four positions.
constexpr auto GroupBits = [] {
    std::array<std::array<uint32_t, 256>, 4> bits{};
    for (size_t place = 0; place < bits.size(); ++place) {
        for (size_t c = 0; c < 256; ++c)
            bits[place][c] = Sextets[c] < Padding ? uint32_t{Sextets[c]} << (18 - 6 * place) : Special;
    }
    return bits;
}();

uint32_t ReadGroup(const char* four)
{
    return GroupBits[0][Byte(four[0])] | GroupBits[1][Byte(four[1])] | GroupBits[2][Byte(four[2])]
        | GroupBits[3][Byte(four[3])];
}

void WriteGroup(uint32_t bits, char* three)
{
    three[0] = static_cast<char>(bits >> 16);
    three[1] = static_cast<char>(bits >> 8);
    three[2] = static_cast<char>(bits);
}

/// Decodes a group with padding. Returns the number of decoded bytes, or -1 for a bad character.
int DecodeSpecialGroup(const char* four, char* three)
{
    uint32_t bits = 0;
    for (int place = 0; place < 4; ++place) {
        const uint8_t sextet = Sextets[Byte(four[place])];
        if (sextet == NoSextet)
            return -1;
        bits = bits << 6 | (sextet & 63U);
    }
    WriteGroup(bits, three);
    return 3 - (four[3] == '=' ? 1 : 0) - (four[2] == '=' ? 1 : 0);
}

/// Decodes one group of any kind; returns the position after its last byte, or null for a bad character.
char* DecodeGroup(const char* four, char* to)
{
    const uint32_t bits = ReadGroup(four);
    if (!(bits & Special)) {
        WriteGroup(bits, to);
        return to + 3;
    }
    const int length = DecodeSpecialGroup(four, to);
    return length < 0 ? nullptr : to + length;
}

char* DecodeGroups(const char* from, size_t groups, char* to)
{
    constexpr size_t OneByOne = 8;
    while (to && groups > 0) {
        const size_t done = DecodeGroupsByVector(from, groups, to);
        from += 4 * done;
        to += 3 * done;
        groups -= done;
        // The group that stopped the vector loop is one of the next few.
        for (size_t group = std::min(groups, OneByOne); to && group > 0; --group) {
            to = DecodeGroup(from, to);
            from += 4;
            --groups;
        }
    }
    return to;
}

} // namespace

std::string Base64Encode(std::string_view data)
{
    std::array<char, 4 * BlockGroups> block;
    std::string result = StringWithRoom((data.size() + 2) / 3 * 4);
    while (data.size() >= 3) {
        const size_t groups = std::min(data.size() / 3, BlockGroups);
        EncodeGroups(data.data(), groups, block.data());
        result.append(block.data(), 4 * groups);
        data.remove_prefix(3 * groups);
    }
    AppendTail(result, data);
    return result;
}

std::optional<std::string> Base64Decode(std::string_view text)
{
    std::array<char, 3 * BlockGroups + VectorSlack> block;
    std::string result = StringWithRoom(text.size() / 4 * 3);
    while (text.size() >= 4) {
        const size_t groups = std::min(text.size() / 4, BlockGroups);
        const char* const end = DecodeGroups(text.data(), groups, block.data());
        if (!end)
            return std::nullopt;
        result.append(block.data(), static_cast<size_t>(end - block.data()));
        text.remove_prefix(4 * groups);
    }
    const bool restIsGood
        = std::all_of(text.begin(), text.end(), [](char c) { return Sextets[Byte(c)] != NoSextet; });
    if (!restIsGood)
        return std::nullopt;
    return result;
}

} // namespace vmk
