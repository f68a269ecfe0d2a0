#include "EditLines.h"

#include "DisplayPage.h"
#include "Globals.h"

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

Position EndOfLine(const DisplayDocument& document, int line)
{
    return {line, int(document.line(line).text.size())};
}

/// How places move when whole lines go: to the start of the line that follows, or to the end of the one
/// before where none follows.
EditMap MapOfRemoval(const DisplayDocument& document, int first, int count)
{
    const int behind = first + count;
    if (behind < document.lineCount())
        return {{first, 0}, {behind, 0}, {first, 0}};
    const Position before = first > 0 ? EndOfLine(document, first - 1) : Position{};
    return {before, document.end(), before};
}

} // namespace

void MarkEdit(int steps)
{
    UndoSteps = steps;
    BookUnchanged = false;
}

SelectedLines TakeSelectedLines(DisplayDocument& document)
{
    TextRange range = createRange(document);
    SelectedLines lines;
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
    TextRange(document, item(document, lines.first).contentStart(), item(document, lines.last).contentEnd())
        .select();
}

void ReplaceLines(DisplayDocument& document, const SelectedLines& lines, std::vector<LinePtr> newLines)
{
    const int first = lines.first - 1;
    const int count = lines.last - lines.first + 1;
    const int added = int(newLines.size());

    document.splice(first, count, {}, MapOfRemoval(document, first, count));

    // A document that has lost all its lines stands as one empty line, which now gives way.
    const bool wasAll = count > 0 && document.lineCount() == 1 && document.line(0).block == NoTag
        && document.line(0).text.isEmpty();
    if (wasAll) {
        const Position newEnd{added - 1, int(newLines.back()->text.size())};
        document.splice(0, 1, std::move(newLines), {{0, 0}, {0, 0}, newEnd});
    } else if (first < document.lineCount()) {
        document.splice(first, 0, std::move(newLines), {{first, 0}, {first, 0}, {first + added, 0}});
    } else {
        const Position before = EndOfLine(document, first - 1);
        const Position newEnd{first - 1 + added, int(newLines.back()->text.size())};
        document.splice(first, 0, std::move(newLines), {before, before, newEnd});
    }
}

void PlaceCaret(DisplayDocument& document, QPoint clientPoint)
{
    TextRange range = createRange(document);
    range.moveToPoint(clientPoint.x(), clientPoint.y());
    range.select();
}

} // namespace vmk
