#include "Files.h"
#include "EndSignals.h"
#include "ProcessFiles.h"
#include "Workplace.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

class Files : public testing::Test
{
protected:
    QString Path(const QString& name) const { return place.Path(name); }
    QByteArray SystemPath(const QString& name) const { return QFile::encodeName(Path(name)); }
    void Make(const QString& name, std::string_view text = "text") const { place.Make(name, text); }
    void Link(const char* target, const QString& name) const
    {
        ASSERT_EQ(::symlink(target, SystemPath(name).constData()), 0);
    }
    void Allow(const QString& name, mode_t mode) const
    {
        ASSERT_EQ(::chmod(SystemPath(name).constData(), mode), 0);
    }
    struct stat Status(const QString& name) const
    {
        struct stat status = {};
        EXPECT_EQ(::stat(SystemPath(name).constData(), &status), 0);
        return status;
    }
    std::string Text(const QString& name) const { return ReadContent(Path(name)).bytes; }
    ReadOutcome Outcome(const QString& name) const { return ReadContent(Path(name)).outcome; }

    Workplace place;
};

/// The exit code of a child process that runs `work`; -1 if it was killed.
int RunInChild(const std::function<int()>& work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Limits the size of files written by this process: writes fail as on a full disk.
void LimitFileSize(rlim_t bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {bytes, bytes};
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

} // namespace

// ---------------------------------------------------------------- reading

TEST_F(Files, AFailedReadReportsTheReason)
{
    place.MakeFolders(u"folder"_s);
    Make(u"file"_s);
    Make(u"closed"_s);
    Allow(u"closed"_s, 0);
    const PlainUser plain;
    EXPECT_EQ(Outcome(u"file"_s), ReadOutcome::Ok);
    EXPECT_EQ(Outcome(u"missing"_s), ReadOutcome::Missing);
    EXPECT_EQ(Outcome(u"file/below"_s), ReadOutcome::Missing);
    EXPECT_EQ(Outcome(u"folder"_s), ReadOutcome::IsFolder);
    EXPECT_EQ(Outcome(u"closed"_s), ReadOutcome::Unreadable);
}

TEST_F(Files, EachFailureHasItsMessage)
{
    EXPECT_EQ(ReadFailureText({ReadOutcome::Ok, "a", QString()}), QString());
    EXPECT_EQ(ReadFailureText(ReadContent(Path(u"missing"_s))), u"file not found"_s);
    EXPECT_EQ(ReadFailureText(ReadContent(place.Folder())), u"is a folder"_s);
    EXPECT_EQ(ReadFailureText({ReadOutcome::TooLarge, "", QString()}), u"file too large"_s);
    Make(u"closed"_s);
    Allow(u"closed"_s, 0);
    const PlainUser plain;
    EXPECT_EQ(ReadFailureText(ReadContent(Path(u"closed"_s))), u"cannot be read: Permission denied"_s);
}

TEST_F(Files, APathWithANulIsNotFound)
{
    Make(u"a"_s);
    const QString name = Path(u"a"_s) + QChar(0) + u"b"_s;
    EXPECT_EQ(ReadContent(name).outcome, ReadOutcome::Missing);
    EXPECT_FALSE(ReplaceContent(name, "new"));
    EXPECT_FALSE(DeleteOneFile(name));
    EXPECT_EQ(Text(u"a"_s), "text");
}

TEST_F(Files, AFileOfUnknownLengthIsReadToItsEnd)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const std::string sent(3'000'000, 'x');
    std::thread writer([&] {
        for (std::size_t done = 0; done < sent.size();)
            done += static_cast<std::size_t>(
                std::max<ssize_t>(0, ::write(ends[1], &sent[done], sent.size() - done)));
        ::close(ends[1]);
    });
    EXPECT_EQ(ReadContent(u"/dev/fd/"_s + QString::number(ends[0])).bytes, sent);
    writer.join();
    ::close(ends[0]);
}

