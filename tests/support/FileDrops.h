#pragma once

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

namespace vmk {

/// Drops URLs at a position of a widget; true if the widget accepts both drag and drop, as a copy.
inline bool DropUrls(QWidget& widget, const QList<QUrl>& urls, QPoint place)
{
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QCoreApplication::sendEvent(&widget, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    drop.ignore();
    QCoreApplication::sendEvent(&widget, &drop);
    return drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
}

/// The same in the centre of a widget.
inline bool DropUrls(QWidget& widget, const QList<QUrl>& urls)
{
    return DropUrls(widget, urls, widget.rect().center());
}

inline bool DropFile(QWidget& widget, const QString& path)
{
    return DropUrls(widget, {QUrl::fromLocalFile(path)});
}

} // namespace vmk
