#include "KeptLines.h"

#include "LargeBuffers.h"
#include "MarkupScanner.h"
#include "TextFunctions.h"

#include <algorithm>
#include <array>
#include <unordered_set>

namespace vmk {

namespace {

using Kind = MarkupToken::Kind;

/// Elements that contain text, except for the in-line ones.
constexpr std::array<std::string_view, 8> ParagraphElements
    = {"p", "v", "subtitle", "th", "td", "text-author", "code", "image"};

constexpr bool IsLineEnd(char c)
{
    return c == '\r' || c == '\n';
}

constexpr bool IsWhite(char c)
{
    return c == ' ' || c == '\t' || IsLineEnd(c);
}

/// Appends a character; a run of blanks becomes one.
void Put(char c, std::string& joined)
{
    if (c != ' ' || (!joined.empty() && joined.back() != ' '))
        joined += c;
}

bool EndsWhite(std::string_view joined)
{
    return joined.empty() || joined.back() == ' ' || joined.back() == '\t';
}

/// Joins the lines of a text and records where it may be broken again.
class LineJoiner
{
public:
    LineJoiner(std::string_view source, const InLineTagSet& inLineTags, LineLosses& counts)
        : text(source)
        , losses(counts)
    {
        for (std::string& name : TextElementNames(inLineTags))
            textNames.insert(std::move(name));
        for (std::string& name : inLineTags.elementNames())
            inLineNames.insert(std::move(name));
        inLineNames.insert({"code", "image"});
    }

    void run();

    std::string joined;
    /// Positions in `joined` where a line may end, in order.
    std::vector<size_t> gaps;
    /// Positions in `joined` where a blank is needed, in order.
    std::vector<size_t> blanks;

private:
    struct Element
    {
        std::string_view name;
        size_t firstGap = 0;
        size_t firstBlank = 0; // of `lateBlanks`
        bool holdsText = false; // by its name
        bool hasText = false;
        bool hasContent = false;
        bool filledChild = false;
        bool afterElement = false; // an element is directly before the position
        bool touching = false; // two elements have no text between them
    };

    void take(const MarkupToken& token, const MarkupToken* before, const MarkupToken* after);
    void takeText(const MarkupToken& token, const MarkupToken* before, const MarkupToken* after);
    void takeWhite(const MarkupToken& token, const MarkupToken* before, const MarkupToken* after);
    void takeTag(std::string_view tag);
    void put(char c) { Put(c, joined); }
    void putBlank();
    void endMarkup(const MarkupToken& token, const MarkupToken* after);
    void openElement(const MarkupToken& token);
    void closeElement(std::string_view name);
    void settle(const Element& element);
    [[nodiscard]] bool isInLine(const MarkupToken& token) const;
    [[nodiscard]] bool partsAfter(const MarkupToken* before) const;
    [[nodiscard]] bool partsBefore(const MarkupToken* after) const;
    [[nodiscard]] bool endsWhite() const { return EndsWhite(joined); }

