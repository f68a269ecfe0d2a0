#include "BookOutline.h"

#include "KeptLines.h"
#include "TextFunctions.h"
#include "XmlReference.h"
#include "XmlSaxReader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <string>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace vmk {

namespace {

constexpr std::size_t None = std::string_view::npos;
constexpr std::string_view RootName = "FictionBook";
/// Tags that the update of the description looks for.
constexpr std::array<std::string_view, 4> DescriptionNames
    = {"program-used", "document-info", "title-info", "description"};

/// The classes of bytes in a text.
enum class Byte : std::uint8_t
{
    Plain,
    Two, ///< first of a character of two bytes
    TwoSpecial, ///< the same; the character may be U+00A0
    Three,
    Four,
    Ampersand,
    Quote,
    Other ///< white space except blanks, control characters, angle brackets, no first byte of a character
};

constexpr std::array<Byte, 256> ClassesOfBytes()
{
    std::array<Byte, 256> classes{};
    for (std::size_t i = 0; i < classes.size(); ++i) {
        if (i < 0x20 || i == '<' || i == '>' || i == 0x7F || (i >= 0x80 && i < 0xC2) || i >= 0xF5)
            classes[i] = Byte::Other;
        else if (i >= 0xF0)
            classes[i] = Byte::Four;
        else if (i >= 0xE0)
            classes[i] = Byte::Three;
        else if (i >= 0xC2)
            classes[i] = i == 0xC2 ? Byte::TwoSpecial : Byte::Two;
    }
    classes['&'] = Byte::Ampersand;
    classes['"'] = Byte::Quote;
    return classes;
}

constexpr std::array<Byte, 256> ByteClasses = ClassesOfBytes();

constexpr bool IsWhite(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

constexpr bool IsNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

constexpr bool IsNameByte(char c)
{
    return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
}

constexpr char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool EqualInAnyCase(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, {}, Lower, Lower);
}

/// True for a character that may occur in XML; control characters are tested elsewhere.
constexpr bool IsXmlCharacter(std::uint32_t c)
{
    return c < 0xD800 || (c >= 0xE000 && c < 0xFFFE) || (c >= 0x10000 && c < 0x110000);
}

/// True for the angle quotes and the guard, which have another meaning in a display.
constexpr bool IsSpecialInDisplay(std::uint32_t c)
{
    return c == 0x2039 || c == 0x203A || c == 0xFE0C;
}

/// The properties of all elements of one name.
struct NameFacts
{
    std::string name;
    bool isInLine = false; ///< for the layout
    bool isInLineWord = false; ///< for the words beside it
    bool isText = false; ///< contains text
    bool describes = false; ///< one of `DescriptionNames`
    // How many line ends a tag without attributes removes after itself, and before itself.
    int startAfter = 0, endAfter = 0, emptyAfter = 0;
    int startBefore = 0, endBefore = 0, emptyBefore = 0;
};

/// The facts about mark-up that is no element.
const NameFacts NoElement;

/// The names of the elements that may be parts of words.
std::vector<std::string> WordNames(const InLineTagSet& tags)
{
    std::vector<std::string> names = tags.elementNames();
    names.insert(names.end(), {"code", "image"});
    return names;
}

/// The facts about the names of a text.
class NameTable
{
public:
    explicit NameTable(const InLineTagSet& tags)
        : inLineTags(tags)
        , inLineNames(tags.elementNames())
        , wordNames(WordNames(tags))
        , textNames(TextElementNames(tags))
    {
    }

    /// Returns null if there are too many names.
    [[nodiscard]] const NameFacts* find(std::string_view name);

private:
    [[nodiscard]] NameFacts makeFacts(std::string_view name) const;

