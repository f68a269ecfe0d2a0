#include "CleanUpF.h"
#include "CleanUpGrid.h"
#include "CleanUpModel.h"
#include "FileDrops.h"
#include "SaveBook.h"
#include "SettingsVariables.h"
#include "UndoCommands.h"
#include "WindowTest.h"

#include <QHeaderView>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>

#include <gmock/gmock.h>

namespace vmk {

void PrintTo(const CleanUpRow& row, std::ostream* out)
{
    *out << TextOfRows({row}).toStdString();
}

namespace {

using namespace Qt::StringLiterals;

class BookCleaner : public WindowTest
{
protected:
    BookCleaner() { qputenv("VELLUMARK_CODEPAGE", "1251"); }
    ~BookCleaner() override
    {
        if (CleanUpF::Instance())
            CleanUpF::Instance()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        qunsetenv("VELLUMARK_CODEPAGE");
    }

public:
    BookCleaner(const BookCleaner&) = delete;
    BookCleaner& operator=(const BookCleaner&) = delete;

protected:
    CleanUpF& OpenCleaner()
    {
        form->Entry("uBookCleaner")->trigger();
        EXPECT_NE(CleanUpF::Instance(), nullptr);
        return *CleanUpF::Instance();
    }
    static CleanUpModel& Model()
    {
        return *static_cast<CleanUpModel*>(CleanUpF::Instance()->ListDH->model());
    }
    static const std::vector<CleanUpRow>& Rows() { return Model().Rows(); }
    static QPoint CellPoint(int row, int column)
    {
        return CleanUpF::Instance()->ListDH->visualRect(Model().index(row, column)).center();
    }
    static void ClickCell(int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(CleanUpF::Instance()->ListDH->viewport(), Qt::LeftButton, modifiers,
                          CellPoint(row, column));
    }
    static void TypeInCell(const QString& text)
    {
        auto* editor = CleanUpF::Instance()->ListDH->viewport()->findChild<QLineEdit*>();
        ASSERT_NE(editor, nullptr);
        editor->selectAll();
        editor->insert(text);
    }
    /// Sends a key to where the focus is: the open editor, or else the grid.
    static void GridKey(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        CleanUpGrid* grid = CleanUpF::Instance()->ListDH;
        QWidget* editor = grid->viewport()->findChild<QLineEdit*>();
        QTest::keyClick(editor ? editor : grid, key, modifiers);
        // Enter takes effect, and a closed editor is deleted, later.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    static void AddRow(const QString& what, const QString& by)
    {
        QTest::mouseClick(CleanUpF::Instance()->AddB, Qt::LeftButton);
        TypeInCell(what);
        GridKey(Qt::Key_Tab);
        TypeInCell(by);
        GridKey(Qt::Key_Return);
    }
    QString MakeTable(const QString& name, const std::vector<CleanUpRow>& rows,
                      const QString& where = u"whole book"_s) const
    {
        QString path = UserCleanUpFolder + u'/' + name;
        EXPECT_TRUE(WriteFileText(path, CleanUpFileBytes({where, rows})));
        return path;
    }
    static std::optional<CleanUpTable> TableOf(const QString& path)
    {
        return CleanUpTableOfBytes(ReadFileText(path));
    }
    void TriggerMenu(int row, const char* entry)
    {
        CleanUpF& cleaner = *CleanUpF::Instance();
        const QPoint at = row >= 0 ? CellPoint(row, 0) : QPoint(5, cleaner.ListDH->viewport()->height() - 5);
        Q_EMIT cleaner.ListDH->menuWanted(cleaner.ListDH->viewport()->mapToGlobal(at), row);
        cleaner.MnuCLeanUp->findChild<QAction*>(QLatin1StringView(entry))->trigger();
        cleaner.MnuCLeanUp->hide();
    }
};

const CleanUpRow One = {u"one"_s, u"1"_s};
const CleanUpRow Two = {u"two"_s, u"2"_s};
const CleanUpRow Three = {u"three"_s, u"3"_s};

TEST_F(BookCleaner, OpensOnceWithTheGivenControls)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    EXPECT_EQ(&OpenCleaner(), &cleaner);
    EXPECT_EQ(cleaner.windowTitle(), u" Book Cleaner"_s);
    EXPECT_EQ(cleaner.CleanWhere->currentText(), u"whole book"_s);
    EXPECT_EQ(cleaner.RemoveB->text(), u"remove"_s);
    EXPECT_EQ(cleaner.RemoveAllB->text(), u"remove all"_s);
    EXPECT_EQ(cleaner.SaveAsB->text(), u"save as"_s);
    EXPECT_EQ(cleaner.ApplyB->text(), u"apply"_s);
    QStringList captions;
    for (int column = 0; column < CleanUpColumnCount; ++column)
        captions += Model().headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    EXPECT_EQ(captions, QStringList({u"replace what"_s, u"replace by"_s, u"case"_s, u"RegExp"_s, u"use"_s}));
}

TEST_F(BookCleaner, RowsTypedByKeysAreAppliedToTheBook)
{
    OpenBook();
    OpenCleaner();
    AddRow(u"line"_s, u"\"row\""_s);
    ASSERT_EQ(Rows().size(), 1U);
    EXPECT_EQ(Rows()[0], (CleanUpRow{u"line"_s, u"\"row\""_s}));
    QTest::mouseClick(CleanUpF::Instance()->ApplyB, Qt::LeftButton);
    EXPECT_GE(FindLine(u"Third \"row\"."_s), 0);
    EXPECT_EQ(Message(), u"user-defined replacements done"_s);
    EXPECT_EQ(soundNames.last(), u"NoParseError.wav"_s);
    UndoEdit();
    EXPECT_GE(FindLine(u"Third line."_s), 0);
}

TEST_F(BookCleaner, AnOpenEditorCountsWhenTheTableIsApplied)
{
    OpenBook();
    OpenCleaner();
    AddRow(u"line"_s, u"x"_s);
    ClickCell(0, RepByColumn);
    TypeInCell(u"y"_s);
    QTest::mouseClick(CleanUpF::Instance()->ApplyB, Qt::LeftButton);
    EXPECT_GE(FindLine(u"Third y."_s), 0);
}

TEST_F(BookCleaner, ShowsTheOutcomeOfEachRow)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"t.dat"_s,
                                   {{u"line"_s, u"x"_s},
                                    {u"(a"_s, u""_s, false, true},
                                    {u"zzz"_s, u""_s},
                                    {u"line"_s, u""_s, false, false, false}});
    cleaner.ReloadCleanUpFile();
    QTest::mouseClick(cleaner.ApplyB, Qt::LeftButton);
    const auto header
        = [](int row) { return Model().headerData(row, Qt::Vertical, Qt::DisplayRole).toString(); };
    EXPECT_EQ(header(0), u"2"_s);
    EXPECT_EQ(header(1), u"!"_s);
    EXPECT_EQ(header(2), u"0"_s);
    EXPECT_EQ(header(3), u"\u2013"_s);
    EXPECT_THAT(Model().index(1, 0).data(Qt::ToolTipRole).toString().toStdString(),
                testing::HasSubstr("not a valid regular expression"));
}

