#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

/// Shared variables of the settings (`ReadSettings`, `WriteSettings`). Commands read and write them;
/// algorithms take values as parameters.
namespace vmk {

/// The choices in the settings dialog, in their order.
extern const QStringList ColorNames;
extern const QStringList OutputStyles;
extern const QStringList OutputEncodings;

extern QString InputEncoding;
extern int NamespaceErrorWarning;
extern QString OutputEncoding;
extern QString OutputStyle;
extern int TagHighlighting;
extern int PreviewOnChange;
extern QString DisplayFontName;
extern QString DisplayFontSize;
extern QString DisplayFontWeight;
extern QString DisplayTextAlign;
extern QString DisplayLeftMargin;
extern QString DisplayRightMargin;
extern QString DisplayForeColor;
extern QString DisplayBackColor;
/// Pixels per tree level.
extern int NodeShift;
extern QString TagColor;
extern QString AttrNameColor;
extern QString AttrValColor;
extern QString TagFontWeight;
extern int SoundsOn;
extern int ShowNbsp;
/// 1: a validation from the command line also reports a valid book.
extern int CommandLineInfo;
/// "schema"; any other value checks only the namespace.
extern QString ValidateOption;
extern QString SchemaFile;
extern QString LastBookFolder;
extern QString LastSaveFolder;
extern QString LastImageFolder;
extern QString LastFile;
/// In twips.
extern float MainFormLeft, MainFormTop, MainFormWidth, MainFormHeight;
/// The window state at exit; 2 means maximised.
extern int16_t MainFormWindowState;

/// Defaults of the book cleaner, which are not stored.
extern QString CurrentCleanUpFile;
extern QString CleanUpFontName;
extern int CleanUpFontSize;
extern bool CleanUpFontBold;

} // namespace vmk
