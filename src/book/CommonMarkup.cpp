#include "CommonMarkup.h"

#include "PaintedNames.h"
#include "TextFunctions.h"
#include "Utf8.h"
#include "XmlReference.h"
#include "XmlSaxReader.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace vmk {

namespace {

constexpr std::size_t None = std::string_view::npos;
constexpr std::string_view RootName = "FictionBook";
constexpr std::string_view PrefixDeclaration = "xmlns:";

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
    Angle, ///< ">"
    Other ///< white space except blanks, control characters, "<", no first byte of a character
};

constexpr std::array<Byte, 256> ClassesOfBytes()
{
    std::array<Byte, 256> classes{};
    for (std::size_t i = 0; i < classes.size(); ++i) {
        if (i < 0x20 || i == '<' || i == 0x7F || (i >= 0x80 && i < 0xC2) || i >= 0xF5)
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
    classes['>'] = Byte::Angle;
    return classes;
}

constexpr std::array<Byte, 256> ByteClasses = ClassesOfBytes();

constexpr bool IsTrail(unsigned char byte)
{
    return (byte & 0xC0U) == 0x80;
}

/// True for a character that may occur in XML; control characters are tested elsewhere.
constexpr bool IsXmlCharacter(std::uint32_t c)
{
    return c < 0xD800 || (c >= 0xE000 && c < 0xFFFE) || (c >= 0x10000 && c < 0x110000);
}

constexpr bool IsAngleQuote(std::uint32_t c)
{
    return c == 0x2039 || c == 0x203A;
}

constexpr std::uint32_t Guard = 0xFE0C; ///< `DisplayGuard`

/// True for the characters of a painted name, which a reference would hide from `NameBeforeEquals`.
constexpr bool IsNamePart(std::uint32_t c)
{
    return (c >= 'a' && c <= 'z') || c == ':' || c == '=';
}

/// Returns the position of a painted name before an equals sign at the end of a text, whatever is before the
/// name.
std::size_t NameBeforeEquals(std::string_view text)
{
    if (!text.ends_with('='))
        return None;
    text.remove_suffix(1);
    std::size_t start = None;
    const auto look = [&](std::string_view name) {
        if (text.ends_with(name))
            start = text.size() - name.size();
    };
    std::ranges::for_each(PaintedAttributes, look);
    std::ranges::for_each(PaintedNamespaces, look);
    return start;
}

} // namespace

// ---------------------------------------------------------------- texts

/// Skips plain ASCII and characters of two bytes, sixteen bytes at a time; stops early.
std::size_t CommonMarkup::skipPlain(std::size_t at, [[maybe_unused]] std::size_t end) const
{
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
        const __m128i special
            = _mm_or_si128(_mm_or_si128(equals('&'), equals('"')), _mm_or_si128(equals('>'), equals(0x7F)));
        const auto good = static_cast<unsigned>(
            _mm_movemask_epi8(_mm_andnot_si128(special, _mm_or_si128(_mm_or_si128(trails, leads), ascii))));
        const auto trail = static_cast<unsigned>(_mm_movemask_epi8(trails));
        const auto lead = static_cast<unsigned>(_mm_movemask_epi8(leads));
        if (good != 0xFFFF || (trail & 0xFFFF) != ((lead << 1U) & 0xFFFF))
            break;
        at += Width - (lead >> 15U);
    }
#endif
    return at;
}

bool CommonMarkup::checkText(std::size_t at, std::size_t end, TextFeatures& features)
{
    const std::size_t start = textStart = at;
    inPaintedValue = false;
    while ((at = skipPlain(at, end)) < end) {
        if (text[at] == '\t' || text[at] == '\r' || text[at] == '\n') {
            features.hasLines = true;
            ++at;
        } else if (text[at] == '>') {
            // "]]>" is an error.
            if (text.substr(start, at - start).ends_with("]]"))
                return false;
            features.hasAngles = true;
            ++at;
        } else if (!checkCharacter(at, end, true)) {
            return false;
        }
    }
    return !inPaintedValue;
}

/// Checks a double quote of a text. A display paints names and values in texts too. A value has to end in the
/// text in which it begins, and the blank before a name has to be the same if the lines are joined.
/// \param at  the position of the quote
bool CommonMarkup::takeQuote(std::size_t at)
{
    const std::string_view before = text.substr(textStart, at - textStart);
    const std::size_t name = NameBeforeEquals(before);
    const bool ends = std::exchange(inPaintedValue, false);
    if (name == None || name == 0)
        return true;
    const bool isSafe
        = before[name - 1] == ' ' ? name > 1 && !IsXmlWhite(before[name - 2]) : !IsXmlWhite(before[name - 1]);
    const std::optional<PaintedName> painted = PaintedNameAtEnd(before);
    inPaintedValue = painted && painted->withValue;
    return isSafe && !(ends && painted);
}

