#pragma once

#include <cstdint>
#include <string_view>

namespace vmk {

/// Returns a checksum (XXH3, 64 bits) of bytes; the same on every machine.
/// \param seed  another seed gives another checksum; pass the one of the bytes before to make a chain
[[nodiscard]] std::uint64_t Checksum(std::string_view bytes, std::uint64_t seed = 0);

} // namespace vmk
