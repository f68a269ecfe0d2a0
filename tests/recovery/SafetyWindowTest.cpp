#include "WindowTest.h"

#include "BookVersions.h"
#include "FbFunctions.h"
#include "FileSizeLimit.h"
#include "Files.h"
#include "MainWindowSeams.h"
#include "RecoveryFolder.h"
#include "SaveBook.h"
#include "SessionRecorder.h"
#include "SettingsVariables.h"
#include "UnsavedText.h"

#include <QDir>

/// The safety of unsaved text through the main window.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class Safety : public WindowTest
{
protected:
    [[nodiscard]] QStringList Recovery(const QString& pattern) const
    {
        return QDir(RecoveryFolder()).entryList({pattern}, QDir::Files, QDir::Name);
    }
    /// Ends the window as a crash does: the journal stays.
    void Crash()
    {
        Recorder()->waitUntilWritten();
        form.reset();
        BinaryPart.clear();
        CurrentBook.clear();
        DisplayFile.clear();
        boxTexts.clear();
        form = std::make_unique<Form1>();
    }
    void TypeAt(const QString& text, const QString& typed)
    {
        PutCaret(PlaceOf(text));
        Type(typed);
        ASSERT_GE(FindLine(typed + text), 0);
    }
    void OfferAndWait()
    {
        ASSERT_TRUE(OfferRecoverySeam()());
        ASSERT_TRUE(WaitFor([this] { return Message().startsWith(u"unsaved text recovered"_s); }));
    }
    [[nodiscard]] QByteArray Page() { return Document().savePage(); }
};

TEST_F(Safety, AnUneditedBookLeavesNoTrace)
{
    OpenBook();
    LoadAndWait(CurrentBook);
    form->close();
    form.reset();
    EXPECT_FALSE(QDir(RecoveryFolder()).exists());
}

TEST_F(Safety, ResizingAndRepaintingAreNoChanges)
{
    OpenBook();
    form->resize(800, 700);
    QTest::qWait(100);
    PutCaret(PlaceOf(u"First"_s));
    Key(Qt::Key_Escape);
    EXPECT_FALSE(Recorder()->hasUnsavedText());
}

TEST_F(Safety, AfterACrashTheTextIsBackWithCaretAndPictures)
{
    std::string book = SmallBook;
    book.insert(book.find("</FictionBook>"), "<binary id=\"a.png\" content-type=\"image/png\">QUJD</binary>");
    OpenBook(book);
    const std::string binaries = BinaryPart;
    ASSERT_NE(binaries, "");
    TypeAt(u"words"_s, u"typed "_s);
    const QByteArray page = Page();
    const Selection selection = Document().selection();
    const QString path = CurrentBook;
    Crash();
    boxAnswer = true;
    form->Load();
    OfferAndWait();
    ASSERT_EQ(boxTexts.size(), 1);
    EXPECT_TRUE(boxTexts[0].startsWith(u"Vellumark was interrupted while editing book.fb2 ("_s));
    EXPECT_TRUE(boxTexts[0].endsWith(u"). Recover the unsaved text?"_s)) << boxTexts[0].toStdString();
    EXPECT_EQ(Page(), page);
    EXPECT_EQ(Document().selection(), selection);
    EXPECT_EQ(CurrentBook, path);
    EXPECT_EQ(BinaryPart, binaries);
    EXPECT_EQ(form->windowTitle(), u" VMK: book.fb2"_s);
    EXPECT_EQ(Message(), u"unsaved text recovered"_s);
    EXPECT_TRUE(View().isEditable());
    EXPECT_TRUE(Recorder()->hasUnsavedText());
    EXPECT_FALSE(BookUnchanged);
    // The text is saved as the book it was.
    EXPECT_TRUE(SaveBook(CurrentBook));
    const std::string saved = ReadFileText(path);
    EXPECT_NE(saved.find("typed words"), std::string::npos);
    EXPECT_NE(saved.find("QUJD"), std::string::npos);
}

TEST_F(Safety, ARecoveredTextSurvivesASecondCrash)
{
    OpenBook();
    TypeAt(u"words"_s, u"typed "_s);
    const QByteArray page = Page();
    Crash();
    boxAnswer = true;
    form->Load();
    OfferAndWait();
    // One journal: the new one has replaced the old one.
    Recorder()->waitUntilWritten();
    ASSERT_TRUE(WaitFor([this] { return Recovery(u"*.journal"_s).size() == 1; }));
    Crash();
    form->Load();
    OfferAndWait();
    EXPECT_EQ(Page(), page);
}

