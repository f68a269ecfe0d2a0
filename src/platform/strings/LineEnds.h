#pragma once

namespace vmk {

/// Line end written everywhere.
inline constexpr char CrLf[] = "\r\n";

} // namespace vmk
