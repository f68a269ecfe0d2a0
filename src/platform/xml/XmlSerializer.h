#pragma once

#include "XmlSaxHandler.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// What the parser's `xml` is by default for a text that has a declaration.
inline constexpr std::string_view PlainXmlDeclaration = R"(<?xml version="1.0"?>)";

/// A parsed text written anew: the text itself and the places where the tree begins a new line.
///
/// Keeping the two apart makes it cheap to find out late that an element holds text and has to stay on one
/// line: its breaks are forgotten, and the text is right as it stands.
struct XmlTreeText
{
    /// `length` bytes of white space at `position` give way to `CrLf` and `depth` tabs.
    struct Break
    {
        size_t position;
        uint32_t length;
        uint32_t depth;
    };

    std::string text;
    /// In the order of their positions.
    std::vector<Break> breaks;

    /// The size of `laidOut()`, in bytes.
    [[nodiscard]] size_t laidOutSize() const;
    /// The text with its breaks written out.
    [[nodiscard]] std::string laidOut() const;
};

/// Writes a text from its parser events, without a tree in memory.
///
/// Every child of an element that holds only elements stands on a line of its own; an element that holds
/// text stays on one line, with its content untouched. White space alone between elements goes, except in
/// the midst of text: in an element that holds text, and, if there is a blank in it, in or between in-line
/// elements (a space there parts words). An element without
/// content is written `<name/>`, attribute values stand in double quotes; `&`, `<` and `>` are escaped and
/// references resolved. Comments, processing instructions, CDATA sections and the document type stay in
/// their places. Line ends in text, CDATA, comments and values are written `CrLf`.
///
/// Time and memory are linear in the text, whatever its nesting.
class XmlSerializer final : public XmlSaxHandler
{
public:
    /// \param inLineNames  names, with prefix, of the elements that stand in the midst of text
    /// \param declaration  what stands in place of the text's own declaration, if it has one
    /// \param expectedSize  bytes of text to make room for at once
    explicit XmlSerializer(std::vector<std::string> inLineNames,
                           std::string declaration = std::string(PlainXmlDeclaration),
                           size_t expectedSize = 0);

    /// What has been written. Call once, after an error-free pass.
    [[nodiscard]] XmlTreeText take();

    void xmlDeclaration(std::string_view asWritten) override;
    void docType(std::string_view asWritten) override;
    void startElement(std::string_view name, std::span<const XmlAttribute> attributes) override;
    void endElement(std::string_view name) override;
    void characters(std::string_view text) override;
    void cdata(std::string_view text) override;
    void comment(std::string_view text) override;
    void processingInstruction(std::string_view target, std::string_view data) override;

private:
    struct Element
    {
        size_t firstBreak; // of its content
        bool inLine;
        bool mixed; // holds text, or stands in an element that does
        bool hasContent = false;
        bool afterInLine = false; // its last child so far is an in-line element
    };
    enum class Next
    {
        InLineElement,
        Other,
        EndTag
    };

    void beginChild(Next kind);
    void beginText();
    void settleWhite(Element& parent, Next next);
    void openContent(Element& parent);
    void addBreak(uint32_t whiteLength, size_t depth);
    void makeMixed(Element& element);
    void writeEscaped(std::string_view text, const bool (&special)[256]);
    [[nodiscard]] bool isInLine(std::string_view name) const;

    std::vector<std::string> inLineNames;
    std::string declaration;
    XmlTreeText out;
    std::vector<Element> open;
    std::string white; // white space alone, met since the last event
    uint32_t writtenWhite = 0; // what of it has been written
};

} // namespace vmk
