#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

/// Shared variables of the settings (`ReadSettings`, `WriteSettings`). Commands read and write them; code
/// that does the work takes values.
namespace vmk {

/// The choices that the settings dialog offers, in its order.
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
/// 1: report a clean validation run from the command line.
extern int CommandLineInfo;
/// "schema", or anything else for the namespace alone.
extern QString ValidateOption;
extern QString SchemaFile;
extern QString LastBookFolder;
extern QString LastSaveFolder;
extern QString LastImageFolder;
extern QString LastFile;
/// Twips.
extern float MainFormLeft, MainFormTop, MainFormWidth, MainFormHeight;
/// Window state taken at exit; 2 means maximised.
extern int16_t MainFormWindowState;

/// Defaults of the book cleaner; not stored.
extern QString CurrentCleanUpFile;
extern QString CleanUpFontName;
extern int CleanUpFontSize;
extern bool CleanUpFontBold;

} // namespace vmk
