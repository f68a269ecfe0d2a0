#pragma once

#include "XmlError.h"
#include "XmlSaxHandler.h"

#include <string_view>

namespace vmk {

class XmlSchemaCache;

/// The maximum nesting of elements.
inline constexpr int XmlMaxDepth = 4096;
/// The maximum size of expanded entities in one text, in bytes of UTF-8.
inline constexpr qsizetype XmlMaxEntityExpansion = 4'000'000;

/// Parses `bytes` once, without building a tree, and stops at the first error.
///
/// Checks well-formedness and namespaces and, if `schemas` contains a schema, validity and the uniqueness of
/// identifiers. Safe for any bytes: reads no other file and no network, limits nesting and entities; the
/// length of text is not limited.
/// \param handler  receives the events up to the first error; may be null
/// \param schemas  the schemas; null or empty: no validation
/// \return the first error, or one with `errorCode` 0
[[nodiscard]] XmlParseError ReadXml(std::string_view bytes, XmlEncoding encoding,
                                    XmlSaxHandler* handler = nullptr,
                                    const XmlSchemaCache* schemas = nullptr);

} // namespace vmk
