#pragma once

#include "DisplayDocument.h"
#include "LineHeights.h"
#include "LineLayout.h"
#include "PageStyle.h"

#include <QColor>
#include <QPointF>
#include <QRectF>

#include <chrono>
#include <list>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vmk {

/// A position within a row, whose position on the screen is kept while heights change.
struct LayoutAnchor
{
    Position place;
    /// Pixels downwards from the top of the position's row; may be negative.
    double below = 0;
};

/// A document laid out at one width: the position of every line and character on the page.
///
/// Page coordinates are pixels from the top left corner of the page. Lines have an estimated height until
/// they are laid out. Each query lays out the lines that it needs, so that any non-const call may change
/// heights. The layouts of the most recently used lines are cached.
class PageLayout
{
public:
    explicit PageLayout(const DisplayDocument& shownDocument);

    /// Clears everything, for another page or another screen.
    /// \param width        in pixels
    /// \param dotsPerInch  of the screen
    void reset(double width, double dotsPerInch);
    /// Lays out the same page at another width.
    void setWidth(double width);
    /// The document's lines have changed; see `DisplayListener::linesChanged`.
    void linesChanged(int first, int removed, int inserted);
    /// The lines from `first` on, after all others, were loaded.
    void linesLoaded(int first, int count);

    /// Sets the text of an input method at a position, which is not in the document yet; empty for none.
    void setPreedit(Position place, const QString& text);
    [[nodiscard]] bool hasPreedit() const { return bool(preeditLine); }
    [[nodiscard]] Position preeditPlace() const { return preeditAt; }
    /// Returns boxes around a part of that text for painting; equal ends return its caret.
    [[nodiscard]] std::vector<QRectF> preeditRects(int from, int to);

    [[nodiscard]] double width() const { return pageWidth; }
    [[nodiscard]] int64_t height() const;
    [[nodiscard]] const LineHeights& heights() const { return extents; }
    [[nodiscard]] PageStyle& style() { return pageStyle; }

    // ---- lines and positions; each call lays out the lines that it needs

    [[nodiscard]] int64_t lineTop(int line) const;
    /// Returns the line at a height of the page; the nearest one outside the page.
    [[nodiscard]] int lineAt(double y) const;
    /// Returns the caret at a position: with width 0 and the height of its row.
    [[nodiscard]] QRectF caretRect(Position place);
    /// Returns the position nearest to a point of the page.
    [[nodiscard]] Position positionAt(QPointF point);
    /// Returns one box per row between two positions; see `LayoutQuery::clientRects`.
    [[nodiscard]] std::vector<QRectF> rects(Position from, Position to);
    /// Returns the number of rows above that of a position: exact for measured lines, otherwise estimated.
    [[nodiscard]] int64_t rowsAbove(Position place);
    /// Returns the first and last caret position on the row of a position.
    [[nodiscard]] std::pair<Position, Position> rowEnds(Position place);
    /// Returns the position nearest to x on the row of another position.
    [[nodiscard]] Position onRow(Position place, double x);
    /// Returns the next caret position; at the end of a line, the start of the next line.
    [[nodiscard]] Position next(Position place);
    [[nodiscard]] Position previous(Position place);

    // ---- measuring

    /// Lays out the part between two heights. Returns true if heights changed.
    bool prepare(double top, double bottom);
    /// Measures unmeasured lines from `nearLine` on, then from the top of the page, until the time has passed
    /// or all are measured. A line that needs more than the remaining time waits for the next call; each call
    /// measures at least one line, or one piece of a long line.
    /// \return true while unmeasured lines remain
    bool measureFor(std::chrono::microseconds time, int nearLine);
    [[nodiscard]] bool isMeasured() const { return extents.unmeasuredLines() == 0; }
    /// Returns the anchor for a height of the page; `heightOf` returns its later height.
    [[nodiscard]] LayoutAnchor anchorAt(double y);
    [[nodiscard]] double heightOf(const LayoutAnchor& anchor);

    // ---- painting

    struct Painting
    {
        /// The visible part of the page to paint, in page coordinates.
        QRectF area;
        Position selectionStart, selectionEnd;
        QColor selectionBackground, selectionText;
    };
    /// Paints the lines of an area; the origin of the painter is the top left corner of the page.
    void paint(QPainter& painter, const Painting& painting);

    /// The width of the mark for a selected line break, in pixels.
    static constexpr double LineBreakWidth = 5;

private:
    struct Kept
    {
        std::unique_ptr<LineLayout> layout;
        std::list<const Line*>::iterator use;
    };
    /// The layout of a long line, kept until the line is removed.
    struct LongLine
    {
        int index;
        std::unique_ptr<LineLayout> layout;
    };

    [[nodiscard]] const LinePtr& shownLine(int line) const;
    [[nodiscard]] int shownOffset(Position place) const;
    [[nodiscard]] Position placeOf(int line, int shownOffset) const;
    LineLayout& layoutOf(int line);
    void placeEstimates(int first, int removed, int inserted);
    void placeFirstLine();
    void replaceLines(int first, int removed, int inserted);
    std::vector<LongLine>::iterator longLineAt(int line);
    void noteExtent(int line, const LineLayout& layout);
    void measureLine(int line);
    void paintLine(QPainter& painter, const Painting& painting, int line);

    const DisplayDocument& document;
    PageStyle pageStyle;
    double pageWidth = 0;
    /// The height above the first line in pixels.
    int pageTop = 0;
    LineHeights extents;
    std::unordered_map<const Line*, Kept> kept;
    /// The cached lines in the order of their last use, latest first.
    std::list<const Line*> uses;
    /// Ascending by line.
    std::vector<LongLine> longLines;
    /// The average cost of recent measurements.
    std::chrono::duration<double, std::nano> timePerCharacter{0};

    Position preeditAt;
    QString preeditText;
    /// The document's line including the text; null while there is none.
    LinePtr preeditLine;
};

} // namespace vmk
