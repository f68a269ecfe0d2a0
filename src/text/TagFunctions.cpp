#include "TagFunctions.h"

#include "CodePages.h"
#include "LineEnds.h"
#include "NonBreakingSpace.h"
#include "TextFunctions.h"

#include <optional>

namespace vmk {
namespace {

using std::string_view;
constexpr size_t NotFound = string_view::npos;

// ---------------------------------------------------------------- ExtractBetween

/// Counts start tags, with any attributes, up to a position that only increases.
class StartTagCounter
{
public:
    StartTagCounter(string_view wholeText, size_t from, string_view startTag, bool caseIgnored)
        : text(wholeText)
        , pattern(ReplaceAll(std::string(startTag), ">", ""))
        , ignoreCase(caseIgnored)
        , next(FindText(text, pattern, from, ignoreCase))
    {
    }

    size_t countUpTo(size_t end)
    {
        while (next != NotFound && next + pattern.size() <= end && !pattern.empty()) {
            ++count;
            next = FindText(text, pattern, next + pattern.size(), ignoreCase);
        }
        return count;
    }

private:
    string_view text;
    std::string pattern;
    bool ignoreCase;
    size_t next;
    size_t count = 0;
};

/// The position after the end tag that matches the start tag at `startPos`.
std::optional<size_t> FindElementEnd(string_view text, size_t startPos, string_view startTag,
                                     string_view endTag, const ExtractOptions& options)
{
    StartTagCounter startTags(text, startPos, startTag, options.ignoreCase);
    size_t endTags = 0;
    size_t from = startPos;
    for (;;) {
        const size_t found = FindText(text, endTag, from, options.ignoreCase);
        if (found == NotFound)
            return std::nullopt;
        from = found + endTag.size();
        ++endTags;
        if (!options.balance || endTag.empty() || startTags.countUpTo(from) == endTags)
            return from;
    }
}

std::string BlankTags(string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (;;) {
        const size_t open = text.find('<');
        const size_t close = open == NotFound ? NotFound : text.find('>', open);
        result += text.substr(0, close == NotFound ? NotFound : open);
        if (close == NotFound)
            return result;
        result += ' ';
        text.remove_prefix(close + 1);
    }
}

std::string MakePlain(string_view found, bool tidy)
{
    std::string plain = ReplaceAll(BlankTags(found), "&nbsp;", " ");
    // In UTF-8 the byte 160 is the last byte of many characters.
    plain = ReplaceAll(std::move(plain), IsValidUtf8(found) ? Utf8Nbsp : "\xa0", " ");
    if (!tidy)
        return plain;
    return CollapseRepeats(std::string(TrimBlanks(plain)), " ");
}

// ---------------------------------------------------------------- GetXmlAttribute

/// The part from `begin` to `end`, or nothing if there is no end.
string_view Between(string_view text, size_t begin, size_t end)
{
    return end == NotFound ? string_view() : text.substr(begin, end - begin);
}

/// The value as written in the text; `end` is the position after the name.
string_view RawValue(string_view text, size_t nameBegin, size_t end)
{
    const auto at = [text](size_t place) { return place < text.size() ? text[place] : '\0'; };
    if (at(end) == ':' && at(end + 1) == ' ') {
        // A style. The order of the marks decides, not their positions.
        for (const char mark : {';', '\'', '"', '>'}) {
            const size_t found = text.find(mark, end + 2);
            if (found != NotFound)
                return Between(text, end + 2, found);
        }
        return {};
    }
    if (at(end) == '=' && at(end + 1) == '"')
        return Between(text, end + 2, text.find('"', end + 2));
    if (at(end) == '=' && nameBegin > 0 && text[nameBegin - 1] == ' ') {
        const size_t blank = text.find(' ', end + 1);
        return Between(text, end + 1, blank == NotFound ? text.find('>', end + 1) : blank);
    }
    return {};
}

std::string PathOfFileUrl(std::string value)
{
    constexpr string_view FileUrl = "file:///";
    if (FindText(value, FileUrl, 0, true) == NotFound)
        return value;
    value = ReplaceAll(std::move(value), "%20", " ");
    value = ReplaceAll(std::move(value), FileUrl, "", true);
    return ReplaceAll(std::move(value), "/", "\\");
}

} // namespace

Extraction ExtractBetween(string_view text, string_view startTag, string_view endTag, size_t startPos,
                          ExtractOptions options)
{
    Extraction result;
    result.startPos = FindText(text, startTag, startPos, options.ignoreCase);
    if (result.startPos == NotFound)
        return result;
    const auto end = FindElementEnd(text, result.startPos, startTag, endTag, options);
    if (!end)
        return result;
    result.endPos = *end;
    result.found = text.substr(result.startPos, *end - result.startPos);
    if (options.makePlain)
        result.plain = MakePlain(result.found, options.tidy);
    return result;
}

std::string GetXmlAttribute(string_view tagText, string_view name, bool caseSensitive)
{
    std::string text = ReplaceAll(std::string(tagText), "%20", " ");
    text = CollapseRepeats(ReplaceAll(std::move(text), CrLf, " "), " ");
    const size_t place = FindText(text, name, 0, !caseSensitive);
    if (place == NotFound || name.empty())
        return {};

    std::string value(RawValue(text, place, place + name.size()));
    value = ReplaceAll(ReplaceAll(std::move(value), "\"", ""), "%", "");
    value = PathOfFileUrl(std::move(value));
    if (name.find("href") != NotFound)
        value.erase(0, value.rfind('#') + 1);
    const std::string smallName = LowerCase(std::string(name));
    if (smallName == "height" || smallName == "width")
        value = TrimBlanks(ReplaceAll(std::move(value), "px", "", true));
    return value;
}

QString GetXmlAttribute(QStringView tagText, QStringView name, bool caseSensitive)
{
    // Every relevant character is ASCII, so that the conversion to UTF-8 and back has no effect.
    return QString::fromStdString(
        GetXmlAttribute(EncodeText(tagText, CodePageUtf8), EncodeText(name, CodePageUtf8), caseSensitive));
}

} // namespace vmk
