#include "EditReference.h"

#include "BookReference.h"

#include <cmath>
#include <regex>
#include <vector>

namespace vmk::reference {

namespace {

constexpr auto IgnoringCase = std::regex::ECMAScript | std::regex::icase;

std::vector<std::string> LineTags(const std::string& html)
{
    static const std::regex pattern("<DIV[^>]*>", IgnoringCase);
    std::vector<std::string> tags;
    for (std::sregex_iterator at(html.begin(), html.end(), pattern), end; at != end; ++at)
        tags.push_back(at->str());
    return tags;
}

std::string ReplaceOnce(std::string text, const std::string& sought, const std::string& replacement)
{
    if (const size_t at = text.find(sought); at != std::string::npos)
        text.replace(at, sought.size(), replacement);
    return text;
}

std::string RemoveAll(const std::string& text, const std::string& pattern)
{
    return std::regex_replace(text, std::regex(pattern, IgnoringCase), "");
}

bool HasMargin(const std::string& text)
{
    return std::regex_search(text, std::regex("MARGIN-LEFT:", IgnoringCase));
}

// The trimmed text after "MARGIN-LEFT:" up to `px"`; empty if it is not a number.
std::string MarginText(const std::string& tag)
{
    std::smatch match;
    if (!std::regex_search(tag, match, std::regex("MARGIN-LEFT:([\\s\\S]*)", IgnoringCase)))
        return {};
    std::string number = match[1].str();
    const size_t end = number.find("px\"");
    if (end == std::string::npos)
        return {};
    number = number.substr(0, end);
    number.erase(0, number.find_first_not_of(' '));
    number.erase(number.find_last_not_of(' ') + 1);
    return std::regex_match(number, std::regex("[0-9]+(\\.[0-9]+)?")) ? number : std::string();
}

int Rounded(const std::string& number)
{
    return static_cast<int>(std::nearbyint(std::stod(number)));
}

std::string WithMargin(const std::string& tag, const std::string& number, int margin)
{
    return ReplaceOnce(tag, std::to_string(Rounded(number)) + "px", std::to_string(margin) + "px");
}

std::string MarginStyle(int margin)
{
    std::string style = " style=\"MARGIN-LEFT: ";
    return style.append(std::to_string(margin)).append("px\"");
}

void ReplaceTag(std::string& html, const std::string& tag, const std::string& newTag)
{
    html = ReplaceAll(html, tag,
                      ReplaceOnce(newTag, "<DIV",
                                  "\x01"
                                  "DIV"));
}

} // namespace

std::string ShiftRight(std::string html, int nodeShift)
{
    for (const std::string& tag : LineTags(html)) {
        if (!HasMargin(tag))
            ReplaceTag(html, tag, ReplaceOnce(tag, ">", MarginStyle(nodeShift) + ">"));
        else if (const std::string number = MarginText(tag); !number.empty())
            ReplaceTag(html, tag, WithMargin(tag, number, Rounded(number) + nodeShift));
    }
    return ReplaceAll(html, "\x01", "<");
}

std::optional<std::string> ShiftLeft(std::string html, int nodeShift, bool oneLine)
{
    if (!HasMargin(html))
        return std::nullopt;
    for (const std::string& tag : LineTags(html)) {
        const std::string number = MarginText(tag);
        if (!number.empty() && Rounded(number) >= nodeShift)
            ReplaceTag(html, tag, WithMargin(tag, number, Rounded(number) - nodeShift));
        else if (oneLine)
            return std::nullopt;
    }
    return ReplaceAll(html, "\x01", "<");
}

std::string StripPainting(std::string html)
{
    html = RemoveAll(html, "<FONT[^>]*>");
    html = ReplaceAll(html, "</FONT>", "");
    html = RemoveAll(html, "<SPAN[^>]*>");
    html = ReplaceAll(html, "</SPAN>", "");
    html = ReplaceAll(html, "<B>", "");
    return ReplaceAll(html, "</B>", "");
}

/// True if no bracket closes the last comment of a text.
static bool IsOpen(const std::string& text)
{
    const std::size_t comment = text.rfind('\x03');
    return comment != std::string::npos && text.find("&gt;", comment) == std::string::npos
        && text.find('\x04', comment) == std::string::npos;
}

/// Paints text between real tags.
/// @param open whether a comment is open before the text; set to whether one is open after it.
static std::string PaintText(std::string text, const PaintRequest& request, bool& open)
{
    text = ReplaceAll(text, "&lt;!--", "\x03!--");
    // An open comment is temporarily inserted before the text.
    if (open)
        text.insert(0, 1, '\x03');
    for (std::size_t at = text.find("--&lt;"); at != std::string::npos; at = text.find("--&lt;", at + 1)) {
        if (IsOpen(text.substr(0, at + 2)))
            text.replace(at, 6, "--\x04");
    }
    const bool openAfter = IsOpen(text);
    if (open)
        text.erase(0, 1);
    open = openAfter;

    if (request.tagHighlighting) {
        text = ReplaceAll(text, "&lt;", "<SPAN class=t>&lt;");
        text = ReplaceAll(text, "&gt;", "&gt;</SPAN>");
        text = PaintAttributes(text);
    } else if (request.tagFontWeight == "bold" && request.displayFontWeight != "bold") {
        text = ReplaceAll(text, "&lt;", "<B>&lt;");
        text = ReplaceAll(text, "&gt;", "&gt;</B>");
    }
    text = ReplaceAll(text, "\x03", "<SPAN class=c>&lt;");
    return ReplaceAll(text, "\x04", "&gt;</SPAN>");
}

std::string PaintLines(std::string html, const PaintRequest& request)
{
    // Blocks, and tags with quoted values, are not text: the text between them is painted separately.
    static const std::regex solid("</?DIV[^>]*>|<[^>]*[\"&][^>]*>");
    std::string painted;
    bool open = false;
    std::smatch match;
    while (std::regex_search(html, match, solid)) {
        painted += PaintText(match.prefix(), request, open) + match.str();
        html = match.suffix();
    }
    return painted + PaintText(html, request, open);
}

} // namespace vmk::reference
