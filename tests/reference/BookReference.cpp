#include "BookReference.h"

#include <iconv.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <map>
#include <memory>
#include <regex>

namespace vmk::reference {

namespace {

constexpr std::string_view CrLf = "\r\n";
constexpr std::string_view LeftMark = "\xe2\x80\xb9";
constexpr std::string_view RightMark = "\xe2\x80\xba";
constexpr std::string_view Name = "Vellumark";
constexpr std::string_view AuthorStub = "<author><first-name></first-name><last-name></last-name></author>";
constexpr std::string_view DateStub = "<date></date><id></id><version>1.0</version>";

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string Lower(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return Lower(c); });
    return lower;
}

size_t FindIgnoringCase(const std::string& text, std::string_view sought, size_t from = 0)
{
    return Lower(text).find(Lower(sought), from);
}

std::string ReplaceFirst(std::string text, std::string_view sought, std::string_view replacement)
{
    if (const size_t at = text.find(sought); at != std::string::npos)
        text.replace(at, sought.size(), replacement);
    return text;
}

size_t Count(std::string_view text, std::string_view sought)
{
    size_t count = 0;
    for (size_t at = text.find(sought); at != std::string_view::npos;
         at = text.find(sought, at + sought.size()))
        ++count;
    return count;
}

// One byte of a code page in UTF-8; a byte without a character is the control of the same number.
std::string Utf8OfByte(char byte, int codePage)
{
    const std::string name = "WINDOWS-" + std::to_string(codePage);
    const iconv_t converter = iconv_open("UTF-8", name.c_str());
    char in = byte;
    char out[8];
    char* inAt = &in;
    char* outAt = out;
    size_t inLeft = 1;
    size_t outLeft = sizeof out;
    const bool known = iconv(converter, &inAt, &inLeft, &outAt, &outLeft) != static_cast<size_t>(-1);
    iconv_close(converter);
    if (known)
        return {out, sizeof out - outLeft};
    return {static_cast<char>(0xc2), byte};
}

std::string ToUtf8(const std::string& text, int codePage)
{
    if (codePage == 65001)
        return text;
    static std::map<int, std::vector<std::string>> tables;
    std::vector<std::string>& table = tables[codePage];
    for (int byte = static_cast<int>(table.size()); byte < 256; ++byte)
        table.push_back(Utf8OfByte(static_cast<char>(byte), codePage));
    std::string result;
    for (const char c : text)
        result += table[static_cast<unsigned char>(c)];
    return result;
}

// ------------------------------------------------------------------ the parser pass

struct Document
{
    std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context{xmlNewParserCtxt(),
                                                                         xmlFreeParserCtxt};
    std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> tree{nullptr, xmlFreeDoc};
    std::string source;

    Document(const std::string& text, int codePage)
        : source(ToUtf8(text, codePage))
    {
        tree.reset(xmlCtxtReadMemory(context.get(), source.data(), static_cast<int>(source.size()), nullptr,
                                     "UTF-8",
                                     XML_PARSE_HUGE | XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_NOERROR
                                         | XML_PARSE_NOWARNING | XML_PARSE_IGNORE_ENC));
    }
    [[nodiscard]] bool isGood() const
    {
        return tree && context->wellFormed != 0 && context->nsWellFormed != 0;
    }
};

bool IsWhite(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// Only tabs and line ends are layout.
bool HasBlank(std::string_view white)
{
    return white.find(' ') != std::string_view::npos;
}

std::string View(const xmlChar* text)
{
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text));
}

std::string WithCrLf(const std::string& text)
{
    return ReplaceAll(ReplaceAll(text, CrLf, "\n"), "\n", CrLf);
}

std::string EscapedText(std::string text, Form form)
{
    text = ReplaceAll(text, "&", "&amp;");
    text = ReplaceAll(text, "<", form == Form::Display ? LeftMark : "&lt;");
    text = ReplaceAll(text, ">", "&gt;");
    return WithCrLf(text);
}

