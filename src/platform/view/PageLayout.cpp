#include "PageLayout.h"

#include <algorithm>
#include <cmath>

namespace vmk {

namespace {

using Clock = std::chrono::steady_clock;

/// The number of cached layouts of lines of normal length: a few screens.
constexpr size_t LayoutsKept = 600;

/// The cost of the shortest line, in characters.
constexpr int ShortestLine = 50;
/// The number of lines over which the cost of a character is averaged.
constexpr double PaceMemory = 8;

/// A line with inserted text, which has the look of the text before it.
LinePtr WithText(const Line& line, int offset, const QString& text)
{
    Line changed = line;
    changed.text.insert(offset, text);
    std::vector<Mark> marks = line.marks.toVector();
    for (Mark& mark : marks) {
        if (mark.pos > offset || (mark.pos == offset && offset > 0))
            mark.pos += int(text.size());
    }
    changed.marks = marks;
    return MakeLine(std::move(changed));
}

} // namespace

PageLayout::PageLayout(const DisplayDocument& shownDocument)
    : document(shownDocument)
{
}

void PageLayout::reset(double width, double dotsPerInch)
{
    pageStyle.load(document, dotsPerInch);
    setWidth(width);
}

void PageLayout::setWidth(double width)
{
    pageWidth = width;
    kept.clear();
    uses.clear();
    longLines.clear();
    preeditLine.reset();
    placeFirstLine();
    extents.assign({});
    placeEstimates(0, 0, document.loadedLineCount());
}

void PageLayout::linesChanged(int first, int removed, int inserted)
{
    preeditLine.reset();
    replaceLines(first, removed, inserted);
}

void PageLayout::linesLoaded(int first, int count)
{
    placeEstimates(first, 0, count);
}

void PageLayout::replaceLines(int first, int removed, int inserted)
{
    const auto from = longLineAt(first);
    if (removed == 1 && inserted == 1 && from != longLines.end() && from->index == first
        && from->layout->line()->block == shownLine(first)->block) {
        // After an edit, a long line keeps the layout of its unchanged parts.
        from->layout = std::make_unique<LineLayout>(shownLine(first), *from->layout);
        noteExtent(first, *from->layout);
        return;
    }
    for (auto later = longLines.erase(from, longLineAt(first + removed)); later != longLines.end(); ++later)
        later->index += inserted - removed;
    placeEstimates(first, removed, inserted);
    if (first == 0)
        placeFirstLine();
}

/// The margin of the first line collapses with that of the page, as in a browser.
void PageLayout::placeFirstLine()
{
    const double own = pageStyle.block(document.line(0).block).marginTop;
    pageTop = int(std::lround(std::max(0.0, pageStyle.topMargin() - own)));
}

/// Replaces the extents of lines by estimates, many at a time: they need no second copy of all.
void PageLayout::placeEstimates(int first, int removed, int inserted)
{
    constexpr int LinesAtOnce = 1 << 16;
    std::vector<LineExtent> made;
    made.reserve(size_t(std::min(inserted, LinesAtOnce)));
    const int end = first + inserted;
    do {
        made.clear();
        const int line = first;
        for (; first < end && first - line < LinesAtOnce; ++first)
            made.push_back(EstimateExtent(*shownLine(first), pageStyle, pageWidth));
        extents.replace(line, std::exchange(removed, 0), made);
    } while (first < end);
}

void PageLayout::setPreedit(Position place, const QString& text)
{
    if (preeditLine) {
        preeditLine.reset();
        replaceLines(preeditAt.line, 1, 1);
    }
    if (text.isEmpty())
        return;
    preeditAt = place;
    preeditText = text;
    preeditLine = WithText(document.line(place.line), place.offset, text);
    replaceLines(place.line, 1, 1);
}

std::vector<QRectF> PageLayout::preeditRects(int from, int to)
{
    std::vector<QRectF> rects;
    if (!preeditLine)
        return rects;
    LineLayout& layout = layoutOf(preeditAt.line);
    const auto top = double(lineTop(preeditAt.line));
    for (const RowBox& box : layout.boxes(preeditAt.offset + from, preeditAt.offset + to))
        rects.emplace_back(box.left, top + box.top, box.right - box.left, box.height);
    noteExtent(preeditAt.line, layout);
    return rects;
}

int64_t PageLayout::height() const
{
    return pageTop + extents.totalHeight() + std::lround(pageStyle.bottomMargin());
}

int64_t PageLayout::lineTop(int line) const
{
    return pageTop + extents.top(line);
}

int PageLayout::lineAt(double y) const
{
    return extents.lineAt(int64_t(std::floor(y)) - pageTop);
}

QRectF PageLayout::caretRect(Position place)
{
    LineLayout& layout = layoutOf(place.line);
    const int offset = shownOffset(place);
    const RowBox row = layout.rowOf(offset);
    const double x = layout.xOf(offset);
    noteExtent(place.line, layout);
    return {x, double(lineTop(place.line)) + row.top, 0, row.height};
}

Position PageLayout::positionAt(QPointF point)
{
    const int line = lineAt(point.y());
    LineLayout& layout = layoutOf(line);
    const RowBox row = layout.rowAt(point.y() - double(lineTop(line)));
    const int offset = layout.offsetAt(row, point.x());
    noteExtent(line, layout);
    return document.valid(placeOf(line, offset));
}

std::vector<QRectF> PageLayout::rects(Position from, Position to)
{
    std::vector<QRectF> rects;
    for (int line = from.line; line <= to.line; ++line) {
        // A range that ends at the beginning of a line does not include that line.
        if (line == to.line && to.offset == 0 && from < to)
            break;
        LineLayout& layout = layoutOf(line);
        const int textEnd = int(shownLine(line)->text.size());
        const int begin = line == from.line ? shownOffset(from) : 0;
        const int end = line == to.line ? shownOffset(to) : textEnd;
        const std::vector<RowBox> boxes = layout.boxes(begin, end);
        noteExtent(line, layout);
        const auto top = double(lineTop(line));
        for (const RowBox& box : boxes)
            rects.emplace_back(box.left, top + box.top, box.right - box.left, box.height);
        if (line < to.line && !rects.empty())
            rects.back().adjust(0, 0, LineBreakWidth, 0);
    }
    return rects;
}

int64_t PageLayout::rowsAbove(Position place)
{
    LineLayout& layout = layoutOf(place.line);
    const int row = layout.rowNumber(shownOffset(place));
    noteExtent(place.line, layout);
    return extents.rowsBefore(place.line) + row;
}

std::pair<Position, Position> PageLayout::rowEnds(Position place)
{
    LineLayout& layout = layoutOf(place.line);
    const RowBox row = layout.rowOf(shownOffset(place));
    // After the last blank of a wrapped row, the caret would appear on the next row.
    const bool lastRow = row.to >= shownLine(place.line)->text.size();
    const int end = lastRow ? row.to : layout.previousCursorPosition(row.to);
    noteExtent(place.line, layout);
    return {placeOf(place.line, row.from), placeOf(place.line, std::max(row.from, end))};
}

Position PageLayout::onRow(Position place, double x)
{
    LineLayout& layout = layoutOf(place.line);
    const int offset = layout.offsetAt(layout.rowOf(shownOffset(place)), x);
    noteExtent(place.line, layout);
    return document.valid(placeOf(place.line, offset));
}

Position PageLayout::next(Position place)
{
    if (place.offset >= document.line(place.line).text.size())
        return document.hasLine(place.line + 1) ? Position{place.line + 1, 0} : place;
    return {place.line, layoutOf(place.line).nextCursorPosition(place.offset)};
}

Position PageLayout::previous(Position place)
{
    if (place.offset > 0)
        return {place.line, layoutOf(place.line).previousCursorPosition(place.offset)};
    if (place.line == 0)
        return place;
    return {place.line - 1, int(document.line(place.line - 1).text.size())};
}

bool PageLayout::prepare(double top, double bottom)
{
    bool changed = false;
    int line = lineAt(top);
    auto y = double(lineTop(line));
    for (; line < document.loadedLineCount() && y < bottom; ++line) {
        const LineExtent before = extents.at(line);
        LineLayout& layout = layoutOf(line);
        layout.prepare(top - y, bottom - y);
        noteExtent(line, layout);
        const LineExtent after = extents.at(line);
        changed = changed || after.height != before.height;
        y += after.height;
    }
    return changed;
}

bool PageLayout::measureFor(std::chrono::microseconds time, int nearLine)
{
    const Clock::time_point deadline = Clock::now() + time;
    Clock::time_point now = Clock::now();
    int line = nearLine;
    bool begun = false;
    while (!isMeasured()) {
        line = extents.nextUnmeasured(line);
        if (line < 0)
            line = extents.nextUnmeasured(0);
        const auto length = std::clamp(int(shownLine(line)->text.size()), ShortestLine, LineLayout::LongLine);
        if (begun && now + std::chrono::duration_cast<Clock::duration>(length * timePerCharacter) > deadline)
            break;
        begun = true;
        measureLine(line);
        const Clock::time_point before = std::exchange(now, Clock::now());
        timePerCharacter += ((now - before) / double(length) - timePerCharacter) / PaceMemory;
    }
    return !isMeasured();
}

LayoutAnchor PageLayout::anchorAt(double y)
{
    const int line = lineAt(y);
    LineLayout& layout = layoutOf(line);
    const double inside = y - double(lineTop(line));
    const RowBox row = layout.rowAt(inside);
    noteExtent(line, layout);
    return {placeOf(line, row.from), inside - row.top};
}

double PageLayout::heightOf(const LayoutAnchor& anchor)
{
    LineLayout& layout = layoutOf(anchor.place.line);
    const RowBox row = layout.rowOf(shownOffset(anchor.place));
    noteExtent(anchor.place.line, layout);
    return double(lineTop(anchor.place.line)) + row.top + anchor.below;
}

void PageLayout::paint(QPainter& painter, const Painting& painting)
{
    const int last = lineAt(painting.area.bottom());
    for (int line = lineAt(painting.area.top()); line <= last; ++line)
        paintLine(painter, painting, line);
}

void PageLayout::paintLine(QPainter& painter, const Painting& painting, int line)
{
    LineLayout& layout = layoutOf(line);
    const auto top = double(lineTop(line));
    const Position start = std::max(painting.selectionStart, Position{line, 0});
    const Position end = std::min(painting.selectionEnd, Position{line + 1, 0});
    QList<QTextLayout::FormatRange> selections;
    if (start < end) {
        const int textEnd = int(shownLine(line)->text.size());
        const int from = shownOffset(start);
        const int to = end.line > line ? textEnd : shownOffset(end);
        QTextCharFormat format;
        format.setBackground(painting.selectionBackground);
        format.setForeground(painting.selectionText);
        selections.append({from, to - from, format});
        if (end.line > line) {
            const RowBox row = layout.rowOf(textEnd);
            painter.fillRect(QRectF(layout.xOf(textEnd), top + row.top, LineBreakWidth, row.height),
                             painting.selectionBackground);
        }
    }
    layout.draw(painter, QPointF(0, top), painting.area.top() - top, painting.area.bottom() - top,
                selections);
    noteExtent(line, layout);
}

const LinePtr& PageLayout::shownLine(int line) const
{
    return preeditLine && line == preeditAt.line ? preeditLine : document.linePtr(line);
}

int PageLayout::shownOffset(Position place) const
{
    const bool isAfter = preeditLine && place.line == preeditAt.line && place.offset > preeditAt.offset;
    return isAfter ? place.offset + int(preeditText.size()) : place.offset;
}

Position PageLayout::placeOf(int line, int shownOffset) const
{
    if (!preeditLine || line != preeditAt.line || shownOffset <= preeditAt.offset)
        return {line, shownOffset};
    return {line, std::max(preeditAt.offset, shownOffset - int(preeditText.size()))};
}

LineLayout& PageLayout::layoutOf(int line)
{
    const LinePtr& shown = shownLine(line);
    const auto longLine = longLineAt(line);
    if (longLine != longLines.end() && longLine->index == line)
        return *longLine->layout;
    if (const auto found = kept.find(shown.get()); found != kept.end()) {
        uses.splice(uses.begin(), uses, found->second.use);
        return *found->second.layout;
    }
    auto layout = std::make_unique<LineLayout>(shown, pageStyle, pageWidth, extents.at(line).rows);
    if (layout->isLong())
        return *longLines.insert(longLine, LongLine{line, std::move(layout)})->layout;
    while (kept.size() >= LayoutsKept) {
        kept.erase(uses.back());
        uses.pop_back();
    }
    uses.push_front(shown.get());
    return *kept.emplace(shown.get(), Kept{std::move(layout), uses.begin()}).first->second.layout;
}

std::vector<PageLayout::LongLine>::iterator PageLayout::longLineAt(int line)
{
    return std::lower_bound(longLines.begin(), longLines.end(), line,
                            [](const LongLine& entry, int index) { return entry.index < index; });
}

void PageLayout::noteExtent(int line, const LineLayout& layout)
{
    extents.set(line, layout.extent());
}

/// Measures a line, or the next piece of a long one.
void PageLayout::measureLine(int line)
{
    if (shownLine(line)->text.size() <= LineLayout::LongLine) {
        extents.set(line, LineLayout(shownLine(line), pageStyle, pageWidth, 1).extent());
        return;
    }
    LineLayout& layout = layoutOf(line);
    layout.settleStep();
    layout.trim();
    noteExtent(line, layout);
}

} // namespace vmk
