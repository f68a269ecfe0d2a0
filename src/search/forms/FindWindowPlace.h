#pragma once

#include <QRectF>
#include <QSizeF>

#include <optional>

namespace vmk {

/// Where the find window and a hit are on the screen; all in one unit.
struct FindWindowPlace
{
    QRectF form;
    QRectF match;
    QSizeF screen;
    /// One pixel.
    QSizeF pixel;
    /// Height of the title bar and the window's edge.
    qreal captionHeight = 0;
};

/// The top that takes the find window off a hit: above it or below it, whichever is nearer. Nothing if the
/// window does not cover the hit, or if there is no room.
[[nodiscard]] std::optional<qreal> TopOffMatch(const FindWindowPlace& place);

} // namespace vmk
