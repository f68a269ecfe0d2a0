#include "FileOperations.h"
#include "StartUpVariables.h"
#include "Workplace.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

class FileOperations : public testing::Test
{
protected:
    QString Path(const QString& name) const { return place.Path(name); }
    void Make(const QString& name, std::string_view text = "text") const { place.Make(name, text); }
    std::string Text(const QString& name) const { return ReadFileText(Path(name)); }

    Workplace place;
};

} // namespace

// ---------------------------------------------------------------- existence

TEST_F(FileOperations, AFileExists)
{
    Make(u"book.fb2"_s);
    EXPECT_TRUE(FileExists(Path(u"book.fb2"_s)));
    EXPECT_FALSE(FileExists(Path(u"other.fb2"_s)));
    EXPECT_FALSE(FolderExists(Path(u"book.fb2"_s)));
}

TEST_F(FileOperations, AFolderIsFoundByBothTests)
{
    ASSERT_TRUE(MakeFolder(Path(u"folder"_s)));
    EXPECT_TRUE(FileExists(Path(u"folder"_s)));
    EXPECT_TRUE(FolderExists(Path(u"folder"_s)));
}

TEST_F(FileOperations, ATrailingSeparatorIsDroppedBeforeTheTest)
{
    ASSERT_TRUE(MakeFolder(Path(u"folder"_s)));
    EXPECT_TRUE(FileExists(Path(u"folder/"_s)));
    EXPECT_TRUE(FolderExists(Path(u"folder/"_s)));
    EXPECT_TRUE(FolderExists(Path(u"folder\\"_s)));
}

TEST_F(FileOperations, ARootDoesNotExistAsAFile)
{
    EXPECT_FALSE(FileExists(u"C:\\"_s));
    EXPECT_FALSE(FileExists(u"/"_s));
}

TEST_F(FileOperations, ABlankNamePartIsFalse)
{
    EXPECT_FALSE(FileExists(QString()));
    EXPECT_FALSE(FileExists(u"   "_s));
    EXPECT_FALSE(FileExists(place.Folder() + u"/  "_s));
}

TEST_F(FileOperations, APatternExistsWhenAFileFitsIt)
{
    ASSERT_TRUE(MakeFolder(Path(u"folder"_s)));
    EXPECT_FALSE(FileExists(Path(u"folder/*"_s)));
    Make(u"folder/a.dat"_s);
    EXPECT_TRUE(FileExists(Path(u"folder/*"_s)));
    EXPECT_TRUE(FileExists(Path(u"folder/a*"_s)));
    EXPECT_FALSE(FileExists(Path(u"folder/b*"_s)));
}

TEST_F(FileOperations, MakeFolderLeavesAnExistingFolder)
{
    ASSERT_TRUE(MakeFolder(Path(u"folder"_s)));
    Make(u"folder/kept"_s);
    EXPECT_TRUE(MakeFolder(Path(u"folder/"_s)));
    EXPECT_EQ(Text(u"folder/kept"_s), "text");
}

TEST_F(FileOperations, MakeFolderCreatesOneLevelOnly)
{
    EXPECT_FALSE(MakeFolder(Path(u"one/two"_s)));
    EXPECT_FALSE(FolderExists(Path(u"one"_s)));
}

TEST_F(FileOperations, MakeFolderFailsIfAFileExists)
{
    Make(u"file"_s);
    EXPECT_FALSE(MakeFolder(Path(u"file"_s)));
    EXPECT_EQ(Text(u"file"_s), "text");
}

// ---------------------------------------------------------------- reading and writing

TEST_F(FileOperations, BytesAreReadAsWritten)
{
    std::string all;
    for (int i = 0; i < 70000; ++i)
        all.push_back(static_cast<char>(i * 7));
    ASSERT_TRUE(WriteFileText(Path(u"a"_s), all));
    EXPECT_EQ(Text(u"a"_s), all);
    ASSERT_TRUE(WriteFileBytes(Path(u"a"_s), std::string_view()));
    EXPECT_EQ(Text(u"a"_s), "");
}

