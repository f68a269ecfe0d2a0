#include "StartUpVariables.h"

namespace vmk {

QString AppPath;
QString AppDrive;
QString IniFilePath;
QString OfficeFolder;
QString SchemasFolder;
QString TempFolder;
QString TempImagesFolder;
QString UserCleanUpFolder;
bool CleanUpFolderIsNew = false;
QString HistoryFolder;
QString ExtractedImagesFolder;
QString SampleBooksFolder;
QString EmptyPageFile;
QString SampleEmptyPageFile;
QString WelcomeFile;
QString CustomDictionaryFile;
QString InLineTagsFile;
QString FbTagsListFile;
QString HisFindFile;
QString HisReplaceFile;
QString HisFindRegExpFile;
QString HisReplaceRegExpFile;
float TwipsPerPixelX = 15;
float TwipsPerPixelY = 15;
float CaptionHeight = 0;
float BorderX = 0;
float BorderY = 0;
float EdgeX = 0;
float EdgeY = 0;
float FrameX = 0;
float FrameY = 0;
float FixedFrameX = 0;
float FixedFrameY = 0;
float ScreenPixelsX = 0;
float ScreenPixelsY = 0;
float VScrollWidth = 0;
float HScrollHeight = 0;
float VScrollWidthTwips = 0;
float HScrollHeightTwips = 0;
float CaptionPlusFrame = 0;
float MainFormMinWidth = 0;
float MainFormMinHeight = 0;
QStringList InLineTags = {QString()};
int InLineTagCount = 0;
bool FirstStart = false;

} // namespace vmk
