#include "CodePages.h"

#include "LargeBuffers.h"
#include "Utf8.h"

#include <QChar>
#include <QLocale>
#include <QStringConverter>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace vmk {
namespace {

// ---------------------------------------------------------------- the pages

using HighHalf = std::array<char16_t, 128>;

constexpr HighHalf Page1250 = {
    0x20ac, 0x0081, 0x201a, 0x0083, 0x201e, 0x2026, 0x2020, 0x2021, 0x0088, 0x2030, 0x0160, 0x2039, 0x015a,
    0x0164, 0x017d, 0x0179, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014, 0x0098, 0x2122,
    0x0161, 0x203a, 0x015b, 0x0165, 0x017e, 0x017a, 0x00a0, 0x02c7, 0x02d8, 0x0141, 0x00a4, 0x0104, 0x00a6,
    0x00a7, 0x00a8, 0x00a9, 0x015e, 0x00ab, 0x00ac, 0x00ad, 0x00ae, 0x017b, 0x00b0, 0x00b1, 0x02db, 0x0142,
    0x00b4, 0x00b5, 0x00b6, 0x00b7, 0x00b8, 0x0105, 0x015f, 0x00bb, 0x013d, 0x02dd, 0x013e, 0x017c, 0x0154,
    0x00c1, 0x00c2, 0x0102, 0x00c4, 0x0139, 0x0106, 0x00c7, 0x010c, 0x00c9, 0x0118, 0x00cb, 0x011a, 0x00cd,
    0x00ce, 0x010e, 0x0110, 0x0143, 0x0147, 0x00d3, 0x00d4, 0x0150, 0x00d6, 0x00d7, 0x0158, 0x016e, 0x00da,
    0x0170, 0x00dc, 0x00dd, 0x0162, 0x00df, 0x0155, 0x00e1, 0x00e2, 0x0103, 0x00e4, 0x013a, 0x0107, 0x00e7,
    0x010d, 0x00e9, 0x0119, 0x00eb, 0x011b, 0x00ed, 0x00ee, 0x010f, 0x0111, 0x0144, 0x0148, 0x00f3, 0x00f4,
    0x0151, 0x00f6, 0x00f7, 0x0159, 0x016f, 0x00fa, 0x0171, 0x00fc, 0x00fd, 0x0163, 0x02d9,
};

constexpr HighHalf Page1251 = {
    0x0402, 0x0403, 0x201a, 0x0453, 0x201e, 0x2026, 0x2020, 0x2021, 0x20ac, 0x2030, 0x0409, 0x2039, 0x040a,
    0x040c, 0x040b, 0x040f, 0x0452, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014, 0x0098, 0x2122,
    0x0459, 0x203a, 0x045a, 0x045c, 0x045b, 0x045f, 0x00a0, 0x040e, 0x045e, 0x0408, 0x00a4, 0x0490, 0x00a6,
    0x00a7, 0x0401, 0x00a9, 0x0404, 0x00ab, 0x00ac, 0x00ad, 0x00ae, 0x0407, 0x00b0, 0x00b1, 0x0406, 0x0456,
    0x0491, 0x00b5, 0x00b6, 0x00b7, 0x0451, 0x2116, 0x0454, 0x00bb, 0x0458, 0x0405, 0x0455, 0x0457, 0x0410,
    0x0411, 0x0412, 0x0413, 0x0414, 0x0415, 0x0416, 0x0417, 0x0418, 0x0419, 0x041a, 0x041b, 0x041c, 0x041d,
    0x041e, 0x041f, 0x0420, 0x0421, 0x0422, 0x0423, 0x0424, 0x0425, 0x0426, 0x0427, 0x0428, 0x0429, 0x042a,
    0x042b, 0x042c, 0x042d, 0x042e, 0x042f, 0x0430, 0x0431, 0x0432, 0x0433, 0x0434, 0x0435, 0x0436, 0x0437,
    0x0438, 0x0439, 0x043a, 0x043b, 0x043c, 0x043d, 0x043e, 0x043f, 0x0440, 0x0441, 0x0442, 0x0443, 0x0444,
    0x0445, 0x0446, 0x0447, 0x0448, 0x0449, 0x044a, 0x044b, 0x044c, 0x044d, 0x044e, 0x044f,
};

constexpr HighHalf Page1252 = {
    0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160, 0x2039, 0x0152,
    0x008d, 0x017d, 0x008f, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014, 0x02dc, 0x2122,
    0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178, 0x00a0, 0x00a1, 0x00a2, 0x00a3, 0x00a4, 0x00a5, 0x00a6,
    0x00a7, 0x00a8, 0x00a9, 0x00aa, 0x00ab, 0x00ac, 0x00ad, 0x00ae, 0x00af, 0x00b0, 0x00b1, 0x00b2, 0x00b3,
    0x00b4, 0x00b5, 0x00b6, 0x00b7, 0x00b8, 0x00b9, 0x00ba, 0x00bb, 0x00bc, 0x00bd, 0x00be, 0x00bf, 0x00c0,
    0x00c1, 0x00c2, 0x00c3, 0x00c4, 0x00c5, 0x00c6, 0x00c7, 0x00c8, 0x00c9, 0x00ca, 0x00cb, 0x00cc, 0x00cd,
    0x00ce, 0x00cf, 0x00d0, 0x00d1, 0x00d2, 0x00d3, 0x00d4, 0x00d5, 0x00d6, 0x00d7, 0x00d8, 0x00d9, 0x00da,
    0x00db, 0x00dc, 0x00dd, 0x00de, 0x00df, 0x00e0, 0x00e1, 0x00e2, 0x00e3, 0x00e4, 0x00e5, 0x00e6, 0x00e7,
    0x00e8, 0x00e9, 0x00ea, 0x00eb, 0x00ec, 0x00ed, 0x00ee, 0x00ef, 0x00f0, 0x00f1, 0x00f2, 0x00f3, 0x00f4,
    0x00f5, 0x00f6, 0x00f7, 0x00f8, 0x00f9, 0x00fa, 0x00fb, 0x00fc, 0x00fd, 0x00fe, 0x00ff,
};

// The nearest characters where decomposition does not find them, sorted by the left side. The right side may
// need a substitute itself, so that one entry serves different pages.
constexpr std::pair<char16_t, char16_t> Nearest[] = {
    {0x00a1, u'!'},   {0x00a2, u'c'},   {0x00a3, u'L'},   {0x00a5, u'Y'},   {0x00af, u'-'},
    {0x00b4, 0x2019}, {0x00b8, u','},   {0x00c6, u'A'},   {0x00d0, 0x0110}, {0x00d7, u'x'},
    {0x00d8, u'O'},   {0x00de, u'T'},   {0x00df, u's'},   {0x00e6, u'a'},   {0x00f0, 0x0111},
    {0x00f7, u':'},   {0x00f8, u'o'},   {0x00fe, u't'},   {0x0110, u'D'},   {0x0111, u'd'},
    {0x0126, u'H'},   {0x0127, u'h'},   {0x0131, u'i'},   {0x0138, u'k'},   {0x0141, u'L'},
    {0x0142, u'l'},   {0x014a, u'N'},   {0x014b, u'n'},   {0x0152, u'O'},   {0x0153, u'o'},
    {0x0166, u'T'},   {0x0167, u't'},   {0x0192, u'f'},   {0x0218, 0x015e}, {0x0219, 0x015f},
    {0x021a, 0x0162}, {0x021b, 0x0163}, {0x0237, u'j'},   {0x02b9, 0x2019}, {0x02ba, 0x201d},
    {0x02bb, 0x2018}, {0x02bc, 0x2019}, {0x02c6, u'^'},   {0x02ca, 0x00b4}, {0x02cb, u'`'},
    {0x02cd, u'_'},   {0x02d7, u'-'},   {0x02dc, u'~'},   {0x0300, 0x02cb}, {0x0301, 0x00b4},
    {0x0302, 0x02c6}, {0x0303, 0x02dc}, {0x0304, 0x00af}, {0x0308, 0x00a8}, {0x0327, 0x00b8},
    {0x0393, u'G'},   {0x0398, u'T'},   {0x03a3, u'S'},   {0x03a6, u'F'},   {0x03a9, u'O'},
    {0x03b1, u'a'},   {0x03b4, u'd'},   {0x03b5, u'e'},   {0x03bc, 0x00b5}, {0x03c0, u'p'},
    {0x03c3, u's'},   {0x03c4, u't'},   {0x03c6, u'f'},   {0x1680, 0x0020}, {0x1e9e, u'S'},
    {0x2007, 0x00a0}, {0x2010, u'-'},   {0x2011, u'-'},   {0x2012, 0x2013}, {0x2015, 0x2014},
    {0x2017, u'_'},   {0x201b, 0x2018}, {0x201f, 0x201c}, {0x2023, 0x2022}, {0x2024, u'.'},
    {0x202f, 0x00a0}, {0x2032, 0x2019}, {0x2033, 0x201d}, {0x2035, 0x2018}, {0x2036, 0x201c},
    {0x203e, 0x00af}, {0x2043, u'-'},   {0x2044, u'/'},   {0x2116, u'N'},   {0x2212, u'-'},
    {0x2215, u'/'},   {0x2216, u'\\'},  {0x2217, u'*'},   {0x2219, 0x00b7}, {0x2223, u'|'},
    {0x2236, u':'},   {0x223c, u'~'},   {0x22c5, 0x00b7}, {0x22ef, 0x2026}, {0x25cf, 0x2022},
    {0x2e3a, 0x2014}, {0x2e3b, 0x2014},
};
static_assert(std::is_sorted(std::begin(Nearest), std::end(Nearest)));

/// The only character that remains of a decomposition without its accents, or 0. A stroke through a sign
/// (U+0338, as in "not equal") is not an accent: without it the sign would mean the opposite.
char16_t BaseCharacter(char16_t unit)
{
    constexpr char16_t LongStroke = 0x0338;
    const QString parts = QChar::decomposition(unit);
    char16_t base = 0;
    for (const QChar part : parts) {
        if (part.category() == QChar::Mark_NonSpacing && part != QChar(LongStroke))
            continue;
        if (base != 0 || part.isSurrogate())
            return 0;
        base = part.unicode();
    }
    const bool lostItsAccent = base == u' ' && parts.size() > 1;
    return lostItsAccent ? char16_t{0} : base;
}

char16_t NearestCharacter(char16_t unit)
{
    const auto found = std::lower_bound(std::begin(Nearest), std::end(Nearest), std::pair(unit, char16_t{0}));
    if (found != std::end(Nearest) && found->first == unit)
        return found->second;
    return BaseCharacter(unit);
}

bool IsMarkUpCharacter(char16_t c)
{
    return c == u'<' || c == u'>' || c == u'&' || c == u'"' || c == u'\'';
}

/// East Asian letters, surrogates and private-use characters: none resembles a character of the pages.
bool ResemblesNothing(size_t unit)
{
    return unit >= 0x3400 && unit < 0xf900;
}

/// Writes a character as UTF-8 and returns its length in bytes.
size_t WriteUtf8(char32_t c, char* to)
{
    const auto trail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3f)); };
    if (c < 0x80) {
        to[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        to[0] = static_cast<char>(0xc0 | c >> 6);
        to[1] = trail(0);
        return 2;
    }
    to[0] = static_cast<char>(0xe0 | c >> 12);
    to[1] = trail(6);
    to[2] = trail(0);
    return 3;
}

