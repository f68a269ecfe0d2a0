#pragma once

#include <QString>
#include <QStringList>

#include <algorithm>
#include <vector>

/// A plain display document: one flat list of tokens, copied completely for each undo step. Slow and
/// simple; the real one must agree with it after every operation.
namespace vmk::reference {

/// A character, the start of a line with the start tag of its block (the line break before it, except for the
/// first line), or an in-line start or end tag.
struct Token
{
    enum Kind
    {
        Character,
        LineStart,
        Open,
        Close
    };
    Kind kind = Character;
    QChar character;
    QString tag; ///< Without brackets: `SPAN class=t`. For `Close` the same text as its start tag's.

    friend bool operator==(const Token&, const Token&) = default;
};
using Tokens = std::vector<Token>;

inline Token characterToken(QChar c)
{
    return {Token::Character, c, {}};
}
inline Token tagToken(Token::Kind kind, const QString& tag)
{
    return {kind, {}, tag};
}

struct Span
{
    int from = 0;
    int to = 0;
};

/// Positions are numbers of preceding characters and line breaks.
class PlainDocument
{
public:
    Tokens tokens{tagToken(Token::LineStart, {})};
    std::vector<Span> ranges; ///< Live ranges, updated by every edit.
    int anchor = 0;
    int focus = 0;

    [[nodiscard]] static bool counts(const Token& token)
    {
        return token.kind == Token::Character || token.kind == Token::LineStart;
    }
    [[nodiscard]] int length() const { return int(std::count_if(tokens.begin(), tokens.end(), counts)) - 1; }
    [[nodiscard]] bool isBare() const { return tokens.size() == 1 && tokens[0].tag.isEmpty(); }

    /// The text, a line feed for each line break.
    [[nodiscard]] QString text() const
    {
        QString result;
        for (std::size_t i = 1; i < tokens.size(); ++i) {
            if (counts(tokens[i]))
                result += tokens[i].kind == Token::LineStart ? QChar(u'\n') : tokens[i].character;
        }
        return result;
    }

    [[nodiscard]] QString html() const
    {
        QString result;
        QString block;
        for (const Token& token : tokens) {
            switch (token.kind) {
            case Token::Character:
                result += escaped(token.character);
                break;
            case Token::LineStart:
                // Beside text outside blocks a line end would count as white space.
                if (!result.isEmpty() && !block.isEmpty() && !token.tag.isEmpty())
                    result += endTag(block) + QStringLiteral("\r\n") + startTag(token.tag);
                else
                    result += endTag(block) + startTag(token.tag);
                block = token.tag;
                break;
            case Token::Open:
                result += startTag(token.tag);
                break;
            case Token::Close:
                result += endTag(token.tag);
                break;
            }
        }
        return result + endTag(block);
    }

    /// Replaces text by lines of tokens (each without its `LineStart`, with separate blocks) by the rules of
    /// the document. @return the position after the content.
    int replace(int from, int to, const std::vector<Tokens>& content, const std::vector<QString>& blocks,
                bool removeEmptied)
    {
        const int end = build(from, to, content, blocks, removeEmptied);
        movePlaces(from, to, end);
        return end;
    }

    /// Pastes lines of which the first and last may be text outside any block (block ""). In one line blocks
    /// are separate; with several lines the ends are joined to the rest of the first and the last.
    int paste(int from, int to, std::vector<Tokens> content, std::vector<QString> blocks);

    int replaceText(int from, int to, const QString& text)
    {
        std::vector<Tokens> content(1);
        for (const QChar c : text) {
            if (c == u'\n')
                content.emplace_back();
            else
                content.back().push_back(characterToken(c));
        }
        return replace(from, to, content, std::vector<QString>(content.size()), false);
    }

    /// Removes text; several complete lines are removed with their line breaks.
    int erase(int from, int to);
    /// Replaces complete lines.
    void replaceLines(int first, int count, const Tokens& lines);
    void wrap(int from, int to, const QString& tag);

    [[nodiscard]] int lineCount() const
    {
        return int(std::count_if(tokens.begin(), tokens.end(),
                                 [](const Token& token) { return token.kind == Token::LineStart; }));
    }
    /// The index of the token that begins a line; the end for the line after the last.
    [[nodiscard]] std::size_t lineToken(int line) const
    {
        std::size_t i = 0;
        for (; i < tokens.size(); ++i) {
            if (tokens[i].kind == Token::LineStart && line-- == 0)
                break;
        }
        return i;
    }
    [[nodiscard]] int lineOf(int place) const { return int(text().first(place).count(u'\n')); }
    [[nodiscard]] int lineStart(int line) const { return placeOf(lineToken(line)) + 1; }

