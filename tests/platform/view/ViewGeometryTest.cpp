// Geometry of the view: positions, points, rectangles, rows, scrolling.

#include "DisplayPage.h"
#include "ViewFixture.h"

#include <QScrollBar>
#include <QSignalSpy>

#include <random>
#include <set>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

const QByteArray MixedLines
    = "<DIV id=FirstDiv><SPAN class=t>&lt;book&gt;</SPAN></DIV>"
      "<DIV style=\"MARGIN-LEFT: 10px\"><SPAN class=t>&lt;p&gt;</SPAN>A paragraph that is long enough to be "
      "broken into "
      "three or four rows at the width of this window, with <SPAN class=t>&lt;emphasis&gt;</SPAN>tags in it"
      "<SPAN class=t>&lt;/emphasis&gt;</SPAN> and a word-that-has-hyphens.<SPAN "
      "class=t>&lt;/p&gt;</SPAN></DIV>"
      "<DIV style=\"MARGIN-LEFT: 20px\"></DIV>"
      "<DIV align=center>\xd0\xa1\xd0\xb5\xd1\x80\xd0\xb5\xd0\xb4\xd0\xb8\xd0\xbd\xd0\xb0</DIV>"
      "<DIV style=\"font-size:20pt\">Averylongwordthathasnoplacetobreakitandsoisbrokenanywhereatall</DIV>"
      "<DIV>last &amp; end</DIV>";

class ViewGeometry : public ViewTest
{
};

TEST_F(ViewGeometry, PointsAndRectanglesAgreeAtEveryPosition)
{
    show(MixedLines, {Width, 600});
    ASSERT_LE(view.scrollHeight(), view.clientHeight());
    for (const Position place : places()) {
        const std::vector<QRect> rects = view.clientRects(place, place);
        ASSERT_EQ(rects.size(), 1U) << testing::PrintToString(place);
        ASSERT_EQ(rects.front().width(), 0) << testing::PrintToString(place);
        EXPECT_EQ(view.positionAt(pointOf(place)), place);
        EXPECT_EQ(view.lineAt(pointOf(place)), place.line);
    }
}

TEST_F(ViewGeometry, PointsAndRectanglesAgreeInAScrolledPage)
{
    show(MixedLines.repeated(20));
    for (const Position place : places()) {
        if (place.offset % 7 != 0)
            continue;
        view.scrollIntoView(place);
        const QRect rect = view.clientRects(place, place).front();
        ASSERT_TRUE(view.viewport()->rect().intersects(rect.adjusted(0, 0, 1, 0)))
            << testing::PrintToString(place);
        EXPECT_EQ(view.positionAt(pointOf(place)), place);
    }
}

TEST_F(ViewGeometry, ARangeHasOneRectangleForEachRow)
{
    show(MixedLines, {Width, 600});
    const int end = int(line(1).size());
    const std::vector<QRect> whole = view.clientRects({1, 0}, {1, end});
    ASSERT_GE(whole.size(), 3U);
    for (size_t i = 1; i < whole.size(); ++i) {
        EXPECT_GE(whole[i].top(), whole[i - 1].bottom());
        EXPECT_EQ(whole[i].left(), 15);
    }
    // The rectangles of the text together are the rectangles of its characters.
    int width = 0;
    for (int offset = 0; offset < end; ++offset) {
        for (const QRect& rect : view.clientRects({1, offset}, {1, offset + 1}))
            width += rect.width();
    }
    int expected = 0;
    for (const QRect& rect : whole)
        expected += rect.width();
    EXPECT_NEAR(width, expected, 2 * end);
}

TEST_F(ViewGeometry, EverySelectionHasAWidth)
{
    show(MixedLines, {Width, 600});
    const auto widest = [this](Position from, Position to) {
        int width = 0;
        for (const QRect& rect : view.clientRects(from, to))
            width = std::max(width, rect.width());
        return width;
    };
    EXPECT_GT(widest({0, 0}, {0, 1}), 0);
    // A single line break, also of an empty line.
    EXPECT_GT(widest({0, int(line(0).size())}, {1, 0}), 0);
    EXPECT_GT(widest({2, 0}, {3, 0}), 0);
    EXPECT_EQ(widest({2, 0}, {2, 0}), 0);
}