// Comments and the like: nothing is escaped there, but a page writes each ampersand as a reference.
std::string Raw(const std::string& text, Form form)
{
    return WithCrLf(form == Form::Display ? ReplaceAll(text, "&", "&amp;") : text);
}

// White space that a parser would change becomes references; so do double quotes, and in a display all that
// would read as a reference there.
std::string QuotedValue(const std::string& value, Form form)
{
    const bool single = form == Form::Display && value.find('"') != std::string::npos
        && value.find('\'') == std::string::npos;
    static const std::regex looksLikeReference("^&(amp;)*(quot;|apos;|#[0-9]{1,9};|#x[0-9A-Fa-f]{1,7};)");
    const std::string escape = form == Form::Display ? "&amp;" : "&";
    std::string result;
    for (size_t i = 0; i < value.size(); ++i) {
        const char c = value[i];
        if (c == '&' && form == Form::Display && std::regex_search(value.substr(i, 60), looksLikeReference))
            result += "&amp;amp;";
        else if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += form == Form::Display ? LeftMark : std::string_view("&lt;");
        else if (c == '>')
            result += "&gt;";
        else if (c == '"' && !single)
            result += escape + "quot;";
        else if (c == ' ' && i > 0 && value[i - 1] == ' ')
            result += escape + "#32;";
        else if (c == '\t' || c == '\n' || c == '\r')
            result += escape + "#" + std::to_string(static_cast<int>(c)) + ";";
        else
            result += c;
    }
    const std::string quote = single ? "'" : "\"";
    return quote + result + quote;
}

class Writer
{
public:
    Writer(const std::vector<std::string>& tags, Form writtenForm)
        : inLineNames{"a", "strong", "emphasis", "style", "strikethrough", "sub", "sup"}
        , form(writtenForm)
    {
        for (const std::string& tag : tags) {
            std::string name = TrimBlanks(tag);
            for (const std::string_view piece : {"<", ">", "/"})
                name = ReplaceAll(name, piece, "");
            inLineNames.push_back(name);
        }
    }

    std::string document(const xmlDoc* tree, const std::string& source) const
    {
        std::string text;
        if (source.find("<?xml ") == 0 || source.find("\xef\xbb\xbf<?xml ") == 0)
            text += "<?xml version=\"1.0\"?>";
        for (const xmlNode* node = tree->children; node != nullptr; node = node->next) {
            if (!text.empty())
                text += CrLf;
            text += node->type == XML_DTD_NODE ? docType(source) : one(node, 0, false);
        }
        return text;
    }

private:
    struct Child
    {
        const xmlNode* node = nullptr;
        std::string white; // a text of white space alone, when there is no node
    };

    std::vector<std::string> inLineNames;
    Form form;

    std::string docType(const std::string& source) const
    {
        const size_t start = source.find("<!DOCTYPE");
        size_t end = start;
        char quote = 0;
        bool inSubset = false;
        for (; end < source.size(); ++end) {
            const char c = source[end];
            if (quote != 0)
                quote = c == quote ? '\0' : quote;
            else if (c == '"' || c == '\'')
                quote = c;
            else if (c == '[' || c == ']')
                inSubset = c == '[';
            else if (c == '>' && !inSubset)
                break;
        }
        return Raw(ReplaceAll(ReplaceAll(source.substr(start, end + 1 - start), CrLf, "\n"), "\r", "\n"),
                   form);
    }

    static std::string nameOf(const xmlNode* node)
    {
        const bool prefixed = node->ns != nullptr && node->ns->prefix != nullptr;
        return (prefixed ? View(node->ns->prefix) + ":" : "") + View(node->name);
    }

    bool isInLine(const xmlNode* node) const
    {
        return node != nullptr && node->type == XML_ELEMENT_NODE
            && std::find(inLineNames.begin(), inLineNames.end(), nameOf(node)) != inLineNames.end();
    }

