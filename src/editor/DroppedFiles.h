#pragma once

#include <QStringList>

class QDropEvent;

namespace vmk {

/// Accepts a drag of local files as a copy. Ignores any other drag.
void AcceptFileDrag(QDropEvent& event);

/// Returns the local files of a drop, in their order; empty if there are none.
[[nodiscard]] QStringList DroppedFiles(const QDropEvent& event);

} // namespace vmk
