#pragma once

#include "PageLayout.h"

#include <optional>

namespace vmk {

/// What shows the page that a `PageScroller` places.
class ScrollerView
{
public:
    /// Height of the visible part of the page, pixels.
    [[nodiscard]] virtual int visibleHeight() const = 0;
    /// The page has been placed; scroll bars need the new measures.
    /// \param changed  another part of the page is visible, or lines have been laid out: it must be painted
    virtual void pagePlaced(bool changed) = 0;
    /// The page was scrolled, for any reason.
    virtual void pageScrolled() = 0;

protected:
    ~ScrollerView() = default;
};

/// Which part of a page is visible: scrolls, keeps the visible text where it is while heights above it
/// change, and reveals the selection. Needs no widget.
///
/// The page is held by an anchor, the first visible row. Lines are laid out only as they become visible, so
/// their real heights differ from the estimates; the anchor decides what stays in place.
class PageScroller
{
public:
    PageScroller(const DisplayDocument& shownDocument, PageLayout& pageLayout, ScrollerView& scrolledView);

    /// The height of the page that is at the view's top edge, pixels.
    [[nodiscard]] int top() const { return visibleTop; }
    /// The first visible row.
    [[nodiscard]] const LayoutAnchor& anchor() const { return firstRow; }

    // ---- what changes the page

    /// Another page has been loaded: goes to its top. To be called before the layout is reset.
    void reset();
    /// The layout starts anew: another page, or another screen.
    void layoutReset();
    /// Takes what is at the view's top edge now for the anchor.
    void anchorHere() { firstRow = page.anchorAt(visibleTop); }
    /// The document's lines have changed; see `DisplayListener::linesChanged`.
    void linesChanged(int first, int removed, int inserted);
    /// The page must be placed again by the next `settle`.
    void invalidate() { unsettled = true; }
    /// The next `settle` brings the caret into view, with as little scrolling as possible.
    void reveal() { revealPending = true; }

    // ---- placing; what is visible afterwards is laid out

    /// Does what is outstanding; every question about positions and every paint begins with it.
    /// \return false, with nothing done, within another `settle`
    bool settle();
    /// Brings a height of the page to the view's top edge, as far as the page reaches.
    void place(double wantedTop);
    /// Moves what is visible by a distance in pixels. Lines that come into view above are measured first, so
    /// that no row jumps when its real height is known.
    void move(int distance);
    /// Puts the anchor back where it was, after lines have been laid out.
    void hold();
    /// `place` and `move`, reported to the view as scrolling.
    void scrollTo(double wantedTop);
    void scrollBy(int distance);

private:
    void moveAnchor(int first, int removed, int inserted);
    void revealNow(Position place);

    const DisplayDocument& document;
    PageLayout& page;
    ScrollerView& view;

    int visibleTop = 0;
    LayoutAnchor firstRow;
    /// The anchor in lines that have just been removed, the first of them `first`.
    struct LostAnchor
    {
        int first;
        LayoutAnchor anchor;
    };
    std::optional<LostAnchor> lostAnchor;
    bool unsettled = true;
    bool settling = false;
    bool revealPending = false;
};

} // namespace vmk