    static std::vector<Child> childrenOf(const xmlNode* element)
    {
        std::vector<Child> children;
        for (const xmlNode* node = element->children; node != nullptr; node = node->next) {
            if (node->type == XML_TEXT_NODE && IsWhite(View(node->content)))
                children.push_back({nullptr, View(node->content)});
            else
                children.push_back({node, {}});
        }
        return children;
    }

    bool isMixed(const xmlNode* element, const std::vector<Child>& children) const
    {
        for (size_t i = 0; i < children.size(); ++i) {
            const Child& child = children[i];
            if (child.node != nullptr) {
                if (child.node->type == XML_TEXT_NODE || child.node->type == XML_CDATA_SECTION_NODE)
                    return true;
                continue;
            }
            const bool betweenInLine = i > 0 && i + 1 < children.size() && isInLine(children[i - 1].node)
                && isInLine(children[i + 1].node);
            if (HasBlank(child.white) && (isInLine(element) || betweenInLine))
                return true;
        }
        return false;
    }

    std::string startTag(const xmlNode* element) const
    {
        std::string tag = std::string("<") + nameOf(element);
        for (const xmlNs* ns = element->nsDef; ns != nullptr; ns = ns->next)
            tag += (ns->prefix != nullptr ? " xmlns:" + View(ns->prefix) : std::string(" xmlns")) + "="
                + QuotedValue(View(ns->href), form);
        for (const xmlAttr* attribute = element->properties; attribute != nullptr;
             attribute = attribute->next) {
            xmlChar* value = xmlNodeListGetString(element->doc, attribute->children, 1);
            const bool prefixed = attribute->ns != nullptr && attribute->ns->prefix != nullptr;
            tag += " " + (prefixed ? View(attribute->ns->prefix) + ":" : "") + View(attribute->name) + "="
                + QuotedValue(View(value), form);
            xmlFree(value);
        }
        return tag;
    }

    std::string element(const xmlNode* node, int depth, bool insideMixed) const
    {
        const std::vector<Child> children = childrenOf(node);
        const bool holdsText = isMixed(node, children);
        const bool mixed = insideMixed || holdsText;
        if (children.size() == 1 && children.front().node == nullptr && !holdsText)
            return startTag(node) + "/>";
        std::string content;
        bool laidOut = false;
        for (const Child& child : children) {
            if (mixed) {
                content += child.node != nullptr ? one(child.node, depth + 1, true)
                                                 : ReplaceAll(ReplaceAll(child.white, "\r", ""), "\n", "");
            } else if (child.node != nullptr) {
                content += std::string(CrLf) + std::string(static_cast<size_t>(depth) + 1, '\t')
                    + one(child.node, depth + 1, false);
                laidOut = true;
            }
        }
        if (laidOut)
            content += std::string(CrLf) + std::string(static_cast<size_t>(depth), '\t');
        return startTag(node) + (content.empty() ? "/>" : ">" + content + "</" + nameOf(node) + ">");
    }

    std::string one(const xmlNode* node, int depth, bool insideMixed) const
    {
        switch (node->type) {
        case XML_ELEMENT_NODE:
            return element(node, depth, insideMixed);
        case XML_CDATA_SECTION_NODE:
            return "<![CDATA[" + Raw(View(node->content), form) + "]]>";
        case XML_COMMENT_NODE:
            return "<!--" + Raw(View(node->content), form) + "-->";
        case XML_PI_NODE:
            return "<?" + View(node->name)
                + (node->content != nullptr ? " " + Raw(View(node->content), form) : "") + "?>";
        default:
            return EscapedText(View(node->content), form);
        }
    }
};

// ------------------------------------------------------------------ pieces of the page

