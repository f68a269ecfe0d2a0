#pragma once

#include "LibXml.h"
#include "XmlSchemaCache.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace vmk {

/// The streaming validation of one document, event by event. Builds no tree.
class Validation
{
public:
    struct Problem
    {
        int code;
        std::string reason;
    };

    /// \param names  the dictionary of the parser that creates the events
    Validation(const XmlSchema& schema, xmlDictPtr names);
    ~Validation();
    Validation(const Validation&) = delete;
    Validation& operator=(const Validation&) = delete;

    // Arguments as in the parser's own events; each returns the problems that it finds, valid until the next
    // event.
    [[nodiscard]] const std::vector<Problem>& startElement(const xmlChar* name, const xmlChar* prefix,
                                                           const xmlChar* uri, int namespaceCount,
                                                           const xmlChar** namespaces, int attributeCount,
                                                           int defaulted, const xmlChar** attributes);
    [[nodiscard]] const std::vector<Problem>& endElement(const xmlChar* name, const xmlChar* prefix,
                                                         const xmlChar* uri);
    [[nodiscard]] const std::vector<Problem>& characters(std::string_view text);

private:
    void checkIds(const xmlChar* element, int attributeCount, const xmlChar** attributes);

    std::unique_ptr<xmlSchemaValidCtxt, LibXmlDeleter<xmlSchemaFreeValidCtxt>> context;
    xmlSchemaSAXPlugPtr plug = nullptr;
    xmlSAXHandlerPtr events = nullptr;
    void* eventData = nullptr;
    std::vector<Problem> problems;
    std::vector<const xmlChar*> idNames; // from the dictionary: compared as pointers
    std::unordered_set<std::string> seenIds;
};

} // namespace vmk
