#pragma once

#include "Seam.h"

#include <QString>

namespace vmk {

/// Sets the main window's caption, or that of the preview's window. Nothing happens without a window.
[[nodiscard]] Seam<void(const QString& caption, bool preview)>& CaptionSeam();

/// Opens a page file in the display, or in that of the preview. Nothing happens without a window.
[[nodiscard]] Seam<void(const QString& file, bool preview)>& NavigateSeam();

/// Clears the display, or that of the preview: opens a blank page, written anew.
/// \param caption   of the window; empty leaves it as it is
/// \param status    for the main window's message panel
/// \param sound     file of the folder `sounds`; empty for none
/// \param skipStatus  leaves the main window's pointer, status bars and caption alone
void ShowEmptyPage(const QString& caption, const QString& status, const QString& sound, bool preview,
                   bool skipStatus);

} // namespace vmk
