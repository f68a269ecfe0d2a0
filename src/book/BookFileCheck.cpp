#include "BookFileCheck.h"

#include "BookValidation.h"
#include "Boxes.h"
#include "Desktop.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "LineEnds.h"
#include "MainWindowSeams.h"
#include "ProcessEnd.h"
#include "SettingsVariables.h"
#include "Sounds.h"
#include "XmlDocument.h"

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr QStringView ParserPage = u"https://gitlab.gnome.org/GNOME/libxml2/-/wikis/home";

void RefuseInBox(const QString& text, const QString& path, BookRefusal refusal)
{
    StopBox(text, u"VMK: "_s + FileNameOf(path));
    if (refusal == BookRefusal::BoxAndEnd)
        EndProcess();
}

bool LinkedParserParses(std::string_view text)
{
    XmlDocument document;
    document.validateOnParse = false;
    document.resolveExternals = false;
    document.preserveWhiteSpace = true;
    return document.loadXML(text, XmlEncoding::byDeclaration());
}

} // namespace

bool CheckBookFile(const QString& path, BookRefusal refusal)
{
    if (refusal != BookRefusal::StatusBar && !FileExists(path)) {
        RefuseInBox(u"file loading error: file not found"_s + QLatin1StringView(CrLf) + path, path, refusal);
        return false;
    }
    return CheckBookExtension(path, refusal);
}

bool HasBookExtension(const QString& path)
{
    // Only the beginning is checked: "fb2", "fb" and "fbz" all pass.
    return ExtensionOf(path).toLower().startsWith(u"fb");
}

bool CheckBookExtension(const QString& path, BookRefusal refusal)
{
    if (HasBookExtension(path))
        return true;
    const QString reason = u"file loading error: not allowed file extension"_s;
    if (refusal != BookRefusal::StatusBar) {
        RefuseInBox(reason, path, refusal);
    } else {
        ShowStatus(reason);
        PlayProgramSound(u"FileLoadError.wav"_s, true);
    }
    return false;
}

bool CheckMsxml()
{
    return CheckMsxml(LinkedParserParses);
}

bool CheckMsxml(bool (*parses)(std::string_view text))
{
    if (parses(R"(<?xml version="1.0" encoding="UTF-8"?><nscheck></nscheck>)"))
        return true;
    // The parser is linked into the program: the box appears only if its library is broken.
    const QString text = u"MS XML 4.0 installation not found"_s + QLatin1StringView(CrLf)
        + u"Do you want to download it now?"_s;
    if (YesNoBox(text, u"MS XML Check Error"_s))
        OpenWithSystem(ParserPage.toString());
    EndProcess();
    return false;
}

bool ValidateFileQuietly(const QString& path)
{
    const BookValidation validation = ValidationBySettings(ValidateAgainstOf(ValidateOption));
    const XmlParseError error = validation.validate(ReadFileText(path), XmlEncoding::byDeclaration());
    return error.errorCode != 0;
}

} // namespace vmk