    struct Edit
    {
        int from = 0;
        int oldEnd = 0;
        int newEnd = 0;
        bool inFront = false;
    };
    std::vector<Edit> edits; ///< All edits since the list was last emptied.

    /// Moves all positions by an edit.
    void movePlaces(int from, int oldEnd, int newEnd, bool inFront = false)
    {
        edits.push_back({from, oldEnd, newEnd, inFront});
        for (Span& range : ranges) {
            range.from = moved(range.from, from, oldEnd, newEnd, inFront);
            range.to = moved(range.to, from, oldEnd, newEnd, inFront);
        }
        anchor = moved(anchor, from, oldEnd, newEnd, inFront);
        focus = moved(focus, from, oldEnd, newEnd, inFront);
    }

    /// At the end of the text, moves positions that are after the end.
    void fitPlaces()
    {
        const auto fit = [end = length()](int place) { return std::min(place, end); };
        for (Span& range : ranges)
            range = {fit(range.from), fit(range.to)};
        anchor = fit(anchor);
        focus = fit(focus);
    }

private:
    int build(int from, int to, const std::vector<Tokens>& content, const std::vector<QString>& blocks,
              bool removeEmptied);

    [[nodiscard]] static int moved(int place, int from, int oldEnd, int newEnd, bool inFront)
    {
        if (place < from || (place == from && !inFront))
            return place;
        return place < oldEnd ? from : place - oldEnd + newEnd;
    }
    [[nodiscard]] static QString escaped(QChar c)
    {
        if (c == u'<')
            return QStringLiteral("&lt;");
        if (c == u'>')
            return QStringLiteral("&gt;");
        if (c == u'&')
            return QStringLiteral("&amp;");
        return c == QChar(0xA0) ? QStringLiteral("&nbsp;") : QString(c);
    }
    [[nodiscard]] static QString startTag(const QString& tag)
    {
        return tag.isEmpty() ? QString() : u'<' + tag + u'>';
    }
    [[nodiscard]] static QString endTag(const QString& tag)
    {
        return tag.isEmpty() ? QString() : QStringLiteral("</") + tag.section(u' ', 0, 0) + u'>';
    }

