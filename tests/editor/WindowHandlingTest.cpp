#include "WindowTest.h"

#include "CaretStatus.h"
#include "MainWindowSeams.h"
#include "PasteRules.h"
#include "ScrollPositions.h"
#include "SettingsVariables.h"
#include "VirtualKeys.h"

#include <gmock/gmock.h>

#include <QScrollBar>
#include <QStyleOptionSlider>
#include <QWheelEvent>
#include <QWindow>

/// How the main window feels: focus, keys outside the display, the wheel, the middle button, fonts, its
/// state.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class WindowHandling : public WindowTest
{
protected:
    static std::string LongBook()
    {
        std::string paragraphs;
        for (int i = 0; i < 400; ++i)
            paragraphs += "<p>Paragraph number " + std::to_string(i) + " of a long book.</p>";
        std::string text = SmallBook;
        return text.insert(text.find("<p>Third"), paragraphs);
    }

    /// Starts the window once more.
    void Renew()
    {
        form.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        form = std::make_unique<Form1>();
    }
};

/// Another application font for its scope.
class FontScope
{
public:
    explicit FontScope(double points)
        : before(QApplication::font())
    {
        QFont large = before;
        large.setPointSizeF(points);
        QApplication::setFont(large);
    }
    FontScope(const FontScope&) = delete;
    FontScope& operator=(const FontScope&) = delete;
    ~FontScope() { QApplication::setFont(before); }

private:
    QFont before;
};

// ---------------------------------------------------------------- focus and keys

TEST_F(WindowHandling, TheFileKeysWorkWhereverTheFocusIs)
{
    OpenBook();
    QApplication::setActiveWindow(form.get());
    for (QWidget* widget :
         {static_cast<QWidget*>(form->ValidateOptL), static_cast<QWidget*>(form->SchemaFileL)}) {
        requests.clear();
        widget->setFocus();
        ASSERT_TRUE(widget->hasFocus());
        QTest::keyClick(widget, Qt::Key_F3);
        ASSERT_EQ(requests.size(), 1u) << widget->objectName().toStdString();
        EXPECT_EQ(requests[0].kind, FileDialogRequest::Open);
        ShowStatus(QString());
        QTest::keyClick(widget, Qt::Key_F4);
        EXPECT_EQ(Message(), u"file saved as: "_s + CurrentBook);
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << "F4 opens no list";
        QTest::keyClick(widget, Qt::Key_F5);
        ASSERT_EQ(requests.size(), 2u);
        EXPECT_EQ(requests[1].kind, FileDialogRequest::Save);
        QTest::keyClick(widget, Qt::Key_F3, Qt::ShiftModifier);
        EXPECT_EQ(requests.size(), 3u);
    }
}

TEST_F(WindowHandling, TheDisplayHasTheFocusAfterAChoiceInTheList)
{
    OpenBook();
    QApplication::setActiveWindow(form.get());
    form->ValidateOptL->setFocus();
    Q_EMIT form->ValidateOptL->activated(0);
    EXPECT_TRUE(View().hasFocus());
}

