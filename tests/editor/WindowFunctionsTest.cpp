#include "WindowFunctions.h"

#include "StartUpVariables.h"

#include <QWidget>

#include <gtest/gtest.h>

namespace vmk {
namespace {

const QSizeF Screen(1000, 800);
const QRectF Reference(300, 200, 200, 100);
const QSizeF Form(60, 40);

QPointF Place(int position, qreal dx = 0, qreal dy = 0)
{
    return PlaceBeside(Form, Reference, Screen, position, dx, dy).value();
}

TEST(PlaceFormBeside, HasTwentyOnePositions)
{
    const QPointF expected[] = {
        {500, 200}, {500, 300}, {300, 300}, {500, 260}, {300, 260}, // beside and below
        {0, 0},     {0, 760},   {940, 0},   {940, 760}, // corners
        {470, 380}, {470, 0},   {470, 760}, {0, 380},   {940, 380}, // middle and edges
        {370, 230}, {370, 200}, {370, 300}, {370, 260}, // centred on the reference
    };
    for (int position = 0; position <= 17; ++position)
        EXPECT_EQ(Place(position), expected[position]) << position;
}

TEST(PlaceFormBeside, MeasuresTheLastThreePositionsFromTheScreensTop)
{
    EXPECT_EQ(Place(18), QPointF(300, 30));
    EXPECT_EQ(Place(19), QPointF(500, 30));
    EXPECT_EQ(Place(20), QPointF(440, 30));
}

TEST(PlaceFormBeside, AddsOffsetsAndKeepsTheFormOnTheScreen)
{
    EXPECT_EQ(Place(0, 7, -5), QPointF(507, 195));
    EXPECT_EQ(Place(5, -10, -10), QPointF(0, 0));
    EXPECT_EQ(Place(8, 10, 10), QPointF(940, 760));
}

TEST(PlaceFormBeside, MovesNothingForANumberAboveTwenty)
{
    EXPECT_FALSE(PlaceBeside(Form, Reference, Screen, 21, 0, 0));
    QWidget form;
    const QWidget reference;
    form.move(33, 44);
    const QPoint before = form.pos();
    EXPECT_FALSE(vmk::PlaceFormBeside(form, reference, 21, 0, 0));
    EXPECT_EQ(form.pos(), before);
}

TEST(PlaceFormBeside, OffsetsAreInTwips)
{
    TwipsPerPixelX = TwipsPerPixelY = 15;
    QWidget form;
    form.resize(50, 40);
    QWidget reference;
    reference.setGeometry(100, 120, 200, 100);
    EXPECT_TRUE(vmk::PlaceFormBeside(form, reference, 0, 150, 300));
    EXPECT_EQ(form.pos(), QPoint(100 + 200 + 10, 120 + 20));
}

} // namespace
} // namespace vmk
