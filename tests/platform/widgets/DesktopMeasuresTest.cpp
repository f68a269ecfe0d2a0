#include "DesktopMeasures.h"

#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

using namespace vmk;

TEST(DesktopMeasures, AreThoseOfTheScreenAndTheStyle)
{
    const ScreenMeasures measures = ReadDesktopMeasures();
    const QScreen* screen = QGuiApplication::primaryScreen();
    ASSERT_TRUE(screen);
    EXPECT_FLOAT_EQ(measures.screenPixelsX, float(screen->geometry().width()));
    EXPECT_FLOAT_EQ(measures.screenPixelsY, float(screen->geometry().height()));
    EXPECT_FLOAT_EQ(measures.twipsPerPixelX * float(screen->logicalDotsPerInchX()), 1440);
    EXPECT_FLOAT_EQ(measures.twipsPerPixelY * float(screen->logicalDotsPerInchY()), 1440);
    EXPECT_GT(measures.vScrollWidth, 0);
    EXPECT_GT(measures.captionHeight, 0);
}
