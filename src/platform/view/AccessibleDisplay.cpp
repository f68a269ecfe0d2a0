#include "AccessibleDisplay.h"

#include "CommonEnds.h"
#include "DisplayView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QTextCharFormat>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// A display for screen readers: one text in which a line break counts as one character.
class AccessibleDisplay : public QAccessibleWidget,
                          public QAccessibleTextInterface,
                          public QAccessibleEditableTextInterface
{
public:
    explicit AccessibleDisplay(DisplayView* view)
        : QAccessibleWidget(view, QAccessible::EditableText)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface*>(this);
        if (type == QAccessible::EditableTextInterface && view().isEditable())
            return static_cast<QAccessibleEditableTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.multiLine = true;
        state.selectableText = true;
        state.editable = view().isEditable();
        state.readOnly = !view().isEditable();
        return state;
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? text(0, characterCount()) : QAccessibleWidget::text(kind);
    }

    // ---- QAccessibleTextInterface

    void selection(int index, int* start, int* end) const override
    {
        const Selection& selection = document().selection();
        const bool there = index == 0 && !selection.isEmpty();
        *start = there ? offsetOf(selection.start()) : 0;
        *end = there ? offsetOf(selection.end()) : 0;
    }
    [[nodiscard]] int selectionCount() const override { return document().selection().isEmpty() ? 0 : 1; }
    void addSelection(int start, int end) override { select(start, end); }
    void removeSelection(int index) override
    {
        if (index == 0)
            setCursorPosition(cursorPosition());
    }
    void setSelection(int index, int start, int end) override
    {
        if (index == 0)
            select(start, end);
    }
    [[nodiscard]] int cursorPosition() const override { return offsetOf(document().selection().focus); }
    void setCursorPosition(int offset) override { select(offset, offset); }

    [[nodiscard]] QString text(int start, int end) const override
    {
        const Position from = placeOf(start);
        const Position to = placeOf(end);
        QString text;
        for (int line = from.line; line <= to.line; ++line) {
            const QString& all = document().line(line).text;
            const int begin = line == from.line ? from.offset : 0;
            const int stop = line == to.line ? to.offset : int(all.size());
            if (begin < stop)
                text += QStringView(all).sliced(begin, stop - begin);
            if (line < to.line)
                text += u'\n';
        }
        return text;
    }
    [[nodiscard]] int characterCount() const override { return offsetOf(document().end()); }

    [[nodiscard]] QRect characterRect(int offset) const override
    {
        const Position from = placeOf(offset);
        const std::vector<QRect> rects = view().clientRects(from, placeOf(offset + 1));
        return rects.empty() ? QRect() : rects.front().translated(screenOrigin());
    }
    [[nodiscard]] int offsetAtPoint(const QPoint& point) const override
    {
        const QPoint local = point - screenOrigin();
        return view().viewport()->rect().contains(local) ? offsetOf(view().positionAt(local)) : -1;
    }
    void scrollToSubstring(int start, int) override { view().scrollIntoView(placeOf(start)); }

    QString attributes(int offset, int* start, int* end) const override
    {
        const Position place = placeOf(offset);
        const DisplayView::TextRun run = view().runAt(place);
        *start = offset - place.offset + run.from;
        *end = offset - place.offset + run.to;
        const auto rgb
            = [](const QColor& c) { return u"rgb(%1,%2,%3)"_s.arg(c.red()).arg(c.green()).arg(c.blue()); };
        QString result = u"color:"_s + rgb(run.look.color)
            + u";font-size:%1pt;"_s.arg(run.look.size * 72 / 96)
            + u"font-weight:%1;"_s.arg(run.look.weight >= QFont::Bold ? u"bold"_s : u"normal"_s)
            + u"font-style:%1;"_s.arg(run.look.italic ? u"italic"_s : u"normal"_s);
        if (run.look.background.isValid())
            result += u"background-color:"_s + rgb(run.look.background) + u';';
        if (!run.look.families.isEmpty())
            result += u"font-family:\""_s + run.look.families.constFirst() + u"\";"_s;
        return result;
    }

    // ---- QAccessibleEditableTextInterface

    void deleteText(int start, int end) override
    {
        select(start, end);
        document().eraseSelection();
    }
    void insertText(int offset, const QString& text) override
    {
        select(offset, offset);
        view().insertText(text);
    }
    void replaceText(int start, int end, const QString& text) override
    {
        select(start, end);
        view().insertText(text);
    }

    [[nodiscard]] int offsetOf(Position place) const { return int(document().characterIndex(place)); }

