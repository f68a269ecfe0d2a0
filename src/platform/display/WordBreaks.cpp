#include "WordBreaks.h"

namespace vmk {

namespace {

enum class Sort
{
    Blank,
    Letter,
    Sign
};

Sort sortOf(QChar c)
{
    if (c.isSpace())
        return Sort::Blank;
    return isWordCharacter(c) ? Sort::Letter : Sort::Sign;
}

/// True if a word begins before the character at `offset`, or the text ends there.
bool isWordStart(const QString& text, int offset)
{
    if (offset <= 0 || offset >= text.size())
        return true;
    const Sort here = sortOf(text[offset]);
    return here != Sort::Blank && here != sortOf(text[offset - 1]);
}

} // namespace

bool isWordCharacter(QChar c)
{
    // Halves of a pair count as letters: most characters outside the basic plane belong to scripts.
    return c.isLetterOrNumber() || c.isMark() || c == u'_' || c == QChar(0xAD) || c.isSurrogate();
}

Position nextWordStart(const DisplayDocument& document, Position place)
{
    const QString& text = document.line(place.line).text;
    if (place.offset >= text.size())
        return place.line + 1 < document.lineCount() ? Position{place.line + 1, 0} : place;
    do
        ++place.offset;
    while (!isWordStart(text, place.offset));
    return place;
}

Position previousWordStart(const DisplayDocument& document, Position place)
{
    if (place.offset <= 0) {
        if (place.line == 0)
            return place;
        return {place.line - 1, int(document.line(place.line - 1).text.size())};
    }
    const QString& text = document.line(place.line).text;
    do
        --place.offset;
    while (!isWordStart(text, place.offset));
    return place;
}

Position wordStartAt(const DisplayDocument& document, Position place)
{
    return isWordStart(document.line(place.line).text, place.offset) ? place
                                                                     : previousWordStart(document, place);
}

Position wordEndAt(const DisplayDocument& document, Position place, bool next)
{
    const QString& text = document.line(place.line).text;
    const bool between = isWordStart(text, place.offset);
    if ((between && !next) || place.offset >= text.size())
        return place;
    return nextWordStart(document, place);
}

} // namespace vmk
