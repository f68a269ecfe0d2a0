#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>

class QWidget;

namespace vmk {

/// Computes the position of a form of size `form` next to `reference` on a screen of size `screen`, all in
/// one unit. `position` is 0 to 20: beside, below or above the reference (0 to 4, 14 to 20), or in a corner,
/// at an edge or in the centre of the screen (5 to 13). The offsets are added, and the result is then moved
/// onto the screen. Returns nothing for any other number.
[[nodiscard]] std::optional<QPointF> PlaceBeside(const QSizeF& form, const QRectF& reference,
                                                 const QSizeF& screen, int position, qreal dx, qreal dy);

/// Moves `form` next to `reference` as `PlaceBeside` computes it; the offsets are in twips. Returns false,
/// and moves nothing, if the position number does not exist.
bool PlaceFormBeside(QWidget& form, const QWidget& reference, int position, float dx, float dy);

} // namespace vmk
