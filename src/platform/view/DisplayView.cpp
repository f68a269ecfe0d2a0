#include "DisplayView.h"

#include "AccessibleDisplay.h"
#include "FileNames.h"
#include "PageFile.h"

#include <QAccessible>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QMimeData>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QStyleHints>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// The length of one idle slice. The timer's next event comes after all pending input, which never waits 10
/// ms.
constexpr std::chrono::milliseconds IdleSlice(2);
/// Pixels per third of a wheel step, or per click on an arrow of the scroll bar.
constexpr int ScrollStep = 20;
constexpr int CaretWidth = 1;
/// The number of lines at either end from which the bounds of a long text are computed.
constexpr int BoundingLines = 50;

} // namespace

DisplayView::DisplayView(QWidget* parent)
    : QAbstractScrollArea(parent)
    , page(content)
    , scroller(content, page, *this)
{
    InstallAccessibleDisplay();
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setAcceptDrops(true);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setMouseTracking(true);
    verticalScrollBar()->setSingleStep(ScrollStep);
    content.setListener(this);
    content.setLayout(this);
    resetPage();
}

DisplayView::~DisplayView()
{
    content.setListener(nullptr);
    content.setLayout(nullptr);
}

// ---------------------------------------------------------------- navigation

bool DisplayView::Navigate(const QString& target)
{
    bool cancel = false;
    if (events.onbeforenavigate)
        events.onbeforenavigate(target, cancel);
    if (cancel)
        return false;
    loading = true;
    pendingLocation = PathOfPage(target);
    pendingLines.reset();
    QMetaObject::invokeMethod(this, &DisplayView::completeNavigation, Qt::QueuedConnection);
    return true;
}

bool DisplayView::Navigate(const QString& target, QByteArray front, std::unique_ptr<LineSource> lines)
{
    if (!Navigate(target))
        return false;
    pendingFront = std::move(front);
    pendingLines = std::move(lines);
    return true;
}

void DisplayView::completeNavigation()
{
    // A second navigation before the first is complete replaces it.
    if (pendingLocation.isNull())
        return;
    pageLocation = std::exchange(pendingLocation, QString());
    editable = false;
    if (pendingLines) {
        content.loadLines(std::exchange(pendingFront, {}), std::move(pendingLines));
        loadTimer.start(0, this);
    } else {
        content.loadPage(ReadPageFile(pageLocation));
    }
    loading = false;
    if (events.ondocumentcomplete)
        events.ondocumentcomplete(pageLocation);
    DisplayEvent event = makeEvent("readystatechange"_L1, {});
    raise(events.onreadystatechange, event);
}

/// Loads the rest of the page for a few milliseconds.
void DisplayView::loadSlice()
{
    constexpr std::chrono::milliseconds Slice(3);
    constexpr int Wait = 2; // milliseconds, for the source
    const QDeadlineTimer end(Slice);
    while (content.isMoreReady() && !end.hasExpired())
        content.loadMore();
    if (content.isComplete())
        loadTimer.stop();
    else
        loadTimer.start(content.isMoreReady() ? 0 : Wait, this);
}

void DisplayView::setPage(const QByteArray& html)
{
    pendingLocation = QString();
    pendingLines.reset();
    loading = false;
    pageLocation = u"about:blank"_s;
    content.loadPage(html);
}

QString DisplayView::readyState() const
{
    return loading ? u"loading"_s : u"complete"_s;
}

QString DisplayView::designMode() const
{
    return editable ? u"On"_s : u"Off"_s;
}

void DisplayView::setDesignMode(const QString& mode)
{
    editable = mode.compare(u"On", Qt::CaseInsensitive) == 0;
    showCaret();
    QMetaObject::invokeMethod(
        this,
        [this] {
            DisplayEvent event = makeEvent("readystatechange"_L1, {});
            raise(events.onreadystatechange, event);
        },
        Qt::QueuedConnection);
}

// ---------------------------------------------------------------- events to the owner

DisplayEvent DisplayView::makeEvent(QLatin1StringView type, Qt::KeyboardModifiers modifiers) const
{
    DisplayEvent event;
    event.type = type;
    event.ctrlKey = modifiers.testFlag(Qt::ControlModifier);
    event.altKey = modifiers.testFlag(Qt::AltModifier);
    event.shiftKey = modifiers.testFlag(Qt::ShiftModifier);
    return event;
}

/// Calls a handler with `currentEvent` set. Returns true if the default action is to be executed.
bool DisplayView::raise(const DisplayEvents::Handler& handler, DisplayEvent& event)
{
    if (!handler)
        return true;
    DisplayEvent* const outer = std::exchange(current, &event);
    handler(event);
    current = outer;
    return event.returnValue;
}

