#pragma once

#include <libxml/catalog.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/schemasInternals.h>
#include <libxml/xmlschemas.h>

#include <memory>

namespace vmk {

/// Calls a libxml2 function to free what a smart pointer held.
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

/// Sets libxml2 up for this program, once: no catalogues, and no file but those of a schema that is being
/// compiled. Any thread may call it, any number of times.
void InitLibXml();

} // namespace vmk
