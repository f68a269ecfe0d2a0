#pragma once

#include "DisplayValues.h"

namespace vmk {

/// The display values of the settings in force.
[[nodiscard]] DisplayValues DisplayValuesOfSettings();

} // namespace vmk
