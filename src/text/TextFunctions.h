#pragma once

#include <string_view>

namespace vmk {

/// True when nothing is left of the text after deleting the bytes 9, 32, 13, 10 and 160 and, with
/// `countNbsp`, every "&nbsp;".
[[nodiscard]] bool IsBlank(std::string_view text, bool countNbsp);

} // namespace vmk
