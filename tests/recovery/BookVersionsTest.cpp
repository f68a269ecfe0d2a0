#include "BookVersions.h"
#include "BookOnDisk.h"
#include "Boxes.h"
#include "FileNames.h"
#include "FilePaths.h"
#include "FileSizeLimit.h"
#include "Files.h"
#include "FolderListing.h"
#include "Workplace.h"

#include <QDateTime>

#include <unistd.h>

/// Earlier versions of saved books, and books that other programs change.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class Versions : public testing::Test
{
protected:
    /// Saves a text as the window does.
    void save(const std::string& text)
    {
        const KeptVersion kept = KeepVersion(backup, book);
        EXPECT_TRUE(kept.isSafe) << kept.reason.toStdString();
        ASSERT_TRUE(ReplaceContent(book, text));
    }
    [[nodiscard]] std::vector<std::string> texts() const
    {
        std::vector<std::string> found;
        for (const BookVersion& version : VersionsOf(backup, book))
            found.push_back(ReadContent(version.path).bytes);
        return found;
    }

    const Workplace place;
    const QString backup = place.Path(u"Backup"_s);
    QString book = place.Path(u"book.fb2"_s);
};

TEST_F(Versions, TheFirstSaveOfANewFileKeepsNothing)
{
    save("one");
    EXPECT_TRUE(texts().empty());
}

TEST_F(Versions, EachSaveKeepsTheFileBefore)
{
    save("one");
    save("two");
    save("three");
    EXPECT_EQ(texts(), (std::vector<std::string>{"two", "one"}));
    EXPECT_EQ(VersionsOf(backup, book).front().bytes, 3);
}

TEST_F(Versions, AVersionIsNotChangedByAProgramThatWritesIntoTheBook)
{
    save("one");
    save("two");
    QFile file(book);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("changed in place");
    file.close();
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
    save("three");
    EXPECT_EQ(texts(), (std::vector<std::string>{"changed in place", "one"}));
}

TEST_F(Versions, ABookWithSeveralNamesIsCopied)
{
    save("one");
    const QString other = place.Path(u"other name"_s);
    ASSERT_EQ(::link(qPrintable(book), qPrintable(other)), 0);
    save("two");
    QFile file(other);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("changed by its other name");
    file.close();
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
}

TEST_F(Versions, TheNewest10AreKept)
{
    for (int i = 0; i < 15; ++i)
        save(std::to_string(i));
    EXPECT_EQ(texts(), (std::vector<std::string>{"13", "12", "11", "10", "9", "8", "7", "6", "5", "4"}));
}

TEST_F(Versions, OfAllBooksTogether500MegabytesAreKept)
{
    // Sparse files: they need no space.
    const auto makeLarge = [this] {
        QFile file(book);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.resize(qint64(200) * 1024 * 1024));
    };
    const auto keep = [this] {
        ASSERT_TRUE(KeepVersion(backup, book).isSafe);
        ASSERT_TRUE(QFile::remove(book));
    };
    for (int i = 0; i < 3; ++i) {
        book = place.Path(u"large%1.fb2"_s.arg(i));
        makeLarge();
        keep();
    }
    const auto count
        = [this](int i) { return VersionsOf(backup, place.Path(u"large%1.fb2"_s.arg(i))).size(); };
    EXPECT_EQ(count(0), 0U);
    EXPECT_EQ(count(1), 1U);
    EXPECT_EQ(count(2), 1U);
    // The folder of a book without versions is removed.
    EXPECT_EQ(place.Names(u"Backup"_s).size(), 2);
}

TEST_F(Versions, ABookAboveTheLimitKeepsItsNewestVersion)
{
    QFile file(book);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.resize(qint64(600) * 1024 * 1024));
    file.close();
    ASSERT_TRUE(KeepVersion(backup, book).isSafe);
    EXPECT_EQ(VersionsOf(backup, book).size(), 1U);
}

TEST_F(Versions, BooksOfTheSameNameAreSeparate)
{
    save("one");
    save("two");
    place.MakeFolders(u"inner"_s);
    book = place.Path(u"inner/book.fb2"_s);
    save("three");
    EXPECT_TRUE(texts().empty());
    save("four");
    EXPECT_EQ(texts(), std::vector<std::string>{"three"});
}

TEST_F(Versions, ABookHasTheSameVersionsByALink)
{
    save("one");
    ASSERT_TRUE(QFile::link(book, place.Path(u"link.fb2"_s)));
    book = place.Path(u"link.fb2"_s);
    save("two");
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
    book = place.Path(u"book.fb2"_s);
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
}

TEST_F(Versions, ARemovedBookKeepsItsVersions)
{
    save("one");
    save("two");
    ASSERT_TRUE(QFile::remove(book));
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
}

TEST_F(Versions, AVersionOfAKilledSaveIsNoVersion)
{
    save("one");
    // Killed before the file was replaced.
    ASSERT_TRUE(KeepVersion(backup, book).isSafe);
    save("two");
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
}

