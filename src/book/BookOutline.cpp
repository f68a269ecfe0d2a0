#include "BookOutline.h"

#include "CommonMarkup.h"
#include "KeptLines.h"
#include "XmlSaxReader.h"

#include <algorithm>

namespace vmk {

namespace {

using Kind = CommonToken::Kind;

/// One pass over a text. Every function returns false if the text is not in common form.
class Outliner
{
public:
    Outliner(std::string_view source, const InLineTagSet& inLineTags, bool showsNbsp)
        : text(source)
        , markup(source, inLineTags, showsNbsp)
    {
    }

    [[nodiscard]] bool run(std::size_t start, std::size_t descriptionEnd);
    [[nodiscard]] const ProtectedCharacters& characters() const { return markup.met; }
    BookOutline outline;

private:
    /// White space between two tags.
    struct White
    {
        bool any = false, tab = false, lineEnd = false;
        bool writtenBlank = false;
        bool blank = false; ///< also one that a line end becomes
    };
    struct Element
    {
        const ElementFacts* facts = &NoElement;
        std::size_t firstLine = 0; ///< of its content
        // As in `XmlSerializer`.
        bool mixed = false, hasContent = false, afterInLine = false, afterElement = false, touching = false,
             filledChild = false;
        // As in the joining of lines (`KeptLines`).
        bool hasText = false, wordsContent = false, wordsFilled = false, wordsAfter = false,
             wordsTouching = false;
        std::size_t firstGap = 0;
        std::size_t firstBlank = 0;
    };

    [[nodiscard]] static White whiteOf(std::string_view piece);
    [[nodiscard]] static int breaksOf(const CommonToken& tag);
    [[nodiscard]] static int removedBefore(const CommonToken& tag);
    [[nodiscard]] bool lineEndsBetween(const White& white, const CommonToken& next) const;
    void takeText(std::string_view piece, TextFeatures features, const CommonToken& next);
    [[nodiscard]] static std::size_t breaksAtAngles(std::string_view joined, const CommonToken& next);
    void takeWhite(White& white, const CommonToken& next);
    void takeComment(const White& white, const CommonToken& tag);
    [[nodiscard]] bool takeStart(const White& white, const CommonToken& tag);
    [[nodiscard]] bool takeEnd(const White& white, const CommonToken& tag);
    [[nodiscard]] bool closeWords(Element& element, bool isJoined);
    void settleWhite(Element& parent, const White& white, const CommonToken& next);
    void addLine(std::size_t position, std::size_t depth);
    void makeMixed(Element& element);

