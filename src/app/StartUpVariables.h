#pragma once

#include <QString>
#include <QStringList>

/// Shared variables that start-up sets once (`InitGlobals`): paths, screen measures, the in-line tags.
namespace vmk {

extern QString AppPath;
/// The root part of `AppPath`; file dialogs go back to it. Empty where there are no drives.
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

/// Screen measures in pixels, but for the names that end in `Twips`; a twip is 1/1440 inch.
extern float TwipsPerPixelX;
extern float TwipsPerPixelY;
extern float CaptionHeight;
extern float BorderX, BorderY, EdgeX, EdgeY, FrameX, FrameY, FixedFrameX, FixedFrameY;
extern float ScreenPixelsX, ScreenPixelsY;
extern float VScrollWidth, HScrollHeight;
extern float VScrollWidthTwips, HScrollHeightTwips;
extern float CaptionPlusFrame;
/// Twips; the main window is not let shrink below.
extern float MainFormMinWidth, MainFormMinHeight;

/// Complete tag texts such as `<emphasis>`, compared literally. Never empty: a missing file leaves one
/// empty entry.
extern QStringList InLineTags;
/// Entries read from the file; 0 when it is missing.
extern int InLineTagCount;

/// The settings file was missing at start.
extern bool FirstStart;

} // namespace vmk
