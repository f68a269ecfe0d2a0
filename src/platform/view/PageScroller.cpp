#include "PageScroller.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vmk {

namespace {

/// Laying out the visible part may change what is visible; this converges after very few rounds.
constexpr int PlacingRounds = 8;

} // namespace

PageScroller::PageScroller(const DisplayDocument& shownDocument, PageLayout& pageLayout,
                           ScrollerView& scrolledView)
    : document(shownDocument)
    , page(pageLayout)
    , view(scrolledView)
{
}

void PageScroller::reset()
{
    visibleTop = 0;
    firstRow = {};
    revealPending = false;
}

void PageScroller::layoutReset()
{
    if (firstRow.place.line >= document.loadedLineCount())
        firstRow = {};
    unsettled = true;
}

void PageScroller::linesChanged(int first, int removed, int inserted)
{
    moveAnchor(first, removed, inserted);
    unsettled = true;
}

void PageScroller::moveAnchor(int first, int removed, int inserted)
{
    Position& place = firstRow.place;
    const std::optional<LostAnchor> lost = std::exchange(lostAnchor, std::nullopt);
    if (lost && lost->first == first && removed < inserted) {
        // The removed lines were inserted again in a changed form: the visible part is unchanged.
        firstRow = lost->anchor;
    } else if (place.line >= first + removed) {
        place.line += inserted - removed;
    } else if (place.line >= first + inserted) {
        lostAnchor = LostAnchor{first, firstRow};
        place = {std::max(0, first + inserted - 1), 0};
    }
    place = document.valid(place);
}

bool PageScroller::settle()
{
    if (settling)
        return false;
    settling = true;
    if (std::exchange(unsettled, false)) {
        lostAnchor.reset();
        hold();
    }
    if (std::exchange(revealPending, false))
        revealNow(document.selection().focus);
    settling = false;
    return true;
}

void PageScroller::place(double wantedTop)
{
    const int before = visibleTop;
    bool laidOut = false;
    for (int round = 0; round < PlacingRounds; ++round) {
        const auto lowest = std::max(0.0, double(page.height() - view.visibleHeight()));
        visibleTop = int(std::lround(std::clamp(wantedTop, 0.0, lowest)));
        if (!page.prepare(visibleTop, visibleTop + view.visibleHeight()))
            break;
        laidOut = true;
    }
    firstRow = page.anchorAt(visibleTop);
    // Only a visible change requests a repaint: painting queries the caret and must not request the next
    // paint.
    view.pagePlaced(visibleTop != before || laidOut);
}

void PageScroller::move(int distance)
{
    for (int round = 0; round < PlacingRounds && distance < 0; ++round) {
        if (!page.prepare(visibleTop + distance, visibleTop))
            break;
        hold();
    }
    place(visibleTop + distance);
}

void PageScroller::hold()
{
    place(page.heightOf(firstRow));
}

void PageScroller::scrollTo(double wantedTop)
{
    const int before = visibleTop;
    place(wantedTop);
    if (visibleTop != before)
        view.pageScrolled();
}

void PageScroller::scrollBy(int distance)
{
    const int before = visibleTop;
    move(distance);
    if (visibleTop != before)
        view.pageScrolled();
}

void PageScroller::revealNow(Position place)
{
    const int before = visibleTop;
    for (int round = 0; round < PlacingRounds; ++round) {
        const QRectF caret = page.caretRect(place);
        hold();
        double wanted = visibleTop;
        if (caret.bottom() > wanted + view.visibleHeight())
            wanted = caret.bottom() - view.visibleHeight();
        if (caret.top() < wanted)
            wanted = caret.top();
        if (wanted == visibleTop)
            break;
        this->place(wanted);
    }
    if (visibleTop != before)
        view.pageScrolled();
}

} // namespace vmk
