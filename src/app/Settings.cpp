#include "Settings.h"

#include "BookVariables.h"
#include "Boxes.h"
#include "FileOperations.h"
#include "LineEnds.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"

#include <algorithm>
#include <array>
#include <limits>
#include <variant>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

using Variable = std::variant<QString*, int*, float*>;

/// The stored settings, in the order of the record.
constexpr std::array<Variable, SettingsFieldCount> Variables = {
    &InputEncoding,     &NamespaceErrorWarning, &OutputEncoding,   &OutputStyle,       &TagHighlighting,
    &PreviewOnChange,   &DisplayFontName,       &DisplayFontSize,  &DisplayFontWeight, &DisplayTextAlign,
    &DisplayLeftMargin, &DisplayRightMargin,    &DisplayForeColor, &DisplayBackColor,  &NodeShift,
    &TagColor,          &AttrNameColor,         &AttrValColor,     &TagFontWeight,     &SoundsOn,
    &ShowNbsp,          &CommandLineInfo,       &ValidateOption,   &SchemaFile,        &LastBookFolder,
    &LastSaveFolder,    &LastImageFolder,       &LastFile,         &MainFormLeft,      &MainFormTop,
    &MainFormWidth,     &MainFormHeight,
};

constexpr int MaximisedState = 2;

QString DefaultSchemaFile()
{
    return SchemasFolder + u"/FictionBook.xsd"_s;
}

void SetBookAndDisplayDefaults()
{
    InputEncoding = u"original"_s;
    NamespaceErrorWarning = 1;
    OutputEncoding = u"original"_s;
    OutputStyle = u"tags tree"_s;
    TagHighlighting = 1;
    PreviewOnChange = 1;
    DisplayFontName = u"Verdana"_s;
    DisplayFontSize = u"10pt"_s;
    DisplayFontWeight = u"normal"_s;
    DisplayTextAlign = u"left"_s;
    DisplayLeftMargin = u"2px"_s;
    DisplayRightMargin = u"2px"_s;
    DisplayForeColor = u"#000000"_s;
    DisplayBackColor = u"#F5F5F5"_s;
    NodeShift = 5;
    TagColor = u"#0000FF"_s;
    AttrNameColor = u"#A52A2A"_s;
    AttrValColor = u"#008000"_s;
    TagFontWeight = u"bold"_s;
}

void SetProgramDefaults()
{
    SoundsOn = 1;
    ShowNbsp = 1;
    CommandLineInfo = 1;
    ValidateOption = u"schema"_s;
    SchemaFile = DefaultSchemaFile();
    LastBookFolder = SampleBooksFolder;
    // Kept even where there are no drives: a dialog ignores a folder that does not exist.
    LastSaveFolder = u"c:\\"_s;
    LastImageFolder = u"c:\\"_s;
    LastFile.clear();
    MainFormLeft = 10 * TwipsPerPixelX;
    MainFormTop = 10 * TwipsPerPixelY;
    MainFormWidth = 700 * TwipsPerPixelX;
    MainFormHeight = 500 * TwipsPerPixelY;
}

void SetCleanerDefaults()
{
    CurrentCleanUpFile.clear();
    CleanUpFontName = u"Ms Sans Serif"_s;
    CleanUpFontSize = 9;
    CleanUpFontBold = true;
}

int16_t StoredNumber(int number)
{
    using Limits = std::numeric_limits<int16_t>;
    return static_cast<int16_t>(std::clamp<int>(number, Limits::min(), Limits::max()));
}

SettingsRecord GatherRecord()
{
    SettingsRecord record;
    for (std::size_t i = 0; i < record.size(); ++i) {
        if (const auto* text = std::get_if<QString*>(&Variables[i]))
            record[i] = **text;
        else if (const auto* number = std::get_if<int*>(&Variables[i]))
            record[i] = StoredNumber(**number);
        else
            record[i] = *std::get<float*>(Variables[i]);
    }
    return record;
}

void TakeRecord(const SettingsRecord& record)
{
    for (std::size_t i = 0; i < record.size(); ++i) {
        if (const auto* text = std::get_if<QString*>(&Variables[i]))
            **text = std::get<QString>(record[i]);
        else if (const auto* number = std::get_if<int*>(&Variables[i]))
            **number = std::get<int16_t>(record[i]);
        else
            *std::get<float*>(Variables[i]) = std::get<float>(record[i]);
    }
}

/// The name in the message is fixed; it does not depend on the executable's name.
void ReportDamagedRecord()
{
    PlainBox(u"error reading VmkValidator.ini file"_s + QLatin1StringView(CrLf)
             + u"The default settings will be used"_s);
    FileOperation(DeleteFileMode, IniFilePath);
}

} // namespace

void SetRecordDefaults()
{
    SetBookAndDisplayDefaults();
    SetProgramDefaults();
}

void ReadSettings(bool useDefaults)
{
    SetRecordDefaults();
    SetCleanerDefaults();

    if (!useDefaults && FileExists(IniFilePath)) {
        // No value is used from a record that cannot be read to its end.
        if (const std::optional<SettingsRecord> record = DecodeSettings(ReadFileText(IniFilePath))) {
            TakeRecord(*record);
            if (!FileExists(LastFile))
                LastFile.clear();
        } else {
            ReportDamagedRecord();
        }
    }
    if (!FileExists(SchemaFile))
        SchemaFile = DefaultSchemaFile();
}

bool WriteSettings(const FormPlace& form)
{
    // Intended: a session that opened no book clears the last file.
    LastFile = FileExists(CurrentBook) ? CurrentBook : QString();

    const bool isMaximised = MainFormWindowState == MaximisedState;
    const float inwardX = isMaximised ? TwipsPerPixelX : 0;
    const float inwardY = isMaximised ? TwipsPerPixelY : 0;
    MainFormLeft = form.left + inwardX;
    MainFormTop = form.top + inwardY;
    MainFormWidth = form.width - 2 * inwardX;
    MainFormHeight = form.height - 2 * inwardY;

    return WriteFileBytes(IniFilePath, EncodeSettings(GatherRecord()));
}

} // namespace vmk