void DisplayView::pageScrolled()
{
    DisplayEvent event = makeEvent("scroll"_L1, QGuiApplication::keyboardModifiers());
    raise(events.onscroll, event);
}

// ---------------------------------------------------------------- DisplayListener

void DisplayView::linesChanged(int first, const std::vector<LinePtr>& removed,
                               const std::vector<LinePtr>& inserted)
{
    page.linesChanged(first, int(removed.size()), int(inserted.size()));
    scroller.linesChanged(first, int(removed.size()), int(inserted.size()));
    knownSelection = content.selection();
    publishedSelection = {};
    rememberedX.reset();
    if (updateHolds > 0)
        return;
    viewport()->update();
    if (QAccessible::isActive())
        ReportTextChange(*this, first, removed, inserted);
    Q_EMIT selectionOrTextChanged();
}

void DisplayView::linesLoaded(int first, const std::vector<LinePtr>& loaded)
{
    page.linesLoaded(first, int(loaded.size()));
    scroller.linesChanged(first, 0, int(loaded.size()));
    if (updateHolds == 0)
        viewport()->update();
}

void DisplayView::selectionChanged()
{
    // An edit that moves the selection does not scroll; a selection that is set explicitly is scrolled into
    // view.
    if (content.selection() != knownSelection) {
        knownSelection = content.selection();
        rememberedX.reset();
        scroller.reveal();
    }
    if (updateHolds > 0)
        return;
    viewport()->update();
    showCaret();
    if (QAccessible::isActive())
        ReportCaretMove(*this);
    Q_EMIT selectionOrTextChanged();
}

DisplayView::UpdateHold::UpdateHold(DisplayView& heldView)
    : view(heldView)
{
    if (view.updateHolds++ > 0)
        return;
    view.viewport()->setUpdatesEnabled(false);
    view.idleTimer.stop();
}

DisplayView::UpdateHold::~UpdateHold()
{
    if (--view.updateHolds > 0)
        return;
    view.viewport()->setUpdatesEnabled(true);
    view.viewport()->update();
    view.showCaret();
    if (QAccessible::isActive()) {
        QAccessibleEvent changed(&view, QAccessible::VisibleDataChanged);
        QAccessible::updateAccessibility(&changed);
        ReportCaretMove(view);
    }
    Q_EMIT view.selectionOrTextChanged();
}

void DisplayView::documentReset()
{
    scroller.reset();
    rememberedX.reset();
    knownSelection = content.selection();
    resetPage();
    // The top margin of the page is visible too.
    scroller.anchorHere();
}

void DisplayView::RebuildLayout()
{
    documentReset();
}

void DisplayView::resetPage()
{
    page.reset(clientWidth(), dotsPerInch());
    scroller.layoutReset();
    viewport()->update();
}

// ---------------------------------------------------------------- position of the page

/// Does all that is outstanding: every question about positions and every paint begins here.
void DisplayView::settle()
{
    if (scroller.settle() && updateHolds == 0 && !page.isMeasured() && !idleTimer.isActive() && isVisible())
        idleTimer.start(0, this);
}

void DisplayView::pagePlaced(bool changed)
{
    movingScrollBar = true;
    QScrollBar* bar = verticalScrollBar();
    bar->setPageStep(clientHeight());
    bar->setRange(0, int(std::max<int64_t>(0, page.height() - clientHeight())));
    bar->setValue(scroller.top());
    movingScrollBar = false;
    if (changed)
        viewport()->update();
}

QRect DisplayView::toClient(const QRectF& pageRect) const
{
    // Rounded outwards to whole pixels; a caret keeps width 0.
    const int left = int(std::floor(pageRect.left()));
    const int width = pageRect.width() > 0 ? int(std::ceil(pageRect.right())) - left : 0;
    return {left, int(pageRect.top()) - scroller.top(), width, int(pageRect.height())};
}

double DisplayView::dotsPerInch() const
{
    return logicalDpiY();
}

int DisplayView::scrollTop()
{
    settle();
    return scroller.top();
}

int DisplayView::scrollHeight()
{
    settle();
    return int(std::max<int64_t>(page.height(), clientHeight()));
}

int DisplayView::clientWidth() const
{
    return viewport()->width();
}

int DisplayView::clientHeight() const
{
    return viewport()->height();
}

void DisplayView::scroll(int, int y)
{
    settle();
    scroller.scrollTo(y);
}

void DisplayView::scrollBy(int, int y)
{
    settle();
    scroller.scrollBy(y);
}

void DisplayView::centerCaret()
{
    scrollBy(0, caretRect().center().y() - clientHeight() / 2);
}

int64_t DisplayView::rowNumber(Position place)
{
    settle();
    const int64_t number = page.rowsAbove(content.valid(place)) + 1;
    scroller.hold();
    return number;
}