TEST_F(Versions, AVersionOfAFailedSaveIsDropped)
{
    save("one");
    KeptVersion kept;
    {
        const FileSizeLimit limit(10);
        EXPECT_FALSE(bool(ReplaceBook(backup, book, std::string(100, 'x'), kept)));
    }
    EXPECT_TRUE(texts().empty());
    EXPECT_EQ(ReadContent(book).bytes, "one");
}

TEST_F(Versions, SavingTheSameContentAgainKeepsNoVersion)
{
    save("one");
    KeptVersion kept;
    ASSERT_TRUE(bool(ReplaceBook(backup, book, "two", kept)));
    for (int i = 0; i < 12; ++i) {
        ASSERT_TRUE(bool(ReplaceBook(backup, book, "two", kept)));
        EXPECT_TRUE(kept.isSafe);
        EXPECT_EQ(kept.path, QString());
    }
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
    ASSERT_TRUE(bool(ReplaceBook(backup, book, "TWO", kept)));
    EXPECT_EQ(texts(), (std::vector<std::string>{"two", "one"}));
}

TEST_F(Versions, ABookWithTheLongestNameHasVersions)
{
    // 255 bytes in characters of three bytes and of a surrogate pair.
    book = place.Path(QString(83, QChar(0x4e00)) + QString::fromUtf8("🙂") + u"aa"_s);
    save("one");
    save("two");
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
}

TEST_F(Versions, AFileOverwrittenInPlaceKeepsItsVersion)
{
    place.MakeFolders(u"closed"_s);
    book = place.Path(u"closed/book.fb2"_s);
    save("one");
    place.GiveToPlainUser();
    const PlainUser user;
    constexpr auto Closed = QFileDevice::ReadOwner | QFileDevice::ExeOwner;
    ASSERT_TRUE(QFile::setPermissions(place.Path(u"closed"_s), Closed));
    KeptVersion kept;
    EXPECT_TRUE(bool(ReplaceBook(backup, book, "two", kept)));
    EXPECT_TRUE(kept.isSafe) << kept.reason.toStdString();
    EXPECT_EQ(ReadContent(book).bytes, "two");
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
    ASSERT_TRUE(QFile::setPermissions(place.Path(u"closed"_s), Closed | QFileDevice::WriteOwner));
}

TEST_F(Versions, AFolderThatCannotBeMadeIsReported)
{
    save("one");
    place.Make(u"Backup"_s, "a file");
    const KeptVersion kept = KeepVersion(backup, book);
    EXPECT_FALSE(kept.isSafe);
    EXPECT_TRUE(kept.reason.contains(u"cannot be made"_s));
}

TEST_F(Versions, APlantedLinkIsNotFollowed)
{
    save("one");
    place.MakeFolders(u"elsewhere"_s);
    ASSERT_TRUE(QFile::link(place.Path(u"elsewhere"_s), backup));
    EXPECT_FALSE(KeepVersion(backup, book).isSafe);
    EXPECT_EQ(place.Names(u"elsewhere"_s), QStringList());
}

TEST_F(Versions, APlantedLinkIsNotReadEither)
{
    save("one");
    save("two");
    const QString folder = FolderOf(VersionsOf(backup, book).front().path).chopped(1);
    ASSERT_TRUE(QFile::rename(folder, place.Path(u"elsewhere"_s)));
    ASSERT_TRUE(QFile::link(place.Path(u"elsewhere"_s), folder));
    EXPECT_TRUE(texts().empty());
    EXPECT_FALSE(KeepVersion(backup, book).isSafe);
    EXPECT_EQ(place.Names(u"elsewhere"_s).size(), 1);
    ASSERT_TRUE(QFile::remove(folder));
    ASSERT_TRUE(QFile::rename(place.Path(u"elsewhere"_s), folder));
    ASSERT_TRUE(QFile::rename(backup, place.Path(u"elsewhere"_s)));
    ASSERT_TRUE(QFile::link(place.Path(u"elsewhere"_s), backup));
    EXPECT_TRUE(texts().empty());
}

TEST_F(Versions, AFolderOfAnotherUserIsNotUsed)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only a superuser can make files of another user";
    constexpr uid_t Other = 12'345;
    save("one");
    save("two");
    const QString folder = FolderOf(VersionsOf(backup, book).front().path).chopped(1);
    for (const QString& path : {folder, backup}) {
        ASSERT_EQ(::chown(QFile::encodeName(path).constData(), Other, gid_t(-1)), 0);
        const KeptVersion kept = KeepVersion(backup, book);
        EXPECT_FALSE(kept.isSafe);
        EXPECT_TRUE(kept.reason.contains(u"cannot be made"_s));
        EXPECT_TRUE(texts().empty());
        EXPECT_EQ(QDir(folder).entryList(QDir::Files).size(), 1);
        ASSERT_EQ(::chown(QFile::encodeName(path).constData(), ::geteuid(), gid_t(-1)), 0);
    }
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
}

