#include "DisplayPage.h"

#include "LayoutQuery.h"

namespace vmk {

namespace page {

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
    static_cast<void>(document.lineCount()); // loads all lines
    return getLoadedElementsByName(document, name);
}

std::vector<DisplayElement> getLoadedElementsByName(DisplayDocument& document, const QString& name)
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
    for (int i = 0; any && i < document.loadedLineCount(); ++i) {
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

} // namespace page

// ---------------------------------------------------------------- operations that the commands share

namespace {

int NodeIndex(const DisplayDocument* document, int line)
{
    return document && document->line(line).block != NoTag ? line + 1 : -1;
}

/// Searches from a position for either of two characters, one character at a time.
/// \param step  -1 to the left, 1 to the right
/// \return the position of `wanted`, if it comes before `unwanted` and within the limit
std::optional<Position> WhicheverFirst(DisplayDocument& document, Position place, int step,
                                       QStringView wanted, QStringView unwanted)
{
    constexpr int Limit = 50;
    TextRange character(document, place, place);
    for (int i = 0; i <= Limit; ++i) {
        character.move(TextUnit::Character, i == 0 && step > 0 ? 0 : step);
        TextRange next = character;
        next.moveEnd(TextUnit::Character, 1);
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
    return NodeIndex(range.ofDocument(), range.start().line);
}

int NodeAtRangeEnd(const TextRange& range)
{
    // At the start of a line the previous character is the line break.
    const bool atBreak = !range.isEmpty() && range.end().offset == 0;
    return NodeIndex(range.ofDocument(), range.end().line - (atBreak ? 1 : 0));
}

int RangeLength(const TextRange& range)
{
    TextRange probe = range;
    constexpr int Everything = -1000000000;
    const int start = probe.moveStart(TextUnit::Character, Everything);
    return start - probe.moveEnd(TextUnit::Character, Everything);
}

SelectedNodes SelectNodes(DisplayDocument& document, SelectNodesOptions options)
{
    SelectedNodes nodes;
    nodes.range = page::createRange(document);
    const int first = NodeAtRangeStart(nodes.range);
    const int last = NodeAtRangeEnd(nodes.range);
    if (first < 1 || last < 1)
        return nodes;

    nodes.first = first;
    nodes.last = last;
    nodes.range.moveToElementText(page::item(document, first));
    if (first != last) {
        TextRange lastLine = nodes.range;
        lastLine.moveToElementText(page::item(document, last));
        nodes.range.setEndPoint(EndPoints::EndToEnd, lastLine);
    }
    if (options.select)
        nodes.range.select();
    if (options.returnHtml)
        nodes.html = first == last ? page::item(document, first).outerHTML() : nodes.range.htmlText();
    return nodes;
}

std::optional<TextRange> TagAround(const TextRange& range)
{
    DisplayDocument& document = *range.ofDocument();
    const auto left = WhicheverFirst(document, range.start(), -1, u"<", u">");
    const auto right = left ? WhicheverFirst(document, range.end(), 1, u">", u"<") : std::nullopt;
    if (!right)
        return std::nullopt;
    return TextRange(document, *left, {right->line, right->offset + 1});
}

bool CaretInsideTag(DisplayDocument& document)
{
    return TagAround(page::createRange(document)).has_value();
}

} // namespace vmk
