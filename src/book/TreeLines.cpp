#include "TreeLines.h"

#include "LargeBuffers.h"
#include "LineEnds.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// The in-line elements of the format.
constexpr std::array<std::string_view, 7> InLineElements
    = {"a", "strong", "emphasis", "style", "strikethrough", "sub", "sup"};

/// Start tags whose text remains on the same line.
constexpr std::array<std::string_view, 9> FieldTags
    = {"<first-name>", "<middle-name>", "<last-name>", "<date>",   "<id>",
       "<lang>",       "<version>",     "<src-ocr>",   "<src-url>"};

/// One tag: "<", no further angle bracket, no line end, ">".
bool IsPlainTag(std::string_view entry)
{
    return entry.size() >= 2 && entry.front() == '<' && entry.back() == '>'
        && entry.substr(1, entry.size() - 2).find_first_of("<>\r\n") == std::string_view::npos;
}

/// Removes all line ends, shortens runs of blanks to one, and removes the blanks at both ends.
void JoinLines(std::string& text)
{
    char* to = text.data();
    char before = ' '; // so that leading blanks are removed too
    for (const char c : text) {
        if (c == '\r' || c == '\n' || (c == ' ' && before == ' '))
            continue;
        *to++ = before = c;
    }
    if (to != text.data() && to[-1] == ' ')
        --to;
    text.resize(static_cast<size_t>(to - text.data()));
}

/// Breaks a joined text into lines. Every line end follows a ">", so that each position is decided
/// separately, from the tag before it and the tag after it.
class LineBreaker
{
public:
    LineBreaker(std::string_view joined, std::string_view lineEndText, const InLineTagSet& tags)
        : text(joined)
        , lineEnd(lineEndText)
        , inLineTags(tags)
    {
    }

    [[nodiscard]] std::string run();
    [[nodiscard]] bool breaksAfter(std::string_view piece, size_t next) const;

private:
    [[nodiscard]] std::string_view tagAt(size_t position) const;

    std::string_view text;
    std::string_view lineEnd;
    const InLineTagSet& inLineTags;
};

std::string LineBreaker::run()
{
    std::string result = StringWithRoom(text.size() + text.size() / 16);
    size_t from = 0;
    for (size_t angle = text.find('>'); angle != std::string_view::npos; angle = text.find('>', from)) {
        const std::string_view piece = text.substr(from, angle + 1 - from);
        from = angle + 1;
        result += piece;
        if (breaksAfter(piece, from))
            result += lineEnd;
    }
    result.append(text, from);
    return result;
}

/// Whether a line ends after `piece`, which extends from the last ">" to this one; `next` is the position
/// after it.
bool LineBreaker::breaksAfter(std::string_view piece, size_t next) const
{
    bool endTag = false;
    size_t tagStart = std::string_view::npos;
    for (size_t at = piece.find('<'); at != std::string_view::npos; at = piece.find('<', at + 1)) {
        endTag = endTag || piece[at + 1] == '/';
        tagStart = at;
    }

    // An end tag and an empty element's tag each add one line end; without either, a following tag adds one.
    int breaks = (endTag ? 1 : 0) + (piece.ends_with("/>") ? 1 : 0);
    const bool tagFollows = next < text.size() && text[next] == '<';
    if (breaks == 0)
        breaks = tagFollows || text.substr(next).starts_with(" <") ? 1 : 0;
    if (breaks == 0)
        return false;

    // Each in-line tag next to the position removes one, as often as it is listed.
    if (tagStart != std::string_view::npos) {
        const std::string_view tag = piece.substr(tagStart);
        breaks -= inLineTags.count(tag);
        breaks -= IsFieldTag(tag) ? 1 : 0;
    }
    if (breaks > 0 && tagFollows)
        breaks -= inLineTags.count(tagAt(next));
    return breaks > 0;
}

/// The text from `position`, the position of a "<", to the next ">".
std::string_view LineBreaker::tagAt(size_t position) const
{
    const size_t end = text.find('>', position);
    return end == std::string_view::npos ? std::string_view() : text.substr(position, end + 1 - position);
}

