#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>

class QWidget;

namespace vmk {

/// Where a form of the size `form` goes beside `reference` on a screen of the size `screen`, all in one
/// unit. `position` is 0 to 20: beside, below or above the reference (0 to 4, 14 to 20), or in a corner,
/// at an edge or in the middle of the screen (5 to 13). The offsets are added, and the form is then kept
/// on the screen. Nothing for any other number.
[[nodiscard]] std::optional<QPointF> PlaceBeside(const QSizeF& form, const QRectF& reference,
                                                 const QSizeF& screen, int position, qreal dx, qreal dy);

/// Moves `form` beside `reference` as `PlaceBeside` tells; the offsets are twips. False, and nothing is
/// moved, for a position number that there is not.
bool PlaceFormBeside(QWidget& form, const QWidget& reference, int position, float dx, float dy);

} // namespace vmk
