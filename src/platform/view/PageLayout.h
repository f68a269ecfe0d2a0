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

/// A place in a row's height, to hold the page by while heights change.
struct LayoutAnchor
{
    Position place;
    /// Pixels from the top of the place's row down; may be negative.
    double below = 0;
};

/// A document laid out at one width: where every line and character stands on the page.
///
/// Page coordinates are pixels from the page's top left corner. Lines that nobody has looked at stand with
/// an estimated height; each question about a place lays out what it needs, so heights may change with any
/// call that is not const. Layouts of lines are kept for the lines used last.
class PageLayout
{
public:
    explicit PageLayout(const DisplayDocument& shownDocument);

    /// Forgets everything: another page, or another screen.
    /// @param width pixels. @param dotsPerInch of the screen.
    void reset(double width, double dotsPerInch);
    /// Lays the same page out anew at another width.
    void setWidth(double width);
    /// The document's lines have changed; see `DisplayListener::linesChanged`.
    void linesChanged(int first, int removed, int inserted);

    /// Text of an input method that stands at a place without being in the document as yet; empty for none.
    void setPreedit(Position place, const QString& text);
    [[nodiscard]] bool hasPreedit() const { return preeditLine != nullptr; }
    [[nodiscard]] Position preeditPlace() const { return preeditAt; }
    /// Boxes around a part of that text, to paint it by; equal ends give its caret.
    [[nodiscard]] std::vector<QRectF> preeditRects(int from, int to);

    [[nodiscard]] double width() const { return pageWidth; }
    [[nodiscard]] int64_t height() const;
    [[nodiscard]] const LineHeights& heights() const { return extents; }
    [[nodiscard]] PageStyle& style() { return pageStyle; }

    // ---- lines and places; each lays out the lines that it speaks of

    [[nodiscard]] int64_t lineTop(int line) const;
    /// The line that covers a height of the page; the nearest one beyond the ends.
    [[nodiscard]] int lineAt(double y) const;
    /// The caret at a place: of no width, as high as its row.
    [[nodiscard]] QRectF caretRect(Position place);
    /// The place nearest to a point of the page.
    [[nodiscard]] Position positionAt(QPointF point);
    /// One box for each row between two places; see `LayoutQuery::clientRects`.
    [[nodiscard]] std::vector<QRectF> rects(Position from, Position to);
    /// Rows above the one of a place: exact for lines measured already, else by estimates.
    [[nodiscard]] int64_t rowsAbove(Position place);
    /// The row of a place as its first and last caret place.
    [[nodiscard]] std::pair<Position, Position> rowEnds(Position place);
    /// The place on the row of another place that is nearest to x.
    [[nodiscard]] Position onRow(Position place, double x);
    /// One character on, as the caret goes; over a line's end to the next line.
    [[nodiscard]] Position next(Position place);
    [[nodiscard]] Position previous(Position place);

    // ---- measuring

    /// Lays out all that stands between two heights. True if heights changed.
    bool prepare(double top, double bottom);
    /// Measures unmeasured lines from `nearLine` on, then from the page's top, until the time is up or all
    /// are done. A line for which the time that is left will not do waits for the next turn; each turn does
    /// at least one line, or one piece of a long one. True while there is more to do.
    bool measureFor(std::chrono::microseconds time, int nearLine);
    [[nodiscard]] bool isMeasured() const { return extents.unmeasuredLines() == 0; }
    /// What to hold the page by at a height, and where it stands later.
    [[nodiscard]] LayoutAnchor anchorAt(double y);
    [[nodiscard]] double heightOf(const LayoutAnchor& anchor);

    // ---- painting

    struct Painting
    {
        /// The visible part of the page to paint, page coordinates.
        QRectF area;
        Position selectionStart, selectionEnd;
        QColor selectionBackground, selectionText;
    };
    /// Paints the lines of an area; the painter's origin is the page's top left corner.
    void paint(QPainter& painter, const Painting& painting);

    /// The mark that a selected line break shows, pixels wide.
    static constexpr double LineBreakWidth = 5;

private:
    struct Kept
    {
        std::unique_ptr<LineLayout> layout;
        std::list<const Line*>::iterator use;
    };
    /// The layout of a long line, kept as long as the line stands.
    struct LongLine
    {
        int index;
        std::unique_ptr<LineLayout> layout;
    };

    [[nodiscard]] const LinePtr& shownLine(int line) const;
    [[nodiscard]] int shownOffset(Position place) const;
    [[nodiscard]] Position placeOf(int line, int shownOffset) const;
    LineLayout& layoutOf(int line);
    [[nodiscard]] std::vector<LineExtent> estimates(int first, int count);
    void placeFirstLine();
    void replaceLines(int first, int removed, int inserted);
    std::vector<LongLine>::iterator longLineAt(int line);
    void noteExtent(int line, const LineLayout& layout);
    void measureLine(int line);
    void paintLine(QPainter& painter, const Painting& painting, int line);

    const DisplayDocument& document;
    PageStyle pageStyle;
    double pageWidth = 0;
    /// Pixels above the first line.
    int pageTop = 0;
    LineHeights extents;
    std::unordered_map<const Line*, Kept> kept;
    /// The kept lines in the order of their last use, latest first.
    std::list<const Line*> uses;
    /// Ascending by line.
    std::vector<LongLine> longLines;
    /// What measuring has cost of late.
    std::chrono::duration<double, std::nano> timePerCharacter{0};

    Position preeditAt;
    QString preeditText;
    /// The document's line with the text in it; null while there is none.
    LinePtr preeditLine;
};

} // namespace vmk