std::vector<QRect> DisplayView::clientRects(Position from, Position to)
{
    settle();
    const std::vector<QRectF> rects = page.rects(content.valid(from), content.valid(to));
    scroller.hold();
    std::vector<QRect> result;
    result.reserve(rects.size());
    for (const QRectF& rect : rects)
        result.push_back(toClient(rect));
    return result;
}

QRect DisplayView::boundingRect(Position from, Position to)
{
    settle();
    from = content.valid(from);
    to = content.valid(to);
    const bool isLong = to.line - from.line > 2 * BoundingLines;
    std::vector<QRectF> rects = page.rects(from, isLong ? Position{from.line + BoundingLines, 0} : to);
    if (isLong) {
        const std::vector<QRectF> last = page.rects({to.line - BoundingLines, 0}, to);
        rects.insert(rects.end(), last.begin(), last.end());
    }
    scroller.hold();
    if (rects.empty())
        return {};
    // Not `united`, which ignores rectangles of width 0.
    QRectF bounds = rects.front();
    for (const QRectF& rect : rects) {
        bounds.setLeft(std::min(bounds.left(), rect.left()));
        bounds.setRight(std::max(bounds.right(), rect.right()));
        bounds.setTop(std::min(bounds.top(), rect.top()));
        bounds.setBottom(std::max(bounds.bottom(), rect.bottom()));
    }
    return toClient(bounds);
}

Position DisplayView::positionAt(QPoint clientPoint)
{
    settle();
    const Position place = page.positionAt(toPage(clientPoint));
    scroller.hold();
    return place;
}

int DisplayView::lineAt(QPoint clientPoint)
{
    settle();
    const QPointF point = toPage(clientPoint);
    const int line = page.lineAt(point.y());
    const int64_t lineTop = page.lineTop(line);
    const bool inside
        = point.y() >= double(lineTop) && point.y() < double(lineTop + page.heights().at(line).height);
    return inside && content.line(line).block != NoTag ? line : -1;
}

bool DisplayView::isLaidOutInPieces(int line)
{
    return content.line(line).text.size() > LineLayout::LongLine;
}

QPoint DisplayView::scrollOffset()
{
    return {scrollLeft(), scrollTop()};
}

void DisplayView::scrollIntoView(Position place)
{
    settle();
    // The text above the position does not matter; the text below it is laid out meanwhile.
    scroller.scrollTo(page.caretRect(content.valid(place)).top());
}

DisplayView::TextRun DisplayView::runAt(Position place)
{
    place = content.valid(place);
    const Line& line = content.line(place.line);
    TextRun run;
    run.look = page.style().look(page.style().block(line.block).text);
    page.style().forEachRun(line, [&](int from, int to, LookId look) {
        if (from <= place.offset && (place.offset < to || to == line.text.size()))
            run = {from, to, page.style().look(look)};
    });
    return run;
}

QRect DisplayView::caretRect()
{
    settle();
    const QRectF rect = page.caretRect(content.selection().focus);
    scroller.hold();
    return toClient(rect);
}

// ---------------------------------------------------------------- widget events

bool DisplayView::event(QEvent* event)
{
    // Keys go to the document before any menu shortcut: the owner's handler decides. The menus keep Alt with
    // a letter.
    if (event->type() == QEvent::ShortcutOverride) {
        const Qt::KeyboardModifiers modifiers = static_cast<QKeyEvent*>(event)->modifiers();
        const bool menuKey = modifiers.testFlag(Qt::AltModifier) && !modifiers.testFlag(Qt::ControlModifier);
        event->setAccepted(!menuKey);
        return true;
    }
    return QAbstractScrollArea::event(event);
}

void DisplayView::resizeEvent(QResizeEvent*)
{
    if (clientWidth() != int(page.width()))
        page.setWidth(clientWidth());
    scroller.invalidate();
    settle();
    viewport()->update();
    // A browser raises this event for the window and again for its body; owners depend on both.
    for (int i = 0; i < 2; ++i) {
        DisplayEvent event = makeEvent("resize"_L1, {});
        raise(events.onresize, event);
    }
}

void DisplayView::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ActivationChange)
        viewport()->update();
}

void DisplayView::scrollContentsBy(int, int)
{
    if (movingScrollBar)
        return;
    const int wanted = verticalScrollBar()->value();
    const int before = scroller.top();
    settle();
    // The slider sets a position of the page; everything else sets a distance.
    if (verticalScrollBar()->isSliderDown())
        scroller.place(wanted);
    else
        scroller.move(wanted - before);
    if (scroller.top() != before)
        pageScrolled();
}

