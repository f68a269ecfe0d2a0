#pragma once

#include "LineHeights.h"
#include "PageStyle.h"

#include <QPainter>
#include <QTextLayout>

#include <memory>
#include <vector>

namespace vmk {

/// One visual row of a line. All measures in pixels from the line's top left corner, which lies at the
/// page's left edge.
struct RowBox
{
    /// Offsets in the line's text; a row's end is the next row's beginning.
    int from = 0;
    int to = 0;
    double top = 0;
    double height = 0;
    double left = 0;
    double right = 0;

    [[nodiscard]] double bottom() const { return top + height; }
};

/// The layout of one line of a page at one width.
///
/// A line of usual length is shaped and broken as a whole. A long one is a chain of pieces, each beginning
/// where the row before it ended, and each laid out only when something asks for it; the others stand with
/// an estimate. As long as the pieces before it are not laid out, a piece begins at a guess; `settleStep`
/// goes through them in order and moves each beginning to where the row above really ends. After an edit
/// only the pieces around it are laid out anew, until a row ends where it did before.
class LineLayout
{
public:
    /// A line of more characters is laid out in pieces.
    static constexpr int LongLine = 4096;

    /// @param width the page's width in pixels, margins included.
    /// @param estimatedRows the rows that all of the line is thought to take; a long line's pieces share
    /// them.
    LineLayout(LinePtr line, PageStyle& pageStyle, double width, unsigned estimatedRows);
    /// The layout of a line that came from `old`'s by an edit, which keeps all that the edit left alone.
    /// `old` is emptied. Both lines have the same block.
    LineLayout(LinePtr line, LineLayout& old);

    [[nodiscard]] const LinePtr& line() const { return content; }
    [[nodiscard]] LineExtent extent() const;
    /// All of the line is laid out, every row where it belongs.
    [[nodiscard]] bool isSettled() const;
    /// The line has more than one piece.
    [[nodiscard]] bool isLong() const { return pieces.size() > 1; }

    /// Lays out the next piece in order; nothing happens when the line is settled.
    void settleStep();
    /// Lays out what stands between two heights; the heights below may move.
    void prepare(double top, double bottom);
    /// Lays out what stands at an offset.
    void prepareOffset(int offset);
    /// Gives back the shaped text of all pieces but the few used last.
    void trim();

    /// The row of the character at an offset; at the text's end, the last row.
    [[nodiscard]] RowBox rowOf(int offset);
    /// The row at a height; the first or the last one beyond the line.
    [[nodiscard]] RowBox rowAt(double y);
    /// Where the caret stands at an offset, on the row of `rowOf`.
    [[nodiscard]] double xOf(int offset);
    /// The offset on a row that is nearest to x.
    [[nodiscard]] int offsetAt(const RowBox& row, double x);
    /// The rows that hold the characters from `from` to `to`, cut to them left and right. Equal ends give
    /// one empty box.
    [[nodiscard]] std::vector<RowBox> boxes(int from, int to);
    /// Rows in front of the one that holds the offset.
    [[nodiscard]] int rowNumber(int offset);
    /// The place of the caret one character to the left or right as it is seen on the screen.
    [[nodiscard]] int nextCursorPosition(int offset);
    [[nodiscard]] int previousCursorPosition(int offset);

    /// Paints the rows between two heights, measured from the line's top.
    void draw(QPainter& painter, QPointF origin, double top, double bottom,
              const QList<QTextLayout::FormatRange>& selections);

private:
    struct Piece
    {
        int start = 0;
        int length = 0;
        int height = 0;
        int rows = 1;
        /// Height and rows are real.
        bool laidOut = false;
        /// The last row is full, or the text ends: the next piece begins where it should.
        bool endsOnRow = false;
        unsigned lastUse = 0;
        std::unique_ptr<QTextLayout> layout;

        [[nodiscard]] int end() const { return start + length; }
    };

    void takeStyle();
    void appendPieces(int from, int to);
    void estimate(Piece& piece) const;
    void shareRows(unsigned rows);
    [[nodiscard]] size_t pieceAt(int offset) const;
    [[nodiscard]] int topOf(size_t piece) const;
    void settlePiece(size_t index);
    Piece& ready(size_t index);
    int layOut(Piece& piece, int end, int lastOffset);
    [[nodiscard]] RowBox rowBox(const Piece& piece, const QTextLine& row, int pieceTop) const;

    LinePtr content;
    PageStyle* style;
    BlockLook look;
    double pageWidth;
    /// The block's margins within the page, kept from leaving no room for text.
    double textLeft = 0;
    double textWidth = 0;
    int marginTop = 0;
    int marginBottom = 0;
    std::vector<Piece> pieces;
    unsigned useCount = 0;
};

/// What a line will take, by the widths of its characters: right for nearly every line, at a tiny part of
/// the cost of a layout.
[[nodiscard]] LineExtent EstimateExtent(const Line& line, PageStyle& style, double pageWidth);

} // namespace vmk
