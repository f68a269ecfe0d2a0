#include "ToolbarPictures.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// One colour of the drawings and its replacement in each look.
struct Paint
{
    const char* drawn;
    const char* onLight;
    const char* onLightHot;
    const char* onDark;
    const char* onDarkHot;
};

/// Lines, sheets of paper, and the four colours that have a meaning.
constexpr Paint Paints[] = {
    {"#3A4657", "#3A4657", "#1D2735", "#D5DCE6", "#FFFFFF"},
    {"#FFFFFF", "#FFFFFF", "#FFFFFF", "#3B4450", "#48525F"},
    {"#2E7BD1", "#2E7BD1", "#1F93FF", "#62AEFF", "#8CC6FF"},
    {"#2F9E5B", "#238A4C", "#16A855", "#5FD08C", "#86E8AD"},
    {"#D99A1C", "#D99A1C", "#F7B42C", "#F0B84A", "#FFD07A"},
};

bool IsDarkPalette()
{
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

QByteArray Recoloured(QByteArray drawing, bool dark, bool hot)
{
    for (const Paint& paint : Paints) {
        const char* wanted
            = dark ? (hot ? paint.onDarkHot : paint.onDark) : (hot ? paint.onLightHot : paint.onLight);
        // Lower case marks a colour that is already replaced, so that no colour is replaced twice.
        drawing.replace(paint.drawn, QByteArray(wanted).toLower());
    }
    return drawing;
}

QImage Drawn(const QByteArray& drawing, const QSize& pixels)
{
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer(drawing).render(&painter);
    return image;
}

/// The pale look: keeps the brightness, removes the colour, and keeps two fifths of the opacity.
QImage Paled(const QImage& image)
{
    QImage pale = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < pale.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(pale.scanLine(y));
        for (int x = 0; x < pale.width(); ++x) {
            const int grey = qGray(line[x]);
            line[x] = qRgba(grey, grey, grey, qAlpha(line[x]) * 2 / 5);
        }
    }
    return pale;
}

class PictureEngine : public QIconEngine
{
public:
    PictureEngine(QString key, QByteArray svg)
        : name(std::move(key))
        , drawing(std::move(svg))
    {
    }

    void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal density = painter->device()->devicePixelRatioF();
        painter->drawPixmap(place, pixmap((QSizeF(place.size()) * density).toSize(), mode, state));
    }

    QPixmap pixmap(const QSize& pixels, QIcon::Mode mode, QIcon::State) override
    {
        const bool dark = IsDarkPalette();
        const QString key = u"vmk-picture-%1-%2-%3x%4-%5"_s.arg(name)
                                .arg(int(mode))
                                .arg(pixels.width())
                                .arg(pixels.height())
                                .arg(dark);
        QPixmap picture;
        if (QPixmapCache::find(key, &picture))
            return picture;
        const QImage image = Drawn(Recoloured(drawing, dark, mode == QIcon::Active), pixels);
        picture = QPixmap::fromImage(mode == QIcon::Disabled ? Paled(image) : image);
        QPixmapCache::insert(key, picture);
        return picture;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new PictureEngine(name, drawing); }
    bool isNull() override { return drawing.isEmpty(); }

private:
    QString name;
    QByteArray drawing;
};

} // namespace

QIcon ToolbarPicture(const QString& key)
{
    QString name = key;
    name.replace(u' ', u'-').replace(u'/', u'-');
    QFile file(u":/icons/"_s + name + u".svg"_s);
    if (key.isEmpty() || !file.open(QIODevice::ReadOnly))
        return {};
    return QIcon(new PictureEngine(name, file.readAll()));
}

QIcon ProgramPicture()
{
    return QIcon(u":/icons/vellumark.svg"_s);
}

} // namespace vmk
