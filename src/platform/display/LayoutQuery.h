#pragma once

#include "DisplayDocument.h"

#include <QPoint>
#include <QRect>

#include <vector>

namespace vmk {

/// What only a laid-out page can tell. The view implements it and hands itself to its document; without a
/// view ranges and elements answer such questions with nothing.
/// Client coordinates are pixels from the top left of the visible part; they change with scrolling.
class LayoutQuery
{
public:
    /// One rectangle for each line box that the text from `from` to `to` touches, top down, in client
    /// coordinates; a bare place gives one of width 0. Within a longer range empty lines may give none.
    [[nodiscard]] virtual std::vector<QRect> clientRects(Position from, Position to) = 0;
    /// The rectangle around all of `clientRects`. A view need not lay out a long text for it: lines between
    /// the first and the last may count with the whole width of their blocks.
    [[nodiscard]] virtual QRect boundingRect(Position from, Position to);
    /// The place nearest to a client point.
    [[nodiscard]] virtual Position positionAt(QPoint clientPoint) = 0;
    /// The line (from 0) whose block covers a client point, or -1 where only the body is.
    [[nodiscard]] virtual int lineAt(QPoint clientPoint) = 0;
    /// `scrollLeft` and `scrollTop` of the page, pixels.
    [[nodiscard]] virtual QPoint scrollOffset() = 0;
    /// Scrolls the page to that offset, as far as its length allows.
    virtual void scrollTo(QPoint offset) = 0;
    /// Scrolls so that this place is seen, at the top where the page's length allows it.
    virtual void scrollIntoView(Position place) = 0;

protected:
    ~LayoutQuery() = default;
};

} // namespace vmk
