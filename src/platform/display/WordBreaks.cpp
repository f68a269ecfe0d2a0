#include "WordBreaks.h"

#include <algorithm>

namespace vmk {

namespace {

enum class Sort
{
    Blank,
    Letter,
    Sign
};

Sort SortOf(QChar c)
{
    if (c.isSpace())
        return Sort::Blank;
    return IsWordCharacter(c) ? Sort::Letter : Sort::Sign;
}

/// True if a word begins before the character at `offset`, or the text ends there.
bool IsWordStart(const QString& text, int offset)
{
    if (offset <= 0 || offset >= text.size())
        return true;
    const Sort here = SortOf(text[offset]);
    return here != Sort::Blank && here != SortOf(text[offset - 1]);
}

} // namespace

bool IsWordCharacter(QChar c)
{
    // Halves of a pair count as letters: most characters outside the basic plane belong to scripts.
    return c.isLetterOrNumber() || c.isMark() || c == u'_' || c == QChar(0xAD) || c.isSurrogate();
}

Position NextWordStart(const DisplayDocument& document, Position place)
{
    const QString& text = document.line(place.line).text;
    if (place.offset >= text.size())
        return document.hasLine(place.line + 1) ? Position{place.line + 1, 0} : place;
    do
        ++place.offset;
    while (!IsWordStart(text, place.offset));
    return place;
}

Position PreviousWordStart(const DisplayDocument& document, Position place)
{
    if (place.offset <= 0) {
        if (place.line == 0)
            return place;
        return {place.line - 1, int(document.line(place.line - 1).text.size())};
    }
    const QString& text = document.line(place.line).text;
    do
        --place.offset;
    while (!IsWordStart(text, place.offset));
    return place;
}

Position WordStartAt(const DisplayDocument& document, Position place)
{
    return IsWordStart(document.line(place.line).text, place.offset) ? place
                                                                     : PreviousWordStart(document, place);
}

Position WordEndAt(const DisplayDocument& document, Position place, bool next)
{
    const QString& text = document.line(place.line).text;
    const bool between = IsWordStart(text, place.offset);
    if ((between && !next) || place.offset >= text.size())
        return place;
    return NextWordStart(document, place);
}

std::pair<Position, Position> WordAround(const DisplayDocument& document, Position place)
{
    const QString& text = document.line(place.line).text;
    if (text.isEmpty())
        return {place, place};
    qsizetype at = std::min<qsizetype>(place.offset, text.size() - 1);
    if (at > 0 && SortOf(text[at]) != Sort::Letter && SortOf(text[at - 1]) == Sort::Letter)
        --at;
    const Sort sort = SortOf(text[at]);
    qsizetype from = at;
    qsizetype to = at + 1;
    while (from > 0 && SortOf(text[from - 1]) == sort)
        --from;
    while (to < text.size() && SortOf(text[to]) == sort)
        ++to;
    return {{place.line, int(from)}, {place.line, int(to)}};
}

} // namespace vmk
