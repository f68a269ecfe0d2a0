#include "BookFileCheck.h"

#include "BookVariables.h"
#include "Boxes.h"
#include "Desktop.h"
#include "FictionBookNamespace.h"
#include "FileOperations.h"
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

void RefuseInBox(const QString& text, const QString& path, bool endOnError)
{
    StopBox(text, u"VMK: "_s + FileOperation(NameMode, path));
    if (endOnError)
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

bool CheckBookFile(const QString& path, bool boxes, bool endOnError)
{
    if (boxes && !FileExists(path)) {
        RefuseInBox(u"file loading error: file not found"_s + QLatin1StringView(CrLf) + path, path,
                    endOnError);
        return false;
    }

    // Only the beginning is checked: "fb2", "fb" and "fbz" all pass.
    if (FileOperation(ExtensionMode, path).toLower().startsWith(u"fb"))
        return true;
    const QString refusal = u"file loading error: not allowed file extension"_s;
    if (boxes) {
        RefuseInBox(refusal, path, endOnError);
    } else {
        ShowStatus(refusal);
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
    const bool againstSchema = ValidateOption.toLower() == u"schema";

    XmlDocument document;
    if (againstSchema) {
        FbNamespace = FictionBookNamespace();
        const auto cache = std::make_shared<XmlSchemaCache>();
        cache->add(FbNamespace, SchemaFile);
        document.schemas = cache;
    }
    document.validateOnParse = true;
    document.loadXML(ReadFileText(path), XmlEncoding::byDeclaration());
    return document.parseError().errorCode != 0;
}

} // namespace vmk
