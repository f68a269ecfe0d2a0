// Which part of a page is visible, without a widget: scrolling, the anchor that holds the page, and
// revealing.

#include "PageScroller.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr double PageWidth = 500;
constexpr double DotsPerInch = 96;
constexpr int WindowHeight = 200;

class Scroller : public testing::Test, protected ScrollerView, protected DisplayListener
{
protected:
    Scroller() { document.setListener(this); }
    ~Scroller() override { document.setListener(nullptr); }

    /// Loads a page of so many lines, each of one row.
    void load(int lines)
    {
        QByteArray html("<HTML><BODY STYLE=\"font-family:DejaVu Sans; font-size:12pt\">");
        for (int i = 0; i < lines; ++i)
            html += "<DIV>line " + QByteArray::number(i) + "</DIV>";
        document.loadPage(html + "</BODY></HTML>");
        ASSERT_TRUE(scroller.settle());
        placed = painted = scrolled = 0;
    }
    /// Where a line's top is in the view, pixels.
    [[nodiscard]] int lineInView(int line) { return int(page.lineTop(line)) - scroller.top(); }
    /// A line of several rows.
    [[nodiscard]] static QString longLine() { return u"<DIV>"_s + QString(400, u'w') + u"</DIV>"_s; }

    [[nodiscard]] int visibleHeight() const override { return WindowHeight; }
    void pagePlaced(bool changed) override
    {
        ++placed;
        painted += changed ? 1 : 0;
    }
    void pageScrolled() override { ++scrolled; }
    void linesChanged(int first, const std::vector<LinePtr>& removed,
                      const std::vector<LinePtr>& inserted) override
    {
        page.linesChanged(first, int(removed.size()), int(inserted.size()));
        scroller.linesChanged(first, int(removed.size()), int(inserted.size()));
    }
    void selectionChanged() override { }
    void documentReset() override
    {
        scroller.reset();
        page.reset(PageWidth, DotsPerInch);
        scroller.layoutReset();
        scroller.anchorHere();
    }

    DisplayDocument document;
    PageLayout page{document};
    PageScroller scroller{document, page, *this};
    int placed = 0;
    int painted = 0;
    int scrolled = 0;
};

TEST_F(Scroller, StaysWithinThePage)
{
    load(100);
    scroller.scrollTo(-50);
    EXPECT_EQ(scroller.top(), 0);
    EXPECT_EQ(scrolled, 0);
    scroller.scrollTo(1e9);
    EXPECT_EQ(scroller.top(), page.height() - WindowHeight);
    EXPECT_EQ(scrolled, 1);
    scroller.scrollBy(10);
    EXPECT_EQ(scroller.top(), page.height() - WindowHeight);
    EXPECT_EQ(scrolled, 1);
}

TEST_F(Scroller, OfAPageLowerThanTheViewStaysAtTheTop)
{
    load(2);
    scroller.scrollTo(100);
    EXPECT_EQ(scroller.top(), 0);
    EXPECT_EQ(scrolled, 0);
}

TEST_F(Scroller, ReportsThePlacedPageAndWhetherItMustBePainted)
{
    load(100);
    scroller.scrollTo(300);
    EXPECT_GT(placed, 0);
    EXPECT_GT(painted, 0);
    const int paintedBefore = painted;
    scroller.hold();
    EXPECT_EQ(painted, paintedBefore) << "nothing that is visible has changed";
}

TEST_F(Scroller, KeepsTheFirstVisibleRowWhenLinesAboveChange)
{
    load(100);
    scroller.scrollTo(double(page.lineTop(50)));
    const int before = scroller.top();
    ASSERT_EQ(lineInView(50), 0);

    document.insertLines(10, longLine());
    ASSERT_TRUE(scroller.settle());
    EXPECT_EQ(lineInView(51), 0);
    EXPECT_GT(scroller.top(), before);

    document.replaceLines(10, 1, QString());
    ASSERT_TRUE(scroller.settle());
    EXPECT_EQ(lineInView(50), 0);
    EXPECT_EQ(scroller.top(), before);
    EXPECT_EQ(scrolled, 1) << "an edit is no scrolling";
}

TEST_F(Scroller, KeepsItsPlaceWhenTheVisibleLinesAreReplacedInTwoSteps)
{
    load(100);
    scroller.scrollTo(double(page.lineTop(50)));
    const int before = scroller.top();

    // As a command does: the old lines are removed, the new ones come.
    document.replaceLines(40, 20, QString());
    QString lines;
    for (int i = 0; i < 21; ++i)
        lines += u"<DIV>new</DIV>"_s;
    document.insertLines(40, lines);
    ASSERT_TRUE(scroller.settle());
    EXPECT_EQ(scroller.top(), before);
    EXPECT_EQ(lineInView(50), 0);
}

TEST_F(Scroller, GoesToTheLineBeforeWhenTheVisibleLinesAreRemoved)
{
    load(100);
    scroller.scrollTo(double(page.lineTop(50)));
    document.replaceLines(40, 20, QString());
    ASSERT_TRUE(scroller.settle());
    EXPECT_EQ(lineInView(39), 0);
}

TEST_F(Scroller, RevealsTheCaretWithAsLittleScrollingAsPossible)
{
    load(100);
    document.setSelection({60, 0}, {60, 0});
    scroller.reveal();
    ASSERT_TRUE(scroller.settle());
    EXPECT_NEAR(page.caretRect({60, 0}).bottom(), scroller.top() + WindowHeight, 1);
    EXPECT_EQ(scrolled, 1);

    // A caret that is visible scrolls nothing.
    const int before = scroller.top();
    document.setSelection({58, 0}, {58, 0});
    scroller.reveal();
    ASSERT_TRUE(scroller.settle());
    EXPECT_EQ(scroller.top(), before);
    EXPECT_EQ(scrolled, 1);

    document.setSelection({20, 0}, {20, 0});
    scroller.reveal();
    ASSERT_TRUE(scroller.settle());
    EXPECT_EQ(lineInView(20), 0);
    EXPECT_EQ(scrolled, 2);
}

TEST_F(Scroller, MovesWhatIsVisibleByTheDistanceThroughLinesOfUnknownHeight)
{
    load(100);
    document.insertLines(50, longLine() + longLine() + longLine());
    scroller.scrollTo(double(page.lineTop(60)));
    // The lines above are not measured yet; their real height comes out on the way up.
    while (scroller.top() > 0) {
        const int line = page.lineAt(scroller.top());
        const int before = lineInView(line);
        const int distance = std::min(30, scroller.top());
        scroller.scrollBy(-distance);
        if (scroller.top() > 0) {
            ASSERT_EQ(lineInView(line), before + distance);
        }
    }
}

TEST_F(Scroller, BeginsAtTheTopOfANewPage)
{
    load(100);
    scroller.scrollTo(500);
    scroller.reveal();
    load(50);
    EXPECT_EQ(scroller.top(), 0);
    EXPECT_EQ(scroller.anchor().place, Position());
}

} // namespace
} // namespace vmk
