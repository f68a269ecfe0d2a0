#include "BookWords.h"

#include "CodePages.h"
#include "SpellWords.h"
#include "XmlInput.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// A position in a text as line and column; it only moves forward.
class LineCounter
{
public:
    explicit LineCounter(QStringView countedText)
        : text(countedText)
    {
    }

    void moveTo(qsizetype position)
    {
        for (; at < position; ++at) {
            const QChar c = text[at];
            const bool endsLine
                = c == u'\n' || (c == u'\r' && (at + 1 == text.size() || text[at + 1] != u'\n'));
            if (endsLine) {
                ++line;
                column = 1;
            } else if (!c.isLowSurrogate()) {
                ++column;
            }
        }
    }

    int line = 1;
    int column = 1;

private:
    QStringView text;
    qsizetype at = 0;
};

/// Returns the character of a reference without "&" and ";"; 0 for an unknown one.
char32_t ReferencedCharacter(QStringView name)
{
    struct Entity
    {
        QLatin1StringView name;
        char32_t character;
    };
    constexpr std::array Entities
        = {Entity{"amp"_L1, U'&'},  Entity{"lt"_L1, U'<'},    Entity{"gt"_L1, U'>'},
           Entity{"quot"_L1, U'"'}, Entity{"apos"_L1, U'\''}, Entity{"shy"_L1, 0xAD}};
    if (!name.startsWith(u'#')) {
        const auto* known
            = std::ranges::find_if(Entities, [&](const Entity& one) { return name == one.name; });
        return known == Entities.end() ? 0 : known->character;
    }
    const bool isHex = name.size() > 1 && name[1].toLower() == u'x';
    bool isNumber = false;
    const uint number = name.mid(isHex ? 2 : 1).toUInt(&isNumber, isHex ? 16 : 10);
    return isNumber && number <= QChar::LastValidCodePoint && !QChar::isSurrogate(number) ? number : 0;
}

/// A piece of a file with its references resolved, and the position of each unit in the file.
struct ResolvedPiece
{
    QString text;
    std::vector<qsizetype> origins;
};

ResolvedPiece Resolve(QStringView piece)
{
    constexpr qsizetype LongestReference = 12;
    ResolvedPiece resolved;
    const auto append = [&](QStringView units, qsizetype origin) {
        resolved.text += units;
        resolved.origins.insert(resolved.origins.end(), size_t(units.size()), origin);
    };
    for (qsizetype i = 0; i < piece.size();) {
        const qsizetype end = piece[i] == u'&' ? piece.mid(i, LongestReference).indexOf(u';') : -1;
        if (end < 0) {
            append(piece.mid(i, 1), i);
            ++i;
            continue;
        }
        const char32_t character = ReferencedCharacter(piece.mid(i + 1, end - 1));
        append(character == 0 ? u" "_s : QString::fromUcs4(&character, 1), i);
        i += end + 1;
    }
    return resolved;
}

/// Reads the file once, from tag to tag.
class BookScanner
{
public:
    BookScanner(QStringView scannedXml, BookMarkup wantedMarkup,
                const std::function<void(const BookWord&)>& takeWord)
        : xml(scannedXml)
        , markup(wantedMarkup)
        , take(takeWord)
        , lines(scannedXml)
    {
    }

    void scan()
    {
        while (at < xml.size()) {
            const qsizetype tag = std::min(indexOf(u"<", at), xml.size());
            takePiece(at, tag);
            at = tag;
            if (at < xml.size())
                scanMarkup();
        }
    }

private:
    [[nodiscard]] qsizetype indexOf(QStringView sought, qsizetype from) const
    {
        const qsizetype found = xml.indexOf(sought, from);
        return found < 0 ? xml.size() : found;
    }

