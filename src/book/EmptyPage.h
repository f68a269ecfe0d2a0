#pragma once

#include <QString>

namespace vmk {

struct EmptyPageOptions
{
    QString caption = {}; ///< the new caption of the window; empty keeps the old one
    QString status = {}; ///< the text of the main window's message panel
    QString sound = {}; ///< a file in the folder `sounds`; empty for none
    bool preview = false; ///< clears the preview; does not change the main window
    bool skipStatus = false; ///< only opens the page: no caption, status or sound
};

/// Clears the display or the preview: writes a blank page and opens it. Unless for a preview, also clears the
/// other panels of the main window and restores its pointer.
void ShowEmptyPage(const EmptyPageOptions& options);

} // namespace vmk
