#pragma once

#include <QString>
#include <QStringList>

/// Shared variables that `InitGlobals` sets once at start: paths, screen measures, in-line tags.
namespace vmk {

extern QString AppPath;
/// The root of `AppPath`, to which file dialogs fall back. Empty on systems without drives.
extern QString AppDrive;
extern QString IniFilePath;

extern QString OfficeFolder;
extern QString SchemasFolder;
extern QString TempFolder;
extern QString TempImagesFolder;
extern QString UserCleanUpFolder;
/// `UserCleanUpFolder` did not exist when the program started.
extern bool CleanUpFolderIsNew;
extern QString HistoryFolder;
extern QString ExtractedImagesFolder;
extern QString SampleBooksFolder;

extern QString EmptyPageFile;
extern QString SampleEmptyPageFile;
extern QString WelcomeFile;
extern QString CustomDictionaryFile;
extern QString InLineTagsFile;
extern QString FbTagsListFile;
extern QString HisFindFile;
extern QString HisReplaceFile;
extern QString HisFindRegExpFile;
extern QString HisReplaceRegExpFile;

/// Screen measures in pixels, except for names that end in `Twips`; a twip is 1/1440 inch.
extern float TwipsPerPixelX;
extern float TwipsPerPixelY;
extern float CaptionHeight;
extern float BorderX, BorderY, EdgeX, EdgeY, FrameX, FrameY, FixedFrameX, FixedFrameY;
extern float ScreenPixelsX, ScreenPixelsY;
extern float VScrollWidth, HScrollHeight;
extern float VScrollWidthTwips, HScrollHeightTwips;
extern float CaptionPlusFrame;
/// The minimum size of the main window, in twips.
extern float MainFormMinWidth, MainFormMinHeight;

/// Complete tags such as `<emphasis>`, compared literally. Never empty: for a missing file, the list has one
/// empty entry.
extern QStringList InLineTags;
/// The number of entries in the file; 0 if it is missing.
extern int InLineTagCount;

/// The settings file was missing at start.
extern bool FirstStart;

} // namespace vmk
