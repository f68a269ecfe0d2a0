#include "HtmlReader.h"

#include "Cancelling.h"
#include "HtmlCharacters.h"
#include "HtmlLineBuilder.h"
#include "HtmlScanner.h"
#include "Utf8.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <type_traits>

namespace vmk {

namespace {

/// Reads tags and text and passes them to the builder of lines.
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
        , scanner(html)
        , builder(tagTable, spacingRule)
        , nextLook(spacingRule == Spacing::Keep ? 0 : View::npos)
    {
    }

    HtmlContent read();

private:
    // Tags.
    [[nodiscard]] std::size_t find(Char c, std::size_t from) const
    {
        return std::min(input.find(c, from), input.size());
    }
    bool readMarkup();
    bool readDeclaration();
    void startTag(const TagFacts& facts);
    const TagFacts& tagFacts(View inner);
    TagFacts makeTagFacts(View inner);
    bool skipElement(TagId name);
    [[nodiscard]] bool isProgramText(TagId name);

    // Text.
    void readText(std::size_t stop);
    bool readRun(std::size_t stop);
    void readSpace();
    void readReferenceAt();
    void readCharacter();
    [[nodiscard]] bool isTooCostly() const;
    [[nodiscard]] bool isCancelled() { return at >= nextLook && lookForEscape(); }
    bool lookForEscape();
    void readRestAsText();
    QString toText(View piece) const;

    // The head of a page.
    [[nodiscard]] bool isInFront() const { return builder.isInFront() && content.body == NoTag; }
    bool takeHead(std::size_t end);
    [[nodiscard]] QString head() const;

    TagTable& tags;
    View input;
    Spacing spacing;
    HtmlScanner<Char> scanner;
    HtmlLineBuilder builder;
    std::size_t at = 0;
    std::size_t tagCost = 0; ///< Of the distinct tags.
    bool restIsText = false;
    std::size_t nextLook; ///< The position where to look for Escape next.

    HtmlContent content;
    std::size_t headEnd = 0;
    struct StrayQuote
    {
        std::size_t tagEnd = 0;
        Char quote = {};
    };
    std::vector<StrayQuote> strayQuotes; ///< Unclosed quotes in tags of the head, in order.

    struct CacheEntry
    {
        View inner;
        TagFacts facts;
    };
    std::array<CacheEntry, 512> cache;
};

template <class Char>
HtmlContent Reader<Char>::read()
{
    while (at < input.size() && !isCancelled()) {
        readText(find(Char('<'), at));
        if (!isTooCostly() && at < input.size() && !readMarkup())
            readCharacter();
        if (isTooCostly())
            readRestAsText();
    }
    if (content.cancelled)
        return std::move(content);
    content.lines = builder.finish(content.openEnded);
    content.head = head();
    return std::move(content);
}

/// True if the lines of a fragment have become much larger than its text. A page is not limited: it is
/// written by the program itself.
template <class Char>
bool Reader<Char>::isTooCostly() const
{
    constexpr std::size_t Allowance = std::size_t(1024) * 1024;
    constexpr std::size_t MostPerCharacter = 6;
    return spacing == Spacing::Keep && !restIsText
        && builder.cost() + tagCost > Allowance + MostPerCharacter * at;
}

/// Returns true for the rest of the reading if the user has pressed Escape.
template <class Char>
bool Reader<Char>::lookForEscape()
{
    constexpr std::size_t Stride = 16384;
    content.cancelled = content.cancelled || CancellableWork::isCancelled();
    nextLook = content.cancelled ? 0 : at + Stride;
    return content.cancelled;
}

/// Reads the rest of the input without its tags: each of their characters is text, each line end ends a line.
template <class Char>
void Reader<Char>::readRestAsText()
{
    constexpr std::array<Char, 3> Stops = {Char('<'), Char('\r'), Char('\n')};
    restIsText = true;
    builder.closeAll();
    while (at < input.size() && !isCancelled()) {
        if (input[at] == Char('<')) {
            readCharacter();
        } else if (input[at] == Char('\r') || input[at] == Char('\n')) {
            const bool isPair = input[at] == Char('\r') && input.substr(at + 1, 1) == View(&Stops[2], 1);
            at += isPair ? 2 : 1;
            builder.lineBreak();
        } else {
            const std::size_t next = input.find_first_of(View(Stops.data(), Stops.size()), at);
            readText(std::min(next, input.size()));
        }
    }
}

// ---------------------------------------------------------------- tags

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
    if (isEnd && (at + 2 >= input.size() || !IsHtmlLetter(char32_t(input[at + 2]))))
        return false;
    if (!isEnd && !IsHtmlLetter(char32_t(next)))
        return false;
    const auto [end, strayQuote] = scanner.tagEnd(at + 1);
    if (end == View::npos)
        return false;
    if (strayQuote != Char() && isInFront())
        strayQuotes.push_back({end, strayQuote});

    const TagFacts facts = tagFacts(input.substr(at + 1, end - at - 1));
    if (facts.kind == ElementKind::Body && !facts.isEnd && takeHead(at))
        content.body = facts.tag;
    at = end + 1;
    if (facts.isEnd)
        builder.endTag(facts);
    else
        startTag(facts);
    return true;
}

