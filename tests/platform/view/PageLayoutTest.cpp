// How much of a page is laid out for a paint and for an idle slice, which limits their time.

#include "PageLayout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace vmk {
namespace {

constexpr double PageWidth = 500;
constexpr double WindowHeight = 400;
constexpr double DotsPerInch = 96;

QByteArray words(int bytes)
{
    std::mt19937 random(7);
    QByteArray text;
    while (text.size() < bytes)
        text += QByteArray(1 + int(random() % 9), char('a' + int(random() % 26))) + ' ';
    return text;
}

class PageLayoutTest : public testing::Test
{
protected:
    void load(const QByteArray& lines)
    {
        document.loadPage("<HTML><BODY STYLE=\"font-family:DejaVu Sans; font-size:12pt\">" + lines
                          + "</BODY></HTML>");
        page.reset(PageWidth, DotsPerInch);
    }
    [[nodiscard]] int unmeasured() const { return page.heights().unmeasuredLines(); }
    /// One idle slice with the minimum amount of work.
    bool shortestTurn() { return page.measureFor(std::chrono::microseconds(0), 0); }

    DisplayDocument document;
    PageLayout page{document};
};

TEST_F(PageLayoutTest, AJumpLaysOutOnlyWhatIsSeen)
{
    QByteArray lines;
    for (int i = 0; i < 20000; ++i)
        lines += "<DIV>" + words(i % 200) + "</DIV>";
    load(lines);
    const int mostLinesSeen = int(WindowHeight / 10);
    std::mt19937 random(3);
    for (int jump = 0; jump < 50; ++jump) {
        const int before = unmeasured();
        const auto top = double(random() % std::uint64_t(page.height()));
        page.prepare(top, top + WindowHeight);
        ASSERT_LE(before - unmeasured(), mostLinesSeen) << "to " << top;
    }
}

TEST_F(PageLayoutTest, AJumpIntoALongLineLaysOutOnlyItsPiecesThere)
{
    load("<DIV>" + words(1000000) + "</DIV>");
    const int64_t estimated = page.height();
    page.prepare(double(estimated) / 2, double(estimated) / 2 + WindowHeight);
    // The line is not measured yet: the idle slices lay out its pieces one after the other.
    int turns = 1;
    while (shortestTurn())
        ++turns;
    EXPECT_GT(turns, 1000000 / LineLayout::LongLine);
    EXPECT_TRUE(page.isMeasured());
    EXPECT_NEAR(double(page.height()), double(estimated), double(estimated) / 50);
}

TEST_F(PageLayoutTest, ATurnWithoutTimeMeasuresOneLine)
{
    load(QByteArray("<DIV>some words</DIV>").repeated(100));
    for (int left = 100; left > 0; --left) {
        ASSERT_EQ(unmeasured(), left);
        EXPECT_EQ(shortestTurn(), left > 1);
    }
}

TEST_F(PageLayoutTest, ALineForWhichTheTimeWillNotDoWaitsForTheNextTurn)
{
    QByteArray lines;
    for (int i = 0; i < 60; ++i)
        lines += "<DIV>" + words(LineLayout::LongLine - 100) + "</DIV>";
    load(lines);
    // After some lines the speed is known; then no slice begins a second line with half a line's time left.
    const auto timeOf = [this] {
        const auto begin = std::chrono::steady_clock::now();
        shortestTurn();
        return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now()
                                                                     - begin);
    };
    std::vector<std::chrono::microseconds> times(20);
    std::ranges::generate(times, timeOf);
    std::sort(times.begin(), times.end());
    for (int i = 0; i < 20; ++i) {
        const int before = unmeasured();
        page.measureFor(times.front() / 2, 0);
        ASSERT_EQ(before - unmeasured(), 1);
    }
}

TEST_F(PageLayoutTest, APieceOfALongLineIsStyledAsTheLineIs)
{
    QByteArray text;
    for (int i = 0; text.size() < 100000; ++i)
        text += "<SPAN class=t>tag" + QByteArray::number(i) + "</SPAN> some <B>text <I>in</I></B> between ";
    document.loadPage("<HTML><HEAD><STYLE>span.t {color:#000080}</STYLE></HEAD><BODY><DIV><FONT color=red>"
                      + text + "</FONT></DIV></BODY></HTML>");
    page.reset(PageWidth, DotsPerInch);
    PageStyle& style = page.style();
    const Line& line = document.line(0);

    std::vector<LookId> looks(std::size_t(line.text.size()), -1);
    style.forEachRun(line, [&](int from, int to, LookId look) {
        std::fill(looks.begin() + from, looks.begin() + to, look);
    });
    EXPECT_EQ(std::count(looks.begin(), looks.end(), -1), 0);
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        const auto size = unsigned(line.text.size());
        const auto from = int(random() % size);
        const auto to = std::min(int(size), from + int(random() % 300));
        int reached = from;
        style.forEachRun(line, from, to, [&](int begin, int end, LookId look) {
            ASSERT_EQ(begin, reached);
            reached = end;
            for (int i = begin; i < end; ++i)
                ASSERT_EQ(looks[std::size_t(i)], look) << "at " << i;
        });
        ASSERT_EQ(reached, to);
    }

    // The same if the tags far before the piece are not examined.
    const OpenElementsOfLine elements(line);
    for (int round = 0; round < 2000; ++round) {
        const std::size_t mark = random() % line.marks.size();
        const int from = std::max(0, line.marks[mark].pos - 1 + round % 3);
        const auto to = std::min(int(line.text.size()), from + 100);
        const OpenElements& start = elements.before(from);
        ASSERT_LT(start.mark, mark + 3);
        ASSERT_LT(mark, start.mark + 520) << "the tags from there on are few";
        const auto take = [&](int begin, int end, LookId look) {
            for (int i = begin; i < end; ++i)
                ASSERT_EQ(looks[std::size_t(i)], look) << "at " << i;
        };
        style.forEachRun(line, from, to, take, start);
        ASSERT_EQ(style.formats(line, from, to - from, start), style.formats(line, from, to - from));
    }
}

TEST_F(PageLayoutTest, TheElementsOfALineWithoutTagsAreNone)
{
    const OpenElementsOfLine elements(Line{NoTag, QStringLiteral("text"), {}});
    for (const int offset : {0, 1, 4}) {
        EXPECT_EQ(elements.before(offset).mark, 0U);
        EXPECT_TRUE(elements.before(offset).tags.empty());
    }
}

} // namespace
} // namespace vmk