std::string HeadBlock(const DisplayValues& v)
{
    const std::string end(CrLf);
    const auto span = [&end](std::string_view selector, const std::string& name, const std::string& size,
                             const std::string& weight, const std::string& align, const std::string& color) {
        return std::string(selector) + end + "\t{font-family:" + name + ";" + end + "\tfont-size:" + size
            + ";" + end + "\tfont-weight:" + weight + ";" + end + "\ttext-align:" + align + ";" + end
            + "\tcolor:" + color + ";" + end + "\tpage-break-after:avoid;}" + end;
    };
    const auto font = [&end](std::string_view selector, const std::string& color, const std::string& middle) {
        return std::string(selector) + end + "\t{color:" + color + ";" + end + middle
            + "\tpage-break-after:avoid;}" + end;
    };
    const std::string middle = "\tfont-weight:" + v.tagFontWeight + ";" + end + "\ttext-align:left;" + end;
    return "<HEAD>" + end + "<STYLE>" + end
        + span("span.b", v.fontName, v.fontSize, v.fontWeight, v.textAlign, v.foreColor)
        + span("span.t", v.fontName, v.fontSize, v.tagFontWeight, "left", v.tagColor)
        + font("font.n", v.attrNameColor, "") + font("font.v", v.attrValColor, "")
        + span("span.c", v.fontName, v.fontSize, "bold", "left", "red")
        + span("span.et", v.fontName, v.fontSize, v.tagFontWeight, "left", v.tagColor)
        + font("font.en", v.attrNameColor, middle) + font("font.ev", v.attrValColor, middle) + "</STYLE>"
        + end + "</HEAD>";
}

std::string ShiftNodes(std::string text, size_t levels, int nodeShift)
{
    for (size_t depth = levels; depth > 0; --depth) {
        const std::string margin = std::to_string(static_cast<long long>(depth) * nodeShift);
        text = ReplaceAll(text, std::string(CrLf) + std::string(depth, '\t'),
                          "</DIV>\r<DIV style=\"MARGIN-LEFT: " + margin + "px\">");
    }
    return text;
}

std::string TreeBranch(std::string text, const PageRequest& request)
{
    text = PrepareTreeLines(text, "\r", request.inLineTags);
    // A reference to a character of the code page becomes its byte, and then its character in UTF-8; any
    // other stays a reference until the text can contain its character. Both end as the character.
    text = ParserPass(text, request.codePage, request.inLineTags, Form::Display);
    size_t levels = 0;
    for (std::string tabs = "\t"; text.find(tabs) != std::string::npos; tabs += '\t')
        ++levels;
    text = ReplaceWholeTags(text, "<?xml version", request.xmlDeclaration, true);
    text = ReplaceUpToAngle(text, "<!--", "\x03", "!--", "\x04", false);
    text = ReplaceAll(text, "<", "&lt;");
    text = ReplaceAll(text, ">", "&gt;");
    return ShiftNodes(text, levels, request.values.nodeShift);
}

std::string PlainBranch(std::string text, const PageRequest& request)
{
    if (request.codePage != 65001) {
        text = ReplaceAll(ReplaceAll(text, LeftMark, "&lt;"), RightMark, "&gt;");
        text = ToUtf8(text, request.codePage);
        text = ReplaceAll(ReplaceAll(text, "&lt;", LeftMark), "&gt;", RightMark);
    }
    text = ReplaceAll(text, "\t", "");
    text = PrepareTreeLines(text, "\r", request.inLineTags);
    text = request.ampersands(text);
    text = ReplaceUpToAngle(text, "<!--", "\r\x03", "!--", "\x04\r", false);
    text = ReplaceAll(text, "<", "&lt;");
    text = ReplaceAll(text, ">", "&gt;");
    return ReplaceAll(text, "\r", "</DIV>\r<DIV>");
}

// Removes the text before the declaration. A declaration after another tag does not count; otherwise a
// comment that contains one would remove the book.
std::string FromDeclarationOn(const std::string& text)
{
    const size_t at = text.find("<?xml version");
    return at != std::string::npos && text.find('<') == at ? text.substr(at) : text;
}

} // namespace

