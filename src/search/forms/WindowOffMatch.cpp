#include "WindowOffMatch.h"

#include "DisplayView.h"
#include "Form1.h"
#include "PanelBar.h"
#include "StartUpVariables.h"
#include "TextRange.h"

#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace vmk {

std::optional<qreal> TopOffMatch(const WindowOverMatch& position)
{
    const qreal across = 5 * position.pixel.width();
    const qreal down = 10 * position.pixel.height();
    const qreal pixel = position.pixel.width();
    const QRectF& form = position.form;
    const QRectF& match = position.match;
    const bool overlaps = form.bottom() + down >= match.top() && form.top() - down <= match.bottom()
        && form.left() + across <= match.right() && form.right() - across >= match.left();
    if (!overlaps)
        return std::nullopt;

    const qreal noRoom = 5 * position.screen.height();
    qreal above = match.top() - (form.height() + down);
    if (above < pixel)
        above = noRoom;
    qreal below = match.bottom() + down;
    if (below > position.screen.height() - 2 * position.captionHeight || below < pixel)
        below = noRoom;
    if (above == noRoom && below == noRoom)
        return std::nullopt;

    // Below if both are equally near.
    qreal top = std::abs(above - form.top()) < std::abs(below - form.top()) ? above : below;
    if (top < pixel)
        top = pixel;
    if (top + form.height() > position.screen.height())
        top = position.screen.height() - form.height();
    return top;
}

void MoveFindWinOffMatch(QWidget& window, const Form1& owner, const TextRange& match)
{
    const QWidget& page = *owner.HTMLread->viewport();
    const QRectF main = owner.frameGeometry();
    QRectF shown(page.mapToGlobal(QPoint(match.boundingLeft(), match.offsetTop())),
                 QSizeF(match.boundingWidth(), match.boundingHeight()));
    shown.setBottom(std::min(shown.bottom(), main.bottom() - 2 * owner.Status->height()));
    shown.setRight(std::min(shown.right(), main.right()));
    const QRectF screenArea = window.screen()->geometry();
    const WindowOverMatch position{QRectF(window.frameGeometry()).translated(-screenArea.topLeft()),
                                   shown.translated(-screenArea.topLeft()), screenArea.size(), QSizeF(1, 1),
                                   qreal(CaptionHeight + EdgeY)};
    if (const auto top = TopOffMatch(position))
        window.move(window.x(), int(std::lrint(*top + screenArea.top())));
}

} // namespace vmk
