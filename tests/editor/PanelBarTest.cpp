#include "PanelBar.h"

#include "FileDrops.h"
#include "StartUpVariables.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QUrl>

#include <gtest/gtest.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class PanelBars : public testing::Test
{
protected:
    PanelBars()
        : bar({u"first"_s, u"second"_s}, nullptr)
    {
        TwipsPerPixelX = TwipsPerPixelY = 15;
        bar.resize(400, 20);
        bar.setPanelWidth(1, 1500);
        bar.setPanelWidth(2, 3000);
    }

    PanelBar bar;
};

TEST_F(PanelBars, KeepsTextAndWidthOfEachPanel)
{
    bar.setPanelText(1, u"one"_s);
    bar.setPanelText(2, u"two"_s);
    EXPECT_EQ(bar.panelText(1), u"one"_s);
    EXPECT_EQ(bar.panelText(2), u"two"_s);
    EXPECT_EQ(bar.panelWidth(2), 3000);
    bar.clear();
    EXPECT_TRUE(bar.panelText(1).isEmpty() && bar.panelText(2).isEmpty());
}

TEST_F(PanelBars, PlacesPanelsSideBySideInTwips)
{
    const QList<QLabel*> labels = bar.findChildren<QLabel*>();
    ASSERT_EQ(labels.size(), 2);
    EXPECT_EQ(labels[0]->x() + labels[0]->width(), 100);
    EXPECT_EQ(labels[1]->x(), 101);
    EXPECT_EQ(labels[1]->x() + labels[1]->width(), 300);
}

TEST_F(PanelBars, ShowsATextThatIsTooWideAsToolTip)
{
    bar.setPanelText(1, u"a message that is much wider than one hundred pixels can hold"_s);
    bar.grab();
    const QList<QLabel*> labels = bar.findChildren<QLabel*>();
    EXPECT_EQ(labels[0]->toolTip(), bar.panelText(1));
    bar.setPanelText(1, u"ab"_s);
    bar.grab();
    EXPECT_TRUE(labels[0]->toolTip().isEmpty());
}

TEST_F(PanelBars, ANewTextHidesTheOpenToolTip)
{
    bar.setPanelText(1, u"a message that is much wider than one hundred pixels can hold"_s);
    bar.grab();
    auto* label = bar.findChildren<QLabel*>()[0];
    QToolTip::showText(QPoint(10, 10), label->toolTip(), label);
    ASSERT_TRUE(QToolTip::isVisible());
    bar.setPanelText(1, bar.panelText(1));
    bar.setPanelText(2, u"other"_s);
    QTest::qWait(50);
    EXPECT_TRUE(QToolTip::isVisible());
    bar.setPanelText(1, u"ab"_s);
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
}

TEST_F(PanelBars, ScreenReadersReadTheTextOfAPanel)
{
    EXPECT_EQ(bar.findChildren<QLabel*>()[1]->accessibleName(), u"second"_s);
}

TEST_F(PanelBars, AcceptsDroppedFiles)
{
    const QSignalSpy dropped(&bar, &PanelBar::filesDropped);
    EXPECT_TRUE(DropUrls(bar, {QUrl::fromLocalFile(u"/tmp/a.fb2"_s), QUrl(u"http://example.org/"_s)}));
    ASSERT_EQ(dropped.count(), 1);
    EXPECT_EQ(dropped[0][0].toStringList(), QStringList{u"/tmp/a.fb2"_s});
}

TEST_F(PanelBars, LeavesADragWithoutFilesAlone)
{
    EXPECT_FALSE(DropUrls(bar, {QUrl(u"http://example.org/"_s)}));
}

} // namespace
} // namespace vmk
