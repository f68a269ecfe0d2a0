#include "WindowTest.h"

#include "FbFunctions.h"
#include "FileDrops.h"
#include "FileNames.h"
#include "FilePaths.h"
#include "MainWindowSeams.h"
#include "SaveBook.h"
#include "SettingsVariables.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QScrollBar>
#include <QTreeWidget>

#include <sys/stat.h>

/// A book in the window: open, show, validate, save.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

std::string Replaced(std::string text, std::string_view sought, std::string_view replacement)
{
    const size_t found = text.find(sought);
    EXPECT_NE(found, std::string::npos) << sought;
    return text.replace(found, sought.size(), replacement);
}

class WholeBook : public WindowTest
{
};

// ---------------------------------------------------------------- loading

TEST_F(WholeBook, ALoadedBookIsCompleteAndEditable)
{
    OpenBook();
    EXPECT_EQ(View().designMode(), u"On"_s);
    EXPECT_EQ(form->windowTitle(), u" VMK: book.fb2"_s);
    EXPECT_EQ(CurrentBook, workplace.Path(u"book.fb2"_s));
    EXPECT_EQ(LastBookFolder, workplace.Folder() + u'/');
    EXPECT_EQ(soundNames, QStringList{u"DocComplete.wav"_s});
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_TRUE(BookUnchanged);
    EXPECT_FALSE(LoadingByProgram);
    EXPECT_GE(FindLine(u"<p>First words & more.</p>"_s), 0);
}

