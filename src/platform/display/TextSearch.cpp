#include "TextSearch.h"

#include "WordBreaks.h"

#include <algorithm>
#include <array>

namespace vmk {

namespace {

constexpr char16_t Nbsp = 0xA0;
constexpr char16_t VisibleNbsp = 0x7F;

/// The common form of both cases; one code unit for each code unit.
char16_t Folded(char16_t c)
{
    if (c < 0x80)
        return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c;
    return char16_t(QChar::toCaseFolded(char32_t(c)));
}

/// Splits at CrLf, CR and LF.
std::vector<QString> SplitAtBreaks(const QString& text)
{
    std::vector<QString> pieces(1);
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\r' && text[i] != u'\n') {
            pieces.back() += text[i];
            continue;
        }
        if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
            ++i;
        pieces.emplace_back();
    }
    return pieces;
}

bool SplitsPair(const QString& text, int offset)
{
    return offset > 0 && offset < text.size() && text[offset].isLowSurrogate()
        && text[offset - 1].isHighSurrogate();
}

} // namespace

TextSearch::TextSearch(const QString& sought, bool caseMatters, bool wholeWordsOnly, bool marksMatch)
    : pieces(SplitAtBreaks(sought))
    , matchCase(caseMatters)
    , wholeWord(wholeWordsOnly)
    , nbspMarks(marksMatch && sought.contains(QChar(Nbsp)))
    , literal(matchCase && !nbspMarks)
{
    if (literal)
        return;
    for (QString& piece : pieces) {
        for (QChar& c : piece)
            c = QChar(key(c.unicode()));
    }
}

/// What characters that count as equal have in common.
char16_t TextSearch::key(char16_t c) const
{
    if (nbspMarks && c == VisibleNbsp)
        return Nbsp;
    return matchCase ? c : Folded(c);
}

bool TextSearch::equalAt(const QString& text, int offset, const QString& piece) const
{
    const QStringView part = QStringView(text).sliced(offset, piece.size());
    if (literal)
        return part == piece;
    return std::equal(part.utf16(), part.utf16() + part.size(), piece.utf16(),
                      [this](char16_t a, char16_t b) { return a == b || key(a) == b; });
}

/// The first position from `from` on at which the only piece occurs, or -1.
int TextSearch::indexIn(const QString& text, int from) const
{
    const QString& piece = pieces.front();
    if (literal)
        return int(text.indexOf(piece, from));
    const char16_t* const data = QStringView(text).utf16();
    const char16_t wanted = piece[0].unicode();
    const auto lastStart = int(text.size() - piece.size());
    for (int i = from; i <= lastStart; ++i) {
        if (key(data[i]) == wanted && equalAt(text, i, piece))
            return i;
    }
    return -1;
}

/// The last position up to `from` at which the only piece occurs, or -1.
int TextSearch::lastIndexIn(const QString& text, int from) const
{
    const QString& piece = pieces.front();
    const char16_t* const data = QStringView(text).utf16();
    const char16_t wanted = piece[0].unicode();
    for (int i = std::min(from, int(text.size() - piece.size())); i >= 0; --i) {
        if (key(data[i]) == wanted && equalAt(text, i, piece))
            return i;
    }
    return -1;
}

/// A match whose first piece ends a line, whose middle pieces are whole lines, and whose last piece begins
/// one.
std::optional<TextSearch::Hit> TextSearch::acrossBreaks(const DisplayDocument& document, int line) const
{
    const int breaks = int(pieces.size()) - 1;
    if (!document.hasLine(line + breaks))
        return {};
    const QString& firstText = document.line(line).text;
    const auto start = int(firstText.size() - pieces.front().size());
    if (start < 0 || !equalAt(firstText, start, pieces.front()))
        return {};
    for (int i = 1; i < breaks; ++i) {
        const QString& text = document.line(line + i).text;
        if (text.size() != pieces[std::size_t(i)].size() || !equalAt(text, 0, pieces[std::size_t(i)]))
            return {};
    }
    const QString& lastText = document.line(line + breaks).text;
    if (lastText.size() < pieces.back().size() || !equalAt(lastText, 0, pieces.back()))
        return {};
    return Hit{{line, start}, {line + breaks, int(pieces.back().size())}};
}

/// True if a match does not cut a surrogate pair and, if only whole words count, no word.
bool TextSearch::isSeparateWord(const DisplayDocument& document, const Hit& hit) const
{
    const auto& [from, to] = hit;
    const QString& before = document.line(from.line).text;
    const QString& after = document.line(to.line).text;
    if (SplitsPair(before, from.offset) || SplitsPair(after, to.offset))
        return false;
    if (!wholeWord)
        return true;
    const bool wordBefore = from.offset > 0 && IsWordCharacter(before[from.offset - 1]);
    const bool wordAfter = to.offset < after.size() && IsWordCharacter(after[to.offset]);
    return !wordBefore && !wordAfter;
}

std::optional<TextSearch::Hit> TextSearch::findForward(const DisplayDocument& document, Position from) const
{
    for (int line = from.line; document.hasLine(line); ++line) {
        const int begin = line == from.line ? from.offset : 0;
        if (pieces.size() > 1) {
            const auto hit = acrossBreaks(document, line);
            if (hit && hit->first.offset >= begin && isSeparateWord(document, *hit))
                return hit;
            continue;
        }
        const QString& text = document.line(line).text;
        for (int at = indexIn(text, begin); at >= 0; at = indexIn(text, at + 1)) {
            const Hit hit{{line, at}, {line, at + int(pieces.front().size())}};
            if (isSeparateWord(document, hit))
                return hit;
        }
    }
    return {};
}

std::optional<TextSearch::Hit> TextSearch::findBackward(const DisplayDocument& document, Position from) const
{
    for (int line = from.line; line >= 0; --line) {
        if (pieces.size() > 1) {
            const auto hit = acrossBreaks(document, line);
            if (hit && hit->second <= from && isSeparateWord(document, *hit))
                return hit;
            continue;
        }
        const QString& text = document.line(line).text;
        const int limit = line == from.line ? from.offset : int(text.size());
        for (int at = lastIndexIn(text, limit - int(pieces.front().size())); at >= 0;
             at = lastIndexIn(text, at - 1)) {
            const Hit hit{{line, at}, {line, at + int(pieces.front().size())}};
            if (isSeparateWord(document, hit))
                return hit;
        }
    }
    return {};
}

} // namespace vmk
