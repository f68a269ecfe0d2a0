#pragma once

#include <QLatin1StringView>
#include <QString>

#include <functional>

namespace vmk {

/// One event of the display, as its handlers see it.
struct DisplayEvent
{
    /// "keydown", "mousedown", "scroll" and so on: the event's name without "on".
    QLatin1StringView type;
    /// Key events: the Windows virtual key code, 0 for a key that has none.
    int keyCode = 0;
    bool ctrlKey = false;
    bool altKey = false;
    bool shiftKey = false;
    /// Mouse events: 1 left, 2 right, 4 middle, 0 none.
    int button = 0;
    /// Mouse events: the pointer in pixels from the top left of the visible page. Beyond the page's
    /// `clientWidth` or `clientHeight` on a scroll bar.
    int clientX = 0;
    int clientY = 0;
    /// A handler sets it to false to keep the display from acting on the event itself.
    bool returnValue = true;
};

/// The handlers of a display's owner. A handler left empty is not called. Each runs on the user-interface
/// thread, inside the widget's own event, before the display acts on it.
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
    /// After the second release; the word is selected already.
    Handler ondblclick;
    Handler oncontextmenu;
    /// A drag begins inside the selection. Nothing is ever dragged; the press selects instead.
    Handler ondragstart;
    Handler onfocusout;
    /// The page has been scrolled, by whatever means.
    Handler onscroll;
    /// The visible page has another size.
    Handler onresize;
    /// `readyState` has changed to "complete".
    Handler onreadystatechange;

    /// Before every navigation, also that of a file dropped on the display: the target's path or
    /// address. Sets the second argument to true to forbid it.
    std::function<void(const QString& target, bool& cancel)> onbeforenavigate;
    /// The page of a navigation stands complete, read-only as yet; runs from the event loop.
    std::function<void(const QString& location)> ondocumentcomplete;
};

} // namespace vmk
