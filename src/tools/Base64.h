#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vmk {

/// The bytes as base64 with padding, on a single line. Empty in, empty out.
[[nodiscard]] std::string Base64Encode(std::string_view data);

/// The bytes behind base64 text; no value as soon as one character is neither of the alphabet nor "=": blanks
/// and line ends too, which the caller takes out before.
///
/// Three oddities are meant. Characters behind the last group of four are dropped. "=" counts as padding at
/// the third and fourth place of a group only; at the first two it stands for six zero bits. Padding ends its
/// group and not the text: what follows runs on directly behind, so that two texts can be joined.
[[nodiscard]] std::optional<std::string> Base64Decode(std::string_view text);

} // namespace vmk