TEST_F(FileOperations, AScratchFileIsReplacedLikeAnyOther)
{
    Make(u"page.htm"_s, "old");
    EXPECT_TRUE(WriteScratchFile(Path(u"page.htm"_s), "new"));
    EXPECT_EQ(Text(u"page.htm"_s), "new");
    EXPECT_FALSE(WriteScratchFile(Path(u"missing/page.htm"_s), "new"));
    EXPECT_EQ(place.Names(), QStringList{u"page.htm"_s});
}

TEST_F(FileOperations, AMissingFileReadsEmpty)
{
    EXPECT_EQ(Text(u"missing"_s), "");
}

TEST_F(FileOperations, ALengthOfMinusOneReturnsTheFileLength)
{
    Make(u"a"_s, "12345");
    std::string bytes;
    int32_t length = -1;
    EXPECT_TRUE(ReadFileBytes(Path(u"a"_s), bytes, length));
    EXPECT_EQ(bytes, "12345");
    EXPECT_EQ(length, 5);
    length = 2;
    EXPECT_TRUE(ReadFileBytes(Path(u"a"_s), bytes, length));
    EXPECT_EQ(bytes, "12345");
    EXPECT_EQ(length, 2);
    EXPECT_FALSE(ReadFileBytes(Path(u"missing"_s), bytes, length));
    EXPECT_EQ(bytes, "");
}

TEST_F(FileOperations, AReadOnlyBookIsOverwritten)
{
    Make(u"book.fb2"_s, "old");
    const QByteArray name = Path(u"book.fb2"_s).toUtf8();
    ASSERT_EQ(::chmod(name.constData(), 0444), 0);
    const PlainUser plain;
    EXPECT_TRUE(WriteFileText(Path(u"book.fb2"_s), "new"));
    EXPECT_EQ(Text(u"book.fb2"_s), "new");
    struct stat status = {};
    ASSERT_EQ(::stat(name.constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0444U);
}

TEST_F(FileOperations, FileDateIsTheDayOfTheLastWrite)
{
    Make(u"a"_s);
    const timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, Path(u"a"_s).toUtf8().constData(), times, 0), 0);
    EXPECT_LE(std::abs(FileDate(Path(u"a"_s)).daysTo(QDate(2001, 9, 9))), 1);
    EXPECT_FALSE(FileDate(Path(u"missing"_s)).isValid());
}

// ---------------------------------------------------------------- deleting, copying, moving

TEST_F(FileOperations, AnEmptyPathIsANoOpInEveryMode)
{
    for (int mode = -1; mode <= 11; ++mode)
        EXPECT_EQ(FileOperation(mode, QString(), Path(u"b"_s)), QString());
    EXPECT_TRUE(place.Names().isEmpty());
}

TEST_F(FileOperations, AnEmptyTargetIsANoOpForCopyAndMove)
{
    Make(u"a"_s);
    for (const int mode : {CopyFileMode, MoveFileMode, CopyFolderMode})
        EXPECT_EQ(FileOperation(mode, Path(u"a"_s), QString()), QString());
    EXPECT_EQ(place.Names(), QStringList{u"a"_s});
}

TEST_F(FileOperations, DeletesAFileButNotAFolder)
{
    Make(u"a"_s);
    ASSERT_TRUE(MakeFolder(Path(u"folder"_s)));
    FileOperation(DeleteFileMode, Path(u"a"_s));
    FileOperation(DeleteFileMode, Path(u"folder"_s));
    EXPECT_EQ(place.Names(), QStringList{u"folder"_s});
}

TEST_F(FileOperations, DeletesTheFilesOfAPatternAndLeavesFolders)
{
    Make(u"image_1"_s);
    Make(u"image_2.png"_s);
    Make(u"other"_s);
    ASSERT_TRUE(MakeFolder(Path(u"image_folder"_s)));
    FileOperation(DeleteFileMode, Path(u"image_*"_s));
    EXPECT_EQ(place.Names(), (QStringList{u"image_folder"_s, u"other"_s}));
    FileOperation(DeleteFileMode, Path(u"*.*"_s));
    EXPECT_EQ(place.Names(), QStringList{u"image_folder"_s});
}

