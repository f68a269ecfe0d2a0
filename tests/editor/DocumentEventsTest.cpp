#include "WindowTest.h"

#include "CaretStatus.h"
#include "ScrollPositions.h"
#include "SelectionFunctions.h"
#include "SettingsVariables.h"
#include "VirtualKeys.h"

#include <QRegularExpression>

#include <utility>

/// Keys, clicks, focus and the status line of the display.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class Events : public WindowTest
{
protected:
    /// Calls the key handler directly; returns what the display must do.
    DisplayEvent Down(int keyCode, bool ctrl = false, bool shift = false, bool alt = false)
    {
        DisplayEvent event;
        event.type = "keydown"_L1;
        event.keyCode = keyCode;
        event.ctrlKey = ctrl;
        event.shiftKey = shift;
        event.altKey = alt;
        form->FileDoc_onkeydown(event);
        return event;
    }

    /// A book that is tall enough to scroll.
    static std::string LongBook()
    {
        std::string paragraphs;
        for (int i = 0; i < 400; ++i)
            paragraphs += "<p>Paragraph number " + std::to_string(i) + " of a long book.</p>";
        std::string text = SmallBook;
        return text.insert(text.find("<p>Third"), paragraphs);
    }
};

// ---------------------------------------------------------------- keys

TEST_F(Events, F3OpensF4SavesF5SavesAs)
{
    OpenBook();
    Key(Qt::Key_F3);
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].kind, FileDialogRequest::Open);
    Key(Qt::Key_F4);
    EXPECT_EQ(Message(), u"file saved as: "_s + CurrentBook);
    Key(Qt::Key_F5);
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[1].kind, FileDialogRequest::Save);
}

TEST_F(Events, ShiftF3OpensABookTooWithTheFindDialogClosed)
{
    OpenBook();
    Key(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(requests.size(), 1u);
    Key(Qt::Key_F3, Qt::ControlModifier);
    EXPECT_EQ(requests.size(), 1u);
}

TEST_F(Events, F12SelectsASchemaWithAnyModifiers)
{
    OpenBook();
    EXPECT_FALSE(Down(VirtualKey::F1 + 11, true, true).returnValue);
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].title, u"Load new Fiction Book Schema"_s);
}

TEST_F(Events, F8AndF11WorkFromEveryControl)
{
    OpenBook();
    form->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    QTest::keyClick(form->ValidateOptL, Qt::Key_F8);
    EXPECT_EQ(Message(), u"No errors (against schema)"_s);
    QTest::keyClick(form->HTMLread, Qt::Key_F11);
    EXPECT_EQ(opened.size(), 1);
}

TEST_F(Events, ShiftLeftMovesTheCaretAndSelectsNothing)
{
    OpenBook();
    const Position caret = PlaceOf(u"words"_s);
    PutCaret(caret);
    Key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(Document().selection().focus, (Position{caret.line, caret.offset - 1}));
    EXPECT_TRUE(Document().selection().isEmpty());
    Key(Qt::Key_Right);
    EXPECT_EQ(Document().selection().focus, caret);
}

TEST_F(Events, LeftCollapsesASelectionToItsStart)
{
    OpenBook();
    const Position from = PlaceOf(u"words"_s);
    Document().setSelection(from, {from.line, from.offset + 5});
    Key(Qt::Key_Left);
    EXPECT_EQ(Document().selection().focus, (Position{from.line, from.offset - 1}));
    EXPECT_TRUE(Document().selection().isEmpty());
}

TEST_F(Events, UndoAndRedoUseTheStepCountOfTheLastEdit)
{
    OpenBook();
    PutCaret(PlaceOf(u"Third"_s));
    Type(u"a"_s);
    PutCaret(PlaceOf(u"First"_s));
    Type(u"b"_s);
    UndoSteps = 2;
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_LT(FindLine(u"aThird"_s), 0);
    EXPECT_LT(FindLine(u"bFirst"_s), 0);
    form->RunCommand(Command::Redo);
    EXPECT_GE(FindLine(u"aThird"_s), 0);
    EXPECT_GE(FindLine(u"bFirst"_s), 0);
}

