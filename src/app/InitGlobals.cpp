#include "InitGlobals.h"

#include "FileOperations.h"
#include "FilePaths.h"
#include "ScreenMeasures.h"
#include "StartUpVariables.h"
#include "UserText.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

const QString OfficeName = u"VMK Office"_s;
const QString SoundsName = u"sounds"_s;
const QString UserFolderName = u"vellumark"_s;

QString Join(const QString& folder, const QString& name)
{
    return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

QString FolderOfExecutable(const QString& executable)
{
    const QString folder = FolderOf(executable);
    return folder == u"/" ? folder : folder.chopped(1);
}

/// The data folder of an installed program: bin/ and share/ are siblings.
QString SharedDataFolder(const QString& executable)
{
    return Join(Join(FolderOfExecutable(executable), u"../share"_s), UserFolderName);
}

bool IsPortable(const QString& executable)
{
    const QString folder = FolderOfExecutable(executable);
    const bool isInstalled
        = !FolderExists(Join(folder, OfficeName)) && FolderExists(SharedDataFolder(executable));
    return !isInstalled && IsFolderWritable(folder);
}

/// Only a folder that is missing completely is created: files that the user has deleted from it stay deleted.
void SeedUserFolder(const QString& installed, const QString& userFolder)
{
    QDir().mkpath(userFolder);
    for (const QString& name : {OfficeName, SoundsName}) {
        if (!FolderExists(Join(userFolder, name)))
            FileOperation(CopyFolderMode, Join(installed, name), Join(userFolder, name));
    }
}

void ReadScreenMeasures()
{
    const ScreenMeasures measures = ScreenMeasuresSeam()();
    TwipsPerPixelX = measures.twipsPerPixelX;
    TwipsPerPixelY = measures.twipsPerPixelY;
    CaptionHeight = measures.captionHeight;
    BorderX = measures.borderX;
    BorderY = measures.borderY;
    EdgeX = measures.edgeX;
    EdgeY = measures.edgeY;
    FrameX = measures.frameX;
    FrameY = measures.frameY;
    FixedFrameX = measures.fixedFrameX;
    FixedFrameY = measures.fixedFrameY;
    ScreenPixelsX = measures.screenPixelsX;
    ScreenPixelsY = measures.screenPixelsY;
    VScrollWidth = measures.vScrollWidth;
    HScrollHeight = measures.hScrollHeight;
    VScrollWidthTwips = VScrollWidth * TwipsPerPixelX;
    HScrollHeightTwips = HScrollHeight * TwipsPerPixelY;
    CaptionPlusFrame = CaptionHeight + FrameY;
}

void SetAppPath(const ProgramPlace& place)
{
    if (IsPortable(place.executable)) {
        AppPath = FolderOfExecutable(place.executable);
    } else {
        AppPath = Join(place.userDataFolder, UserFolderName);
        SeedUserFolder(InstalledDataFolder(place.executable), AppPath);
    }
    AppDrive = DriveOf(AppPath);
    IniFilePath = Join(AppPath, BaseNameOf(place.executable) + u".ini"_s);
}

void SetFolders()
{
    OfficeFolder = Join(AppPath, OfficeName);
    SchemasFolder = OfficeFolder + u"/Schemas"_s;
    TempFolder = OfficeFolder + u"/Temp"_s;
    TempImagesFolder = TempFolder + u"/images"_s;
    UserCleanUpFolder = OfficeFolder + u"/UserCleanUp"_s;
    HistoryFolder = OfficeFolder + u"/FindReplaceHistory"_s;
    ExtractedImagesFolder = OfficeFolder + u"/Extracted Images"_s;
    SampleBooksFolder = OfficeFolder + u"/Book Samples"_s;
    CleanUpFolderIsNew = !FolderExists(UserCleanUpFolder);
    // The program empties these folders. A link in place of one of them is removed; a folder is not.
    for (const QString& folder : {TempFolder, TempImagesFolder})
        DeleteOneFile(folder);
    // One level at a time; the last two are created by the installation or with the first image.
    for (const QString& folder :
         {OfficeFolder, SchemasFolder, TempFolder, TempImagesFolder, UserCleanUpFolder, HistoryFolder})
        MakeFolder(folder);
}

void SetFiles()
{
    EmptyPageFile = OfficeFolder + u"/VMKEmpty.htm"_s;
    SampleEmptyPageFile = OfficeFolder + u"/SampleEmpty.htm"_s;
    WelcomeFile = OfficeFolder + u"/Welcome.htm"_s;
    CustomDictionaryFile = OfficeFolder + u"/CustomDictionary.dat"_s;
    InLineTagsFile = OfficeFolder + u"/InLineTags.dat"_s;
    FbTagsListFile = OfficeFolder + u"/FbTagsList.dat"_s;
    HisFindFile = HistoryFolder + u"/QWT_HisFind_Uni.hf"_s;
    HisReplaceFile = HistoryFolder + u"/QWT_HisReplace_Uni.hr"_s;
    HisFindRegExpFile = HistoryFolder + u"/QWT_HisFind_Uni_RegExp.rghf"_s;
    HisReplaceRegExpFile = HistoryFolder + u"/QWT_HisReplace_Uni_RegExp.rghr"_s;
}

} // namespace

ProgramPlace RunningProgramPlace()
{
    return {QCoreApplication::applicationFilePath(),
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)};
}

QString WorkspaceFolder(const ProgramPlace& place)
{
    return Join(IsPortable(place.executable) ? FolderOfExecutable(place.executable)
                                             : Join(place.userDataFolder, UserFolderName),
                OfficeName);
}

QString InstalledDataFolder(const QString& executable)
{
    const QString folder = FolderOfExecutable(executable);
    return FolderExists(Join(folder, OfficeName)) ? folder : SharedDataFolder(executable);
}

void InitGlobals()
{
    InitGlobals(RunningProgramPlace());
}

void InitGlobals(const ProgramPlace& place)
{
    ReadScreenMeasures();
    SetAppPath(place);
    SetFolders();
    SetFiles();
    ReadInLineTags();
    MainFormMinWidth = 620 * TwipsPerPixelX;
    MainFormMinHeight = 300 * TwipsPerPixelY;
}

void ReadInLineTags()
{
    constexpr qsizetype LongestEmptyText = 4;
    InLineTagCount = 0;
    InLineTags = QStringList{QString()};
    if (!FileExists(InLineTagsFile))
        return;
    const QString text = DecodeUserText(ReadFileText(InLineTagsFile));
    if (text.size() <= LongestEmptyText)
        return;

    // Line ends of either kind separate entries as blanks do: users edit the file with any editor.
    QStringList tags;
    for (const QString& piece : QString(text).replace(u'\r', u' ').replace(u'\n', u' ').split(u' ')) {
        if (const QString tag = piece.trimmed(); !tag.isEmpty())
            tags.append(tag);
    }
    if (tags.isEmpty())
        return;
    InLineTags = tags;
    InLineTagCount = int(tags.size());
}

} // namespace vmk