/// A single-byte page prepared for conversion in both directions.
struct Page
{
    const HighHalf& high;
    /// For each byte: its UTF-8 form, padded to four bytes, and the length of the form.
    std::array<std::array<char, 4>, 256> utf8{};
    std::array<uint8_t, 256> utf8Length{};
    /// For each UTF-16 code unit: its byte or its substitute.
    std::vector<char> byteOfUnit;

    explicit Page(const HighHalf& highHalf);

    [[nodiscard]] char16_t character(size_t byte) const
    {
        return byte < 128 ? static_cast<char16_t>(byte) : high[byte - 128];
    }
    [[nodiscard]] std::optional<unsigned char> exactByte(char32_t wanted) const;

private:
    [[nodiscard]] char substitute(char16_t unit) const;
};

Page::Page(const HighHalf& highHalf)
    : high(highHalf)
    , byteOfUnit(0x10000, '?')
{
    for (size_t unit = 0x80; unit < byteOfUnit.size(); ++unit) {
        if (!ResemblesNothing(unit))
            byteOfUnit[unit] = substitute(static_cast<char16_t>(unit));
    }
    for (size_t byte = 0; byte < 256; ++byte) {
        utf8Length[byte] = static_cast<uint8_t>(WriteUtf8(character(byte), utf8[byte].data()));
        byteOfUnit[character(byte)] = static_cast<char>(byte);
    }
}

