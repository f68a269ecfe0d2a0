#include "FindReplaceWbF.h"
#include "HistoryDropDown.h"
#include "LayoutOfWidth.h"
#include "MainWindowSeams.h"
#include "SearchField.h"
#include "WindowOffMatch.h"
#include "WindowTest.h"

#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>

#include <cstdlib>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// The bytes of a text in UTF-16.
std::string Utf16(const QString& text)
{
    return {reinterpret_cast<const char*>(text.utf16()), size_t(text.size()) * 2};
}

/// The main window with a book, and the find window over it.
class FindWindow : public WindowTest
{
protected:
    void SetUp() override { OpenBook(); }

    FindReplaceWbF& window()
    {
        if (!FindReplaceWbF::Instance()) {
            FindReplaceWbF::Show(*form);
            // The keys of the main window apply until the window is active.
            EXPECT_TRUE(QTest::qWaitForWindowActive(FindReplaceWbF::Instance()));
        }
        return *FindReplaceWbF::Instance();
    }
    void find(const QString& text)
    {
        window().FindCB->Fill(text);
        QTest::mouseClick(window().FindB, Qt::LeftButton);
    }
    void replaceAll(const QString& text, const QString& replacement)
    {
        window().FindCB->Fill(text);
        window().ReplaceCB->Fill(replacement);
        QTest::mouseClick(window().ReplaceAllB, Qt::LeftButton);
    }
    QString report() { return window().ReportL->text(); }
    /// As a user clicks.
    static void click(QAbstractButton& button)
    {
        QTest::mouseClick(&button, Qt::LeftButton, Qt::NoModifier, QPoint(8, button.height() / 2));
    }
    void closeWindow()
    {
        window().close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QString bookText() { return page::innerText(Document()); }
};

// ---------------------------------------------------------------- the main window's keys

TEST_F(FindWindow, TheMenuEntryAndTheToolbarButtonOpenTheOneWindow)
{
    EXPECT_FALSE(FindWindowOpen());
    ASSERT_TRUE(form->Entry("uFindReplace")->isEnabled());
    form->Entry("uFindReplace")->trigger();
    EXPECT_TRUE(FindWindowOpen());
    const FindReplaceWbF* first = FindReplaceWbF::Instance();
    EXPECT_EQ(first->windowTitle(), u"VMK Find/Replace"_s);
    form->ToolbarAction(u"find/replace"_s)->trigger();
    EXPECT_EQ(FindReplaceWbF::Instance(), first);
}

TEST_F(FindWindow, F3AndF4FindAndReplaceWhileItIsOpenAndOpenAndSaveOtherwise)
{
    Key(Qt::Key_F3);
    EXPECT_EQ(requests.size(), 1U);
    window().FindCB->Fill(u"line"_s);
    window().ReplaceCB->Fill(u"row"_s);
    Key(Qt::Key_F3);
    EXPECT_EQ(requests.size(), 1U);
    EXPECT_EQ(SelectedText(), u"line"_s);
    Key(Qt::Key_F4);
    EXPECT_EQ(SelectedText(), u"row"_s);
    EXPECT_GE(FindLine(u"row</strong>"_s) + FindLine(u"row here"_s), 0);
    closeWindow();
    EXPECT_FALSE(FindWindowOpen());
    Key(Qt::Key_F3);
    EXPECT_EQ(requests.size(), 2U);
}

TEST_F(FindWindow, ShiftAloneBlocksInTheFindWindowAndNotInTheMainOne)
{
    window().FindCB->Fill(u"line"_s);
    QTest::keyClick(window().FindB, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_TRUE(report().isEmpty());
    Key(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(report(), u"Found: 1 Replaced: 0"_s);
    QTest::keyClick(window().FindB, Qt::Key_F3);
    EXPECT_EQ(report(), u"Found: 2 Replaced: 0"_s);
    QTest::keyClick(window().FindB, Qt::Key_F3, Qt::ControlModifier);
    EXPECT_EQ(report(), u"Found: 2 Replaced: 0"_s);
}

TEST_F(FindWindow, F3InAFieldSearchesOnceWhenTheKeyIsReleased)
{
    window().FindCB->Fill(u"line"_s);
    QTest::keyPress(window().FindCB, Qt::Key_F3);
    EXPECT_TRUE(report().isEmpty());
    QTest::keyRelease(window().FindCB, Qt::Key_F3);
    EXPECT_EQ(report(), u"Found: 1 Replaced: 0"_s);
    // The key was not pressed in the field.
    QTest::keyRelease(window().FindCB, Qt::Key_F3);
    EXPECT_EQ(report(), u"Found: 1 Replaced: 0"_s);
}

// ---------------------------------------------------------------- searching

TEST_F(FindWindow, AnEndBeepsAndDisablesReplace)
{
    find(u"Third"_s);
    EXPECT_TRUE(window().ReplaceB->isEnabled());
    EXPECT_EQ(beepCount, 0);
    find(u"Third"_s);
    EXPECT_EQ(beepCount, 1);
    EXPECT_FALSE(window().ReplaceB->isEnabled());
    EXPECT_EQ(report(), u"Search finished. Found: 1 Replaced: 0"_s);
    click(*window().UpdateB);
    EXPECT_TRUE(report().isEmpty());
}

TEST_F(FindWindow, ANonBreakingSpaceInTheFieldFindsTheDisplaysMark)
{
    closeWindow();
    OpenBook(
        std::string(SmallBook).replace(std::string(SmallBook).find("Third line"), 10, "Third\xc2\xa0line"));
    Document().setSelection({}, {});
    find(u"Third\u00a0line"_s);
    EXPECT_EQ(report(), u"Found: 1 Replaced: 0"_s);
    EXPECT_EQ(window().FindCB->text(), u"Third\u00a0line"_s);
}

TEST_F(FindWindow, OneUndoRevertsAWholeReplaceAllWithItsMarks)
{
    const QString before = bookText();
    window().MarkReplacedB->setChecked(true);
    replaceAll(u"line"_s, u"row"_s);
    EXPECT_EQ(report(), u"Found: 2 Replaced: 2"_s);
    EXPECT_EQ(UndoSteps, 4);
    EXPECT_FALSE(BookUnchanged);
    EXPECT_EQ(beepCount, 1);
    EXPECT_EQ(window().ReplaceAllB->text(), u"replace all"_s);
    form->RunCommand(Command::Undo);
    EXPECT_EQ(bookText(), before);
    EXPECT_FALSE(Document().canUndo());
    form->RunCommand(Command::Redo);
    EXPECT_EQ(bookText().count(u"row"_s), 2);
}

TEST_F(FindWindow, TheStopButtonEndsARunThatOneUndoReverts)
{
    std::string paragraphs;
    for (int i = 0; i < 40'000; ++i)
        paragraphs += "<p>word " + std::to_string(i) + "</p>";
    std::string book = SmallBook;
    book.insert(book.find("</section>"), paragraphs);
    closeWindow();
    OpenBook(book);
    Document().setSelection({}, {});
    const QString before = bookText();
    int calls = 0;
    {
        // On a slow desktop, processing events takes longer than the interval between two calls.
        const SeamGuard guard(ProcessEventsSeam(), [&] {
            QTest::qSleep(50);
            if (++calls == 1) {
                EXPECT_EQ(window().ReplaceAllB->text(), u"stop"_s);
                EXPECT_FALSE(window().FindB->isEnabled());
                EXPECT_FALSE(window().UpdateB->isEnabled());
                // Nothing else responds.
                QTest::keyClick(form->HTMLread, Qt::Key_X);
                click(*window().RegExpB);
                click(*window().ReplaceAllB);
            }
        });
        window().MarkReplacedB->setChecked(true);
        replaceAll(u"word"_s, u"text"_s);
    }
    EXPECT_FALSE(window().RegExpB->isChecked());
    EXPECT_LE(calls, 3);
    const qsizetype replaced = bookText().count(u"text"_s);
    EXPECT_LT(replaced, 40'000);
    form->RunCommand(Command::Undo);
    EXPECT_EQ(bookText(), before);
    EXPECT_TRUE(window().FindB->isEnabled());
}

TEST_F(FindWindow, ClosedDuringARunItStopsFirst)
{
    const SeamGuard guard(ProcessEventsSeam(), [&] { window().close(); });
    replaceAll(u"line"_s, u"row"_s);
    EXPECT_FALSE(FindWindowOpen());
    EXPECT_EQ(bookText().count(u"line"_s), 2);
}

TEST_F(FindWindow, AutoFindNextSearchesAfterAReplacement)
{
    window().AutoFindNextB->setChecked(true);
    find(u"line"_s);
    window().ReplaceCB->Fill(u"row"_s);
    click(*window().ReplaceB);
    EXPECT_EQ(report(), u"Found: 2 Replaced: 1"_s);
    EXPECT_EQ(SelectedText(), u"line"_s);
    EXPECT_EQ(UndoSteps, 1);
}

TEST_F(FindWindow, RegExpModeSearchesDownwardsWithItsOwnHistories)
{
    find(u"plain"_s);
    window().UpB->setChecked(true);
    click(*window().RegExpB);
    EXPECT_TRUE(window().DownB->isChecked());
    EXPECT_FALSE(window().UpB->isEnabled());
    EXPECT_FALSE(window().WholeWordB->isEnabled());
    EXPECT_TRUE(window().ListF->entries().isEmpty());
    EXPECT_EQ(ReadFileText(HisFindFile), Utf16(u"plain\r"_s));
    click(*window().UpdateB);
    find(u"(F|S)\\w+"_s);
    EXPECT_EQ(window().ListF->entries(), QStringList{u"(F|S)\\w+"_s});
    click(*window().RegExpB);
    EXPECT_TRUE(window().UpB->isEnabled());
    EXPECT_TRUE(window().WholeWordB->isEnabled());
    EXPECT_EQ(window().ListF->entries(), QStringList{u"plain"_s});
    EXPECT_EQ(ReadFileText(HisFindRegExpFile), Utf16(u"(F|S)\\w+\r"_s));
}

TEST_F(FindWindow, ASelectionOf500PixelsIsTheTextAndOneOf501TheScope)
{
    LayoutQuery* const viewLayout = Document().layout();
    const Position at = PlaceOf(u"Second"_s);
    window().FindCB->Fill(u"text"_s);
    Document().setSelection(at, {at.line, at.offset + 6});
    for (const int width : {500, 501}) {
        LayoutOfWidth layout(width);
        Document().setLayout(&layout);
        click(*window().UpdateB);
        Document().setLayout(viewLayout);
        EXPECT_EQ(window().FindCB->text(), width == 500 ? u"Second"_s : u"text"_s);
        EXPECT_EQ(window().SelectionB->isChecked(), width == 501);
        window().FindCB->Fill(u"text"_s);
    }
}

TEST_F(FindWindow, AHitTallerThanHalfTheViewIsNotScrolledToTheMiddle)
{
    closeWindow();
    std::string paragraphs;
    QString lines;
    for (int i = 100; i < 200; ++i) {
        paragraphs += "<p>" + std::to_string(i) + "</p>";
        lines += (i > 140 && i < 160 ? u"\r<p>%1</p>"_s : i == 140 ? u"<p>%1</p>"_s : QString()).arg(i);
    }
    std::string book = SmallBook;
    book.insert(book.find("</section>"), paragraphs);
    OpenBook(book);
    form->PlaceForm(0, 0, 9'000, 5'000);
    const auto topOfHit = [&](const QString& sought) {
        Document().setSelection({}, {});
        View().scrollTo({0, 0});
        click(*window().UpdateB);
        find(sought);
        EXPECT_EQ(report(), u"Found: 1 Replaced: 0"_s);
        return page::createRange(Document()).offsetTop();
    };
    const int middle = View().offsetHeight() / 2;
    EXPECT_NEAR(topOfHit(u"<p>140</p>"_s), middle, 2);
    const int top = topOfHit(lines);
    ASSERT_GT(page::createRange(Document()).boundingHeight(), middle);
    EXPECT_GT(std::abs(top - middle), 10);
}

TEST_F(FindWindow, AShortSelectionIsTheTextAtOpening)
{
    const Position at = PlaceOf(u"Second"_s);
    Document().setSelection(at, {at.line, at.offset + 6});
    EXPECT_EQ(window().FindCB->text(), u"Second"_s);
    EXPECT_FALSE(window().SelectionB->isChecked());
}

TEST_F(FindWindow, AnotherPageStartsANewSearch)
{
    find(u"Third"_s);
    find(u"Third"_s);
    LoadAndWait(MakeBook(SmallBook, u"second.fb2"_s));
    EXPECT_TRUE(report().isEmpty());
    find(u"Third"_s);
    EXPECT_EQ(report(), u"Found: 1 Replaced: 0"_s);
}

TEST_F(FindWindow, ThePagesOfTheProgramAreNotChanged)
{
    View().setDesignMode(u"Off"_s);
    find(u"Third"_s);
    const QString before = bookText();
    replaceAll(u"Third"_s, u"x"_s);
    window().DoReplace();
    EXPECT_EQ(bookText(), before);
}

// ---------------------------------------------------------------- fields

TEST_F(FindWindow, APasteTakesTheFirstFiftyCharactersWithoutLineEnds)
{
    SetClipboardText(u"12345\r\n"_s.repeated(12));
    window().FindCB->clear();
    QTest::keyClick(window().FindCB, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(window().FindCB->text(), u"12345"_s.repeated(10));
    // At the caret.
    SetClipboardText(u"ab"_s);
    window().FindCB->setCursorPosition(1);
    QTest::keyClick(window().FindCB, Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(window().FindCB->text(), u"1ab"_s + u"12345"_s.repeated(10).mid(1));
    QTest::keyClick(window().FindCB, Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(window().FindCB->text().isEmpty());
    window().FindCB->undo();
    EXPECT_FALSE(window().FindCB->text().isEmpty());
}

TEST_F(FindWindow, APasteCutsNoPairOfSurrogates)
{
    SetClipboardText(QString(49, u'a') + u"\U0001f600"_s);
    window().FindCB->PasteIntoBox(true);
    EXPECT_EQ(window().FindCB->text(), QString(49, u'a'));
}

TEST_F(FindWindow, AFieldEmptiedByHandAcceptsAPaste)
{
    window().FindCB->Fill(u"line"_s);
    window().FindCB->selectAll();
    QTest::keyClick(window().FindCB, Qt::Key_Backspace);
    EXPECT_TRUE(window().FindCB->text().isEmpty());
    SetClipboardText(u"Third"_s);
    window().MnFind->findChild<QAction*>(u"FClearAndPaste"_s)->trigger();
    EXPECT_EQ(window().FindCB->text(), u"Third"_s);
}

TEST_F(FindWindow, EnterDoesNothingInAField)
{
    window().FindCB->Fill(u"line"_s);
    QTest::keyClick(window().FindCB, Qt::Key_Return);
    EXPECT_EQ(window().FindCB->text(), u"line"_s);
    EXPECT_TRUE(report().isEmpty());
}

TEST_F(FindWindow, ADoubleClickSelectsTheWholeField)
{
    window().FindCB->Fill(u"two words"_s);
    window().FindCB->deselect();
    QTest::mouseDClick(window().FindCB, Qt::LeftButton);
    EXPECT_EQ(window().FindCB->selectedText(), u"two words"_s);
}

TEST_F(FindWindow, ASelectionOfFiftyCharactersIsPastedAndFiftyOneAreTooLong)
{
    closeWindow();
    std::string book = SmallBook;
    book.replace(book.find("Third line."), 11, std::string(60, 'a'));
    OpenBook(book);
    const Position at = PlaceOf(QString(60, u'a'));
    window().ReplaceCB->clear();
    Document().setSelection(at, {at.line, at.offset + 51});
    click(*window().PasteToReplaceB);
    EXPECT_EQ(boxTexts, QStringList{u"too long text selected in the main window"_s});
    Document().setSelection(at, {at.line, at.offset + 50});
    click(*window().PasteToReplaceB);
    EXPECT_EQ(window().ReplaceCB->text(), QString(50, u'a'));
    PutCaret(at);
    click(*window().PasteToReplaceB);
    EXPECT_EQ(boxTexts.last(), u"no text selected in the main window"_s);
}

TEST_F(FindWindow, CharactersArePastedAsEscapesInRegExpMode)
{
    auto* hex = window().MnFind->findChild<QAction*>(u"FPasteHex"_s);
    ASSERT_TRUE(hex);
    click(*window().RegExpB);
    const Position at = PlaceOf(u"Third"_s);
    Document().setSelection(at, {at.line, at.offset + 2});
    window().FindCB->Fill(u"a"_s);
    hex->setEnabled(true);
    hex->trigger();
    EXPECT_EQ(window().FindCB->text(), u"a\\x54\\x68"_s);
}

// ---------------------------------------------------------------- lists

TEST_F(FindWindow, TheListIsUsedByKeyboard)
{
    find(u"First"_s);
    find(u"Second"_s);
    find(u"Third"_s);
    QTest::keyClick(window().FindCB, Qt::Key_Down);
    ASSERT_TRUE(window().ListF->isVisible());
    EXPECT_EQ(window().ListF->y(), window().FindCB->geometry().bottom() + 1);
    QTest::keyClick(window().ListF, Qt::Key_Down);
    QTest::keyClick(window().ListF, Qt::Key_Return);
    EXPECT_FALSE(window().ListF->isVisible());
    EXPECT_EQ(window().FindCB->text(), u"Second"_s);
}

TEST_F(FindWindow, EscapeClosesTheListAndThenTheWindow)
{
    find(u"First"_s);
    click(*window().DropF);
    ASSERT_TRUE(window().ListF->isVisible());
    QTest::keyClick(window().ListF, Qt::Key_Escape);
    EXPECT_FALSE(window().ListF->isVisible());
    EXPECT_TRUE(FindWindowOpen());
    QTest::keyClick(window().FindCB, Qt::Key_Escape);
    EXPECT_FALSE(FindWindowOpen());
}

TEST_F(FindWindow, AClickElsewhereClosesTheList)
{
    find(u"First"_s);
    click(*window().DropF);
    QTest::mouseClick(window().ReplaceCB, Qt::LeftButton);
    EXPECT_FALSE(window().ListF->isVisible());
    click(*window().DropF);
    click(*window().DropR);
    EXPECT_FALSE(window().ListF->isVisible());
    EXPECT_TRUE(window().ListR->isVisible());
    click(*window().DropR);
    EXPECT_FALSE(window().ListR->isVisible());
}

TEST_F(FindWindow, TheListClosesWhenThePointerLeavesOverTheUpperEdge)
{
    find(u"First"_s);
    click(*window().DropF);
    QTest::mouseMove(window().ListF->viewport(), QPoint(20, 0));
    EXPECT_TRUE(window().ListF->isVisible());
    QTest::mouseMove(window().ListF->viewport(), QPoint(20, 20));
    QCoreApplication::processEvents();
    QTest::mouseMove(window().ListF->viewport(), QPoint(20, 0));
    EXPECT_TRUE(WaitFor([&] { return !window().ListF->isVisible(); }));
}

TEST_F(FindWindow, HistoriesAreSavedAtClosingAndReadAtOpening)
{
    find(u"First <p>"_s);
    find(u"Second"_s);
    EXPECT_FALSE(FileExists(HisFindFile));
    closeWindow();
    EXPECT_EQ(ReadFileText(HisFindFile), Utf16(u"Second\rFirst &lt;p&gt;\r"_s));
    EXPECT_EQ(window().ListF->entries(), (QStringList{u"Second"_s, u"First <p>"_s}));
    EXPECT_EQ(window().FindCB->text(), u"Second"_s);
}

TEST_F(FindWindow, RemoveAllEmptiesTheListAndTheFileIsRemoved)
{
    find(u"First"_s);
    closeWindow();
    EXPECT_TRUE(FileExists(HisFindFile));
    window().MnHisF->findChild<QAction*>(u"FListRemoveAll"_s)->trigger();
    EXPECT_TRUE(window().ListF->entries().isEmpty());
    closeWindow();
    EXPECT_FALSE(FileExists(HisFindFile));
}

TEST_F(FindWindow, AListIsSavedAndLoadedWithTheFileTypeOfItsMode)
{
    auto* saveAs = window().MnHisF->findChild<QAction*>(u"FListSaveAs"_s);
    window().MnHisF->findChild<QAction*>(u"FListRemoveAll"_s)->trigger();
    saveAs->trigger();
    EXPECT_EQ(boxTexts, QStringList{u"list is empty, no sence to save"_s});
    find(u"First"_s);
    dialogAnswer = workplace.Path(u"mine.txt"_s);
    saveAs->trigger();
    ASSERT_FALSE(requests.empty());
    EXPECT_EQ(requests.back().title, u"Save history to file"_s);
    EXPECT_EQ(requests.back().filter, u"find history (*.hf)|*.hf|"_s);
    const QString saved = workplace.Path(u"mine.hf"_s);
    EXPECT_EQ(ReadFileText(saved), Utf16(u"First\r"_s));
    // Replaced only on Yes.
    find(u"Second"_s);
    saveAs->trigger();
    EXPECT_EQ(boxTexts.last(), u"File exists:\r\n"_s + saved + u"\r\nReplace?"_s);
    EXPECT_EQ(ReadFileText(saved), Utf16(u"First\r"_s));
    boxAnswer = true;
    saveAs->trigger();
    EXPECT_EQ(ReadFileText(saved), Utf16(u"Second\rFirst\r"_s));
    click(*window().RegExpB);
    dialogAnswer = saved;
    window().MnHisF->findChild<QAction*>(u"FListLoad"_s)->trigger();
    EXPECT_EQ(requests.back().filter, u"find history (RegExp) (*.rghf)|*.rghf|"_s);
    EXPECT_EQ(window().ListF->entries(), (QStringList{u"Second"_s, u"First"_s}));
}

TEST_F(FindWindow, ClosingTheMainWindowSavesTheHistories)
{
    find(u"First"_s);
    form->close();
    EXPECT_EQ(ReadFileText(HisFindFile), Utf16(u"First\r"_s));
}

// ---------------------------------------------------------------- the window itself

TEST_F(FindWindow, ItsHeightIsFixedAndTheWidthGoesToTheFields)
{
    const QSize size = window().size();
    const int field = window().FindCB->width();
    const int button = window().FindB->x();
    window().resize(size.width() + 100, size.height() + 50);
    EXPECT_EQ(window().height(), size.height());
    QCoreApplication::processEvents();
    EXPECT_EQ(window().FindCB->width(), field + 100);
    EXPECT_EQ(window().FindB->x(), button + 100);
    window().resize(10, 10);
    EXPECT_EQ(window().size(), size);
}

TEST_F(FindWindow, HelpIsShownDisabled)
{
    EXPECT_FALSE(window().HelpB->isEnabled());
    EXPECT_EQ(window().HelpB->text(), u"help"_s);
}

TEST(FindWindowPlacing, ItMovesToTheNearerSideOfAHit)
{
    WindowOverMatch position{{100, 300, 400, 200}, {150, 350, 50, 20}, {1000, 800}, {1, 1}, 25};
    // Above: 350 - 210 = 140, below: 380, which is nearer to 300.
    EXPECT_EQ(TopOffMatch(position), 380);
    position.match = {150, 480, 50, 20};
    EXPECT_EQ(TopOffMatch(position), 270);
}

TEST(FindWindowPlacing, ItIsNotMovedIfItCoversNothing)
{
    WindowOverMatch position{{100, 300, 400, 200}, {150, 100, 50, 20}, {1000, 800}, {1, 1}, 25};
    EXPECT_EQ(TopOffMatch(position), std::nullopt);
    position.match = {600, 350, 50, 20};
    EXPECT_EQ(TopOffMatch(position), std::nullopt);
    // The vertical margin counts.
    position.match = {150, 510, 50, 20};
    EXPECT_TRUE(TopOffMatch(position));
}

TEST(FindWindowPlacing, ItIsNotMovedWithoutRoom)
{
    const WindowOverMatch position{{0, 0, 400, 700}, {10, 10, 50, 740}, {1000, 800}, {1, 1}, 25};
    EXPECT_EQ(TopOffMatch(position), std::nullopt);
}

TEST(FindWindowPlacing, ItDoesNotLeaveTheScreenAtTheBottom)
{
    const WindowOverMatch position{{0, 0, 400, 200}, {10, 100, 50, 550}, {1000, 800}, {1, 1}, 25};
    EXPECT_EQ(TopOffMatch(position), 600);
}

} // namespace
} // namespace vmk
