#include "SearchField.h"

#include "Desktop.h"

#include <QContextMenuEvent>
#include <QKeyEvent>

#include <utility>

namespace vmk {
namespace {

/// Returns the first characters of a text, without cutting a surrogate pair.
QString FirstCharacters(const QString& text, qsizetype count)
{
    const bool cutsPair
        = text.size() > count && text[count - 1].isHighSurrogate() && text[count].isLowSurrogate();
    return text.left(cutsPair ? count - 1 : count);
}

bool IsPasteKey(const QKeyEvent& key)
{
    return key.matches(QKeySequence::Paste)
        || (key.key() == Qt::Key_Insert && key.modifiers().testFlag(Qt::ShiftModifier));
}

} // namespace

SearchField::SearchField(QWidget* parent)
    : QLineEdit(parent)
{
}

void SearchField::Fill(const QString& newText)
{
    selectAll();
    insert(newText);
}

void SearchField::PasteIntoBox(bool clearFirst, const QString& pasted)
{
    QString taken = pasted;
    if (taken.isEmpty())
        taken = ClipboardText().remove(QLatin1StringView("\r\n")).remove(u'\n').remove(u'\r');
    taken = FirstCharacters(taken, MostPasted);
    if (clearFirst)
        Fill(taken);
    else
        insert(taken);
}

void SearchField::ClearBox(bool onlySelection)
{
    if (!onlySelection)
        selectAll();
    if (hasSelectedText())
        del();
}

void SearchField::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter)
        return;
    if (key == Qt::Key_F3 || key == Qt::Key_F4)
        pressedKey = key;
    else if (IsPasteKey(*event))
        PasteIntoBox(false);
    else if (key == Qt::Key_Delete && event->modifiers().testFlag(Qt::ControlModifier))
        ClearBox(false);
    else if (key == Qt::Key_Down)
        Q_EMIT dropDownKey();
    else
        QLineEdit::keyPressEvent(event);
}

void SearchField::keyReleaseEvent(QKeyEvent* event)
{
    const int key = event->key();
    const bool isFindKey = key == Qt::Key_F3 || key == Qt::Key_F4;
    if (!isFindKey) {
        QLineEdit::keyReleaseEvent(event);
        return;
    }
    if (event->isAutoRepeat() || std::exchange(pressedKey, 0) != key)
        return;
    if (key == Qt::Key_F3)
        Q_EMIT findKey();
    else
        Q_EMIT replaceKey();
}

void SearchField::mousePressEvent(QMouseEvent* event)
{
    Q_EMIT mousePressed();
    QLineEdit::mousePressEvent(event);
}

void SearchField::mouseDoubleClickEvent(QMouseEvent*)
{
    selectAll();
}

void SearchField::contextMenuEvent(QContextMenuEvent* event)
{
    Q_EMIT menuRequested(event->globalPos());
}

} // namespace vmk