TEST_F(BookCleaner, APageWithoutLinesIsReportedAsFailedAndAsDone)
{
    OpenBook();
    Document().loadPage("<HTML><BODY></BODY></HTML>");
    OpenCleaner();
    soundNames.clear();
    QTest::mouseClick(CleanUpF::Instance()->ApplyB, Qt::LeftButton);
    EXPECT_EQ(Message(), u"user-defined replacements done"_s);
    EXPECT_EQ(soundNames, QStringList({u"ParseError.wav"_s, u"NoParseError.wav"_s}));
}

TEST_F(BookCleaner, APageOfTheProgramIsReportedAsFailedAndKeepsItsText)
{
    OpenBook();
    View().setDesignMode(u"Off"_s);
    const QByteArray before = Document().savePage();
    OpenCleaner();
    AddRow(u"line"_s, u"x"_s);
    soundNames.clear();
    BookUnchanged = true;
    QTest::mouseClick(CleanUpF::Instance()->ApplyB, Qt::LeftButton);
    EXPECT_EQ(Document().savePage(), before);
    EXPECT_TRUE(BookUnchanged);
    EXPECT_EQ(soundNames, QStringList({u"ParseError.wav"_s, u"NoParseError.wav"_s}));
}

TEST_F(BookCleaner, OneClickOrTheSpaceBarTogglesACheckBox)
{
    OpenBook();
    OpenCleaner();
    AddRow(u"a"_s, u"b"_s);
    ClickCell(0, CaseColumn);
    EXPECT_TRUE(Rows()[0].Case);
    ClickCell(0, RegExpColumn);
    EXPECT_TRUE(Rows()[0].RegExp);
    GridKey(Qt::Key_Space);
    EXPECT_FALSE(Rows()[0].RegExp);
    ClickCell(0, EnabledColumn);
    EXPECT_FALSE(Rows()[0].Enabled);
}

