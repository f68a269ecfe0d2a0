#include "BookValidation.h"

#include "BookVariables.h"
#include "FictionBookNamespace.h"
#include "SettingsVariables.h"
#include "XmlDocument.h"
#include "XmlSaxReader.h"

using namespace Qt::StringLiterals;

namespace vmk {

ValidateAgainst ValidateAgainstOf(const QString& option)
{
    return option.toLower() == "schema"_L1 ? ValidateAgainst::Schema : ValidateAgainst::Namespace;
}

QString NameOf(ValidateAgainst against)
{
    return against == ValidateAgainst::Schema ? u"schema"_s : u"namespace"_s;
}

BookValidation::BookValidation(ValidateAgainst against, const QString& schemaFile)
    : kind(against)
{
    if (against == ValidateAgainst::Namespace)
        return;
    auto cache = std::make_shared<XmlSchemaCache>();
    if (!cache->add(FictionBookNamespace(), schemaFile))
        problem = cache->problem();
    schemas = std::move(cache);
}

XmlParseError BookValidation::validate(std::string_view text, XmlEncoding encoding) const
{
    XmlDocument document;
    document.schemas = schemas;
    document.loadXML(text, encoding);
    return document.parseError();
}

std::vector<XmlParseError> BookValidation::validateAll(std::string_view text, XmlEncoding encoding) const
{
    return ReadAllXmlErrors(text, encoding, schemas.get());
}

BookValidation ValidationBySettings(ValidateAgainst against)
{
    if (against == ValidateAgainst::Schema)
        FbNamespace = FictionBookNamespace();
    return BookValidation(against, SchemaFile);
}

} // namespace vmk
