#include "WindowFunctions.h"

#include "StartUpVariables.h"

#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace vmk {
namespace {

std::optional<QPointF> Corner(const QSizeF& form, const QRectF& reference, const QSizeF& screen, int position)
{
    const qreal L = reference.left(), T = reference.top(), W = reference.width(), H = reference.height();
    const qreal R = L + W, B = T + H;
    const qreal w = form.width(), h = form.height();
    const qreal SW = screen.width(), SH = screen.height();
    switch (position) {
    case 0:
        return QPointF(R, T);
    case 1:
        return QPointF(R, B);
    case 2:
        return QPointF(L, B);
    case 3:
        return QPointF(R, B - h);
    case 4:
        return QPointF(L, B - h);
    case 5:
        return QPointF(0, 0);
    case 6:
        return QPointF(0, SH - h);
    case 7:
        return QPointF(SW - w, 0);
    case 8:
        return QPointF(SW - w, SH - h);
    case 9:
        return QPointF((SW - w) / 2, (SH - h) / 2);
    case 10:
        return QPointF((SW - w) / 2, 0);
    case 11:
        return QPointF((SW - w) / 2, SH - h);
    case 12:
        return QPointF(0, (SH - h) / 2);
    case 13:
        return QPointF(SW - w, (SH - h) / 2);
    case 14:
        return QPointF(L + (W - w) / 2, T + (H - h) / 2);
    case 15:
        return QPointF(L + (W - w) / 2, T);
    case 16:
        return QPointF(L + (W - w) / 2, B);
    case 17:
        return QPointF(L + (W - w) / 2, B - h);
    // From here on, the top is measured from the top of the screen, which is intended.
    case 18:
        return QPointF(L, (H - h) / 2);
    case 19:
        return QPointF(R, (H - h) / 2);
    case 20:
        return QPointF(R - w, (H - h) / 2);
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<QPointF> PlaceBeside(const QSizeF& form, const QRectF& reference, const QSizeF& screen,
                                   int position, qreal dx, qreal dy)
{
    std::optional<QPointF> place = Corner(form, reference, screen, position);
    if (!place)
        return place;
    *place = {std::max(place->x() + dx, 0.0), std::max(place->y() + dy, 0.0)};
    if (place->x() + form.width() > screen.width())
        place->setX(screen.width() - form.width());
    if (place->y() + form.height() > screen.height())
        place->setY(screen.height() - form.height());
    return place;
}

bool PlaceFormBeside(QWidget& form, const QWidget& reference, int position, float dx, float dy)
{
    const std::optional<QPointF> place
        = PlaceBeside(form.frameGeometry().size(), reference.frameGeometry(), reference.screen()->size(),
                      position, dx / TwipsPerPixelX, dy / TwipsPerPixelY);
    if (place)
        form.move(place->toPoint());
    return place.has_value();
}

} // namespace vmk