/// The same for a list with entries that are not tags: their effect on line ends can only be found by
/// executing the separate steps.
std::string BreakStepByStep(std::string text, std::string_view lineEnd, const InLineTagSet& inLineTags)
{
    const std::string end(lineEnd);
    text = RegExpReplace(text, "(</[^>]*>)", "$1" + end, true);
    text = ReplaceAll(std::move(text), "/>", "/>" + end);
    text = ReplaceAll(std::move(text), "><", ">" + end + "<");
    text = ReplaceAll(std::move(text), "> <", ">" + end + " <");
    for (const std::string& tag : inLineTags.entries()) {
        text = ReplaceAll(std::move(text), tag + end, tag);
        text = ReplaceAll(std::move(text), end + tag, tag);
    }
    for (const std::string_view tag : FieldTags)
        text = ReplaceAll(std::move(text), std::string(tag) + end, tag);
    return CollapseRepeats(std::move(text), end);
}

} // namespace

QStringList DefaultInLineTags()
{
    QStringList tags;
    for (const QLatin1StringView start : {"</"_L1, "<"_L1})
        for (const std::string_view name : InLineElements)
            tags.append(start + QLatin1StringView(name.data(), qsizetype(name.size())) + u'>');
    return tags;
}

InLineTagSet::InLineTagSet(const QStringList& entries)
{
    for (const QString& entry : entries) {
        const std::string text = entry.toStdString();
        texts.emplace_back(TrimBlanks(text));
        emptyEntry = emptyEntry || texts.back().empty();
        plain = plain && IsPlainTag(texts.back());
    }
}

std::vector<std::string> InLineTagSet::elementNames() const
{
    std::vector<std::string> names(InLineElements.begin(), InLineElements.end());
    for (std::string name : texts) {
        std::erase_if(name, [](char c) { return c == '<' || c == '>' || c == '/'; });
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(std::move(name));
    }
    return names;
}

int InLineTagSet::count(std::string_view tag) const
{
    return static_cast<int>(std::count(texts.begin(), texts.end(), tag));
}

std::string TreeLines(std::string text, std::string_view lineEnd, const InLineTagSet& inLineTags)
{
    JoinLines(text);
    // An empty entry removes every inserted line end, which is intended.
    if (inLineTags.hasEmptyEntry())
        return text;
    if (!inLineTags.isPlain())
        return BreakStepByStep(std::move(text), lineEnd, inLineTags);
    return LineBreaker(text, lineEnd, inLineTags).run();
}

bool IsFieldTag(std::string_view tag)
{
    return std::find(FieldTags.begin(), FieldTags.end(), tag) != FieldTags.end();
}

bool LineEndsAfter(std::string_view joined, size_t from, size_t next, const InLineTagSet& inLineTags)
{
    return LineBreaker(joined, {}, inLineTags).breaksAfter(joined.substr(from, next - from), next);
}

bool LinesAreBetweenTags(std::string_view text)
{
    constexpr std::string_view White = " \t\r\n";
    if (!text.starts_with('<') && !text.starts_with("\xef\xbb\xbf<"))
        return false;
    for (const char lineEnd : {'\n', '\r'})
        for (size_t at = text.find(lineEnd); at != std::string_view::npos; at = text.find(lineEnd, at)) {
            const size_t before = text.find_last_not_of(White, at);
            const size_t after = text.find_first_not_of(White, at);
            if (text[before] != '>' || (after != std::string_view::npos && text[after] != '<'))
                return false;
            at = std::min(after, text.size());
        }
    return true;
}

void PrepareTreeLines(std::string& text)
{
    text = TreeLines(std::move(text), "\r", InLineTagSet(InLineTags));
}

void PrepareTreeLinesCrLf(std::string& text)
{
    text = TreeLines(std::move(text), CrLf, InLineTagSet(InLineTags));
}

} // namespace vmk
