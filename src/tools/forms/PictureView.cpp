#include "PictureView.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vmk {
namespace {

constexpr int TextMargin = 12;
constexpr int TextWidth = 380;

} // namespace

PictureView::PictureView(QWidget* parent)
    : QWidget(parent)
{
    fit();
}

void PictureView::Show(const QImage& newPicture, const QString& newMessage)
{
    image = newPicture;
    text = newMessage;
    fit();
    update();
}

QSize PictureView::sizeHint() const
{
    return contentSize();
}

QSize PictureView::contentSize() const
{
    if (!image.isNull())
        return image.deviceIndependentSize().toSize().expandedTo({1, 1});
    const QRect area = fontMetrics().boundingRect(QRect(0, 0, TextWidth, 0), Qt::TextWordWrap, text);
    return area.size() + QSize(2 * TextMargin, 2 * TextMargin);
}

void PictureView::fit()
{
    fittedRatio = devicePixelRatioF();
    // The device pixels of each pixel of the picture, in each direction.
    const qreal devicePixels = std::max(1.0, std::floor(fittedRatio));
    image.setDevicePixelRatio(fittedRatio / devicePixels);
    resize(contentSize());
    updateGeometry();
}

void PictureView::paintEvent(QPaintEvent*)
{
    // The window may have been moved to another screen.
    if (fittedRatio != devicePixelRatioF())
        fit();
    QPainter painter(this);
    if (image.isNull()) {
        painter.drawText(rect().adjusted(TextMargin, TextMargin, -TextMargin, -TextMargin),
                         int(Qt::AlignCenter) | int(Qt::TextWordWrap), text);
        return;
    }
    // Transparent pixels are white, as on a page.
    painter.fillRect(rect(), Qt::white);
    painter.drawImage(QPointF(0, 0), image);
}

} // namespace vmk
