#include "SchemaPage.h"

#include "XmlDocument.h"

#include <algorithm>
#include <vector>

namespace vmk {
namespace {

/// Pixels per level.
constexpr int Indent = 16;

constexpr std::string_view Head
    = "<HTML><meta content=\"text/html; charset=utf-8\" http-equiv=\"Content-Type\"><HEAD><STYLE>"
      "span.t {color:#0000FF;} font.n {color:#A52A2A;} font.v {color:#008000;} span.c {color:#808080;}"
      "</STYLE></HEAD><BODY STYLE=\"font-family:Verdana; font-size:10pt; margin-top:2px; margin-left:4px; "
      "margin-right:4px\" text=\"#000000\" bgColor=\"#FFFFFF\">\r\n";
constexpr std::string_view Tail = "</BODY></HTML>";

std::string Escaped(std::string_view text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '&':
            escaped += "&amp;";
            break;
        case '\n':
            escaped += ' ';
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

bool IsWhiteSpace(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

std::vector<std::string_view> Lines(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of("\r\n"), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
        text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<size_t>(text.size(), 1));
    }
    return lines;
}

/// Writes the lines of the page from the parser's events.
class Painter : public XmlSaxHandler
{
public:
    [[nodiscard]] std::string takeLines()
    {
        finishLine();
        return std::move(page);
    }

    void xmlDeclaration(std::string_view asWritten) override { wholeLine("t", Escaped(asWritten)); }
    void docType(std::string_view asWritten) override { wholeLine("t", Escaped(asWritten)); }

    void startElement(std::string_view name, std::span<const XmlAttribute> attributes) override
    {
        finishLine();
        line.append("<SPAN class=t>&lt;").append(Escaped(name));
        for (const XmlAttribute& attribute : attributes) {
            line += "<FONT class=n> " + Escaped(attribute.name) + "=</FONT><FONT class=v>\""
                + Escaped(Escaped(attribute.value)) + "\"</FONT>";
        }
        // The end of the tag is written once it is known whether the element is empty.
        state = State::InStartTag;
        lineDepth = depth++;
    }

    void endElement(std::string_view name) override
    {
        --depth;
        if (state == State::InStartTag) {
            line += "/&gt;</SPAN>";
            state = State::WholeLine;
            return;
        }
        if (state == State::Text && lineDepth == depth) {
            line += endTag(name);
            state = State::WholeLine;
            return;
        }
        finishLine();
        line = endTag(name);
        lineDepth = depth;
        state = State::WholeLine;
    }

    void characters(std::string_view text) override
    {
        if (IsWhiteSpace(text))
            return;
        if (state == State::InStartTag) {
            line += "&gt;</SPAN>" + Escaped(Escaped(text));
            state = State::Text;
            return;
        }
        finishLine();
        line = Escaped(Escaped(text));
        lineDepth = depth;
        state = State::WholeLine;
    }

    void cdata(std::string_view text) override { characters(text); }

    void comment(std::string_view text) override
    {
        finishLine();
        const std::string whole = std::string("<!--").append(text).append("-->");
        for (const std::string_view part : Lines(whole)) {
            if (!IsWhiteSpace(part))
                wholeLine("c", Escaped(part));
        }
    }

    void processingInstruction(std::string_view target, std::string_view data) override
    {
        wholeLine("t", Escaped(std::string("<?").append(target).append(" ").append(data).append("?>")));
    }

private:
    enum class State
    {
        Nothing,
        InStartTag,
        Text,
        WholeLine
    };

    static std::string endTag(std::string_view name)
    {
        return std::string("<SPAN class=t>&lt;/").append(Escaped(name)).append("&gt;</SPAN>");
    }

    void wholeLine(std::string_view className, const std::string& text)
    {
        finishLine();
        line.append("<SPAN class=").append(className).append(">").append(text).append("</SPAN>");
        lineDepth = depth;
        finishLine();
    }

    void finishLine()
    {
        if (line.empty())
            return;
        if (state == State::InStartTag)
            line += "&gt;</SPAN>";
        page += "<DIV style=\"MARGIN-LEFT: " + std::to_string(lineDepth * Indent) + "px\">" + line
            + "</DIV>\r\n";
        line.clear();
        state = State::Nothing;
    }

    std::string page;
    std::string line;
    int lineDepth = 0;
    int depth = 0;
    State state = State::Nothing;
};

std::string PlainLines(std::string_view text)
{
    std::string page;
    for (const std::string_view line : Lines(text))
        page.append("<DIV>").append(Escaped(line)).append("</DIV>\r\n");
    return page;
}

} // namespace

std::string SchemaPage(std::string_view bytes)
{
    XmlDocument document;
    Painter painter;
    const bool wellFormed = document.loadXML(bytes, XmlEncoding::byDeclaration(), &painter);
    std::string page(Head);
    page += wellFormed ? painter.takeLines() : PlainLines(bytes);
    page += Tail;
    return page;
}

} // namespace vmk