std::string ReplaceAll(std::string text, std::string_view sought, std::string_view replacement)
{
    if (sought.empty())
        return text;
    std::string result;
    size_t from = 0;
    for (size_t at = text.find(sought); at != std::string::npos; at = text.find(sought, from)) {
        result.append(text, from, at - from);
        result += replacement;
        from = at + sought.size();
    }
    return result.append(text, from);
}

std::string CollapseRepeats(std::string text, std::string_view unit)
{
    const std::string twice = std::string(unit) + std::string(unit);
    for (size_t length = std::string::npos; length != text.size();) {
        length = text.size();
        text = ReplaceAll(text, twice, unit);
    }
    return text;
}

std::string TrimBlanks(std::string_view text)
{
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') + 1 - first));
}

std::string ReplaceUpToAngle(const std::string& text, std::string_view start, std::string_view before,
                             std::string_view kept, std::string_view after, bool ignoreCase)
{
    const std::string searched = ignoreCase ? Lower(text) : text;
    std::string result;
    size_t from = 0;
    for (size_t at = searched.find(start); at != std::string::npos; at = searched.find(start, from)) {
        const size_t end = text.find('>', at + start.size());
        if (end == std::string::npos)
            break;
        result.append(text, from, at - from);
        result += before;
        result += kept;
        result.append(text, at + start.size(), end - at - start.size());
        result += after;
        from = end + 1;
    }
    return result.append(text, from);
}

std::string ReplaceWholeTags(const std::string& text, std::string_view start, std::string_view replacement,
                             bool ignoreCase)
{
    const std::string searched = ignoreCase ? Lower(text) : text;
    std::string result;
    size_t from = 0;
    for (size_t at = searched.find(start); at != std::string::npos; at = searched.find(start, from)) {
        const size_t end = text.find('>', at + start.size());
        if (end == std::string::npos)
            break;
        result.append(text, from, at - from);
        result += replacement;
        from = end + 1;
    }
    return result.append(text, from);
}

std::string PrepareTreeLines(std::string text, std::string_view lineEnd,
                             const std::vector<std::string>& inLineTags)
{
    const std::string end(lineEnd);
    text = ReplaceAll(text, "\r", "");
    text = ReplaceAll(text, "\n", "");
    text = CollapseRepeats(text, " ");
    text = ReplaceUpToAngle(text, "</", "", "</", ">" + end, false);
    text = ReplaceAll(text, "/>", "/>" + end);
    text = ReplaceAll(text, "><", ">" + end + "<");
    text = ReplaceAll(text, "> <", ">" + end + " <");
    for (const std::string& entry : inLineTags) {
        const std::string tag = TrimBlanks(entry);
        text = ReplaceAll(text, tag + end, tag);
        text = ReplaceAll(text, end + tag, tag);
    }
    for (const std::string tag : {"<first-name>", "<middle-name>", "<last-name>", "<date>", "<id>", "<lang>",
                                  "<version>", "<src-ocr>", "<src-url>"})
        text = ReplaceAll(text, tag + end, tag);
    text = CollapseRepeats(text, end);
    return TrimBlanks(text);
}

std::string PaintAttributes(std::string text)
{
    const auto paintName = [&text](const std::string& name, std::string_view startTag) {
        text = ReplaceAll(text, name + "\"", std::string(startTag) + name + "</FONT>\"");
    };
    for (const std::string name : {" id=", " href=", ":href=", " type=", " version=", " encoding=", " match=",
                                   " value=", " name=", " number="})
        paintName(name, "<FONT  class=n>");

    constexpr std::string_view Before = "</FONT>\"";
    std::string result;
    size_t from = 0;
    for (size_t at = text.find(Before); at != std::string::npos; at = text.find(Before, from)) {
        const size_t close = text.find('"', at + Before.size());
        if (close == std::string::npos)
            break;
        result.append(text, from, at - from);
        result += "</FONT><FONT class=v>\"";
        result.append(text, at + Before.size(), close + 1 - at - Before.size());
        result += "</FONT>";
        from = close + 1;
    }
    text = result.append(text, from);

    paintName(" xmlns=", "<FONT class=n>");
    paintName(" xmlns:l=", "<FONT class=n>");
    return text;
}

