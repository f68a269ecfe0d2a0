#include "DroppedFiles.h"

#include "FileNames.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace vmk {

void AcceptFileDrag(QDropEvent& event)
{
    if (DroppedFiles(event).isEmpty())
        return;
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

QStringList DroppedFiles(const QDropEvent& event)
{
    QStringList files;
    for (const QUrl& url : event.mimeData()->urls()) {
        if (url.isLocalFile())
            files.append(PathOfUrl(url));
    }
    return files;
}

} // namespace vmk
