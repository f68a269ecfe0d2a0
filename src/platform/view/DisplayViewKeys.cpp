// Keyboard input of the display: events for the owner, then the default actions of a browser in edit mode.

#include "DisplayView.h"

#include "Desktop.h"
#include "VirtualKeys.h"
#include "WordBreaks.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// Pixels per row when the page is scrolled with the keyboard.
constexpr int KeyScroll = 40;
/// The number of characters around the caret that are reported to an input method.
constexpr int SurroundingText = 2000;

/// The text that a key types; empty for a key that is a command.
QString TypedText(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    const bool alt = modifiers.testFlag(Qt::AltModifier);
    // Some keyboards report AltGr as Ctrl and Alt together.
    if (control != alt || modifiers.testFlag(Qt::MetaModifier))
        return {};
    const QString text = event.text();
    const bool printable = !text.isEmpty()
        && (text.front().isPrint() || text.front().isSurrogate()
            || text.front().category() == QChar::Other_Format);
    return printable ? text : QString();
}

} // namespace

void DisplayView::keyPressEvent(QKeyEvent* event)
{
    const int keyCode = VirtualKeyCode(*event);
    DisplayEvent down = makeEvent("keydown"_L1, event->modifiers());
    down.keyCode = keyCode;
    event->accept();
    if (raise(events.onkeydown, down))
        handleKey(*event, keyCode);
}

void DisplayView::keyReleaseEvent(QKeyEvent* event)
{
    if (event->isAutoRepeat())
        return;
    DisplayEvent up = makeEvent("keyup"_L1, event->modifiers());
    up.keyCode = VirtualKeyCode(*event);
    raise(events.onkeyup, up);
    publishSelection();
}

bool DisplayView::focusNextPrevChild(bool)
{
    // Tab is handled as a key; if the owner does not handle it, it moves the focus.
    return false;
}

void DisplayView::handleKey(const QKeyEvent& event, int keyCode)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    if (keyCode == VirtualKey::Tab && !modifiers.testFlag(Qt::ControlModifier)) {
        QAbstractScrollArea::focusNextPrevChild(!modifiers.testFlag(Qt::ShiftModifier));
        return;
    }
    if (commandByKey(keyCode, modifiers))
        return;
    if (!editable) {
        scrollByKey(keyCode, modifiers);
        return;
    }
    if (modifiers.testFlag(Qt::AltModifier) && !modifiers.testFlag(Qt::ControlModifier))
        return;
    if (moveByKey(keyCode, modifiers) || editByKey(keyCode, modifiers))
        return;
    if (const QString text = TypedText(event); !text.isEmpty()) {
        rememberedX.reset();
        content.typeText(text);
        reveal();
    }
}

bool DisplayView::commandByKey(int keyCode, Qt::KeyboardModifiers modifiers)
{
    const bool control = modifiers.testFlag(Qt::ControlModifier) && !modifiers.testFlag(Qt::AltModifier);
    const bool shift = modifiers.testFlag(Qt::ShiftModifier);
    if (keyCode == VirtualKey::Insert && control)
        copy();
    else if (keyCode == VirtualKey::Insert && shift)
        paste();
    else if (keyCode == VirtualKey::Delete && shift)
        cut();
    else if (!control)
        return false;
    else if (keyCode == 'A')
        selectAll();
    else if (keyCode == 'C')
        copy();
    else if (keyCode == 'X')
        cut();
    else if (keyCode == 'V')
        paste();
    else if (keyCode == 'Y' || (keyCode == 'Z' && shift))
        redo();
    else if (keyCode == 'Z')
        undo();
    else
        return false;
    return true;
}

bool DisplayView::moveByKey(int keyCode, Qt::KeyboardModifiers modifiers)
{
    const bool select = modifiers.testFlag(Qt::ShiftModifier);
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    const Selection selection = content.selection();
    const Position caret = selection.focus;
    switch (keyCode) {
    case VirtualKey::Left:
        if (!select && !control && !selection.isEmpty())
            moveCaret(selection.start(), false);
        else
            moveCaret(control ? PreviousWordStart(content, caret) : page.previous(caret), select);
        return true;
    case VirtualKey::Right:
        if (!select && !control && !selection.isEmpty())
            moveCaret(selection.end(), false);
        else
            moveCaret(control ? NextWordStart(content, caret) : page.next(caret), select);
        return true;
    case VirtualKey::Up:
        moveVertically(-1, select);
        return true;
    case VirtualKey::Down:
        moveVertically(1, select);
        return true;
    case VirtualKey::Home:
        moveCaret(control ? Position{} : page.rowEnds(caret).first, select);
        return true;
    case VirtualKey::End:
        moveCaret(control ? content.end() : page.rowEnds(caret).second, select);
        return true;
    case VirtualKey::PageUp:
        moveByPage(-1, select);
        return true;
    case VirtualKey::PageDown:
        moveByPage(1, select);
        return true;
    default:
        return false;
    }
}

