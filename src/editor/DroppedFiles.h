#pragma once

#include <QStringList>

class QDropEvent;

namespace vmk {

/// Takes a drag that carries local files, as a copy; leaves any other alone.
void AcceptFileDrag(QDropEvent& event);

/// The local files of a drop, in the order given; empty when it carries none.
[[nodiscard]] QStringList DroppedFiles(const QDropEvent& event);

} // namespace vmk