std::string ParserPass(const std::string& text, int codePage, const std::vector<std::string>& inLineTags,
                       Form form)
{
    const Document document(text, codePage);
    return document.isGood() ? Writer(inLineTags, form).document(document.tree.get(), document.source)
                             : std::string();
}

bool HasParseError(const std::string& text, int codePage)
{
    return !Document(text, codePage).isGood();
}

std::string Page(std::string text, const PageRequest& request)
{
    const DisplayValues& values = request.values;
    text = request.wellFormed ? TreeBranch(text, request) : PlainBranch(text, request);

    std::string head;
    if (values.tagHighlighting) {
        head = HeadBlock(values);
        text = ReplaceAll(text, "&lt;", "<SPAN class=t>&lt;");
        text = ReplaceAll(text, "&gt;", "&gt;</SPAN>");
        text = PaintAttributes(text);
    } else if (values.tagFontWeight == "bold" && values.fontWeight != "bold") {
        text = ReplaceAll(text, "&lt;", "<B>&lt;");
        text = ReplaceAll(text, "&gt;", "&gt;</B>");
    }
    text = ReplaceAll(text, "\x03", "<SPAN class=c>&lt;");
    text = ReplaceAll(text, "\x04", "&gt;</SPAN>");
    text = ReplaceAll(text, CrLf, "</DIV>\r<DIV>");
    text = "<DIV>" + text + "</DIV>";
    text = ReplaceAll(text, "<DIV></DIV>\r", "");
    text = ReplaceFirst(text, "<DIV>", "<DIV id=FirstDiv>");
    text = ReplaceAll(text, "<DIV></DIV>", "");
    text = ReplaceAll(text, "<DIV> </DIV>", "");
    if (values.showNbsp)
        text = ReplaceAll(text, "\xc2\xa0", "\x7f");
    text = CollapseRepeats(text, " ");

    return "<HTML><meta content=\"text/html; charset=utf-8\" http-equiv=\"Content-Type\">" + head
        + "<BODY STYLE=\"font-family:" + values.fontName + "; font-size:" + values.fontSize + "; font-weight:"
        + values.fontWeight + "; text-align:" + values.textAlign + "; margin-top:2px; margin-left:"
        + values.leftMargin + "; margin-right:" + values.rightMargin + "\" text=\"" + values.foreColor
        + "\" bgColor=\"" + values.backColor + "\">" + std::string(CrLf) + text + "</BODY></HTML>";
}

std::string ExtractText(std::string page)
{
    if (const size_t at = FindIgnoringCase(page, "</HEAD>"); at != std::string::npos)
        page.erase(0, at + 7);
    page = ReplaceAll(page, " \r\n", " ");
    page = ReplaceAll(page, "&nbsp;", " ");
    page = ReplaceAll(page, "\x7f", "\xc2\xa0");
    page = ReplaceWholeTags(page, "<", "", false);
    page = ReplaceAll(page, "&lt;", "<");
    page = ReplaceAll(page, "&gt;", ">");
    return FromDeclarationOn(page);
}

