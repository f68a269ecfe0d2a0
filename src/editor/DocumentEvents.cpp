#include "BinaryListF.h"
#include "BookFileCheck.h"
#include "BookSafety.h"
#include "BookVariables.h"
#include "CaretStatus.h"
#include "CleanUpF.h"
#include "CommLineInfoF.h"
#include "Desktop.h"
#include "DisplayView.h"
#include "EditHtmlWbF.h"
#include "EditorState.h"
#include "FbFunctions.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "FindReplaceWbF.h"
#include "Form1.h"
#include "MainWindowSeams.h"
#include "NonBreakingSpace.h"
#include "PanelBar.h"
#include "PasteRules.h"
#include "ScrollPositions.h"
#include "SelectionFunctions.h"
#include "SettingsVariables.h"
#include "Sounds.h"
#include "SpellCheckF.h"
#include "StartUpVariables.h"
#include "VirtualKeys.h"

#include <QCursor>
#include <QMenu>
#include <QTimer>

#include <algorithm>
#include <span>

/// The main window's handlers for the events of the display.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int LeftButton = 1;
constexpr int RightButton = 2;
constexpr int MiddleButton = 4;

/// Keys identified by the code of a letter.
namespace Key {
constexpr int B = 66, C = 67, H = 72, I = 73, T = 84, V = 86, X = 88, Y = 89, Z = 90;
constexpr int F3 = VirtualKey::F1 + 2, F4 = VirtualKey::F1 + 3, F5 = VirtualKey::F1 + 4,
              F12 = VirtualKey::F1 + 11;
} // namespace Key

/// A key of the display and its command.
struct KeyRow
{
    int key;
    Command command;
};

/// Independent of modifiers: Shift with an arrow moves the caret and selects nothing.
constexpr KeyRow FixedKeys[] = {
    {Key::F12, Command::LoadNewSchema},
    {VirtualKey::Left, Command::CaretLeft},
    {VirtualKey::Right, Command::CaretRight},
    {VirtualKey::Space, Command::InsertSpace},
};

constexpr KeyRow PlainKeys[] = {
    {Key::F3, Command::OpenFile},
    {Key::F4, Command::SaveFile},
    {Key::F5, Command::SaveFileAs},
};

constexpr KeyRow ShiftKeys[] = {
    {VirtualKey::Insert, Command::Paste},
    {VirtualKey::Delete, Command::Cut},
};

constexpr KeyRow CtrlKeys[] = {
    {Key::Z, Command::Undo},
    {Key::Y, Command::Redo},
    {Key::X, Command::Cut},
    {Key::C, Command::Copy},
    {VirtualKey::Insert, Command::Copy},
    {Key::V, Command::Paste},
    {Key::T, Command::CopyText},
    {Key::H, Command::PasteHtml},
    {Key::B, Command::Bold},
    {Key::I, Command::Italic},
};

Command CommandOf(std::span<const KeyRow> rows, int key)
{
    const auto row = std::ranges::find(rows, key, &KeyRow::key);
    return row == rows.end() ? Command::None : row->command;
}

/// True for keys that do not change the text themselves.
bool LeavesText(int key)
{
    return (key >= VirtualKey::Control && key <= VirtualKey::CapsLock)
        || (key >= VirtualKey::LeftWindows && key <= VirtualKey::Menu) || key == VirtualKey::Escape
        || (key >= VirtualKey::PageUp && key <= VirtualKey::Down) || key == VirtualKey::NumLock
        || key == VirtualKey::ScrollLock || key == VirtualKey::Insert
        || (key >= VirtualKey::F1 && key <= Key::F12);
}

/// Clears `BookUnchanged` if the key can change the text. A letter typed with Shift does not count, and Alt
/// is ignored; both are intended.
void NoteEditKey(const DisplayEvent& event)
{
    if (!BookUnchanged)
        return;
    const bool changes = event.shiftKey ? event.keyCode == VirtualKey::Insert
        : event.ctrlKey                 ? event.keyCode == Key::V
                                        : !LeavesText(event.keyCode);
    if (changes)
        BookUnchanged = false;
}

/// The command of a key, and whether the display must ignore the key.
struct KeyAnswer
{
    Command command = Command::None;
    bool cancel = false;
};

KeyAnswer AnswerEditKey(int key, bool ctrl, bool shift)
{
    if (!ctrl) {
        if (const Command command = CommandOf(PlainKeys, key); command != Command::None)
            return {command, false};
    }
    if (key == VirtualKey::Escape)
        return {Command::RePaintSelection, true};
    if (key == VirtualKey::Tab && !shift)
        return {ctrl ? Command::LeftShift : Command::RightShift, true};
    if (ctrl)
        return {CommandOf(CtrlKeys, key), true};
    if (shift)
        return {CommandOf(ShiftKeys, key), true};
    return {};
}

