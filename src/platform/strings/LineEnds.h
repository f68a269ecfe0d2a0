#pragma once

namespace vmk {

/// The line end in all files that the program writes.
inline constexpr char CrLf[] = "\r\n";

} // namespace vmk
