#include "ScrollPositions.h"

#include "Desktop.h"
#include "EditorState.h"
#include "FindReplaceWbF.h"
#include "MainDisplay.h"
#include "SelectionFunctions.h"
#include "SettingsValues.h"
#include "SettingsVariables.h"
#include "Sounds.h"

#include <QGuiApplication>
#include <QTimer>

#include <cmath>
#include <vector>

namespace vmk {

namespace {

using namespace Qt::StringLiterals;

/// Does not occur as an id in any book.
constexpr char TemporalMarker[] = "()*^^^%^*";

} // namespace

void GoToPosition(Direction direction)
{
    DocScrollHeight = MainDisplay().scrollHeight();
    const std::optional<double> entry = Positions.step(direction);
    if (!entry) {
        Beep();
        return;
    }
    PositionJump = true;
    MainDisplay().scroll(0, int(std::lrint(*entry * DocScrollHeight)));
}

void RememberPosition(Remember when)
{
    const double height = DocScrollHeight = MainDisplay().scrollHeight();
    const double top = MainDisplay().scrollTop();
    const double entry = height > 0 ? top / height : 0;
    if (when == Remember::Restart) {
        SkipPositionRemember = false;
        Positions.reset(entry);
    } else if (when == Remember::Always || !Positions.endsAt(top, height)) {
        Positions.insert(entry);
    }
}

void NoteScrollEnd()
{
    static bool waiting = false;
    if (waiting)
        return;
    if (QGuiApplication::mouseButtons() & Qt::LeftButton) {
        PositionJump = false;
        return;
    }
    if (SkipPositionRemember) {
        SkipPositionRemember = false;
    } else if (!PositionJump) {
        waiting = true;
        WaitForInput(50, nullptr, 0);
        waiting = false;
        if (!Form1::Instance())
            return;
        RememberPosition(Remember::IfMoved);
    }
    Form1::Instance()->TimerScroll->stop();
    PositionJump = false;
}

void SetTemporalBookmark()
{
    // A running replace-all must not find the book changed.
    const FindReplaceWbF* search = FindReplaceWbF::Instance();
    if (MainDisplay().scrollTop() <= 0 || (search && search->isRunning()))
        return;
    TemporalBookmarkSet = true;
    DeleteTemporalBookmarks();
    TextRange range = SelectionRange();
    range.moveToPoint(LeftMarginPx(), 2);
    range.pasteHTML(u"<A id=%1></A>"_s.arg(QLatin1StringView(TemporalMarker)));
}

void RestoreTemporalBookmark()
{
    // The marker is only where it was set: nothing of a page is loaded for it.
    if (!page::getLoadedElementsByName(FileDoc(), QLatin1StringView(TemporalMarker)).empty())
        GoToAnchor(QString(), QLatin1StringView(TemporalMarker), -1);
    MainDisplay().focus();
    DeleteTemporalBookmarks();
}

void DeleteTemporalBookmarks()
{
    const QString name = QLatin1StringView(TemporalMarker);
    // Looked up again each time: removing one invalidates the positions of the others.
    for (size_t left = page::getLoadedElementsByName(FileDoc(), name).size(); left > 0; --left)
        page::getLoadedElementsByName(FileDoc(), name).front().setOuterHTML(QString());
}

void GoToAnchor(const QString& id1, const QString& id2, int fallbackTop)
{
    for (const QString& id : {id1, id2}) {
        if (id.isEmpty())
            continue;
        std::vector<DisplayElement> found = page::getLoadedElementsByName(FileDoc(), id);
        if (found.empty() && !FileDoc().isComplete())
            found = page::getElementsByName(FileDoc(), id);
        if (!found.empty() && found.front().sourceIndex() >= 1) {
            found.front().scrollIntoView();
            return;
        }
    }
    if (fallbackTop >= 1)
        MainDisplay().scroll(0, fallbackTop);
}

} // namespace vmk