TEST_F(WindowHandling, TheWheelOverTheListChangesNothing)
{
    OpenBook();
    ASSERT_EQ(form->ValidateOptL->currentIndex(), 0);
    form->ValidateOptL->setFocus();
    const QPointF middle = form->ValidateOptL->rect().center();
    QWheelEvent down(middle, form->ValidateOptL->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton,
                     Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(form->ValidateOptL, &down);
    EXPECT_EQ(form->ValidateOptL->currentIndex(), 0);
}

TEST_F(WindowHandling, TheTabKeyDoesNotReachTheFieldThatIgnoresTyping)
{
    OpenBook();
    QApplication::setActiveWindow(form.get());
    View().setFocus();
    Key(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_FALSE(View().hasFocus());
    EXPECT_FALSE(form->SchemaFileL->hasFocus());
    EXPECT_FALSE(form->SchemaFileL->focusPolicy() & Qt::TabFocus);
}

// ---------------------------------------------------------------- the caret

TEST_F(WindowHandling, AnErrorIsInTheMiddleOfTheView)
{
    std::string text = LongBook();
    const size_t at = text.find("Paragraph number 200 ");
    OpenBook(text.insert(at, "<q/>"));
    form->RunCommand(Command::Validate);
    EXPECT_EQ(Document().selection().focus, PlaceOf(u"<q/>"_s));
    EXPECT_NEAR(View().caretRect().center().y(), View().clientHeight() / 2.0, 3);
    // Also for an error that is visible already.
    View().scrollBy(0, 100);
    form->RunCommand(Command::Validate);
    EXPECT_NEAR(View().caretRect().center().y(), View().clientHeight() / 2.0, 3);
}

TEST_F(WindowHandling, TheWideningAppliesToAnErrorAtTheEndTagOnly)
{
    for (const char* genre : {"<genre/>", "<genre foo=\"1\">sf</genre>", "<genre><b>x</b></genre>"}) {
        std::string text = SmallBook;
        const std::string_view right = "<genre>prose_classic</genre>";
        OpenBook(text.replace(text.find(right), right.size(), genre));
        form->RunCommand(Command::Validate);
        EXPECT_THAT(Message().toStdString(), testing::HasSubstr("Error against schema")) << genre;
        EXPECT_TRUE(SelectedText().isEmpty()) << genre << ": " << SelectedText().toStdString();
        const int line = Document().selection().focus.line;
        EXPECT_THAT(LineText(line).toStdString(), testing::AnyOf(testing::HasSubstr("genre"), "<b>x</b>"))
            << genre;
        Renew();
    }
}

TEST_F(WindowHandling, AHistoryEntryIsMadeOnlyWhenTheThumbIsReleased)
{
    OpenBook(LongBook());
    ASSERT_TRUE(WaitFor([this] { return !form->TimerScroll->isActive(); }));
    SkipPositionRemember = false;
    QScrollBar* bar = View().verticalScrollBar();
    QStyleOptionSlider option;
    option.initFrom(bar);
    option.orientation = Qt::Vertical;
    option.maximum = bar->maximum();
    option.pageStep = bar->pageStep();
    const QRect thumb
        = bar->style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, bar);
    const QPoint grip = bar->mapTo(form.get(), thumb.center());
    QTest::mousePress(form->windowHandle(), Qt::LeftButton, {}, grip);
    ASSERT_TRUE(bar->isSliderDown());
    for (int step = 1; step <= 5; ++step)
        QTest::mouseMove(form->windowHandle(), grip + QPoint(0, 30 * step));
    ASSERT_GT(View().scrollTop(), 0);
    // The timer ticks every 10 ms and makes its entry 50 ms later.
    QTest::qWait(250);
    EXPECT_EQ(PositionCount, 1);
    QTest::mouseRelease(form->windowHandle(), Qt::LeftButton, {}, grip + QPoint(0, 150));
    EXPECT_TRUE(WaitFor([] { return PositionCount == 2; }));
}

TEST_F(WindowHandling, TheReleaseAfterAPressOnTheScrollBarKeepsTheStateOfTheClicks)
{
    OpenBook(LongBook());
    PutCaret({3, 1});
    LinesSelected = true;
    TripleClickPending = true;
    DoubleClickSeen = true;
    form->Status->setPanelText(2, u"x"_s);
    DisplayEvent release;
    release.type = "mouseup"_L1;
    release.button = 1;
    release.clientX = View().clientWidth() + 3;
    release.clientY = 10;
    form->FileDoc_onmouseup(release);
    EXPECT_TRUE(LinesSelected);
    EXPECT_TRUE(TripleClickPending);
    EXPECT_FALSE(DoubleClickSeen);
    EXPECT_EQ(Panel(2), u"x"_s);
    release.button = 2;
    form->FileDoc_onmouseup(release);
    EXPECT_FALSE(form->TimerPopUp->isActive());
}

TEST_F(WindowHandling, GoToAnchorPrefersItsFirstIdAndFallsBackToAHeight)
{
    OpenBook(LongBook());
    const auto plant = [this](int line, const QString& name) {
        TextRange(Document(), {line, 0}, {line, 0}).pasteHTML(u"<A name=\""_s + name + u"\"></A>"_s);
    };
    plant(100, u"one"_s);
    plant(300, u"two"_s);
    GoToAnchor(u"one"_s, u"two"_s, 50);
    EXPECT_NEAR(View().lineAt(QPoint(10, 5)), 100, 1);
    GoToAnchor(u"none"_s, u"two"_s, 50);
    EXPECT_NEAR(View().lineAt(QPoint(10, 5)), 300, 1);
    GoToAnchor(u"none"_s, QString(), 70);
    EXPECT_EQ(View().scrollTop(), 70);
    GoToAnchor(u"none"_s, QString(), 1);
    EXPECT_EQ(View().scrollTop(), 1);
    GoToAnchor(QString(), u"none"_s, 0);
    EXPECT_EQ(View().scrollTop(), 1);
    GoToAnchor(QString(), QString(), -1);
    EXPECT_EQ(View().scrollTop(), 1);
}

// ---------------------------------------------------------------- size and fonts

TEST_F(WindowHandling, AResizeAtTheTopPlantsNoMarker)
{
    OpenBook(LongBook());
    ASSERT_TRUE(WaitFor([this] { return View().isMeasured(); }));
    ASSERT_EQ(View().scrollTop(), 0);
    TemporalBookmarkSet = false;
    const QByteArray before = Document().savePage();
    form->resize(form->width() - 60, form->height());
    EXPECT_FALSE(TemporalBookmarkSet);
    EXPECT_EQ(Document().savePage(), before);
    ASSERT_TRUE(WaitFor([this] { return !form->TmpBookmarkTimer->isActive(); }));
    EXPECT_EQ(Document().savePage(), before);
    EXPECT_FALSE(Document().canUndo());
}

TEST_F(WindowHandling, AMinimisedWindowPlantsNoMarkerOnAScrolledPage)
{
    OpenBook(LongBook());
    View().scroll(0, 1'500);
    ASSERT_GT(View().scrollTop(), 0);
    form->showMinimized();
    TemporalBookmarkSet = false;
    SkipPositionRemember = false;
    const QByteArray before = Document().savePage();
    QResizeEvent event(QSize(800, 600), form->size());
    QCoreApplication::sendEvent(form.get(), &event);
    EXPECT_FALSE(TemporalBookmarkSet);
    EXPECT_FALSE(SkipPositionRemember);
    EXPECT_EQ(Document().savePage(), before);
    // The same event in a window that is not minimised does plant one.
    form->showNormal();
    QCoreApplication::sendEvent(form.get(), &event);
    EXPECT_TRUE(TemporalBookmarkSet);
}

TEST_F(WindowHandling, ALargerDesktopFontEnlargesTheBars)
{
    OpenBook();
    const QRect small = View().geometry();
    ASSERT_EQ(form->Status->height(), 20);
    const FontScope large(24);
    ASSERT_TRUE(WaitFor([this] { return form->Status->height() > 20; }));
    for (const PanelBar* bar : {form->Status, form->StatusMsg})
        EXPECT_GE(bar->height(), bar->fontMetrics().height()) << bar->objectName().toStdString();
    EXPECT_EQ(form->StatusMsg->geometry().bottom() + 1, form->Status->y());
    EXPECT_EQ(form->Status->geometry().bottom() + 1, form->centralWidget()->height());
    EXPECT_GE(form->ValidateOptL->height(), form->ValidateOptL->fontMetrics().height());
    EXPECT_GE(form->SchemaFileL->height(), form->SchemaFileL->fontMetrics().height());
    EXPECT_GT(View().y(), small.y());
    EXPECT_GE(View().y(), form->ValidateOptL->geometry().bottom());
    EXPECT_LE(View().geometry().bottom(), form->StatusMsg->y() + 2);
}

TEST_F(WindowHandling, AMaximisedWindowComesBackMaximised)
{
    Open();
    form->PlaceForm(600, 450, 12'000, 8'100);
    const QRect normal = form->geometry();
    form->showMaximized();
    ASSERT_TRUE(WaitFor([this, normal] { return form->isMaximized() && form->width() > normal.width(); }));
    form->close();
    Renew();
    form->Load();
    EXPECT_TRUE(form->isMaximized());
    form->PlaceForm(MainFormLeft, MainFormTop, MainFormWidth, MainFormHeight);
    EXPECT_TRUE(form->isMaximized());
    form->showNormal();
    EXPECT_TRUE(WaitFor([this, normal] { return form->size() == normal.size(); }));
    form->close();
    Renew();
    form->Load();
    EXPECT_FALSE(form->isMaximized());
}

// ---------------------------------------------------------------- clipboards

TEST_F(WindowHandling, ASelectionIsOfferedToTheMiddleButton)
{
    OpenBook();
    QStringList offered;
    const SeamGuard guard(SetPrimaryTextSeam(), [&offered](const QString& text) { offered.append(text); });
    DoubleClick(PlaceOf(u"words"_s));
    ASSERT_FALSE(offered.isEmpty());
    EXPECT_EQ(offered.last(), u"<p>First words & more.</p>"_s);
    offered.clear();
    TripleClickPending = false;
    Click(PlaceOf(u"line"_s));
    EXPECT_TRUE(offered.isEmpty()) << "a caret leaves the last selection";
    Key(Qt::Key_A, Qt::ControlModifier);
    ASSERT_EQ(offered.size(), 1);
    EXPECT_TRUE(offered.last().startsWith(u"<?xml"_s));
    EXPECT_FALSE(offered.last().contains(u'\r'));
    Key(Qt::Key_Shift);
    EXPECT_EQ(offered.size(), 1) << "once for each selection";
}

TEST_F(WindowHandling, TheMiddleButtonPastesAtThePointer)
{
    OpenBook();
    const SeamGuard guard(PrimaryTextSeam(), [] { return u"two  blanks&nbsp;"_s; });
    PutCaret(PlaceOf(u"Third"_s));
    BookUnchanged = true;
    QTest::mouseClick(View().viewport(), Qt::MiddleButton, Qt::NoModifier, PointOf(PlaceOf(u"words"_s)));
    const int line = FindLine(u"two blanks"_s);
    ASSERT_GE(line, 0);
    EXPECT_THAT(
        LineText(line).toStdString(),
        testing::AnyOf("<p>First two blanks words & more.</p>", "<p>First wtwo blanks ords & more.</p>"));
    EXPECT_FALSE(BookUnchanged);
    form->RunCommand(Command::Undo);
    EXPECT_GE(FindLine(u"<p>First words & more.</p>"_s), 0);
}

TEST_F(WindowHandling, TheMiddleButtonDoesNothingOnAPageThatIsNoBook)
{
    Open();
    const SeamGuard guard(PrimaryTextSeam(), [] { return u"text"_s; });
    const QByteArray before = Document().savePage();
    QTest::mouseClick(View().viewport(), Qt::MiddleButton, Qt::NoModifier, QPoint(20, 20));
    EXPECT_EQ(Document().savePage(), before);
}

TEST_F(WindowHandling, AllOfTheBookCanBeCutAndPasted)
{
    OpenBook();
    form->RunCommand(Command::SaveFile);
    const std::string saved = ReadFileText(CurrentBook);
    const QByteArray before = Document().savePage();
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(FindLine(u"First"_s), -1);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Document().savePage(), before);
    form->RunCommand(Command::SaveFile);
    EXPECT_EQ(ReadFileText(CurrentBook), saved);
}

TEST_F(WindowHandling, PasteFromClipboardDoesNothingWithAFilledClipboard)
{
    OpenBook();
    SetClipboardText(u"<DIV>a line</DIV>"_s);
    const QByteArray before = Document().savePage();
    for (const char* name : {"uPasteFromClipboard", "Ed_PasteFromClipboard"}) {
        QAction* entry = form->Entry(name);
        entry->setVisible(true);
        entry->setEnabled(true);
        entry->trigger();
    }
    EXPECT_EQ(Document().savePage(), before);
    EXPECT_FALSE(Document().canUndo());
}

// ---------------------------------------------------------------- dialogs

TEST_F(WindowHandling, SaveAsStartsInTheBooksFolderWhenItsLastFolderIsGone)
{
    OpenBook();
    LastSaveFolder = u"c:\\"_s;
    form->RunCommand(Command::SaveFileAs);
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].folder, FolderOf(CurrentBook));
    LastSaveFolder = u"/"_s;
    form->RunCommand(Command::SaveFileAs);
    EXPECT_EQ(requests[1].folder, u"/"_s);
}

TEST_F(WindowHandling, WithoutAReaderF11SaysSo)
{
    OpenBook();
    const SeamGuard none(OpenSeam(), [](const QString&) { return false; });
    form->RunCommand(Command::ReadInHaaliReader);
    EXPECT_EQ(boxTexts, QStringList{u"no program for reading Fiction Book files found"_s});
}

TEST_F(WindowHandling, ReplacingAnotherBookHasNoAsItsDefault)
{
    OpenBook();
    std::vector<BoxKind> kinds;
    const SeamGuard box(BoxSeam(), [&kinds](BoxKind kind, const QString&, const QString&) {
        kinds.push_back(kind);
        return false;
    });
    workplace.Make(u"other.fb2"_s, "other");
    dialogAnswer = workplace.Path(u"other.fb2"_s);
    form->RunCommand(Command::SaveFileAs);
    EXPECT_EQ(kinds, std::vector{BoxKind::Confirm});
}

} // namespace
} // namespace vmk
