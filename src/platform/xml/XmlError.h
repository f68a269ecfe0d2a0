#pragma once

#include "XmlInput.h"

#include <QString>

namespace vmk {

/// Codes of the errors that are found here and not by libxml2. The codes of libxml2 are lower.
enum XmlErrorCode : int
{
    XmlUnknownEncoding = 100001,
    XmlBadCharacter,
    XmlTooDeep,
    XmlEntityTooLarge,
    XmlExternalEntity,
    XmlDuplicateId,
    XmlNoParser,
    XmlTagTooLarge,
    XmlDocTypeTooLarge,
};

/// The first error of a text: `parseError` of the document.
///
/// The position is, for a text that is not well-formed, the position where the parser stopped; for an error
/// at a start tag, its "<"; for an error at an end tag, the position after its "</".
struct XmlParseError : XmlPosition
{
    int errorCode = 0; ///< 0: no error
    QString reason; ///< the message, on one line

    explicit operator bool() const { return errorCode != 0; }
};

} // namespace vmk