    void scanMarkup()
    {
        const QStringView rest = xml.mid(at);
        if (rest.startsWith("<!--"_L1)) {
            takeUpTo(at + 4, u"-->");
        } else if (rest.startsWith("<![CDATA["_L1)) {
            takeUpTo(at + 9, u"]]>");
        } else if (rest.startsWith("<!DOCTYPE"_L1)) {
            skipDoctype();
        } else if (rest.size() > 1
                   && (rest[1].isLetter() || rest[1] == u'/' || rest[1] == u'?' || rest[1] == u'_')) {
            scanTag();
        } else {
            ++at;
        }
    }

    /// Comments and character data contain no references.
    void takeUpTo(qsizetype from, QStringView end)
    {
        const qsizetype stop = indexOf(end, from);
        takeWords(xml.mid(from, stop - from), [&](qsizetype i) { return from + i; });
        at = std::min(stop + end.size(), xml.size());
    }

    void skipDoctype()
    {
        const qsizetype end = indexOf(u">", at);
        const qsizetype subset = indexOf(u"[", at);
        at = subset < end ? indexOf(u"]", subset) : end;
        at = std::min(indexOf(u">", at) + 1, xml.size());
    }

    void scanTag()
    {
        const qsizetype start = at;
        qsizetype namesFrom = at + 1;
        ++at;
        while (at < xml.size() && xml[at] != u'>' && xml[at] != u'<') {
            const QChar quote = xml[at];
            if (quote != u'"' && quote != u'\'') {
                ++at;
                continue;
            }
            takeNames(namesFrom, at);
            const qsizetype end = std::min(xml.indexOf(quote, at + 1), indexOf(u"<", at));
            const qsizetype valueEnd = end < 0 ? indexOf(u"<", at) : end;
            takePiece(at + 1, valueEnd);
            at = std::min(valueEnd + 1, xml.size());
            namesFrom = at;
            if (valueEnd < xml.size() && xml[valueEnd] == u'<')
                at = namesFrom = valueEnd;
        }
        takeNames(namesFrom, at);
        const bool isEmpty = at > 0 && xml[at - 1] == u'/';
        if (at < xml.size() && xml[at] == u'>')
            ++at;
        const QStringView tag = xml.mid(start, at - start);
        if (!isEmpty && tag.startsWith("<binary"_L1) && tag.size() > 7 && !tag[7].isLetterOrNumber())
            at = indexOf(u"</binary", at);
    }

    void takeNames(qsizetype from, qsizetype to)
    {
        if (markup == BookMarkup::Include)
            takeWords(xml.mid(from, to - from), [&](qsizetype i) { return from + i; });
    }

    void takePiece(qsizetype from, qsizetype to)
    {
        const QStringView piece = xml.mid(from, to - from);
        if (!piece.contains(u'&')) {
            takeWords(piece, [&](qsizetype i) { return from + i; });
            return;
        }
        const ResolvedPiece resolved = Resolve(piece);
        takeWords(resolved.text, [&](qsizetype i) { return from + resolved.origins[size_t(i)]; });
    }

    template <typename Origin>
    void takeWords(QStringView text, Origin origin)
    {
        SpellWords words(text);
        while (words.next()) {
            lines.moveTo(origin(words.start()));
            take({words.word(), lines.line, lines.column});
        }
    }

    QStringView xml;
    BookMarkup markup;
    const std::function<void(const BookWord&)>& take;
    LineCounter lines;
    qsizetype at = 0;
};

} // namespace

QString DecodeBook(std::string_view bytes)
{
    XmlInput input(bytes, XmlEncoding::byDeclaration());
    std::string utf8;
    std::array<char, 1 << 16> room = {};
    while (const qsizetype count = input.read(room.data(), qsizetype(room.size())))
        utf8.append(room.data(), size_t(count));
    if (!input.failure())
        return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
    return DecodeBytes(bytes, IsValidUtf8(bytes) ? CodePageUtf8 : CodePageCyrillic);
}

void ForEachBookWord(QStringView xml, BookMarkup markup, const std::function<void(const BookWord&)>& take)
{
    BookScanner(xml, markup, take).scan();
}

} // namespace vmk
