#pragma once

#include "XmlError.h"
#include "XmlSaxHandler.h"

#include <string_view>

namespace vmk {

class XmlSchemaCache;

/// Deepest nesting of elements that is read.
inline constexpr int XmlMaxDepth = 4096;
/// What the entities of one text may expand to, in bytes of UTF-8.
inline constexpr qsizetype XmlMaxEntityExpansion = 4'000'000;

/// Parses `bytes` once, without building a tree, and stops at the first error.
///
/// Tests well-formedness and namespaces and, given `schemas` with a schema in it, validity and the
/// uniqueness of identifiers. Safe on any bytes: reads no other file and no network, bounds nesting and
/// entities; lengths of text are not bounded.
/// \param handler  receives the events up to the first error; may be null
/// \param schemas  what to validate against; null or empty: no validation
/// \return the first error, or one with `errorCode` 0
[[nodiscard]] XmlParseError ReadXml(std::string_view bytes, XmlEncoding encoding,
                                    XmlSaxHandler* handler = nullptr,
                                    const XmlSchemaCache* schemas = nullptr);

} // namespace vmk
