#include "Globals.h"

namespace vmk {

const QStringList ColorNames
    = {QStringLiteral("fore color"), QStringLiteral("back color"), QStringLiteral("tag color"),
       QStringLiteral("attr. color"), QStringLiteral("value color")};
const QStringList OutputStyles
    = {QStringLiteral("compact"), QStringLiteral("line ends"), QStringLiteral("tags tree")};
const QStringList OutputEncodings
    = {QStringLiteral("original"), QStringLiteral("windows-1251"), QStringLiteral("windows-1252"),
       QStringLiteral("windows-1250"), QStringLiteral("utf-8")};
QString AppPath;
QString AppDrive;
QString IniFilePath;
QString OfficeFolder;
QString SchemasFolder;
QString TempFolder;
QString TempImagesFolder;
QString UserCleanUpFolder;
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
QString InputEncoding;
int NamespaceErrorWarning = 0;
QString OutputEncoding;
QString OutputStyle;
int TagHighlighting = 0;
int PreviewOnChange = 0;
QString DisplayFontName;
QString DisplayFontSize;
QString DisplayFontWeight;
QString DisplayTextAlign;
QString DisplayLeftMargin;
QString DisplayRightMargin;
QString DisplayForeColor;
QString DisplayBackColor;
int NodeShift = 0;
QString TagColor;
QString AttrNameColor;
QString AttrValColor;
QString TagFontWeight;
int SoundsOn = 0;
int ShowNbsp = 0;
int CommandLineInfo = 0;
QString ValidateOption;
QString SchemaFile;
QString LastBookFolder;
QString LastSaveFolder;
QString LastImageFolder;
QString LastFile;
float MainFormLeft = 0;
float MainFormTop = 0;
float MainFormWidth = 0;
float MainFormHeight = 0;
QString CurrentCleanUpFile;
QString CleanUpFontName;
int CleanUpFontSize = 0;
bool CleanUpFontBold = false;
QString CurrentBook;
QString DisplayFile;
std::string BinaryPart;
std::string WorkEncodingName;
int32_t WorkCodePage = 1251;
std::string WorkMetaTag;
std::string FileEncodingName;
int32_t FileCodePage = 1251;
std::string FileMetaTag;
std::string XmlDeclaration;
bool BookHasCharRefs = false;
QString FbNamespace;
bool BadBinaryPart = false;
bool LoadingByProgram = false;
bool SkipNavigationCheck = false;
bool FirstStart = false;
bool ValidateAfterLoad = false;
int32_t UndoSteps = 0;
bool BookUnchanged = true;
int16_t MainFormWindowState = 0;

} // namespace vmk