std::optional<unsigned char> Page::exactByte(char32_t wanted) const
{
    if (wanted < 128)
        return static_cast<unsigned char>(wanted);
    const auto found = std::find(high.begin(), high.end(), wanted);
    if (found == high.end())
        return std::nullopt;
    return static_cast<unsigned char>(128 + (found - high.begin()));
}

char Page::substitute(char16_t unit) const
{
    constexpr int LongestWay = 4;
    for (int step = 0; step < LongestWay; ++step) {
        unit = NearestCharacter(unit);
        if (unit == 0 || IsMarkUpCharacter(unit))
            break;
        if (const auto byte = exactByte(unit))
            return static_cast<char>(*byte);
    }
    return '?';
}

int KnownCodePage(int codePage)
{
    switch (codePage) {
    case CodePageCentralEurope:
    case CodePageCyrillic:
    case CodePageWestern:
    case CodePageUtf16:
    case CodePageUtf8:
        return codePage;
    default:
        return SystemCodePage();
    }
}

/// The prepared page, or null for UTF-8 and UTF-16. Each is created on first use.
const Page* SingleBytePage(int codePage)
{
    switch (KnownCodePage(codePage)) {
    case CodePageCentralEurope: {
        static const Page page(Page1250);
        return &page;
    }
    case CodePageCyrillic: {
        static const Page page(Page1251);
        return &page;
    }
    case CodePageWestern: {
        static const Page page(Page1252);
        return &page;
    }
    default:
        return nullptr;
    }
}