TEST_F(ViewGeometry, ARangeIsFoundByItsOffsets)
{
    show(MixedLines.repeated(40));
    select({100, 0}, {100, 0});
    ASSERT_GT(view.scrollTop(), 0);
    TextRange range = page::createRange(document());
    TextRange other = page::createTextRange(document());
    other.moveToPoint(range.offsetLeft(), range.offsetTop());
    EXPECT_TRUE(other.isEqual(range));
    EXPECT_EQ(range.boundingWidth(), 0);
    range.moveEnd(u"character", 3);
    EXPECT_GT(range.boundingWidth(), 3);
    EXPECT_EQ(range.getClientRects().size(), 1U);
}

TEST_F(ViewGeometry, TheBoundsOfAWholePageCoverIt)
{
    show(MixedLines.repeated(100));
    const TextRange all = page::createTextRange(document());
    EXPECT_GT(all.boundingWidth(), Width / 2);
    EXPECT_EQ(all.boundingLeft(), 5);
    measureAll();
    EXPECT_NEAR(all.boundingHeight(), view.scrollHeight(), 20);
}

TEST_F(ViewGeometry, RowNumbersCountTheRowsAboveAPosition)
{
    show(MixedLines.repeated(3), {Width, 1500});
    measureAll();
    std::set<int> tops;
    for (const Position place : places()) {
        tops.insert(view.clientRects(place, place).front().top());
        ASSERT_EQ(view.rowNumber(place), int64_t(tops.size())) << testing::PrintToString(place);
    }
}

TEST_F(ViewGeometry, WrappingChangesWithTheWidthAndBack)
{
    show(MixedLines.repeated(10));
    const auto tops = [this] {
        std::vector<int> all;
        for (const Position place : places())
            all.push_back(view.clientRects(place, place).front().top());
        return all;
    };
    measureAll();
    const std::vector<int> wide = tops();
    const int wideHeight = view.scrollHeight();
    view.resize(Width / 2, Height);
    measureAll();
    EXPECT_GT(view.scrollHeight(), wideHeight);
    EXPECT_GT(tops().back(), wide.back());
    view.resize(Width, Height);
    measureAll();
    EXPECT_EQ(view.scrollHeight(), wideHeight);
    EXPECT_EQ(tops(), wide);
}

TEST_F(ViewGeometry, AResizeKeepsTheFirstVisibleRow)
{
    show(MixedLines.repeated(50));
    view.scroll(0, view.scrollHeight() / 2);
    const Position first = view.positionAt({0, 1});
    view.resize(Width - 120, Height);
    const QRect rect = view.clientRects(first, first).front();
    EXPECT_LE(rect.top(), 0);
    EXPECT_GT(rect.bottom(), 0);
}

TEST_F(ViewGeometry, AVeryDeepMarginLeavesRoomForText)
{
    show("<DIV style=\"MARGIN-LEFT: 5000px\">some text</DIV>");
    for (const Position place : places()) {
        const QRect rect = view.clientRects(place, place).front();
        EXPECT_LE(rect.left(), view.clientWidth());
        EXPECT_EQ(view.positionAt(pointOf(place)), place);
    }
}

TEST_F(ViewGeometry, AnEndTagIsNotBrokenAfterItsSlash)
{
    const QByteArray tag = "<SPAN class=t>&lt;/emphasis&gt;</SPAN>";
    for (int length = 20; length < 70; ++length) {
        show("<DIV>" + QByteArray(length, 'w').replace(12, 1, " ") + '.' + tag + "</DIV>");
        const int end = int(line(0).size());
        const int slash = end - int(strlen("/emphasis>"));
        ASSERT_EQ(line(0)[slash], u'/');
        EXPECT_EQ(view.rowNumber({0, slash}), view.rowNumber({0, slash + 1})) << length;
    }
}

