#pragma once

#include "PlainDocument.h"
#include "RegExp.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <optional>

/// Replace-all over the plain document: one flat text, one edit for each step, no index.
namespace vmk::reference {

struct ReplaceOrder
{
    QString find;
    QString replacement;
    bool matchCase = false;
    bool wholeWord = false;
    bool markReplaced = false;
    int scopeEnd = -1; ///< The end of a selected scope; -1 for no selection.
};

inline const QString MarkTag = QStringLiteral("FONT style=\"BACKGROUND-COLOR: #ffb848\"");

inline bool isWordLetter(QChar c)
{
    return c.isLetterOrNumber() || c.isMark() || c == u'_' || c == QChar(0xAD) || c.isSurrogate();
}

/// Returns the first occurrence at or after a position; line breaks are line feeds. -1 for none.
inline int findText(const PlainDocument& document, QString sought, int from, bool matchCase, bool wholeWord)
{
    sought.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    const QString text = document.text();
    const auto isSame = [&](QChar a, QChar b) {
        return matchCase ? a == b : QChar::toCaseFolded(a.unicode()) == QChar::toCaseFolded(b.unicode());
    };
    const auto cutsPair = [&](qsizetype place) {
        return place > 0 && place < text.size() && text[place].isLowSurrogate()
            && text[place - 1].isHighSurrogate();
    };
    for (qsizetype at = from; !sought.isEmpty() && at + sought.size() <= text.size(); ++at) {
        const qsizetype end = at + sought.size();
        if (!std::equal(sought.begin(), sought.end(), text.begin() + at, isSame) || cutsPair(at)
            || cutsPair(end))
            continue;
        const bool letterBefore = at > 0 && isWordLetter(text[at - 1]);
        const bool letterAfter = end < text.size() && isWordLetter(text[end]);
        if (!wholeWord || (!letterBefore && !letterAfter))
            return int(at);
    }
    return -1;
}

/// Marks the characters before a position. A mark without text is a step too.
inline void markLast(PlainDocument& document, int place, int length)
{
    int from = std::max(0, place - length);
    const QString text = document.text();
    if (from > 0 && from < text.size() && text[from].isLowSurrogate() && text[from - 1].isHighSurrogate())
        --from;
    document.wrap(from, place, MarkTag);
}

/// @return the number of undo steps
inline int replaceAll(PlainDocument& document, int from, const ReplaceOrder& order)
{
    int steps = 0;
    int scopeEnd = order.scopeEnd;
    for (int at = from;;) {
        at = findText(document, order.find, at, order.matchCase, order.wholeWord);
        const int end = at + int(order.find.size());
        if (at < 0 || (scopeEnd >= 0 && end >= scopeEnd))
            return steps;
        const int newEnd = document.replaceText(at, end, order.replacement);
        if (scopeEnd >= 0)
            scopeEnd += newEnd - end;
        at = newEnd;
        ++steps;
        if (order.markReplaced) {
            markLast(document, at, std::max(1, int(order.replacement.size())));
            ++steps;
        }
    }
}

// ---------------------------------------------------------------- by regular expression

/// Returns the start of the word before a position; a line break is a word.
inline int previousWord(const QString& text, int place)
{
    if (place == 0)
        return 0;
    if (text[place - 1] == u'\n')
        return place - 1;
    const auto sortOf = [&](int at) { return text[at].isSpace() ? 0 : isWordLetter(text[at]) ? 1 : 2; };
    for (--place; place > 0 && text[place - 1] != u'\n'; --place) {
        if (sortOf(place) != 0 && sortOf(place) != sortOf(place - 1))
            break;
    }
    return place;
}

/// Returns the text between two positions as the expression sees it.
inline QString searchedText(const QString& text, int from, int to)
{
    QString result;
    for (const QChar c : text.mid(from, to - from)) {
        if (c == u'\n' && result.endsWith(u' '))
            continue;
        result += c == u'\n' ? QStringLiteral("\r") : c == u'&' ? QStringLiteral("&amp;") : QString(c);
    }
    return result;
}

/// @return the number of undo steps, or nothing if the run ended because there are more chunks than expected
inline std::optional<int> regExpReplaceAll(PlainDocument& document, int from, const ReplaceOrder& order)
{
    constexpr int ChunkSize = 50'000;
    const auto drawnBack = [&](int start, int end) {
        int drawn = end;
        for (int word = 0; word < 3; ++word)
            drawn = previousWord(document.text(), drawn);
        return drawn > start ? drawn : end;
    };
    // The scope and its current chunk follow the edits.
    const std::size_t chunk = document.ranges.size();
    document.ranges.push_back({from, document.length()});
    document.ranges.push_back({from, document.length()});
    const auto scope = [&]() -> Span& { return document.ranges[chunk]; };
    const auto present = [&]() -> Span& { return document.ranges[chunk + 1]; };
    bool more = scope().to - scope().from > ChunkSize;
    int most = 1;
    if (more) {
        most = 2 * int(std::lrint(double(scope().to - scope().from) / ChunkSize));
        present().to = drawnBack(from, from + ChunkSize);
    }

    RegExp expression;
    expression.Pattern = order.find;
    expression.IgnoreCase = !order.matchCase;
    int steps = 0;
    for (int turn = 1;; ++turn) {
        if (turn > most)
            return std::nullopt;
        expression.Global = true;
        const auto matches = expression.Execute(searchedText(document.text(), present().from, present().to));
        expression.Global = false;
        int at = present().from;
        for (const RegExpMatch& match : matches.value_or(std::vector<RegExpMatch>())) {
            const int found = findText(document, match.Value, at, false, false);
            if (found < 0)
                continue;
            QString replacement = order.replacement;
            if (replacement.contains(u'$')) {
                const auto alone = expression.Execute(match.Value);
                if (!alone)
                    continue;
                replacement = alone->empty()
                    ? QString()
                    : expression.Replace(alone->front().Value, order.replacement).value_or(QString());
            }
            at = document.replaceText(found, found + int(match.Value.size()), replacement);
            ++steps;
            if (order.markReplaced) {
                markLast(document, at, std::max(1, int(order.replacement.size())));
                ++steps;
            }
        }
        if (!more)
            return steps;
        const int start = present().to;
        present() = {start, std::min(start + ChunkSize, document.length())};
        more = present().to - start == ChunkSize;
        if (more)
            present().to = drawnBack(start, present().to);
        if (!more || present().to >= scope().to) {
            present().to = scope().to;
            more = false;
        }
    }
}

} // namespace vmk::reference