/// True on a scroll bar, which is outside the client area of the page.
bool OnScrollBar(const DisplayView& view, const DisplayEvent& event)
{
    return event.clientX > view.clientWidth() || event.clientY > view.clientHeight();
}

} // namespace

void Form1::connectDisplay()
{
    DisplayEvents& events = HTMLread->events;
    events.onkeydown = [this](DisplayEvent& event) { FileDoc_onkeydown(event); };
    events.onmousedown = [this](DisplayEvent& event) { FileDoc_onmousedown(event); };
    events.onmouseup = [this](DisplayEvent& event) { FileDoc_onmouseup(event); };
    events.ondblclick = [this](DisplayEvent& event) { FileDoc_ondblclick(event); };
    events.oncontextmenu = [this](DisplayEvent& event) { FileDoc_oncontextmenu(event); };
    events.ondragstart = [this](DisplayEvent& event) { FileDoc_ondragstart(event); };
    events.onfocusout = [this](DisplayEvent& event) { FileDoc_onfocusout(event); };
    events.onreadystatechange = [this](DisplayEvent& event) { FileDoc_onreadystatechange(event); };
    events.onresize = [this](DisplayEvent& event) { HTW_onresize(event); };
    events.onscroll = [this](DisplayEvent& event) { HTW_onscroll(event); };
    events.onbeforenavigate
        = [this](const QString& target, bool& cancel) { HTMLread_BeforeNavigate(target, cancel); };
    events.ondocumentcomplete = [this](const QString& location) { HTMLread_DocumentComplete(location); };
}

// ---------------------------------------------------------------- keys

void Form1::FileDoc_onkeydown(DisplayEvent& event)
{
    // The find window's keys first. Shift is given as a set flag, -1, which blocks nothing; this is meant.
    if (HandleFindKey(event.keyCode, event.shiftKey ? -1 : 0, event.ctrlKey, event.altKey)) {
        event.returnValue = false;
        return;
    }
    Command fixed = CommandOf(FixedKeys, event.keyCode);
    if (fixed == Command::InsertSpace && event.ctrlKey)
        fixed = Command::InsertNbsp;
    if (RunCommand(fixed)) {
        event.returnValue = false;
        return;
    }
    NoteEditKey(event);
    const KeyAnswer answer = AnswerEditKey(event.keyCode, event.ctrlKey, event.shiftKey);
    if (RunCommand(answer.command) && answer.cancel)
        event.returnValue = false;
}

// ---------------------------------------------------------------- clicks

void Form1::FileDoc_onmousedown(DisplayEvent& event)
{
    if (OnScrollBar(*HTMLread, event))
        return;
    TimerGetOffset->start();
    const bool left = event.button == LeftButton;
    // The release handles a shift-click.
    if (left && event.shiftKey)
        return;
    if (event.clientX < HTMLread->clientWidth())
        LinesSelected = false;
    if (left && !TripleClickPending)
        TimerTrOnMouseDown->start();
}

void Form1::FileDoc_onmouseup(DisplayEvent& event)
{
    if (!OnScrollBar(*HTMLread, event)) {
        if (event.button == RightButton)
            TimerPopUp->start();
        if (event.button == MiddleButton)
            pastePrimary();
        if (event.button == LeftButton) {
            if (event.shiftKey && ShiftClickSelect()) {
                event.returnValue = false;
                DoubleClickSeen = false;
                return;
            }
            LinesSelected = false;
            if (TripleClickPending)
                thirdClick();
            else
                ShowCaretPosition();
        }
    }
    DoubleClickSeen = false;
}

void Form1::pastePrimary()
{
    const QString text = PrimaryText();
    if (text.isEmpty() || HTMLread->designMode() != "On"_L1)
        return;
    StoreOffsets();
    BookUnchanged = false;
    PasteText(HTMLread->document(), text, {CaretOffsetLeft, CaretOffsetTop}, ShownNbsp(ShowNbsp == 1));
}

void Form1::runFileKey(int keyCode)
{
    if (!HandleFindKey(keyCode, 0, false, false))
        RunCommand(CommandOf(PlainKeys, keyCode));
}