void DisplayView::timerEvent(QTimerEvent* event)
{
    if (updateHolds > 0)
        return;
    if (event->timerId() == blinkTimer.timerId()) {
        caretOn = !caretOn;
        viewport()->update(caretRect().adjusted(-1, 0, CaretWidth + 1, 0));
    } else if (event->timerId() == dragTimer.timerId()) {
        scrollWhileDragging();
    } else if (event->timerId() == loadTimer.timerId()) {
        loadSlice();
    } else if (event->timerId() == idleTimer.timerId()) {
        settle();
        const bool more = page.measureFor(IdleSlice, scroller.anchor().place.line);
        if (const double height = page.heightOf(scroller.anchor()); height != scroller.top())
            scroller.hold();
        pagePlaced(false);
        if (!more) {
            idleTimer.stop();
            Q_EMIT measured();
        }
    } else {
        QAbstractScrollArea::timerEvent(event);
    }
}

bool DisplayView::acceptUrls(QDropEvent& event)
{
    if (!event.mimeData()->hasUrls())
        return false;
    // As a copy: after a move the source may delete its file.
    event.setDropAction(Qt::CopyAction);
    event.accept();
    return true;
}

void DisplayView::dragEnterEvent(QDragEnterEvent* event)
{
    acceptUrls(*event);
}

void DisplayView::dragMoveEvent(QDragMoveEvent* event)
{
    acceptUrls(*event);
}

void DisplayView::dropEvent(QDropEvent* event)
{
    // A dropped file is a navigation, which the owner may cancel; text cannot be dropped.
    if (!acceptUrls(*event))
        return;
    const QUrl url = event->mimeData()->urls().constFirst();
    Navigate(url.isLocalFile() ? PathOfUrl(url) : url.toString());
}

void DisplayView::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    showCaret();
    viewport()->update();
}

void DisplayView::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    showCaret();
    viewport()->update();
    DisplayEvent lost = makeEvent("focusout"_L1, {});
    raise(events.onfocusout, lost);
}

// ---------------------------------------------------------------- painting

void DisplayView::showCaret()
{
    const int flashTime = QGuiApplication::styleHints()->cursorFlashTime();
    caretOn = editable && hasFocus();
    if (caretOn && flashTime > 1)
        blinkTimer.start(flashTime / 2, this);
    else
        blinkTimer.stop();
}

void DisplayView::paintEvent(QPaintEvent* event)
{
    settle();
    QPainter painter(viewport());
    const QRect exposed = event->rect();
    painter.fillRect(exposed, page.style().background());
    painter.translate(0, -scroller.top());

    PageLayout::Painting painting;
    painting.area = QRectF(exposed).translated(0, scroller.top());
    painting.selectionStart = content.selection().start();
    painting.selectionEnd = content.selection().end();
    const QPalette::ColorGroup group = hasFocus() ? QPalette::Active : QPalette::Inactive;
    painting.selectionBackground = palette().color(group, QPalette::Highlight);
    painting.selectionText = palette().color(group, QPalette::HighlightedText);
    page.paint(painter, painting);

    paintPreedit(painter);
    paintCaret(painter);
    notifyInputMethod();
}

/// Reports the caret to the input method, so that its window follows.
void DisplayView::notifyInputMethod()
{
    const QRect rect = inputCaretRect();
    if (rect != reportedCaretRect && hasFocus()) {
        reportedCaretRect = rect;
        updateMicroFocus();
    }
}

void DisplayView::paintCaret(QPainter& painter)
{
    if (!caretOn)
        return;
    QRectF rect = page.caretRect(content.selection().focus);
    if (page.hasPreedit()) {
        const std::vector<QRectF> rects = page.preeditRects(preeditCursor, preeditCursor);
        if (!preeditCaretShown || rects.empty())
            return;
        rect = rects.front();
    }
    rect.setLeft(std::clamp(std::floor(rect.left()), 0.0, std::max(0.0, page.width() - CaretWidth)));
    rect.setWidth(CaretWidth);
    const QColor paper = page.style().background();
    painter.fillRect(rect, paper.lightness() < 128 ? Qt::white : Qt::black);
}

void DisplayView::paintPreedit(QPainter& painter)
{
    for (const QTextLayout::FormatRange& range : std::as_const(preeditFormats)) {
        for (const QRectF& rect : page.preeditRects(range.start, range.start + range.length)) {
            const QBrush background = range.format.background();
            if (background.style() != Qt::NoBrush) {
                QColor tint = background.color();
                tint.setAlpha(96);
                painter.fillRect(rect, tint);
            }
            painter.setPen(page.style().background().lightness() < 128 ? Qt::white : Qt::black);
            painter.drawLine(rect.bottomLeft() - QPointF(0, 1), rect.bottomRight() - QPointF(0, 1));
        }
    }
}

} // namespace vmk