    /// The number of counted tokens before one, without the start of the first line.
    [[nodiscard]] int placeOf(std::size_t index) const
    {
        return int(std::count_if(tokens.begin(), tokens.begin() + std::ptrdiff_t(index), counts)) - 1;
    }
    /// After the counted token that ends at a position, and before all tags there.
    [[nodiscard]] std::size_t tokenBehind(int place) const
    {
        std::size_t i = 0;
        for (int seen = -1;; ++i) {
            if (counts(tokens[i]) && ++seen == place)
                return i + 1;
        }
    }
    /// The index at which typed text is inserted.
    [[nodiscard]] std::size_t insertionToken(int place) const
    {
        const std::size_t begin = tokenBehind(place);
        std::size_t end = begin;
        while (end < tokens.size() && !counts(tokens[end]))
            ++end;
        for (std::size_t i = begin; i + 1 < end; ++i) {
            const bool emptyElement = tokens[i].kind == Token::Open && tokens[i + 1].kind == Token::Close;
            if (emptyElement && !tokens[i].tag.startsWith(QStringLiteral("A ")))
                return i + 1;
        }
        return tokens[begin - 1].kind == Token::LineStart ? end : begin;
    }
    [[nodiscard]] std::vector<std::size_t> openAt(std::size_t index) const
    {
        std::vector<std::size_t> open;
        for (std::size_t i = 0; i < index; ++i) {
            if (tokens[i].kind == Token::Open)
                open.push_back(i);
            else if (tokens[i].kind == Token::Close)
                open.pop_back();
        }
        return open;
    }
    [[nodiscard]] bool hasTextBetween(std::size_t from, std::size_t to) const
    {
        return std::any_of(tokens.begin() + std::ptrdiff_t(from), tokens.begin() + std::ptrdiff_t(to),
                           counts);
    }
    [[nodiscard]] static QString withoutId(const QString& block)
    {
        QString result = block;
        return result.remove(QStringLiteral(" id=FirstDiv"));
    }
};

inline int PlainDocument::build(int from, int to, const std::vector<Tokens>& content,
                                const std::vector<QString>& blocks, bool removeEmptied)
{
    const bool deletes = content.size() == 1 && content[0].empty();
    const bool crossesLines = lineOf(from) != lineOf(to);
    // The removed tokens and their indexes.
    const std::size_t a = from == to ? insertionToken(from) : [&] {
        std::size_t i = tokenBehind(from);
        while (!counts(tokens[i]))
            ++i;
        return i;
    }();
    const std::size_t b = from == to ? a : tokenBehind(to);
    const std::vector<std::size_t> openBefore = openAt(a);
    const std::vector<std::size_t> openBehind = openAt(b);
    std::size_t shared = 0;
    while (shared < std::min(openBefore.size(), openBehind.size())
           && openBefore[shared] == openBehind[shared])
        ++shared;
    std::size_t ending = 0;
    while (b + ending < tokens.size() && tokens[b + ending].kind == Token::Close)
        ++ending;
    if (deletes && removeEmptied) {
        while (shared > 0 && openBehind.size() - ending < shared
               && !hasTextBetween(openBefore[shared - 1], a))
            --shared;
    }

    const auto startOfLine = [this](std::size_t index) {
        while (tokens[index].kind != Token::LineStart)
            --index;
        return index;
    };
    QString block = tokens[startOfLine(a - 1)].tag;
    if (block.isEmpty())
        block = QStringLiteral("DIV");
    QString firstBlock = block;
    if (crossesLines && deletes && from == lineStart(lineOf(from))) {
        firstBlock = withoutId(tokens[startOfLine(b - 1)].tag);
        if (block.contains(QStringLiteral(" id=")))
            firstBlock += QStringLiteral(" id=FirstDiv");
    }

    Tokens result(tokens.begin(), tokens.begin() + std::ptrdiff_t(a));
    result[startOfLine(a - 1)].tag = firstBlock;
    std::vector<std::size_t> dropped;
    for (std::size_t i = 0; i < content.size(); ++i) {
        const bool isFirst = i == 0;
        const bool isLast = i + 1 == content.size();
        const std::size_t around = content.size() > 1 && content[i].empty() ? 0 : shared;
        if (isFirst) {
            for (std::size_t k = openBefore.size(); k > around; --k) {
                if (hasTextBetween(openBefore[k - 1], a))
                    result.push_back(tagToken(Token::Close, tokens[openBefore[k - 1]].tag));
                else
                    dropped.push_back(openBefore[k - 1]);
            }
        } else {
            result.push_back(tagToken(Token::LineStart, blocks[i].isEmpty() ? withoutId(block) : blocks[i]));
            for (std::size_t k = 0; k < around; ++k)
                result.push_back(tokens[openBefore[k]]);
        }
        result.insert(result.end(), content[i].begin(), content[i].end());
        if (!isLast) {
            for (std::size_t k = around; k > 0; --k)
                result.push_back(tagToken(Token::Close, tokens[openBefore[k - 1]].tag));
            continue;
        }
        const std::size_t ended = std::min(ending, openBehind.size() - around);
        for (std::size_t k = around; k < openBehind.size() - ended; ++k)
            result.push_back(tokens[openBehind[k]]);
        result.insert(result.end(), tokens.begin() + std::ptrdiff_t(b + ended), tokens.end());
    }
    std::sort(dropped.rbegin(), dropped.rend());
    for (const std::size_t index : dropped)
        result.erase(result.begin() + std::ptrdiff_t(index));
    tokens = std::move(result);

    int size = int(content.size()) - 1;
    for (const Tokens& line : content)
        size += int(std::count_if(line.begin(), line.end(), counts));
    return from + size;
}

inline int PlainDocument::paste(int from, int to, std::vector<Tokens> content, std::vector<QString> blocks)
{
    const bool inOneLine = lineOf(from) == lineOf(to);
    const bool standsAlone = !blocks.front().isEmpty() && inOneLine;
    const bool endsAlone = !blocks.back().isEmpty() && inOneLine;
    if (!inOneLine) {
        const int end = replace(from, to, content, blocks, false);
        if (from == lineStart(lineOf(from)) && !blocks.front().isEmpty())
            tokens[lineToken(lineOf(from))].tag = blocks.front();
        return end;
    }
    if (standsAlone) {
        content.insert(content.begin(), Tokens());
        blocks.insert(blocks.begin(), QString());
    }
    if (endsAlone) {
        content.emplace_back();
        blocks.emplace_back();
    }
    QString old = tokens[lineToken(lineOf(from))].tag;
    int end = build(from, to, content, blocks, false);
    const int first = lineOf(from);
    const int last = lineOf(end);
    const auto isEmptyLine = [this](int line) { return lineToken(line) + 1 == lineToken(line + 1); };
    const bool restIsEmpty = endsAlone && last > first && isEmptyLine(last);
    if (restIsEmpty) {
        tokens.erase(tokens.begin() + std::ptrdiff_t(lineToken(last)));
        --end;
    }
    if (standsAlone && lineCount() > 1 && isEmptyLine(first) && lineOf(end) > first) {
        tokens.erase(tokens.begin() + std::ptrdiff_t(lineToken(first)));
        --end;
        if (endsAlone && !restIsEmpty)
            tokens[lineToken(lineOf(end))].tag = old.isEmpty() ? QStringLiteral("DIV") : old;
    }
    movePlaces(from, to, end);
    return end;
}

inline int PlainDocument::erase(int from, int to)
{
    if (from == to)
        return from;
    const int first = lineOf(from);
    const int last = lineOf(to);
    const bool wholeLines
        = first < last && from == lineStart(first) && (to == length() || text()[to] == u'\n');
    if (!wholeLines)
        return replace(from, to, {Tokens()}, {QString()}, true);
    replaceLines(first, last - first + 1, {});
    return std::min(from, length());
}

inline void PlainDocument::replaceLines(int first, int count, const Tokens& lines)
{
    const std::size_t begin = lineToken(first);
    const std::size_t end = lineToken(first + count);
    const bool atEnd = end == tokens.size();
    const int from = begin == tokens.size() ? length() + 1 : lineStart(first);
    const int oldEnd = atEnd ? length() + 1 : lineStart(first + count);
    tokens.erase(tokens.begin() + std::ptrdiff_t(begin), tokens.begin() + std::ptrdiff_t(end));
    tokens.insert(tokens.begin() + std::ptrdiff_t(begin), lines.begin(), lines.end());
    if (tokens.empty())
        tokens.push_back(tagToken(Token::LineStart, {}));
    const int added = int(std::count_if(lines.begin(), lines.end(), counts));
    movePlaces(from, oldEnd, from + added, count == 0);
    fitPlaces();
}

inline void PlainDocument::wrap(int from, int to, const QString& tag)
{
    // Separately between line breaks; and within a line between tags, unless they are nested in it.
    int lineFrom = from;
    while (lineFrom < to) {
        int lineTo = lineFrom;
        const QString all = text();
        while (lineTo < to && all[lineTo] != u'\n')
            ++lineTo;
        if (lineTo > lineFrom) {
            std::size_t a = tokenBehind(lineFrom);
            while (!counts(tokens[a]))
                ++a;
            const std::size_t b = tokenBehind(lineTo);
            int depth = 0;
            int lowest = 0;
            for (std::size_t i = a; i < b; ++i) {
                depth += tokens[i].kind == Token::Open ? 1 : tokens[i].kind == Token::Close ? -1 : 0;
                lowest = std::min(lowest, depth);
            }
            const bool whole = depth == 0 && lowest == 0;
            Tokens wrapped;
            for (std::size_t i = a; i < b; ++i) {
                const bool isText = counts(tokens[i]);
                if (isText && (i == a || (!whole && !counts(tokens[i - 1]))))
                    wrapped.push_back(tagToken(Token::Open, tag));
                wrapped.push_back(tokens[i]);
                if (isText && (i + 1 == b || (!whole && !counts(tokens[i + 1]))))
                    wrapped.push_back(tagToken(Token::Close, tag));
            }
            tokens.erase(tokens.begin() + std::ptrdiff_t(a), tokens.begin() + std::ptrdiff_t(b));
            tokens.insert(tokens.begin() + std::ptrdiff_t(a), wrapped.begin(), wrapped.end());
        }
        lineFrom = lineTo + 1;
    }
}

} // namespace vmk::reference
