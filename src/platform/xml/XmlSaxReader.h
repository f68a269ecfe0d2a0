#pragma once

#include "XmlError.h"
#include "XmlSaxHandler.h"

#include <string_view>
#include <vector>

namespace vmk {

class XmlSchemaCache;

/// The maximum nesting of elements.
inline constexpr int XmlMaxDepth = 4096;
/// The maximum size of expanded entities in one text, in bytes of UTF-8.
inline constexpr qsizetype XmlMaxEntityExpansion = 4'000'000;
/// The limits of a document type declaration; parameter entities count where they are declared
/// and each time they are used. libxml2
/// compares declarations and alternatives with each other, so these limits keep its time linear.
/// Bytes of UTF-8; up to 4000 bytes more may be accepted:
inline constexpr qsizetype XmlMaxDocTypeBytes = 256'000;
/// Markup declarations and comments:
inline constexpr int XmlMaxDeclarations = 2000;
/// Attributes in all ATTLIST declarations:
inline constexpr int XmlMaxDeclaredAttributes = 1000;
/// Alternatives of enumerated types, in all declarations:
inline constexpr int XmlMaxAlternatives = 2000;

/// Parses `bytes` once, without building a tree, and stops at the first error.
///
/// Checks well-formedness and namespaces and, if `schemas` contains a schema, validity and the uniqueness of
/// identifiers. Safe for any bytes: reads no other file and no network, limits nesting, entities and document
/// types; the length of text is not limited.
/// \param handler  receives the events up to the first error; may be null
/// \param schemas  the schemas; null or empty: no validation
/// \return the first error, or one with `errorCode` 0
[[nodiscard]] XmlParseError ReadXml(std::string_view bytes, XmlEncoding encoding,
                                    XmlSaxHandler* handler = nullptr,
                                    const XmlSchemaCache* schemas = nullptr);

/// Parses `bytes` once, as `ReadXml` does, and continues after errors of validity, up to the first error of
/// any other kind. The content of an element that the schema does not know is not validated. \return all
/// errors in the order of the text
[[nodiscard]] std::vector<XmlParseError> ReadAllXmlErrors(std::string_view bytes, XmlEncoding encoding,
                                                          const XmlSchemaCache* schemas = nullptr);

} // namespace vmk