TEST_F(Events, UndoWithoutAStepCountRevertsOne)
{
    OpenBook();
    PutCaret(PlaceOf(u"Third"_s));
    Type(u"a"_s);
    UndoSteps = 0;
    form->ToolbarAction(u"undo"_s)->trigger();
    EXPECT_LT(FindLine(u"aThird"_s), 0);
    form->ToolbarAction(u"redo"_s)->trigger();
    EXPECT_GE(FindLine(u"aThird"_s), 0);
}

TEST_F(Events, EditKeysClearTheUnchangedFlag)
{
    OpenBook();
    const auto clears = [this](int key, bool ctrl = false, bool shift = false, bool alt = false) {
        BookUnchanged = true;
        Down(key, ctrl, shift, alt);
        return !BookUnchanged;
    };
    EXPECT_TRUE(clears('A'));
    EXPECT_TRUE(clears(VirtualKey::Delete));
    EXPECT_TRUE(clears(VirtualKey::Backspace));
    EXPECT_TRUE(clears(VirtualKey::Enter));
    EXPECT_TRUE(clears('V', true));
    EXPECT_TRUE(clears(VirtualKey::Insert, false, true));
    // Alt is ignored.
    EXPECT_TRUE(clears('A', false, false, true));
    // A letter typed with Shift does not change it.
    EXPECT_FALSE(clears('A', false, true));
    EXPECT_FALSE(clears('C', true));
    for (const int key : {17, 18, 19, 20, 27, 33, 34, 35, 36, 38, 40, 45, 91, 92, 93, 112, 123, 144, 145})
        EXPECT_FALSE(clears(key)) << key;
}

TEST_F(Events, AKeyWithoutACommandIsHandledByTheDisplay)
{
    OpenBook();
    for (const int key : {VirtualKey::Escape, VirtualKey::Tab}) {
        const bool there
            = ProcedureOf(key == VirtualKey::Tab ? Command::RightShift : Command::RePaintSelection);
        EXPECT_EQ(Down(key).returnValue, !there) << key;
    }
}

// ---------------------------------------------------------------- clicks

TEST_F(Events, AClickShowsTheCaretPosition)
{
    OpenBook();
    Click(PlaceOf(u"words"_s));
    EXPECT_TRUE(Panel(2).contains(u"unicode:"_s)) << Panel(2).toStdString();
    EXPECT_TRUE(WaitFor([] { return MouseDownRange.has_value(); }));
}

TEST_F(Events, APressStoresOffsetsTenMillisecondsLater)
{
    OpenBook();
    CaretOffsetTop = -1;
    Click(PlaceOf(u"Third"_s));
    EXPECT_TRUE(WaitFor([] { return CaretOffsetTop > 0; }));
    EXPECT_EQ(SavedScrollTop, View().scrollTop());
}

TEST_F(Events, ADoubleClickSelectsTheWholeLine)
{
    OpenBook();
    DoubleClick(PlaceOf(u"words"_s));
    EXPECT_EQ(SelectedText(), u"<p>First words & more.</p>"_s);
    EXPECT_TRUE(TripleClickPending);
    EXPECT_TRUE(form->TimerTripleClick->isActive());
    EXPECT_TRUE(LineAnchorRange.has_value());
}

TEST_F(Events, AThirdClickOnATagSelectsTheTag)
{
    OpenBook();
    const Position tag = PlaceOf(u"strong"_s);
    Click({tag.line, tag.offset + 1});
    ASSERT_TRUE(WaitFor([this] { return MouseDownRange && !form->TimerTrOnMouseDown->isActive(); }));
    DoubleClick({tag.line, tag.offset + 1});
    Click({tag.line, tag.offset + 1});
    EXPECT_EQ(SelectedText(), u"<strong>"_s);
    EXPECT_FALSE(TripleClickPending);
}