TEST_F(WholeBook, ThePanelShowsTheFilesLengthInGroups)
{
    OpenBook();
    EXPECT_EQ(Panel(3), u"file len:%1"_s.arg(std::size(SmallBook) - 1));
    LoadAndWait(MakeBook(std::string(SmallBook) + std::string(12'345 - std::size(SmallBook) + 1, '\n')));
    EXPECT_EQ(Panel(3), u"file len:12 345"_s);
}

TEST_F(WholeBook, TwoLoadsAlternateTheTwoFileNames)
{
    OpenBook();
    EXPECT_EQ(FileNameOf(DisplayFile), u"Fb2SourceHtml.htm"_s);
    LoadAndWait(CurrentBook);
    EXPECT_EQ(FileNameOf(DisplayFile), u"Fb2SourceHtml1.htm"_s);
    LoadAndWait(CurrentBook);
    EXPECT_EQ(FileNameOf(DisplayFile), u"Fb2SourceHtml.htm"_s);
}

TEST_F(WholeBook, AMissingFileKeepsTheOldPage)
{
    OpenBook();
    soundNames.clear();
    EXPECT_FALSE(LoadBook(workplace.Path(u"gone.fb2"_s), false));
    EXPECT_EQ(Message(), u"file not found"_s);
    EXPECT_EQ(soundNames, QStringList{u"FileLoadError.wav"_s});
    EXPECT_EQ(View().designMode(), u"On"_s);
    EXPECT_GE(FindLine(u"First words"_s), 0);
}

TEST_F(WholeBook, AWrongExtensionIsRejected)
{
    OpenBook();
    soundNames.clear();
    workplace.Make(u"book.txt"_s, SmallBook);
    EXPECT_FALSE(LoadBook(workplace.Path(u"book.txt"_s), false));
    EXPECT_EQ(Message(), u"file loading error: not allowed file extension"_s);
    EXPECT_EQ(soundNames, QStringList{u"FileLoadError.wav"_s});
    EXPECT_EQ(CurrentBook, workplace.Path(u"book.fb2"_s));
}

TEST_F(WholeBook, ADamagedBinaryPartIsRejectedWithABlankPage)
{
    OpenBook();
    workplace.Make(u"bad.fb2"_s, "<FictionBook><binary id=\"a\"></FictionBook>");
    EXPECT_FALSE(LoadBook(workplace.Path(u"bad.fb2"_s), false));
    EXPECT_EQ(boxTexts, QStringList{u"Cannot load file: bad binary part"_s});
    EXPECT_TRUE(soundNames.contains(u"ParseError.wav"_s));
    EXPECT_EQ(CurrentBook, workplace.Path(u"book.fb2"_s));
    EXPECT_TRUE(WaitFor([this] { return View().location() == EmptyPageFile; }));
    EXPECT_TRUE(IsBookEmpty());
}

TEST_F(WholeBook, TheBlankPageAfterADamagedBinaryPartIsReadOnly)
{
    // Two earlier loads leave a page file with the name that the third one uses.
    OpenBook();
    LoadAndWait(MakeBook(SmallBook, u"second.fb2"_s));
    workplace.Make(u"bad.fb2"_s, "<FictionBook><binary id=\"a\"></FictionBook>");
    EXPECT_FALSE(LoadBook(workplace.Path(u"bad.fb2"_s), false));
    EXPECT_EQ(soundNames.last(), u"FileLoadError.wav"_s);
    ASSERT_TRUE(WaitFor([this] { return View().location() == EmptyPageFile; }));
    QTest::qWait(2 * form->TimerDesignMode->interval());
    EXPECT_EQ(View().designMode(), u"Off"_s);
    EXPECT_EQ(Message(), u"cannot load file: parse error"_s);
}

TEST_F(WholeBook, TheHourglassIsShownWhileABookIsReadAndConverted)
{
    Open();
    const QString path = MakeBook(SmallBook);
    QList<Pointer> seen;
    const SeamGuard guard(PointerSeam(), [&](Pointer pointer) { seen.append(pointer); });
    EXPECT_TRUE(LoadBook(path, false));
    EXPECT_EQ(seen, (QList{Pointer::Hourglass, Pointer::Default}));
}

TEST_F(WholeBook, AnUnreadableFileKeepsTheOldPage)
{
    OpenBook();
    const QString old = CurrentBook;
    const QString path = workplace.Path(u"folder.fb2"_s);
    ASSERT_TRUE(MakeFolder(path));
    EXPECT_FALSE(LoadBook(path, false));
    EXPECT_EQ(Message(), u"cannot load file: "_s + path);
    EXPECT_EQ(soundNames.last(), u"FileLoadError.wav"_s);
    EXPECT_EQ(CurrentBook, old);
    EXPECT_EQ(View().designMode(), u"On"_s);
    EXPECT_GE(FindLine(u"First words"_s), 0);
}

TEST_F(WholeBook, APageThatCannotBeWrittenShowsNoOtherBook)
{
    OpenBook();
    const QString old = CurrentBook;
    // A folder that is not empty can neither be replaced nor deleted.
    ASSERT_TRUE(MakeFolder(TempFolder + u"/Fb2SourceHtml1.htm"_s));
    ASSERT_TRUE(WriteFileText(TempFolder + u"/Fb2SourceHtml1.htm/file"_s, "text"));
    const QString path = MakeBook(SmallBook, u"second.fb2"_s);
    EXPECT_FALSE(LoadBook(path, false));
    ASSERT_TRUE(WaitFor([this] { return View().location() == EmptyPageFile; }));
    EXPECT_EQ(Message(), u"cannot load file: "_s + path);
    EXPECT_EQ(CurrentBook, old);
    EXPECT_TRUE(IsBookEmpty());
    form->RunCommand(Command::SaveFile);
    EXPECT_EQ(ReadFileText(old), SmallBook);
}

TEST_F(WholeBook, ABookThatIsNotWellFormedIsLoadedWithoutMargins)
{
    Open();
    LoadAndWait(MakeBook(Replaced(SmallBook, "</strong>", "")));
    EXPECT_EQ(boxTexts, QStringList{u"Namespace error. Tree view is skipped"_s});
    const int line = FindLine(u"Third line"_s);
    ASSERT_GE(line, 0);
    EXPECT_EQ(page::item(Document(), line + 1).marginLeft(), 0);
}

TEST_F(WholeBook, TheOpenDialogStartsWithTheSampleBooks)
{
    Open();
    dialogAnswer = MakeBook(SmallBook);
    form->Entry("uOpenFile")->trigger();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].folder, SampleBooksFolder);
    EXPECT_EQ(requests[0].title, u"Open new Fiction Book file"_s);
    EXPECT_EQ(requests[0].filter, u"Fiction Book Files (*.fb2)|*.fb2|"_s);
    EXPECT_EQ(requests[0].fileName, QString());
    EXPECT_TRUE(WaitFor([this] { return Message() == u"document complete"_s; }));
    EXPECT_EQ(LastBookFolder, workplace.Folder() + u'/');
}

TEST_F(WholeBook, ACancelledDialogDoesNothing)
{
    OpenBook();
    const QString before = View().location();
    const QString folder = QDir::currentPath();
    form->LoadNewFbFile_Dialog();
    form->SaveFileAs_Dialog();
    EXPECT_EQ(requests.size(), 2u);
    EXPECT_EQ(View().location(), before);
    EXPECT_EQ(Message(), u"document complete"_s);
    EXPECT_EQ(QDir::currentPath(), folder);
}

TEST_F(WholeBook, TheLastFileOpensFromTheMenu)
{
    Open();
    LastFile = MakeBook(SmallBook);
    form->RunCommand(Command::OpenLastFile);
    EXPECT_TRUE(WaitFor([this] { return Message() == u"document complete"_s; }));
    EXPECT_EQ(CurrentBook, LastFile);
}

TEST_F(WholeBook, ABookDroppedOnTheDisplayLoadsAfterItsTimer)
{
    OpenBook();
    const QString page = View().location();
    const QString other = MakeBook(Replaced(SmallBook, "First", "Other"), u"other.fb2"_s);
    EXPECT_TRUE(DropFile(*View().viewport(), other));
    EXPECT_TRUE(form->TimerWBDrop->isActive());
    EXPECT_EQ(View().location(), page);
    EXPECT_TRUE(WaitFor([&] { return CurrentBook == other && Message() == u"document complete"_s; }));
    EXPECT_GE(FindLine(u"Other words"_s), 0);
}

TEST_F(WholeBook, AnotherFileDroppedOnTheDisplayIsRejected)
{
    OpenBook();
    soundNames.clear();
    workplace.Make(u"notes.txt"_s, "text");
    DropFile(*View().viewport(), workplace.Path(u"notes.txt"_s));
    EXPECT_EQ(Message(), u"file loading error: not allowed file extension"_s);
    EXPECT_EQ(soundNames, QStringList{u"FileLoadError.wav"_s});
    EXPECT_FALSE(form->TimerWBDrop->isActive());
    EXPECT_GE(FindLine(u"First words"_s), 0);
}

TEST_F(WholeBook, ALinkIsRejectedWithTheExtensionMessage)
{
    OpenBook();
    EXPECT_FALSE(View().Navigate(u"http://example.org/"_s));
    EXPECT_EQ(Message(), u"file loading error: not allowed file extension"_s);
}

TEST_F(WholeBook, TheReportOfARejectionIsSkippedOnce)
{
    OpenBook();
    SkipNavigationCheck = true;
    EXPECT_FALSE(View().Navigate(u"http://example.org/"_s));
    EXPECT_EQ(Message(), u"document complete"_s);
    EXPECT_FALSE(SkipNavigationCheck);
}

TEST_F(WholeBook, ABookDroppedOnWindowOrBarsLoads)
{
    Open();
    int number = 0;
    for (QWidget* target : {static_cast<QWidget*>(form.get()), static_cast<QWidget*>(form->Status),
                            static_cast<QWidget*>(form->StatusMsg)}) {
        const QString book = MakeBook(SmallBook, u"drop%1.fb2"_s.arg(++number));
        EXPECT_TRUE(DropFile(*target, book));
        EXPECT_TRUE(WaitFor([&] { return CurrentBook == book && Message() == u"document complete"_s; }))
            << number;
    }
}

// ---------------------------------------------------------------- saving

TEST_F(WholeBook, SavingAnUneditedBookTwiceWritesTheSameBytes)
{
    OpenBook();
    form->RunCommand(Command::SaveFile);
    EXPECT_EQ(Message(), u"file saved as: "_s + CurrentBook);
    EXPECT_EQ(soundNames.last(), u"FileSaved.wav"_s);
    const std::string first = ReadFileText(CurrentBook);
    LoadAndWait(CurrentBook);
    form->RunCommand(Command::SaveFile);
    EXPECT_EQ(ReadFileText(CurrentBook), first);
    EXPECT_THAT(first, testing::HasSubstr("First words &amp; more."));
}

TEST_F(WholeBook, SaveAsChangesTheNameOfTheBook)
{
    OpenBook();
    dialogAnswer = workplace.Path(u"copy.fb2"_s);
    form->Entry("uSaveFileAs")->trigger();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].kind, FileDialogRequest::Save);
    EXPECT_EQ(requests[0].title, u"Save Fiction Book file as"_s);
    EXPECT_EQ(requests[0].fileName, u"book.fb2"_s);
    EXPECT_TRUE(FileExists(dialogAnswer));
    EXPECT_EQ(CurrentBook, dialogAnswer);
    EXPECT_EQ(form->windowTitle(), u"VMK: copy.fb2"_s);
    EXPECT_EQ(LastSaveFolder, workplace.Folder() + u'/');
}