bool DisplayView::editByKey(int keyCode, Qt::KeyboardModifiers modifiers)
{
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    const Position caret = content.selection().focus;
    switch (keyCode) {
    case VirtualKey::Enter:
        content.insertLineBreak();
        break;
    case VirtualKey::Backspace:
        if (control)
            deleteTo(PreviousWordStart(content, caret));
        else
            content.deleteBackward();
        break;
    case VirtualKey::Delete:
        if (control)
            deleteTo(NextWordStart(content, caret));
        else
            content.deleteForward();
        break;
    default:
        return false;
    }
    rememberedX.reset();
    reveal();
    return true;
}

bool DisplayView::scrollByKey(int keyCode, Qt::KeyboardModifiers)
{
    switch (keyCode) {
    case VirtualKey::Up:
        scrollBy(0, -KeyScroll);
        return true;
    case VirtualKey::Down:
        scrollBy(0, KeyScroll);
        return true;
    case VirtualKey::PageUp:
        scrollBy(0, -clientHeight());
        return true;
    case VirtualKey::PageDown:
    case VirtualKey::Space:
        scrollBy(0, clientHeight());
        return true;
    case VirtualKey::Home:
        scroll(0, 0);
        return true;
    case VirtualKey::End:
        scroll(0, scrollHeight());
        return true;
    default:
        return false;
    }
}

/// Scrolls the caret into view after an edit with the keyboard.
void DisplayView::reveal()
{
    scroller.reveal();
    viewport()->update();
}

void DisplayView::moveCaret(Position place, bool select)
{
    rememberedX.reset();
    content.setSelection(select ? content.selection().anchor : place, place);
    reveal();
}

/// Moves to the row above (-1) or below (1), as near as possible to the column where the moves began.
void DisplayView::moveVertically(int direction, bool select)
{
    settle();
    const Position caret = content.selection().focus;
    const QRectF rect = page.caretRect(caret);
    const double x = rememberedX.value_or(rect.left());
    const auto [rowStart, rowEnd] = page.rowEnds(caret);
    Position place;
    if (direction < 0)
        place = rowStart == Position{} ? caret : page.onRow(page.previous(rowStart), x);
    else
        place = page.onRow(page.next(rowEnd), x);
    // Below the last row the next position is the same one again.
    if (direction > 0 && page.next(rowEnd) == rowEnd)
        place = caret;
    moveCaret(place, select);
    rememberedX = x;
}

/// Moves the caret and the page by the height of the view minus one row; at an end of the page, only the
/// caret.
void DisplayView::moveByPage(int direction, bool select)
{
    settle();
    const Position caret = content.selection().focus;
    const QRectF rect = page.caretRect(caret);
    const double x = rememberedX.value_or(rect.left());
    const int distance = direction * std::max(KeyScroll, clientHeight() - int(rect.height()));
    scroller.scrollBy(distance);
    moveCaret(page.positionAt(QPointF(x, page.caretRect(caret).center().y() + distance)), select);
    rememberedX = x;
}

void DisplayView::deleteTo(Position place)
{
    if (content.selection().isEmpty())
        content.setSelection(content.selection().focus, place);
    content.eraseSelection();
}

// ---------------------------------------------------------------- commands

void DisplayView::selectAll()
{
    content.setSelection({}, content.end());
}

QString DisplayView::selectedText() const
{
    const Position from = content.selection().start();
    const Position to = content.selection().end();
    QString text;
    for (int line = from.line; line <= to.line; ++line) {
        const QString& all = content.line(line).text;
        const int begin = line == from.line ? from.offset : 0;
        const int end = line == to.line ? to.offset : int(all.size());
        text += QStringView(all).sliced(begin, end - begin);
        if (line < to.line)
            text += "\r\n"_L1;
    }
    return text;
}

void DisplayView::copy() const
{
    if (!content.selection().isEmpty())
        SetClipboardText(selectedText());
}

void DisplayView::cut()
{
    copy();
    if (!editable)
        return;
    content.eraseSelection();
    reveal();
}

