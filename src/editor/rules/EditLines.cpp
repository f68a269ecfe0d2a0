#include "EditLines.h"

#include "BookVariables.h"
#include "DisplayPage.h"
#include "HtmlWriter.h"
#include "LayoutQuery.h"
#include "LineEdit.h"

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

Position EndOfLine(const DisplayDocument& document, int line)
{
    return {line, int(document.line(line).text.size())};
}

/// The new positions after whole lines are removed: the start of the following line, or the end of the
/// previous line if none follows.
EditMap MapOfRemoval(const DisplayDocument& document, int first, int count)
{
    const int after = first + count;
    if (document.hasLine(after))
        return {{first, 0}, {after, 0}, {first, 0}};
    const Position before = first > 0 ? EndOfLine(document, first - 1) : Position{};
    return {before, document.end(), before};
}

/// True if each element that begins or ends between two marks does both there.
bool IsBalanced(const Line& line, std::size_t from, std::size_t to)
{
    int depth = 0;
    for (std::size_t i = from; i < to && depth >= 0; ++i)
        depth += line.marks[i].open ? 1 : -1;
    return depth == 0;
}

/// Part of a line with the elements that it contains completely.
QString PieceToCopy(const DisplayDocument& document, Position start, Position end)
{
    const Line& line = document.line(start.line);
    Cut from = RangeStartCut(line, start.offset);
    Cut to = RangeEndCut(line, end.offset);
    const auto beginsHere = [&] {
        return from.mark > 0 && line.marks[from.mark - 1].open
            && line.marks[from.mark - 1].pos == from.offset;
    };
    const auto endsHere = [&] {
        return to.mark < line.marks.size() && !line.marks[to.mark].open
            && line.marks[to.mark].pos == to.offset;
    };
    if (IsBalanced(line, from.mark, to.mark)) {
        while (beginsHere() && endsHere()) {
            --from.mark;
            ++to.mark;
        }
    }
    return HtmlBetween(document, start.line, from, to);
}

} // namespace

void MarkEdit(int steps)
{
    UndoSteps = steps;
    BookUnchanged = false;
}

SelectedLines TakeSelectedLines(DisplayDocument& document)
{
    TextRange range = page::createRange(document);
    SelectedLines lines;
    lines.at = range.start();
    if (range.boundingWidth() <= 0) {
        lines.caret = true;
        lines.place = {range.offsetLeft(), range.offsetTop()};
    }
    lines.first = NodeAtRangeStart(range);
    lines.last = NodeAtRangeEnd(range);
    return lines;
}

void SelectLines(DisplayDocument& document, const SelectedLines& lines)
{
    TextRange(document, page::item(document, lines.first).contentStart(),
              page::item(document, lines.last).contentEnd())
        .select();
}

namespace {

void RemoveAndInsertLines(DisplayDocument& document, const SelectedLines& lines,
                          std::vector<LinePtr> newLines)
{
    const DisplayDocument::EditGroup oneStep(document);
    const int first = lines.first - 1;
    const int count = lines.last - lines.first + 1;
    const int added = int(newLines.size());

    document.splice(first, count, {}, MapOfRemoval(document, first, count));

    // A document that has lost all its lines consists of one empty line, which is replaced here.
    const bool wasAll = count > 0 && !document.hasLine(1) && document.line(0).block == NoTag
        && document.line(0).text.isEmpty();
    if (newLines.empty()) {
        // The second step changes nothing, so that an undo command takes back this edit and no other.
        document.splice(0, 0, {}, {{0, 0}, {0, 0}, {0, 0}});
    } else if (wasAll) {
        const Position newEnd{added - 1, int(newLines.back()->text.size())};
        document.splice(0, 1, std::move(newLines), {{0, 0}, {0, 0}, newEnd});
    } else if (document.hasLine(first)) {
        document.splice(first, 0, std::move(newLines), {{first, 0}, {first, 0}, {first + added, 0}});
    } else {
        const Position before = EndOfLine(document, first - 1);
        const Position newEnd{first - 1 + added, int(newLines.back()->text.size())};
        document.splice(first, 0, std::move(newLines), {before, before, newEnd});
    }
}

} // namespace

void ReplaceLines(DisplayDocument& document, const SelectedLines& lines, std::vector<LinePtr> newLines)
{
    RemoveAndInsertLines(document, lines, std::move(newLines));
    const Position start{};
    document.splice(0, 0, {}, {start, start, start});
}

QString HtmlBetween(const DisplayDocument& document, int line, Cut from, Cut to)
{
    QString html;
    WriteContent(html, document.tags(), ContentBetween(document.line(line), from, to));
    return html;
}

QString HtmlToCopy(const TextRange& range)
{
    if (range.isNull() || range.isEmpty())
        return {};
    DisplayDocument& document = *range.ofDocument();
    const Position start = range.start();
    Position end = range.end();
    // A selection up to the beginning of a line ends at the end of the previous line.
    if (end.line > start.line && end.offset == 0)
        end = EndOfLine(document, end.line - 1);
    if (start.line != end.line)
        return TextRange(document, start, end).htmlText();

    const bool isWholeLine = start.offset == 0 && end == EndOfLine(document, start.line);
    return isWholeLine ? page::item(document, start.line + 1).outerHTML() : PieceToCopy(document, start, end);
}

void PlaceCaret(DisplayDocument& document, QPoint clientPoint)
{
    TextRange range = page::createRange(document);
    range.moveToPoint(clientPoint.x(), clientPoint.y());
    range.select();
}

void PutCaretBack(DisplayDocument& document, const SelectedLines& lines, QPoint move, int characters)
{
    TextRange range(document, lines.at, lines.at);
    const bool breaksAnew
        = document.layout() != nullptr && document.layout()->isLaidOutInPieces(lines.at.line);
    if (!breaksAnew && range.offsetTop() == lines.place.y()) {
        range.moveToPoint(lines.place.x() + move.x(), lines.place.y() + move.y());
        range.move(TextUnit::Character, characters);
    }
    range.select();
}

} // namespace vmk