    const InLineTagSet& inLineTags;
    std::vector<std::string> inLineNames;
    std::vector<std::string> wordNames;
    std::vector<std::string> textNames;
    std::deque<NameFacts> known;
    std::array<const NameFacts*, 1024> slots{};
};

const NameFacts* NameTable::find(std::string_view name)
{
    std::size_t hash = name.size();
    for (const char c : name)
        hash = hash * 31 + static_cast<unsigned char>(c);
    for (std::size_t slot = hash % slots.size();; slot = (slot + 1) % slots.size()) {
        if (slots[slot] == nullptr) {
            if (known.size() >= slots.size() / 2)
                return nullptr;
            known.push_back(makeFacts(name));
            return slots[slot] = &known.back();
        }
        if (slots[slot]->name == name)
            return slots[slot];
    }
}

NameFacts NameTable::makeFacts(std::string_view name) const
{
    const auto contains = [name](const std::vector<std::string>& names) {
        return std::ranges::find(names, name) != names.end();
    };
    NameFacts facts;
    facts.name = name;
    facts.isInLine = contains(inLineNames);
    facts.isInLineWord = contains(wordNames);
    facts.isText = contains(textNames);
    facts.describes = std::ranges::any_of(
        DescriptionNames, [name](std::string_view other) { return EqualInAnyCase(name, other); });
    const std::string start = '<' + facts.name + '>';
    facts.startBefore = inLineTags.count(start);
    facts.endBefore = facts.endAfter = inLineTags.count("</" + facts.name + '>');
    facts.emptyBefore = facts.emptyAfter = inLineTags.count('<' + facts.name + "/>");
    facts.startAfter = facts.startBefore + (IsFieldTag(start) ? 1 : 0);
    return facts;
}

/// One pass over a text. Every function returns false if the text is not in common form.
class Outliner
{
public:
    Outliner(std::string_view source, const InLineTagSet& inLineTags, bool showsNbsp)
        : text(source)
        , showNbsp(showsNbsp)
        , names(inLineTags)
    {
    }

    [[nodiscard]] bool run(std::size_t start, std::size_t descriptionEnd);
    BookOutline outline;

private:
    enum class Kind
    {
        Declaration,
        Comment,
        Start,
        Empty,
        End
    };
    struct Tag
    {
        Kind kind = Kind::Declaration;
        std::size_t start = 0;
        std::size_t end = 0;
        const NameFacts* facts = &NoElement;
        bool isBare = false; ///< without attributes and white space
    };
    /// White space between two tags.
    struct White
    {
        bool any = false, blank = false, tab = false, lineEnd = false;
    };
    struct Element
    {
        const NameFacts* facts = &NoElement;
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

    [[nodiscard]] bool readTag(std::size_t at, Tag& tag);
    [[nodiscard]] bool readComment(std::size_t at, Tag& tag);
    [[nodiscard]] bool readEndTag(std::size_t at, Tag& tag);
    [[nodiscard]] bool readAttributes(std::size_t at, Tag& tag);
    [[nodiscard]] bool readAttribute(std::size_t& at);
    [[nodiscard]] bool readWhiteInTag(std::size_t& at) const;
    [[nodiscard]] std::size_t nameEnd(std::size_t at) const;
    [[nodiscard]] bool isKnownPrefix(std::string_view name) const;
    [[nodiscard]] bool checkAttributes(bool isRoot);
    [[nodiscard]] bool checkValue(std::string_view value) const;
    [[nodiscard]] bool checkText(std::size_t at, std::size_t end);
    [[nodiscard]] bool checkCharacter(std::size_t& at, std::size_t end, bool inText) const;
    [[nodiscard]] bool checkReference(std::size_t& at, std::size_t end) const;
    [[nodiscard]] bool checkReferenceInTag(std::size_t& at, std::size_t end) const;

    [[nodiscard]] static White whiteOf(std::string_view piece);
    [[nodiscard]] static int breaksOf(const Tag& tag);
    [[nodiscard]] bool lineEndsBetween(const White& white, const Tag& next) const;
    void takeText(std::string_view piece, bool withLines, const Tag& next);
    [[nodiscard]] bool takeWhite(const White& white, const Tag& next);
    void takeComment(const White& white, const Tag& tag);
    [[nodiscard]] bool takeStart(const White& white, const Tag& tag);
    [[nodiscard]] bool takeEnd(const White& white, const Tag& tag);
    [[nodiscard]] bool closeWords(Element& element, bool isJoined);
    void settleWhite(Element& parent, const White& white, const Tag& next);
    void addLine(std::size_t position, std::size_t depth);
    void makeMixed(Element& element);