TEST_F(BookCleaner, TabMovesThroughTheCellsAndAddsARowAtTheEnd)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    AddRow(u"a"_s, u"b"_s);
    ClickCell(0, RepWhatColumn);
    for (int column = 1; column < CleanUpColumnCount; ++column) {
        GridKey(Qt::Key_Tab);
        EXPECT_EQ(cleaner.ListDH->currentIndex().column(), column);
    }
    GridKey(Qt::Key_Tab);
    EXPECT_EQ(Rows().size(), 2U);
    EXPECT_EQ(cleaner.ListDH->currentIndex(), Model().index(1, RepWhatColumn));
    GridKey(Qt::Key_Backtab);
    EXPECT_EQ(cleaner.ListDH->currentIndex(), Model().index(0, EnabledColumn));
}

TEST_F(BookCleaner, CtrlAndShiftSelectABlockOfRowsThatRemoveDeletes)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"t.dat"_s, {One, Two, Three, One, Two});
    cleaner.ReloadCleanUpFile();
    ClickCell(1, RepWhatColumn, Qt::ControlModifier);
    EXPECT_EQ(cleaner.ListDH->Block().first, 1);
    EXPECT_EQ(cleaner.ListDH->Block().count, 1);
    ClickCell(3, RepWhatColumn, Qt::ShiftModifier);
    EXPECT_EQ(cleaner.ListDH->Block().count, 3);
    QTest::mouseClick(cleaner.RemoveB, Qt::LeftButton);
    EXPECT_EQ(Rows(), std::vector<CleanUpRow>({One, Two}));
}

TEST_F(BookCleaner, ABlockCanExtendUpwards)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"t.dat"_s, {One, Two, Three});
    cleaner.ReloadCleanUpFile();
    ClickCell(2, RepWhatColumn, Qt::ControlModifier);
    ClickCell(1, RepWhatColumn, Qt::ShiftModifier);
    EXPECT_EQ(cleaner.ListDH->Block().first, 1);
    EXPECT_EQ(cleaner.ListDH->Block().count, 2);
}

TEST_F(BookCleaner, APlainClickEndsABlockAndShiftWithoutOneIsAPlainClick)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"t.dat"_s, {One, Two, Three});
    cleaner.ReloadCleanUpFile();
    ClickCell(0, RepWhatColumn, Qt::ShiftModifier);
    EXPECT_EQ(cleaner.ListDH->Block().count, 0);
    ClickCell(0, RepWhatColumn, Qt::ControlModifier);
    ClickCell(1, CaseColumn);
    EXPECT_EQ(cleaner.ListDH->Block().count, 0);
}

