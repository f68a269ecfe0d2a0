#pragma once

#include "DisplayPage.h"
#include "PositionList.h"

#include <QString>

namespace vmk {

// ---- lines and selection

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
// ---- status line

/// Shows shift, line, column and character codes of the caret in panel 2 of `Status`. Clears the panel for a
/// selection.
void ShowCaretPosition();
/// Shows the length of the book's file in panel 3 of `Status`.
void ShowFileLength();

// ---- undo

/// Undoes the last edit: `UndoSteps` steps of the display, at least one. Typing does not change that number:
/// after a shift and a typed character, one undo reverts both steps, which is intended.
void UndoEdit();
void RedoEdit();

// ---- positions

/// Scrolls to the previous or next position in the history; beeps at either end.
void GoToPosition(Direction direction);

enum class Remember
{
    IfMoved, ///< unless it is less than one pixel from the last entry
    Always,
    Restart ///< clears the history first
};

/// Adds the current scroll position to the history.
void RememberPosition(Remember when);
/// One tick of `TimerScroll`: adds a position once scrolling has stopped.
void NoteScrollEnd();

/// Inserts an anchor before the first visible line, unless the page is scrolled to its top. Inserting and
/// removing it are undo steps of the display that are not compensated for, which is intended.
void SetTemporalBookmark();
/// Scrolls back to the anchor and removes it.
void RestoreTemporalBookmark();
void DeleteTemporalBookmarks();
/// Scrolls to the element named `id1`, otherwise to `id2`, otherwise to `fallbackTop` pixels if greater than
/// 0.
void GoToAnchor(const QString& id1, const QString& id2, int fallbackTop);

} // namespace vmk
