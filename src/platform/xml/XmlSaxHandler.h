#pragma once

#include <span>
#include <string_view>

namespace vmk {

/// An attribute as written: name with its prefix, namespace declarations among the others; the value with
/// references resolved and white space normalised.
struct XmlAttribute
{
    std::string_view name;
    std::string_view value;
};

/// Receives a parsed text, event by event, in UTF-8. Views hold during the call only.
///
/// Once an error is found no further event comes. What entities of the document type stand for comes in
/// their place, as text and elements.
class XmlSaxHandler
{
public:
    virtual ~XmlSaxHandler() = default;

    /// The XML declaration as written, from "<?xml" to "?>". Not called for a text without one.
    virtual void xmlDeclaration([[maybe_unused]] std::string_view asWritten) { }
    /// The document type as written, from "<!DOCTYPE" to ">", internal subset included.
    virtual void docType([[maybe_unused]] std::string_view asWritten) { }
    virtual void startElement([[maybe_unused]] std::string_view name,
                              [[maybe_unused]] std::span<const XmlAttribute> attributes)
    {
    }
    /// Also called, right after `startElement`, for `<name/>`.
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