TEST_F(ViewGeometry, TheMarginOfAHeadingIsInsideTheMarginOfThePage)
{
    view.resize(Width, Height);
    view.setPage("<HTML><BODY STYLE=\"margin-top:60px\"><H2>heading</H2></BODY></HTML>");
    const int heading = view.caretRect().top();
    view.setPage("<HTML><BODY STYLE=\"margin-top:60px\"><DIV>line</DIV></BODY></HTML>");
    EXPECT_EQ(view.caretRect().top(), 60);
    EXPECT_EQ(heading, 60);
}

TEST_F(ViewGeometry, AnAccentIsDirectlyAboveItsLetter)
{
    // The first row of ink in the line, from the top of its box.
    const auto firstInk = [this](const char* text) {
        show(QByteArray("<DIV>&nbsp;</DIV><DIV>&nbsp;</DIV><DIV>") + text + "</DIV>", {Width, 120});
        view.setDesignMode(QStringLiteral("Off")); // without a caret
        const QImage image = view.viewport()->grab().toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width() / 2; ++x) {
                if (qGray(image.pixel(x, y)) < 160)
                    return y;
            }
        }
        return -1;
    };
    const int letters = firstInk("\u0430\u043e\u0435");
    const int accents = firstInk("\u0430\u0301\u043e\u0301\u0435\u0301");
    ASSERT_GT(letters, 0);
    EXPECT_LT(accents, letters);
    EXPECT_GE(accents, letters - 7) << "an accent is a few pixels high";
    // The positions of the caret and the text stay as they are.
    EXPECT_EQ(line(2).size(), 6);
    view.setDesignMode(QStringLiteral("On"));
    caretTo(2, 0);
    key(Qt::Key_Right);
    EXPECT_EQ(caret(), (Position{2, 2}));
}

TEST_F(ViewGeometry, TheMarkerOfANonBreakingSpaceIsVisible)
{
    show("<DIV>a\x7f"
         "b</DIV>");
    ASSERT_EQ(line(0).size(), 3);
    EXPECT_GT(view.clientRects({0, 1}, {0, 2}).front().width(), 3);
}

TEST_F(ViewGeometry, NoTextIsBeyondTheEdgeOfANarrowWindow)
{
    show(MixedLines + "<DIV>" + QByteArray(300, 'w') + "</DIV><DIV align=right>" + QByteArray(300, 'i')
         + "</DIV>");
    for (const int width : {900, 333, 150, 90}) {
        view.resize(width, Height);
        for (const Position place : places()) {
            const QRect rect = view.clientRects(place, place).front();
            ASSERT_GE(rect.left(), 0) << testing::PrintToString(place) << " at " << width;
            // Only a blank may extend beyond the edge.
            const bool isAfterBlank = place.offset > 0 && line(place.line)[place.offset - 1] == u' ';
            ASSERT_LE(rect.left(), view.clientWidth() + (isAfterBlank ? 10 : 0))
                << testing::PrintToString(place) << " at " << width;
        }
    }
}

// ---------------------------------------------------------------- dense screens