TEST_F(Files, AFileOverTheLimitIsRejected)
{
    Make(u"huge"_s);
    ASSERT_EQ(::truncate(SystemPath(u"huge"_s).constData(), static_cast<off_t>(MaxFileBytes) + 1), 0);
    EXPECT_EQ(Outcome(u"huge"_s), ReadOutcome::TooLarge);
}

// ---------------------------------------------------------------- writing

TEST_F(Files, ANewFileGetsTheUsualPermissionsAndNoTemporaryFileStays)
{
    const mode_t mask = ::umask(027);
    EXPECT_TRUE(ReplaceContent(Path(u"a"_s), "new"));
    ::umask(mask);
    EXPECT_EQ(Status(u"a"_s).st_mode & 07777, 0640U);
    EXPECT_EQ(place.Names(), QStringList{u"a"_s});
}

TEST_F(Files, AReplacedFileKeepsItsPermissionsAndOwner)
{
    Make(u"a"_s, "old");
    place.GiveToPlainUser();
    Allow(u"a"_s, 0604);
    const uid_t owner = Status(u"a"_s).st_uid;
    EXPECT_TRUE(ReplaceContent(Path(u"a"_s), "new"));
    EXPECT_EQ(Text(u"a"_s), "new");
    EXPECT_EQ(Status(u"a"_s).st_mode & 07777, 0604U);
    EXPECT_EQ(Status(u"a"_s).st_uid, owner);
}

TEST_F(Files, AReplacedProgramOfAnotherUserDoesNotRunWithThatUsersRights)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only a superuser can make another user's file";
    place.GiveToPlainUser();
    Make(u"a"_s, "old");
    Allow(u"a"_s, 06755);
    const PlainUser plain;
    EXPECT_TRUE(ReplaceContent(Path(u"a"_s), "new"));
    EXPECT_EQ(Status(u"a"_s).st_uid, PlainUserId);
    EXPECT_EQ(Status(u"a"_s).st_mode & 05777, 0755U);
}

TEST_F(Files, AReadOnlyFileIsReplacedAndStaysReadOnly)
{
    Make(u"a"_s, "old");
    Allow(u"a"_s, 0400);
    place.GiveToPlainUser();
    const PlainUser plain;
    EXPECT_TRUE(ReplaceContent(Path(u"a"_s), "new"));
    EXPECT_EQ(Text(u"a"_s), "new");
    EXPECT_EQ(Status(u"a"_s).st_mode & 07777, 0400U);
}

TEST_F(Files, AFolderThatIsClosedToWritingFailsAndKeepsTheFile)
{
    place.MakeFolders(u"closed"_s);
    Make(u"closed/a"_s, "old");
    place.GiveToPlainUser();
    Allow(u"closed"_s, 0555);
    const PlainUser plain;
    EXPECT_FALSE(ReplaceContent(Path(u"closed/a"_s), "new"));
    EXPECT_FALSE(ReplaceContent(Path(u"closed/b"_s), "new"));
    EXPECT_EQ(Text(u"closed/a"_s), "old");
    EXPECT_EQ(place.Names(u"closed"_s), QStringList{u"a"_s});
}

TEST_F(Files, AFolderInsteadOfAFileIsNotReplaced)
{
    place.MakeFolders(u"folder"_s);
    Make(u"folder/kept"_s);
    EXPECT_FALSE(ReplaceContent(Path(u"folder"_s), "new"));
    EXPECT_EQ(Text(u"folder/kept"_s), "text");
    EXPECT_EQ(place.Names(), QStringList{u"folder"_s});
}

