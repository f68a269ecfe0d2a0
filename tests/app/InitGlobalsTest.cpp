#include "InitGlobals.h"
#include "FileOperations.h"
#include "ScreenMeasures.h"
#include "StartUpVariables.h"
#include "TestPaths.h"
#include "Workplace.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

class InitGlobalsTest : public testing::Test
{
protected:
    InitGlobalsTest()
    {
        qputenv("VELLUMARK_CODEPAGE", "1251");
        place.MakeFolders(u"bin"_s);
    }
    ~InitGlobalsTest() override { qunsetenv("VELLUMARK_CODEPAGE"); }

    ProgramPlace Program() const
    {
        return {place.Path(u"bin/vellumark"_s), place.Path(u"home/.local/share"_s)};
    }

    /// Creates the files of an installation, in bin/ and share/.
    void Install() const
    {
        place.MakeFolders(u"share/vellumark/VMK Office/Schemas"_s);
        place.MakeFolders(u"share/vellumark/sounds"_s);
        place.Make(u"share/vellumark/VMK Office/Schemas/FictionBook.xsd"_s, "schema");
        place.Make(u"share/vellumark/VMK Office/InLineTags.dat"_s, "<a>\r\n</a>\r\n");
        place.Make(u"share/vellumark/sounds/FileSaved.wav"_s, "sound");
        place.MakeFolders(u"home"_s);
        place.GiveToPlainUser();
        ASSERT_EQ(::chmod(QFile::encodeName(place.Path(u"bin"_s)).constData(), 0555), 0);
    }

    void ReadTags(std::string_view text) const
    {
        InLineTagsFile = place.Path(u"InLineTags.dat"_s);
        place.Make(u"InLineTags.dat"_s, text);
        ReadInLineTags();
    }

    Workplace place;
};

} // namespace

TEST_F(InitGlobalsTest, APortableWorkspaceIsBesideTheExecutable)
{
    InitGlobals(Program());
    EXPECT_EQ(AppPath, place.Path(u"bin"_s));
    EXPECT_EQ(AppDrive, QString());
    EXPECT_EQ(IniFilePath, place.Path(u"bin/vellumark.ini"_s));
    EXPECT_EQ(OfficeFolder, place.Path(u"bin/VMK Office"_s));
    EXPECT_EQ(HisReplaceRegExpFile,
              place.Path(u"bin/VMK Office/FindReplaceHistory/QWT_HisReplace_Uni_RegExp.rghr"_s));
    EXPECT_EQ(place.Names(u"bin"_s), QStringList{u"VMK Office"_s});
    EXPECT_EQ(place.Names(u"bin/VMK Office"_s),
              (QStringList{u"FindReplaceHistory"_s, u"Schemas"_s, u"Temp"_s, u"UserCleanUp"_s}));
    EXPECT_EQ(place.Names(u"bin/VMK Office/Temp"_s), QStringList{u"images"_s});
    EXPECT_FALSE(FileExists(place.Path(u"home"_s)));
}

TEST_F(InitGlobalsTest, ALinkInPlaceOfTheTemporaryFolderIsReplaced)
{
    place.MakeFolders(u"bin/VMK Office"_s);
    place.MakeFolders(u"elsewhere/images"_s);
    place.Make(u"elsewhere/images/picture.png"_s, "precious");
    ASSERT_TRUE(QFile::link(place.Path(u"elsewhere"_s), place.Path(u"bin/VMK Office/Temp"_s)));
    InitGlobals(Program());
    EXPECT_FALSE(QFileInfo(TempFolder).isSymLink());
    EXPECT_TRUE(WriteScratchFile(TempFolder + u"/page.htm"_s, "page"));
    FileOperation(DeleteFolderMode, TempImagesFolder);
    EXPECT_EQ(place.Names(u"elsewhere"_s), QStringList{u"images"_s});
    EXPECT_EQ(place.Names(u"elsewhere/images"_s), QStringList{u"picture.png"_s});
}

