#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vmk {

/// Returns the bytes compressed (Zstandard, fastest level).
[[nodiscard]] std::string Compress(std::string_view bytes);

/// Returns the original bytes of a compressed text.
/// \param most  the longest result that is accepted, in bytes
/// \return nothing if the text is damaged or the result is longer
[[nodiscard]] std::optional<std::string> Decompress(std::string_view compressed, std::size_t most);

} // namespace vmk
