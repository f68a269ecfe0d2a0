#pragma once

#include <cstddef>

/// The inner loops of base64 on vector registers, where the machine has them.
namespace vmk {

/// Room that the loops may write on behind their results.
inline constexpr size_t VectorSlack = 32;

/// Encodes groups of three bytes from the beginning on. Gives the number of groups done: as many as the
/// registers suit, none on a machine without them; the rest is for the caller.
[[nodiscard]] size_t EncodeGroupsByVector(const char* from, size_t groups, char* to);

/// As above for groups of four characters; ends, too, near a character outside the alphabet.
[[nodiscard]] size_t DecodeGroupsByVector(const char* from, size_t groups, char* to);

} // namespace vmk