    std::string_view text;
    LineLosses& losses;
    std::unordered_set<std::string> textNames;
    std::unordered_set<std::string> inLineNames;
    std::vector<Element> open;
    std::vector<size_t> lateBlanks; // line ends between elements, which count if the element contains text
};

bool IsBlankText(const MarkupToken& token)
{
    return token.kind == Kind::Text && std::all_of(token.text.begin(), token.text.end(), IsWhite);
}

void LineJoiner::run()
{
    joined = StringWithRoom(text.size() + text.size() / 64 + 16);
    MarkupScanner scanner(text);
    std::array<MarkupToken, 3> window;
    bool hasBefore = false;
    bool more = scanner.next(window[1]);
    while (more) {
        const bool hasAfter = scanner.next(window[2]);
        take(window[1], hasBefore ? window.data() : nullptr, hasAfter ? &window[2] : nullptr);
        window[0] = window[1];
        window[1] = window[2];
        hasBefore = true;
        more = hasAfter;
    }
    if (joined.ends_with(' '))
        joined.pop_back();
    std::sort(blanks.begin(), blanks.end());
}

void LineJoiner::take(const MarkupToken& token, const MarkupToken* before, const MarkupToken* after)
{
    if (IsBlankText(token))
        return takeWhite(token, before, after);
    if (token.kind == Kind::Text)
        return takeText(token, before, after);
    if (token.kind == Kind::EndTag)
        closeElement(token.name());
    else if (!open.empty()) {
        Element& parent = open.back();
        parent.hasContent = true;
        const bool element = token.isTag();
        parent.touching = parent.touching || (element && parent.afterElement);
        parent.afterElement = element;
        parent.hasText = parent.hasText || token.kind == Kind::CData;
    }
    if (token.isTag())
        takeTag(token.text);
    else
        losses.joinedWords += AppendJoinedMarkup(token.text, joined);
    if (token.kind == Kind::StartTag)
        openElement(token);
    endMarkup(token, after);
}

/// Inserts a blank for line ends that separate two words.
void LineJoiner::putBlank()
{
    put(' ');
    ++losses.joinedWords;
}

bool LineJoiner::isInLine(const MarkupToken& token) const
{
    return token.kind == Kind::CData || (token.isTag() && inLineNames.contains(std::string(token.name())));
}

/// Whether a line end between this mark-up and text after it separates words.
bool LineJoiner::partsAfter(const MarkupToken* before) const
{
    if (before == nullptr || open.empty() || before->kind == Kind::DocType)
        return false;
    return before->kind != Kind::StartTag || isInLine(*before);
}

/// Whether a line end between text and this mark-up after it separates words.
bool LineJoiner::partsBefore(const MarkupToken* after) const
{
    if (after == nullptr || open.empty())
        return false;
    return after->kind != Kind::EndTag || isInLine(*after);
}

void LineJoiner::takeText(const MarkupToken& token, const MarkupToken* before, const MarkupToken* after)
{
    if (!open.empty()) {
        open.back().hasText = open.back().hasContent = true;
        open.back().afterElement = false;
    }
    losses.joinedWords += AppendJoinedText(token.text, {partsAfter(before), partsBefore(after)}, joined);
}

/// Handles white space between two pieces of mark-up.
void LineJoiner::takeWhite(const MarkupToken& token, const MarkupToken* before, const MarkupToken* after)
{
    if (!open.empty())
        open.back().afterElement = false;
    bool lineEnded = false;
    bool spaced = endsWhite();
    for (const char c : token.text) {
        lineEnded = lineEnded || IsLineEnd(c);
        if (IsLineEnd(c))
            continue;
        put(c);
        spaced = true;
    }
    if (!lineEnded || spaced || before == nullptr || after == nullptr || open.empty())
        return;
    const bool empties = before->kind == Kind::StartTag && after->kind == Kind::EndTag;
    const bool edge = (before->kind == Kind::StartTag && !isInLine(*before))
        || (after->kind == Kind::EndTag && !isInLine(*after));
    if (empties || edge)
        return;
    if (open.back().hasText || (isInLine(*before) && isInLine(*after)))
        putBlank();
    else
        lateBlanks.push_back(joined.size());
}

void LineJoiner::takeTag(std::string_view tag)
{
    constexpr std::string_view NoWord = " \t</=>";
    char quote = 0;
    char solid = 0; // the last character that is not white
    bool lineEnded = false;
    for (size_t i = 0; i < tag.size(); ++i) {
        const char c = tag[i];
        if (IsLineEnd(c)) {
            if (quote == 0) {
                lineEnded = true;
                continue;
            }
            // In a value each line end becomes a blank, as in a parser.
            if (c == '\r' && i + 1 < tag.size() && tag[i + 1] == '\n')
                ++i;
            ++losses.joinedWords;
        }
        if (quote != 0 && (c == ' ' || IsLineEnd(c)) && joined.back() == ' ') {
            joined += "&#32;";
            ++losses.valueBlanks;
            continue;
        }
        if (lineEnded && NoWord.find(c) == std::string_view::npos
            && NoWord.find(joined.back()) == std::string_view::npos) {
            put(' ');
            ++losses.mergedAttributes;
        }
        lineEnded = false;
        if (quote != 0 && IsLineEnd(c))
            joined += ' ';
        else
            put(c);
        if (quote == 0 && (c == '"' || c == '\'') && solid == '=')
            quote = c;
        else if (c == quote)
            quote = 0;
        solid = IsWhite(c) ? solid : c;
    }
}

/// Records a gap after mark-up that no text follows.
void LineJoiner::endMarkup(const MarkupToken& token, const MarkupToken* after)
{
    if (token.kind == Kind::CData || (after != nullptr && after->kind == Kind::CData))
        return;
    if (after == nullptr || after->kind != Kind::Text || IsBlankText(*after))
        gaps.push_back(joined.size());
}

void LineJoiner::openElement(const MarkupToken& token)
{
    Element element;
    element.name = token.name();
    element.firstGap = gaps.size();
    element.firstBlank = lateBlanks.size();
    element.holdsText = textNames.contains(std::string(element.name));
    open.push_back(element);
}

void LineJoiner::closeElement(std::string_view name)
{
    // An end tag without its start tag closes nothing.
    constexpr size_t Deepest = 64;
    size_t depth = open.size();
    const size_t limit = depth > Deepest ? depth - Deepest : 0;
    while (depth > limit && open[depth - 1].name != name)
        --depth;
    if (depth == limit)
        return;
    if (depth == open.size())
        settle(open.back());
    const bool filled = open[depth - 1].hasContent;
    open.resize(depth - 1);
    if (!open.empty()) {
        open.back().afterElement = true;
        open.back().filledChild = open.back().filledChild || filled;
    }
}

/// Decides on the gaps of a complete element.
void LineJoiner::settle(const Element& element)
{
    const bool mixed = element.hasText || (element.holdsText && element.touching && element.filledChild);
    if (mixed) {
        gaps.resize(element.firstGap);
        blanks.insert(blanks.end(), lateBlanks.begin() + std::ptrdiff_t(element.firstBlank),
                      lateBlanks.end());
    }
    lateBlanks.resize(element.firstBlank);
}

/// Assembles the joined text, its blanks and its line ends.
class LineAssembler
{
public:
    LineAssembler(const LineJoiner& joiner, std::string_view lineEndText, LineLosses& counts)
        : lines(joiner)
        , text(joiner.joined)
        , lineEnd(lineEndText)
        , losses(counts)
        , result(StringWithRoom(text.size() + text.size() / 16 + joiner.blanks.size()))
    {
    }