// ---------------------------------------------------------------- byte runs

bool IsAscii(const char* eight)
{
    uint64_t word = 0;
    std::memcpy(&word, eight, sizeof word);
    return (word & 0x8080808080808080U) == 0;
}

/// The length of the initial ASCII run in whole steps of 16; the caller handles the rest.
size_t AsciiRun(const char* from, const char* end)
{
    const char* at = from;
    while (end - at >= 16 && IsAscii(at) && IsAscii(at + 8))
        at += 16;
    return static_cast<size_t>(at - from);
}

/// The same as `ValidUtf8Prefix`, character by character.
size_t ValidCharacters(std::string_view bytes)
{
    const char* from = bytes.data();
    const char* const end = from + bytes.size();
    while (from != end) {
        from += AsciiRun(from, end);
        if (from == end)
            break;
        if (static_cast<unsigned char>(*from) < 0x80) {
            ++from;
            continue;
        }
        const size_t length = DecodeUtf8({from, end}).length;
        if (length == 0)
            break;
        from += length;
    }
    return static_cast<size_t>(from - bytes.data());
}

/// The valid successors of a byte, as an automaton over the bytes of UTF-8. A state is the bit position of
/// its successor in a byte's word, so that a step is one shift without a branch: in text that mixes scripts,
/// about half of such branches would be mispredicted.
enum Utf8State : unsigned int
{
    CharacterEnd = 0,
    BadUtf8 = 6,
    OneMore = 12,
    TwoMore = 18,
    ThreeMore = 24,
    AfterE0 = 30,
    AfterEd = 36,
    AfterF0 = 42,
    AfterF4 = 48
};

constexpr Utf8State StateAfterLead(unsigned int byte)
{
    if (byte < 0x80)
        return CharacterEnd;
    if (byte < 0xC2 || byte > 0xF4)
        return BadUtf8;
    if (byte < 0xE0)
        return OneMore;
    if (byte < 0xF0)
        return byte == 0xE0 ? AfterE0 : byte == 0xED ? AfterEd : TwoMore;
    return byte == 0xF0 ? AfterF0 : byte == 0xF4 ? AfterF4 : ThreeMore;
}

/// The state after `byte`, which must be from `first` to `last`.
constexpr Utf8State StateWithin(unsigned int byte, unsigned int first, unsigned int last, Utf8State then)
{
    return byte >= first && byte <= last ? then : BadUtf8;
}

