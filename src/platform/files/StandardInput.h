#pragma once

#include "Files.h"

namespace vmk {

/// Reads standard input completely, up to `MaxFileBytes`.
[[nodiscard]] FileContent ReadStandardInput();

} // namespace vmk