/// Comments and declarations are removed; one that never ends is text.
template <class Char>
bool Reader<Char>::readDeclaration()
{
    constexpr std::array<Char, 4> CommentStart = {Char('<'), Char('!'), Char('-'), Char('-')};
    // The section's text is content of a pasted book.
    constexpr std::array<Char, 9> CDataStart
        = {Char('<'), Char('!'), Char('['), Char('C'), Char('D'), Char('A'), Char('T'), Char('A'), Char('[')};
    if (spacing == Spacing::Keep
        && input.substr(at, CDataStart.size()) == View(CDataStart.data(), CDataStart.size()))
        return false;
    if (input.substr(at, 4) == View(CommentStart.data(), 4)) {
        const std::size_t end = scanner.commentEnd(at + 4);
        if (end == View::npos)
            return false;
        at = end;
        return true;
    }
    const std::size_t end = scanner.bracket(at);
    if (end == View::npos)
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
        = std::find_if(tagText.cbegin(), tagText.cend(), [](QChar c) { return EndsHtmlName(c.unicode()); });
    const QStringView name(tagText.cbegin(), nameEnd);
    const int known = tags.size();
    facts.name = tags.intern(name, {});
    facts.tag = facts.isEnd ? facts.name : tags.intern(name, QStringView(nameEnd, tagText.cend()));
    facts.kind = KindOfElement(tags[facts.name].name);
    facts.cost = HtmlLineBuilder::costOf(tags[facts.tag]);
    // The table keeps each distinct tag several times.
    constexpr std::size_t CostOfNewTag = 192;
    if (tags.size() > known)
        tagCost += CostOfNewTag + facts.cost;
    return facts;
}

template <class Char>
void Reader<Char>::startTag(const TagFacts& facts)
{
    switch (facts.kind) {
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
    default:
        return builder.startTag(facts);
    }
}

/// Skips an element whose content is not displayed; returns false if it never ends and is therefore text.
template <class Char>
bool Reader<Char>::skipElement(TagId name)
{
    const std::size_t end = scanner.endTag(tags[name].name, at);
    const std::size_t close = end == View::npos ? end : scanner.bracket(end);
    if (close == View::npos)
        return false;
    at = close + 1;
    return true;
}

/// True for an element whose content is no text to read: scripts, and style sheets with their rules.
template <class Char>
bool Reader<Char>::isProgramText(TagId name)
{
    if (tags[name].name == u"SCRIPT")
        return true;
    const std::size_t end = scanner.endTag(tags[name].name, at);
    return end != View::npos && scanner.hasBrace(at, end);
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
    while (at < stop && !isTooCostly() && !isCancelled()) {
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
    builder.append(run.data(), length);
    return true;
}

/// Reads a run of white space up to its end or the end of the text.
template <class Char>
void Reader<Char>::readSpace()
{
    // One blank between two words, the common case.
    if (input[at] == Char(' ') && at + 1 < input.size()
        && !IsHtmlSpace(char32_t(std::make_unsigned_t<Char>(input[at + 1]))) && builder.putLoneBlank()) {
        ++at;
        return;
    }
    std::u16string run;
    bool hasLineEnd = false;
    for (; at < input.size() && IsHtmlSpace(char32_t(std::make_unsigned_t<Char>(input[at]))); ++at) {
        const auto c = char16_t(input[at]);
        if (builder.inPre() && c == u'\n') {
            builder.putSpace(QStringView(run), false);
            run.clear();
            builder.lineBreak();
            if (!isTooCostly())
                continue;
            ++at;
            return;
        }
        hasLineEnd = hasLineEnd || c == u'\n' || c == u'\r';
        if (c != u'\n' && c != u'\r')
            run.push_back(c);
    }
    builder.putSpace(QStringView(run), !builder.inPre() && (hasLineEnd || spacing == Spacing::Collapse));
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
        return builder.put(isLess ? U'<' : U'>');
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
        builder.putSpace(QStringView(&space, 1), c == U'\r' || c == U'\n' || spacing == Spacing::Collapse);
    else
        builder.put(c == 0 ? U'&' : c);
}

/// Reads one character as text, whatever it is.
template <class Char>
void Reader<Char>::readCharacter()
{
    if constexpr (std::is_same_v<Char, char16_t>) {
        builder.append(&input[at++], 1);
    } else {
        const Utf8Character decoded = DecodeUtf8(input.substr(at));
        at += std::max<std::size_t>(decoded.length, 1);
        builder.put(decoded.character);
    }
}

// ---------------------------------------------------------------- the head

/// If no content of the page has begun, everything up to here is its head.
template <class Char>
bool Reader<Char>::takeHead(std::size_t end)
{
    if (!isInFront())
        return false;
    headEnd = end;
    builder.dropFront();
    return true;
}

/// The head as written, except that unclosed quotes are closed: in another page they could match a later
/// quote.
template <class Char>
QString Reader<Char>::head() const
{
    QString head;
    std::size_t from = 0;
    for (const StrayQuote& stray : strayQuotes) {
        if (stray.tagEnd >= headEnd)
            break;
        head += toText(input.substr(from, stray.tagEnd - from)) + QChar(char16_t(stray.quote));
        from = stray.tagEnd;
    }
    return head + toText(input.substr(from, headEnd - from));
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