constexpr std::array<uint64_t, 256> MakeUtf8Steps()
{
    std::array<uint64_t, 256> steps{};
    for (unsigned int byte = 0; byte < steps.size(); ++byte) {
        const auto from = [&](Utf8State state, Utf8State to) { steps[byte] |= uint64_t{to} << state; };
        from(CharacterEnd, StateAfterLead(byte));
        from(BadUtf8, BadUtf8);
        from(OneMore, StateWithin(byte, 0x80, 0xBF, CharacterEnd));
        from(TwoMore, StateWithin(byte, 0x80, 0xBF, OneMore));
        from(ThreeMore, StateWithin(byte, 0x80, 0xBF, TwoMore));
        from(AfterE0, StateWithin(byte, 0xA0, 0xBF, OneMore));
        from(AfterEd, StateWithin(byte, 0x80, 0x9F, OneMore));
        from(AfterF0, StateWithin(byte, 0x90, 0xBF, TwoMore));
        from(AfterF4, StateWithin(byte, 0x80, 0x8F, TwoMore));
    }
    return steps;
}

/// Output grows in blocks that fit the nearest cache.
constexpr size_t BlockSize = 16'384;

std::string PageToUtf8(std::string_view bytes, const Page& page)
{
    std::array<char, 3 * BlockSize + 4> block;
    std::string result = StringWithRoom(2 * bytes.size());
    while (!bytes.empty()) {
        const std::string_view part = bytes.substr(0, BlockSize);
        bytes.remove_prefix(part.size());
        const char* from = part.data();
        const char* const end = from + part.size();
        char* to = block.data();
        while (from != end) {
            const size_t plain = AsciiRun(from, end);
            std::memcpy(to, from, plain);
            from += plain;
            to += plain;
            // Always writes four bytes; the next character overwrites the unused ones.
            for (const char* const stop = std::min(from + 16, end); from != stop; ++from) {
                const auto byte = static_cast<unsigned char>(*from);
                std::memcpy(to, page.utf8[byte].data(), 4);
                to += page.utf8Length[byte];
            }
        }
        result.append(block.data(), to);
    }
    return result;
}

std::string Utf8ToPage(std::string_view utf8, const Page& page)
{
    std::string result = StringWithRoom(utf8.size());
    result.resize(utf8.size());
    const char* const units = page.byteOfUnit.data();
    const char* from = utf8.data();
    const char* const end = from + utf8.size();
    char* to = result.data();
    while (from != end) {
        const size_t plain = AsciiRun(from, end);
        std::memcpy(to, from, plain);
        from += plain;
        to += plain;
        while (from != end && static_cast<unsigned char>(*from) < 0x80)
            *to++ = *from++;
        // Two-byte characters, most of a Cyrillic book.
        while (end - from >= 2 && static_cast<unsigned char>(from[0]) - 0xc2U < 0x1eU
               && (from[1] & 0xc0) == 0x80) {
            *to++ = units[(from[0] & 0x1f) << 6 | (from[1] & 0x3f)];
            from += 2;
        }
        if (from == end || static_cast<unsigned char>(*from) < 0x80)
            continue;
        const auto [character, length] = DecodeUtf8({from, end});
        if (length == 4)
            *to++ = '?';
        *to++ = length == 4 ? '?' : units[character];
        from += std::max<size_t>(length, 1);
    }
    result.resize(static_cast<size_t>(to - result.data()));
    return result;
}

std::string RepairUtf8(std::string_view bytes)
{
    std::string result = StringWithRoom(bytes.size());
    for (;;) {
        const size_t valid = ValidUtf8Prefix(bytes);
        result += bytes.substr(0, valid);
        if (valid == bytes.size())
            return result;
        result += "\xef\xbf\xbd";
        bytes.remove_prefix(valid + 1);
    }
}

QStringConverter::Encoding QtEncoding(int codePage)
{
    return codePage == CodePageUtf8 ? QStringConverter::Utf8 : QStringConverter::Utf16LE;
}

} // namespace

int SystemCodePage()
{
    const int wanted = qEnvironmentVariableIntValue("VELLUMARK_CODEPAGE");
    if (wanted == CodePageCentralEurope || wanted == CodePageCyrillic || wanted == CodePageWestern)
        return wanted;
    return CodePageOfLocale(QLocale::system());
}

