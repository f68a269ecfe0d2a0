#include "FindReplaceWbF.h"

#include "BookVariables.h"
#include "Desktop.h"
#include "DisplayPage.h"
#include "DisplayView.h"
#include "Form1.h"
#include "MainWindowSeams.h"
#include "PanelBar.h"
#include "SearchField.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "WindowOffMatch.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QWindow>

#include <cmath>

/// The find window: searching, replacing and the running replace-all.
namespace vmk {

using namespace Qt::StringLiterals;

DisplayView& FindReplaceWbF::view() const
{
    return *owner.HTMLread;
}

bool FindReplaceWbF::byRegExp() const
{
    return RegExpB->isChecked();
}

SearchOptions FindReplaceWbF::options() const
{
    SearchOptions options;
    options.wholeWord = WholeWordB->isChecked();
    options.matchCase = MatchCaseB->isChecked();
    options.up = UpB->isChecked();
    options.selection = SelectionB->isChecked();
    options.autoFindNext = AutoFindNextB->isChecked();
    options.markReplaced = MarkReplacedB->isChecked();
    options.nbspMarks = ShowNbsp == 1;
    return options;
}

/// Returns true if the display shows a book; the pages of the program cannot be changed.
bool FindReplaceWbF::mayReplace() const
{
    if (view().designMode() == "On"_L1)
        return true;
    Beep();
    return false;
}

void FindReplaceWbF::SetFocusToFindWin(int interval)
{
    if (interval != 0) {
        TimerFindFocus->start(interval);
        return;
    }
    activateWindow();
    FindCB->setFocus(Qt::OtherFocusReason);
}

// ---------------------------------------------------------------- find and replace

void FindReplaceWbF::DoFind()
{
    SetFocusToFindWin(0);
    addToHistory(Which::Find);
    const SearchEvents events{[this](const QString& text) { showReport(text, true); }, [] {}};
    if (byRegExp()) {
        const HourglassScope hourglass;
        showFind(RegExpFind(state, FindCB->text(), options(), events));
    } else {
        showFind(Find_Text(state, FindCB->text(), options()));
    }
    SetFocusToFindWin(0);
}

void FindReplaceWbF::showFind(const FindResult& result)
{
    if (result.outcome == FindResult::Nothing)
        return;
    ReplaceB->setEnabled(state.HitSelected);
    showReport(result.report, false);
    if (result.outcome == FindResult::Finished) {
        Beep();
        return;
    }
    scrollMatchToMiddle();
    MoveFindWinOffMatch(*this, owner, state.SearchRange);
}

void FindReplaceWbF::DoReplace()
{
    if (!mayReplace())
        return;
    SetFocusToFindWin(0);
    addToHistory(Which::Replace);
    ReplaceResult result;
    if (byRegExp()) {
        result = RegExpReplaceHit(state, ReplaceCB->text(), FindCB->text(), options());
    } else {
        result = Replace_Text(state, ReplaceCB->text(), options());
        UndoSteps = 1;
    }
    BookUnchanged = false;
    ReplaceB->setEnabled(false);
    showReport(result.report, false);
    if (!result.newText.isNull())
        MoveFindWinOffMatch(*this, owner, result.newText);
    if (AutoFindNextB->isChecked())
        DoFind();
}

// ---------------------------------------------------------------- replace all

void FindReplaceWbF::DoReplaceAll()
{
    if (!mayReplace())
        return;
    SetFocusToFindWin(0);
    if (!FindCB->text().isEmpty()) {
        addToHistory(Which::Find);
        addToHistory(Which::Replace);
    }
    runReplaceAll();
}

void FindReplaceWbF::runReplaceAll()
{
    const SearchEvents events{[this](const QString& text) { showReport(text, true); }, ProcessEvents};
    const HourglassScope hourglass;
    setRunningButtons(false);
    running = true;
    // During the run only the stop button responds, so that nothing else changes the book.
    qApp->installEventFilter(this);
    ReplaceAllB->setFocus(Qt::OtherFocusReason);
    ReplaceAllResult result;
    {
        const DisplayView::UpdateHold hold(view());
        result = byRegExp() ? RegExpReplaceAll(state, FindCB->text(), ReplaceCB->text(), options(), events)
                            : Replace_All(state, FindCB->text(), ReplaceCB->text(), options(), events);
    }
    qApp->removeEventFilter(this);
    running = false;
    finishRun(result);
}

void FindReplaceWbF::finishRun(const ReplaceAllResult& result)
{
    if (result.beep)
        Beep();
    if (result.undoSteps > 0) {
        UndoSteps = result.undoSteps;
        BookUnchanged = false;
    }
    if (!result.lastText.isNull())
        MoveFindWinOffMatch(*this, owner, result.lastText);
    if (!result.report.isEmpty())
        showReport(result.report, true);
    setRunningButtons(true);
    if (closeAfterRun)
        close();
    else
        SetFocusToFindWin(0);
}

bool FindReplaceWbF::eventFilter(QObject* watched, QEvent* event)
{
    if (!running)
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::Close:
        if (watched == this || watched == windowHandle())
            return false;
        state.StopRequested = true;
        event->ignore();
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::ContextMenu:
    case QEvent::Wheel:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::TouchBegin:
        return watched != ReplaceAllB && watched != this && watched != windowHandle();
    default:
        return false;
    }
}

void FindReplaceWbF::setRunningButtons(bool idle)
{
    FindB->setEnabled(idle);
    ReplaceB->setEnabled(false);
    UpdateB->setEnabled(idle);
    ReplaceAllB->setText(idle ? u"replace all"_s : u"stop"_s);
}

// ---------------------------------------------------------------- a new search

void FindReplaceWbF::BeginSearch(bool keepPosition)
{
    NewSearch(state, options(), keepPosition);
    showReport(QString(), false);
    FindB->setEnabled(true);
    ReplaceB->setEnabled(false);
}

void FindReplaceWbF::PageReplaced()
{
    if (!running)
        BeginSearch(false);
}

void FindReplaceWbF::regExpToggled()
{
    const bool on = byRegExp();
    ResetSearchState(state);
    histories.SaveHistories(on ? HistoryMode::Plain : HistoryMode::RegExp);
    histories.LoadHistories(mode());
    showHistory(Which::Find);
    showHistory(Which::Replace);
    WholeWordB->setEnabled(!on);
    if (on)
        DownB->setChecked(true);
    UpB->setEnabled(!on);
}

void FindReplaceWbF::showReport(const QString& text, bool refresh)
{
    ReportL->setText(text);
    if (refresh)
        ReportL->repaint();
}

// ---------------------------------------------------------------- the visible match

/// Scrolls the match to the middle of the view, unless it is taller than half of the view.
void FindReplaceWbF::scrollMatchToMiddle()
{
    const int top = state.SearchRange.offsetTop() + view().clientTop();
    const int height = state.SearchRange.boundingHeight();
    const double seen = view().offsetHeight();
    if (top >= 0 && top + height >= 0 && height < seen / 2)
        view().scrollBy(0, int(std::lrint(top - seen / 2)));
}

} // namespace vmk