TEST_F(Files, ALinkIsWrittenThrough)
{
    place.MakeFolders(u"there"_s);
    Make(u"there/book"_s, "old");
    Link("there/second", u"first"_s);
    Link("book", u"there/second"_s);
    EXPECT_TRUE(ReplaceContent(Path(u"first"_s), "new"));
    EXPECT_EQ(Text(u"there/book"_s), "new");
    EXPECT_EQ(place.Names(u"there"_s), (QStringList{u"book"_s, u"second"_s}));
    EXPECT_TRUE(QFileInfo(Path(u"first"_s)).isSymLink());
    EXPECT_TRUE(QFileInfo(Path(u"there/second"_s)).isSymLink());
}

TEST_F(Files, ADanglingLinkCreatesItsTarget)
{
    Link("later", u"link"_s);
    EXPECT_EQ(KindOfFile(Path(u"link"_s)), FileKind::None);
    EXPECT_TRUE(EntryExists(Path(u"link"_s)));
    EXPECT_TRUE(ReplaceContent(Path(u"link"_s), "new"));
    EXPECT_EQ(Text(u"later"_s), "new");
}

TEST_F(Files, ACircleOfLinksFails)
{
    Link("b", u"a"_s);
    Link("a", u"b"_s);
    EXPECT_FALSE(ReplaceContent(Path(u"a"_s), "new"));
    EXPECT_EQ(Outcome(u"a"_s), ReadOutcome::Unreadable);
}

TEST_F(Files, TheLongestNameCanBeReplaced)
{
    const QString name(255, u'n');
    Make(name, "old");
    EXPECT_TRUE(ReplaceContent(Path(name), "new"));
    EXPECT_EQ(Text(name), "new");
}

TEST_F(Files, ADeviceIsWrittenAndStaysADevice)
{
    EXPECT_TRUE(ReplaceContent(u"/dev/null"_s, "new"));
    EXPECT_EQ(KindOfFile(u"/dev/null"_s), FileKind::Other);
    EXPECT_FALSE(ReplaceContent(u"/dev/full"_s, "new"));
}