TEST_F(BookCleaner, TheMenuAddsAndRemovesAtItsRow)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"t.dat"_s, {One, Two});
    cleaner.ReloadCleanUpFile();
    TriggerMenu(1, "MnAddBefore");
    EXPECT_EQ(Rows(), std::vector<CleanUpRow>({One, CleanUpRow(), Two}));
    TriggerMenu(2, "MnAddAfter");
    EXPECT_EQ(Rows(), std::vector<CleanUpRow>({One, CleanUpRow(), Two, CleanUpRow()}));
    TriggerMenu(0, "MnRemove");
    EXPECT_EQ(Rows(), std::vector<CleanUpRow>({CleanUpRow(), Two, CleanUpRow()}));
    TriggerMenu(1, "MnAdd");
    EXPECT_EQ(Rows().size(), 4U);
    EXPECT_EQ(Rows().back(), CleanUpRow());
}

TEST_F(BookCleaner, OnTheCaptionsTheMenuDoesNotAddBesideOrRemove)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"t.dat"_s, {One, Two});
    cleaner.ReloadCleanUpFile();
    for (const char* entry : {"MnAddBefore", "MnAddAfter", "MnRemove"}) {
        TriggerMenu(-1, entry);
        EXPECT_EQ(Rows(), std::vector<CleanUpRow>({One, Two})) << entry;
    }
}

TEST_F(BookCleaner, AllRowsAreCheckedUncheckedAndRemovedByTheMenu)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"t.dat"_s, {One, Two});
    cleaner.ReloadCleanUpFile();
    TriggerMenu(0, "MnUnCheckAll");
    EXPECT_FALSE(Rows()[0].Enabled || Rows()[1].Enabled);
    TriggerMenu(0, "MnCheckAll");
    EXPECT_TRUE(Rows()[0].Enabled && Rows()[1].Enabled);
    TriggerMenu(0, "MnRemoveAll");
    EXPECT_TRUE(Rows().empty());
}

TEST_F(BookCleaner, UndoRestoresARemovedRow)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"t.dat"_s, {One, Two});
    cleaner.ReloadCleanUpFile();
    TriggerMenu(0, "MnRemoveAll");
    GridKey(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Rows(), std::vector<CleanUpRow>({One, Two}));
}

TEST_F(BookCleaner, RowsAreCopiedAndPasted)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    const CleanUpRow odd = {u"a\t\"b\"\u00a0"_s, u" "_s, true, true, false};
    CurrentCleanUpFile = MakeTable(u"t.dat"_s, {One, odd, Two});
    cleaner.ReloadCleanUpFile();
    QString clipboard;
    const SeamGuard set(SetClipboardTextSeam(), [&clipboard](const QString& text) { clipboard = text; });
    const SeamGuard get(ClipboardTextSeam(), [&clipboard] { return clipboard; });
    ClickCell(0, RepWhatColumn, Qt::ControlModifier);
    ClickCell(1, RepWhatColumn, Qt::ShiftModifier);
    GridKey(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard, u"one\t1\t0\t0\t1\n\"a\t\"\"b\"\"\u00a0\"\t \t1\t1\t0\n"_s);
    GridKey(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Rows(), std::vector<CleanUpRow>({One, odd, One, odd, Two}));
}

TEST_F(BookCleaner, SaveWritesTheOpenFile)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"t.dat"_s, {One});
    cleaner.ReloadCleanUpFile();
    EXPECT_EQ(cleaner.windowTitle(), u"t.dat "_s);
    AddRow(u"\"quoted\" \u00a0"_s, u"\u2014"_s);
    cleaner.CleanWhere->setCurrentText(u"from cursor up"_s);
    QTest::mouseClick(cleaner.SaveB, Qt::LeftButton);
    const CleanUpTable expected = {u"from cursor up"_s, {One, {u"\"quoted\" \u00a0"_s, u"\u2014"_s}}};
    EXPECT_EQ(TableOf(CurrentCleanUpFile), expected);
}

TEST_F(BookCleaner, SaveWithoutAnOpenFileWritesNothing)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    AddRow(u"a"_s, u"b"_s);
    const QStringList before = workplace.Names(u"VMK Office/UserCleanUp"_s);
    QTest::mouseClick(cleaner.SaveB, Qt::LeftButton);
    EXPECT_EQ(workplace.Names(u"VMK Office/UserCleanUp"_s), before);
    EXPECT_TRUE(requests.empty());
}