void Form1::thirdClick()
{
    if (!SelectTagAtCaret() && DoubleClickRange) {
        TimerTripleClick->stop();
        // Only the word, without the blanks next to it.
        const QString word = DoubleClickRange->text();
        if (word.startsWith(u' '))
            DoubleClickRange->moveStart(TextUnit::Character, 1);
        if (word.endsWith(u' '))
            DoubleClickRange->moveEnd(TextUnit::Character, -1);
        DoubleClickRange->select();
    }
    TripleClickPending = false;
}

void Form1::FileDoc_ondblclick(DisplayEvent& event)
{
    TripleClickPending = true;
    DoubleClickSeen = true;
    DoubleClickRange = SelectionRange();
    if (SelectNodes({.cancelEvent = true, .keepAnchor = true}).first >= 1)
        event.returnValue = false;
    TimerTripleClick->start();
}

void Form1::FileDoc_oncontextmenu(DisplayEvent& event)
{
    event.returnValue = false;
}

void Form1::FileDoc_ondragstart(DisplayEvent& event)
{
    event.returnValue = false;
}

// ---------------------------------------------------------------- focus, scrolling, size

void Form1::FileDoc_onfocusout(DisplayEvent&)
{
    // The selection remains visible while another window has the focus.
    TextRange range = SelectionRange();
    const bool somethingSelected = range.boundingWidth() > 0;
    if (somethingSelected)
        range.select();
    NoteSelectionForCleaner(somethingSelected);
}

void Form1::HTW_onresize(DisplayEvent&)
{
    if (++ResizeEventCount < 2)
        return;
    ResizeEventCount = 0;
    TmpBookmarkTimer->start();
}

void Form1::HTW_onscroll(DisplayEvent&)
{
    // A restart delays the tick, so that it never occurs during scrolling.
    TimerScroll->start();
}

void Form1::ShowPopUpMenu()
{
    Status->setPanelText(1, QString());
    StatusMsg->setPanelText(1, QString());
    TagUnderCaret = GetTagUnderCaret(HTMLread->document());
    const TagEntries fit = EntriesFor(TagUnderCaret, BinaryPart, BinaryCodePage);
    Entry("Ed_GoToLink")->setEnabled(fit.goToLink);
    Entry("Ed_CheckId")->setEnabled(fit.checkId);
    Entry("Ed_ShowImage")->setEnabled(fit.showImage);
    Entry("Ed_RemoveImageResource")->setEnabled(fit.removeImageResource);
    Entry("Ed_AddImageResource")->setEnabled(fit.addImageResource);
    MnRightClick->popup(QCursor::pos());
}

// ---------------------------------------------------------------- from navigation to document

void Form1::HTMLread_BeforeNavigate(const QString& target, bool& cancel)
{
    const QString name = FileNameOf(target);
    const bool own = name == FileNameOf(EmptyPageFile) || name == FileNameOf(WelcomeFile);
    if (!own && !LoadingByProgram && FileExists(target) && HasBookExtension(target)) {
        cancel = true;
        droppedBook = target;
        TimerWBDrop->start();
    } else if (!own) {
        cancel = CheckNavigation(target);
    }
    LoadingByProgram = false;
    SkipNavigationCheck = false;
}

void Form1::HTMLread_DocumentComplete(const QString&)
{
    CommLineInfoF::Unload();
    LoadingByProgram = false;
    // State from the previous page's clicks is invalid in this one.
    ForgetRanges();
    if (FindReplaceWbF* search = FindReplaceWbF::Instance())
        search->PageReplaced();
    if (SpellCheckF* spellCheck = SpellCheckF::Instance())
        spellCheck->PageReplaced();
    if (EditHtmlWbF* fragmentEditor = ExistingForm<EditHtmlWbF>())
        fragmentEditor->PageReplaced();
    if (BinaryListF* binaryList = ExistingForm<BinaryListF>())
        binaryList->BinaryPartChanged();
    // The design mode must not be set inside the display's own event.
    if (FileExists(DisplayFile))
        TimerDesignMode->start();
}

void Form1::FileDoc_onreadystatechange(DisplayEvent&)
{
    if (HTMLread->readyState() != "complete"_L1 || HTMLread->designMode() != "On"_L1)
        return;
    UndoSteps = 0;
    BookUnchanged = true;
    if (HTMLread->location().contains(FileNameOf(EmptyPageFile))) {
        ShowStatus(u"ready"_s);
    } else {
        RememberPosition(Remember::Restart);
        if (ValidateAfterLoad) {
            TimerValidate->start();
        } else {
            ShowStatus(safety->completionText());
            PlayProgramSound(u"DocComplete.wav"_s, false);
        }
    }
    ShowFileLength();
    ValidateAfterLoad = false;
}

} // namespace vmk
