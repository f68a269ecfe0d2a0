#pragma once

#include <cstddef>

/// The inner loops of base64 on vector registers, on machines that have them.
namespace vmk {

/// The number of bytes after their result that the loops may overwrite.
inline constexpr size_t VectorSlack = 32;

/// Encodes groups of three bytes from the beginning. Returns the number of encoded groups: as many as fit the
/// registers, none on a machine without them. The caller encodes the rest.
[[nodiscard]] size_t EncodeGroupsByVector(const char* from, size_t groups, char* to);

/// As above for groups of four characters; also stops near a character outside the alphabet.
[[nodiscard]] size_t DecodeGroupsByVector(const char* from, size_t groups, char* to);

} // namespace vmk
