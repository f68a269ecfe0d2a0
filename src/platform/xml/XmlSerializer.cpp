#include "XmlSerializer.h"

#include "LargeBuffers.h"
#include "XmlReference.h"

#include <algorithm>
#include <utility>

namespace vmk {

namespace {

using ByteSet = bool[256];

struct SpecialBytes
{
    ByteSet inText{};
    ByteSet inValue{};
    ByteSet inRawText{}; // comments and similar: nothing is escaped there
    ByteSet inShownRawText{}; // in a display's HTML

    constexpr SpecialBytes()
    {
        for (const char c : {'&', '<', '>', '\n'})
            inText[static_cast<unsigned char>(c)] = inValue[static_cast<unsigned char>(c)] = true;
        for (const char c : {'"', ' ', '\t', '\r'})
            inValue[static_cast<unsigned char>(c)] = true;
        inRawText[static_cast<unsigned char>('\n')] = true;
        inShownRawText[static_cast<unsigned char>('\n')] = inShownRawText[static_cast<unsigned char>('&')]
            = true;
    }
};

constexpr SpecialBytes Special;

bool IsWhite(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

/// Only tabs and line ends are layout, as in a saved tree; a blank may separate words.
bool HasBlank(std::string_view white)
{
    return white.find(' ') != std::string_view::npos;
}

} // namespace

size_t XmlTreeText::laidOutSize() const
{
    size_t size = text.size();
    for (const Break& place : breaks)
        size = size + 2 + place.depth - place.length;
    return size;
}

std::string XmlTreeText::laidOut() const
{
    std::string result = StringWithRoom(laidOutSize());
    size_t from = 0;
    for (const Break& place : breaks) {
        result.append(text, from, place.position - from);
        result += "\r\n";
        result.append(place.depth, '\t');
        from = place.position + place.length;
    }
    result.append(text, from);
    return result;
}

XmlSerializer::XmlSerializer(std::vector<std::string> names, std::string newDeclaration, size_t expectedSize,
                             XmlForm writtenForm)
    : inLineNames(std::move(names))
    , declaration(std::move(newDeclaration))
    , form(writtenForm)
{
    out.text = StringWithRoom(expectedSize);
}

XmlTreeText XmlSerializer::take()
{
    return std::move(out);
}

void XmlSerializer::xmlDeclaration(std::string_view)
{
    out.text += declaration;
}

void XmlSerializer::docType(std::string_view asWritten)
{
    beginChild(Next::Other);
    // As written: its line ends are not normalised yet.
    for (size_t i = 0; i < asWritten.size(); ++i) {
        const char c = asWritten[i];
        if (c == '\r' && i + 1 < asWritten.size() && asWritten[i + 1] == '\n')
            continue;
        if (c == '\r' || c == '\n')
            out.text += "\r\n";
        else if (c == '&')
            out.text += ampersand(true);
        else
            out.text += c;
    }
}

void XmlSerializer::startElement(std::string_view name, std::span<const XmlAttribute> attributes)
{
    const bool inLine = isInLine(name);
    if (!open.empty()) {
        open.back().touching = open.back().touching || (open.back().afterElement && white.empty());
    }
    beginChild(inLine ? Next::InLineElement : Next::Other);
    const bool mixed = !open.empty() && open.back().mixed;

    out.text += '<';
    out.text += name;
    for (const XmlAttribute& attribute : attributes) {
        out.text += ' ';
        out.text += attribute.name;
        writeValue(attribute.value);
    }
    open.push_back({out.breaks.size(), inLine, mixed});
    open.back().isText = std::find(textNames.begin(), textNames.end(), name) != textNames.end();
}

void XmlSerializer::endElement(std::string_view name)
{
    Element& element = open.back();
    settleWhite(element, Next::EndTag);
    if (element.isText && element.touching && element.filledChild && !element.mixed) {
        makeMixed(element);
        ++kept;
    }
    const bool filled = element.hasContent;
    if (!element.hasContent) {
        out.text += "/>";
    } else {
        if (!element.mixed)
            addBreak(writtenWhite, open.size() - 1);
        out.text += "</";
        out.text += name;
        out.text += '>';
    }
    open.pop_back();
    if (!open.empty()) {
        open.back().afterElement = true;
        open.back().filledChild = open.back().filledChild || filled;
    }
}

void XmlSerializer::characters(std::string_view text)
{
    // The next event decides whether this white space is kept.
    if (IsWhite(text)) {
        white = text;
        return;
    }
    beginText();
    writeEscaped(text, Special.inText);
}

void XmlSerializer::cdata(std::string_view text)
{
    beginText();
    out.text += "<![CDATA[";
    writeEscaped(text, form == XmlForm::Display ? Special.inShownRawText : Special.inRawText);
    out.text += "]]>";
}

void XmlSerializer::comment(std::string_view text)
{
    beginChild(Next::Other);
    out.text += "<!--";
    writeEscaped(text, form == XmlForm::Display ? Special.inShownRawText : Special.inRawText);
    out.text += "-->";
}

void XmlSerializer::processingInstruction(std::string_view target, std::string_view data)
{
    beginChild(Next::Other);
    out.text += "<?";
    out.text += target;
    if (!data.empty()) {
        out.text += ' ';
        writeEscaped(data, form == XmlForm::Display ? Special.inShownRawText : Special.inRawText);
    }
    out.text += "?>";
}

void XmlSerializer::beginChild(Next kind)
{
    if (open.empty()) {
        if (!out.text.empty())
            addBreak(0, 0);
        return;
    }
    Element& parent = open.back();
    settleWhite(parent, kind);
    openContent(parent);
    if (!parent.mixed)
        addBreak(writtenWhite, open.size());
    parent.afterInLine = kind == Next::InLineElement;
    parent.afterElement = false;
}

void XmlSerializer::beginText()
{
    Element& parent = open.back();
    makeMixed(parent);
    settleWhite(parent, Next::Other);
    openContent(parent);
    parent.afterInLine = parent.afterElement = false;
}

/// Decides whether the white space before `next` is kept.
void XmlSerializer::settleWhite(Element& parent, Next next)
{
    writtenWhite = 0;
    if (white.empty())
        return;
    // An element that only should contain other elements remains a tree, whatever is between two of them.
    const bool mayBeText = textNames.empty() || parent.isText;
    const bool betweenInLine = mayBeText && parent.afterInLine && next == Next::InLineElement;
    const bool isText = HasBlank(white) && (parent.inLine || betweenInLine);
    if (isText)
        makeMixed(parent);

    // Written even if a break will replace it: text may follow, which requires it. Its line ends belong to
    // the layout and are removed.
    std::erase_if(white, [](char c) { return c == '\r' || c == '\n'; });
    const bool nothingElse = next == Next::EndTag && !parent.hasContent;
    if (!white.empty() && (isText || !nothingElse)) {
        openContent(parent);
        out.text += white;
        writtenWhite = static_cast<uint32_t>(white.size());
    }
    white.clear();
}

void XmlSerializer::openContent(Element& parent)
{
    if (!parent.hasContent)
        out.text += '>';
    parent.hasContent = true;
}

void XmlSerializer::addBreak(uint32_t whiteLength, size_t depth)
{
    out.breaks.push_back({out.text.size() - whiteLength, whiteLength, static_cast<uint32_t>(depth)});
}

void XmlSerializer::makeMixed(Element& element)
{
    if (element.mixed)
        return;
    element.mixed = true;
    out.breaks.resize(element.firstBreak);
}

void XmlSerializer::writeEscaped(std::string_view text, const bool (&special)[256])
{
    size_t from = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (!special[static_cast<unsigned char>(text[i])])
            continue;
        out.text.append(text, from, i - from);
        from = i + 1;
        switch (text[i]) {
        case '&':
            out.text += "&amp;";
            break;
        case '<': // in a display's text only a tag begins so
            out.text += form == XmlForm::Display ? "\xe2\x80\xb9" : "&lt;";
            break;
        case '>':
            out.text += "&gt;";
            break;
        default:
            out.text += i > 0 && text[i - 1] == '\r' ? "\n" : "\r\n";
        }
    }
    out.text.append(text, from);
}

/// An ampersand of the text; `raw` where XML does not escape it.
std::string_view XmlSerializer::ampersand(bool raw) const
{
    return raw && form == XmlForm::Xml ? std::string_view("&") : std::string_view("&amp;");
}

/// Writes an equals sign and a value in quotes. In a display, a value that contains double quotes is in
/// single quotes if possible, so that it is shown unchanged.
void XmlSerializer::writeValue(std::string_view value)
{
    const bool single = form == XmlForm::Display && value.find('"') != std::string_view::npos
        && value.find('\'') == std::string_view::npos;
    const char quote = single ? '\'' : '"';
    out.text += '=';
    out.text += quote;
    size_t from = 0;
    for (size_t i = 0; i < value.size(); ++i) {
        if (!Special.inValue[static_cast<unsigned char>(value[i])])
            continue;
        out.text.append(value, from, i - from);
        from = i + 1;
        writeValueCharacter(value, i, quote);
    }
    out.text.append(value, from);
    out.text += quote;
}

void XmlSerializer::writeValueCharacter(std::string_view value, size_t at, char quote)
{
    const char c = value[at];
    switch (c) {
    case '&':
        // Text that would be a reference in a display's tag is shown as in XML.
        if (form == XmlForm::Display && IsTagReference(value.substr(at + 1)))
            return writeReference("&amp;");
        out.text += "&amp;";
        return;
    case '<':
        out.text += form == XmlForm::Display ? "\xe2\x80\xb9" : "&lt;";
        return;
    case '>':
        out.text += "&gt;";
        return;
    case '"':
        if (c == quote)
            return writeReference("&quot;");
        break;
    case ' ':
        if (at > 0 && value[at - 1] == ' ')
            return writeReference("&#32;");
        break;
    // A parser converts these to blanks.
    case '\t':
        return writeReference("&#9;");
    case '\n':
        return writeReference("&#10;");
    default:
        return writeReference("&#13;");
    }
    out.text += c;
}

void XmlSerializer::writeReference(std::string_view reference)
{
    out.text += ampersand(false).substr(0, form == XmlForm::Display ? std::string_view::npos : 1);
    out.text += reference.substr(1);
}

bool XmlSerializer::isInLine(std::string_view name) const
{
    return std::find(inLineNames.begin(), inLineNames.end(), name) != inLineNames.end();
}

} // namespace vmk