TEST_F(WholeBook, SaveAsReplacesAnotherBookOnlyIfTheUserAgrees)
{
    OpenBook();
    const QString book = CurrentBook;
    dialogAnswer = MakeBook("another book", u"other.fb2"_s);
    form->Entry("uSaveFileAs")->trigger();
    EXPECT_EQ(boxTexts, QStringList{dialogAnswer + u" exists\r\nDo you want to replace it?"_s});
    EXPECT_EQ(ReadFileText(dialogAnswer), "another book");
    EXPECT_EQ(CurrentBook, book);

    boxAnswer = true;
    form->Entry("uSaveFileAs")->trigger();
    EXPECT_TRUE(ReadFileText(dialogAnswer).starts_with("<?xml"));
    EXPECT_EQ(CurrentBook, dialogAnswer);

    boxTexts.clear();
    form->Entry("uSaveFileAs")->trigger();
    EXPECT_TRUE(boxTexts.isEmpty()) << "the open book itself is saved without a question";
}

TEST_F(WholeBook, AnEmptyBookIsNotSavedReadOrValidated)
{
    Open();
    for (const Command command : {Command::SaveFile, Command::SaveFileAs, Command::SaveAndReload})
        form->RunCommand(command);
    form->RunCommand(Command::ReadInHaaliReader);
    form->RunCommand(Command::Validate);
    const QString save = u"empty book - nothing to save"_s;
    EXPECT_EQ(boxTexts,
              (QStringList{save, save, save, u"empty book - nothing to read"_s,
                           u"empty book - nothing to validate"_s}));
}