    [[nodiscard]] std::string run(const InLineTagSet& inLineTags);

private:
    void copy(size_t end);

    const LineJoiner& lines;
    std::string_view text;
    std::string_view lineEnd;
    LineLosses& losses;
    std::string result;
    size_t copied = 0;
    size_t blank = 0; // the next of the blanks
};

void LineAssembler::copy(size_t end)
{
    for (; blank < lines.blanks.size() && lines.blanks[blank] <= end; ++blank) {
        result.append(text, copied, lines.blanks[blank] - copied);
        result += ' ';
        copied = lines.blanks[blank];
        ++losses.joinedWords;
    }
    result.append(text, copied, end - copied);
    copied = end;
}

std::string LineAssembler::run(const InLineTagSet& inLineTags)
{
    size_t gap = 0;
    size_t from = 0;
    for (size_t angle = inLineTags.hasEmptyEntry() ? std::string_view::npos : text.find('>');
         angle != std::string_view::npos; angle = text.find('>', from)) {
        const size_t next = angle + 1;
        const bool breaks = LineEndsAfter(text, from, next, inLineTags);
        from = next;
        if (!breaks)
            continue;
        while (gap < lines.gaps.size() && lines.gaps[gap] < next)
            ++gap;
        const bool allowed = gap < lines.gaps.size() && lines.gaps[gap] == next;
        copy(next);
        if (allowed)
            result += lineEnd;
        else
            ++losses.tornTexts;
    }
    copy(text.size());
    return std::move(result);
}

} // namespace

size_t AppendJoinedText(std::string_view text, TextSides sides, std::string& joined)
{
    size_t words = 0;
    bool lineEnded = false;
    bool first = true;
    for (const char c : text) {
        if (IsLineEnd(c)) {
            lineEnded = true;
            continue;
        }
        if (lineEnded && !IsWhite(c) && !EndsWhite(joined) && (!first || sides.wordBefore)) {
            joined += ' ';
            ++words;
        }
        Put(c, joined);
        first = first && IsWhite(c);
        lineEnded = lineEnded && c == ' ';
    }
    if (lineEnded && !EndsWhite(joined) && sides.wordAfter) {
        joined += ' ';
        ++words;
    }
    return words;
}

size_t AppendJoinedMarkup(std::string_view markup, std::string& joined)
{
    const bool isCData = markup.starts_with("<![CDATA[");
    const bool isComment = markup.starts_with("<!--");
    const bool isDocType = markup.starts_with("<!DOCTYPE");
    const size_t frontLength = isComment ? 4 : 2;
    const size_t backLength = isComment ? 3 : isDocType ? 1 : 2;
    const size_t back = markup.size() - backLength;
    const size_t start = joined.size();
    size_t words = 0;
    bool lineEnded = false;
    for (size_t i = 0; i < markup.size(); ++i) {
        const char c = markup[i];
        if (IsLineEnd(c)) {
            lineEnded = true;
            continue;
        }
        const bool atEdge = joined.size() <= start + frontLength || i >= back;
        if (lineEnded && !IsWhite(c) && !EndsWhite(joined) && (isCData || !atEdge)) {
            joined += ' ';
            ++words;
        }
        Put(c, joined);
        lineEnded = lineEnded && c == ' ';
    }
    return words;
}

std::vector<std::string> TextElementNames(const InLineTagSet& inLineTags)
{
    std::vector<std::string> names = inLineTags.elementNames();
    names.insert(names.end(), ParagraphElements.begin(), ParagraphElements.end());
    return names;
}

std::string KeptTreeLines(std::string_view text, std::string_view lineEnd, const InLineTagSet& inLineTags,
                          LineLosses& losses)
{
    LineJoiner joiner(text, inLineTags, losses);
    joiner.run();
    return LineAssembler(joiner, lineEnd, losses).run(inLineTags);
}

} // namespace vmk
