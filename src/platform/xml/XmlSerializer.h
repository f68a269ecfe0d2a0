#pragma once

#include "XmlSaxHandler.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// The default declaration of the parser's `xml` for a text with a declaration.
inline constexpr std::string_view PlainXmlDeclaration = R"(<?xml version="1.0"?>)";

/// A serialized text: the text itself and the positions where the tree begins a new line.
///
/// Because both are separate, it is cheap to find out late that an element contains text and must remain on
/// one line: its breaks are dropped, and the text is already correct.
struct XmlTreeText
{
    /// `length` bytes of white space at `position` are replaced by `CrLf` and `depth` tabs.
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
    /// Returns the text with its breaks written out.
    [[nodiscard]] std::string laidOut() const;
};

/// The output format of an `XmlSerializer`.
enum class XmlForm
{
    Xml,
    /// The text that a display shows, with ampersands as in HTML: it reads back as the same XML (see
    /// `DisplayCharacters.h` for the rules). Angle brackets of the mark-up are not escaped.
    Display
};

/// Serializes a text from its parser events, without a tree in memory.
///
/// Every child of an element that contains only elements is on its own line. An element that contains text is
/// on one line, with its content unchanged. White space between elements is removed, except within text: in
/// an element that contains text, and in or between in-line elements if the white space contains a blank
/// (which separates words). An element without content is written as `<name/>`, attribute values are in
/// double quotes; `&`, `<` and `>` are escaped and references resolved. Comments, processing instructions,
/// CDATA sections and the document type keep their positions. Line ends in text, CDATA, comments and values
/// are written as `CrLf`.
///
/// Time and memory are linear in the size of the text, for any nesting.
class XmlSerializer final : public XmlSaxHandler
{
public:
    /// \param inLineNames   names, with prefix, of the elements that occur within text
    /// \param declaration   replaces the text's own declaration, if it has one
    /// \param expectedSize  the number of bytes to reserve
    explicit XmlSerializer(std::vector<std::string> inLineNames,
                           std::string declaration = std::string(PlainXmlDeclaration),
                           size_t expectedSize = 0, XmlForm form = XmlForm::Xml);

    /// In elements with these names, two adjacent elements remain on one line, unless no child has content: a
    /// line end between them would be a blank of the text. In other elements, white space between in-line
    /// elements is layout.
    void keepTextOf(std::vector<std::string> names) { textNames = std::move(names); }
    /// The number of elements that `keepTextOf` has kept on one line.
    [[nodiscard]] size_t keptElements() const { return kept; }

    /// Returns the result. Call once, after a pass without an error.
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
        bool mixed; // contains text, or is in an element that does
        bool hasContent = false;
        bool afterInLine = false; // the last child so far is an in-line element
        bool isText = false; // its name is one of `textNames`
        bool filledChild = false; // an element in it has content
        bool afterElement = false; // an element is directly before the position
        bool touching = false; // two elements in it have no text between them
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
    void writeValue(std::string_view value);
    void writeValueCharacter(std::string_view value, size_t at, char quote);
    void writeReference(std::string_view reference);
    [[nodiscard]] std::string_view ampersand(bool raw) const;
    [[nodiscard]] bool isInLine(std::string_view name) const;

    std::vector<std::string> inLineNames;
    std::vector<std::string> textNames;
    std::string declaration;
    XmlForm form;
    size_t kept = 0;
    XmlTreeText out;
    std::vector<Element> open;
    std::string white; // white space since the last event
    uint32_t writtenWhite = 0; // the number of its bytes that are written
};

} // namespace vmk