void DisplayView::paste()
{
    insertText(ClipboardText());
}

void DisplayView::insertText(const QString& text)
{
    if (!editable || text.isEmpty())
        return;
    QString lines = text;
    lines.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
    const DisplayDocument::EditGroup oneStep(content);
    const QStringList parts = lines.split(u'\n');
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i > 0)
            content.insertLineBreak();
        if (!parts[i].isEmpty())
            content.typeText(parts[i]);
    }
    reveal();
}

void DisplayView::undo(int steps)
{
    if (editable && content.undo(steps))
        reveal();
}

void DisplayView::redo(int steps)
{
    if (editable && content.redo(steps))
        reveal();
}

// ---------------------------------------------------------------- input methods

void DisplayView::inputMethodEvent(QInputMethodEvent* event)
{
    if (!editable) {
        event->ignore();
        return;
    }
    page.setPreedit({}, {});
    preeditFormats.clear();
    const bool edits = !event->commitString().isEmpty() || event->replacementLength() > 0;
    if (edits) {
        if (event->replacementLength() > 0) {
            const Position caret = content.selection().focus;
            const int from = caret.offset + event->replacementStart();
            content.setSelection({caret.line, from}, {caret.line, from + event->replacementLength()});
        }
        if (event->commitString().isEmpty())
            content.deleteSelection();
        else
            content.typeText(event->commitString());
    }
    if (!event->preeditString().isEmpty()) {
        // The composed text replaces the selection from its first character on.
        content.deleteSelection();
        takePreedit(*event);
    }
    scroller.invalidate();
    reveal();
    showCaret();
    updateMicroFocus();
    event->accept();
}

void DisplayView::takePreedit(const QInputMethodEvent& event)
{
    page.setPreedit(content.selection().focus, event.preeditString());
    preeditCursor = int(event.preeditString().size());
    preeditCaretShown = true;
    for (const QInputMethodEvent::Attribute& attribute : event.attributes()) {
        if (attribute.type == QInputMethodEvent::Cursor) {
            preeditCursor = std::clamp(attribute.start, 0, int(event.preeditString().size()));
            preeditCaretShown = attribute.length != 0;
        } else if (attribute.type == QInputMethodEvent::TextFormat) {
            const auto format = attribute.value.value<QTextFormat>();
            preeditFormats.append({attribute.start, attribute.length, format.toCharFormat()});
        }
    }
    if (preeditFormats.isEmpty())
        preeditFormats.append({0, int(event.preeditString().size()), {}});
}

QVariant DisplayView::inputMethodQuery(Qt::InputMethodQuery query) const
{
    // Reports the line of the caret, or for a long line the part around the caret.
    const Selection& selection = content.selection();
    const Position caret = selection.focus;
    const QString& line = content.line(caret.line).text;
    const int windowStart = std::max(0, caret.offset - SurroundingText);
    const int windowEnd = std::min(int(line.size()), caret.offset + SurroundingText);
    switch (query) {
    case Qt::ImEnabled:
        return editable;
    case Qt::ImReadOnly:
        return !editable;
    case Qt::ImCursorRectangle:
        return const_cast<DisplayView*>(this)->inputCaretRect();
    case Qt::ImCursorPosition:
        return caret.offset - windowStart;
    case Qt::ImAnchorPosition:
        return selection.anchor.line == caret.line
            ? std::clamp(selection.anchor.offset, windowStart, windowEnd) - windowStart
            : caret.offset - windowStart;
    case Qt::ImSurroundingText:
        return line.sliced(windowStart, windowEnd - windowStart);
    case Qt::ImTextBeforeCursor:
        return line.sliced(windowStart, caret.offset - windowStart);
    case Qt::ImTextAfterCursor:
        return line.sliced(caret.offset, windowEnd - caret.offset);
    case Qt::ImCurrentSelection:
        return selection.isEmpty() ? QString() : selectedText();
    case Qt::ImHints:
        return int(Qt::ImhMultiLine | Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
    default:
        return QAbstractScrollArea::inputMethodQuery(query);
    }
}

/// The caret, inside or outside a composed text, for the position of the input method's window.
QRect DisplayView::inputCaretRect()
{
    if (!page.hasPreedit())
        return caretRect();
    settle();
    const std::vector<QRectF> rects = page.preeditRects(preeditCursor, preeditCursor);
    return rects.empty() ? caretRect() : toClient(rects.front());
}

} // namespace vmk
