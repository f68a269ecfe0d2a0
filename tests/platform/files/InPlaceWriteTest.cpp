#include "InPlaceWrite.h"
#include "Files.h"
#include "Workplace.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <functional>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

class InPlaceWrite : public testing::Test
{
protected:
    InPlaceWrite()
    {
        place.MakeFolders(u"closed"_s);
        place.Make(u"closed/book.fb2"_s, "old text");
        place.MakeFolders(u"office"_s);
        place.GiveToPlainUser();
        Allow(u"closed/book.fb2"_s, 0640);
        Allow(u"closed"_s, 0555);
    }
    ~InPlaceWrite() override { Allow(u"closed"_s, 0755); }

    void Allow(const QString& name, mode_t mode) const
    {
        EXPECT_EQ(::chmod(QFile::encodeName(place.Path(name)).constData(), mode), 0);
    }
    QString Book() const { return place.Path(u"closed/book.fb2"_s); }
    QString Backups() const { return place.Path(u"office/Backup"_s); }
    WriteResult Write(std::string_view text) const
    {
        return ReplaceContent(Book(), text, Durability::Flushed, Backups());
    }
    std::string BackupText() const
    {
        const QStringList names = FindFiles(Backups(), u"*.fb2"_s);
        EXPECT_EQ(names.size(), 1);
        return names.isEmpty() ? std::string() : ReadContent(Backups() + u'/' + names.first()).bytes;
    }

    const Workplace place;
};

