#include "ToolbarPictures.h"

#include <QApplication>
#include <QImage>
#include <QPalette>

#include <gtest/gtest.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

const QStringList Keys = {u"open"_s,
                          u"save"_s,
                          u"save as"_s,
                          u"undo"_s,
                          u"redo"_s,
                          u"previous position"_s,
                          u"next position"_s,
                          u"tag list"_s,
                          u"re-paint selection"_s,
                          u"right shift"_s,
                          u"left shift"_s,
                          u"find/replace"_s,
                          u"book cleaner"_s,
                          u"html fragment editor"_s,
                          u"spell check"_s,
                          u"settings"_s,
                          u"read in hr"_s,
                          u"validate"_s,
                          u"load new schema"_s};

QImage Picture(const QString& key, int size, QIcon::Mode mode)
{
    return ToolbarPicture(key)
        .pixmap(QSize(size, size), 1.0, mode)
        .toImage()
        .convertToFormat(QImage::Format_ARGB32);
}

/// Pixels that differ from a bar of the given colour by a quarter of the scale or more.
int LegiblePixels(const QImage& picture, const QColor& bar)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor color = picture.pixelColor(x, y);
            const int shown
                = (color.lightness() * color.alpha() + bar.lightness() * (255 - color.alpha())) / 255;
            count += std::abs(shown - bar.lightness()) >= 64;
        }
    }
    return count;
}

class ToolbarPictures : public testing::Test
{
protected:
    ~ToolbarPictures() override { QApplication::setPalette(before); }

    static void UseBar(const QColor& color)
    {
        QPalette palette;
        palette.setColor(QPalette::Window, color);
        QApplication::setPalette(palette);
    }

    QPalette before = QApplication::palette();
};

TEST_F(ToolbarPictures, EveryKeyHasADifferentPicture)
{
    QList<QImage> seen;
    for (const QString& key : Keys) {
        const QImage picture = Picture(key, 16, QIcon::Normal);
        ASSERT_FALSE(picture.isNull()) << key.toStdString();
        EXPECT_FALSE(seen.contains(picture)) << key.toStdString();
        seen.append(picture);
    }
}

TEST_F(ToolbarPictures, AnUnknownKeyHasNone)
{
    EXPECT_TRUE(ToolbarPicture(u"no such key"_s).isNull());
    EXPECT_TRUE(ToolbarPicture(QString()).isNull());
}

TEST_F(ToolbarPictures, EveryKeyIsLegibleAtSixteenPixelsOnLightAndDarkBars)
{
    for (const QColor& bar : {QColor(0xF0, 0xF0, 0xF0), QColor(0x2B, 0x2F, 0x36)}) {
        UseBar(bar);
        for (const QString& key : Keys)
            EXPECT_GE(LegiblePixels(Picture(key, 16, QIcon::Normal), bar), 16)
                << key.toStdString() << " on " << bar.name().toStdString();
    }
}

TEST_F(ToolbarPictures, TheThreeStatesDifferAndTheDisabledOneHasNoColour)
{
    for (const QString& key : Keys) {
        const QImage disabled = Picture(key, 24, QIcon::Disabled);
        EXPECT_NE(Picture(key, 24, QIcon::Normal), Picture(key, 24, QIcon::Active)) << key.toStdString();
        EXPECT_NE(Picture(key, 24, QIcon::Normal), disabled) << key.toStdString();
        for (int y = 0; y < disabled.height(); ++y) {
            for (int x = 0; x < disabled.width(); ++x) {
                const QColor color = disabled.pixelColor(x, y);
                EXPECT_EQ(color.red(), color.blue());
            }
        }
    }
}

TEST_F(ToolbarPictures, APictureIsRenderedForHigherPixelDensity)
{
    EXPECT_EQ(ToolbarPicture(u"save"_s).pixmap(QSize(16, 16), 2.0).size(), QSize(32, 32));
}

} // namespace
} // namespace vmk
