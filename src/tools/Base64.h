#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vmk {

/// Returns the bytes as base64 with padding, on a single line; empty for empty data.
[[nodiscard]] std::string Base64Encode(std::string_view data);

/// Decodes base64 text. Returns no value if a character is neither in the alphabet nor "=": this includes
/// blanks and line ends, which the caller removes first.
///
/// Three peculiarities are intended. Characters after the last group of four are ignored. "=" is padding only
/// at the third and fourth position of a group; at the first two it represents six zero bits. Padding ends
/// its group and not the text: the next group follows directly, so that two texts can be joined.
[[nodiscard]] std::optional<std::string> Base64Decode(std::string_view text);

} // namespace vmk