TEST_F(WholeBook, ADamagedTreeIsSavedNevertheless)
{
    OpenBook();
    PutCaret(PlaceOf(u"Third"_s));
    Type(u"<b>"_s);
    form->RunCommand(Command::SaveFile);
    EXPECT_EQ(Message(), u"Namespace error: tree on save skipped. File saved as: "_s + CurrentBook);
    EXPECT_EQ(soundNames.last(), u"NameSpaceErrorOnSave.wav"_s);
    EXPECT_THAT(ReadFileText(CurrentBook), testing::HasSubstr("<b>Third line."));
}

TEST_F(WholeBook, AFailedSaveIsReportedAndKeepsTheEdits)
{
    OpenBook();
    PutCaret(PlaceOf(u"Third"_s));
    Type(u"x"_s);
    CurrentBook = workplace.Path(u"no such folder/book.fb2"_s);
    form->RunCommand(Command::SaveFile);
    EXPECT_EQ(Message(), u"cannot save file: "_s + CurrentBook);
    EXPECT_EQ(soundNames.last(), u"ParseError.wav"_s);
    EXPECT_GE(FindLine(u"xThird"_s), 0);
    EXPECT_EQ(Panel(2), u"No such file or directory"_s);
    CurrentBook = workplace.Path(u"book.fb2"_s);
    form->RunCommand(Command::SaveFile);
    EXPECT_TRUE(Panel(2).startsWith(u"sh:"_s)) << "the reason is gone after a success";
}

TEST_F(WholeBook, ABookInAFolderThatIsNotWritableIsSavedInPlace)
{
    OpenBook();
    PutCaret(PlaceOf(u"Third"_s));
    Type(u"x"_s);
    workplace.MakeFolders(u"closed"_s);
    workplace.Make(u"closed/book.fb2"_s, "old text");
    workplace.GiveToPlainUser();
    CurrentBook = workplace.Path(u"closed/book.fb2"_s);
    const QByteArray folder = QFile::encodeName(workplace.Path(u"closed"_s));
    ASSERT_EQ(::chmod(folder.constData(), 0555), 0);
    {
        const PlainUser plain;
        form->RunCommand(Command::SaveFile);
    }
    ASSERT_EQ(::chmod(folder.constData(), 0755), 0);
    EXPECT_EQ(Message(), u"file saved as: "_s + CurrentBook);
    EXPECT_THAT(ReadFileText(CurrentBook), testing::HasSubstr("xThird line."));
    const QStringList backups = FindFiles(OfficeFolder + u"/Backup"_s, u"*-book.fb2"_s);
    ASSERT_EQ(backups.size(), 1);
    EXPECT_EQ(ReadFileText(OfficeFolder + u"/Backup/"_s + backups.first()), "old text");
}