TEST_F(BookCleaner, SaveAsAsksBeforeItReplacesAFile)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    AddRow(u"a"_s, u"b"_s);
    dialogAnswer = MakeTable(u"old.dat"_s, {One});
    boxAnswer = false;
    QTest::mouseClick(cleaner.SaveAsB, Qt::LeftButton);
    ASSERT_EQ(boxTexts.size(), 1);
    EXPECT_EQ(boxTexts[0], dialogAnswer + u" exists\r\nDo you want to replace it?"_s);
    EXPECT_EQ(TableOf(dialogAnswer)->rows, std::vector<CleanUpRow>({One}));
    EXPECT_EQ(CurrentCleanUpFile, QString());
    EXPECT_EQ(requests[0].title, u"Save CleanUp file as"_s);
    EXPECT_EQ(requests[0].filter, u"CleanUp Files (*.dat)|*.dat|"_s);
    EXPECT_EQ(requests[0].folder, UserCleanUpFolder);

    boxAnswer = true;
    QTest::mouseClick(cleaner.SaveAsB, Qt::LeftButton);
    EXPECT_EQ(TableOf(dialogAnswer)->rows, std::vector<CleanUpRow>({{u"a"_s, u"b"_s}}));
    EXPECT_EQ(cleaner.windowTitle(), u" Book Cleaner: old.dat"_s);
    EXPECT_EQ(CurrentCleanUpFile, dialogAnswer);
}

TEST_F(BookCleaner, ABadSignatureKeepsTheTableAndItsFile)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"good.dat"_s, {One});
    cleaner.ReloadCleanUpFile();
    const QString good = CurrentCleanUpFile;
    workplace.Make(u"bad.dat"_s, "<a> <b>");
    dialogAnswer = workplace.Path(u"bad.dat"_s);
    QTest::mouseClick(cleaner.LoadB, Qt::LeftButton);
    EXPECT_EQ(boxTexts, QStringList{u"cannot load file: bad file signature"_s});
    EXPECT_EQ(Rows(), std::vector<CleanUpRow>({One}));
    QTest::mouseClick(cleaner.SaveB, Qt::LeftButton);
    EXPECT_EQ(ReadFileText(dialogAnswer), "<a> <b>");
    EXPECT_EQ(CurrentCleanUpFile, good);
}

TEST_F(BookCleaner, ADroppedFileIsLoadedAfterTheDrop)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    const QString path = MakeTable(u"dropped.dat"_s, {Two}, u"selected fragment"_s);
    EXPECT_TRUE(DropFile(*cleaner.ListDH->viewport(), path));
    EXPECT_TRUE(Rows().empty());
    ASSERT_TRUE(WaitFor([] { return Rows().size() == 1; }));
    EXPECT_EQ(CurrentCleanUpFile, path);
    EXPECT_EQ(cleaner.windowTitle(), u"dropped.dat "_s);
    EXPECT_EQ(cleaner.CleanWhere->currentText(), u"selected fragment"_s);
}

TEST_F(BookCleaner, ADroppedFileWithABadSignatureKeepsTheTable)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    CurrentCleanUpFile = MakeTable(u"good.dat"_s, {One});
    cleaner.ReloadCleanUpFile();
    workplace.Make(u"bad.dat"_s, "no table");
    EXPECT_TRUE(DropFile(*cleaner.ListDH->viewport(), workplace.Path(u"bad.dat"_s)));
    ASSERT_TRUE(WaitFor([this] { return !boxTexts.isEmpty(); }));
    EXPECT_EQ(boxTexts, QStringList{u"cannot load file: bad file signature"_s});
    EXPECT_EQ(Rows(), std::vector<CleanUpRow>({One}));
    EXPECT_EQ(cleaner.windowTitle(), u"good.dat "_s);
}

