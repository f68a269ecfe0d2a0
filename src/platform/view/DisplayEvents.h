#pragma once

#include <QLatin1StringView>
#include <QString>

#include <functional>

namespace vmk {

/// One event of the display, as passed to its handlers.
struct DisplayEvent
{
    /// "keydown", "mousedown", "scroll" and so on: the name of the event without "on".
    QLatin1StringView type;
    /// Key events: the Windows virtual key code; 0 for a key without one.
    int keyCode = 0;
    bool ctrlKey = false;
    bool altKey = false;
    bool shiftKey = false;
    /// Mouse events: 1 left, 2 right, 4 middle, 0 none.
    int button = 0;
    /// Mouse events: the position of the pointer in pixels from the top left corner of the visible page. On a
    /// scroll bar, outside the page's `clientWidth` or `clientHeight`.
    int clientX = 0;
    int clientY = 0;
    /// A handler sets this to false to prevent the display's default action.
    bool returnValue = true;
};

/// The handlers of the owner of a display. An empty handler is not called. Handlers run on the user-interface
/// thread, inside the widget's own event, before the default action of the display.
struct DisplayEvents
{
    using Handler = std::function<void(DisplayEvent&)>;

    Handler onkeydown;
    Handler onkeyup;
    Handler onmousedown;
    Handler onmousemove;
    Handler onmouseup;
    /// After the release of a plain press.
    Handler onclick;
    /// After the second release; the word is already selected.
    Handler ondblclick;
    Handler oncontextmenu;
    /// A drag begins inside the selection. Dragging is not supported; the press selects instead.
    Handler ondragstart;
    Handler onfocusout;
    /// The page was scrolled, for any reason.
    Handler onscroll;
    /// The size of the visible page has changed.
    Handler onresize;
    /// `readyState` has changed to "complete".
    Handler onreadystatechange;

    /// Before every navigation, including that to a file dropped on the display: the path or address of the
    /// target. Setting `cancel` to true prevents the navigation.
    std::function<void(const QString& target, bool& cancel)> onbeforenavigate;
    /// The page of a navigation is complete and still read-only; called from the event loop.
    std::function<void(const QString& location)> ondocumentcomplete;
};

} // namespace vmk
