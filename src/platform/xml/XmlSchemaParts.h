#pragma once

#include "LibXml.h"
#include "XmlSchemaCache.h"

namespace vmk {

/// The libxml2 objects of a schema. The schema points into the tree of its main file.
struct XmlSchema::Parts
{
    XmlDocPtr tree;
    std::unique_ptr<::xmlSchema, LibXmlDeleter<xmlSchemaFree>> schema;
};

} // namespace vmk
