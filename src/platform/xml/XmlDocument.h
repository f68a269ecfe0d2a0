#pragma once

#include "XmlError.h"
#include "XmlSaxHandler.h"
#include "XmlSchemaCache.h"

#include <QStringView>

#include <memory>
#include <string_view>

namespace vmk {

/// A parser with the properties and names of a document object. It builds no tree: `loadXML` passes the text
/// to a handler, event by event, and stores the first error in `parseError`.
class XmlDocument
{
public:
    /// Whether `loadXML` validates against `schemas`; otherwise it checks only well-formedness and
    /// namespaces.
    bool validateOnParse = true;
    /// For handlers that change the layout: whether to keep white space between elements.
    bool preserveWhiteSpace = false;
    /// Has no effect: external entities are never read, and a reference to one is an error.
    bool resolveExternals = false;
    /// Null or empty: `loadXML` does not validate. May be shared.
    std::shared_ptr<const XmlSchemaCache> schemas;

    /// Parses the bytes of a text. Positions in `parseError` refer to these bytes.
    /// \return true if no error was found
    bool loadXML(std::string_view bytes, XmlEncoding encoding, XmlSaxHandler* handler = nullptr);
    /// Parses a text of characters; an encoding in its declaration is ignored.
    bool loadXML(QStringView text, XmlSaxHandler* handler = nullptr);

    /// The first error of the last `loadXML`; `errorCode` is 0 if there was none.
    [[nodiscard]] const XmlParseError& parseError() const { return error; }

private:
    XmlParseError error;
};

/// Returns true if `text` is not well-formed or uses undeclared namespace prefixes.
[[nodiscard]] bool HasParseError(std::string_view text, XmlEncoding encoding);

} // namespace vmk