TEST_F(Safety, NoKeepsTheJournalAndSaysWhere)
{
    OpenBook();
    TypeAt(u"words"_s, u"typed "_s);
    Crash();
    form->Load();
    EXPECT_FALSE(OfferRecoverySeam()());
    const QStringList declined = Recovery(u"*.declined"_s);
    ASSERT_EQ(declined.size(), 1);
    EXPECT_EQ(Message(), u"the unsaved text is kept for 30 days: "_s + RecoveryFolder() + u'/' + declined[0]);
    EXPECT_EQ(boxTexts.size(), 1);
    EXPECT_FALSE(OfferRecoverySeam()());
    EXPECT_EQ(boxTexts.size(), 1);
    // Also after a book has been loaded meanwhile.
    LoadBook(workplace.Path(u"book.fb2"_s), false);
    EXPECT_TRUE(WaitFor([&] {
        return Message()
            == u"document complete; the unsaved text is kept for 30 days: "_s + RecoveryFolder() + u'/'
            + declined[0];
    }));
}

TEST_F(Safety, SeveralSessionsAreOfferedUntilYes)
{
    OpenBook();
    TypeAt(u"words"_s, u"first "_s);
    Crash();
    form->Load();
    LoadAndWait(MakeBook(SmallBook, u"second.fb2"_s));
    TypeAt(u"words"_s, u"second "_s);
    Crash();
    form->Load();
    boxAnswer = true;
    OfferAndWait();
    EXPECT_EQ(boxTexts.size(), 1);
    EXPECT_EQ(FileNameOf(CurrentBook), u"second.fb2"_s);
    // The other one waits for the next start.
    EXPECT_TRUE(WaitFor([this] { return Recovery(u"second*.journal"_s).size() == 1; }));
    EXPECT_EQ(Recovery(u"book*.journal"_s).size(), 1);
}

TEST_F(Safety, ABookChangedSinceIsNamedAndItsSaveAsks)
{
    OpenBook();
    TypeAt(u"words"_s, u"typed "_s);
    const QString path = CurrentBook;
    Crash();
    MakeBook(std::string(SmallBook) + "\n");
    boxAnswer = true;
    form->Load();
    OfferAndWait();
    EXPECT_EQ(Message(), u"unsaved text recovered; the file was changed meanwhile: "_s + path);
    boxTexts.clear();
    boxAnswer = false;
    EXPECT_FALSE(SaveBook(CurrentBook));
    EXPECT_EQ(boxTexts.size(), 1);
    EXPECT_EQ(ReadFileText(path), std::string(SmallBook) + "\n");
    EXPECT_EQ(Message(), u"file not saved: "_s + path);
    EXPECT_TRUE(Recorder()->hasUnsavedText());
}

TEST_F(Safety, ABookDeletedSinceIsRecoveredToo)
{
    OpenBook();
    TypeAt(u"words"_s, u"typed "_s);
    const QString path = CurrentBook;
    Crash();
    ASSERT_TRUE(QFile::remove(path));
    boxAnswer = true;
    form->Load();
    OfferAndWait();
    EXPECT_EQ(Message(), u"unsaved text recovered; the file no longer exists: "_s + path);
    boxTexts.clear();
    EXPECT_TRUE(SaveBook(CurrentBook));
    EXPECT_EQ(boxTexts, QStringList());
    EXPECT_NE(ReadFileText(path).find("typed words"), std::string::npos);
}

TEST_F(Safety, ADamagedJournalIsNamed)
{
    OpenBook();
    QDir().mkpath(RecoveryFolder());
    ASSERT_TRUE(WriteFileText(RecoveryFolder() + u"/x.journal"_s, "damaged"));
    EXPECT_FALSE(OfferRecoverySeam()());
    EXPECT_EQ(boxTexts, QStringList());
    EXPECT_EQ(Message(),
              u"the record of an interrupted session is damaged: "_s + RecoveryFolder() + u"/x.declined"_s);
}

// ---------------------------------------------------------------- closing and loading