/// Checks the reference at `at` and moves to the next character.
bool CommonMarkup::checkReference(std::size_t& at, std::size_t end)
{
    const std::string_view rest = text.substr(at, end - at);
    for (const std::string_view reference : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"}) {
        if (!rest.starts_with(reference))
            continue;
        if (reference == "&quot;" && !takeQuote(at))
            return false;
        at += reference.size();
        return true;
    }
    const std::optional<XmlReference> numeric = NumericReference(rest);
    if (!numeric)
        return false;
    const std::uint32_t c = numeric->character;
    if (c == '"' && !takeQuote(at))
        return false;
    if (c <= ' ' || c == 0x7F || IsNamePart(c) || (c == 0xA0 && !showNbsp) || IsAngleQuote(c) || c == Guard
        || !IsXmlCharacter(c))
        return false;
    at += numeric->length;
    return true;
}

bool CommonMarkup::checkReferenceInTag(std::size_t& at, std::size_t end) const
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

/// Checks a character of three or four bytes.
bool CommonMarkup::checkLongCharacter(std::size_t& at, std::size_t end)
{
    const Utf8Character read = DecodeUtf8(text.substr(at, end - at));
    if (read.length == 0 || !IsXmlCharacter(read.character) || read.character == Guard)
        return false;
    met.angleQuotes += IsAngleQuote(read.character) ? 1 : 0;
    at += read.length;
    return true;
}