TEST_F(InitGlobalsTest, TheRootCanBeTheProgramsFolder)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only a superuser can try this on a root of its own";
    const pid_t child = ::fork();
    if (child == 0) {
        if (::chroot(QFile::encodeName(place.Folder()).constData()) != 0 || ::chdir("/") != 0)
            ::_exit(2);
        InitGlobals({u"/vellumark"_s, u"/home"_s});
        const bool right = AppPath == u"/"_s && OfficeFolder == u"/VMK Office"_s
            && IniFilePath == u"/vellumark.ini"_s && FolderExists(u"/VMK Office/Temp/images"_s)
            && WorkspaceFolder({u"/vellumark"_s, u"/home"_s}) == u"/VMK Office"_s
            && InstalledDataFolder(u"/vellumark"_s) == u"/"_s;
        ::_exit(right ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(InitGlobalsTest, TheSettingsFileIsNamedAfterTheExecutable)
{
    ProgramPlace program = Program();
    program.executable = place.Path(u"bin/My Editor.bin"_s);
    InitGlobals(program);
    EXPECT_EQ(IniFilePath, place.Path(u"bin/My Editor.ini"_s));
}

TEST_F(InitGlobalsTest, AnExistingHistoryFolderKeepsItsFiles)
{
    place.MakeFolders(u"bin/VMK Office/FindReplaceHistory"_s);
    place.Make(u"bin/VMK Office/FindReplaceHistory/QWT_HisFind_Uni.hf"_s, "history");
    InitGlobals(Program());
    EXPECT_EQ(ReadFileText(HisFindFile), "history");
}

TEST_F(InitGlobalsTest, FoldersThatCannotBeMadeAreNotReported)
{
    place.Make(u"home"_s, "a file");
    ASSERT_EQ(::chmod(QFile::encodeName(place.Path(u"bin"_s)).constData(), 0555), 0);
    place.GiveToPlainUser();
    const PlainUser plain;
    InitGlobals(Program());
    EXPECT_EQ(AppPath, place.Path(u"home/.local/share/vellumark"_s));
    EXPECT_FALSE(FolderExists(OfficeFolder));
    EXPECT_FALSE(WriteFileText(IniFilePath, "x"));
}

TEST_F(InitGlobalsTest, AnInstalledProgramFillsTheUserFolderAtTheFirstStart)
{
    Install();
    const PlainUser plain;
    InitGlobals(Program());
    EXPECT_EQ(AppPath, place.Path(u"home/.local/share/vellumark"_s));
    EXPECT_EQ(IniFilePath, AppPath + u"/vellumark.ini"_s);
    EXPECT_EQ(ReadFileText(SchemasFolder + u"/FictionBook.xsd"_s), "schema");
    EXPECT_EQ(ReadFileText(AppPath + u"/sounds/FileSaved.wav"_s), "sound");
    EXPECT_EQ(InLineTags, (QStringList{u"<a>"_s, u"</a>"_s}));
    EXPECT_TRUE(WriteFileText(IniFilePath, "x"));
    EXPECT_TRUE(place.Names(u"bin"_s).isEmpty());
}

TEST_F(InitGlobalsTest, WhatTheUserHasChangedOrDeletedStaysSoAtLaterStarts)
{
    Install();
    const PlainUser plain;
    InitGlobals(Program());
    FileOperation(DeleteFileMode, InLineTagsFile);
    ASSERT_TRUE(WriteFileText(SchemasFolder + u"/FictionBook.xsd"_s, "own"));
    InitGlobals(Program());
    EXPECT_FALSE(FileExists(InLineTagsFile));
    EXPECT_EQ(InLineTags, QStringList{QString()});
    EXPECT_EQ(ReadFileText(SchemasFolder + u"/FictionBook.xsd"_s), "own");
}

TEST_F(InitGlobalsTest, AnInstalledProgramUsesTheUsersFolderEvenWhenItsOwnCanBeWritten)
{
    Install();
    ASSERT_EQ(::chmod(QFile::encodeName(place.Path(u"bin"_s)).constData(), 0755), 0);
    InitGlobals(Program());
    EXPECT_EQ(AppPath, place.Path(u"home/.local/share/vellumark"_s));
    EXPECT_TRUE(place.Names(u"bin"_s).isEmpty());
}

TEST_F(InitGlobalsTest, ShippedDataIsFoundWithoutCreatingAnything)
{
    Install();
    EXPECT_EQ(
        ReadFileText(InstalledDataFolder(Program().executable) + u"/VMK Office/Schemas/FictionBook.xsd"_s),
        "schema");
    ASSERT_EQ(::chmod(QFile::encodeName(place.Path(u"bin"_s)).constData(), 0755), 0);
    place.MakeFolders(u"bin/VMK Office"_s);
    EXPECT_EQ(InstalledDataFolder(Program().executable), place.Path(u"bin"_s));
}

TEST_F(InitGlobalsTest, ScreenMeasuresComeFromTheDesktop)
{
    const SeamGuard guard(ScreenMeasuresSeam(), [] {
        ScreenMeasures measures;
        measures.twipsPerPixelX = 10;
        measures.twipsPerPixelY = 12;
        measures.captionHeight = 20;
        measures.frameY = 3;
        measures.vScrollWidth = 16;
        measures.hScrollHeight = 18;
        return measures;
    });
    InitGlobals(Program());
    EXPECT_EQ(CaptionPlusFrame, 23);
    EXPECT_EQ(VScrollWidthTwips, 160);
    EXPECT_EQ(HScrollHeightTwips, 216);
    EXPECT_EQ(MainFormMinWidth, 6200);
    EXPECT_EQ(MainFormMinHeight, 3600);
}

// ---------------------------------------------------------------- in-line tags

TEST_F(InitGlobalsTest, LineEndsAndBlanksSeparateInLineTags)
{
    ReadTags("<a>\r\n  <b> <i>\r\n\r\n</a>");
    EXPECT_EQ(InLineTags, (QStringList{u"<a>"_s, u"<b>"_s, u"<i>"_s, u"</a>"_s}));
    EXPECT_EQ(InLineTagCount, 4);
}

TEST_F(InitGlobalsTest, InLineTagsOfAnEditorWithOtherLineEndsAreRead)
{
    ReadTags("<a>\n\t<b>\n");
    EXPECT_EQ(InLineTags, (QStringList{u"<a>"_s, u"<b>"_s}));
}

TEST_F(InitGlobalsTest, InLineTagsAreReadInTheSystemsCodePage)
{
    ReadTags("<\xf2\xe5\xe3>");
    EXPECT_EQ(InLineTags, QStringList{u"<тег>"_s});
}

TEST_F(InitGlobalsTest, AMissingOrNearlyEmptyInLineTagsFileLeavesOneEmptyEntry)
{
    for (const std::string_view text : {"", "<a>", "<b>\n", "      \r\n  "}) {
        ReadTags(text);
        EXPECT_EQ(InLineTags, QStringList{QString()}) << text;
        EXPECT_EQ(InLineTagCount, 0);
    }
    ReadTags("<a><b>");
    EXPECT_EQ(InLineTagCount, 1);
    InLineTagsFile = place.Path(u"missing"_s);
    ReadInLineTags();
    EXPECT_EQ(InLineTags, QStringList{QString()});
    EXPECT_EQ(InLineTagCount, 0);
}

// ---------------------------------------------------------------- the workspace of this build

TEST(Workspace, ContainsTheDefaultTagLists)
{
    const QString office = QStringLiteral(VMK_BIN_DIR "/VMK Office");
    EXPECT_EQ(ReadFileText(office + u"/InLineTags.dat"_s),
              "</a>\r\n</strong>\r\n</emphasis>\r\n</style>\r\n</strikethrough>\r\n</sub>\r\n</sup>\r\n"
              "<a>\r\n<strong>\r\n<emphasis>\r\n<style>\r\n<strikethrough>\r\n<sub>\r\n<sup>\r\n");
    EXPECT_EQ(ReadFileText(office + u"/FbTagsList.dat"_s),
              "<p>\r\n<title>\r\n<subtitle>\r\n<epigraph>\r\n<poem>\r\n<stanza>\r\n<section>\r\n"
              "<section id=\"\">\r\n<a :href=\"#\">\r\n<a :href=\"#\" type=\"\">\r\n<image :href=\"#\"/>\r\n"
              "<empty-line/>\r\n<strong>\r\n<emphasis>\r\n<sup>\r\n<sub>\r\n");
}