TEST_F(WholeBook, ABookWhoseNameIsNotUtf8IsOpenedAndSaved)
{
    Open();
    const QString book = workplace.Path(DecodeFileName("\xea\xed\xe8.fb2"));
    ASSERT_TRUE(WriteFileText(book, SmallBook));
    LoadAndWait(book);
    EXPECT_GE(FindLine(u"Third"_s), 0);
    EXPECT_TRUE(form->windowTitle().isValidUtf16());
    EXPECT_NE(Panel(3), u"file len:0"_s);
    const qint64 size = SizeOfFile(book);
    form->RunCommand(Command::SaveFile);
    EXPECT_EQ(Message(), u"file saved as: "_s + ReadableName(book));
    EXPECT_NE(SizeOfFile(book), size);
}

TEST_F(WholeBook, SaveAndReloadRestoresTheIndentation)
{
    OpenBook();
    PutCaret(PlaceOf(u"<p>Third"_s));
    Type(u"</section><section>"_s);
    form->RunCommand(Command::SaveAndReload);
    EXPECT_TRUE(WaitFor([this] { return Message() == u"document complete"_s; }));
    EXPECT_EQ(soundNames.last(), u"DocComplete.wav"_s);
    EXPECT_EQ(LineText(FindLine(u"Third"_s) - 1), u"<section>"_s);
    EXPECT_EQ(LineText(FindLine(u"Third"_s) - 2), u"</section>"_s);
}

TEST_F(WholeBook, ACopyIsOpenedWithTheDefaultReader)
{
    OpenBook();
    form->RunCommand(Command::ReadInHaaliReader);
    EXPECT_EQ(opened, QStringList{TempFolder + u"/book.fb2"_s});
    EXPECT_TRUE(FileExists(TempFolder + u"/book.fb2"_s));
    EXPECT_EQ(Message(), QString());
    EXPECT_EQ(ReadFileText(workplace.Path(u"book.fb2"_s)), SmallBook);
}

// ---------------------------------------------------------------- validation

TEST_F(WholeBook, AValidBookKeepsTheSelection)
{
    OpenBook();
    PutCaret(PlaceOf(u"Third"_s));
    const Selection before = Document().selection();
    form->RunCommand(Command::Validate);
    EXPECT_EQ(Message(), u"No errors (against schema)"_s);
    EXPECT_EQ(soundNames.last(), u"NoParseError.wav"_s);
    EXPECT_TRUE(Document().selection() == before);
    EXPECT_EQ(Panel(1), QString());

    form->ValidateOptL->setCurrentText(u"namespace!"_s);
    form->RunCommand(Command::Validate);
    EXPECT_EQ(Message(), u"No errors (against namespace)"_s);
}

TEST_F(WholeBook, TheCaretMovesBeforeATagThatTheSchemaRejects)
{
    OpenBook();
    PutCaret(PlaceOf(u"Third"_s));
    Type(u"<q/>"_s);
    const Position tag = PlaceOf(u"<q/>"_s);
    form->RunCommand(Command::Validate);
    EXPECT_TRUE(Message().startsWith(u"Error against schema. "_s)) << Message().toStdString();
    EXPECT_FALSE(Message().contains(u"gribuser"_s));
    EXPECT_TRUE(Panel(1).startsWith(u"Error pos: "_s));
    EXPECT_EQ(soundNames.last(), u"ParseError.wav"_s);
    EXPECT_EQ(Document().selection().focus, tag);
    EXPECT_TRUE(Panel(2).startsWith(u"sh:"_s)) << Panel(2).toStdString();
}

TEST_F(WholeBook, TheCaretIsRightAfterAmpersandsToo)
{
    OpenBook(Replaced(SmallBook, "Second", "a &amp; b &amp;&amp; &amp;lt; c"));
    PutCaret(PlaceOf(u"Third"_s));
    Type(u"<q/>"_s);
    form->RunCommand(Command::Validate);
    EXPECT_EQ(Document().selection().focus, PlaceOf(u"<q/>"_s));
}

