#include "HtmlReader.h"

#include "HtmlCharacters.h"
#include "HtmlElements.h"
#include "Utf8.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <type_traits>

namespace vmk {

namespace {

/// Deeper nesting is flattened: no page needs it, and the cost of hostile input must be linear in its size.
constexpr std::size_t MaxBlockDepth = 256;
/// The maximum number of in-line elements that continue in the following lines; others end with their line.
constexpr std::size_t MaxCarriedDepth = 24;
/// The maximum length of a quoted attribute value with a `>`; beyond it, the quote counts as unclosed.
constexpr std::size_t LongestQuotedValue = 4096;

enum class Spacing
{
    Collapse,
    Keep
};

constexpr bool IsLetter(char32_t c)
{
    return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z');
}

/// The characters that end the name of an element. A quote in a name would hide the text after the end tag.
constexpr bool EndsName(char32_t c)
{
    return IsHtmlSpace(c) || c == U'/' || c == U'>' || c == U'=' || c == U'"' || c == U'\'';
}

/// The properties of a tag that the reader uses.
struct TagFacts
{
    TagId tag = NoTag; ///< The interned start tag; for an end tag, the one without attributes.
    TagId name = NoTag; ///< The interned tag with this name and without attributes: equal for equal names.
    ElementKind kind = ElementKind::Inline;
    bool isEnd = false;
};

/// \tparam Char  `char` for UTF-8, `char16_t` for UTF-16
template <class Char>
class Reader
{
public:
    using View = std::basic_string_view<Char>;

    Reader(TagTable& tagTable, View html, Spacing spacingRule)
        : tags(tagTable)
        , input(html)
        , spacing(spacingRule)
    {
    }

    HtmlContent read();

private:
    struct OpenBlock
    {
        TagId tag = NoTag;
        TagId name = NoTag;
        ElementKind kind = ElementKind::Block;
        bool filled = false; ///< A line or a block inside it exists already.
        std::size_t inlineDepth = 0; ///< In-line elements open around it.
    };
    struct OpenInline
    {
        TagId tag = NoTag;
        TagId name = NoTag;
        bool everMarked = false; ///< Its start tag is in a line already.
    };

    // Tokens.
    std::size_t find(Char c, std::size_t from) const;
    std::size_t findTagEnd(std::size_t start);
    bool readMarkup();
    bool readDeclaration();
    const TagFacts& tagFacts(View inner);
    TagFacts makeTagFacts(View inner);
    bool skipElement(TagId name);
    [[nodiscard]] bool isProgramText(TagId name) const;
    [[nodiscard]] std::size_t findEndTag(QStringView name) const;

    // Text.
    void readText(std::size_t stop);
    bool readRun(std::size_t stop);
    void readSpace();
    void readReferenceAt();
    void readCharacter();
    void put(char32_t c);
    void putSpace(QStringView run, bool collapsible);
    QString toText(View piece) const;

    // Structure.
    void startTag(const TagFacts& facts);
    void endTag(const TagFacts& facts);
    void startBlock(const TagFacts& facts);
    void closeBlock();
    void startInline(const TagFacts& facts);
    void endInline(TagId name);
    void lineBreak();
    void beginLine();
    void markOpenElements();
    void endLine();
    bool takeHead(std::size_t end);
    TagId plainBlock(TagId container);
    [[nodiscard]] bool inFrontOfPage() const
    {
        return content.lines.empty() && !lineOpen && blocks.empty() && content.body == NoTag;
    }
    [[nodiscard]] bool inPre() const { return !blocks.empty() && blocks.back().name == preName; }

    TagTable& tags;
    View input;
    Spacing spacing;
    std::size_t at = 0;

    HtmlContent content;
    std::vector<OpenBlock> blocks;
    std::vector<OpenInline> inlines;
    std::size_t markedInlines
        = 0; ///< The number of elements of `inlines`, from the bottom, that are in the current line.

    bool lineOpen = false;
    bool endsCollapsible = false; ///< The text ends with a blank that collapses with the following one.
    std::u16string text;
    std::vector<Mark> marks;
    std::u16string heldSpace; ///< White space that belongs to the next line, if one begins.
    bool heldCollapsible = false;

    struct StrayQuote
    {
        std::size_t tagEnd = 0;
        Char quote = {};
    };
    std::vector<StrayQuote> strayQuotes; ///< Unclosed quotes in tags of the head, in order.

    // Results of searches to the end of the input: no further occurrence exists.
    bool noBracket = false;
    bool noCommentEnd = false;
    std::vector<TagId> neverEnded;