TEST_F(FileOperations, AQuestionMarkInAPlainNameIsNoPattern)
{
    Make(u"what?"_s);
    Make(u"whats"_s);
    FileOperation(DeleteFileMode, Path(u"what?"_s));
    EXPECT_EQ(place.Names(), QStringList{u"whats"_s});
}

TEST_F(FileOperations, CopiesAFileAndCreatesTheTargetFolder)
{
    Make(u"a"_s, "new");
    EXPECT_EQ(FileOperation(CopyFileMode, Path(u"a"_s), Path(u"folder/b"_s)), QString());
    EXPECT_EQ(Text(u"folder/b"_s), "new");
    EXPECT_EQ(Text(u"a"_s), "new");
}

TEST_F(FileOperations, ACopyOfAReadOnlyFileIsWritableAndReplacesAReadOnlyOne)
{
    Make(u"a"_s, "new");
    Make(u"b"_s, "old");
    ASSERT_EQ(::chmod(Path(u"a"_s).toUtf8().constData(), 0444), 0);
    ASSERT_EQ(::chmod(Path(u"b"_s).toUtf8().constData(), 0444), 0);
    FileOperation(CopyFileMode, Path(u"a"_s), Path(u"b"_s));
    EXPECT_EQ(Text(u"b"_s), "new");
    struct stat status = {};
    ASSERT_EQ(::stat(Path(u"b"_s).toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0644U);
}

TEST_F(FileOperations, CopyingAMissingFileLeavesTheTarget)
{
    Make(u"b"_s, "kept");
    FileOperation(CopyFileMode, Path(u"a"_s), Path(u"b"_s));
    EXPECT_EQ(Text(u"b"_s), "kept");
}

TEST_F(FileOperations, CopyingAFileOntoItselfLeavesIt)
{
    Make(u"a"_s, "kept");
    FileOperation(CopyFileMode, Path(u"a"_s), Path(u"a"_s));
    EXPECT_EQ(Text(u"a"_s), "kept");
}

TEST_F(FileOperations, CopiesTheFilesOfAPatternIntoAFolder)
{
    Make(u"a1"_s, "1");
    Make(u"a2"_s, "2");
    Make(u"b"_s);
    FileOperation(CopyFileMode, Path(u"a*"_s), Path(u"target"_s));
    EXPECT_EQ(Text(u"target/a1"_s), "1");
    EXPECT_EQ(Text(u"target/a2"_s), "2");
    EXPECT_FALSE(FileExists(Path(u"target/b"_s)));
}

TEST_F(FileOperations, MovingReturnsOkAndOverwrites)
{
    Make(u"a"_s, "new");
    Make(u"b"_s, "old");
    EXPECT_EQ(FileOperation(MoveFileMode, Path(u"a"_s), Path(u"b"_s)), u"ok"_s);
    EXPECT_EQ(Text(u"b"_s), "new");
    EXPECT_FALSE(FileExists(Path(u"a"_s)));
}

TEST_F(FileOperations, AFailedMoveReturnsNothing)
{
    Make(u"b"_s, "kept");
    EXPECT_EQ(FileOperation(MoveFileMode, Path(u"a"_s), Path(u"b"_s)), QString());
    EXPECT_EQ(Text(u"b"_s), "kept");
}

TEST_F(FileOperations, MovesTheFilesOfAPattern)
{
    Make(u"a1"_s);
    Make(u"a2"_s);
    EXPECT_EQ(FileOperation(MoveFileMode, Path(u"a*"_s), Path(u"target"_s)), u"ok"_s);
    EXPECT_EQ(place.Names(), QStringList{u"target"_s});
    EXPECT_EQ(place.Names(u"target"_s), (QStringList{u"a1"_s, u"a2"_s}));
}

TEST_F(FileOperations, APatternOfWhichOneFileCannotBeMovedReturnsNothing)
{
    // Whichever of the files it is, the others are moved.
    for (const QString& blocked : {u"a1"_s, u"a2"_s, u"a3"_s}) {
        for (const QString& name : {u"a1"_s, u"a2"_s, u"a3"_s})
            Make(name);
        place.MakeFolders(u"target/"_s + blocked + u"/inner"_s);
        EXPECT_EQ(FileOperation(MoveFileMode, Path(u"a*"_s), Path(u"target"_s)), QString())
            << blocked.toStdString();
        EXPECT_EQ(place.Names(), (QStringList{blocked, u"target"_s}));
        FileOperation(DeleteFolderMode, Path(u"target"_s));
        FileOperation(DeleteFileMode, Path(blocked));
    }
}

TEST_F(FileOperations, MovingALinkOntoItsFileKeepsTheContent)
{
    Make(u"a"_s, "kept");
    ASSERT_EQ(::symlink("a", Path(u"link"_s).toUtf8().constData()), 0);
    FileOperation(MoveFileMode, Path(u"link"_s), Path(u"a"_s));
    EXPECT_EQ(Text(u"a"_s), "kept");
}

TEST_F(FileOperations, DeletesAFolderWithAllItsContentButNotWhatLinksLeadTo)
{
    Make(u"outside"_s, "kept");
    place.MakeFolders(u"folder/inner/deep"_s);
    Make(u"folder/.hidden"_s);
    Make(u"folder/inner/file"_s);
    ASSERT_EQ(::chmod(Path(u"folder/inner"_s).toUtf8().constData(), 0555), 0);
    ASSERT_EQ(::symlink("../outside", Path(u"folder/link"_s).toUtf8().constData()), 0);
    ASSERT_EQ(::symlink("nowhere", Path(u"folder/dangling"_s).toUtf8().constData()), 0);
    ASSERT_EQ(::symlink("..", Path(u"folder/up"_s).toUtf8().constData()), 0);
    place.GiveToPlainUser();
    const PlainUser plain;
    FileOperation(DeleteFolderMode, Path(u"folder/"_s));
    EXPECT_EQ(place.Names(), QStringList{u"outside"_s});
    EXPECT_EQ(Text(u"outside"_s), "kept");
}

TEST_F(FileOperations, CopyingAFolderReplacesAnExistingOne)
{
    place.MakeFolders(u"a/inner"_s);
    Make(u"a/one"_s, "1");
    Make(u"a/inner/two"_s, "2");
    place.MakeFolders(u"b"_s);
    Make(u"b/old"_s);
    FileOperation(CopyFolderMode, Path(u"a"_s), Path(u"b"_s));
    EXPECT_EQ(Text(u"b/one"_s), "1");
    EXPECT_EQ(Text(u"b/inner/two"_s), "2");
    EXPECT_FALSE(FileExists(Path(u"b/old"_s)));
    EXPECT_EQ(place.Names(), (QStringList{u"a"_s, u"b"_s}));
}

TEST_F(FileOperations, CopyingAFolderOntoItselfDoesNothing)
{
    place.MakeFolders(u"a"_s);
    Make(u"a/file"_s, "kept");
    FileOperation(CopyFolderMode, Path(u"a"_s), Path(u"a"_s));
    FileOperation(CopyFolderMode, Path(u"a"_s), Path(u"a/"_s));
    FileOperation(CopyFolderMode, Path(u"a"_s), Path(u"a/../a"_s));
    EXPECT_EQ(Text(u"a/file"_s), "kept");
    EXPECT_EQ(place.Names(), QStringList{u"a"_s});
}

TEST_F(FileOperations, CopyingAFolderIntoItselfOrOverItsParentDoesNothing)
{
    place.MakeFolders(u"a/inner"_s);
    Make(u"a/inner/file"_s, "kept");
    FileOperation(CopyFolderMode, Path(u"a"_s), Path(u"a/inner/copy"_s));
    FileOperation(CopyFolderMode, Path(u"a/inner"_s), Path(u"a"_s));
    EXPECT_EQ(Text(u"a/inner/file"_s), "kept");
    EXPECT_EQ(place.Names(u"a/inner"_s), QStringList{u"file"_s});
}

TEST_F(FileOperations, CopyingAMissingFolderLeavesTheTarget)
{
    place.MakeFolders(u"b"_s);
    Make(u"b/file"_s, "kept");
    FileOperation(CopyFolderMode, Path(u"a"_s), Path(u"b"_s));
    EXPECT_EQ(Text(u"b/file"_s), "kept");
}

// ---------------------------------------------------------------- splitting paths

namespace {

/// A workspace with links in it, as an archive of another user may contain.
class LinksInTheWorkspace : public FileOperations
{
protected:
    LinksInTheWorkspace()
        : office(OfficeFolder)
    {
        OfficeFolder = place.Path(u"VMK Office"_s);
        place.MakeFolders(u"VMK Office"_s);
        place.MakeFolders(u"elsewhere/inner"_s);
        place.Make(u"elsewhere/file"_s, "precious");
        place.Make(u"elsewhere/inner/file"_s, "precious");
        EXPECT_TRUE(QFile::link(place.Path(u"elsewhere"_s), place.Path(u"VMK Office/folder"_s)));
    }
    ~LinksInTheWorkspace() override { OfficeFolder = office; }

    void checkElsewhere()
    {
        EXPECT_EQ(place.Names(u"elsewhere"_s), (QStringList{u"file"_s, u"inner"_s}));
        EXPECT_EQ(place.Names(u"elsewhere/inner"_s), QStringList{u"file"_s});
        EXPECT_EQ(ReadFileText(place.Path(u"elsewhere/file"_s)), "precious");
    }
    [[nodiscard]] QString in(const QString& name) const { return place.Path(u"VMK Office/"_s + name); }

private:
    const QString office;
};

} // namespace

TEST_F(LinksInTheWorkspace, NothingIsWrittenThroughALinkToAFolder)
{
    EXPECT_FALSE(WriteFileText(in(u"folder/file"_s), "x"));
    EXPECT_FALSE(WriteFileText(in(u"folder/new"_s), "x"));
    EXPECT_FALSE(WriteFileText(in(u"folder/inner/file"_s), "x"));
    EXPECT_FALSE(WriteScratchFile(in(u"folder/new"_s), "x"));
    EXPECT_FALSE(WriteFileBytes(in(u"folder/new"_s), "x"));
    EXPECT_FALSE(MakeFolder(in(u"folder/new"_s)));
    place.Make(u"source"_s, "x");
    FileOperation(CopyFileMode, place.Path(u"source"_s), in(u"folder/new"_s));
    EXPECT_EQ(FileOperation(MoveFileMode, place.Path(u"source"_s), in(u"folder/new"_s)), QString());
    FileOperation(CopyFolderMode, place.Path(u"elsewhere/inner"_s), in(u"folder/new"_s));
    checkElsewhere();
}

TEST_F(LinksInTheWorkspace, NothingIsDeletedThroughALinkToAFolder)
{
    FileOperation(DeleteFileMode, in(u"folder/file"_s));
    FileOperation(DeleteFileMode, in(u"folder/*"_s));
    FileOperation(DeleteFolderMode, in(u"folder/inner"_s));
    FileOperation(DeleteFolderMode, in(u"folder"_s));
    checkElsewhere();
}

TEST_F(LinksInTheWorkspace, ALinkToAFileIsReplacedByTheFile)
{
    ASSERT_TRUE(QFile::link(place.Path(u"elsewhere/file"_s), in(u"list.dat"_s)));
    ASSERT_TRUE(QFile::link(place.Path(u"elsewhere/missing"_s), in(u"new.dat"_s)));
    EXPECT_TRUE(WriteFileText(in(u"list.dat"_s), "list"));
    EXPECT_TRUE(WriteFileText(in(u"new.dat"_s), "new"));
    EXPECT_EQ(ReadFileText(in(u"list.dat"_s)), "list");
    EXPECT_EQ(ReadFileText(in(u"new.dat"_s)), "new");
    checkElsewhere();
}

TEST_F(LinksInTheWorkspace, ACopyReplacesALinkToAFileAndRefusesOneToAFolder)
{
    place.Make(u"source"_s, "x");
    ASSERT_TRUE(QFile::link(place.Path(u"elsewhere/file"_s), in(u"list.dat"_s)));
    FileOperation(CopyFileMode, place.Path(u"source"_s), in(u"list.dat"_s));
    EXPECT_EQ(ReadFileText(in(u"list.dat"_s)), "x");
    ASSERT_TRUE(QFile::remove(in(u"list.dat"_s)));
    ASSERT_TRUE(QFile::link(place.Path(u"elsewhere/file"_s), in(u"list.dat"_s)));
    EXPECT_EQ(FileOperation(MoveFileMode, place.Path(u"source"_s), in(u"list.dat"_s)), u"ok"_s);
    EXPECT_EQ(ReadFileText(in(u"list.dat"_s)), "x");
    place.Make(u"source"_s, "x");
    FileOperation(CopyFileMode, place.Path(u"sourc*"_s), in(u"folder"_s));
    FileOperation(CopyFileMode, place.Path(u"sourc*"_s), in(u"folder/"_s));
    FileOperation(CopyFolderMode, place.Path(u"elsewhere/inner"_s), in(u"folder"_s));
    EXPECT_FALSE(WriteFileText(in(u"folder"_s), "x"));
    EXPECT_TRUE(QFileInfo(in(u"folder"_s)).isSymLink());
    checkElsewhere();
}

TEST_F(LinksInTheWorkspace, TheWorkspaceItselfCanBeALink)
{
    ASSERT_TRUE(QFile::link(OfficeFolder, place.Path(u"linked"_s)));
    OfficeFolder = place.Path(u"linked"_s);
    EXPECT_TRUE(MakeFolder(OfficeFolder + u"/inner"_s));
    EXPECT_TRUE(WriteFileText(OfficeFolder + u"/inner/file"_s, "x"));
    EXPECT_EQ(ReadFileText(in(u"inner/file"_s)), "x");
}

TEST_F(LinksInTheWorkspace, LinksOutsideItAreFollowed)
{
    OfficeFolder = place.Path(u"other"_s);
    EXPECT_TRUE(WriteFileText(in(u"folder/file"_s), "x"));
    EXPECT_EQ(ReadFileText(place.Path(u"elsewhere/file"_s)), "x");
}

TEST(PathModes, ExtensionIsTheTextAfterTheLastDot)
{
    EXPECT_EQ(FileOperation(ExtensionMode, u"a.b.c"_s), u"c"_s);
    EXPECT_EQ(FileOperation(ExtensionMode, u"name"_s), u"name"_s);
    EXPECT_EQ(FileOperation(ExtensionMode, u"name."_s), QString());
}

TEST(PathModes, FolderIsTheTextUpToTheLastSeparator)
{
    EXPECT_EQ(FileOperation(FolderOfMode, u"C:\\Books\\a.fb2"_s), u"C:\\Books\\"_s);
    EXPECT_EQ(FileOperation(FolderOfMode, u"/home/me/a.fb2"_s), u"/home/me/"_s);
    EXPECT_EQ(FileOperation(FolderOfMode, u"a.fb2"_s), QString());
}

TEST(PathModes, NameIsTheTextAfterTheLastSeparator)
{
    EXPECT_EQ(FileOperation(NameMode, u"C:\\Books\\a.fb2"_s), u"a.fb2"_s);
    EXPECT_EQ(FileOperation(NameMode, u"/home/me/a.fb2"_s), u"a.fb2"_s);
    EXPECT_EQ(FileOperation(NameMode, u"a.fb2"_s), u"a.fb2"_s);
    EXPECT_EQ(FileOperation(NameMode, u"/home/me/"_s), QString());
}

TEST(PathModes, BaseNameOmitsTheLastExtensionOnly)
{
    EXPECT_EQ(FileOperation(BaseNameMode, u"a.b.c"_s), u"a.b"_s);
    EXPECT_EQ(FileOperation(BaseNameMode, u"/x.y/name"_s), u"name"_s);
}

TEST(PathModes, DriveEndsWithItsSeparator)
{
    EXPECT_EQ(FileOperation(DriveMode, u"C:\\Books\\a.fb2"_s), u"C:\\"_s);
    EXPECT_EQ(FileOperation(DriveMode, u"/home/me"_s), QString());
}

TEST(PathModes, APathWithoutExtensionStaysItself)
{
    EXPECT_EQ(FileOperation(WithoutExtensionMode, u"/x/a.b.c"_s), u"/x/a.b"_s);
    EXPECT_EQ(FileOperation(WithoutExtensionMode, u"/x/a"_s), u"/x/a"_s);
    EXPECT_EQ(FileOperation(WithoutExtensionMode, u"/x.y/a"_s), u"/x.y/a"_s);
}
