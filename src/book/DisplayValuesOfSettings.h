#pragma once

#include "DisplayValues.h"

namespace vmk {

/// Returns the display values of the current settings.
[[nodiscard]] DisplayValues DisplayValuesOfSettings();

} // namespace vmk
