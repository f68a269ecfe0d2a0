#include "WindowTest.h"

#include "BookOnDisk.h"
#include "BookVersions.h"
#include "FileState.h"
#include "Files.h"
#include "RecoveryFolder.h"
#include "SaveBook.h"
#include "SessionFixture.h"
#include "SystemCalls.h"
#include "UnsavedText.h"

#include <cerrno>

/// Every system call of a save, and of the journal, fails once.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// The ways in which each call fails.
const calls::Failure Failures[] = {
    {.error = EIO},
    {.error = ENOSPC},
    {.error = ENOSPC, .isLasting = true},
    {.error = EACCES},
    {.error = ENOSPC, .isShort = true},
    {.error = EINTR},
};

class Faults : public WindowTest
{
protected:
    [[nodiscard]] std::string fault(int number, const calls::Failure& failure) const
    {
        return "call " + std::to_string(number) + ", error " + std::to_string(failure.error)
            + (failure.isShort ? ", short" : "") + (failure.isLasting ? ", lasting" : "");
    }
};

TEST_F(Faults, ASaveWithAnyFailingCallLeavesTheOldOrTheNewFile)
{
    OpenBook();
    PutCaret(PlaceOf(u"words"_s));
    Type(u"typed "_s);
    Recorder()->waitUntilWritten();
    const QByteArray page = Document().savePage();
    const QString path = CurrentBook;
    ASSERT_TRUE(SaveBook(path));
    const std::string wanted = ReadFileText(path);
    const QString backup = workplace.Path(u"VMK Office/Backup"_s);
    int failed = 0;
    int faults = 0;
    for (const calls::Failure& way : Failures) {
        for (int number = 1;; ++number) {
            // The state before the save.
            DeleteFolderTree(backup);
            QFile::remove(path);
            workplace.Make(u"book.fb2"_s, SmallBook);
            NoteBookLoaded(path, StateOfFile(path), SmallBook);
            form->Status->setPanelText(1, QString());

            calls::Failure failure = way;
            failure.number = number;
            calls::Begin({workplace.Folder().toStdString(), "/Recovery"}, failure);
            const bool saved = SaveBook(path);
            const std::string call = calls::End();
            if (call.empty())
                break;
            ++faults;
            SCOPED_TRACE(fault(number, failure) + ": " + call);
            const std::string content = ReadFileText(path);
            EXPECT_EQ(content, saved ? wanted : SmallBook);
            EXPECT_EQ(Document().savePage(), page);
            if (saved) {
                EXPECT_EQ(Message(), u"file saved as: "_s + path);
                const std::vector<BookVersion> versions = VersionsOf(backup, path);
                const bool isKept = !Panel(1).startsWith(u"earlier version not kept"_s);
                EXPECT_EQ(versions.size(), isKept ? 1U : 0U) << Panel(1).toStdString();
                for (const BookVersion& version : versions)
                    EXPECT_EQ(ReadFileText(version.path), SmallBook);
            } else {
                ++failed;
                EXPECT_EQ(Message(), u"cannot save file: "_s + path);
                EXPECT_NE(Panel(2), QString());
            }
            // The next save works.
            ASSERT_TRUE(SaveBook(path));
            EXPECT_EQ(ReadFileText(path), wanted);
            EXPECT_EQ(workplace.Names().filter(u".vmk-"_s), QStringList());
        }
    }
    EXPECT_GE(failed, 3);
    RecordProperty("faults", faults);
    RecordProperty("failed", failed);
}

TEST_F(Faults, AJournalWithAnyFailingCallHoldsAnEarlierState)
{
    int faults = 0;
    for (const calls::Failure& way : Failures) {
        for (int number = 1;; ++number) {
            const Workplace place;
            Session session(place);
            QByteArrayList pages = {QByteArray()};
            calls::Failure failure = way;
            failure.number = number;
            calls::Begin({session.folder.toStdString(), {}}, failure);
            for (const QString& text : {u"one"_s, u"two"_s, u"three"_s}) {
                session.type({2, 5}, text);
                pages.append(session.document.savePage());
            }
            const std::string call = calls::End();
            if (call.empty())
                break;
            ++faults;
            SCOPED_TRACE(fault(number, failure) + ": " + call);
            // Whatever is on the disk is a state that was shown.
            if (!session.journals().isEmpty()) {
                EXPECT_TRUE(pages.contains(RecoveredPage(session.journalBytes())));
            }
            // The next edit is on the disk again, with all before it.
            session.type({2, 5}, u"four"_s);
            EXPECT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
            EXPECT_EQ(QDir(session.folder).entryList(QDir::Files).size(), 1);
        }
    }
    EXPECT_GT(faults, 20);
    RecordProperty("faults", faults);
}

TEST_F(Faults, KeepingUnsavedTextWithAnyFailingCallKeepsItOrItsJournal)
{
    OpenBook();
    PutCaret(PlaceOf(u"words"_s));
    int faults = 0;
    for (int number = 1;; ++number) {
        Type(u"x"_s);
        Recorder()->waitUntilWritten();
        for (const QString& name : FindFiles(RecoveryFolder(), u"* (unsaved *"_s))
            DeleteOneFile(RecoveryFolder() + u'/' + name);
        calls::Begin({RecoveryFolder().toStdString() + "/book (", {}}, {.number = number, .error = ENOSPC});
        const bool kept = KeepUnsavedText();
        const std::string call = calls::End();
        if (call.empty())
            break;
        ++faults;
        SCOPED_TRACE("call " + std::to_string(number) + ": " + call);
        const QStringList texts = FindFiles(RecoveryFolder(), u"* (unsaved *).fb2"_s);
        EXPECT_EQ(texts.size(), kept ? 1 : 0);
        EXPECT_EQ(FindFiles(RecoveryFolder(), u"*.journal"_s).size(), 1);
        EXPECT_TRUE(Recorder()->hasUnsavedText());
    }
    EXPECT_GE(faults, 3);
}

} // namespace
} // namespace vmk