TEST_F(Events, AThirdClickOnAWordSelectsItWithoutItsBlanks)
{
    OpenBook();
    const Position word = PlaceOf(u"words"_s);
    Click(word);
    ASSERT_TRUE(WaitFor([this] { return MouseDownRange && !form->TimerTrOnMouseDown->isActive(); }));
    DoubleClick(word);
    Click(word);
    EXPECT_EQ(SelectedText(), u"words"_s);
}

TEST_F(Events, AThirdClickAfterHalfASecondIsAPlainClick)
{
    OpenBook();
    const Position word = PlaceOf(u"words"_s);
    DoubleClick(word);
    ASSERT_TRUE(WaitFor([] { return !TripleClickPending; }));
    Click(word);
    EXPECT_EQ(SelectedText(), QString());
    EXPECT_FALSE(Panel(2).isEmpty());
}

TEST_F(Events, TheEndOfATagIsSearchedUpToFiftyOneCharactersAway)
{
    std::string text = SmallBook;
    OpenBook(text.replace(text.find("Third line."), 11, "<image l:href=\"#" + std::string(60, 'x') + "\"/>"));
    const Position tag = PlaceOf(u"<image"_s);
    const int length = int(LineText(tag.line).indexOf(u'>', tag.offset)) + 1 - tag.offset;
    const auto selects = [&](int fromStart) {
        const Position at{tag.line, tag.offset + fromStart};
        MouseDownRange = TextRange(Document(), at, at);
        return SelectTagAtCaret();
    };
    // The first character on each side decides, or one of the fifty after it.
    EXPECT_TRUE(selects(51));
    EXPECT_FALSE(selects(52));
    EXPECT_TRUE(selects(length - 51));
    EXPECT_FALSE(selects(length - 52));
}

TEST_F(Events, DoubleClickAndShiftClickSelectLinesWithoutScrolling)
{
    OpenBook(LongBook());
    View().scroll(0, 100);
    const int first = View().lineAt(QPoint(20, 60));
    const int last = View().lineAt(QPoint(20, 200));
    ASSERT_LT(first, last);
    DoubleClick({first, 3});
    TripleClickPending = false;
    const int top = View().scrollTop();
    Click({last, 3}, Qt::ShiftModifier);
    EXPECT_EQ(Document().selection().start(), (Position{first, 0}));
    EXPECT_EQ(Document().selection().end(), (Position{last, int(LineText(last).size())}));
    EXPECT_EQ(View().scrollTop(), top);
    EXPECT_TRUE(LinesSelected);
}

TEST_F(Events, AShiftClickWithoutAnchorIsHandledByTheDisplayAndClearsTheCaretPanel)
{
    OpenBook();
    LineAnchorRange.reset();
    Click(PlaceOf(u"First"_s));
    EXPECT_FALSE(Panel(2).isEmpty());
    Click(PlaceOf(u"more"_s), Qt::ShiftModifier);
    EXPECT_EQ(SelectedText(), u"First words & "_s);
    EXPECT_EQ(Panel(2), QString());
}

TEST_F(Events, APressOnTheScrollBarStartsNoTimer)
{
    OpenBook(LongBook());
    DisplayEvent press;
    press.type = "mousedown"_L1;
    press.button = 1;
    press.clientX = View().clientWidth() + 3;
    press.clientY = 10;
    form->FileDoc_onmousedown(press);
    EXPECT_FALSE(form->TimerGetOffset->isActive());
    EXPECT_FALSE(form->TimerTrOnMouseDown->isActive());
}

TEST_F(Events, ARightClickOpensTheContextMenuAndEmptiesTheFirstPanels)
{
    OpenBook();
    form->Status->setPanelText(1, u"x"_s);
    QTest::mouseClick(View().viewport(), Qt::RightButton, Qt::NoModifier, PointOf(PlaceOf(u"words"_s)));
    EXPECT_TRUE(form->TimerPopUp->isActive());
    EXPECT_TRUE(WaitFor([this] { return form->MnRightClick->isVisible(); }));
    EXPECT_EQ(Panel(1), QString());
    EXPECT_EQ(Message(), QString());
    form->MnRightClick->close();
}