TEST_F(WholeBook, AtAnUnclosedTagTheCaretIsWhereTheParserPoints)
{
    OpenBook();
    PutCaret(PlaceOf(u"Third"_s));
    Type(u"<b>"_s);
    form->RunCommand(Command::Validate);
    EXPECT_TRUE(Message().startsWith(u"Error against schema. "_s)) << Message().toStdString();
    // After the "</" of the end tag that does not fit, in the line of the tag at fault.
    const Position third = PlaceOf(u"Third"_s);
    EXPECT_EQ(Document().selection().focus.line, third.line);
    EXPECT_TRUE(Document().selection().isEmpty());
    EXPECT_THAT((std::vector<int>{int(LineText(third.line).indexOf(u"<b>"_s)),
                                  int(LineText(third.line).lastIndexOf(u"</p>"_s)) + 2}),
                testing::Contains(Document().selection().focus.offset));
}

TEST_F(WholeBook, AnErrorOnTheFirstLineIsFound)
{
    OpenBook();
    PutCaret({0, int(LineText(0).size())});
    Type(u"<"_s);
    form->RunCommand(Command::Validate);
    EXPECT_TRUE(Message().startsWith(u"Error against schema. "_s));
    EXPECT_LE(Document().selection().focus.line, 1);
}

TEST_F(WholeBook, AgainstTheNamespaceOnlyWellFormednessMatters)
{
    OpenBook();
    form->ValidateOptL->setCurrentText(u"namespace!"_s);
    PutCaret(PlaceOf(u"Third"_s));
    Type(u"<q/>"_s);
    form->RunCommand(Command::Validate);
    EXPECT_EQ(Message(), u"No errors (against namespace)"_s);
    Type(u"<q>"_s);
    form->RunCommand(Command::Validate);
    EXPECT_TRUE(Message().startsWith(u"Error against namespace. "_s));
}

TEST_F(WholeBook, WithAMissingSchemaOnlyWellFormednessIsChecked)
{
    OpenBook();
    SchemaFile = workplace.Path(u"gone.xsd"_s);
    form->RunCommand(Command::Validate);
    EXPECT_EQ(Message(), u"No errors (against schema)"_s);
    EXPECT_EQ(form->SchemaFileL->text(),
              u"Schema file not found. Only namespace validatioon is available."_s);
    EXPECT_EQ(Panel(1), u"schema "_s + SchemaFile + u": file not found"_s);
}

TEST_F(WholeBook, ASchemaThatCannotBeUsedIsRedInItsField)
{
    OpenBook();
    workplace.Make(u"bad.xsd"_s, "<xs:schema");
    SchemaFile = workplace.Path(u"bad.xsd"_s);
    form->RefreshSchemaField();
    EXPECT_EQ(form->SchemaFileL->palette().color(QPalette::Text), QColor(Qt::black));
    form->RunCommand(Command::Validate);
    EXPECT_EQ(Message(), u"No errors (against schema)"_s);
    EXPECT_EQ(form->SchemaFileL->text(), u"bad.xsd"_s);
    EXPECT_EQ(form->SchemaFileL->palette().color(QPalette::Text), QColor(Qt::red));
    EXPECT_TRUE(form->SchemaFileL->toolTip().startsWith(SchemaFile + u":1: "_s));
    EXPECT_EQ(Panel(1), u"schema "_s + form->SchemaFileL->toolTip());
    SchemaFile = SchemasFolder + u"/FictionBook.xsd"_s;
    form->RunCommand(Command::Validate);
    EXPECT_EQ(form->SchemaFileL->palette().color(QPalette::Text), QColor(Qt::black));
    EXPECT_EQ(Panel(1), QString());
}

TEST_F(WholeBook, AWrongGenreIsSelectedAndTheListOfGenresOpens)
{
    OpenBook(Replaced(SmallBook, "prose_classic", "no_such &amp; genre"));
    form->RunCommand(Command::Validate);
    EXPECT_TRUE(Message().contains(u"'genre'"_s)) << Message().toStdString();
    EXPECT_EQ(SelectedText(), u"no_such & genre"_s);
    ASSERT_NE(SchemaViewerF::Existing(), nullptr);
    EXPECT_TRUE(SchemaViewerF::Existing()->isVisible());
    EXPECT_EQ(SchemaViewerF::Existing()->windowTitle(), u" VMK Schema Viewer: FictionBookGenres.xsd"_s);
    EXPECT_EQ(Panel(2), QString());
}

