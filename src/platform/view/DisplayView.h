#pragma once

#include "DisplayDocument.h"
#include "DisplayEvents.h"
#include "LayoutQuery.h"
#include "PageLayout.h"
#include "PageScroller.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>

#include <memory>
#include <optional>

namespace vmk {

/// The display: shows a page, scrolls it, and lets the user edit it.
///
/// The view owns its document and provides its layout queries. It raises the events of the document for its
/// owner (`events`) and executes the default action of a browser in edit mode unless the owner has cancelled
/// it. Only the visible lines are laid out at once. The rest of the page is measured in idle time, while the
/// first visible row keeps its position.
class DisplayView : public QAbstractScrollArea,
                    private DisplayListener,
                    private LayoutQuery,
                    private ScrollerView
{
    Q_OBJECT

public:
    explicit DisplayView(QWidget* parent = nullptr);
    ~DisplayView() override;

    [[nodiscard]] DisplayDocument& document() { return content; }
    [[nodiscard]] const DisplayDocument& document() const { return content; }

    /// The owner's handlers.
    DisplayEvents events;
    /// The event being handled; null outside an event.
    [[nodiscard]] const DisplayEvent* currentEvent() const { return current; }

    // ---- navigation

    /// Navigates to a page file: calls `onbeforenavigate`, then loads the page from the event loop and raises
    /// `ondocumentcomplete`. The page is read-only until `setDesignMode`. A file that cannot be read is shown
    /// as an empty page.
    /// \param target  a path or a file URL
    /// \return false if `onbeforenavigate` has cancelled it
    bool Navigate(const QString& target);
    /// The same for a page that exists already: the file is not read. Its lines are loaded in slices of the
    /// event loop, the first ones before `ondocumentcomplete`.
    /// \param front  the page without its lines
    bool Navigate(const QString& target, QByteArray front, std::unique_ptr<LineSource> lines);
    /// Shows a page given as UTF-8 text, at once and without any event, with the location "about:blank".
    void setPage(const QByteArray& html);
    /// The path of the current page.
    [[nodiscard]] const QString& location() const { return pageLocation; }
    /// "loading" or "complete".
    [[nodiscard]] QString readyState() const;
    /// "On" or "Off".
    [[nodiscard]] QString designMode() const;
    /// "On" makes the page editable. Raises `onreadystatechange` from the event loop.
    void setDesignMode(const QString& mode);
    [[nodiscard]] bool isEditable() const { return editable; }

    // ---- body and window; all in pixels

    [[nodiscard]] int scrollTop();
    [[nodiscard]] int scrollLeft() const { return 0; }
    /// The height of the whole page, at least the visible height. Nearly exact from the start, exact once all
    /// lines are measured.
    [[nodiscard]] int scrollHeight();
    [[nodiscard]] int clientWidth() const;
    [[nodiscard]] int clientHeight() const;
    [[nodiscard]] int offsetHeight() const { return clientHeight(); }
    [[nodiscard]] int clientTop() const { return 0; }
    [[nodiscard]] int clientLeft() const { return 0; }
    /// Scrolls to a position of the page. The height is exact unless the page ends before it.
    void scroll(int x, int y);
    /// Scrolls by a distance. The visible part moves by exactly this distance unless the page ends.
    void scrollBy(int x, int y);
    /// Scrolls so that the caret is in the middle of the view, as far as the page allows.
    void centerCaret();
    /// Sets the keyboard focus.
    void focus() { setFocus(Qt::OtherFocusReason); }

    /// Returns the number of the visual row of a position, from 1 at the top of the page, without laying out
    /// the text above it. Lines that are not measured yet count with their estimate.
    [[nodiscard]] int64_t rowNumber(Position place);
    /// Returns whether all heights and row numbers are exact.
    [[nodiscard]] bool isMeasured() const { return page.isMeasured(); }

    /// Lays the page out again, for example after a notification about a change was interrupted.
    void RebuildLayout();

    /// While one of these exists the view neither lays out nor paints nor reports changes: for a run of many
    /// edits that lets events be handled.
    class UpdateHold
    {
    public:
        explicit UpdateHold(DisplayView& heldView);
        ~UpdateHold();
        UpdateHold(const UpdateHold&) = delete;
        UpdateHold& operator=(const UpdateHold&) = delete;

    private:
        DisplayView& view;
    };

    // ---- LayoutQuery

    [[nodiscard]] std::vector<QRect> clientRects(Position from, Position to) override;
    [[nodiscard]] QRect boundingRect(Position from, Position to) override;
    [[nodiscard]] Position positionAt(QPoint clientPoint) override;
    [[nodiscard]] int lineAt(QPoint clientPoint) override;
    [[nodiscard]] bool isLaidOutInPieces(int line) override;
    [[nodiscard]] QPoint scrollOffset() override;
    void scrollTo(QPoint offset) override { scroll(offset.x(), offset.y()); }
    void scrollIntoView(Position place) override;

    // ---- native editing commands; commands that change the page do nothing unless it is editable

    void selectAll();
    /// Returns the selected text, with `CrLf` for each line break.
    [[nodiscard]] QString selectedText() const;
    /// Copies the selected text to the clipboard. Does nothing without a selection.
    void copy() const;
    void cut();
    /// Replaces the selection by the text of the clipboard.
    void paste();
    /// @param steps of the document's undo
    void undo(int steps = 1);
    void redo(int steps = 1);

    /// Replaces the selection by text, as one undo step; each line end in it begins a new line.
    void insertText(const QString& text);

    /// A run of text with one look; offsets in its line.
    struct TextRun
    {
        int from = 0;
        int to = 0;
        TextLook look;
    };
    /// Returns the run that contains the character at a position.
    [[nodiscard]] TextRun runAt(Position place);

    /// Returns the caret in client coordinates.
    [[nodiscard]] QRect caretRect();

Q_SIGNALS:
    /// The selection, the caret or the text has changed.
    void selectionOrTextChanged();
    /// The last line was measured: heights and row numbers are now exact.
    void measured();

protected:
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void timerEvent(QTimerEvent* event) override;

private:
    // DisplayListener
    void linesChanged(int first, const std::vector<LinePtr>& removed,
                      const std::vector<LinePtr>& inserted) override;
    void linesLoaded(int first, const std::vector<LinePtr>& loaded) override;
    void selectionChanged() override;
    void documentReset() override;

    static bool acceptUrls(QDropEvent& event);

    // Events for the owner.
    [[nodiscard]] DisplayEvent makeEvent(QLatin1StringView type, Qt::KeyboardModifiers modifiers) const;
    bool raise(const DisplayEvents::Handler& handler, DisplayEvent& event);
    bool raiseMouse(const DisplayEvents::Handler& handler, QLatin1StringView type, const QMouseEvent& event);
    void completeNavigation();
    void loadSlice();

    // ScrollerView
    [[nodiscard]] int visibleHeight() const override { return clientHeight(); }
    void pagePlaced(bool changed) override;
    void pageScrolled() override;

    // Position of the page.
    void settle();
    void reveal();
    [[nodiscard]] QPointF toPage(QPoint clientPoint) const
    {
        return clientPoint + QPointF(0, scroller.top());
    }
    [[nodiscard]] QRect toClient(const QRectF& pageRect) const;
    void resetPage();
    [[nodiscard]] double dotsPerInch() const;

    // Keys.
    void handleKey(const QKeyEvent& event, int keyCode);
    bool moveByKey(int keyCode, Qt::KeyboardModifiers modifiers);
    bool editByKey(int keyCode, Qt::KeyboardModifiers modifiers);
    bool commandByKey(int keyCode, Qt::KeyboardModifiers modifiers);
    bool scrollByKey(int keyCode, Qt::KeyboardModifiers modifiers);
    void moveCaret(Position place, bool select);
    void moveVertically(int direction, bool select);
    void moveByPage(int direction, bool select);
    void deleteTo(Position place);

    // Input methods.
    void takePreedit(const QInputMethodEvent& event);
    [[nodiscard]] QRect inputCaretRect();
    void notifyInputMethod();

    // Mouse.
    void publishSelection();
    void dragTo(QPoint point);
    void scrollWhileDragging();

    // Caret and painting.
    void showCaret();
    void paintCaret(QPainter& painter);
    void paintPreedit(QPainter& painter);

    DisplayDocument content;
    PageLayout page;
    PageScroller scroller;
    DisplayEvent* current = nullptr;

    QString pageLocation;
    QString pendingLocation;
    QByteArray pendingFront;
    std::unique_ptr<LineSource> pendingLines;
    bool loading = false;
    bool editable = false;

    int updateHolds = 0;
    bool movingScrollBar = false;

    /// The selection after the last edit. A different one was set explicitly and is scrolled into view.
    Selection knownSelection;
    /// The selection that was offered last to the middle button; empty after an edit.
    Selection publishedSelection;
    /// The target x of vertical caret moves; empty after any other move.
    std::optional<double> rememberedX;

    bool dragging = false;
    bool pressInSelection = false;
    bool doubleClicked = false;
    QPoint pressPoint;
    QPoint dragPoint;
    std::optional<std::pair<Position, Position>> pressWord;

    bool caretOn = false;
    /// The caret within the text of an input method, and whether it is visible.
    int preeditCursor = 0;
    bool preeditCaretShown = true;
    /// The formats of that text.
    QList<QTextLayout::FormatRange> preeditFormats;

    /// The caret last reported to the input method.
    QRect reportedCaretRect;

    QBasicTimer blinkTimer;
    QBasicTimer dragTimer;
    QBasicTimer idleTimer;
    QBasicTimer loadTimer; ///< while the page is not complete
};

} // namespace vmk