/// Checks the character at `at` and moves to the next one.
bool CommonMarkup::checkCharacter(std::size_t& at, std::size_t end, bool inText)
{
    const auto byte = [this, at](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
    switch (ByteClasses[byte(0)]) {
    case Byte::Plain:
        ++at;
        return true;
    case Byte::Two:
    case Byte::TwoSpecial:
        if (end - at < 2 || !IsTrail(byte(1)))
            return false;
        met.nonBreaking += byte(0) == 0xC2 && byte(1) == 0xA0 && !showNbsp ? 1 : 0;
        at += 2;
        return true;
    case Byte::Three:
    case Byte::Four:
        return checkLongCharacter(at, end);
    case Byte::Ampersand:
        return inText && checkReference(at, end);
    case Byte::Quote:
        if (!inText || !takeQuote(at))
            return false;
        ++at;
        return true;
    default:
        return false;
    }
}

// ---------------------------------------------------------------- tags

std::size_t CommonMarkup::nameEnd(std::size_t at) const
{
    while (at < text.size() && IsTagNameByte(text[at]))
        ++at;
    return at;
}

bool CommonMarkup::isKnownPrefix(std::string_view name) const
{
    const std::size_t colon = name.find(':');
    if (colon == None)
        return true;
    const std::string_view prefix = name.substr(0, colon);
    const std::string_view local = name.substr(colon + 1);
    if (local.empty() || !IsTagNameStart(local.front()) || local.find(':') != None)
        return false;
    return std::ranges::find(prefixes, prefix, &Prefix::name) != prefixes.end();
}

bool CommonMarkup::readToken(std::size_t at, std::size_t depth, const ElementFacts* around,
                             CommonToken& token)
{
    token.start = at;
    if (at + 1 >= text.size())
        return false;
    if (text[at + 1] == '/')
        return around != nullptr && readEndTag(at + 2, *around, token);
    if (text[at + 1] == '!')
        return readComment(at, token);
    if (!IsTagNameStart(text[at + 1]))
        return false;
    const std::size_t end = nameEnd(at + 1);
    const std::string_view name = text.substr(at + 1, end - at - 1);
    token.facts = elements.find(name);
    if (token.facts == nullptr)
        return false;
    attributes.clear();
    while (!prefixes.empty() && prefixes.back().depth >= depth)
        prefixes.pop_back();
    if (!readAttributes(end, token))
        return false;
    const bool isRoot = depth == 0;
    if (isRoot != (name == RootName) || (isRoot && token.kind == CommonToken::Kind::Empty))
        return false;
    return (attributes.empty() || checkAttributes(depth)) && isKnownPrefix(name);
}

/// Reads a comment without mark-up and references.
bool CommonMarkup::readComment(std::size_t at, CommonToken& token)
{
    constexpr std::string_view Front = "<!--";
    constexpr std::string_view End = "-->";
    if (!text.substr(at).starts_with(Front))
        return false;
    const std::size_t from = at + Front.size();
    const std::size_t end = text.find("--", from);
    if (end == None || !text.substr(end).starts_with(End))
        return false;
    const std::string_view piece = text.substr(from, end - from);
    TextFeatures features;
    if (piece.find_first_of("&<>") != None || !checkText(from, end, features))
        return false;
    token.hasLines = features.hasLines;
    // The update of the description treats a comment with one of its names in another way.
    const std::string lower = LowerCase(std::string(piece));
    const auto contains = [&lower](std::string_view name) { return lower.find(name) != None; };
    if (contains("author") || std::ranges::any_of(DescriptionNames, contains))
        return false;
    token.kind = CommonToken::Kind::Comment;
    token.end = end + End.size();
    return true;
}

/// \param at       the position of the name
/// \param element  the one that ends
bool CommonMarkup::readEndTag(std::size_t at, const ElementFacts& element, CommonToken& token) const
{
    const std::string& name = element.name;
    token.facts = &element;
    if (!text.substr(at).starts_with(name))
        return false;
    token.kind = CommonToken::Kind::End;
    std::size_t end = at + name.size();
    token.isBare = end < text.size() && text[end] == '>';
    if (!token.isBare && (name == RootName || !readWhiteInTag(end) || end >= text.size() || text[end] != '>'))
        return false;
    token.end = end + 1;
    return true;
}

/// Reads white space with at least one blank or tab: line ends alone would vanish from a tag.
bool CommonMarkup::readWhiteInTag(std::size_t& at) const
{
    bool blank = false;
    for (; at < text.size() && IsXmlWhite(text[at]); ++at)
        blank = blank || text[at] == ' ' || text[at] == '\t';
    return blank;
}

/// Reads the rest of a start tag.
/// \param at  the position after the name
bool CommonMarkup::readAttributes(std::size_t at, CommonToken& token)
{
    constexpr std::size_t MostAttributes = 8;
    token.isBare = at < text.size() && (text[at] == '>' || text[at] == '/');
    while (at < text.size()) {
        if (text[at] == '>') {
            token.kind = CommonToken::Kind::Start;
            token.end = at + 1;
            return true;
        }
        if (text[at] == '/') {
            token.kind = CommonToken::Kind::Empty;
            token.end = at + 2;
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

bool CommonMarkup::readAttribute(std::size_t& at)
{
    if (!IsTagNameStart(text[at]))
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
bool CommonMarkup::checkValue(std::string_view value)
{
    if (NameBeforeEquals(value) != None || value.find("  ") != None)
        return false;
    auto at = static_cast<std::size_t>(value.data() - text.data());
    for (const std::size_t end = at + value.size(); at < end;) {
        if (text[at] != '&' ? !checkCharacter(at, end, false) : !checkReferenceInTag(at, end))
            return false;
    }
    return true;
}

/// Checks the names of the attributes and the namespaces that they declare.
bool CommonMarkup::checkAttributes(std::size_t depth)
{
    for (const Attribute& attribute : attributes) {
        if (attribute.name.starts_with("xmlns") && !takePrefix(attribute, depth))
            return false;
    }
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const std::string_view name = attributes[i].name;
        const bool isKnown = name.starts_with(PrefixDeclaration) || name == "xml:lang"
            || (!name.starts_with("xml:") && isKnownPrefix(name));
        if (!isKnown || !isUnique(i))
            return false;
    }
    return true;
}

/// Checks the declaration of a namespace.
/// \param depth  of the element
bool CommonMarkup::takePrefix(const Attribute& attribute, std::size_t depth)
{
    // The namespaces of XML itself have only their own prefixes.
    if (attribute.value.find("www.w3.org/XML") != None
        || attribute.value.find("www.w3.org/2000/xmlns") != None)
        return false;
    if (!attribute.name.starts_with(PrefixDeclaration))
        return true;
    const std::string_view prefix = attribute.name.substr(PrefixDeclaration.size());
    if (prefix.empty() || !IsTagNameStart(prefix.front()) || prefix.find(':') != None
        || LowerCase(std::string(prefix)).starts_with("xml") || attribute.value.empty())
        return false;
    prefixes.push_back({prefix, depth});
    return true;
}

/// Compares an attribute with those before it. Two prefixes may mean the same namespace.
bool CommonMarkup::isUnique(std::size_t index) const
{
    const auto prefixLength = [](std::string_view name) {
        return name.starts_with(PrefixDeclaration) || name.find(':') == None ? 0 : name.find(':') + 1;
    };
    const std::string_view name = attributes[index].name;
    const std::size_t prefix = prefixLength(name);
    for (std::size_t i = 0; i < index; ++i) {
        const std::string_view other = attributes[i].name;
        const std::size_t otherPrefix = prefixLength(other);
        if (other == name
            || (prefix > 0 && otherPrefix > 0 && other.substr(otherPrefix) == name.substr(prefix)))
            return false;
    }
    return true;
}

} // namespace vmk
