#pragma once

#include "XmlError.h"
#include "XmlSaxHandler.h"
#include "XmlSchemaCache.h"

#include <QStringView>

#include <memory>
#include <string_view>

namespace vmk {

/// A parser with the properties and names of a document object. It keeps no tree: what `loadXML` reads goes
/// to a handler, event by event, and the first error stays in `parseError`.
class XmlDocument
{
public:
    /// Whether `loadXML` validates against `schemas`; without it only well-formedness and namespaces count.
    bool validateOnParse = true;
    /// For handlers that lay text out anew: whether white space alone between elements is to be kept.
    bool preserveWhiteSpace = false;
    /// External entities are never read; true makes no difference, a reference to one is an error.
    bool resolveExternals = false;
    /// Null or empty: nothing to validate against, and `loadXML` does without. May be shared.
    std::shared_ptr<const XmlSchemaCache> schemas;

    /// Parses the bytes of a text. Positions in `parseError` speak of these bytes.
    /// \return true when no error was found
    bool loadXML(std::string_view bytes, XmlEncoding encoding, XmlSaxHandler* handler = nullptr);
    /// Parses a text of characters; an encoding in its declaration is ignored.
    bool loadXML(QStringView text, XmlSaxHandler* handler = nullptr);

    /// The first error of the last `loadXML`; `errorCode` is 0 when there was none.
    [[nodiscard]] const XmlParseError& parseError() const { return error; }

private:
    XmlParseError error;
};

/// True when `text` is not well-formed or uses namespace prefixes that are not declared.
[[nodiscard]] bool HasParseError(std::string_view text, XmlEncoding encoding);

} // namespace vmk