TEST_F(Versions, OfBooksWithNamesThatAreNotUtf8CountInTheLimit)
{
    const QString strange = place.Folder() + u'/' + DecodeFileName("b\xff.fb2");
    const auto keepLarge = [this](const QString& path) {
        const std::string name = EncodeFileName(path).toStdString();
        ASSERT_TRUE(bool(ReplaceContent(path, "x")));
        ASSERT_EQ(::truncate(name.c_str(), off_t(300) * 1024 * 1024), 0);
        ASSERT_TRUE(KeepVersion(backup, path).isSafe);
        ASSERT_EQ(::unlink(name.c_str()), 0);
    };
    keepLarge(strange);
    ASSERT_EQ(VersionsOf(backup, strange).size(), 1U);
    keepLarge(book);
    EXPECT_EQ(VersionsOf(backup, strange).size(), 0U);
    EXPECT_EQ(VersionsOf(backup, book).size(), 1U);
    QString problem;
    const FolderListing left(
        backup.toStdString(), [](std::string_view) { return true; }, &problem);
    EXPECT_EQ(left.size(), 1U);
}

TEST_F(Versions, AClockThatIsSetBackKeepsTheOrder)
{
    save("one");
    save("two");
    const QString first = VersionsOf(backup, book).front().path;
    ASSERT_TRUE(QFile::rename(first, FolderOf(first) + u"99991231-000000-000.version"_s));
    save("three");
    save("four");
    EXPECT_EQ(texts(), (std::vector<std::string>{"three", "two", "one"}));
}

// ---------------------------------------------------------------- other programs

class OtherPrograms : public testing::Test
{
protected:
    OtherPrograms()
    {
        place.Make(u"book.fb2"_s, "loaded");
        NoteBookLoaded(book, StateOfFile(book), "loaded");
    }
    ~OtherPrograms() override { OpenBookOnDisk = {}; }

    const Workplace place;
    const QString book = place.Path(u"book.fb2"_s);
    QStringList questions;
    bool answer = false;
    const SeamGuard<bool(BoxKind, const QString&, const QString&)> boxes{
        BoxSeam(), [this](BoxKind kind, const QString& text, const QString&) {
            EXPECT_EQ(kind, BoxKind::YesNo);
            questions.append(text);
            return answer;
        }};
};

TEST_F(OtherPrograms, AnUnchangedFileIsReplacedWithoutAQuestion)
{
    EXPECT_TRUE(MayReplaceBook(book));
    EXPECT_EQ(questions, QStringList());
}

TEST_F(OtherPrograms, AChangedFileIsReplacedOnlyOnYes)
{
    place.Make(u"book.fb2"_s, "others");
    EXPECT_FALSE(MayReplaceBook(book));
    answer = true;
    EXPECT_TRUE(MayReplaceBook(book));
    ASSERT_EQ(questions.size(), 2);
    // Both times are named.
    const QString time = OpenBookOnDisk.state.time().toString(u"dd.MM.yyyy HH:mm:ss"_s);
    EXPECT_TRUE(questions[0].contains(u"is of: "_s + time)) << questions[0].toStdString();
    EXPECT_TRUE(questions[0].contains(StateOfFile(book).time().toString(u"dd.MM.yyyy HH:mm:ss"_s)));
}

TEST_F(OtherPrograms, AFileOfTheSameLengthIsCompared)
{
    place.Make(u"book.fb2"_s, "LOADED");
    EXPECT_FALSE(MayReplaceBook(book));
}

TEST_F(OtherPrograms, ANewTimeAloneIsNoChange)
{
    QFile file(book);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        file.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime));
    file.close();
    EXPECT_TRUE(MayReplaceBook(book));
    EXPECT_EQ(questions, QStringList());
}

TEST_F(OtherPrograms, ADeletedFileIsSimplyWritten)
{
    ASSERT_TRUE(QFile::remove(book));
    EXPECT_TRUE(MayReplaceBook(book));
    EXPECT_EQ(questions, QStringList());
}

TEST_F(OtherPrograms, AnotherFileIsNotAskedAbout)
{
    place.Make(u"other.fb2"_s, "other");
    EXPECT_TRUE(MayReplaceBook(place.Path(u"other.fb2"_s)));
}

TEST_F(OtherPrograms, TheOwnSaveIsNoChange)
{
    ASSERT_TRUE(ReplaceContent(book, "saved"));
    NoteBookSaved(book, "saved");
    EXPECT_TRUE(MayReplaceBook(book));
    place.Make(u"book.fb2"_s, "others");
    EXPECT_FALSE(MayReplaceBook(book));
    EXPECT_TRUE(questions.value(0).contains(u"that you saved"_s));
}

} // namespace
} // namespace vmk