std::string SaveText(std::string page, const SaveRequest& request, bool& treeSkipped)
{
    treeSkipped = false;
    if (const size_t at = FindIgnoringCase(page, "</HEAD>"); at != std::string::npos)
        page.erase(0, at + 7);
    page = ReplaceAll(page, " \r\n", " ");
    page = ReplaceAll(page, "&nbsp;", " ");
    page = ReplaceAll(page, "\x7f", "\xc2\xa0");
    page = ReplaceWholeTags(page, "<", "", false);
    page = ReplaceAll(page, "&lt;", "<");
    page = ReplaceAll(page, "&gt;", ">");
    page = ReplaceAll(page, LeftMark, "&lt;");
    page = ReplaceAll(page, RightMark, "&gt;");

    constexpr std::string_view Start = "<?xml version";
    page = FromDeclarationOn(page);
    if (page.find(Start) != 0) {
        page = request.declaration + page;
    } else if (const size_t next = page.find('<', Start.size()); next != std::string::npos) {
        page = request.declaration + page.substr(next);
    }

    if (request.style == "compact") {
        page = ReplaceAll(page, CrLf, " ");
        page = CollapseRepeats(page, " ");
        return TrimBlanks(page);
    }
    page = PrepareTreeLines(page, CrLf, request.inLineTags);
    if (request.style == "tags tree") {
        const std::string xml = ParserPass(page, 65001, request.inLineTags, Form::Xml);
        if (!xml.empty())
            return ReplaceWholeTags(xml, Start, request.declaration, true);
        treeSkipped = true;
    }
    page = CollapseRepeats(page, CrLf);
    return TrimBlanks(page);
}

std::string FinishFile(std::string text, const SaveRequest& request, bool treeSkipped)
{
    const std::string end(CrLf);
    const bool tree = request.style == "tags tree" && !treeSkipped;
    const std::string binaries = (tree ? std::string() : end) + request.binaryPart + end;
    if (!request.binaryPart.empty() && text.find("</FictionBook>") == std::string::npos)
        text += end + binaries; // no part of a damaged book is lost
    else if (!request.binaryPart.empty())
        text = ReplaceAll(text, "</FictionBook>", binaries + "</FictionBook>");
    text = ReplaceAll(text, " " + end, end);
    text = ReplaceAll(text, end + " ", end);
    text = ReplaceAll(text, request.nbsp + end, end);
    text = ReplaceAll(text, end + request.nbsp, end);
    text = CollapseRepeats(text, end);
    return CollapseRepeats(text, " ");
}

std::string UpdateDescription(std::string text, std::string_view nbsp)
{
    const std::string used = "<program-used>" + std::string(Name) + "</program-used>";
    const auto element = [&text](const std::string& name) {
        const std::string start = "<" + name + ">";
        const std::string end = "</" + name + ">";
        const size_t from = FindIgnoringCase(text, start);
        if (from == std::string::npos)
            return std::pair(from, std::string());
        for (size_t at = FindIgnoringCase(text, end, from); at != std::string::npos;
             at = FindIgnoringCase(text, end, at + end.size())) {
            const std::string found = text.substr(from, at + end.size() - from);
            if (Count(Lower(found), "<" + name) == Count(Lower(found), end))
                return std::pair(from, found);
        }
        return std::pair(from, std::string());
    };

    if (const auto [from, found] = element("program-used"); !found.empty()) {
        std::string plain = ReplaceWholeTags(found, "<", " ", false);
        plain = ReplaceAll(plain, "&nbsp;", " ");
        plain = ReplaceAll(plain, nbsp, " ");
        plain = TrimBlanks(CollapseRepeats(plain, " "));
        if (FindIgnoringCase(plain, Name) != std::string::npos)
            return text;
        plain = TrimBlanks(CollapseRepeats(plain + ", " + std::string(Name), ","));
        return ReplaceFirst(text, found, "<program-used>" + plain + "</program-used>");
    }
    if (const auto [from, found] = element("document-info"); !found.empty()) {
        constexpr std::string_view AuthorEnd = "</author>";
        if (const size_t author = text.find(AuthorEnd, from); author != std::string::npos)
            return text.insert(author + AuthorEnd.size(), used);
        return ReplaceFirst(text, "<document-info>", "<document-info>" + std::string(AuthorStub) + used);
    }
    const std::string info
        = "<document-info>" + std::string(AuthorStub) + used + std::string(DateStub) + "</document-info>";
    if (text.find("</title-info>") != std::string::npos)
        return ReplaceFirst(text, "</title-info>", "</title-info>" + info);
    return ReplaceFirst(text, "<description>",
                        "<description><title-info>" + std::string(AuthorStub) + "</title-info>" + info);
}

} // namespace vmk::reference
