#pragma once

#include <span>
#include <string_view>

namespace vmk {

/// An attribute as written: the name with its prefix, the value with references resolved and white space
/// normalised. Namespace declarations are attributes too.
struct XmlAttribute
{
    std::string_view name;
    std::string_view value;
};

/// Receives a parsed text, event by event, in UTF-8. Views are valid only during the call.
///
/// After an error no further event occurs. Entities of the document type are replaced by their text and
/// elements.
class XmlSaxHandler
{
public:
    virtual ~XmlSaxHandler() = default;

    /// The XML declaration as written, from "<?xml" to "?>". Not called for a text without one.
    virtual void xmlDeclaration([[maybe_unused]] std::string_view asWritten) { }
    /// The document type as written, from "<!DOCTYPE" to ">", including the internal subset.
    virtual void docType([[maybe_unused]] std::string_view asWritten) { }
    virtual void startElement([[maybe_unused]] std::string_view name,
                              [[maybe_unused]] std::span<const XmlAttribute> attributes)
    {
    }
    /// Also called, directly after `startElement`, for `<name/>`.
    virtual void endElement([[maybe_unused]] std::string_view name) { }
    /// The whole text between two other events; references are resolved, line ends are LF.
    virtual void characters([[maybe_unused]] std::string_view text) { }
    virtual void cdata([[maybe_unused]] std::string_view text) { }
    virtual void comment([[maybe_unused]] std::string_view text) { }
    virtual void processingInstruction([[maybe_unused]] std::string_view target,
                                       [[maybe_unused]] std::string_view data)
    {
    }
};

} // namespace vmk
