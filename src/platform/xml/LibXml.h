#pragma once

#include <libxml/catalog.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/schemasInternals.h>
#include <libxml/xmlschemas.h>

#include <memory>

namespace vmk {

/// A deleter for smart pointers that calls a libxml2 function.
template <auto Free>
struct LibXmlDeleter
{
    template <typename T>
    void operator()(T* pointer) const
    {
        Free(pointer);
    }
};

using XmlDocPtr = std::unique_ptr<xmlDoc, LibXmlDeleter<xmlFreeDoc>>;

/// Initializes libxml2 for this program: no catalogues, and no files except those of a schema that is being
/// compiled. Can be called by any thread, any number of times.
void InitLibXml();

} // namespace vmk