private:
    [[nodiscard]] DisplayView& view() const { return *static_cast<DisplayView*>(widget()); }
    [[nodiscard]] DisplayDocument& document() const { return view().document(); }
    [[nodiscard]] QPoint screenOrigin() const { return view().viewport()->mapToGlobal(QPoint()); }

    [[nodiscard]] Position placeOf(int offset) const { return document().positionAt(offset); }

    void select(int start, int end) { document().setSelection(placeOf(start), placeOf(end)); }
};

QAccessibleInterface* MakeInterface(const QString&, QObject* object)
{
    auto* const view = qobject_cast<DisplayView*>(object);
    return view ? new AccessibleDisplay(view) : nullptr;
}

AccessibleDisplay* InterfaceOf(DisplayView& view)
{
    return dynamic_cast<AccessibleDisplay*>(QAccessible::queryAccessibleInterface(&view));
}

/// The text of lines, each followed by its line break.
QString TextOf(const std::vector<LinePtr>& lines)
{
    QString text;
    for (const LinePtr& line : lines)
        text += line->text + u'\n';
    return text;
}

} // namespace

void InstallAccessibleDisplay()
{
    static const bool installed = [] {
        QAccessible::installFactory(MakeInterface);
        return true;
    }();
    Q_UNUSED(installed);
}

CharacterChange ChangeBetween(const std::vector<LinePtr>& removed, const std::vector<LinePtr>& inserted)
{
    const QString before = TextOf(removed);
    const QString after = TextOf(inserted);
    const std::ptrdiff_t front = CommonFront(before, after);
    const std::ptrdiff_t back = CommonBack(before, after, front);
    return {int(front), before.sliced(front).chopped(back), after.sliced(front).chopped(back)};
}

void ReportTextChange(DisplayView& view, int first, const std::vector<LinePtr>& removed,
                      const std::vector<LinePtr>& inserted)
{
    const AccessibleDisplay* display = InterfaceOf(view);
    if (!display)
        return;
    const CharacterChange change = ChangeBetween(removed, inserted);
    const int start = display->offsetOf({first, 0}) + change.offset;
    if (change.removed.isEmpty() && change.inserted.isEmpty())
        return;
    if (change.removed.isEmpty()) {
        QAccessibleTextInsertEvent event(&view, start, change.inserted);
        QAccessible::updateAccessibility(&event);
    } else if (change.inserted.isEmpty()) {
        QAccessibleTextRemoveEvent event(&view, start, change.removed);
        QAccessible::updateAccessibility(&event);
    } else {
        QAccessibleTextUpdateEvent event(&view, start, change.removed, change.inserted);
        QAccessible::updateAccessibility(&event);
    }
}

void ReportCaretMove(DisplayView& view)
{
    const AccessibleDisplay* display = InterfaceOf(view);
    if (!display)
        return;
    QAccessibleTextCursorEvent caret(&view, display->cursorPosition());
    QAccessible::updateAccessibility(&caret);
    const Selection& selection = view.document().selection();
    QAccessibleTextSelectionEvent event(&view, display->offsetOf(selection.start()),
                                        display->offsetOf(selection.end()));
    QAccessible::updateAccessibility(&event);
}

} // namespace vmk