TEST_F(Safety, ClosingWithUnsavedTextKeepsItAsABook)
{
    OpenBook();
    TypeAt(u"words"_s, u"typed "_s);
    form->close();
    EXPECT_EQ(boxTexts, QStringList());
    const QStringList texts = Recovery(u"book (unsaved *).fb2"_s);
    ASSERT_EQ(texts.size(), 1);
    EXPECT_NE(ReadFileText(RecoveryFolder() + u'/' + texts[0]).find("typed words"), std::string::npos);
    EXPECT_EQ(ReadFileText(CurrentBook), SmallBook);
    form.reset();
    EXPECT_EQ(Recovery(u"*.journal"_s), QStringList());
}

TEST_F(Safety, TheNextOpeningOfTheBookSaysSoOnce)
{
    OpenBook();
    TypeAt(u"words"_s, u"typed "_s);
    const QString path = CurrentBook;
    ASSERT_TRUE(LoadBook(MakeBook(SmallBook, u"other.fb2"_s), false));
    ASSERT_TRUE(WaitFor([this] { return Message() == u"document complete"_s; }));
    EXPECT_EQ(boxTexts, QStringList());
    const QStringList texts = Recovery(u"book (unsaved *).fb2"_s);
    ASSERT_EQ(texts.size(), 1);
    EXPECT_EQ(Recovery(u"*.journal"_s), QStringList());
    ASSERT_TRUE(LoadBook(path, false));
    EXPECT_TRUE(WaitFor([&] {
        return Message()
            == u"document complete; its unsaved text is kept as: "_s + RecoveryFolder() + u'/' + texts[0];
    })) << Message().toStdString();
    LoadAndWait(path);
}

TEST_F(Safety, ASavedTextIsNotKept)
{
    OpenBook();
    TypeAt(u"words"_s, u"typed "_s);
    ASSERT_TRUE(SaveBook(CurrentBook));
    EXPECT_FALSE(Recorder()->hasUnsavedText());
    form->close();
    form.reset();
    EXPECT_EQ(Recovery(u"*.fb2"_s), QStringList());
    EXPECT_EQ(Recovery(u"*.journal"_s), QStringList());
}

TEST_F(Safety, ATextThatEqualsTheFileIsNotKept)
{
    OpenBook();
    ASSERT_TRUE(SaveBook(CurrentBook));
    TypeAt(u"words"_s, u"x"_s);
    EXPECT_TRUE(Recorder()->hasUnsavedText());
    Key(Qt::Key_Backspace);
    EXPECT_TRUE(Recorder()->hasUnsavedText());
    EXPECT_TRUE(KeepUnsavedText());
    EXPECT_EQ(Recovery(u"*.fb2"_s), QStringList());
}

TEST_F(Safety, ACopyForTheReaderIsNoSave)
{
    OpenBook();
    TypeAt(u"words"_s, u"typed "_s);
    ShowFb2TextPreview();
    EXPECT_EQ(opened.size(), 1);
    EXPECT_TRUE(Recorder()->hasUnsavedText());
    EXPECT_FALSE(QDir(BackupFolder()).exists());
}

TEST_F(Safety, KeepingATextTwiceWritesItOnce)
{
    OpenBook();
    TypeAt(u"words"_s, u"typed "_s);
    EXPECT_TRUE(KeepUnsavedText());
    EXPECT_TRUE(KeepUnsavedText());
    EXPECT_EQ(Recovery(u"*.fb2"_s).size(), 1);
    TypeAt(u"words"_s, u"more "_s);
    EXPECT_TRUE(KeepUnsavedText());
    EXPECT_EQ(Recovery(u"*.fb2"_s).size(), 2);
}

TEST_F(Safety, ATextThatTheEncodingLacksIsKeptInUtf8WithoutAQuestion)
{
    OpenBook();
    OutputEncoding = u"windows-1251"_s;
    Document().replaceText(PlaceOf(u"words"_s), PlaceOf(u"words"_s), QString::fromUtf8("漢字 "));
    EXPECT_TRUE(KeepUnsavedText());
    EXPECT_EQ(boxTexts, QStringList());
    const QStringList texts = Recovery(u"*.fb2"_s);
    ASSERT_EQ(texts.size(), 1);
    EXPECT_NE(ReadFileText(RecoveryFolder() + u'/' + texts[0]).find("漢字 words"), std::string::npos);
}

