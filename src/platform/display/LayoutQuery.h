#pragma once

#include "DisplayDocument.h"

#include <QPoint>
#include <QRect>

#include <vector>

namespace vmk {

/// Queries that need a laid-out page. The view implements them and registers itself with its document.
/// Without a view, ranges and elements return empty results for such queries. Client coordinates are pixels
/// from the top left corner of the visible part; they change with scrolling.
class LayoutQuery
{
public:
    /// Returns one rectangle per line box that the text from `from` to `to` touches, from top to bottom, in
    /// client coordinates. An empty range has one rectangle of width 0. Within a longer range, empty lines
    /// may have none.
    [[nodiscard]] virtual std::vector<QRect> clientRects(Position from, Position to) = 0;
    /// Returns the rectangle around all of `clientRects`. A view may avoid laying out a long text for this:
    /// lines between the first and the last may count with the whole width of their blocks.
    [[nodiscard]] virtual QRect boundingRect(Position from, Position to);
    /// Returns the position nearest to a client point.
    [[nodiscard]] virtual Position positionAt(QPoint clientPoint) = 0;
    /// Returns the line (from 0) whose block contains a client point, or -1 if only the body does.
    [[nodiscard]] virtual int lineAt(QPoint clientPoint) = 0;
    /// Returns true if a line (from 0) is so long that it is laid out in pieces. A line of the same text that
    /// replaces it may then break into other rows.
    [[nodiscard]] virtual bool isLaidOutInPieces(int /*line*/) { return false; }
    /// Returns `scrollLeft` and `scrollTop` of the page in pixels.
    [[nodiscard]] virtual QPoint scrollOffset() = 0;
    /// Scrolls the page to an offset, limited by the size of the page.
    virtual void scrollTo(QPoint offset) = 0;
    /// Scrolls so that a position is visible, at the top if the length of the page allows it.
    virtual void scrollIntoView(Position place) = 0;

protected:
    ~LayoutQuery() = default;
};

} // namespace vmk