    const TagId preName = tags.intern(u"PRE", {});

    struct CacheEntry
    {
        View inner;
        TagFacts facts;
    };
    std::array<CacheEntry, 512> cache;
};

// ---------------------------------------------------------------- the main loop

template <class Char>
HtmlContent Reader<Char>::read()
{
    while (at < input.size()) {
        const std::size_t next = find(Char('<'), at);
        readText(next);
        if (at < input.size() && !readMarkup())
            readCharacter();
    }

    // All open elements end here as if their end tags followed.
    while (!blocks.empty())
        closeBlock();
    const bool onlySpace = content.lines.empty() && !lineOpen && !heldSpace.empty();
    if (onlySpace && !heldCollapsible && spacing == Spacing::Keep)
        beginLine();
    // An empty element at the end of the input is content too.
    if (std::any_of(inlines.begin(), inlines.end(), [](const OpenInline& open) { return !open.everMarked; }))
        markOpenElements();
    content.openEnded = lineOpen;
    endLine();
    return std::move(content);
}

template <class Char>
std::size_t Reader<Char>::find(Char c, std::size_t from) const
{
    return std::min(input.find(c, from), input.size());
}

// ---------------------------------------------------------------- tags

/// The position of the `>` that ends the tag at `start`, or `npos`. A `>` inside a quoted value does not
/// count, unless the quote is never closed.
template <class Char>
std::size_t Reader<Char>::findTagEnd(std::size_t start)
{
    const std::size_t first = noBracket ? View::npos : input.find(Char('>'), start);
    noBracket = first == View::npos;
    if (noBracket)
        return first;
    const std::size_t limit = std::min(input.size(), first + LongestQuotedValue);
    Char quote = Char('"');
    std::size_t i = start;
    while (i < limit) {
        if (input[i] == Char('>'))
            return i;
        if (input[i] != Char('=')) {
            ++i;
            continue;
        }
        for (++i; i < limit && IsHtmlSpace(char32_t(input[i]));)
            ++i;
        if (i < limit && (input[i] == Char('"') || input[i] == Char('\''))) {
            if (i < first)
                quote = input[i];
            const std::size_t close = input.substr(0, limit).find(input[i], i + 1);
            if (close == View::npos)
                break;
            i = close + 1;
        }
    }
    if (inFrontOfPage())
        strayQuotes.push_back({first, quote});
    return first;
}

/// Reads the tag, comment or declaration at `at`; returns false if its `<` is a plain character.
template <class Char>
bool Reader<Char>::readMarkup()
{
    if (at + 1 >= input.size())
        return false;
    const Char next = input[at + 1];
    if (next == Char('!') || next == Char('?'))
        return readDeclaration();
    const bool isEnd = next == Char('/');
    if (isEnd && (at + 2 >= input.size() || !IsLetter(char32_t(input[at + 2]))))
        return false;
    if (!isEnd && !IsLetter(char32_t(next)))
        return false;
    const std::size_t end = findTagEnd(at + 1);
    if (end == View::npos)
        return false;

    const TagFacts facts = tagFacts(input.substr(at + 1, end - at - 1));
    if (facts.kind == ElementKind::Body && !facts.isEnd && takeHead(at))
        content.body = facts.tag;
    at = end + 1;
    if (facts.isEnd)
        endTag(facts);
    else
        startTag(facts);
    return true;
}

/// Comments and declarations are removed; one that never ends is text.
template <class Char>
bool Reader<Char>::readDeclaration()
{
    constexpr std::array<Char, 4> CommentStart = {Char('<'), Char('!'), Char('-'), Char('-')};
    constexpr std::array<Char, 3> CommentEnd = {Char('-'), Char('-'), Char('>')};
    // The section's text is content of a pasted book.
    constexpr std::array<Char, 9> CDataStart
        = {Char('<'), Char('!'), Char('['), Char('C'), Char('D'), Char('A'), Char('T'), Char('A'), Char('[')};
    if (spacing == Spacing::Keep
        && input.substr(at, CDataStart.size()) == View(CDataStart.data(), CDataStart.size()))
        return false;
    if (input.substr(at, 4) == View(CommentStart.data(), 4)) {
        const std::size_t end = noCommentEnd ? View::npos : input.find(View(CommentEnd.data(), 3), at + 4);
        noCommentEnd = end == View::npos;
        if (noCommentEnd)
            return false;
        at = end + 3;
        return true;
    }
    const std::size_t end = noBracket ? View::npos : input.find(Char('>'), at);
    noBracket = end == View::npos;
    if (noBracket)
        return false;
    at = end + 1;
    return true;
}

/// The properties of a tag, from the cache if the same characters occurred before.
template <class Char>
const TagFacts& Reader<Char>::tagFacts(View inner)
{
    std::size_t hash = inner.size();
    const std::size_t step = 1 + inner.size() / 16;
    for (std::size_t i = 0; i < inner.size(); i += step)
        hash = hash * 31 + std::size_t(inner[i]);
    CacheEntry& entry = cache[(hash ^ hash >> 9) % cache.size()];
    if (entry.inner != inner || inner.empty()) {
        entry.facts = makeTagFacts(inner);
        entry.inner = inner;
    }
    return entry.facts;
}

template <class Char>
TagFacts Reader<Char>::makeTagFacts(View inner)
{
    TagFacts facts;
    QString tagText = toText(inner);
    facts.isEnd = tagText.startsWith(u'/');
    if (facts.isEnd)
        tagText.remove(0, 1);
    const auto nameEnd
        = std::find_if(tagText.cbegin(), tagText.cend(), [](QChar c) { return EndsName(c.unicode()); });
    const QStringView name(tagText.cbegin(), nameEnd);
    facts.name = tags.intern(name, {});
    facts.tag = facts.isEnd ? facts.name : tags.intern(name, QStringView(nameEnd, tagText.cend()));
    facts.kind = KindOfElement(tags[facts.name].name);
    return facts;
}

/// The position of the next end tag with that name after `at`, or `npos`.
template <class Char>
std::size_t Reader<Char>::findEndTag(QStringView name) const
{
    for (std::size_t i = find(Char('<'), at); i + 2 < input.size(); i = find(Char('<'), i + 1)) {
        if (input[i + 1] != Char('/') || input.size() - i - 2 < std::size_t(name.size()))
            continue;
        const auto matches = [&](qsizetype k) {
            const auto c = char32_t(input[i + 2 + std::size_t(k)]);
            return IsLetter(c) && (c & ~0x20U) == name[k].unicode();
        };
        qsizetype k = 0;
        while (k < name.size() && matches(k))
            ++k;
        const std::size_t behind = i + 2 + std::size_t(k);
        if (k == name.size() && (behind == input.size() || EndsName(char32_t(input[behind]))))
            return i;
    }
    return View::npos;
}

/// Skips an element whose content is not displayed; returns false if it never ends and is therefore text.
template <class Char>
bool Reader<Char>::skipElement(TagId name)
{
    if (std::find(neverEnded.begin(), neverEnded.end(), name) != neverEnded.end())
        return false;
    const std::size_t end = findEndTag(tags[name].name);
    const std::size_t close = end == View::npos ? end : input.find(Char('>'), end);
    if (close == View::npos) {
        neverEnded.push_back(name);
        return false;
    }
    at = close + 1;
    return true;
}

/// True for an element whose content is no text to read: scripts, and style sheets with their rules.
template <class Char>
bool Reader<Char>::isProgramText(TagId name) const
{
    if (tags[name].name == u"SCRIPT")
        return true;
    const std::size_t end = findEndTag(tags[name].name);
    return end != View::npos && input.substr(at, end - at).find(Char('{')) != View::npos;
}

template <class Char>
QString Reader<Char>::toText(View piece) const
{
    if constexpr (std::is_same_v<Char, char>)
        return QString::fromUtf8(piece.data(), qsizetype(piece.size()));
    else
        return QString(reinterpret_cast<const QChar*>(piece.data()), qsizetype(piece.size()));
}

// ---------------------------------------------------------------- text

template <class Char>
void Reader<Char>::readText(std::size_t stop)
{
    while (at < stop) {
        const auto c = char32_t(std::make_unsigned_t<Char>(input[at]));
        if (IsHtmlSpace(c))
            readSpace();
        else if (c == U'&')
            readReferenceAt();
        else if (!readRun(stop))
            readCharacter();
    }
}

/// The common case in one step: plain characters with single blanks between them. Most of the time for a page
/// is spent here.
/// \return false if there is none here
template <class Char>
bool Reader<Char>::readRun(std::size_t stop)
{
    const auto unit = [this](std::size_t i) { return char16_t(std::make_unsigned_t<Char>(input[i])); };
    const auto isText = [](char16_t c) { return c > u' ' && c != u'&'; };
    std::array<char16_t, 256> run;
    std::size_t length = 0;
    for (; at < stop && length < run.size(); ++at) {
        const char16_t c = unit(at);
        const bool isPlain = isText(c) && (c < 0x80 || std::is_same_v<Char, char16_t>);
        const bool isLoneBlank = c == u' ' && length > 0 && at + 1 < stop && isText(unit(at + 1));
        const bool isTwoByte = std::is_same_v<Char, char> && c >= 0xC2 && c < 0xE0 && at + 1 < stop
            && (unit(at + 1) & 0xC0) == 0x80;
        if (isPlain || isLoneBlank)
            run[length++] = c;
        else if (isTwoByte)
            run[length++] = char16_t((c & 0x1F) << 6 | (unit(++at) & 0x3F));
        else
            break;
    }
    if (length == 0)
        return false;
    if (!lineOpen || markedInlines < inlines.size())
        markOpenElements();
    endsCollapsible = false;
    text.append(run.data(), length);
    return true;
}

/// Reads a run of white space up to its end or the end of the text.
template <class Char>
void Reader<Char>::readSpace()
{
    // One blank between two words, the common case.
    if (lineOpen && !endsCollapsible && !text.empty() && input[at] == Char(' ')
        && markedInlines == inlines.size() && at + 1 < input.size()
        && !IsHtmlSpace(char32_t(std::make_unsigned_t<Char>(input[at + 1])))) {
        ++at;
        text.push_back(u' ');
        endsCollapsible = spacing == Spacing::Collapse && !inPre();
        return;
    }
    std::u16string run;
    bool hasLineEnd = false;
    for (; at < input.size() && IsHtmlSpace(char32_t(std::make_unsigned_t<Char>(input[at]))); ++at) {
        const auto c = char16_t(input[at]);
        if (inPre() && c == u'\n') {
            putSpace(QStringView(run), false);
            run.clear();
            lineBreak();
            continue;
        }
        hasLineEnd = hasLineEnd || c == u'\n' || c == u'\r';
        if (c != u'\n' && c != u'\r')
            run.push_back(c);
    }
    putSpace(QStringView(run), !inPre() && (hasLineEnd || spacing == Spacing::Collapse));
}

template <class Char>
void Reader<Char>::putSpace(QStringView run, bool collapsible)
{
    if (collapsible)
        run = u" ";
    if (run.isEmpty())
        return;
    if (!lineOpen && (collapsible || inlines.empty())) {
        // It counts only if text follows in the same line.
        heldCollapsible = heldCollapsible || collapsible;
        heldSpace.append(run.utf16(), std::size_t(run.size()));
        return;
    }
    if (collapsible && (endsCollapsible || text.empty()))
        return;
    // A blank that is kept inside an element is part of its text.
    markOpenElements();
    text.append(run.utf16(), std::size_t(run.size()));
    endsCollapsible = collapsible;
}

template <class Char>
void Reader<Char>::readReferenceAt()
{
    // Nearly all references of a page are the angle brackets of its tags.
    constexpr std::array<Char, 4> LessThan = {Char('&'), Char('l'), Char('t'), Char(';')};
    constexpr std::array<Char, 4> GreaterThan = {Char('&'), Char('g'), Char('t'), Char(';')};
    const View four = input.substr(at, 4);
    const bool isLess = four == View(LessThan.data(), 4);
    if (isLess || four == View(GreaterThan.data(), 4)) {
        at += 4;
        return put(isLess ? U'<' : U'>');
    }

    constexpr std::size_t LongestReference = 64;
    std::array<char16_t, LongestReference> characters;
    const std::size_t length = std::min(LongestReference, input.size() - at);
    for (std::size_t i = 0; i < length; ++i)
        characters[i] = char16_t(std::make_unsigned_t<Char>(input[at + i]));

    qsizetype referenceLength = 0;
    const char32_t c = ReadReference(QStringView(characters.data(), qsizetype(length)), referenceLength);
    at += c == 0 ? 1 : std::size_t(referenceLength);
    // White space remains white space if it is written as a numeric reference.
    const auto space = char16_t(c);
    if (IsHtmlSpace(c))
        putSpace(QStringView(&space, 1), c == U'\r' || c == U'\n' || spacing == Spacing::Collapse);
    else
        put(c == 0 ? U'&' : c);
}

/// Reads one character as text, whatever it is.
template <class Char>
void Reader<Char>::readCharacter()
{
    if constexpr (std::is_same_v<Char, char16_t>) {
        markOpenElements();
        endsCollapsible = false;
        text.push_back(input[at++]);
    } else {
        const Utf8Character decoded = DecodeUtf8(input.substr(at));
        at += std::max<std::size_t>(decoded.length, 1);
        put(decoded.character);
    }
}

template <class Char>
void Reader<Char>::put(char32_t c)
{
    if (!lineOpen || markedInlines < inlines.size())
        markOpenElements();
    endsCollapsible = false;
    if (c < 0x10000) {
        text.push_back(char16_t(c));
    } else {
        text.push_back(QChar::highSurrogate(c));
        text.push_back(QChar::lowSurrogate(c));
    }
}

// ---------------------------------------------------------------- elements

template <class Char>
void Reader<Char>::startTag(const TagFacts& facts)
{
    switch (facts.kind) {
    case ElementKind::Inline:
        return startInline(facts);
    case ElementKind::Void:
        startInline(facts);
        return endInline(facts.name);
    case ElementKind::Block:
    case ElementKind::Container:
        return startBlock(facts);
    case ElementKind::Break:
        return lineBreak();
    case ElementKind::Rule:
        startBlock(facts);
        return closeBlock();
    case ElementKind::Head:
        if (skipElement(facts.name))
            takeHead(at);
        return;
    case ElementKind::Dropped:
        // A fragment may be the source of a book, which has elements of these names.
        if (spacing == Spacing::Collapse || isProgramText(facts.name))
            static_cast<void>(skipElement(facts.name));
        return;
    case ElementKind::Body:
    case ElementKind::Ignored:
        return;
    }
}

template <class Char>
void Reader<Char>::endTag(const TagFacts& facts)
{
    if (facts.kind == ElementKind::Inline)
        return endInline(facts.name);
    if (facts.kind != ElementKind::Block && facts.kind != ElementKind::Container)
        return;
    const auto open = std::find_if(blocks.rbegin(), blocks.rend(),
                                   [&facts](const OpenBlock& block) { return block.name == facts.name; });
    if (open == blocks.rend())
        return;
    const auto depth = std::size_t(blocks.rend() - open);
    while (blocks.size() >= depth)
        closeBlock();
}

template <class Char>
void Reader<Char>::startBlock(const TagFacts& facts)
{
    endLine();
    const QString& name = tags[facts.name].name;
    while (!blocks.empty() && EndsImplicitly(tags[blocks.back().name].name, name))
        closeBlock();
    if (blocks.size() >= MaxBlockDepth) {
        // It would contain the block that replaces it, so it is not an empty line.
        blocks.back().filled = true;
        closeBlock();
    }

    OpenBlock block{facts.tag, facts.name, facts.kind, false, inlines.size()};
    if (!blocks.empty()) {
        blocks.back().filled = true;
        const QString align = tags[blocks.back().tag].value(u"align");
        if (!align.isEmpty() && tags[facts.tag].value(u"align").isEmpty())
            block.tag = tags.withAttribute(facts.tag, u"align", align);
    }
    blocks.push_back(block);
}

/// Ends the innermost block and the in-line elements opened in it.
template <class Char>
void Reader<Char>::closeBlock()
{
    const OpenBlock& block = blocks.back();
    const bool emptyInline
        = std::any_of(inlines.begin() + std::ptrdiff_t(std::min(block.inlineDepth, inlines.size())),
                      inlines.end(), [](const OpenInline& open) { return !open.everMarked; });
    if (emptyInline)
        markOpenElements();
    if (!lineOpen && !block.filled && block.kind != ElementKind::Container)
        beginLine();
    endLine();
    if (inlines.size() > block.inlineDepth)
        inlines.resize(block.inlineDepth);
    markedInlines = std::min(markedInlines, inlines.size());
    blocks.pop_back();
}

template <class Char>
void Reader<Char>::startInline(const TagFacts& facts)
{
    if (inlines.size() < MaxInlineDepth)
        inlines.push_back({facts.tag, facts.name, false});
}

template <class Char>
void Reader<Char>::endInline(TagId name)
{
    std::size_t i = inlines.size();
    while (i > 0 && inlines[i - 1].name != name)
        --i;
    if (i == 0)
        return;
    const std::size_t index = i - 1;
    // An element without text is kept too: it may be a field or an anchor.
    if (!inlines[index].everMarked)
        markOpenElements();
    // Elements that were opened inside and are still open continue after the end tag.
    while (markedInlines > index)
        marks.push_back(Mark::closing(int(text.size()), inlines[--markedInlines].tag));
    inlines.erase(inlines.begin() + std::ptrdiff_t(index));
    for (auto block = blocks.rbegin(); block != blocks.rend() && block->inlineDepth > index; ++block)
        --block->inlineDepth;
}

/// Handles `BR`, or a line end in preformatted text.
template <class Char>
void Reader<Char>::lineBreak()
{
    if (!lineOpen)
        beginLine();
    endLine();
}

template <class Char>
void Reader<Char>::beginLine()
{
    lineOpen = true;
    if (!heldCollapsible && (spacing == Spacing::Keep || inPre()))
        text.append(heldSpace);
    heldSpace.clear();
    heldCollapsible = false;
}

/// Opens all open elements that are not in the current line yet; begins a line if necessary.
template <class Char>
void Reader<Char>::markOpenElements()
{
    if (!lineOpen)
        beginLine();
    for (; markedInlines < inlines.size(); ++markedInlines) {
        OpenInline& open = inlines[markedInlines];
        open.everMarked = true;
        marks.push_back(Mark::opening(int(text.size()), open.tag));
    }
}

template <class Char>
void Reader<Char>::endLine()
{
    heldSpace.clear();
    heldCollapsible = false;
    if (!lineOpen)
        return;
    while (markedInlines > 0)
        marks.push_back(Mark::closing(int(text.size()), inlines[--markedInlines].tag));
    if (endsCollapsible)
        text.pop_back();
    const auto length = std::int32_t(text.size());
    for (auto mark = marks.rbegin(); mark != marks.rend() && mark->pos > length; ++mark)
        mark->pos = length;

    TagId block = NoTag;
    if (!blocks.empty()) {
        OpenBlock& around = blocks.back();
        // Only one line has the identifier.
        if (around.filled)
            around.tag = tags.withAttribute(around.tag, u"id", QString());
        block = around.kind == ElementKind::Container ? plainBlock(around.tag) : around.tag;
        around.filled = true;
    }
    content.lines.push_back(std::make_shared<const Line>(
        Line{block, QString(reinterpret_cast<const QChar*>(text.data()), qsizetype(text.size())),
             std::vector<Mark>(marks.begin(), marks.end())}));
    text.clear();
    marks.clear();
    endsCollapsible = false;
    lineOpen = false;
    if (inlines.size() > MaxCarriedDepth)
        inlines.resize(MaxCarriedDepth);
}

/// The block of a line that is directly in a list or table, outside its items or cells.
template <class Char>
TagId Reader<Char>::plainBlock(TagId container)
{
    const QString align = tags[container].value(u"align");
    const TagId div = tags.intern(u"DIV", {});
    return align.isEmpty() ? div : tags.withAttribute(div, u"align", align);
}

/// If no content of the page has begun, everything up to here is its head. The head is kept as written,
/// except that unclosed quotes are closed: in another page they could match a later quote.
template <class Char>
bool Reader<Char>::takeHead(std::size_t end)
{
    if (!inFrontOfPage())
        return false;
    content.head.clear();
    std::size_t from = 0;
    for (const StrayQuote& stray : strayQuotes) {
        if (stray.tagEnd >= end)
            break;
        content.head += toText(input.substr(from, stray.tagEnd - from)) + QChar(char16_t(stray.quote));
        from = stray.tagEnd;
    }
    content.head += toText(input.substr(from, end - from));
    inlines.clear();
    heldSpace.clear();
    heldCollapsible = false;
    return true;
}

} // namespace

HtmlContent ReadPage(TagTable& tags, const QByteArray& html)
{
    // Only a byte order mark indicates UTF-16: pages are written in UTF-8.
    QByteArray utf8 = html;
    if (html.startsWith("\xff\xfe"))
        utf8 = QString(QStringDecoder(QStringConverter::Utf16LE)(html)).toUtf8();
    else if (html.startsWith("\xfe\xff"))
        utf8 = QString(QStringDecoder(QStringConverter::Utf16BE)(html)).toUtf8();

    std::string_view bytes(utf8.constData(), std::size_t(utf8.size()));
    while (bytes.starts_with("\xef\xbb\xbf"))
        bytes.remove_prefix(3);
    return Reader<char>(tags, bytes, Spacing::Collapse).read();
}

HtmlContent ReadFragment(TagTable& tags, QStringView html)
{
    const std::u16string_view text(html.utf16(), std::size_t(html.size()));
    return Reader<char16_t>(tags, text, Spacing::Keep).read();
}

HtmlContent ReadFragment(TagTable& tags, std::string_view utf8)
{
    return Reader<char>(tags, utf8, Spacing::Keep).read();
}

} // namespace vmk