TEST_F(BookCleaner, OnlyLocalFilesCanBeDropped)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    EXPECT_FALSE(DropUrls(*cleaner.ListDH->viewport(), {QUrl(u"https://example.org/t.dat"_s)}));
    EXPECT_FALSE(cleaner.TimerWBDrop->isActive());
}

TEST_F(BookCleaner, AllColumnsAreVisibleWithALargeFont)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    QFont large = cleaner.ListDH->horizontalHeader()->font();
    large.setPointSize(22);
    cleaner.ListDH->horizontalHeader()->setFont(large);
    cleaner.ListDH->FitColumns();
    int columns = 0;
    for (int column = 0; column < CleanUpColumnCount; ++column)
        columns += cleaner.ListDH->columnWidth(column);
    EXPECT_LE(columns, cleaner.ListDH->viewport()->width());
}

TEST_F(BookCleaner, DeletingTheOpenFileLeavesAnEmptyTableWithoutAName)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    const QString other = MakeTable(u"other.dat"_s, {Two});
    CurrentCleanUpFile = MakeTable(u"open.dat"_s, {One});
    cleaner.ReloadCleanUpFile();
    dialogAnswer = other;
    cleaner.DeleteCleanUpFiles();
    EXPECT_FALSE(FileExists(other));
    EXPECT_EQ(Rows().size(), 1U);
    dialogAnswer = CurrentCleanUpFile;
    cleaner.DeleteCleanUpFiles();
    EXPECT_FALSE(FileExists(dialogAnswer));
    EXPECT_TRUE(Rows().empty());
    EXPECT_EQ(CurrentCleanUpFile, QString());
    EXPECT_EQ(cleaner.windowTitle(), u" Book Cleaner"_s);
}

TEST_F(BookCleaner, ResizingKeepsTypedText)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    AddRow(u"a"_s, u"b"_s);
    ClickCell(0, RepWhatColumn);
    TypeInCell(u"typed"_s);
    const int before = cleaner.ListDH->columnWidth(RepWhatColumn);
    cleaner.resize(cleaner.width() + 200, cleaner.height());
    QCoreApplication::processEvents();
    EXPECT_EQ(cleaner.ListDH->columnWidth(RepWhatColumn), before + 100);
    GridKey(Qt::Key_Return);
    EXPECT_EQ(Rows()[0].RepWhat, u"typed"_s);
}

TEST_F(BookCleaner, UnsavedRowsAreKeptWhenTheWindowCloses)
{
    OpenBook();
    OpenCleaner();
    AddRow(u"precious"_s, u"row"_s);
    CleanUpF::Instance()->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const QString kept = UserCleanUpFolder + u"/Unsaved table.dat"_s;
    ASSERT_TRUE(FileExists(kept));
    EXPECT_EQ(Message(), u"rows that were not saved are kept in \"Unsaved table.dat\""_s);

    CleanUpF& again = OpenCleaner();
    EXPECT_EQ(Message(), u"rows that were not saved are kept: load \"Unsaved table.dat\""_s);
    dialogAnswer = kept;
    QTest::mouseClick(again.LoadB, Qt::LeftButton);
    EXPECT_EQ(Rows(), std::vector<CleanUpRow>({{u"precious"_s, u"row"_s}}));
}

TEST_F(BookCleaner, SavedRowsLeaveNoRecoveryCopy)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    AddRow(u"a"_s, u"b"_s);
    ASSERT_TRUE(WaitFor([] { return FileExists(UserCleanUpFolder + u"/Unsaved table.dat"_s); }));
    dialogAnswer = UserCleanUpFolder + u"/mine"_s;
    QTest::mouseClick(cleaner.SaveAsB, Qt::LeftButton);
    EXPECT_TRUE(FileExists(UserCleanUpFolder + u"/mine.dat"_s));
    EXPECT_FALSE(FileExists(UserCleanUpFolder + u"/Unsaved table.dat"_s));
}