    std::string_view text;
    CommonMarkup markup;
    std::vector<Element> open;
    CommonToken before;
    std::string joined; ///< the last text with line ends, joined
    std::size_t gapBreaks = 0; ///< gaps at which the editor's own rules end a line
    std::size_t lateBlanks = 0; ///< line ends between elements, which are blanks if text follows
};

bool Outliner::run(std::size_t start, std::size_t descriptionEnd)
{
    constexpr std::size_t TypicalLine = 100;
    outline.lines.reserve(text.size() / TypicalLine);
    before.end = start;
    bool rootClosed = false;
    while (true) {
        const std::size_t from = before.end;
        const std::size_t next = std::min(text.find('<', from), text.size());
        const std::string_view piece = text.substr(from, next - from);
        const bool isText = !std::ranges::all_of(piece, IsXmlWhite);
        TextFeatures features;
        if (isText && (open.empty() || !markup.checkText(from, next, features)))
            return false;
        if (next == text.size())
            return rootClosed && open.empty();
        CommonToken tag;
        if (open.size() >= XmlMaxDepth
            || !markup.readToken(next, open.size(), open.empty() ? nullptr : open.back().facts, tag)
            || (tag.facts->describes && next >= descriptionEnd))
            return false;
        White white = isText ? White() : whiteOf(piece);
        if (isText)
            takeText(piece, features, tag);
        else
            takeWhite(white, tag);
        if (tag.kind == Kind::Comment)
            takeComment(white, tag);
        else if (rootClosed || (tag.kind == Kind::End ? !takeEnd(white, tag) : !takeStart(white, tag)))
            return false;
        before = tag;
        rootClosed = rootClosed || (open.empty() && tag.kind == Kind::End);
        outline.end = tag.end;
    }
}

// ---------------------------------------------------------------- lines

auto Outliner::whiteOf(std::string_view piece) -> White
{
    White white;
    white.any = !piece.empty();
    for (const char c : piece) {
        white.writtenBlank = white.writtenBlank || c == ' ';
        white.tab = white.tab || c == '\t';
        white.lineEnd = white.lineEnd || c == '\r' || c == '\n';
    }
    white.blank = white.writtenBlank;
    return white;
}

/// The line ends that the editor's own rules insert after a tag, before it counts the next one.
int Outliner::breaksOf(const CommonToken& tag)
{
    return tag.kind == Kind::End || tag.kind == Kind::Empty ? 1 : 0;
}

/// The line ends before a tag without attributes that the editor's own rules remove.
int Outliner::removedBefore(const CommonToken& tag)
{
    if (tag.kind == Kind::Start)
        return tag.facts->startBefore;
    return tag.kind == Kind::End ? tag.facts->endBefore : tag.facts->emptyBefore;
}

/// Whether the editor's own rules end a line between the last tag and this one; see `LineEndsAfter`.
bool Outliner::lineEndsBetween(const White& white, const CommonToken& next) const
{
    const bool adjacent = !white.blank && !white.tab;
    int breaks = breaksOf(before);
    if (breaks == 0)
        breaks = white.tab ? 0 : 1;
    if (breaks > 0 && before.isBare)
        breaks -= before.kind == Kind::Start ? before.facts->startAfter
            : before.kind == Kind::End       ? before.facts->endAfter
                                             : before.facts->emptyAfter;
    if (breaks > 0 && adjacent && next.isBare)
        breaks -= removedBefore(next);
    return breaks > 0;
}

/// Handles the text between the last tag and the next one.
void Outliner::takeText(std::string_view piece, TextFeatures features, const CommonToken& next)
{
    if (features.hasLines || features.hasAngles) {
        const TextSides sides{before.kind != Kind::Start || before.facts->isInLineWord,
                              next.kind != Kind::End || next.facts->isInLineWord};
        joined = '>';
        outline.joinedWords += AppendJoinedText(piece, sides, joined);
    }
    if (features.hasAngles)
        outline.tornTexts += breaksAtAngles(std::string_view(joined).substr(1), next);
    int breaks = breaksOf(before);
    if (breaks > 0 && before.isBare)
        breaks -= before.kind == Kind::End ? before.facts->endAfter : before.facts->emptyAfter;
    outline.tornTexts += breaks > 0 ? 1 : 0;

    Element& parent = open.back();
    parent.hasText = parent.wordsContent = true;
    parent.wordsAfter = false;
    makeMixed(parent);
    parent.hasContent = true;
    parent.afterInLine = parent.afterElement = false;
}

/// The line ends that the editor's own rules insert after ">" in a text; see `LineEndsAfter`.
std::size_t Outliner::breaksAtAngles(std::string_view joined, const CommonToken& next)
{
    std::size_t lines = 0;
    for (std::size_t at = joined.find('>'); at != std::string_view::npos; at = joined.find('>', at + 1)) {
        const std::string_view rest = joined.substr(at + 1);
        int breaks = (at > 0 && joined[at - 1] == '/') || rest.empty() || rest == " " ? 1 : 0;
        if (breaks > 0 && rest.empty() && next.isBare)
            breaks -= removedBefore(next);
        lines += breaks > 0 ? 1 : 0;
    }
    return lines;
}

/// Handles the white space, or none, between the last tag and this one. Line ends alone become a blank if
/// they separate words.
void Outliner::takeWhite(White& white, const CommonToken& next)
{
    if (white.lineEnd && !white.blank && !white.tab && !open.empty()) {
        const bool empties = before.kind == Kind::Start && next.kind == Kind::End;
        const bool isEdge = (before.kind == Kind::Start && !before.facts->isInLineWord)
            || (next.kind == Kind::End && !next.facts->isInLineWord);
        if (!empties && !isEdge) {
            const bool isWord = before.facts->isInLineWord && next.facts->isInLineWord;
            white.blank = isWord || open.back().hasText;
            if (!white.blank)
                ++lateBlanks;
            else if (!isWord)
                outline.blanks.push_back(before.end);
        }
    }
    outline.joinedWords += white.blank && !white.writtenBlank ? 1 : 0;
    gapBreaks += lineEndsBetween(white, next) ? 1 : 0;
    if (white.any && !open.empty())
        open.back().wordsAfter = false;
}

void Outliner::takeComment(const White& white, const CommonToken& tag)
{
    if (tag.hasLines) {
        joined = '>';
        outline.joinedWords += AppendJoinedMarkup(text.substr(tag.start, tag.end - tag.start), joined);
    }
    if (open.empty())
        return addLine(tag.start, 0);
    Element& parent = open.back();
    parent.wordsContent = true;
    parent.wordsAfter = false;
    settleWhite(parent, white, tag);
    parent.hasContent = true;
    if (!parent.mixed)
        addLine(tag.start, open.size());
    parent.afterInLine = parent.afterElement = false;
}

bool Outliner::takeStart(const White& white, const CommonToken& tag)
{
    const bool isEmpty = tag.kind == Kind::Empty;
    if (open.empty()) {
        addLine(tag.start, 0);
    } else {
        Element& parent = open.back();
        parent.wordsContent = true;
        parent.wordsTouching = parent.wordsTouching || parent.wordsAfter;
        parent.wordsAfter = true;

        // Whether line ends part elements depends on the elements around them.
        parent.touching = parent.touching || (parent.afterElement && !white.blank && !white.tab);
        settleWhite(parent, white, tag);
        parent.hasContent = true;
        if (!parent.mixed)
            addLine(tag.start, open.size());
        parent.afterInLine = tag.facts->isInLine;
        parent.afterElement = isEmpty;
    }
    if (isEmpty)
        return true;
    Element element;
    element.facts = tag.facts;
    element.mixed = !open.empty() && open.back().mixed;
    element.firstLine = outline.lines.size();
    element.firstGap = gapBreaks;
    element.firstBlank = lateBlanks;
    open.push_back(element);
    return true;
}

bool Outliner::takeEnd(const White& white, const CommonToken& tag)
{
    Element& element = open.back();
    const bool isJoined
        = element.hasText || (element.facts->isText && element.wordsTouching && element.wordsFilled);
    if (!closeWords(element, isJoined))
        return false;
    settleWhite(element, white, tag);
    if (element.facts->isText && element.touching && element.filledChild && !element.mixed) {
        // The two rules differ if all that the elements contain is a blank.
        if (!isJoined)
            return false;
        makeMixed(element);
        ++outline.movedElements;
    }
    if (element.hasContent && !element.mixed)
        addLine(tag.start, open.size() - 1);
    const bool filled = element.hasContent;
    const bool wordsFilled = element.wordsContent;
    open.pop_back();
    if (open.empty())
        return true;
    Element& parent = open.back();
    parent.afterElement = true;
    parent.filledChild = parent.filledChild || filled;
    parent.wordsAfter = true;
    parent.wordsFilled = parent.wordsFilled || wordsFilled;
    return true;
}

/// Decides whether the line ends in a complete element are layout.
bool Outliner::closeWords(Element& element, bool isJoined)
{
    if (isJoined) {
        // The blanks could change the lines of elements after them.
        if (lateBlanks > element.firstBlank)
            return false;
        outline.tornTexts += gapBreaks - element.firstGap;
        gapBreaks = element.firstGap;
    }
    lateBlanks = element.firstBlank;
    return true;
}

void Outliner::settleWhite(Element& parent, const White& white, const CommonToken& next)
{
    if (!white.blank && !white.tab)
        return;
    const bool betweenInLine
        = parent.facts->isText && parent.afterInLine && next.kind != Kind::End && next.facts->isInLine;
    const bool isText = white.blank && (parent.facts->isInLine || betweenInLine);
    if (isText)
        makeMixed(parent);
    const bool nothingElse = next.kind == Kind::End && !parent.hasContent;
    if (isText || !nothingElse)
        parent.hasContent = true;
}

void Outliner::addLine(std::size_t position, std::size_t depth)
{
    outline.lines.push_back({position, depth});
    outline.deepest = std::max(outline.deepest, static_cast<std::uint32_t>(depth));
}

void Outliner::makeMixed(Element& element)
{
    if (element.mixed)
        return;
    element.mixed = true;
    outline.lines.resize(element.firstLine);
}

} // namespace

std::optional<BookOutline> OutlineOf(std::string_view text, std::size_t start, std::size_t descriptionEnd,
                                     const InLineTagSet& inLineTags, bool showNbsp)
{
    constexpr std::size_t MostBytes = std::size_t(1) << 39U;
    if (!AreBareTags(inLineTags) || text.size() > MostBytes)
        return std::nullopt;
    Outliner outliner(text, inLineTags, showNbsp);
    if (!outliner.run(start, descriptionEnd))
        return std::nullopt;
    outliner.outline.characters = outliner.characters();
    outliner.outline.inLineNames = inLineTags.elementNames();
    outliner.outline.wordNames = WordNames(inLineTags);
    return std::move(outliner.outline);
}

} // namespace vmk
