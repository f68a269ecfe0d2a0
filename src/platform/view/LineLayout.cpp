#include "LineLayout.h"

#include "CommonEnds.h"
#include "NonBreakingSpace.h"

#include <algorithm>
#include <cmath>

namespace vmk {

namespace {

/// The number of characters in a piece of a long line.
constexpr int PieceLength = 2048;
/// Greater than the number of characters in any row.
constexpr int Lookahead = 1024;
/// The number of pieces of a long line that keep their shaped text.
constexpr size_t PiecesKept = 8;
/// The minimum width for text in pixels, even with large margins.
constexpr double MinimumTextWidth = 60;
/// The visible character for `NbspMarker`, for which fonts have no glyph.
constexpr QChar NbspGlyph = u'\u25af';

bool IsBlankCharacter(QChar c)
{
    return c == u' ' || c == u'\t';
}

struct TextArea
{
    double left;
    double width;
};

TextArea AreaOfText(const BlockLook& look, double pageWidth)
{
    const double left = std::clamp(look.marginLeft, 0.0, std::max(0.0, pageWidth - MinimumTextWidth));
    const double right = std::max(0.0, look.marginRight);
    return {left, std::max(MinimumTextWidth, pageWidth - left - right)};
}

/// Breaks text into rows as a layout would, using the widths of single characters.
class RowCounter
{
public:
    explicit RowCounter(double rowWidth)
        : width(float(rowWidth))
    {
    }

    void add(QStringView text, CharWidths& widths)
    {
        height = std::max(height, widths.rowHeight());
        for (const QChar c : text) {
            const float advance = widths.width(c);
            if (IsBlankCharacter(c)) {
                // A blank never begins a row; it extends beyond the edge.
                x += advance;
                word = 0;
                continue;
            }
            if (x + advance > width) {
                ++rows;
                // A whole word moves to the next row, unless it is longer than a row.
                x = word + advance <= width ? word : 0;
                if (x == 0)
                    word = 0;
            }
            x += advance;
            word += advance;
            if (c == u'-')
                word = 0;
        }
    }

