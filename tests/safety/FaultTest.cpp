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

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>

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

TEST(FileFaults, ACopyOfAFolderWithAnyFailingCallLeavesTheOldOrTheNewFolder)
{
    const auto namesIn
        = [](const Workplace& place, const QString& folder) { return place.Names(folder).join(u' '); };
    int failed = 0;
    int kept = 0;
    for (const calls::Failure& way : Failures) {
        for (int number = 1;; ++number) {
            const Workplace place;
            place.MakeFolders(u"new/inner"_s);
            place.Make(u"new/one"_s, "one");
            place.Make(u"new/inner/two"_s, "two");
            place.MakeFolders(u"parent/target"_s);
            place.Make(u"parent/target/old"_s, "old");
            calls::Failure failure = way;
            failure.number = number;
            calls::Begin({place.Path(u"parent"_s).toStdString(), {}}, failure);
            const bool copied = CopyFolderTree(place.Path(u"new"_s), place.Path(u"parent/target"_s));
            const std::string call = calls::End();
            if (call.empty())
                break;
            SCOPED_TRACE("call " + std::to_string(number) + ": " + call);
            if (copied) {
                EXPECT_EQ(namesIn(place, u"parent/target"_s), u"inner one"_s);
                EXPECT_EQ(ReadFileText(place.Path(u"parent/target/inner/two"_s)), "two");
                continue;
            }
            ++failed;
            if (place.Names(u"parent"_s).contains(u"target"_s)) {
                EXPECT_EQ(ReadFileText(place.Path(u"parent/target/old"_s)), "old");
                EXPECT_EQ(namesIn(place, u"parent/target"_s), u"old"_s);
                continue;
            }
            // The old folder could not be restored either: neither it nor the copy is deleted.
            EXPECT_TRUE(way.isLasting);
            ++kept;
            QStringList found;
            for (const QString& name : place.Names(u"parent"_s))
                found.append(namesIn(place, u"parent/"_s + name));
            found.sort();
            EXPECT_EQ(found, (QStringList{u"inner one"_s, u"old"_s}));
        }
    }
    EXPECT_GE(failed, 10);
    EXPECT_GE(kept, 1);
}

TEST(FileFaults, AnInPlaceWriteWithAnyFailingCallLeavesTheOldOrTheNewFileOrNamesItsBackup)
{
    int restored = 0;
    int named = 0;
    int unreserved = 0;
    for (const std::string& text : {std::string("new and longer text"), std::string("new")}) {
        for (const calls::Failure& way : Failures) {
            for (int number = 1;; ++number) {
                const Workplace place;
                place.MakeFolders(u"closed"_s);
                place.MakeFolders(u"office"_s);
                place.Make(u"closed/book.fb2"_s, "old text");
                place.GiveToPlainUser();
                const QByteArray folder = QFile::encodeName(place.Path(u"closed"_s));
                struct stat status = {};
                ASSERT_EQ(::stat((folder + "/book.fb2").constData(), &status), 0);
                const std::uint64_t inode = status.st_ino;
                ASSERT_EQ(::chmod(folder.constData(), 0555), 0);
                calls::Failure failure = way;
                failure.number = number;
                WriteResult result;
                std::string call;
                {
                    const PlainUser plain;
                    calls::Begin({place.Folder().toStdString(), "/.vmk-"}, failure);
                    result = ReplaceContent(place.Path(u"closed/book.fb2"_s), text, Durability::Flushed,
                                            place.Path(u"office/Backup"_s));
                    call = calls::End();
                }
                ASSERT_EQ(::chmod(folder.constData(), 0755), 0);
                if (call.empty())
                    break;
                SCOPED_TRACE("call " + std::to_string(number) + ": " + call + ", "
                             + result.Failure().toStdString());
                const std::string content = ReadFileText(place.Path(u"closed/book.fb2"_s));
                const QString mark = u"; the old content is in "_s;
                if (const qsizetype at = result.Failure().indexOf(mark); at >= 0) {
                    ++named;
                    EXPECT_EQ(ReadFileText(result.Failure().mid(at + mark.size())), "old text");
                    continue;
                }
                EXPECT_EQ(content, result ? text : "old text");
                if (call.starts_with("posix_fallocate") && !result) {
                    ++unreserved;
                    const auto isWrite = [inode](const calls::Call& made) {
                        return made.kind == calls::Call::Write && made.file == inode;
                    };
                    EXPECT_TRUE(std::ranges::none_of(calls::Recorded(), isWrite));
                }
                const bool wasTouched = call.starts_with("write") || call.starts_with("ftruncate");
                restored += !result && wasTouched ? 1 : 0;
            }
        }
    }
    EXPECT_GE(restored, 4);
    EXPECT_GE(unreserved, 1) << "a lack of space is found before the file is touched";
    EXPECT_GE(named, 1);
}

TEST(FileFaults, AFullDiskIsNoReasonToWriteInPlace)
{
    for (int number = 1;; ++number) {
        const Workplace place;
        place.MakeFolders(u"books"_s);
        place.Make(u"books/book.fb2"_s, "old text");
        calls::Begin({place.Path(u"books"_s).toStdString(), {}}, {.number = number, .error = ENOSPC});
        const WriteResult result = ReplaceContent(place.Path(u"books/book.fb2"_s), "new text",
                                                  Durability::Flushed, place.Path(u"Backup"_s));
        const std::string call = calls::End();
        if (call.empty())
            break;
        SCOPED_TRACE(call);
        EXPECT_EQ(ReadFileText(place.Path(u"books/book.fb2"_s)), result ? "new text" : "old text");
        EXPECT_EQ(place.Names(), QStringList{u"books"_s});
    }
}

TEST(FileFaults, AFileThatNoOtherCanReplaceIsWrittenInPlace)
{
    // As a mount point, which a rename finds busy.
    bool wasRenamed = false;
    for (int number = 1; !wasRenamed; ++number) {
        const Workplace place;
        place.MakeFolders(u"books"_s);
        place.Make(u"books/book.fb2"_s, "old text");
        calls::Begin({place.Path(u"books"_s).toStdString(), {}}, {.number = number, .error = EBUSY});
        const WriteResult result = ReplaceContent(place.Path(u"books/book.fb2"_s), "new text",
                                                  Durability::Flushed, place.Path(u"Backup"_s));
        const std::string call = calls::End();
        ASSERT_FALSE(call.empty());
        wasRenamed = call.starts_with("rename");
        if (!wasRenamed)
            continue;
        EXPECT_TRUE(result) << result.Failure().toStdString();
        EXPECT_EQ(ReadFileText(place.Path(u"books/book.fb2"_s)), "new text");
        EXPECT_EQ(place.Names(u"books"_s), QStringList{u"book.fb2"_s});
        const QStringList backups = place.Names(u"Backup"_s);
        ASSERT_EQ(backups.size(), 1);
        EXPECT_EQ(ReadFileText(place.Path(u"Backup/"_s + backups[0])), "old text");
    }
}

} // namespace
} // namespace vmk
