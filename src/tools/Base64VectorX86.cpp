#include "Base64Vector.h"

#include <immintrin.h>

// AVX2 works on 32 characters at a time: 24 bytes, 12 in each half of a register. Multiplications split and
// join the sextets. Characters are classified by their two halves of four bits, which a shuffle looks up in a
// table of sixteen entries.

namespace vmk {
namespace {

constexpr size_t GroupsPerStep = 8;

bool HasAvx2()
{
    static const bool has = __builtin_cpu_supports("avx2") != 0;
    return has;
}

/// The same sixteen bytes in both halves.
[[gnu::target("avx2")]] __m256i Twice(__m128i half)
{
    return _mm256_broadcastsi128_si256(half);
}

/// Splits 24 bytes into one sextet in each of 32 bytes.
[[gnu::target("avx2")]] __m256i Split(const char* from)
{
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 12));
    // Each three bytes abc become the 16-bit numbers ba and cb.
    const __m256i pairs = _mm256_shuffle_epi8(
        _mm256_set_m128i(high, low), Twice(_mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10)));
    const __m256i outer = _mm256_mulhi_epu16(_mm256_and_si256(pairs, _mm256_set1_epi32(0x0fc0fc00)),
                                             _mm256_set1_epi32(0x04000040));
    const __m256i inner = _mm256_mullo_epi16(_mm256_and_si256(pairs, _mm256_set1_epi32(0x003f03f0)),
                                             _mm256_set1_epi32(0x01000010));
    return _mm256_or_si256(outer, inner);
}

/// Converts sextets to characters: each range of the alphabet has its own offset.
[[gnu::target("avx2")]] __m256i ToCharacters(__m256i sextets)
{
    // 0 for a to z, 1 to 10 for digits, 11 and 12 for + and /, 13 for A to Z.
    const __m256i behindLetters = _mm256_subs_epu8(sextets, _mm256_set1_epi8(51));
    const __m256i isCapital = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), sextets);
    const __m256i range = _mm256_or_si256(behindLetters, _mm256_and_si256(isCapital, _mm256_set1_epi8(13)));
    constexpr char Digit = '0' - 52;
    const __m128i distances = _mm_setr_epi8('a' - 26, Digit, Digit, Digit, Digit, Digit, Digit, Digit, Digit,
                                            Digit, Digit, '+' - 62, '/' - 63, 'A', 0, 0);
    return _mm256_add_epi8(sextets, _mm256_shuffle_epi8(Twice(distances), range));
}

/// The table bits that both halves of a character share if it is outside the alphabet.
[[gnu::target("avx2")]] bool AllInAlphabet(__m256i characters, __m256i upperHalves)
{
    const __m128i byLower = _mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13,
                                          0x1a, 0x1b, 0x1b, 0x1b, 0x1a);
    const __m128i byUpper = _mm_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10, 0x10, 0x10,
                                          0x10, 0x10, 0x10, 0x10, 0x10);
    const __m256i lowerHalves = _mm256_and_si256(characters, _mm256_set1_epi8(0x0f));
    return _mm256_testz_si256(_mm256_shuffle_epi8(Twice(byLower), lowerHalves),
                              _mm256_shuffle_epi8(Twice(byUpper), upperHalves))
        != 0;
}

/// Converts characters of the alphabet to sextets. "/" shares its upper half with "+" and is handled
/// separately.
[[gnu::target("avx2")]] __m256i ToSextets(__m256i characters, __m256i upperHalves)
{
    const __m128i distances = _mm_setr_epi8(0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0);
    const __m256i isSlash = _mm256_cmpeq_epi8(characters, _mm256_set1_epi8('/'));
    const __m256i range = _mm256_add_epi8(isSlash, upperHalves);
    return _mm256_add_epi8(characters, _mm256_shuffle_epi8(Twice(distances), range));
}

/// Joins the sextets in 32 bytes to 24 bytes at the beginning of the register.
[[gnu::target("avx2")]] __m256i Join(__m256i sextets)
{
    const __m256i twelveBits = _mm256_maddubs_epi16(sextets, _mm256_set1_epi32(0x01400140));
    const __m256i groups = _mm256_madd_epi16(twelveBits, _mm256_set1_epi32(0x00011000));
    const __m256i bytes = _mm256_shuffle_epi8(
        groups, Twice(_mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1)));
    return _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
}

[[gnu::target("avx2")]] size_t EncodeByAvx2(const char* from, size_t groups, char* to)
{
    // The last load reads four bytes after its own groups.
    constexpr size_t Beyond = 2;
    size_t done = 0;
    for (; done + GroupsPerStep + Beyond <= groups; done += GroupsPerStep) {
        const __m256i characters = ToCharacters(Split(from + 3 * done));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + 4 * done), characters);
    }
    return done;
}

[[gnu::target("avx2")]] size_t DecodeByAvx2(const char* from, size_t groups, char* to)
{
    size_t done = 0;
    for (; done + GroupsPerStep <= groups; done += GroupsPerStep) {
        const __m256i characters = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + 4 * done));
        const __m256i upperHalves
            = _mm256_and_si256(_mm256_srli_epi32(characters, 4), _mm256_set1_epi8(0x0f));
        if (!AllInAlphabet(characters, upperHalves))
            break;
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + 3 * done),
                            Join(ToSextets(characters, upperHalves)));
    }
    return done;
}

} // namespace

size_t EncodeGroupsByVector(const char* from, size_t groups, char* to)
{
    return HasAvx2() ? EncodeByAvx2(from, groups, to) : 0;
}

size_t DecodeGroupsByVector(const char* from, size_t groups, char* to)
{
    return HasAvx2() ? DecodeByAvx2(from, groups, to) : 0;
}

} // namespace vmk
