#pragma once

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

namespace vmk {

/// Drags URLs onto the middle of a widget and lets go; true when the widget took the drag.
inline bool DropUrls(QWidget& widget, const QList<QUrl>& urls)
{
    QMimeData data;
    data.setUrls(urls);
    const QPoint place = widget.rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QCoreApplication::sendEvent(&widget, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &drop);
    return true;
}

inline bool DropFile(QWidget& widget, const QString& path)
{
    return DropUrls(widget, {QUrl::fromLocalFile(path)});
}

} // namespace vmk
