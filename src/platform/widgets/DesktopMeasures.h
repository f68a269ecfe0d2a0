#pragma once

#include "ScreenMeasures.h"

namespace vmk {

/// Returns the measures of the primary screen and of the toolkit's style, in device-independent pixels.
/// Requires the application object. Frames that the window manager draws are estimated from the style.
[[nodiscard]] ScreenMeasures ReadDesktopMeasures();

} // namespace vmk
