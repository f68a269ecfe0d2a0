#pragma once

#include "PageLayout.h"

#include <optional>

namespace vmk {

/// The view of the page that a `PageScroller` scrolls.
class ScrollerView
{
public:
    /// The height of the visible part of the page in pixels.
    [[nodiscard]] virtual int visibleHeight() const = 0;
    /// The page was placed; scroll bars need the new measures.
    /// \param changed  the visible part has changed, or lines were laid out: it must be painted
    virtual void pagePlaced(bool changed) = 0;
    /// The page was scrolled, for any reason.
    virtual void pageScrolled() = 0;

protected:
    ~ScrollerView() = default;
};

/// Determines the visible part of a page: scrolls, keeps the visible text at its position while heights above
/// it change, and reveals the selection. Independent of a widget.
///
/// The position is kept by an anchor, the first visible row. Lines are laid out only when they become
/// visible, so that their real heights differ from the estimates; the anchor keeps its position on the
/// screen.
class PageScroller
{
public:
    PageScroller(const DisplayDocument& shownDocument, PageLayout& pageLayout, ScrollerView& scrolledView);

    /// The page coordinate of the view's top edge in pixels.
    [[nodiscard]] int top() const { return visibleTop; }
    /// The first visible row.
    [[nodiscard]] const LayoutAnchor& anchor() const { return firstRow; }

    // ---- changes of the page

    /// A new page was loaded: scrolls to its top. Call before the layout is reset.
    void reset();
    /// The layout was reset, for another page or another screen.
    void layoutReset();
    /// Sets the anchor to the row at the view's top edge.
    void anchorHere() { firstRow = page.anchorAt(visibleTop); }
    /// The document's lines have changed; see `DisplayListener::linesChanged`.
    void linesChanged(int first, int removed, int inserted);
    /// Requests the next `settle` to place the page again.
    void invalidate() { unsettled = true; }
    /// Requests the next `settle` to scroll the caret into view, with as little scrolling as possible.
    void reveal() { revealPending = true; }

    // ---- placing; afterwards the visible part is laid out

    /// Executes all pending layout work; every position query and every paint begins with it.
    /// \return false, with nothing done, within another `settle`
    bool settle();
    /// Moves a height of the page to the view's top edge, limited by the page's size.
    void place(double wantedTop);
    /// Moves the visible part by a distance in pixels. Lines that become visible above are measured first, so
    /// that no row jumps when its real height is known.
    void move(int distance);
    /// Moves the anchor back to its position on the screen after lines were laid out.
    void hold();
    /// Like `place` and `move`, but reported to the view as scrolling.
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
    /// The anchor in lines that were just removed; `first` is the index of the first one.
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
