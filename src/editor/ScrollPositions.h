#pragma once

#include "PositionList.h"

#include <QString>

namespace vmk {

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
