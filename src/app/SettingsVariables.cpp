#include "SettingsVariables.h"

namespace vmk {

const QStringList ColorNames
    = {QStringLiteral("fore color"), QStringLiteral("back color"), QStringLiteral("tag color"),
       QStringLiteral("attr. color"), QStringLiteral("value color")};
const QStringList OutputStyles
    = {QStringLiteral("compact"), QStringLiteral("line ends"), QStringLiteral("tags tree")};
const QStringList OutputEncodings
    = {QStringLiteral("original"), QStringLiteral("windows-1251"), QStringLiteral("windows-1252"),
       QStringLiteral("windows-1250"), QStringLiteral("utf-8")};
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
int16_t MainFormWindowState = 0;

} // namespace vmk
