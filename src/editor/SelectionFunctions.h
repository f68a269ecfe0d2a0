#pragma once

#include "DisplayPage.h"

namespace vmk {

/// Returns a new range over the selection of the display; empty at a caret.
[[nodiscard]] TextRange SelectionRange();

struct LineSelectionOptions
{
    bool returnHtml = false; ///< returns the HTML of the lines too
    bool cancelEvent = false; ///< sets `LinesSelected`, so that the event handler cancels its event
    bool keepAnchor = false; ///< the lines become the anchor of shift-clicks; otherwise the anchor is cleared
};

/// Extends the selection to whole lines and selects them.
/// \return the lines; outside any line their `first` is below 1, and nothing is changed
SelectedNodes SelectNodes(LineSelectionOptions options);

/// Stores the position of the selection and the scroll position of the page.
void StoreOffsets();
/// Stores the selection as the position of the last mouse press.
void StoreMouseDownRange();
/// Selects the tag around the last mouse press. Returns false if there is none within 50 characters on either
/// side.
bool SelectTagAtCaret();
/// Selects the whole lines between the anchor and the click. Without an anchor, does nothing and returns
/// false.
bool ShiftClickSelect();

} // namespace vmk
