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
        const QString lines
            = QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
        for (const QChar c : lines) {
            if (c == u'\n')
                content.emplace_back();
            else
                content.back().push_back(characterToken(c));
        }
        return replace(from, to, content, std::vector<QString>(content.size()), false);
    }

    /// Removes text; several complete lines are removed with their line breaks.
    int erase(int from, int to);
    /// The same by a key: of the whole page one line stays.
    int eraseByUser(int from, int to);
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
    [[nodiscard]] std::size_t tokenAfter(int place) const
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
        const std::size_t begin = tokenAfter(place);
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
    /// The part of the tokens that an edit replaces, and the in-line elements around it.
    struct Cut
    {
        std::size_t begin = 0; ///< index of the first removed token
        std::size_t end = 0; ///< index after the last removed token
        std::vector<std::size_t> openBefore; ///< start tags of the elements that are open at `begin`
        std::vector<std::size_t> openAfter; ///< the same at `end`
        std::size_t shared = 0; ///< number of elements that are open at both
        std::size_t ending = 0; ///< number of end tags from `end` on
    };
    /// @param removeEmptied whether elements without remaining text are not shared.
    [[nodiscard]] Cut cutAt(int from, int to, bool removeEmptied) const;
    /// The block of the first line after the edit.
    [[nodiscard]] QString firstBlockOf(int from, int to, const Cut& cut, bool deletes) const;
    /// Closes the elements before the cut, except the outer `around`; those without text are added to
    /// `dropped`.
    void closeBefore(const Cut& cut, std::size_t around, Tokens& result,
                     std::vector<std::size_t>& dropped) const;
    /// The start of the line of a token.
    [[nodiscard]] std::size_t startOfLine(std::size_t index) const
    {
        while (tokens[index].kind != Token::LineStart)
            --index;
        return index;
    }
    /// The block of the line of a token; text outside blocks gets a DIV.
    [[nodiscard]] QString blockOf(std::size_t index) const
    {
        const QString& block = tokens[startOfLine(index)].tag;
        return block.isEmpty() ? QStringLiteral("DIV") : block;
    }
    [[nodiscard]] static QString withoutId(const QString& block)
    {
        QString result = block;
        return result.remove(QStringLiteral(" id=FirstDiv"));
    }
};

inline PlainDocument::Cut PlainDocument::cutAt(int from, int to, bool removeEmptied) const
{
    Cut cut;
    // The removed tokens.
    cut.begin = from == to ? insertionToken(from) : [&] {
        std::size_t i = tokenAfter(from);
        while (!counts(tokens[i]))
            ++i;
        return i;
    }();
    cut.end = from == to ? cut.begin : tokenAfter(to);
    cut.openBefore = openAt(cut.begin);
    cut.openAfter = openAt(cut.end);
    while (cut.shared < std::min(cut.openBefore.size(), cut.openAfter.size())
           && cut.openBefore[cut.shared] == cut.openAfter[cut.shared])
        ++cut.shared;
    while (cut.end + cut.ending < tokens.size() && tokens[cut.end + cut.ending].kind == Token::Close)
        ++cut.ending;
    if (removeEmptied) {
        while (cut.shared > 0 && cut.openAfter.size() - cut.ending < cut.shared
               && !hasTextBetween(cut.openBefore[cut.shared - 1], cut.begin))
            --cut.shared;
    }
    return cut;
}

inline QString PlainDocument::firstBlockOf(int from, int to, const Cut& cut, bool deletes) const
{
    QString block = blockOf(cut.begin - 1);
    if (lineOf(from) == lineOf(to) || !deletes || from != lineStart(lineOf(from)))
        return block;
    // The line that moves up keeps its own block, and the first line its identifier.
    const bool hasId = block.contains(QStringLiteral(" id="));
    return withoutId(tokens[startOfLine(cut.end - 1)].tag)
        + (hasId ? QStringLiteral(" id=FirstDiv") : QString());
}

inline void PlainDocument::closeBefore(const Cut& cut, std::size_t around, Tokens& result,
                                       std::vector<std::size_t>& dropped) const
{
    for (std::size_t k = cut.openBefore.size(); k > around; --k) {
        if (hasTextBetween(cut.openBefore[k - 1], cut.begin))
            result.push_back(tagToken(Token::Close, tokens[cut.openBefore[k - 1]].tag));
        else
            dropped.push_back(cut.openBefore[k - 1]);
    }
}

inline int PlainDocument::build(int from, int to, const std::vector<Tokens>& content,
                                const std::vector<QString>& blocks, bool removeEmptied)
{
    const bool deletes = content.size() == 1 && content[0].empty();
    const Cut cut = cutAt(from, to, deletes && removeEmptied);
    QString block = blockOf(cut.begin - 1);

    Tokens result(tokens.begin(), tokens.begin() + std::ptrdiff_t(cut.begin));
    result[startOfLine(cut.begin - 1)].tag = firstBlockOf(from, to, cut, deletes);
    std::vector<std::size_t> dropped;
    for (std::size_t i = 0; i < content.size(); ++i) {
        const std::size_t around = content.size() > 1 && content[i].empty() ? 0 : cut.shared;
        if (i == 0) {
            closeBefore(cut, around, result, dropped);
        } else {
            result.push_back(tagToken(Token::LineStart, blocks[i].isEmpty() ? withoutId(block) : blocks[i]));
            for (std::size_t k = 0; k < around; ++k)
                result.push_back(tokens[cut.openBefore[k]]);
        }
        result.insert(result.end(), content[i].begin(), content[i].end());
        if (i + 1 < content.size()) {
            for (std::size_t k = around; k > 0; --k)
                result.push_back(tagToken(Token::Close, tokens[cut.openBefore[k - 1]].tag));
            continue;
        }
        const std::size_t ended = std::min(cut.ending, cut.openAfter.size() - around);
        for (std::size_t k = around; k < cut.openAfter.size() - ended; ++k)
            result.push_back(tokens[cut.openAfter[k]]);
        result.insert(result.end(), tokens.begin() + std::ptrdiff_t(cut.end + ended), tokens.end());
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
    const bool isSeparateWord = !blocks.front().isEmpty() && inOneLine;
    const bool endsAlone = !blocks.back().isEmpty() && inOneLine;
    if (!inOneLine) {
        const int end = replace(from, to, content, blocks, false);
        if (from == lineStart(lineOf(from)) && !blocks.front().isEmpty())
            tokens[lineToken(lineOf(from))].tag = blocks.front();
        return end;
    }
    if (isSeparateWord) {
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
    if (isSeparateWord && lineCount() > 1 && isEmptyLine(first) && lineOf(end) > first) {
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

inline int PlainDocument::eraseByUser(int from, int to)
{
    const QString first = tokens[0].tag;
    const int end = erase(from, to);
    if (tokens.size() == 1 && tokens[0].tag.isEmpty())
        tokens[0].tag = first;
    return end;
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
            std::size_t a = tokenAfter(lineFrom);
            while (!counts(tokens[a]))
                ++a;
            const std::size_t b = tokenAfter(lineTo);
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