    std::string_view text;
    const bool showNbsp;
    NameTable names;
    std::vector<Element> open;
    Tag before;
    std::string joined; ///< the last text with line ends, joined
    bool hasLines = false; ///< the text checked last contains line ends or tabs
    std::size_t gapBreaks = 0; ///< gaps at which the editor's own rules end a line
    std::size_t lateBlanks = 0; ///< line ends between elements, which are blanks if text follows
    std::vector<std::string_view> prefixes; ///< of namespaces, declared by the root
    struct Attribute
    {
        std::string_view name;
        std::string_view value;
    };
    std::vector<Attribute> attributes; ///< of the current tag
};

// ---------------------------------------------------------------- the text

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
        const bool isText = !std::ranges::all_of(piece, IsWhite);
        if (isText && (open.empty() || !checkText(from, next)))
            return false;
        const bool textHasLines = isText && hasLines;
        if (next == text.size())
            return rootClosed && open.empty();
        Tag tag;
        if (!readTag(next, tag) || (tag.facts->describes && next >= descriptionEnd))
            return false;
        White white;
        if (isText)
            takeText(piece, textHasLines, tag);
        else if (!takeWhite(white = whiteOf(piece), tag))
            return false;
        if (tag.kind == Kind::Comment)
            takeComment(white, tag);
        else if (rootClosed || (tag.kind == Kind::End ? !takeEnd(white, tag) : !takeStart(white, tag)))
            return false;
        before = tag;
        rootClosed = rootClosed || (open.empty() && tag.kind == Kind::End);
        outline.end = tag.end;
    }
}

/// Checks a text that is not blank.
bool Outliner::checkText(std::size_t at, std::size_t end)
{
    hasLines = false;
    while (at < end) {
#ifdef __SSE2__
        // Sixteen bytes that are plain ASCII, or characters of two bytes from U+0400 to U+04FF and similar.
        constexpr std::size_t Width = 16;
        while (at + Width <= end) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + at));
            const auto equals = [&bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
            // As signed bytes: 0x80 to 0xBF are the smallest, 0xC0 to 0xFF are -64 to -1.
            const __m128i trails = _mm_cmplt_epi8(bytes, _mm_set1_epi8(-64));
            const __m128i leads = _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8(char(0xC2))),
                                                _mm_cmplt_epi8(bytes, _mm_set1_epi8(char(0xE0))));
            const __m128i ascii = _mm_cmpgt_epi8(bytes, _mm_set1_epi8(0x1F));
            const __m128i special = _mm_or_si128(_mm_or_si128(equals('&'), equals('"')),
                                                 _mm_or_si128(equals('>'), equals(0x7F)));
            const auto good = static_cast<unsigned>(_mm_movemask_epi8(
                _mm_andnot_si128(special, _mm_or_si128(_mm_or_si128(trails, leads), ascii))));
            const auto trail = static_cast<unsigned>(_mm_movemask_epi8(trails));
            const auto lead = static_cast<unsigned>(_mm_movemask_epi8(leads));
            if (good != 0xFFFF || (trail & 0xFFFF) != ((lead << 1U) & 0xFFFF))
                break;
            at += Width - (lead >> 15U);
        }
        if (at >= end)
            break;
#endif
        if (text[at] == '\t' || text[at] == '\r' || text[at] == '\n') {
            hasLines = true;
            ++at;
        } else if (!checkCharacter(at, end, true)) {
            return false;
        }
    }
    return true;
}

