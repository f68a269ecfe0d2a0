#pragma once

#include "Seam.h"

#include <QString>

namespace vmk {

/// Sets the main window's caption, or that of the preview's window. Nothing happens without a window.
[[nodiscard]] Seam<void(const QString& caption, bool preview)>& CaptionSeam();

/// Opens a page file in the display, or in that of the preview. Nothing happens without a window.
[[nodiscard]] Seam<void(const QString& file, bool preview)>& NavigateSeam();

/// Clears the display, or that of the preview: opens a blank page, written anew.
/// \param caption     of the window concerned; empty leaves it as it is
/// \param status      for the main window's message panel; its other panels are cleared, its pointer is put
///                    back. A preview leaves the main window alone.
/// \param sound       file of the folder `sounds`; empty for none
/// \param skipStatus  the page alone: no window is told, and nothing is heard
void ShowEmptyPage(const QString& caption, const QString& status, const QString& sound, bool preview,
                   bool skipStatus);

} // namespace vmk
