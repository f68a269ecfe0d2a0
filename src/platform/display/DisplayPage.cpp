#include "DisplayPage.h"

#include "LayoutQuery.h"

namespace vmk {

// ---------------------------------------------------------------- selection

TextRange createRange(DisplayDocument& document)
{
    return {document, document.selection().start(), document.selection().end()};
}

QString type(const DisplayDocument& document)
{
    return document.selection().isEmpty() ? QStringLiteral("None") : QStringLiteral("Text");
}

void clear(DisplayDocument& document)
{
    document.deleteSelection();
}

void empty(DisplayDocument& document)
{
    const Position caret = document.selection().end();
    document.setSelection(caret, caret);
}

// ---------------------------------------------------------------- body and document

TextRange createTextRange(DisplayDocument& document)
{
    return {document, {}, document.end()};
}

DisplayElement item(DisplayDocument& document, int index)
{
    return {document, index - 1};
}

std::vector<DisplayElement> getElementsByName(DisplayDocument& document, const QString& name)
{
    std::vector<DisplayElement> found;
    if (name.isEmpty())
        return found;
    const TagTable& tags = document.tags();
    std::vector<bool> isNamed(std::size_t(tags.size()));
    bool any = false;
    for (TagId tag = 0; tag < TagId(tags.size()); ++tag) {
        isNamed[tag] = tags[tag].id == name || tags[tag].value(u"name") == name;
        any = any || isNamed[tag];
    }
    for (int i = 0; any && i < document.lineCount(); ++i) {
        const Line& line = document.line(i);
        if (isNamed[line.block])
            found.emplace_back(document, i);
        for (std::size_t k = 0; k < line.marks.size(); ++k) {
            if (line.marks[k].open && isNamed[line.marks[k].tag])
                found.emplace_back(document, i, k);
        }
    }
    return found;
}

DisplayElement elementFromPoint(DisplayDocument& document, int x, int y)
{
    const int line = document.layout() ? document.layout()->lineAt({x, y}) : -1;
    return line < 0 ? DisplayElement() : DisplayElement(document, line);
}

QString innerText(const DisplayDocument& document)
{
    qsizetype length = 0;
    for (int i = 0; i < document.lineCount(); ++i)
        length += document.line(i).text.size() + 2;
    QString text;
    text.reserve(length);
    for (int i = 0; i < document.lineCount(); ++i) {
        if (i > 0)
            text += u"\r\n";
        text += document.line(i).text;
    }
    return text;
}

// ---------------------------------------------------------------- operations that the commands share

namespace {

int nodeIndex(const DisplayDocument* document, int line)
{
    return document && document->line(line).block != NoTag ? line + 1 : -1;
}

/// Searches from a position for either of two characters, one character at a time.
/// \param step  -1 to the left, 1 to the right
/// \return the position of `wanted`, if it comes before `unwanted` and within the limit
std::optional<Position> whicheverFirst(DisplayDocument& document, Position place, int step,
                                       QStringView wanted, QStringView unwanted)
{
    constexpr int Limit = 50;
    TextRange character(document, place, place);
    for (int i = 0; i <= Limit; ++i) {
        character.move(u"character", i == 0 && step > 0 ? 0 : step);
        TextRange next = character;
        next.moveEnd(u"character", 1);
        const QString text = next.text();
        if (text == wanted)
            return character.start();
        if (text == unwanted || (step < 0 && character.start() == Position()))
            return std::nullopt;
    }
    return std::nullopt;
}

} // namespace

int NodeAtRangeStart(const TextRange& range)
{
    return nodeIndex(range.ofDocument(), range.start().line);
}

int NodeAtRangeEnd(const TextRange& range)
{
    // At the start of a line the previous character is the line break.
    const bool atBreak = !range.isEmpty() && range.end().offset == 0;
    return nodeIndex(range.ofDocument(), range.end().line - (atBreak ? 1 : 0));
}

int RangeLength(const TextRange& range)
{
    TextRange probe = range;
    constexpr int Everything = -1000000000;
    const int start = probe.moveStart(u"character", Everything);
    return start - probe.moveEnd(u"character", Everything);
}

SelectedNodes SelectNodes(DisplayDocument& document, bool select, bool returnHtml)
{
    SelectedNodes nodes;
    nodes.range = createRange(document);
    const int first = NodeAtRangeStart(nodes.range);
    const int last = NodeAtRangeEnd(nodes.range);
    if (first < 1 || last < 1)
        return nodes;

    nodes.first = first;
    nodes.last = last;
    nodes.range.moveToElementText(item(document, first));
    if (first != last) {
        TextRange lastLine = nodes.range;
        lastLine.moveToElementText(item(document, last));
        nodes.range.setEndPoint(u"EndToEnd", lastLine);
    }
    if (select)
        nodes.range.select();
    if (returnHtml)
        nodes.html = first == last ? item(document, first).outerHTML() : nodes.range.htmlText();
    return nodes;
}

std::optional<TextRange> TagAround(const TextRange& range)
{
    DisplayDocument& document = *range.ofDocument();
    const auto left = whicheverFirst(document, range.start(), -1, u"<", u">");
    const auto right = left ? whicheverFirst(document, range.end(), 1, u">", u"<") : std::nullopt;
    if (!right)
        return std::nullopt;
    return TextRange(document, *left, {right->line, right->offset + 1});
}

bool CaretInsideTag(DisplayDocument& document)
{
    return TagAround(createRange(document)).has_value();
}

} // namespace vmk