TEST_F(Safety, AFolderThatCannotBeMadeIsReportedInTheBar)
{
    OpenBook();
    ASSERT_TRUE(WriteFileText(RecoveryFolder(), "a file in its place"));
    TypeAt(u"words"_s, u"typed "_s);
    EXPECT_TRUE(WaitFor([this] { return Panel(1).startsWith(u"unsaved text is not safe: "_s); }));
    EXPECT_FALSE(KeepUnsavedText());
    ASSERT_TRUE(QFile::remove(RecoveryFolder()));
    Recorder()->waitUntilWritten();
    EXPECT_TRUE(WaitFor([this] { return Panel(1) == u"unsaved text is safe again"_s; }));
}

// ---------------------------------------------------------------- saving

TEST_F(Safety, SavingKeepsTheFileBefore)
{
    OpenBook();
    ASSERT_TRUE(SaveBook(CurrentBook));
    EXPECT_FALSE(QDir(BackupFolder()).isEmpty());
    const QString folder
        = BackupFolder() + u'/' + QDir(BackupFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot)[0];
    const QStringList versions = QDir(folder).entryList(QDir::Files);
    ASSERT_EQ(versions.size(), 1);
    EXPECT_EQ(ReadFileText(folder + u'/' + versions[0]), SmallBook);
}

TEST_F(Safety, AFileChangedByAnotherProgramIsReplacedOnYesAndKept)
{
    OpenBook();
    const QString path = CurrentBook;
    MakeBook("by another program");
    EXPECT_FALSE(SaveBook(path));
    EXPECT_EQ(ReadFileText(path), "by another program");
    boxAnswer = true;
    EXPECT_TRUE(SaveBook(path));
    EXPECT_EQ(boxTexts.size(), 2);
    const QString folder
        = BackupFolder() + u'/' + QDir(BackupFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot)[0];
    EXPECT_EQ(ReadFileText(folder + u'/' + QDir(folder).entryList(QDir::Files).value(0)),
              "by another program");
    // The program's own file is replaced without a question.
    EXPECT_TRUE(SaveBook(path));
    EXPECT_EQ(boxTexts.size(), 2);
}

TEST_F(Safety, ATextWithoutATreeIsSavedAndTheFileBeforeIsKept)
{
    OpenBook();
    Document().replaceText(PlaceOf(u"First"_s), PlaceOf(u"First"_s), u"<p>"_s);
    ASSERT_TRUE(SaveBook(CurrentBook));
    EXPECT_TRUE(Message().startsWith(u"Namespace error: tree on save skipped. File saved as: "_s));
    EXPECT_EQ(Panel(1), u"the previous file is kept"_s);
}

TEST_F(Safety, AFailedSaveKeepsTheTextUnsavedAndNoVersion)
{
    OpenBook();
    TypeAt(u"words"_s, u"typed "_s);
    {
        const FileSizeLimit limit(10);
        EXPECT_FALSE(SaveBook(CurrentBook));
    }
    EXPECT_TRUE(Recorder()->hasUnsavedText());
    EXPECT_EQ(ReadFileText(CurrentBook), SmallBook);
    EXPECT_GE(FindLine(u"typed words"_s), 0);
    const QString folder
        = BackupFolder() + u'/' + QDir(BackupFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).value(0);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList());
}

// ---------------------------------------------------------------- characters that the encoding lacks

/// A book in a code page, with characters beyond it typed into its first paragraph.
class MissingInCodePage : public Safety
{
protected:
    void openAndType()
    {
        std::string book = SmallBook;
        book.replace(book.find("UTF-8"), 5, "windows-1251");
        OpenBook(book);
        PutCaret(PlaceOf(u"words"_s));
        QInputMethodEvent typing;
        typing.setCommitString(u"\u0142\u017c\u6f22\u200b "_s);
        QCoreApplication::sendEvent(form->HTMLread, &typing);
        before = ReadFileText(CurrentBook);
    }
    /// The first paragraph in the file.
    [[nodiscard]] std::string savedWords() const
    {
        const std::string bytes = ReadFileText(CurrentBook);
        const size_t start = bytes.find("<p>");
        return bytes.substr(start, bytes.find("</p>") - start);
    }
    std::string before;
    const std::string typed = "<p>First \xc5\x82\xc5\xbc\xe6\xbc\xa2\xe2\x80\x8b words &amp; more.";
};

