// Mouse input of the display: events for the owner, then selection as in a browser.

#include "Desktop.h"
#include "DisplayView.h"
#include "WordBreaks.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QInputMethod>
#include <QMouseEvent>

#include <algorithm>

namespace vmk {

namespace {

/// Milliseconds between two scroll steps while the pointer is held outside the view.
constexpr int DragScrollInterval = 30;
/// The scroll speed increases with the distance of the pointer; the maximum number of pixels per step.
constexpr int DragScrollLimit = 120;

int ButtonNumber(Qt::MouseButton button)
{
    switch (button) {
    case Qt::LeftButton:
        return 1;
    case Qt::RightButton:
        return 2;
    case Qt::MiddleButton:
        return 4;
    default:
        return 0;
    }
}

} // namespace

bool DisplayView::raiseMouse(const DisplayEvents::Handler& handler, QLatin1StringView type,
                             const QMouseEvent& event)
{
    DisplayEvent mouse = makeEvent(type, event.modifiers());
    mouse.button = ButtonNumber(event.button());
    mouse.clientX = event.position().toPoint().x();
    mouse.clientY = event.position().toPoint().y();
    return raise(handler, mouse);
}

void DisplayView::mousePressEvent(QMouseEvent* event)
{
    doubleClicked = false;
    event->accept();
    if (page.hasPreedit())
        QGuiApplication::inputMethod()->commit();
    if (!raiseMouse(events.onmousedown, QLatin1StringView("mousedown"), *event))
        return;
    const QPoint point = event->position().toPoint();
    const Position place = positionAt(point);
    const Selection selection = content.selection();
    const bool inSelection = !selection.isEmpty() && selection.start() <= place && place < selection.end();
    // A right click inside the selection keeps it.
    if (event->button() == Qt::RightButton && inSelection)
        return;
    const bool pastes = event->button() == Qt::MiddleButton && editable;
    if (event->button() != Qt::LeftButton && event->button() != Qt::RightButton && !pastes)
        return;
    rememberedX.reset();
    const bool extend = event->button() == Qt::LeftButton && event->modifiers().testFlag(Qt::ShiftModifier);
    content.setSelection(extend ? selection.anchor : place, place);
    if (event->button() == Qt::LeftButton) {
        dragging = true;
        pressInSelection = inSelection;
        pressPoint = dragPoint = point;
        pressWord.reset();
    }
}

void DisplayView::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
    if (!raiseMouse(events.onmousemove, QLatin1StringView("mousemove"), *event) || !dragging)
        return;
    dragPoint = event->position().toPoint();
    if (pressInSelection && (dragPoint - pressPoint).manhattanLength() >= QApplication::startDragDistance()) {
        pressInSelection = false;
        raiseMouse(events.ondragstart, QLatin1StringView("dragstart"), *event);
    }
    const bool outside = dragPoint.y() < 0 || dragPoint.y() >= clientHeight();
    if (!outside)
        dragTimer.stop();
    else if (!dragTimer.isActive())
        dragTimer.start(DragScrollInterval, this);
    dragTo(dragPoint);
}

void DisplayView::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() == Qt::LeftButton) {
        dragging = false;
        dragTimer.stop();
    }
    raiseMouse(events.onmouseup, QLatin1StringView("mouseup"), *event);
    if (event->button() != Qt::LeftButton)
        return;
    // A browser raises the double click after the second release.
    if (std::exchange(doubleClicked, false))
        raiseMouse(events.ondblclick, QLatin1StringView("dblclick"), *event);
    else
        raiseMouse(events.onclick, QLatin1StringView("click"), *event);
    publishSelection();
}

/// Offers a new selection of the user to the middle button of the mouse.
void DisplayView::publishSelection()
{
    const Selection& selection = content.selection();
    if (selection.isEmpty() || selection == publishedSelection)
        return;
    publishedSelection = selection;
    SetPrimaryText(selectedText().replace(QLatin1StringView("\r\n"), QLatin1StringView("\n")));
}

void DisplayView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        mousePressEvent(event);
        return;
    }
    // The second press raises no event: it selects the word.
    event->accept();
    doubleClicked = true;
    rememberedX.reset();
    const QPoint point = event->position().toPoint();
    const auto word = WordAround(content, positionAt(point));
    content.setSelection(word.first, word.second);
    dragging = true;
    pressInSelection = false;
    pressPoint = dragPoint = point;
    pressWord = word;
}

void DisplayView::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
    DisplayEvent menu = makeEvent(QLatin1StringView("contextmenu"), event->modifiers());
    menu.clientX = event->pos().x();
    menu.clientY = event->pos().y();
    raise(events.oncontextmenu, menu);
}

/// Extends the selection to the pointer; after a double click, word by word.
void DisplayView::dragTo(QPoint point)
{
    const Position place = positionAt({point.x(), std::clamp(point.y(), 0, std::max(0, clientHeight() - 1))});
    if (!pressWord) {
        content.setSelection(content.selection().anchor, place);
        return;
    }
    const auto word = WordAround(content, place);
    if (place < pressWord->first)
        content.setSelection(pressWord->second, word.first);
    else
        content.setSelection(pressWord->first, std::max(pressWord->second, word.second));
}

void DisplayView::scrollWhileDragging()
{
    const int beyond = dragPoint.y() < 0 ? dragPoint.y() : std::max(0, dragPoint.y() - clientHeight() + 1);
    scrollBy(0, std::clamp(beyond, -DragScrollLimit, DragScrollLimit));
    dragTo(dragPoint);
}

} // namespace vmk
