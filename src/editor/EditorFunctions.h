#pragma once

#include "DisplayPage.h"

#include <QString>

namespace vmk {

// ---- lines and selection

/// A new range over what is selected in the display; a caret gives an empty one.
[[nodiscard]] TextRange SelectionRange();
/// Grows the selection to whole lines.
/// @param first, last  set to the node indexes of its lines, -1 outside any line
/// @param select       makes the lines the selection
/// @param returnHtml   the result is the lines' HTML; else it is empty
/// @param cancelEvent  sets `LinesSelected`; the event's handler then cancels it
/// @param keepAnchor   the lines become the anchor of shift-clicks; else there is none afterwards
QString SelectNodes(int& first, int& last, bool select, bool returnHtml, bool cancelEvent, bool keepAnchor);

/// Stores where the selection stands and how far the page is scrolled.
void StoreOffsets();
/// Stores the selection as the place of the last press.
void StoreMouseDownRange();
/// Selects the tag around the last press. False if there is none within 50 characters each way.
bool SelectTagAtCaret();
/// Grows the selection to whole lines between the anchor and the click. False, and nothing happens,
/// without an anchor.
bool ShiftClickSelect();
// ---- status line

/// Shows shift, line, column and character codes of the caret in panel 2 of `Status`; empties the panel for
/// a selection.
void ShowCaretPosition();
/// Shows the length of the book's file in panel 3 of `Status`.
void ShowFileLength();

// ---- undo

/// Takes back the last edit: `UndoSteps` steps of the display, one at least. Typing does not change that
/// number, so that behind a shift and a typed character both steps go with one undo, which is meant.
void UndoEdit();
void RedoEdit();

// ---- positions

enum class Direction
{
    Up,
    Down
};

/// Scrolls to the place before or behind the current one in the history; beeps at its ends.
void GoToPosition(Direction direction);
/// Enters the present scroll position into the history.
/// @param force  also when it is less than a pixel from the last entry
/// @param reset  begins the history anew with it
void RememberPosition(bool force, bool reset);
/// One tick of `TimerScroll`: enters a place when scrolling has come to rest.
void NoteScrollEnd();

/// Plants an anchor in front of the first line in view, unless the page stands at its top. Planting it and
/// taking it out are steps of the display's undo that nothing compensates for, which is meant.
void SetTemporalBookmark();
/// Scrolls back to the anchor and takes it out.
void RestoreTemporalBookmark();
void DeleteTemporalBookmarks();
/// Scrolls to the element named `id1`, else to `id2`, else to `fallbackTop` pixels if that is above 0.
void GoToAnchor(const QString& id1, const QString& id2, int fallbackTop);

} // namespace vmk