TEST_F(Events, TheBuiltInMenuAndDraggingAreCancelled)
{
    Open();
    DisplayEvent event;
    form->FileDoc_oncontextmenu(event);
    EXPECT_FALSE(event.returnValue);
    event.returnValue = true;
    form->FileDoc_ondragstart(event);
    EXPECT_FALSE(event.returnValue);
}

TEST_F(Events, TheSelectionIsKeptWhenTheFocusIsLost)
{
    OpenBook();
    const Position from = PlaceOf(u"words"_s);
    Document().setSelection(from, {from.line, from.offset + 5});
    View().setFocus();
    form->SchemaFileL->setFocus();
    EXPECT_EQ(SelectedText(), u"words"_s);
}

// ---------------------------------------------------------------- status line

TEST_F(Events, TheStatusLineShowsShiftLineColumnAndCodes)
{
    OpenBook();
    const Position place = PlaceOf(u"First"_s);
    PutCaret(place);
    ShowCaretPosition();
    EXPECT_EQ(Panel(2), u"sh:3, ln:%1, col:4, ansi:70, unicode:70"_s.arg(place.line + 1));
}

TEST_F(Events, ALineWithoutMarginHasTheShiftZero)
{
    OpenBook();
    PutCaret({0, 0});
    ShowCaretPosition();
    EXPECT_TRUE(Panel(2).startsWith(u"sh:0, ln:1, col:1, ansi:60"_s)) << Panel(2).toStdString();
}

TEST_F(Events, WithoutANodeShiftThereIsNoShiftPart)
{
    OpenBook();
    NodeShift = 0;
    PutCaret(PlaceOf(u"First"_s));
    ShowCaretPosition();
    EXPECT_TRUE(Panel(2).startsWith(u"ln:"_s)) << Panel(2).toStdString();
}

TEST_F(Events, ANonBreakingSpaceIsShownByName)
{
    std::string text = SmallBook;
    OpenBook(text.insert(text.find("words"), "\xc2\xa0"));
    PutCaret(PlaceOf(QString(QChar(u'\x7f'))));
    ShowCaretPosition();
    EXPECT_TRUE(Panel(2).endsWith(u"ansi:160 (nbsp), unicode:160 (nbsp)"_s)) << Panel(2).toStdString();
}

TEST_F(Events, CodesFrom32768UpShowNegative)
{
    std::string text = SmallBook;
    OpenBook(text.insert(text.find("words"), "\xef\xbc\xa1"));
    PutCaret(PlaceOf(u"\uff21"_s));
    ShowCaretPosition();
    EXPECT_TRUE(Panel(2).endsWith(u"unicode:-223"_s)) << Panel(2).toStdString();
}

TEST_F(Events, TheVeryEndHasNoCodes)
{
    OpenBook();
    PutCaret(Document().end());
    ShowCaretPosition();
    EXPECT_FALSE(Panel(2).contains(u"ansi"_s)) << Panel(2).toStdString();
    EXPECT_TRUE(Panel(2).startsWith(u"sh:0, ln:"_s));
}

TEST_F(Events, ASelectionEmptiesTheCaretPanel)
{
    OpenBook();
    form->Status->setPanelText(2, u"x"_s);
    const Position from = PlaceOf(u"words"_s);
    Document().setSelection(from, {from.line, from.offset + 5});
    ShowCaretPosition();
    EXPECT_EQ(Panel(2), QString());
}