/// The display as painted on a screen with `ratio` device pixels per pixel.
QImage shotOf(DisplayView& view, qreal density)
{
    QImage image((QSizeF(view.viewport()->size()) * density).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(density);
    view.viewport()->render(&image);
    return image;
}

/// The device pixels that do not have the colour of the page background.
QRect inkOf(const QImage& image)
{
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != qRgb(255, 255, 255))
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

TEST_F(ViewGeometry, OnAHighDensityScreenTextKeepsItsPositionAndIsFiner)
{
    show(MixedLines, {Width, 300});
    view.setDesignMode(u"Off"_s);
    const QImage plain = shotOf(view, 1);
    const QRect ink = inkOf(plain);
    ASSERT_GT(ink.width(), Width / 2);
    for (const qreal density : {1.25, 1.5, 2.0, 3.0}) {
        const QImage dense = shotOf(view, density);
        const QRect denseInk = inkOf(dense);
        EXPECT_NEAR(denseInk.left(), ink.left() * density, 2 * density);
        EXPECT_NEAR(denseInk.top(), ink.top() * density, 2 * density);
        EXPECT_NEAR(denseInk.right(), ink.right() * density, 2 * density);
        EXPECT_NEAR(denseInk.bottom(), ink.bottom() * density, 2 * density);
        // The text is rendered at the higher density, not scaled: adjacent rows of device pixels differ.
        const QImage enlarged = plain.scaled(dense.size(), Qt::IgnoreAspectRatio, Qt::FastTransformation);
        int finer = 0;
        for (int y = 0; y < dense.height(); ++y) {
            for (int x = 0; x < dense.width(); ++x)
                finer += dense.pixel(x, y) != enlarged.pixel(x, y);
        }
        EXPECT_GT(finer, 1000) << density;
    }
}

TEST_F(ViewGeometry, ASelectionHasNoGapsBetweenItsRowsOnAHighDensityScreen)
{
    const QByteArray full = "<DIV>" + QByteArray("wwww ").repeated(60) + "</DIV>";
    show(full.repeated(3), {Width, 300});
    QPalette palette = view.palette();
    palette.setColor(QPalette::HighlightedText, Qt::black);
    view.setPalette(palette);
    view.selectAll();
    for (const qreal density : {1.0, 1.25, 1.5, 1.75, 2.0}) {
        const QImage image = shotOf(view, density);
        const QRect last = view.clientRects(document().end(), document().end()).front();
        const int bottom = int(std::min(last.top(), view.clientHeight()) * density) - 2;
        const int x = int(7 * density);
        for (int y = int(4 * density); y < bottom; ++y)
            ASSERT_NE(image.pixel(x, y), qRgb(255, 255, 255)) << "dot " << y << " at " << density;
    }
}

// ---------------------------------------------------------------- scrolling

/// Lines with an estimate that is too high: they can be broken between any two characters.
QByteArray ideographicLines(int count)
{
    const QByteArray run = QByteArray("\xe6\xbc\xa2").repeated(20) + ' ';
    QByteArray lines;
    for (int i = 0; i < count; ++i)
        lines += "<DIV>" + QByteArray::number(i) + ' ' + run.repeated(2 + 3 * (i % 5)) + "</DIV>";
    return lines;
}

QByteArray words(int count, unsigned seed)
{
    std::mt19937 random(seed);
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += QByteArray(1 + int(random() % 9), char('a' + int(random() % 26))) + ' ';
    return text.trimmed();
}

TEST_F(ViewGeometry, VisibleRowsDoNotMoveWhileHeightsAreMeasured)
{
    show(ideographicLines(2000));
    const int estimated = view.scrollHeight();
    view.scroll(0, estimated / 2);
    const Position first = view.positionAt({0, 1});
    const QRect before = view.clientRects(first, first).front();
    ASSERT_FALSE(view.isMeasured());
    measureAll();
    EXPECT_LT(view.scrollHeight(), estimated);
    EXPECT_EQ(view.positionAt({0, 1}), first);
    EXPECT_EQ(view.clientRects(first, first).front(), before);
    EXPECT_EQ(view.verticalScrollBar()->value(), view.scrollTop());
}

TEST_F(ViewGeometry, TheScreenDoesNotChangeInAnySliceOfMeasuring)
{
    show(ideographicLines(3000));
    view.setDesignMode(u"Off"_s); // no blinking caret
    for (const double part : {0.0, 0.3, 0.7, 1.0}) {
        // Another width makes all lines unmeasured again.
        view.resize(Width - int(part * 50), Height);
        view.scroll(0, int(part * view.scrollHeight()));
        ASSERT_FALSE(view.isMeasured());
        const QImage before = view.viewport()->grab().toImage();
        int turns = 0;
        for (; !view.isMeasured(); ++turns) {
            QApplication::processEvents();
            if (turns % 8 == 0) {
                ASSERT_EQ(view.viewport()->grab().toImage(), before) << "turn " << turns << " at " << part;
            }
        }
        EXPECT_GT(turns, 3);
        EXPECT_EQ(view.viewport()->grab().toImage(), before) << "at " << part;
    }
}

TEST_F(ViewGeometry, ALongLineDoesNotMoveWhileItIsMeasured)
{
    show("<DIV>first</DIV><DIV>" + words(60000, 3) + "</DIV><DIV>last</DIV>");
    view.setDesignMode(u"Off"_s);
    view.scroll(0, view.scrollHeight() / 2);
    const Position first = view.positionAt({0, 1});
    const QRect rect = view.clientRects(first, first).front();
    ASSERT_FALSE(view.isMeasured());
    while (!view.isMeasured()) {
        QApplication::processEvents();
        // The estimated start of the row may be corrected, but the position stays at the top.
        ASSERT_LE(std::abs(view.clientRects(first, first).front().top() - rect.top()), rect.height());
    }
}

TEST_F(ViewGeometry, ScrollingUpIntoUnmeasuredLinesMovesByExactlyTheDistance)
{
    show(ideographicLines(2000));
    view.scroll(0, view.scrollHeight() / 2);
    for (int step = 0; step < 40; ++step) {
        const Position first = view.positionAt({0, 1});
        const int before = view.clientRects(first, first).front().top();
        view.scrollBy(0, -60);
        ASSERT_EQ(view.clientRects(first, first).front().top(), before + 60) << "step " << step;
    }
}

TEST_F(ViewGeometry, ScrollMovesToTheGivenOffset)
{
    show(ideographicLines(500));
    view.scroll(0, 1234);
    EXPECT_EQ(view.scrollTop(), 1234);
    view.scroll(0, -10);
    EXPECT_EQ(view.scrollTop(), 0);
    view.scroll(0, 100000000);
    EXPECT_EQ(view.scrollTop(), view.scrollHeight() - view.clientHeight());
    const QRect last = view.clientRects(document().end(), document().end()).front();
    EXPECT_LE(last.bottom(), view.clientHeight());
}

TEST_F(ViewGeometry, EstimatesOfPlainTextAreNearlyRight)
{
    show(MixedLines.repeated(300));
    const int estimated = view.scrollHeight();
    measureAll();
    EXPECT_NEAR(view.scrollHeight(), estimated, estimated / 50.0);
}

TEST_F(ViewGeometry, ScrollingRaisesItsEventAndMeasuringDoesNot)
{
    show(ideographicLines(1000));
    int scrolls = 0;
    view.events.onscroll = [&](DisplayEvent& event) {
        ++scrolls;
        EXPECT_EQ(event.type, "scroll"_L1);
        EXPECT_EQ(view.currentEvent(), &event);
    };
    view.scroll(0, 3000);
    EXPECT_EQ(scrolls, 1);
    EXPECT_EQ(view.currentEvent(), nullptr);
    measureAll();
    EXPECT_EQ(scrolls, 1);
    view.verticalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(scrolls, 2);
    view.scroll(0, view.scrollTop());
    EXPECT_EQ(scrolls, 2);
}

TEST_F(ViewGeometry, ASelectionSetByTheProgramIsScrolledIntoView)
{
    show(ideographicLines(500));
    select({400, 3}, {400, 5});
    const QRect rect = view.clientRects({400, 3}, {400, 5}).front();
    EXPECT_TRUE(view.viewport()->rect().contains(rect));
    EXPECT_GT(view.scrollTop(), 0);
}

TEST_F(ViewGeometry, AnEditElsewhereDoesNotScrollTheView)
{
    show(MixedLines.repeated(100));
    measureAll();
    caretTo(550, 0);
    const int before = view.scrollTop();
    const Position first = view.positionAt({0, 1});
    const QRect rect = view.clientRects(first, first).front();
    ASSERT_GT(before, 0);
    // Removes ten lines far above.
    document().splice(0, 10, {}, EditMap{{0, 0}, {10, 0}, {0, 0}});
    const Position moved{first.line - 10, first.offset};
    EXPECT_LT(view.scrollTop(), before);
    EXPECT_EQ(view.clientRects(moved, moved).front(), rect);
}

TEST_F(ViewGeometry, AResizeRaisesItsEventTwice)
{
    show(MixedLines);
    int resizes = 0;
    view.events.onresize = [&](DisplayEvent&) { ++resizes; };
    view.resize(Width + 50, Height + 20);
    EXPECT_EQ(resizes, 2);
}

// ---------------------------------------------------------------- long lines

std::vector<std::pair<int, int>> rowsOf(DisplayView& view, int line)
{
    std::vector<std::pair<int, int>> rows;
    const int end = int(view.document().line(line).text.size());
    for (const QRect& rect : view.clientRects({line, 0}, {line, end}))
        rows.emplace_back(rect.left(), rect.right());
    return rows;
}

TEST_F(ViewGeometry, PositionsInALongLineAgree)
{
    show("<DIV>first</DIV><DIV>" + words(12000, 3) + "</DIV><DIV>last</DIV>");
    ASSERT_GT(line(1).size(), 4 * LineLayout::LongLine);
    measureAll();
    for (int offset = 0; offset <= line(1).size(); offset += 131) {
        view.scrollIntoView({1, offset});
        EXPECT_EQ(view.positionAt(pointOf({1, offset})), (Position{1, offset}));
    }
    // Rows are adjacent, and all except the last one are filled.
    const std::vector<QRect> rects = view.clientRects({1, 0}, {1, int(line(1).size())});
    for (size_t i = 1; i < rects.size(); ++i) {
        ASSERT_EQ(rects[i].top(), rects[i - 1].top() + rects[i - 1].height()) << "row " << i;
        ASSERT_GT(rects[i - 1].width(), view.clientWidth() - 160) << "row " << i - 1;
    }
}

TEST_F(ViewGeometry, EditsOfALongLineProduceTheRowsOfANewLayout)
{
    show("<DIV>" + words(9000, 5) + "</DIV>");
    ASSERT_GT(line(0).size(), 3 * LineLayout::LongLine);
    std::mt19937 random(11);
    for (int edit = 0; edit < 60; ++edit) {
        const int offset = int(random() % unsigned(line(0).size()));
        caretTo(0, offset);
        if (edit % 20 == 0)
            view.insertText(QString::fromLatin1(words(3000, random())));
        else if (random() % 2 == 0)
            type("x y");
        else
            select({0, offset}, {0, std::min(int(line(0).size()), offset + int(random() % 3000))}),
                key(Qt::Key_Delete);
    }
    measureAll();
    const std::vector<std::pair<int, int>> edited = rowsOf(view, 0);

    DisplayView fresh;
    fresh.setPage(pageOf("<DIV>" + line(0).toUtf8() + "</DIV>"));
    fresh.resize(Width, Height);
    fresh.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return fresh.isMeasured(); }, Patience));
    EXPECT_EQ(fresh.document().line(0).text, line(0));
    const std::vector<std::pair<int, int>> expected = rowsOf(fresh, 0);
    ASSERT_EQ(edited.size(), expected.size());
    // Shaping with other text around it can change the width of a row by a fraction.
    for (size_t row = 0; row < expected.size(); ++row)
        ASSERT_NEAR(edited[row].second, expected[row].second, 1)
            << "row " << row << " of " << expected.size();
}

} // namespace

TEST_F(ViewGeometry, AnIdlePageIsNotPaintedAgain)
{
    struct PaintCounter : QObject
    {
        int paints = 0;
        bool eventFilter(QObject*, QEvent* event) override
        {
            paints += event->type() == QEvent::Paint;
            return false;
        }
    } counter;
    QByteArray lines;
    for (int i = 0; i < 300; ++i)
        lines += "<DIV>a line of some words</DIV>";
    show(lines);
    caretTo(1, 3);
    while (!view.isMeasured())
        QApplication::processEvents();
    QTest::qWait(50);
    // Only the caret blinks in an idle view: without it there is nothing to paint.
    const int flashTime = QApplication::cursorFlashTime();
    QApplication::setCursorFlashTime(0);
    caretTo(1, 4);
    QTest::qWait(50);
    view.viewport()->installEventFilter(&counter);
    for (int round = 0; round < 20; ++round)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    QApplication::setCursorFlashTime(flashTime);
    EXPECT_EQ(counter.paints, 0);
}

} // namespace vmk
