#pragma once

#include "LineHeights.h"
#include "PageStyle.h"

#include <QPainter>
#include <QTextLayout>

#include <memory>
#include <vector>

namespace vmk {

/// One visual row of a line. All measures are in pixels from the top left corner of the line, which is at the
/// left edge of the page.
struct RowBox
{
    /// Offsets in the line's text; the end of a row is the start of the next one.
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
/// A line of normal length is shaped and broken as a whole. A long one consists of pieces. Each piece begins
/// where the row before it ended, and is laid out only on demand; the others have an estimated height. While
/// the pieces before it are not laid out, the start of a piece is an estimate; `settleStep` processes the
/// pieces in order and moves each start to the real end of the row above. After an edit, only the pieces
/// around it are laid out again, until a row ends where it ended before.
class LineLayout
{
public:
    /// The maximum number of characters of a line that is laid out as a whole.
    static constexpr int LongLine = 4096;

    /// \param width          the width of the page in pixels, including margins
    /// \param estimatedRows  the estimated number of rows of the whole line; divided among the pieces of a
    ///                       long one
    LineLayout(LinePtr line, PageStyle& pageStyle, double width, unsigned estimatedRows);
    /// The layout of a line that results from an edit of `old`'s line; reuses all parts that the edit did not
    /// change. `old` is empty afterwards. Both lines have the same block.
    LineLayout(LinePtr line, LineLayout& old);

    [[nodiscard]] const LinePtr& line() const { return content; }
    [[nodiscard]] LineExtent extent() const;
    /// Returns whether all of the line is laid out, with every row at its final position.
    [[nodiscard]] bool isSettled() const;
    /// Returns whether the line has more than one piece.
    [[nodiscard]] bool isLong() const { return pieces.size() > 1; }

    /// Lays out the next piece in order; does nothing if the line is settled.
    void settleStep();
    /// Lays out the part between two heights; the heights of the parts below may change.
    void prepare(double top, double bottom);
    /// Lays out the part at an offset.
    void prepareOffset(int offset);
    /// Frees the shaped text of all pieces except the few most recently used.
    void trim();

    /// Returns the row of the character at an offset; at the end of the text, the last row.
    [[nodiscard]] RowBox rowOf(int offset);
    /// Returns the row at a height; the first or the last one outside the line.
    [[nodiscard]] RowBox rowAt(double y);
    /// Returns the x of the caret at an offset, on the row of `rowOf`.
    [[nodiscard]] double xOf(int offset);
    /// Returns the offset on a row that is nearest to x.
    [[nodiscard]] int offsetAt(const RowBox& row, double x);
    /// Returns the rows of the characters from `from` to `to`, clipped to them on the left and right. Equal
    /// ends result in one empty box.
    [[nodiscard]] std::vector<RowBox> boxes(int from, int to);
    /// Returns the number of rows before the row of the offset.
    [[nodiscard]] int rowNumber(int offset);
    /// Returns the position of the caret one character to the left or right in visual order.
    [[nodiscard]] int nextCursorPosition(int offset);
    [[nodiscard]] int previousCursorPosition(int offset);

    /// Paints the rows between two heights, measured from the top of the line.
    void draw(QPainter& painter, QPointF origin, double top, double bottom,
              const QList<QTextLayout::FormatRange>& selections);

private:
    struct Piece
    {
        int start = 0;
        int length = 0;
        int height = 0;
        int rows = 1;
        /// Height and rows are from a real layout.
        bool laidOut = false;
        /// The last row is full, or the text ends: the start of the next piece is final.
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
    /// The margins of the block within the page, limited so that space remains for text.
    double textLeft = 0;
    double textWidth = 0;
    int marginTop = 0;
    int marginBottom = 0;
    std::vector<Piece> pieces;
    std::unique_ptr<OpenElementsOfLine> openElements; ///< Of a long line, once it was needed.
    unsigned useCount = 0;
};

/// Estimates the extent of a line from the widths of its characters: correct for nearly every line, at a
/// small fraction of the cost of a layout.
[[nodiscard]] LineExtent EstimateExtent(const Line& line, PageStyle& style, double pageWidth);

} // namespace vmk