TEST_F(Events, LineAndColumnChangeWithTheWindowsWidth)
{
    std::string text = SmallBook;
    std::string words;
    for (int i = 0; i < 60; ++i)
        words += "word" + std::to_string(i) + " ";
    OpenBook(text.insert(text.find("Third"), words));
    PutCaret(PlaceOf(u"word55"_s));
    const auto lineAndColumn = [this] {
        ShowCaretPosition();
        const QRegularExpressionMatch match = QRegularExpression(u"ln:(\\d+), col:(\\d+)"_s).match(Panel(2));
        return std::pair(match.captured(1).toInt(), match.captured(2).toInt());
    };
    form->resize(1600, 600);
    const auto [wideLine, wideColumn] = lineAndColumn();
    form->resize(640, 600);
    const auto [narrowLine, narrowColumn] = lineAndColumn();
    EXPECT_GT(narrowLine, wideLine);
    EXPECT_LT(narrowColumn, wideColumn);

    // In the first row of a line, no column changes.
    PutCaret(PlaceOf(u"word0 "_s));
    const auto [firstLine, firstColumn] = lineAndColumn();
    form->resize(1600, 600);
    const auto [sameLine, sameColumn] = lineAndColumn();
    EXPECT_EQ(firstColumn, sameColumn);
    EXPECT_EQ(firstColumn, 4) << "after the tag";
    EXPECT_GE(firstLine, sameLine);
}

// ---------------------------------------------------------------- positions

TEST_F(Events, TheHistoryIsClearedForEveryBook)
{
    OpenBook(LongBook());
    EXPECT_EQ(PositionCount, 1);
    EXPECT_EQ(PositionIndex, 1);
    form->RunCommand(Command::PreviousPosition);
    form->RunCommand(Command::NextPosition);
    EXPECT_EQ(beepCount, 2);
}

TEST_F(Events, AFinishedScrollEntersTheHistoryAndAJumpDoesNot)
{
    OpenBook(LongBook());
    ASSERT_TRUE(WaitFor([this] { return !form->TimerScroll->isActive(); }));
    SkipPositionRemember = false;
    View().scroll(0, 900);
    ASSERT_TRUE(WaitFor([] { return PositionCount == 2; }));
    ASSERT_TRUE(WaitFor([this] { return !form->TimerScroll->isActive(); }));
    const int there = View().scrollTop();
    form->RunCommand(Command::PreviousPosition);
    EXPECT_EQ(View().scrollTop(), 0);
    ASSERT_TRUE(WaitFor([this] { return !form->TimerScroll->isActive(); }));
    EXPECT_EQ(PositionCount, 2);
    form->RunCommand(Command::NextPosition);
    EXPECT_NEAR(View().scrollTop(), there, 2);
    EXPECT_EQ(beepCount, 0);
}

TEST_F(Events, LessThanAPixelFromTheLastEntryAddsNothing)
{
    OpenBook(LongBook());
    RememberPosition(Remember::IfMoved);
    EXPECT_EQ(PositionCount, 1);
    RememberPosition(Remember::Always);
    EXPECT_EQ(PositionCount, 2);
}

TEST_F(Events, TheFortyFirstEntryRemovesTheOldest)
{
    OpenBook(LongBook());
    std::vector<double> expected;
    for (int i = 1; i <= 41; ++i) {
        View().scroll(0, i * 20);
        RememberPosition(Remember::IfMoved);
        expected.push_back(PositionHistory[size_t(PositionIndex)]);
    }
    EXPECT_EQ(PositionCount, 40);
    EXPECT_EQ(PositionIndex, 40);
    for (size_t i = 1; i <= 40; ++i)
        EXPECT_EQ(PositionHistory[i], expected[i]) << i;
}

TEST_F(Events, APositionEnteredInTheMiddleLeavesAZeroAtTheEnd)
{
    OpenBook(LongBook());
    for (int i = 1; i <= 4; ++i) {
        View().scroll(0, i * 100);
        RememberPosition(Remember::IfMoved);
    }
    PositionIndex = 2;
    View().scroll(0, 777);
    RememberPosition(Remember::IfMoved);
    EXPECT_EQ(PositionCount, 6);
    EXPECT_EQ(PositionIndex, 3);
    EXPECT_DOUBLE_EQ(PositionHistory[3], View().scrollTop() / DocScrollHeight);
    EXPECT_EQ(PositionHistory[6], 0);
}