/// Checks the reference at `at` and moves to the next character.
bool Outliner::checkReference(std::size_t& at, std::size_t end) const
{
    const std::string_view rest = text.substr(at, end - at);
    for (const std::string_view reference : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"}) {
        if (!rest.starts_with(reference))
            continue;
        // A quote after an equals sign may be painted as the start of a value.
        if (reference == "&quot;" && text[at - 1] == '=')
            return false;
        at += reference.size();
        return true;
    }
    const std::optional<XmlReference> numeric = NumericReference(rest);
    if (!numeric)
        return false;
    const std::uint32_t c = numeric->character;
    if (c <= ' ' || c == '"' || c == 0x7F || (c == 0xA0 && !showNbsp) || IsSpecialInDisplay(c)
        || !IsXmlCharacter(c))
        return false;
    at += numeric->length;
    return true;
}

bool Outliner::checkReferenceInTag(std::size_t& at, std::size_t end) const
{
    const std::string_view rest = text.substr(at, end - at);
    for (const std::string_view reference : {"&amp;", "&lt;", "&gt;"}) {
        if (rest.starts_with(reference)) {
            at += reference.size();
            // An ampersand before the text of a reference has another form in a display.
            return reference != "&amp;" || !IsTagReference(rest.substr(reference.size()));
        }
    }
    return false;
}

