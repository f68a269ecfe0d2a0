#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <string>

/// The shared variables of the program, in three groups: what start-up fixes, the settings, and the
/// state of the open book. Code that does the work takes plain values; only commands read these.
namespace vmk {

// ---------------------------------------------------------------- fixed at start-up (InitGlobals)

/// Line end written everywhere.
inline constexpr char CrLf[] = "\r\n";
/// Stands for a non-breaking space in the display.
inline constexpr char NbspMarker = '\x7f';
/// UTF-8 form of U+00A0 inside a byte string.
inline constexpr char Utf8Nbsp[] = "\xc2\xa0";
inline constexpr char PngSignature[] = "\x89PNG";
inline constexpr char JpegSignature1[] = "\xff\xd8\xff\xe0";
inline constexpr char JpegSignature2[] = "\xff\xd8\xff\xfe";
/// First bytes of a clean-up file.
inline constexpr char CleanUpFileSignature[] = "VMKCleanUpFile\xe9\xfe";

extern const QStringList ColorNames;
extern const QStringList OutputStyles;
extern const QStringList OutputEncodings;

extern QString AppPath;
/// The root part of `AppPath`; file dialogs go back to it. Empty where there are no drives.
extern QString AppDrive;
extern QString IniFilePath;

extern QString OfficeFolder;
extern QString SchemasFolder;
extern QString TempFolder;
extern QString TempImagesFolder;
extern QString UserCleanUpFolder;
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

// ---------------------------------------------------------------- settings (ReadSettings, WriteSettings)

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

/// Defaults of the book cleaner; not stored.
extern QString CurrentCleanUpFile;
extern QString CleanUpFontName;
extern int CleanUpFontSize;
extern bool CleanUpFontBold;

// ---------------------------------------------------------------- the open book (reset by a load, never
// saved)

/// Full path of the open book; empty before the first load.
extern QString CurrentBook;
/// The page file now shown: one of the two `Fb2SourceHtml` files.
extern QString DisplayFile;
/// The book's `binary` elements, held apart from the page from load to save.
extern std::string BinaryPart;

/// The encoding in force for reading the book, after any override in the settings.
extern std::string WorkEncodingName;
extern int32_t WorkCodePage;
extern std::string WorkMetaTag;
/// The encoding that the file itself declares.
extern std::string FileEncodingName;
extern int32_t FileCodePage;
extern std::string FileMetaTag;
/// The declaration written back at the head of the display.
extern std::string XmlDeclaration;
/// The book held decimal character references; decides a second conversion.
extern bool BookHasCharRefs;
/// Set when a validation against a schema begins.
extern QString FbNamespace;
/// The last conversion refused the book for its binary part.
extern bool BadBinaryPart;
/// Set just before the program itself navigates; cleared by the navigation event.
extern bool LoadingByProgram;
/// Suppresses the report of a refused navigation once.
extern bool SkipNavigationCheck;
/// The settings file was missing at start.
extern bool FirstStart;
/// A command-line validation failed: validate the display as soon as it is complete.
extern bool ValidateAfterLoad;
/// Undo steps that make up the last edit; 0 after a document is complete.
extern int32_t UndoSteps;
/// True from document-complete until an edit.
extern bool BookUnchanged;
/// Window state taken at exit; 2 means maximised.
extern int16_t MainFormWindowState;

} // namespace vmk