TEST_F(Files, AFullDiskKeepsTheOldFileAndIsReported)
{
    const std::string old(100'000, 'o');
    const std::string fresh(1'000'000, 'n');
    Make(u"book"_s, old);
    // Space for nothing, for a part, and for all bytes except the last one.
    for (const rlim_t room : {rlim_t(0), rlim_t(300'000), rlim_t(999'999)}) {
        const int failed = RunInChild([&] {
            LimitFileSize(room);
            return ReplaceContent(Path(u"book"_s), fresh) ? 0 : 1;
        });
        EXPECT_EQ(failed, 1);
        EXPECT_EQ(Text(u"book"_s), old);
        EXPECT_EQ(place.Names(), QStringList{u"book"_s});
    }
    EXPECT_TRUE(ReplaceContent(Path(u"book"_s), fresh));
    EXPECT_EQ(Text(u"book"_s), fresh);
}

TEST_F(Files, AFullFileSystemKeepsTheOldFileAndIsReported)
{
    place.MakeFolders(u"small"_s);
    if (::mount("none", SystemPath(u"small"_s).constData(), "tmpfs", 0, "size=1m") != 0)
        GTEST_SKIP() << "a small file system cannot be mounted here";
    const std::string old(700'000, 'o');
    EXPECT_TRUE(ReplaceContent(Path(u"small/book"_s), old));
    EXPECT_FALSE(ReplaceContent(Path(u"small/book"_s), std::string(700'000, 'n')));
    EXPECT_EQ(Text(u"small/book"_s), old);
    EXPECT_EQ(place.Names(u"small"_s), QStringList{u"book"_s});
    EXPECT_FALSE(CopyOneFile(Path(u"small/book"_s), Path(u"small/copy"_s)));
    EXPECT_EQ(place.Names(u"small"_s), QStringList{u"book"_s});
    EXPECT_EQ(::umount(SystemPath(u"small"_s).constData()), 0);
}

TEST_F(Files, AKilledWriterLeavesACompleteFile)
{
    const std::string one(2'000'000, '1');
    const std::string two(2'000'001, '2');
    Make(u"book"_s, one);
    // A temporary file beside the book shows that a kill interrupted a write.
    constexpr int LeastRounds = 20;
    constexpr int MostRounds = 1000;
    const auto hasHit = [this] { return place.Names().size() > 1; };
    for (int round = 0; round < LeastRounds || (!hasHit() && round < MostRounds); ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (;;) {
                if (!ReplaceContent(Path(u"book"_s), two) || !ReplaceContent(Path(u"book"_s), one))
                    ::_exit(1);
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(3 + 2 * (round % LeastRounds)));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        const std::string text = Text(u"book"_s);
        ASSERT_TRUE(text == one || text == two) << "round " << round << ", " << text.size() << " bytes";
    }
    EXPECT_TRUE(hasHit());
}

TEST_F(Files, TwoConcurrentWritersLeaveTheCompleteContentOfOne)
{
    const std::string one(300'000, '1');
    const std::string two(400'000, '2');
    Make(u"book"_s, one);
    const pid_t other = ::fork();
    if (other == 0) {
        for (int i = 0; i < 50; ++i)
            if (!ReplaceContent(Path(u"book"_s), two, Durability::Scratch))
                ::_exit(1);
        ::_exit(0);
    }
    for (int i = 0; i < 50; ++i) {
        EXPECT_TRUE(ReplaceContent(Path(u"book"_s), one, Durability::Scratch));
        const std::string text = Text(u"book"_s);
        EXPECT_TRUE(text == one || text == two) << text.size() << " bytes";
    }
    int status = 0;
    ASSERT_EQ(::waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(place.Names(), QStringList{u"book"_s});
}

// ---------------------------------------------------------------- the process

TEST_F(Files, AFileNeverGetsTheNumberOfAClosedStandardHandle)
{
    const int failed = RunInChild([&] {
        for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::close(handle);
        HoldStandardHandles();
        const int opened = ::open(SystemPath(u"book"_s).constData(), O_WRONLY | O_CREAT, 0600);
        const bool isAfter = opened > STDERR_FILENO;
        const bool isReported = ::write(STDOUT_FILENO, "x", 1) < 0 && ::write(STDERR_FILENO, "x", 1) < 0;
        char c = 0;
        return isAfter && isReported && ::read(STDIN_FILENO, &c, 1) < 0 ? 0 : 1;
    });
    EXPECT_EQ(failed, 0);
}

TEST_F(Files, AWriteBeyondTheSizeLimitFailsWithoutEndingTheProcess)
{
    Make(u"book"_s, "old");
    const int failed = RunInChild([&] {
        const rlimit limit = {1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        SurviveFileSizeLimit();
        return ReplaceContent(Path(u"book"_s), std::string(2000, 'n')) ? 0 : 7;
    });
    EXPECT_EQ(failed, 7);
    EXPECT_EQ(Text(u"book"_s), "old");
}

TEST_F(Files, AWriteIntoABrokenPipeFailsWithoutEndingTheProcess)
{
    const int failed = RunInChild([] {
        int ends[2] = {};
        if (::pipe(ends) != 0)
            return 1;
        ::close(ends[0]);
        SurviveBrokenPipes();
        return ::write(ends[1], "x", 1) < 0 ? 7 : 0;
    });
    EXPECT_EQ(failed, 7);
}

// ---------------------------------------------------------------- copying, moving, deleting

TEST_F(Files, MovingBetweenFileSystemsCopiesAndDeletes)
{
    const QTemporaryDir other(u"/dev/shm/vmk-XXXXXX"_s);
    struct stat there = {};
    if (!other.isValid() || ::stat(QFile::encodeName(other.path()).constData(), &there) != 0
        || there.st_dev == Status(QString()).st_dev)
        GTEST_SKIP() << "there is no second file system here";
    Make(u"a"_s);
    EXPECT_TRUE(MoveOneFile(Path(u"a"_s), other.filePath(u"b"_s)));
    EXPECT_EQ(ReadContent(other.filePath(u"b"_s)).bytes, "text");
    EXPECT_TRUE(place.Names().isEmpty());
}

TEST_F(Files, AFailedMoveKeepsBothFiles)
{
    Make(u"a"_s);
    place.MakeFolders(u"folder/inner"_s);
    EXPECT_FALSE(MoveOneFile(Path(u"a"_s), Path(u"folder"_s)));
    EXPECT_EQ(place.Names(), (QStringList{u"a"_s, u"folder"_s}));
}

TEST_F(Files, AFolderCopyThatFailsLeavesTheTargetAsItWas)
{
    place.MakeFolders(u"a"_s);
    Make(u"a/one"_s);
    Make(u"a/two"_s);
    place.MakeFolders(u"b"_s);
    Make(u"b/old"_s);
    place.GiveToPlainUser();
    Allow(u"a/two"_s, 0);
    const PlainUser plain;
    EXPECT_FALSE(CopyFolderTree(Path(u"a"_s), Path(u"b"_s)));
    EXPECT_EQ(place.Names(), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_EQ(place.Names(u"b"_s), QStringList{u"old"_s});
}

TEST_F(Files, AFolderCopyLeavesNothingOfTheReplacedFolder)
{
    place.MakeFolders(u"a"_s);
    Make(u"a/new"_s);
    place.MakeFolders(u"b/inner"_s);
    Make(u"b/old"_s);
    EXPECT_TRUE(CopyFolderTree(Path(u"a"_s), Path(u"b"_s)));
    EXPECT_EQ(place.Names(), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_EQ(place.Names(u"b"_s), QStringList{u"new"_s});
}

TEST_F(Files, AFolderInsideALinkedFolderIsNotCopiedOverItself)
{
    place.MakeFolders(u"a/inner"_s);
    Make(u"a/inner/kept"_s);
    Link("a", u"link"_s);
    EXPECT_FALSE(CopyFolderTree(Path(u"link/inner"_s), Path(u"a"_s)));
    EXPECT_FALSE(CopyFolderTree(Path(u"a"_s), Path(u"link/inner/copy"_s)));
    EXPECT_EQ(Text(u"a/inner/kept"_s), "text");
}

TEST_F(Files, TheRootFolderIsNotDeleted)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only a superuser can try this on a root of its own";
    place.MakeFolders(u"folder"_s);
    Make(u"folder/kept"_s);
    const int deleted = RunInChild([&] {
        if (::chroot(SystemPath(QString()).constData()) != 0 || ::chdir("/") != 0)
            return 2;
        return DeleteFolderTree(u"/"_s) || DeleteFolderTree(u"/folder/.."_s) ? 1 : 0;
    });
    EXPECT_EQ(deleted, 0);
    EXPECT_EQ(Text(u"folder/kept"_s), "text");
}

TEST_F(Files, ALinkToAFolderIsNotDeletedAsAFolder)
{
    place.MakeFolders(u"a"_s);
    Make(u"a/kept"_s);
    Link("a", u"link"_s);
    EXPECT_FALSE(DeleteFolderTree(Path(u"link"_s)));
    EXPECT_EQ(Text(u"a/kept"_s), "text");
}

TEST_F(Files, PatternsFitNames)
{
    for (const QString& name : {u"a"_s, u"ab"_s, u"abab.c"_s, u".hidden"_s, u"b.c"_s})
        Make(name);
    place.MakeFolders(u"a-folder"_s);
    const auto found = [&](const QString& pattern) { return FindFiles(place.Folder(), pattern); };
    EXPECT_EQ(found(u"*"_s), (QStringList{u".hidden"_s, u"a"_s, u"ab"_s, u"abab.c"_s, u"b.c"_s}));
    EXPECT_EQ(found(u"*.*"_s), found(u"*"_s));
    EXPECT_EQ(found(u"a*"_s), (QStringList{u"a"_s, u"ab"_s, u"abab.c"_s}));
    EXPECT_EQ(found(u"*ab*"_s), (QStringList{u"ab"_s, u"abab.c"_s}));
    EXPECT_EQ(found(u"a?*"_s), (QStringList{u"ab"_s, u"abab.c"_s}));
    EXPECT_EQ(found(u"*.c"_s), (QStringList{u"abab.c"_s, u"b.c"_s}));
    EXPECT_TRUE(found(u"*.d"_s).isEmpty());
    EXPECT_TRUE(FindFiles(Path(u"missing"_s), u"*"_s).isEmpty());
}

TEST_F(Files, FolderWritabilityIsThatOfTheUser)
{
    place.MakeFolders(u"closed"_s);
    Make(u"file"_s);
    place.GiveToPlainUser();
    Allow(u"closed"_s, 0555);
    const PlainUser plain;
    EXPECT_TRUE(IsFolderWritable(place.Folder()));
    EXPECT_FALSE(IsFolderWritable(Path(u"closed"_s)));
    EXPECT_FALSE(IsFolderWritable(Path(u"file"_s)));
}

TEST_F(Files, AReplacedFileKeepsItsExtendedAttributes)
{
    Make(u"book"_s, "old");
    const QByteArray path = SystemPath(u"book"_s);
    if (::setxattr(path.constData(), "user.comment", "mine", 4, 0) != 0)
        GTEST_SKIP() << "no extended attributes in this folder";
    ASSERT_TRUE(ReplaceContent(Path(u"book"_s), "new"));
    EXPECT_EQ(Text(u"book"_s), "new");
    std::array<char, 16> value = {};
    EXPECT_EQ(::getxattr(path.constData(), "user.comment", value.data(), value.size()), 4);
    EXPECT_STREQ(value.data(), "mine");
}

TEST_F(Files, AReplacedFileKeepsItsAccessControlList)
{
    Make(u"book"_s, "old");
    const QByteArray path = SystemPath(u"book"_s);
    // The system's format: a version, then tag, permissions and identifier of each entry.
    struct Entry
    {
        quint16 tag;
        quint16 permissions;
        quint32 id;
    };
    struct List
    {
        quint32 version = 2;
        std::array<Entry, 5> entries
            = {{{1, 6, ~0U}, {2, 4, 12345}, {4, 0, ~0U}, {0x10, 4, ~0U}, {0x20, 0, ~0U}}};
    };
    const List list;
    constexpr const char* Name = "system.posix_acl_access";
    if (::setxattr(path.constData(), Name, &list, sizeof list, 0) != 0)
        GTEST_SKIP() << "no access control lists in this folder";
    ASSERT_TRUE(ReplaceContent(Path(u"book"_s), "new"));
    EXPECT_EQ(Text(u"book"_s), "new");
    List after;
    after.entries = {};
    EXPECT_EQ(::getxattr(path.constData(), Name, &after, sizeof after), ssize_t(sizeof list));
    EXPECT_EQ(after.entries[1].id, 12345U);
    EXPECT_EQ(after.entries[1].permissions, 4);
    EXPECT_EQ(Status(u"book"_s).st_mode & 0777, 0640U);
}

TEST(EndSignals, EachSignalIsAByteInThePipe)
{
    EXPECT_EQ(RunInChild([] {
                  const int pipe = WatchEndSignals();
                  int bytes = 0;
                  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
                      ::raise(number);
                      char byte = 0;
                      bytes += int(::read(pipe, &byte, 1));
                  }
                  return bytes;
              }),
              3);
}

TEST(EndSignals, AnIgnoredSignalIsStillIgnored)
{
    EXPECT_EQ(RunInChild([] {
                  static_cast<void>(std::signal(SIGHUP, SIG_IGN));
                  const int pipe = WatchEndSignals();
                  ::raise(SIGHUP);
                  char byte = 0;
                  return int(::read(pipe, &byte, 1)) == -1 ? 7 : 8;
              }),
              7);
}