    [[nodiscard]] int rowCount() const { return rows; }
    [[nodiscard]] int rowHeight() const { return height; }

private:
    float width;
    float x = 0;
    float word = 0;
    int rows = 1;
    int height = 0;
};

/// A row may be broken after a slash, except after the slash of an end tag, so that `</p>` is not split.
void KeepEndTagsWhole(QTextLine& row, const QString& text, double width)
{
    const int end = row.textStart() + row.textLength();
    const bool apart
        = end < text.size() && row.textLength() > 2 && text[end - 1] == u'/' && text[end - 2] == u'<';
    if (!apart)
        return;
    row.setNumColumns(row.textLength() - 2, width);
    // A tag that fills the whole row has to be broken.
    if (row.textLength() == 0 || row.textStart() + row.textLength() >= end)
        row.setLineWidth(width);
}

/// The change of an edit between two versions of a line: [from, oldEnd) became [from, newEnd).
struct Change
{
    int from;
    int oldEnd;
    int newEnd;
};

Change LineChangeBetween(const Line& before, const Line& after)
{
    const int oldSize = int(before.text.size());
    const int newSize = int(after.text.size());
    int prefix = int(CommonFront(before.text, after.text));
    int suffix = int(CommonBack(before.text, after.text, prefix));
    // Different marks extend the change: the common ones at the beginning, then, after the shift, at the end.
    const auto& a = before.marks;
    const auto& b = after.marks;
    const int shift = newSize - oldSize;
    const auto front = size_t(CommonFront(a, b));
    const auto back = size_t(CommonBack(a, b, std::ptrdiff_t(front), [shift](Mark moved, const Mark& mark) {
        moved.pos += shift;
        return moved == mark;
    }));
    if (front < a.size())
        prefix = std::min(prefix, int(a[front].pos));
    if (front < b.size())
        prefix = std::min(prefix, int(b[front].pos));
    if (back < a.size())
        suffix = std::min(suffix, oldSize - int(a[a.size() - 1 - back].pos));
    if (back < b.size())
        suffix = std::min(suffix, newSize - int(b[b.size() - 1 - back].pos));
    suffix = std::clamp(suffix, 0, std::min(oldSize, newSize) - prefix);
    return {prefix, oldSize - suffix, newSize - suffix};
}

} // namespace

LineExtent EstimateExtent(const Line& line, PageStyle& style, double pageWidth)
{
    const BlockLook look = style.block(line.block);
    RowCounter counter(AreaOfText(look, pageWidth).width);
    counter.add({}, style.widths(look.text));
    style.forEachRun(line, [&](int from, int to, LookId id) {
        counter.add(QStringView(line.text).sliced(from, to - from), style.widths(id));
    });
    const int margins = int(std::lround(look.marginTop) + std::lround(look.marginBottom));
    LineExtent extent;
    extent.rows = unsigned(counter.rowCount());
    extent.height = unsigned(margins + counter.rowCount() * counter.rowHeight());
    return extent;
}

LineLayout::LineLayout(LinePtr line, PageStyle& pageStyle, double width, unsigned estimatedRows)
    : content(std::move(line))
    , style(&pageStyle)
    , pageWidth(width)
{
    takeStyle();
    const int size = int(content->text.size());
    if (size > LongLine) {
        appendPieces(0, size);
        shareRows(estimatedRows);
        return;
    }
    Piece whole;
    whole.length = size;
    pieces.push_back(std::move(whole));
    settlePiece(0);
}

LineLayout::LineLayout(LinePtr line, LineLayout& old)
    : content(std::move(line))
    , style(old.style)
    , pageWidth(old.pageWidth)
    , useCount(old.useCount)
{
    takeStyle();
    const Change change = LineChangeBetween(*old.content, *content);
    const int shift = change.newEnd - change.oldEnd;

    // The pieces that the edit touches are laid out again as one range, together with the row before them, to
    // which a word may move.
    const size_t first = old.pieceAt(change.from);
    const size_t last = old.pieceAt(change.oldEnd);
    for (size_t i = 0; i < first; ++i)
        pieces.push_back(std::move(old.pieces[i]));
    if (!pieces.empty())
        pieces.back().endsOnRow = false;
    appendPieces(old.pieces[first].start, old.pieces[last].end() + shift);
    const size_t unsettledEnd = pieces.size();
    for (size_t i = first; i < unsettledEnd; ++i)
        estimate(pieces[i]);
    for (size_t i = last + 1; i < old.pieces.size(); ++i) {
        pieces.push_back(std::move(old.pieces[i]));
        pieces.back().start += shift;
    }
    old.pieces.clear();

    // Usually a row soon ends where it ended before, and the rest is unchanged. Otherwise the idle steps
    // continue from here.
    const size_t begin = first > 0 ? first - 1 : 0;
    const size_t piecesAtOnce = unsettledEnd - begin <= 3 ? 4 : 1;
    for (size_t i = begin; i < pieces.size() && i < begin + piecesAtOnce; ++i) {
        if (!pieces[i].laidOut || !pieces[i].endsOnRow)
            settlePiece(i);
    }
}

void LineLayout::takeStyle()
{
    look = style->block(content->block);
    const TextArea area = AreaOfText(look, pageWidth);
    textLeft = area.left;
    textWidth = area.width;
    marginTop = int(std::lround(look.marginTop));
    marginBottom = int(std::lround(look.marginBottom));
}

LineExtent LineLayout::extent() const
{
    LineExtent extent;
    int height = marginTop + marginBottom;
    int rows = 0;
    for (const Piece& piece : pieces) {
        height += piece.height;
        rows += piece.rows;
    }
    extent.height = unsigned(height);
    extent.rows = unsigned(rows);
    extent.measured = isSettled() ? 1 : 0;
    return extent;
}

bool LineLayout::isSettled() const
{
    return std::all_of(pieces.begin(), pieces.end(),
                       [](const Piece& piece) { return piece.laidOut && piece.endsOnRow; });
}

void LineLayout::settleStep()
{
    const auto next = std::find_if(pieces.begin(), pieces.end(),
                                   [](const Piece& piece) { return !piece.laidOut || !piece.endsOnRow; });
    if (next != pieces.end())
        settlePiece(size_t(next - pieces.begin()));
}

void LineLayout::prepare(double top, double bottom)
{
    int y = marginTop;
    for (size_t i = 0; i < pieces.size() && y < bottom; ++i) {
        if (y + pieces[i].height > top)
            ready(i);
        y += pieces[i].height;
    }
}

void LineLayout::prepareOffset(int offset)
{
    ready(pieceAt(offset));
}

void LineLayout::trim()
{
    size_t kept = 0;
    for (const Piece& piece : pieces)
        kept += piece.layout ? 1 : 0;
    while (kept > PiecesKept) {
        Piece* oldest = nullptr;
        for (Piece& piece : pieces) {
            if (piece.layout && (!oldest || piece.lastUse < oldest->lastUse))
                oldest = &piece;
        }
        oldest->layout.reset();
        --kept;
    }
}

RowBox LineLayout::rowOf(int offset)
{
    const size_t index = pieceAt(offset);
    const Piece& piece = ready(index);
    const QTextLine row
        = piece.layout->lineForTextPosition(std::clamp(offset - piece.start, 0, piece.length));
    return rowBox(piece, row.isValid() ? row : piece.layout->lineAt(piece.layout->lineCount() - 1),
                  topOf(index));
}

RowBox LineLayout::rowAt(double y)
{
    size_t index = 0;
    int top = marginTop;
    while (index + 1 < pieces.size() && y >= top + pieces[index].height)
        top += pieces[index++].height;
    const Piece& piece = ready(index);
    int row = 0;
    while (row + 1 < piece.layout->lineCount() && y >= top + piece.layout->lineAt(row + 1).y())
        ++row;
    return rowBox(piece, piece.layout->lineAt(row), top);
}

double LineLayout::xOf(int offset)
{
    const Piece& piece = ready(pieceAt(offset));
    const int local = std::clamp(offset - piece.start, 0, piece.length);
    const QTextLine row = piece.layout->lineForTextPosition(local);
    return row.isValid() ? textLeft + row.cursorToX(local) : textLeft;
}

int LineLayout::offsetAt(const RowBox& row, double x)
{
    const Piece& piece = ready(pieceAt(row.from));
    const QTextLine line = piece.layout->lineForTextPosition(row.from - piece.start);
    if (!line.isValid())
        return row.from;
    const int offset = piece.start + line.xToCursor(x - textLeft);
    // After the last character of a wrapped row, the caret would appear on the next row.
    const bool lastRow = row.to >= content->text.size();
    if (lastRow || offset < row.to)
        return std::clamp(offset, row.from, row.to);
    return std::max(row.from, piece.start + piece.layout->previousCursorPosition(row.to - piece.start));
}

std::vector<RowBox> LineLayout::boxes(int from, int to)
{
    std::vector<RowBox> result;
    for (size_t index = pieceAt(from); index < pieces.size(); ++index) {
        const Piece& piece = ready(index);
        const int top = topOf(index);
        for (int i = 0; i < piece.layout->lineCount(); ++i) {
            const QTextLine row = piece.layout->lineAt(i);
            RowBox box = rowBox(piece, row, top);
            const bool lastRow = box.to >= content->text.size();
            if (box.to <= from && !lastRow)
                continue;
            if (box.from > to || (box.from == to && !result.empty()))
                return result;
            const int begin = std::max(box.from, from);
            const int end = std::min(box.to, to);
            const double x1 = textLeft + row.cursorToX(begin - piece.start);
            const double x2 = end == box.to ? box.right : textLeft + row.cursorToX(end - piece.start);
            box.from = begin;
            box.to = end;
            box.left = std::min(x1, begin == end ? x1 : x2);
            box.right = std::max(x1, begin == end ? x1 : x2);
            result.push_back(box);
            if (end >= to && (from == to || box.to > box.from))
                return result;
        }
    }
    return result;
}

int LineLayout::rowNumber(int offset)
{
    const size_t index = pieceAt(offset);
    int number = 0;
    for (size_t i = 0; i < index; ++i)
        number += pieces[i].rows;
    const Piece& piece = ready(index);
    const QTextLine row
        = piece.layout->lineForTextPosition(std::clamp(offset - piece.start, 0, piece.length));
    return number + (row.isValid() ? row.lineNumber() : 0);
}

int LineLayout::nextCursorPosition(int offset)
{
    const Piece& piece = ready(pieceAt(offset));
    return piece.start + piece.layout->nextCursorPosition(offset - piece.start);
}

int LineLayout::previousCursorPosition(int offset)
{
    const Piece& piece = ready(pieceAt(std::max(0, offset - 1)));
    return piece.start + piece.layout->previousCursorPosition(offset - piece.start);
}

void LineLayout::draw(QPainter& painter, QPointF origin, double top, double bottom,
                      const QList<QTextLayout::FormatRange>& selections)
{
    int y = marginTop;
    for (size_t i = 0; i < pieces.size() && y < bottom; ++i) {
        if (y + pieces[i].height > top) {
            const Piece& piece = ready(i);
            QList<QTextLayout::FormatRange> local;
            for (QTextLayout::FormatRange range : selections) {
                const int begin = std::max(range.start, piece.start);
                const int end = std::min(range.start + range.length, piece.end());
                if (begin >= end)
                    continue;
                range.start = begin - piece.start;
                range.length = end - begin;
                local.append(range);
            }
            const QRectF clip(0, origin.y() + top, origin.x() + pageWidth, bottom - top);
            painter.setPen(style->look(look.text).color);
            piece.layout->draw(&painter, origin + QPointF(textLeft, y), local, clip);
        }
        y += pieces[i].height;
    }
}

/// Splits text into pieces and appends them to the existing ones. They have no heights yet.
void LineLayout::appendPieces(int from, int to)
{
    const QStringView text = content->text;
    while (from < to) {
        int end = to;
        if (to - from > LongLine) {
            // An estimate of the end of a row: after a blank.
            end = from + PieceLength;
            while (end < to && end < from + LongLine && !IsBlankCharacter(text[end - 1]))
                ++end;
            if (text[end - 1].isHighSurrogate())
                --end;
        }
        Piece piece;
        piece.start = from;
        piece.length = end - from;
        pieces.push_back(std::move(piece));
        from = end;
    }
    // A line without text still has one row.
    if (pieces.empty())
        pieces.emplace_back();
}

void LineLayout::estimate(Piece& piece) const
{
    CharWidths& widths = style->widths(look.text);
    RowCounter counter(textWidth);
    counter.add(QStringView(content->text).sliced(piece.start, piece.length), widths);
    piece.rows = counter.rowCount();
    piece.height = counter.rowCount() * widths.rowHeight();
}

/// Distributes the estimated rows among the pieces without examining the text.
void LineLayout::shareRows(unsigned rows)
{
    const int rowHeight = style->widths(look.text).rowHeight();
    const auto rowsUpTo = [&](int offset) { return int(int64_t(rows) * offset / content->text.size()); };
    for (Piece& piece : pieces) {
        piece.rows = std::max(1, rowsUpTo(piece.end()) - rowsUpTo(piece.start));
        piece.height = piece.rows * rowHeight;
    }
}

size_t LineLayout::pieceAt(int offset) const
{
    const auto next = std::upper_bound(pieces.begin(), pieces.end(), offset,
                                       [](int place, const Piece& piece) { return place < piece.start; });
    return next == pieces.begin() ? 0 : size_t(next - pieces.begin()) - 1;
}

int LineLayout::topOf(size_t piece) const
{
    int y = marginTop;
    for (size_t i = 0; i < piece; ++i)
        y += pieces[i].height;
    return y;
}

/// Lays out a piece so that it ends with a full row, and moves the start of the next one there.
void LineLayout::settlePiece(size_t index)
{
    const int textEnd = int(content->text.size());
    Piece& piece = pieces[index];
    const int wanted = piece.end();
    // Includes some more text, so that the last row is filled as in the whole line.
    const int end = layOut(piece, std::min(textEnd, wanted + Lookahead), wanted);
    piece.length = end - piece.start;
    piece.endsOnRow = true;
    if (end == wanted)
        return;

    // The pieces that the row extends into begin later now, or are removed.
    size_t next = index + 1;
    while (next < pieces.size() && pieces[next].end() <= end)
        ++next;
    pieces.erase(pieces.begin() + std::ptrdiff_t(index) + 1, pieces.begin() + std::ptrdiff_t(next));
    if (index + 1 < pieces.size()) {
        Piece& following = pieces[index + 1];
        following.length = following.end() - end;
        following.start = end;
        following.layout.reset();
        following.laidOut = false;
        estimate(following);
    }
}

/// Returns the piece with its text shaped, at its current position.
LineLayout::Piece& LineLayout::ready(size_t index)
{
    Piece& piece = pieces[index];
    if (!piece.layout) {
        const int textEnd = int(content->text.size());
        if (piece.end() == textEnd)
            piece.endsOnRow = true;
        layOut(piece, piece.endsOnRow ? std::min(textEnd, piece.end() + Lookahead) : piece.end(),
               piece.end());
    }
    piece.lastUse = ++useCount;
    return piece;
}

/// Shapes a piece's text up to `end` and breaks it into rows until one reaches `lastOffset`.
/// Returns the end of that row.
int LineLayout::layOut(Piece& piece, int end, int lastOffset)
{
    QString text = content->text.sliced(piece.start, end - piece.start);
    text.replace(QLatin1Char(NbspMarker), NbspGlyph);
    piece.layout = std::make_unique<QTextLayout>(text, style->font(look.text));
    QTextLayout& layout = *piece.layout;
    QTextOption option(look.align);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(Qt::LeftToRight);
    layout.setTextOption(option);
    layout.setCacheEnabled(true);
    if (isLong() && !openElements)
        openElements = std::make_unique<OpenElementsOfLine>(*content);
    layout.setFormats(style->formats(*content, piece.start, end - piece.start,
                                     openElements ? openElements->before(piece.start) : OpenElements()));

    layout.beginLayout();
    int height = 0;
    int reached = piece.start;
    for (QTextLine row = layout.createLine(); row.isValid(); row = layout.createLine()) {
        row.setLeadingIncluded(true);
        row.setLineWidth(textWidth);
        KeepEndTagsWhole(row, text, textWidth);
        row.setPosition(QPointF(0, height));
        height += int(std::ceil(row.height()));
        reached = piece.start + row.textStart() + row.textLength();
        if (reached >= lastOffset)
            break;
    }
    layout.endLayout();
    piece.rows = layout.lineCount();
    piece.height = height;
    piece.laidOut = true;
    piece.lastUse = ++useCount;
    return reached;
}

RowBox LineLayout::rowBox(const Piece& piece, const QTextLine& row, int pieceTop) const
{
    RowBox box;
    box.from = piece.start + row.textStart();
    box.to = box.from + row.textLength();
    box.top = pieceTop + row.y();
    box.height = std::ceil(row.height());
    const QRectF used = row.naturalTextRect();
    box.left = textLeft + used.left();
    box.right = textLeft + used.right();
    return box;
}

} // namespace vmk