/// Checks the character at `at` and moves to the next one.
bool Outliner::checkCharacter(std::size_t& at, std::size_t end, bool inText) const
{
    const auto trails = [this, at, end](std::size_t count) {
        if (end - at <= count)
            return false;
        for (std::size_t i = 1; i <= count; ++i) {
            if ((static_cast<unsigned char>(text[at + i]) & 0xC0U) != 0x80)
                return false;
        }
        return true;
    };
    const auto byte = [this, at](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
    switch (ByteClasses[byte(0)]) {
    case Byte::Plain:
        ++at;
        return true;
    case Byte::Two:
        if (!trails(1))
            return false;
        at += 2;
        return true;
    case Byte::TwoSpecial:
        if (!trails(1) || (byte(1) == 0xA0 && !showNbsp))
            return false;
        at += 2;
        return true;
    case Byte::Three: {
        if (!trails(2))
            return false;
        const unsigned c = (byte(0) & 0x0FU) << 12U | (byte(1) & 0x3FU) << 6U | (byte(2) & 0x3FU);
        if (c < 0x800 || !IsXmlCharacter(c) || IsSpecialInDisplay(c))
            return false;
        at += 3;
        return true;
    }
    case Byte::Four: {
        if (!trails(3))
            return false;
        const unsigned c = (byte(0) & 0x07U) << 18U | (byte(1) & 0x3FU) << 12U;
        if (c < 0x10000 || c >= 0x110000)
            return false;
        at += 4;
        return true;
    }
    case Byte::Ampersand:
        return inText && checkReference(at, end);
    case Byte::Quote:
        if (!inText || text[at - 1] == '=')
            return false;
        ++at;
        return true;
    default:
        return false;
    }
}

// ---------------------------------------------------------------- tags

std::size_t Outliner::nameEnd(std::size_t at) const
{
    while (at < text.size() && IsNameByte(text[at]))
        ++at;
    return at;
}

bool Outliner::isKnownPrefix(std::string_view name) const
{
    const std::size_t colon = name.find(':');
    if (colon == None)
        return true;
    const std::string_view prefix = name.substr(0, colon);
    const std::string_view local = name.substr(colon + 1);
    if (local.empty() || !IsNameStart(local.front()) || local.find(':') != None)
        return false;
    return std::ranges::find(prefixes, prefix) != prefixes.end();
}

/// Reads the tag whose "<" is at `at`.
bool Outliner::readTag(std::size_t at, Tag& tag)
{
    tag.start = at;
    if (at + 1 < text.size() && text[at + 1] == '/')
        return readEndTag(at + 2, tag);
    if (text.substr(at).starts_with("<!--"))
        return readComment(at, tag);
    if (at + 1 >= text.size() || !IsNameStart(text[at + 1]))
        return false;
    const std::size_t end = nameEnd(at + 1);
    const std::string_view name = text.substr(at + 1, end - at - 1);
    tag.facts = names.find(name);
    if (tag.facts == nullptr || open.size() >= XmlMaxDepth)
        return false;
    attributes.clear();
    if (!readAttributes(end, tag))
        return false;
    const bool isRoot = open.empty();
    if (isRoot && (name != RootName || tag.kind == Kind::Empty))
        return false;
    if (!isRoot && name == RootName)
        return false;
    if (!attributes.empty() && !checkAttributes(isRoot))
        return false;
    return isKnownPrefix(name);
}

/// Reads a comment without mark-up and references.
bool Outliner::readComment(std::size_t at, Tag& tag)
{
    constexpr std::size_t FrontLength = 4;
    const std::size_t from = at + FrontLength;
    const std::size_t end = text.find("--", from);
    if (end == None || text.substr(end, 3) != "-->")
        return false;
    const std::string_view piece = text.substr(from, end - from);
    if (piece.find('&') != None || !checkText(from, end))
        return false;
    // The update of the description treats a comment with one of its names in another way.
    const std::string lower = LowerCase(std::string(piece));
    if (lower.find("author") != None
        || std::ranges::any_of(DescriptionNames,
                               [&lower](std::string_view name) { return lower.find(name) != None; }))
        return false;
    tag.kind = Kind::Comment;
    tag.end = end + 3;
    if (hasLines)
        outline.joinedWords += JoinComment(text.substr(at, tag.end - at), joined);
    return true;
}

/// \param at  the position of the name
bool Outliner::readEndTag(std::size_t at, Tag& tag)
{
    if (open.empty())
        return false;
    const std::string& name = open.back().facts->name;
    if (text.compare(at, name.size(), name) != 0)
        return false;
    tag.kind = Kind::End;
    tag.facts = open.back().facts;
    std::size_t end = at + name.size();
    tag.isBare = end < text.size() && text[end] == '>';
    if (!tag.isBare && (name == RootName || !readWhiteInTag(end) || end >= text.size() || text[end] != '>'))
        return false;
    tag.end = end + 1;
    return true;
}

/// Reads white space with at least one blank or tab: line ends alone would vanish from a tag.
bool Outliner::readWhiteInTag(std::size_t& at) const
{
    bool blank = false;
    for (; at < text.size() && IsWhite(text[at]); ++at)
        blank = blank || text[at] == ' ' || text[at] == '\t';
    return blank;
}

/// Reads the rest of a start tag.
/// \param at  the position after the name
bool Outliner::readAttributes(std::size_t at, Tag& tag)
{
    constexpr std::size_t MostAttributes = 8;
    tag.isBare = at < text.size() && (text[at] == '>' || text[at] == '/');
    while (at < text.size()) {
        if (text[at] == '>') {
            tag.kind = Kind::Start;
            tag.end = at + 1;
            return true;
        }
        if (text[at] == '/') {
            tag.kind = Kind::Empty;
            tag.end = at + 2;
            return at + 1 < text.size() && text[at + 1] == '>';
        }
        if (!readWhiteInTag(at) || at >= text.size())
            return false;
        if (text[at] == '>' || text[at] == '/')
            continue;
        if (!readAttribute(at) || attributes.size() > MostAttributes)
            return false;
    }
    return false;
}

bool Outliner::readAttribute(std::size_t& at)
{
    if (!IsNameStart(text[at]))
        return false;
    const std::size_t end = nameEnd(at);
    const std::string_view name = text.substr(at, end - at);
    if (end + 1 >= text.size() || text[end] != '=')
        return false;
    const char quote = text[end + 1];
    if (quote != '"' && quote != '\'')
        return false;
    const std::size_t close = text.find(quote, end + 2);
    if (close == None)
        return false;
    attributes.push_back({name, text.substr(end + 2, close - end - 2)});
    at = close + 1;
    return checkValue(attributes.back().value);
}

/// Checks a value: without mark-up, quotes, and white space that a parser would change.
bool Outliner::checkValue(std::string_view value) const
{
    if (value.ends_with('=') || value.find("  ") != None)
        return false;
    auto at = static_cast<std::size_t>(value.data() - text.data());
    for (const std::size_t end = at + value.size(); at < end;) {
        if (text[at] != '&' ? !checkCharacter(at, end, false) : !checkReferenceInTag(at, end))
            return false;
    }
    return true;
}

/// Checks the names of the attributes and the namespaces that they declare.
bool Outliner::checkAttributes(bool isRoot)
{
    constexpr std::string_view Declaration = "xmlns:";
    for (const Attribute& attribute : attributes) {
        const bool declares = attribute.name.starts_with(Declaration);
        if (declares || attribute.name == "xmlns") {
            // The namespaces of XML itself have only their own prefixes.
            if (attribute.value.find("www.w3.org/XML") != None
                || attribute.value.find("www.w3.org/2000/xmlns") != None)
                return false;
        }
        if (!declares)
            continue;
        const std::string_view prefix = attribute.name.substr(Declaration.size());
        if (!isRoot || prefix.empty() || !IsNameStart(prefix.front()) || prefix.find(':') != None
            || (prefix.size() >= 3 && EqualInAnyCase(prefix.substr(0, 3), "xml")) || attribute.value.empty())
            return false;
        prefixes.push_back(prefix);
    }
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const std::string_view name = attributes[i].name;
        const bool declares = name.starts_with(Declaration);
        if (name.starts_with("xml:") && name != "xml:lang")
            return false;
        if (!declares && name != "xml:lang" && !isKnownPrefix(name))
            return false;
        const std::string_view local = name.substr(name.find(':') + 1);
        for (std::size_t k = 0; k < i; ++k) {
            const std::string_view other = attributes[k].name;
            // Two prefixes may mean the same namespace.
            const bool bothPrefixed = name.find(':') != None && other.find(':') != None && !declares
                && !other.starts_with(Declaration);
            if (other == name || (bothPrefixed && other.substr(other.find(':') + 1) == local))
                return false;
        }
    }
    return true;
}

