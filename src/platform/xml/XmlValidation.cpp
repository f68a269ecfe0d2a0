#include "XmlValidation.h"

#include "XmlError.h"
#include "XmlReason.h"
#include "XmlSchemaParts.h"

#include <algorithm>

namespace vmk {

Validation::Validation(const XmlSchema& schema, xmlDictPtr names)
    : context(xmlSchemaNewValidCtxt(schema.parts().schema.get()))
{
    const auto take = [](void* self, xmlErrorPtr error) {
        if (error->level >= XML_ERR_ERROR)
            static_cast<Validation*>(self)->problems.push_back(
                {error->code, TidyReason(error->message == nullptr ? "" : error->message)});
    };
    xmlSchemaSetValidStructuredErrors(context.get(), take, this);
    plug = xmlSchemaSAXPlug(context.get(), &events, &eventData);
    for (const std::string& name : schema.idAttributes())
        idNames.push_back(xmlDictLookup(names, reinterpret_cast<const xmlChar*>(name.data()),
                                        static_cast<int>(name.size())));
}

Validation::~Validation()
{
    xmlSchemaSAXUnplug(plug);
}

const std::vector<Validation::Problem>& Validation::startElement(const xmlChar* name, const xmlChar* prefix,
                                                                 const xmlChar* uri, int namespaceCount,
                                                                 const xmlChar** namespaces,
                                                                 int attributeCount, int defaulted,
                                                                 const xmlChar** attributes)
{
    problems.clear();
    events->startElementNs(eventData, name, prefix, uri, namespaceCount, namespaces, attributeCount,
                           defaulted, attributes);
    checkIds(name, attributeCount, attributes);
    return problems;
}

const std::vector<Validation::Problem>& Validation::endElement(const xmlChar* name, const xmlChar* prefix,
                                                               const xmlChar* uri)
{
    problems.clear();
    events->endElementNs(eventData, name, prefix, uri);
    return problems;
}

const std::vector<Validation::Problem>& Validation::characters(std::string_view text)
{
    problems.clear();
    // libxml2 counts with 32 bits.
    constexpr size_t Most = size_t(1) << 30;
    for (; !text.empty() && problems.empty(); text.remove_prefix(std::min(Most, text.size())))
        events->characters(eventData, reinterpret_cast<const xmlChar*>(text.data()),
                           static_cast<int>(std::min(Most, text.size())));
    return problems;
}

// libxml2 checks the uniqueness of identifiers only if it builds a tree.
void Validation::checkIds(const xmlChar* element, int attributeCount, const xmlChar** attributes)
{
    constexpr std::string_view Blanks = " \t\r\n";
    for (ptrdiff_t i = 0; i < attributeCount; ++i) {
        const xmlChar** attribute = attributes + 5 * i; // name, prefix, URI, value, end of value
        if (attribute[2] != nullptr || std::ranges::find(idNames, attribute[0]) == idNames.end())
            continue;
        std::string_view id(reinterpret_cast<const char*>(attribute[3]),
                            static_cast<size_t>(attribute[4] - attribute[3]));
        id.remove_prefix(std::min(id.find_first_not_of(Blanks), id.size()));
        id = id.substr(0, id.find_last_not_of(Blanks) + 1);
        if (seenIds.emplace(id).second)
            continue;
        const auto text
            = [](const xmlChar* name) { return std::string(reinterpret_cast<const char*>(name)); };
        problems.push_back({XmlDuplicateId,
                            "Element '" + text(element) + "', attribute '" + text(attribute[0])
                                + "': The identifier '" + std::string(id) + "' is used a second time."});
    }
}

} // namespace vmk