TEST_F(BookCleaner, LoadingAnotherTableKeepsTheUnsavedRows)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    AddRow(u"precious"_s, u"row"_s);
    dialogAnswer = MakeTable(u"t.dat"_s, {One});
    QTest::mouseClick(cleaner.LoadB, Qt::LeftButton);
    EXPECT_EQ(Rows(), std::vector<CleanUpRow>({One}));
    EXPECT_EQ(TableOf(UserCleanUpFolder + u"/Unsaved table.dat"_s)->rows,
              std::vector<CleanUpRow>({{u"precious"_s, u"row"_s}}));
}

TEST_F(BookCleaner, TheFontIsChosenInADialog)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    const SeamGuard font(FontDialogSeam(), [](const FontDialogRequest& request) {
        EXPECT_EQ(request.title, u"Change viewer font"_s);
        EXPECT_EQ(request.current, (FontChoice{u"Ms Sans Serif"_s, 9, true, false}));
        return FontChoice{u"DejaVu Sans"_s, 14, false, false};
    });
    cleaner.ChangeCleanUpFont();
    EXPECT_EQ(CleanUpFontSize, 14);
    EXPECT_EQ(cleaner.ListDH->font().pointSize(), 14);
    EXPECT_FALSE(cleaner.ListDH->font().bold());
}

TEST_F(BookCleaner, ASelectionInTheBookSetsTheScope)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    NoteSelectionForCleaner(false);
    EXPECT_EQ(cleaner.CleanWhere->currentText(), u"whole book"_s);
    const Position at = PlaceOf(u"Third"_s);
    Document().setSelection(at, {at.line, at.offset + 5});
    DisplayEvent event;
    form->FileDoc_onfocusout(event);
    EXPECT_EQ(cleaner.CleanWhere->currentText(), u"selected fragment"_s);
}

TEST_F(BookCleaner, TheWindowAndTheCompanionWriteTheSameBytes)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    const QString table
        = MakeTable(u"t.dat"_s, {{u"line"_s, u"<b>row</b>"_s}, {u"(F)(irst)"_s, u"$2$1"_s, true, true}});
    CurrentCleanUpFile = table;
    cleaner.ReloadCleanUpFile();
    QTest::mouseClick(cleaner.ApplyB, Qt::LeftButton);
    const QString saved = workplace.Path(u"saved.fb2"_s);
    ASSERT_TRUE(SaveBook(saved, SaveReport::None));

    const QString book = MakeBook(SmallBook, u"again.fb2"_s);
    const QString cleaned = workplace.Path(u"cleaned.fb2"_s);
    EXPECT_EQ(QProcess::execute(QStringLiteral(VMK_BIN_DIR "/vmk"),
                                {u"clean"_s, u"--table"_s, table, book, u"--out"_s, cleaned}),
              0);
    EXPECT_EQ(ReadFileText(saved), ReadFileText(cleaned));
    EXPECT_THAT(ReadFileText(saved), testing::HasSubstr("irstF"));
}

TEST_F(BookCleaner, EscapeClosesTheWindow)
{
    OpenBook();
    CleanUpF& cleaner = OpenCleaner();
    QTest::keyClick(cleaner.ListDH, Qt::Key_Escape);
    EXPECT_TRUE(WaitFor([] { return CleanUpF::Instance() == nullptr; }));
}

TEST(CleanUpRowsAsText, TextThatIsNoRowsGivesNone)
{
    EXPECT_TRUE(RowsOfText(u"just a text"_s).empty());
    EXPECT_TRUE(RowsOfText(u"a\tb\nc"_s).empty());
    EXPECT_TRUE(RowsOfText(QString()).empty());
    EXPECT_EQ(RowsOfText(u"a\tb"_s), std::vector<CleanUpRow>({{u"a"_s, u"b"_s}}));
    EXPECT_EQ(RowsOfText(u"\"a\nb\"\tc\t1\r\nd\te"_s),
              std::vector<CleanUpRow>({{u"a b"_s, u"c"_s, true}, {u"d"_s, u"e"_s}}));
}

} // namespace
} // namespace vmk
