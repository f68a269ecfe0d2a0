#pragma once

#include "Seam.h"

namespace vmk {

/// Sizes of the screen and of the window decorations, in pixels.
struct ScreenMeasures
{
    /// For a screen of 96 dots per inch; a twip is 1/1440 inch.
    float twipsPerPixelX = 15;
    float twipsPerPixelY = 15;
    float captionHeight = 23;
    float borderX = 1;
    float borderY = 1;
    float edgeX = 2;
    float edgeY = 2;
    float frameX = 4;
    float frameY = 4;
    float fixedFrameX = 3;
    float fixedFrameY = 3;
    float screenPixelsX = 1024;
    float screenPixelsY = 768;
    float vScrollWidth = 17;
    float hScrollHeight = 17;
};

/// Returns the desktop's measures. Without a window, the defaults above.
[[nodiscard]] Seam<ScreenMeasures()>& ScreenMeasuresSeam();

} // namespace vmk