// ---------------------------------------------------------------- lines

auto Outliner::whiteOf(std::string_view piece) -> White
{
    White white;
    white.any = !piece.empty();
    for (const char c : piece) {
        white.blank = white.blank || c == ' ';
        white.tab = white.tab || c == '\t';
        white.lineEnd = white.lineEnd || c == '\r' || c == '\n';
    }
    return white;
}

/// The line ends that the editor's own rules insert after a tag, before it counts the next one.
int Outliner::breaksOf(const Tag& tag)
{
    return tag.kind == Kind::End || tag.kind == Kind::Empty ? 1 : 0;
}

/// Whether the editor's own rules end a line between the last tag and this one; see `LineEndsAfter`.
bool Outliner::lineEndsBetween(const White& white, const Tag& next) const
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
        breaks -= next.kind == Kind::Start ? next.facts->startBefore
            : next.kind == Kind::End       ? next.facts->endBefore
                                           : next.facts->emptyBefore;
    return breaks > 0;
}

/// Handles the text between the last tag and the next one.
void Outliner::takeText(std::string_view piece, bool withLines, const Tag& next)
{
    if (withLines) {
        const TextSides sides{before.kind != Kind::Start || before.facts->isInLineWord,
                              next.kind != Kind::End || next.facts->isInLineWord};
        outline.joinedWords += JoinText(piece, sides, joined);
    }
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

/// Handles the white space, or none, between the last tag and this one.
bool Outliner::takeWhite(const White& white, const Tag& next)
{
    gapBreaks += lineEndsBetween(white, next) ? 1 : 0;
    if (!white.any || open.empty())
        return true;
    Element& parent = open.back();
    parent.wordsAfter = false;
    if (!white.lineEnd || white.blank || white.tab)
        return true;
    const bool empties = before.kind == Kind::Start && next.kind == Kind::End;
    const bool isEdge = (before.kind == Kind::Start && !before.facts->isInLineWord)
        || (next.kind == Kind::End && !next.facts->isInLineWord);
    if (empties || isEdge)
        return true;
    if (parent.hasText || (before.facts->isInLineWord && next.facts->isInLineWord))
        return false;
    ++lateBlanks;
    // Whether the two elements count as adjacent depends on the elements around them.
    return !parent.facts->isText;
}

void Outliner::takeComment(const White& white, const Tag& tag)
{
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

bool Outliner::takeStart(const White& white, const Tag& tag)
{
    const bool isEmpty = tag.kind == Kind::Empty;
    if (open.empty()) {
        addLine(tag.start, 0);
    } else {
        Element& parent = open.back();
        parent.wordsContent = true;
        parent.wordsTouching = parent.wordsTouching || parent.wordsAfter;
        parent.wordsAfter = true;

        parent.touching = parent.touching || (parent.afterElement && !white.any);
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

bool Outliner::takeEnd(const White& white, const Tag& tag)
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
        if (lateBlanks > element.firstBlank)
            return false;
        outline.tornTexts += gapBreaks - element.firstGap;
        gapBreaks = element.firstGap;
    }
    lateBlanks = element.firstBlank;
    return true;
}

void Outliner::settleWhite(Element& parent, const White& white, const Tag& next)
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

/// True if each entry is the tag of an element without attributes.
bool AreBareTags(const InLineTagSet& inLineTags)
{
    return !inLineTags.hasEmptyEntry() && inLineTags.isPlain()
        && std::ranges::all_of(inLineTags.entries(), [](std::string_view entry) {
               entry = entry.substr(1, entry.size() - 2);
               if (entry.starts_with('/'))
                   entry.remove_prefix(1);
               else if (entry.ends_with('/'))
                   entry.remove_suffix(1);
               return !entry.empty() && IsNameStart(entry.front()) && std::ranges::all_of(entry, IsNameByte);
           });
}

} // namespace

std::size_t JoinText(std::string_view text, TextSides sides, std::string& joined)
{
    // As `KeptTreeLines` joins the lines of a text.
    joined.clear();
    std::size_t words = 0;
    const auto endsWhite = [&joined] { return joined.ends_with(' ') || joined.ends_with('\t'); };
    bool lineEnded = false;
    bool isFirst = true;
    for (const char c : text) {
        if (c == '\r' || c == '\n') {
            lineEnded = true;
            continue;
        }
        if (lineEnded && !IsWhite(c) && !endsWhite() && (!isFirst || sides.wordBefore)) {
            joined += ' ';
            ++words;
        }
        if (c != ' ' || !joined.ends_with(' '))
            joined += c;
        isFirst = isFirst && IsWhite(c);
        lineEnded = lineEnded && c == ' ';
    }
    if (lineEnded && !endsWhite() && sides.wordAfter) {
        joined += ' ';
        ++words;
    }
    return words;
}

std::size_t JoinComment(std::string_view comment, std::string& joined)
{
    constexpr std::size_t FrontLength = 4;
    constexpr std::size_t EndLength = 3;
    const std::size_t back = comment.size() - EndLength;
    joined.clear();
    std::size_t words = 0;
    bool lineEnded = false;
    for (std::size_t i = 0; i < comment.size(); ++i) {
        const char c = comment[i];
        if (c == '\r' || c == '\n') {
            lineEnded = true;
            continue;
        }
        const bool atEdge = joined.size() <= FrontLength || i >= back;
        if (lineEnded && !IsWhite(c) && !joined.ends_with(' ') && !joined.ends_with('\t') && !atEdge) {
            joined += ' ';
            ++words;
        }
        if (c != ' ' || !joined.ends_with(' '))
            joined += c;
        lineEnded = lineEnded && c == ' ';
    }
    return words;
}

std::optional<BookOutline> OutlineOf(std::string_view text, std::size_t start, std::size_t descriptionEnd,
                                     const InLineTagSet& inLineTags, bool showNbsp)
{
    constexpr std::size_t MostBytes = std::size_t(1) << 39U;
    if (!AreBareTags(inLineTags) || text.size() > MostBytes)
        return std::nullopt;
    Outliner outliner(text, inLineTags, showNbsp);
    if (!outliner.run(start, descriptionEnd))
        return std::nullopt;
    outliner.outline.inLineNames = inLineTags.elementNames();
    outliner.outline.wordNames = WordNames(inLineTags);
    return std::move(outliner.outline);
}

} // namespace vmk
