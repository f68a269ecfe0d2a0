#pragma once

#include "DisplayDocument.h"
#include "DisplayEvents.h"
#include "LayoutQuery.h"
#include "PageLayout.h"
#include "PageScroller.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>

#include <optional>

namespace vmk {

/// The display: shows a page, scrolls it, and lets the user edit it.
///
/// The view owns its document and tells it where things stand on the screen. It raises the document's
/// events to its owner (`events`) and does what a browser's edit mode does with whatever the owner has not
/// cancelled. Only what is seen is laid out at once; the rest of the page is measured in idle time, with
/// the first visible row held in place.
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
    /// The event being handled, null outside of one.
    [[nodiscard]] const DisplayEvent* currentEvent() const { return current; }

    // ---- navigation

    /// Goes to a page file: asks `onbeforenavigate`, then loads the page from the event loop and raises
    /// `ondocumentcomplete`. The page is read-only until `setDesignMode`. A file that cannot be read shows
    /// as an empty page.
    /// @param target a path or a file's URL. @return false when it was forbidden.
    bool Navigate(const QString& target);
    /// Shows a page given as text in UTF-8, at once and without any event, as location "about:blank".
    void setPage(const QByteArray& html);
    /// The path of the page shown.
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
    /// Height of the whole page, at least the visible height. Nearly exact from the start, exact once
    /// all lines are measured.
    [[nodiscard]] int scrollHeight();
    [[nodiscard]] int clientWidth() const;
    [[nodiscard]] int clientHeight() const;
    [[nodiscard]] int offsetHeight() const { return clientHeight(); }
    [[nodiscard]] int clientTop() const { return 0; }
    [[nodiscard]] int clientLeft() const { return 0; }
    /// Scrolls to a place of the page; the height stands exactly unless the page ends before.
    void scroll(int x, int y);
    /// Scrolls by a distance; what is visible moves by exactly that unless the page ends.
    void scrollBy(int x, int y);
    /// Takes the keyboard focus.
    void focus() { setFocus(Qt::OtherFocusReason); }

    /// Number of the visual row that a place stands on, from 1 at the page's top, without laying out what
    /// is in between. Lines not yet measured count by their estimate.
    [[nodiscard]] int64_t rowNumber(Position place);
    /// All heights and rows are exact.
    [[nodiscard]] bool isMeasured() const { return page.isMeasured(); }

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

    // ---- native editing commands; those that change the page do nothing unless it is editable

    void selectAll();
    /// The selected text, `CrLf` for each line break.
    [[nodiscard]] QString selectedText() const;
    /// The selected text goes to the clipboard; nothing happens at a bare caret.
    void copy() const;
    void cut();
    /// The clipboard's text takes the selection's place.
    void paste();
    /// @param steps of the document's undo
    void undo(int steps = 1);
    void redo(int steps = 1);

    /// Puts text in the selection's place as one step; each line end in it begins a new line.
    void insertText(const QString& text);

    /// A stretch of text of one look: offsets in its line.
    struct TextRun
    {
        int from = 0;
        int to = 0;
        TextLook look;
    };
    /// The stretch that holds the character at a place.
    [[nodiscard]] TextRun runAt(Position place);

    /// The caret, in client coordinates.
    [[nodiscard]] QRect caretRect();

Q_SIGNALS:
    /// The selection or the caret stands elsewhere, or the text has changed.
    void selectionOrTextChanged();
    /// The last line has been measured: heights and row numbers are exact now.
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
    // The document's ear.
    void linesChanged(int first, const std::vector<LinePtr>& removed,
                      const std::vector<LinePtr>& inserted) override;
    void selectionChanged() override;
    void documentReset() override;

    static bool acceptUrls(QDropEvent& event);

    // Events to the owner.
    [[nodiscard]] DisplayEvent makeEvent(QLatin1StringView type, Qt::KeyboardModifiers modifiers) const;
    bool raise(const DisplayEvents::Handler& handler, DisplayEvent& event);
    bool raiseMouse(const DisplayEvents::Handler& handler, QLatin1StringView type, const QMouseEvent& event);
    void completeNavigation();

    // What the scroller asks for.
    [[nodiscard]] int visibleHeight() const override { return clientHeight(); }
    void pagePlaced(bool changed) override;
    void pageScrolled() override;

    // Where the page stands.
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
    void tellInputMethod();

    // Mouse.
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
    bool loading = false;
    bool editable = false;

    int updateHolds = 0;
    bool movingScrollBar = false;

    /// The selection as the last edit left it: one that differs was made by somebody, and is shown.
    Selection knownSelection;
    /// Where vertical moves of the caret aim at; none after any other move.
    std::optional<double> rememberedX;

    bool dragging = false;
    bool pressInSelection = false;
    bool doubleClicked = false;
    QPoint pressPoint;
    QPoint dragPoint;
    std::optional<std::pair<Position, Position>> pressWord;

    bool caretOn = false;
    /// Caret within the text of an input method, and whether it is seen.
    int preeditCursor = 0;
    bool preeditCaretShown = true;
    /// How parts of that text are marked.
    QList<QTextLayout::FormatRange> preeditFormats;

    /// The caret as the input method knows it.
    QRect toldCaretRect;

    QBasicTimer blinkTimer;
    QBasicTimer dragTimer;
    QBasicTimer idleTimer;
};

} // namespace vmk
