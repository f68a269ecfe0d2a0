#pragma once

#include "Seam.h"

#include <QString>

namespace vmk {

/// Sets the caption of the main window or of the preview window. Without a window, does nothing.
[[nodiscard]] Seam<void(const QString& caption, bool preview)>& CaptionSeam();

/// Opens a page file in the display or in the preview. Without a window, does nothing.
[[nodiscard]] Seam<void(const QString& file, bool preview)>& NavigateSeam();

/// Clears the display or the preview: writes a blank page and opens it.
/// \param caption     the new caption of the window; empty keeps the old one
/// \param status      the text of the main window's message panel; its other panels are cleared and its
///                    pointer is restored. A preview does not change the main window.
/// \param sound       a file in the folder `sounds`; empty for none
/// \param skipStatus  if true, only opens the page: no caption, status or sound
void ShowEmptyPage(const QString& caption, const QString& status, const QString& sound, bool preview,
                   bool skipStatus);

} // namespace vmk
