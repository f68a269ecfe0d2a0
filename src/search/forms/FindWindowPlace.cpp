#include "FindWindowPlace.h"

#include <cmath>

namespace vmk {

std::optional<qreal> TopOffMatch(const FindWindowPlace& place)
{
    const qreal across = 5 * place.pixel.width();
    const qreal down = 10 * place.pixel.height();
    const qreal pixel = place.pixel.width();
    const QRectF& form = place.form;
    const QRectF& match = place.match;
    const bool overlaps = form.bottom() + down >= match.top() && form.top() - down <= match.bottom()
        && form.left() + across <= match.right() && form.right() - across >= match.left();
    if (!overlaps)
        return std::nullopt;

    const qreal noRoom = 5 * place.screen.height();
    qreal above = match.top() - (form.height() + down);
    if (above < pixel)
        above = noRoom;
    qreal below = match.bottom() + down;
    if (below > place.screen.height() - 2 * place.captionHeight || below < pixel)
        below = noRoom;
    if (above == noRoom && below == noRoom)
        return std::nullopt;

    // The place below when both are equally near.
    qreal top = std::abs(above - form.top()) < std::abs(below - form.top()) ? above : below;
    if (top < pixel)
        top = pixel;
    if (top + form.height() > place.screen.height())
        top = place.screen.height() - form.height();
    return top;
}

} // namespace vmk