TEST_F(Events, AResizeKeepsTheFirstVisibleLineAndLeavesNoMarker)
{
    OpenBook(LongBook());
    View().scroll(0, 1'500);
    const int line = View().lineAt(QPoint(10, 5));
    form->resize(form->width() - 60, form->height());
    ASSERT_TRUE(WaitFor([this] { return !form->TmpBookmarkTimer->isActive(); }));
    QTest::qWait(80);
    EXPECT_TRUE(page::getElementsByName(Document(), u"()*^^^%^*"_s).empty());
    EXPECT_NEAR(View().lineAt(QPoint(10, 5)), line, 1);
}

TEST_F(Events, AtTheTopNoMarkerIsPlanted)
{
    OpenBook(LongBook());
    TemporalBookmarkSet = false;
    const QByteArray before = Document().savePage();
    SetTemporalBookmark();
    EXPECT_FALSE(TemporalBookmarkSet);
    EXPECT_EQ(Document().savePage(), before);
}

TEST_F(Events, AnEntryInTheFirstHalfOfAFullListFillsTheEndWithCopies)
{
    OpenBook(LongBook());
    for (int i = 1; i < 40; ++i) {
        View().scroll(0, i * 20);
        RememberPosition(Remember::IfMoved);
    }
    ASSERT_EQ(PositionCount, 40);
    const std::vector<double> before = PositionHistory;
    PositionIndex = 10;
    View().scroll(0, 1'111);
    RememberPosition(Remember::IfMoved);
    EXPECT_EQ(PositionCount, 40);
    EXPECT_EQ(PositionIndex, 11);
    for (size_t i = 1; i <= 10; ++i)
        EXPECT_EQ(PositionHistory[i], before[i]) << i;
    EXPECT_DOUBLE_EQ(PositionHistory[11], View().scrollTop() / DocScrollHeight);
    for (size_t i = 12; i <= 40; ++i)
        EXPECT_EQ(PositionHistory[i], before[40]) << i;
}

TEST_F(Events, AnEntryInTheSecondHalfOfAFullListRemovesTheOldest)
{
    OpenBook(LongBook());
    for (int i = 1; i < 40; ++i) {
        View().scroll(0, i * 20);
        RememberPosition(Remember::IfMoved);
    }
    const std::vector<double> before = PositionHistory;
    PositionIndex = 30;
    View().scroll(0, 1'111);
    RememberPosition(Remember::IfMoved);
    EXPECT_EQ(PositionIndex, 30);
    for (size_t i = 1; i < 30; ++i)
        EXPECT_EQ(PositionHistory[i], before[i + 1]) << i;
    EXPECT_DOUBLE_EQ(PositionHistory[30], View().scrollTop() / DocScrollHeight);
    for (size_t i = 31; i <= 40; ++i)
        EXPECT_EQ(PositionHistory[i], before[i]) << i;
}

TEST_F(Events, PlantingAndTakingOutTheMarkerAreStepsOfUndo)
{
    OpenBook(LongBook());
    const QByteArray before = Document().savePage();
    View().scroll(0, 500);
    SetTemporalBookmark();
    EXPECT_EQ(page::getElementsByName(Document(), u"()*^^^%^*"_s).size(), 1u);
    EXPECT_TRUE(BookUnchanged);
    DeleteTemporalBookmarks();
    EXPECT_EQ(Document().savePage(), before);
    ASSERT_TRUE(Document().undo());
    ASSERT_TRUE(Document().undo());
    EXPECT_FALSE(Document().canUndo());
    EXPECT_EQ(Document().savePage(), before);
}

TEST_F(Events, ARealNonBreakingSpaceIsShownByNameToo)
{
    ShowNbsp = 0;
    std::string text = SmallBook;
    OpenBook(text.insert(text.find("words"), "\xc2\xa0"));
    PutCaret(PlaceOf(QString(QChar(QChar::Nbsp))));
    ShowCaretPosition();
    EXPECT_TRUE(Panel(2).endsWith(u"ansi:160 (nbsp), unicode:160 (nbsp)"_s)) << Panel(2).toStdString();
}

TEST_F(Events, ALineInAnotherBlockHasNoShiftPart)
{
    OpenBook();
    const int line = FindLine(u"Third"_s);
    page::item(Document(), line + 1).setOuterHTML(u"<P>a paragraph</P>"_s);
    PutCaret({line, 2});
    ShowCaretPosition();
    EXPECT_TRUE(Panel(2).startsWith(u"ln:"_s)) << Panel(2).toStdString();
}

TEST_F(Events, CtrlSpaceInsertsANonBreakingSpaceAndAltSpaceABlank)
{
    OpenBook();
    const Position place = PlaceOf(u"words"_s);
    PutCaret({place.line, place.offset + 2});
    Key(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_TRUE(LineText(place.line).contains(u"wo\x7frds"_s));
    Key(Qt::Key_Space, Qt::AltModifier);
    EXPECT_TRUE(LineText(place.line).contains(u"wo\x7f rds"_s));
}

TEST_F(Events, ATripleClickTooFarFromTheStartOfATagSelectsTheWord)
{
    std::string text = SmallBook;
    const std::string name = std::string(40, 'x') + ' ' + std::string(20, 'y');
    OpenBook(text.replace(text.find("Third line."), 11, "<image l:href=\"#" + name + "\"/>"));
    const Position word = PlaceOf(QString(20, u'y'));
    Click({word.line, word.offset + 5});
    ASSERT_TRUE(WaitFor([this] { return MouseDownRange && !form->TimerTrOnMouseDown->isActive(); }));
    DoubleClick({word.line, word.offset + 5});
    Click({word.line, word.offset + 5});
    EXPECT_EQ(SelectedText(), QString(20, u'y'));
    EXPECT_FALSE(form->TimerTripleClick->isActive());
}

TEST_F(Events, AnotherBookForgetsTheLinesOfAShiftClick)
{
    OpenBook();
    DoubleClick(PlaceOf(u"words"_s));
    ASSERT_TRUE(LineAnchorRange.has_value());
    LoadAndWait(CurrentBook);
    EXPECT_FALSE(LineAnchorRange.has_value());
    PutCaret(PlaceOf(u"Third"_s));
    Click(PlaceOf(u"line."_s), Qt::ShiftModifier);
    EXPECT_EQ(SelectedText(), u"Third "_s);
}

TEST_F(Events, APasteWithoutLinesIsNotedByItsKeyAndNotByItsEntry)
{
    OpenBook();
    SetClipboardText(u"new"_s);
    PutCaret(PlaceOf(u"words"_s));
    form->Entry("uPaste")->trigger();
    EXPECT_TRUE(BookUnchanged);
    EXPECT_GE(FindLine(u"newwords"_s), 0);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_FALSE(BookUnchanged);
}

TEST_F(Events, ARangeOverAnEmptyLineIsInThatLine)
{
    OpenBook();
    PutCaret(PlaceOf(u"<p>Third"_s));
    Key(Qt::Key_Return);
    const int empty = FindLine(u"<p>Third"_s) - 1;
    ASSERT_EQ(LineText(empty), QString());
    PutCaret({empty, 0});
    EXPECT_EQ(NodeAtRangeStart(SelectionRange()), empty + 1);
    EXPECT_EQ(NodeAtRangeEnd(SelectionRange()), empty + 1);
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Escape}) {
        const QByteArray before = Document().savePage();
        const int count = Document().lineCount();
        PutCaret({empty, 0});
        Key(key);
        EXPECT_EQ(Document().lineCount(), count);
        EXPECT_EQ(Document().selection().focus, (Position{empty, 0}));
        Key(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(Document().savePage(), before);
    }
}

} // namespace
} // namespace vmk
