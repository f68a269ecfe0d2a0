#include "HistoryDropDown.h"

#include <QContextMenuEvent>
#include <QCursor>
#include <QKeyEvent>

namespace vmk {

HistoryDropDown::HistoryDropDown(QWidget* parent)
    : QListView(parent)
{
    setModel(&model);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUniformItemSizes(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setTextElideMode(Qt::ElideRight);
    setMouseTracking(true);
    setAutoFillBackground(true);
    hide();
    connect(this, &QListView::clicked, this, &HistoryDropDown::choose);
}

void HistoryDropDown::open(const QRect& geometry)
{
    pointerSeen = false;
    setGeometry(geometry);
    setCurrentIndex(model.index(0));
    show();
    raise();
    setFocus(Qt::PopupFocusReason);
}

void HistoryDropDown::choose(const QModelIndex& index)
{
    if (const QString entry = index.data(Qt::DisplayRole).toString(); !entry.isEmpty())
        Q_EMIT chosen(entry);
    Q_EMIT closeRequested(true);
}

void HistoryDropDown::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    const bool isBackUp
        = key == Qt::Key_Up && (currentIndex().row() <= 0 || event->modifiers().testFlag(Qt::AltModifier));
    if (key == Qt::Key_Escape || isBackUp)
        Q_EMIT closeRequested(true);
    else if (key == Qt::Key_Return || key == Qt::Key_Enter)
        choose(currentIndex());
    else
        QListView::keyPressEvent(event);
}

void HistoryDropDown::mouseMoveEvent(QMouseEvent* event)
{
    QListView::mouseMoveEvent(event);
    const QPoint position = viewport()->mapTo(this, event->position().toPoint());
    const bool onEdge = position.x() <= frameWidth() || position.y() <= frameWidth();
    if (!onEdge)
        pointerSeen = true;
    else if (pointerSeen)
        Q_EMIT closeRequested(true);
}

void HistoryDropDown::leaveEvent(QEvent* event)
{
    QListView::leaveEvent(event);
    const QPoint position = mapFromGlobal(QCursor::pos());
    const bool overEdge = position.x() < 1 || position.y() < 1;
    if (pointerSeen && overEdge && isVisible())
        Q_EMIT closeRequested(true);
}

void HistoryDropDown::focusOutEvent(QFocusEvent* event)
{
    QListView::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && isVisible())
        Q_EMIT closeRequested(false);
}

void HistoryDropDown::contextMenuEvent(QContextMenuEvent* event)
{
    menuRow
        = event->reason() == QContextMenuEvent::Keyboard ? currentIndex().row() : indexAt(event->pos()).row();
    Q_EMIT menuRequested(event->globalPos());
}

} // namespace vmk