TEST_F(WholeBook, AWrongGenreIsSelectedWithoutTheListWhenItsFileIsMissing)
{
    OpenBook(Replaced(SmallBook, "prose_classic", "nothing"));
    workplace.MakeFolders(u"elsewhere"_s);
    for (const QString& name : QDir(SchemasFolder).entryList({u"*.xsd"_s}))
        FileOperation(CopyFileMode, SchemasFolder + u'/' + name, workplace.Path(u"elsewhere/"_s + name));
    // The list has another name: the schema works, and there is no list to show.
    const QString genres = workplace.Path(u"elsewhere/FictionBookGenres.xsd"_s);
    FileOperation(MoveFileMode, genres, workplace.Path(u"elsewhere/G.xsd"_s));
    const QString main = workplace.Path(u"elsewhere/FictionBook.xsd"_s);
    ASSERT_TRUE(WriteFileText(main, Replaced(ReadFileText(main), "FictionBookGenres.xsd", "G.xsd")));
    SchemaFile = main;
    form->RunCommand(Command::Validate);
    EXPECT_EQ(SelectedText(), u"nothing"_s) << Message().toStdString();
    EXPECT_TRUE(!SchemaViewerF::Existing() || !SchemaViewerF::Existing()->isVisible());
}

TEST_F(WholeBook, AFailedCommandLineRunValidatesOnceTheDisplayIsComplete)
{
    ValidateAfterLoad = true;
    form->Load();
    ASSERT_TRUE(LoadBook(MakeBook(Replaced(SmallBook, "<p>Third line.</p>", "<q/>")), true));
    EXPECT_TRUE(WaitFor([this] { return Message().startsWith(u"Error against schema. "_s); }));
    EXPECT_FALSE(ValidateAfterLoad);
    EXPECT_EQ(Document().selection().focus, PlaceOf(u"<q/>"_s));
    EXPECT_FALSE(soundNames.contains(u"DocComplete.wav"_s));
}

// ---------------------------------------------------------------- schemas

TEST_F(WholeBook, TheSchemaListShowsFilesWithTheirState)
{
    Open();
    form->Entry("uShowSchema")->trigger();
    auto* list = form->findChild<QTreeWidget*>(u"SchemasL"_s);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->window()->windowTitle(), u" Shemas List (click on the item to see schema)"_s);
    QStringList columns;
    for (int i = 0; i < list->columnCount(); ++i)
        columns.append(list->headerItem()->text(i));
    EXPECT_EQ(columns, (QStringList{u"schema"_s, u"type"_s, u"status"_s, u"created"_s}));
    ASSERT_GE(list->topLevelItemCount(), 2);
    EXPECT_EQ(list->topLevelItem(0)->text(0), u"FictionBook.xsd"_s);
    EXPECT_EQ(list->topLevelItem(0)->text(1), u"main"_s);
    EXPECT_EQ(list->topLevelItem(1)->text(1), u"complimentary"_s);
    EXPECT_EQ(list->topLevelItem(1)->text(2), u"found"_s);
    EXPECT_FALSE(list->verticalScrollBar()->isVisible()) << "the form is as large as its list";
    EXPECT_FALSE(list->horizontalScrollBar()->isVisible());
}

TEST_F(WholeBook, AClickOnASchemaShowsItAndClosingTheListClosesBoth)
{
    Open();
    form->ShowSchemas();
    auto* list = form->findChild<QTreeWidget*>(u"SchemasL"_s);
    const QRect row = list->visualItemRect(list->topLevelItem(0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, row.center());
    SchemaViewerF* viewer = SchemaViewerF::Existing();
    ASSERT_NE(viewer, nullptr);
    EXPECT_EQ(viewer->windowTitle(), u" VMK Schema Viewer: FictionBook.xsd"_s);
    EXPECT_EQ(viewer->size(), QSize(600, 450));
    EXPECT_TRUE(viewer->testAttribute(Qt::WA_ShowWithoutActivating)) << "book and list keep the focus";
    EXPECT_GT(viewer->SchemaWB->document().lineCount(), 100);
    EXPECT_EQ(viewer->SchemaWB->designMode(), u"Off"_s);
    QTest::mouseClick(viewer->SchemaWB->viewport(), Qt::RightButton);
    QTest::qWait(2 * form->TimerPopUp->interval());
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << "the page of a schema has no menu";
    list->window()->close();
    EXPECT_FALSE(viewer->isVisible());
}

} // namespace
} // namespace vmk