int CodePageOfLocale(const QLocale& locale)
{
    if (locale.script() == QLocale::CyrillicScript)
        return CodePageCyrillic;
    switch (locale.language()) {
    case QLocale::Albanian:
    case QLocale::Bosnian:
    case QLocale::Croatian:
    case QLocale::Czech:
    case QLocale::Hungarian:
    case QLocale::LowerSorbian:
    case QLocale::Polish:
    case QLocale::Romanian:
    case QLocale::Serbian:
    case QLocale::Slovak:
    case QLocale::Slovenian:
    case QLocale::Turkmen:
    case QLocale::UpperSorbian:
        return CodePageCentralEurope;
    default:
        return CodePageWestern;
    }
}

char16_t CharacterOfByte(unsigned char byte, int codePage)
{
    const Page* const page = SingleBytePage(codePage);
    return page ? page->character(byte) : static_cast<char16_t>(byte);
}

std::optional<unsigned char> ByteOfCharacter(char32_t character, int codePage)
{
    const Page* const page = SingleBytePage(codePage);
    if (!page)
        return std::nullopt;
    return page->exactByte(character);
}

QString DecodeBytes(std::string_view bytes, int codePage)
{
    if (const Page* const page = SingleBytePage(codePage)) {
        QString text(static_cast<qsizetype>(bytes.size()), Qt::Uninitialized);
        std::transform(bytes.begin(), bytes.end(), text.begin(), [page](char byte) {
            return QChar(page->character(static_cast<unsigned char>(byte)));
        });
        return text;
    }
    if (codePage == CodePageUtf16)
        bytes = bytes.substr(0, bytes.size() / 2 * 2);
    QStringDecoder decoder(QtEncoding(codePage),
                           QStringConverter::Flag::ConvertInitialBom | QStringConverter::Flag::Stateless);
    return decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

std::string EncodeText(QStringView text, int codePage)
{
    if (const Page* const page = SingleBytePage(codePage)) {
        std::string bytes(static_cast<size_t>(text.size()), '\0');
        std::transform(text.begin(), text.end(), bytes.begin(),
                       [page](QChar unit) { return page->byteOfUnit[unit.unicode()]; });
        return bytes;
    }
    QStringEncoder encoder(QtEncoding(codePage), QStringConverter::Flag::Stateless);
    const QByteArray bytes = encoder(text);
    return bytes.toStdString();
}

std::string BytesToUtf8(std::string_view bytes, int codePage)
{
    if (const Page* const page = SingleBytePage(codePage))
        return PageToUtf8(bytes, *page);
    if (KnownCodePage(codePage) == CodePageUtf8)
        return RepairUtf8(bytes);
    return EncodeText(DecodeBytes(bytes, codePage), CodePageUtf8);
}

std::string Utf8ToBytes(std::string_view utf8, int codePage)
{
    if (const Page* const page = SingleBytePage(codePage))
        return Utf8ToPage(utf8, *page);
    if (KnownCodePage(codePage) == CodePageUtf8)
        return RepairUtf8(utf8);
    return EncodeText(DecodeBytes(utf8, CodePageUtf8), codePage);
}

size_t ValidUtf8Prefix(std::string_view bytes)
{
    static constexpr std::array<uint64_t, 256> Steps = MakeUtf8Steps();
    constexpr uint64_t StateMask = 63;
    constexpr size_t SmallestBlock = 16;
    constexpr size_t LargestBlock = 256;
    // Blocks grow, so that the cost of a call depends on its result; within a block with an error, the
    // position is found byte by byte.
    size_t valid = 0; // up to the end of a character
    uint64_t state = CharacterEnd;
    size_t block = SmallestBlock;
    for (size_t at = 0; at < bytes.size(); block = std::min(2 * block, LargestBlock)) {
        std::string_view part = bytes.substr(at, block);
        at += part.size();
        if (state == CharacterEnd)
            part.remove_prefix(AsciiRun(part.data(), part.data() + part.size()));
        for (const char c : part)
            state = Steps[static_cast<unsigned char>(c)] >> (state & StateMask);
        state &= StateMask;
        if (state == BadUtf8)
            break;
        if (state == CharacterEnd)
            valid = at;
    }
    return valid + ValidCharacters(bytes.substr(valid));
}

bool IsValidUtf8(std::string_view bytes)
{
    return ValidUtf8Prefix(bytes) == bytes.size();
}

} // namespace vmk