/// Runs `work` in a child process whose files cannot grow beyond `bytes`, as on a full disk.
void WithFileSizeLimit(rlim_t bytes, const std::function<bool()>& work)
{
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {bytes, bytes};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        ::_exit(work() ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

} // namespace

TEST_F(InPlaceWrite, AWritableFileInAFolderThatIsNotIsOverwrittenAfterABackup)
{
    const PlainUser plain;
    const struct stat before = [this] {
        struct stat status = {};
        EXPECT_EQ(::stat(QFile::encodeName(Book()).constData(), &status), 0);
        return status;
    }();
    EXPECT_TRUE(Write("new and longer text"));
    EXPECT_EQ(ReadContent(Book()).bytes, "new and longer text");
    EXPECT_EQ(BackupText(), "old text");
    EXPECT_TRUE(Write("short"));
    EXPECT_EQ(ReadContent(Book()).bytes, "short");
    EXPECT_EQ(BackupText(), "new and longer text");
    struct stat after = {};
    ASSERT_EQ(::stat(QFile::encodeName(Book()).constData(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode & 07777, mode_t(0640));
}

TEST_F(InPlaceWrite, TheBackupIsPrivate)
{
    const PlainUser plain;
    ASSERT_TRUE(Write("new"));
    struct stat status = {};
    const QString backup = Backups() + u'/' + FindFiles(Backups(), u"*.fb2"_s).value(0);
    ASSERT_EQ(::stat(QFile::encodeName(backup).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, mode_t(0600));
}

TEST_F(InPlaceWrite, AFileHasOneBackupByEveryPath)
{
    ASSERT_EQ(::symlink("closed", QFile::encodeName(place.Path(u"way"_s)).constData()), 0);
    const PlainUser plain;
    EXPECT_TRUE(Write("new"));
    EXPECT_TRUE(ReplaceContent(place.Path(u"way/book.fb2"_s), "newer", Durability::Flushed, Backups()));
    EXPECT_EQ(BackupText(), "new");
}

TEST_F(InPlaceWrite, FilesOfTheSameNameHaveTheirOwnBackups)
{
    place.MakeFolders(u"other"_s);
    place.Make(u"other/book.fb2"_s, "other text");
    place.GiveToPlainUser();
    Allow(u"other"_s, 0555);
    const PlainUser plain;
    EXPECT_TRUE(Write("new"));
    EXPECT_TRUE(ReplaceContent(place.Path(u"other/book.fb2"_s), "x", Durability::Flushed, Backups()));
    EXPECT_EQ(FindFiles(Backups(), u"*"_s).size(), 2);
}

TEST_F(InPlaceWrite, WithoutABackupFolderTheFileStays)
{
    const PlainUser plain;
    const WriteResult result = ReplaceContent(Book(), "new");
    EXPECT_FALSE(result);
    EXPECT_EQ(result.Failure(), u"Permission denied"_s);
    EXPECT_EQ(ReadContent(Book()).bytes, "old text");
}

TEST_F(InPlaceWrite, WithoutABackupNothingIsOverwritten)
{
    Allow(u"office"_s, 0555);
    {
        const PlainUser plain;
        const WriteResult result = Write("new");
        EXPECT_FALSE(result);
        EXPECT_EQ(result.Failure(), u"no backup copy can be written: Permission denied"_s);
    }
    EXPECT_EQ(ReadContent(Book()).bytes, "old text");
    Allow(u"office"_s, 0755);
}

TEST_F(InPlaceWrite, AFileThatIsNotWritableStays)
{
    Allow(u"closed/book.fb2"_s, 0444);
    const PlainUser plain;
    EXPECT_EQ(Write("new").Failure(), u"Permission denied"_s);
    EXPECT_EQ(ReadContent(Book()).bytes, "old text");
    EXPECT_EQ(KindOfFile(Backups()), FileKind::None);
}

TEST_F(InPlaceWrite, ALackOfSpaceIsFoundBeforeAnythingIsOverwritten)
{
    const PlainUser plain;
    WithFileSizeLimit(5000, [this] {
        const WriteResult result = Write(std::string(100'000, 'x'));
        return !result && result.Failure() == u"File too large"_s;
    });
    EXPECT_EQ(ReadContent(Book()).bytes, "old text");
    EXPECT_EQ(BackupText(), "old text");
}

// ---------------------------------------------------------------- reasons

TEST_F(InPlaceWrite, AFailedWriteCarriesItsReason)
{
    EXPECT_EQ(ReplaceContent(u"/dev/full"_s, "text").Failure(), u"No space left on device"_s);
    EXPECT_EQ(ReplaceContent(place.Folder(), "text").Failure(), u"Is a directory"_s);
    EXPECT_EQ(ReplaceContent(place.Path(u"none/file"_s), "text").Failure(), u"No such file or directory"_s);
    EXPECT_EQ(ReplaceContent(u"a"_s + QChar(0), "text").Failure(), u"No such file or directory"_s);
    ASSERT_EQ(::symlink("circle", QFile::encodeName(place.Path(u"circle"_s)).constData()), 0);
    EXPECT_EQ(ReplaceContent(place.Path(u"circle"_s), "text").Failure(),
              u"Too many levels of symbolic links"_s);
    WithFileSizeLimit(10, [this] {
        return ReplaceContent(place.Path(u"large"_s), std::string(100, 'x')).Failure() == u"File too large"_s;
    });
    EXPECT_EQ(place.Names(), (QStringList{u"circle"_s, u"closed"_s, u"office"_s}));
}

// ---------------------------------------------------------------- files that a killed process left

TEST_F(InPlaceWrite, TheNextSaveRemovesWhatAKilledProcessLeft)
{
    place.Make(u".vmk-0abcxyz123.tmp"_s, "left");
    place.Make(u".vmk-UPPER.tmp"_s, "not ours");
    place.Make(u".vmk-.tmp"_s, "not ours");
    place.Make(u".vmk-12345678901234.tmp"_s, "not ours");
    place.Make(u"a.vmk-1.tmp"_s, "not ours");
    place.MakeFolders(u".vmk-1.tmp"_s);
    ASSERT_EQ(::symlink("office", QFile::encodeName(place.Path(u".vmk-2.tmp"_s)).constData()), 0);
    ASSERT_TRUE(ReplaceContent(place.Path(u"scratch"_s), "text", Durability::Scratch));
    EXPECT_TRUE(place.Names().contains(u".vmk-0abcxyz123.tmp"_s));
    ASSERT_TRUE(ReplaceContent(place.Path(u"file"_s), "text"));
    EXPECT_EQ(place.Names(),
              (QStringList{u".vmk-.tmp"_s, u".vmk-1.tmp"_s, u".vmk-12345678901234.tmp"_s, u".vmk-2.tmp"_s,
                           u".vmk-UPPER.tmp"_s, u"a.vmk-1.tmp"_s, u"closed"_s, u"file"_s, u"office"_s,
                           u"scratch"_s}));
}

TEST_F(InPlaceWrite, TheTemporaryFileOfALivingProcessStays)
{
    // A child writes without an end; its file appears, and disappears only after its death.
    place.MakeFolders(u"shared"_s);
    const pid_t child = ::fork();
    if (child == 0) {
        const int file = ::open(QFile::encodeName(place.Path(u"shared/.vmk-1.tmp"_s)).constData(),
                                O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        ::flock(file, LOCK_EX);
        const int ready
            = ::open(QFile::encodeName(place.Path(u"ready"_s)).constData(), O_CREAT | O_WRONLY, 0600);
        ::close(ready);
        for (;;)
            ::pause();
    }
    for (int i = 0; i < 1000 && KindOfFile(place.Path(u"ready"_s)) == FileKind::None; ++i)
        ::usleep(10'000);
    EXPECT_TRUE(ReplaceContent(place.Path(u"shared/a"_s), "text"));
    EXPECT_EQ(place.Names(u"shared"_s), (QStringList{u".vmk-1.tmp"_s, u"a"_s}));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(ReplaceContent(place.Path(u"shared/a"_s), "text"));
    EXPECT_EQ(place.Names(u"shared"_s), QStringList{u"a"_s});
}

TEST_F(InPlaceWrite, ConcurrentSavesInOneFolderAllSucceed)
{
    // Each save searches the folder while the others write.
    std::vector<pid_t> children;
    for (int writer = 0; writer < 4; ++writer) {
        const pid_t child = ::fork();
        if (child == 0) {
            bool allWritten = true;
            for (int i = 0; i < 200; ++i)
                allWritten = ReplaceContent(place.Path(u"office/%1"_s.arg(writer)), std::string(9000, 'x'))
                    && allWritten;
            ::_exit(allWritten ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    EXPECT_EQ(place.Names(u"office"_s), (QStringList{u"0"_s, u"1"_s, u"2"_s, u"3"_s}));
}
