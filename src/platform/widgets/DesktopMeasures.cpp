#include "DesktopMeasures.h"

#include <QApplication>
#include <QScreen>
#include <QStyle>

namespace vmk {

ScreenMeasures ReadDesktopMeasures()
{
    constexpr float TwipsPerInch = 1440;
    ScreenMeasures measures;
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        measures.twipsPerPixelX = TwipsPerInch / float(screen->logicalDotsPerInchX());
        measures.twipsPerPixelY = TwipsPerInch / float(screen->logicalDotsPerInchY());
        measures.screenPixelsX = float(screen->geometry().width());
        measures.screenPixelsY = float(screen->geometry().height());
    }
    const QStyle& style = *QApplication::style();
    measures.captionHeight = float(style.pixelMetric(QStyle::PM_TitleBarHeight));
    measures.frameX = measures.frameY = float(style.pixelMetric(QStyle::PM_MdiSubWindowFrameWidth));
    measures.vScrollWidth = measures.hScrollHeight = float(style.pixelMetric(QStyle::PM_ScrollBarExtent));
    return measures;
}

} // namespace vmk
