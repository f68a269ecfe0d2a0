#pragma once

#include "ScreenMeasures.h"

namespace vmk {

/// The measures of the primary screen and of the toolkit's style, in pixels of the toolkit's own counting;
/// needs the application object. Frames that the window manager draws are guessed from the style.
[[nodiscard]] ScreenMeasures ReadDesktopMeasures();

} // namespace vmk