TEST_F(MissingInCodePage, TheQuestionCountsThemAndShowsTheFirst)
{
    openAndType();
    EXPECT_FALSE(SaveBook(CurrentBook));
    ASSERT_EQ(boxTexts.size(), 1);
    EXPECT_EQ(
        boxTexts[0],
        u"windows-1251 has no place for some characters of this book: 4\r\n\r\nThe first of them: "
        "\u0142 \u017c \u6f22 U+200B\r\n\r\nSave the book in utf-8? With No they are replaced by similar "
        "ones or by question marks."_s);
}

TEST_F(MissingInCodePage, CancelSavesNothingAndTheTextStaysUnsaved)
{
    openAndType();
    form->SaveCurrentBook();
    EXPECT_EQ(ReadFileText(CurrentBook), before);
    EXPECT_EQ(Message(), u"file not saved: "_s + CurrentBook);
    EXPECT_EQ(soundNames.filter(u"FileSaved"_s), QStringList());
    EXPECT_TRUE(Recorder()->hasUnsavedText());
    EXPECT_EQ(VersionsOf(workplace.Path(u"VMK Office/Backup"_s), CurrentBook).size(), 0U);
}

TEST_F(MissingInCodePage, CancelInSaveAsKeepsTheOpenBook)
{
    openAndType();
    const QString path = CurrentBook;
    dialogAnswer = workplace.Path(u"other.fb2"_s);
    form->SaveFileAs_Dialog();
    EXPECT_EQ(CurrentBook, path);
    EXPECT_FALSE(FileExists(dialogAnswer));
}

TEST_F(MissingInCodePage, CancelInSaveAndReloadKeepsThePage)
{
    openAndType();
    const QByteArray page = Page();
    form->SaveAndReload();
    QTest::qWait(50);
    EXPECT_EQ(Page(), page);
    EXPECT_EQ(ReadFileText(CurrentBook), before);
}

TEST_F(MissingInCodePage, YesSavesInUtf8AndIsAskedOnce)
{
    openAndType();
    choiceAnswer = BoxAnswer::Yes;
    ASSERT_TRUE(SaveBook(CurrentBook));
    EXPECT_TRUE(ReadFileText(CurrentBook).starts_with("<?xml version=\"1.0\" encoding=\"utf-8\"?>"));
    EXPECT_EQ(savedWords(), typed);
    choiceAnswer = BoxAnswer::No;
    ASSERT_TRUE(SaveBook(CurrentBook));
    EXPECT_EQ(savedWords(), typed);
    EXPECT_EQ(boxTexts.size(), 1);
    // Another book has its own encoding again.
    LoadAndWait(MakeBook(before, u"second.fb2"_s));
    ASSERT_TRUE(SaveBook(CurrentBook));
    EXPECT_TRUE(ReadFileText(CurrentBook).starts_with("<?xml version=\"1.0\" encoding=\"windows-1251\"?>"));
}

TEST_F(MissingInCodePage, YesToAFailedSaveOrToACopyForTheReaderDecidesNothing)
{
    openAndType();
    choiceAnswer = BoxAnswer::Yes;
    EXPECT_TRUE(SaveBook(TempFolder + u"/book.fb2"_s, SaveReport::None));
    {
        const FileSizeLimit limit(100);
        EXPECT_FALSE(SaveBook(CurrentBook));
    }
    choiceAnswer = BoxAnswer::No;
    ASSERT_TRUE(SaveBook(CurrentBook));
    EXPECT_EQ(boxTexts.size(), 3);
    EXPECT_EQ(savedWords(), "<p>First lz?? words &amp; more.");
}

TEST_F(MissingInCodePage, AChosenEncodingOfTheSettingsAsksEachTime)
{
    openAndType();
    OutputEncoding = u"windows-1252"_s;
    choiceAnswer = BoxAnswer::Yes;
    ASSERT_TRUE(SaveBook(CurrentBook));
    ASSERT_TRUE(SaveBook(CurrentBook));
    EXPECT_EQ(boxTexts.size(), 2);
    EXPECT_TRUE(boxTexts[0].startsWith(u"windows-1252"_s));
    OutputEncoding = u"utf-8"_s;
    ASSERT_TRUE(SaveBook(CurrentBook));
    EXPECT_EQ(boxTexts.size(), 2);
    EXPECT_EQ(Panel(1), QString());
    OutputEncoding = u"original"_s;
    ASSERT_TRUE(SaveBook(CurrentBook));
    EXPECT_EQ(boxTexts.size(), 3);
}

} // namespace
} // namespace vmk
