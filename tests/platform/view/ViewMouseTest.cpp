// Mouse, wheel, drops, navigation.

#include "ViewFixture.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

const QByteArray Lines = "<DIV id=FirstDiv>the first line</DIV><DIV>second, of words</DIV><DIV>third</DIV>";

class ViewMouse : public ViewTest
{
protected:
    void press(QPoint at, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mousePress(view.viewport(), button, modifiers, at);
    }
    void move(QPoint to) { QTest::mouseMove(view.viewport(), to); }
    void drag(QPoint to)
    {
        QMouseEvent event(QEvent::MouseMove, to, view.viewport()->mapToGlobal(to), Qt::NoButton,
                          Qt::LeftButton, {});
        QApplication::sendEvent(view.viewport(), &event);
    }
    void release(QPoint at, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseRelease(view.viewport(), button, modifiers, at);
    }
    void click(QPoint at, Qt::KeyboardModifiers modifiers = {})
    {
        press(at, modifiers);
        release(at, modifiers);
    }
    void doubleClick(QPoint at) { QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, at); }
};

TEST_F(ViewMouse, AClickSetsTheCaret)
{
    show(Lines);
    for (const Position place : places()) {
        click(pointOf(place));
        EXPECT_EQ(document().selection(), (Selection{place, place}));
    }
}

TEST_F(ViewMouse, ADragSelects)
{
    show(Lines);
    press(pointOf({0, 4}));
    drag(pointOf({1, 2}));
    drag(pointOf({1, 6}));
    release(pointOf({1, 6}));
    EXPECT_EQ(document().selection(), (Selection{{0, 4}, {1, 6}}));
    // Moves without a pressed button change nothing.
    drag(pointOf({2, 2}));
    EXPECT_EQ(document().selection(), (Selection{{0, 4}, {1, 6}}));
}

TEST_F(ViewMouse, AShiftClickExtends)
{
    show(Lines);
    click(pointOf({1, 3}));
    click(pointOf({2, 4}), Qt::ShiftModifier);
    EXPECT_EQ(document().selection(), (Selection{{1, 3}, {2, 4}}));
    click(pointOf({0, 1}), Qt::ShiftModifier);
    EXPECT_EQ(document().selection(), (Selection{{1, 3}, {0, 1}}));
}

TEST_F(ViewMouse, ADoubleClickSelectsTheWordBeforeItsHandlerRuns)
{
    show(Lines);
    QStringList order;
    Selection atHandler;
    view.events.onmousedown = [&](DisplayEvent&) { order << u"mousedown"_s; };
    view.events.onmouseup = [&](DisplayEvent&) { order << u"mouseup"_s; };
    view.events.ondblclick = [&](DisplayEvent&) {
        order << u"dblclick"_s;
        atHandler = document().selection();
        select({0, 0}, {0, 14});
    };
    const QPoint point = pointOf({0, 6}) + QPoint(2, 0);
    click(point);
    QTest::mouseEvent(QTest::MouseDClick, view.viewport(), Qt::LeftButton, {}, point);
    EXPECT_EQ(order, (QStringList{u"mousedown"_s, u"mouseup"_s}));
    release(point);
    EXPECT_EQ(order, (QStringList{u"mousedown"_s, u"mouseup"_s, u"mouseup"_s, u"dblclick"_s}));
    EXPECT_EQ(atHandler, (Selection{{0, 4}, {0, 9}}));
    EXPECT_EQ(document().selection(), (Selection{{0, 0}, {0, 14}}));
}

TEST_F(ViewMouse, ADragAfterADoubleClickSelectsByWords)
{
    show(Lines);
    click(pointOf({1, 9}));
    QTest::mouseEvent(QTest::MouseDClick, view.viewport(), Qt::LeftButton, {}, pointOf({1, 9}));
    drag(pointOf({1, 13}));
    EXPECT_EQ(document().selection(), (Selection{{1, 8}, {1, 16}}));
    drag(pointOf({0, 6}));
    EXPECT_EQ(document().selection(), (Selection{{1, 10}, {0, 4}}));
    release(pointOf({0, 6}));
}

TEST_F(ViewMouse, EventsHaveButtonAndPoint)
{
    show(Lines);
    std::vector<DisplayEvent> seen;
    view.events.onmousedown = [&](DisplayEvent& event) { seen.push_back(event); };
    press({30, 40}, Qt::ControlModifier);
    release({30, 40});
    press({31, 41}, {}, Qt::RightButton);
    release({31, 41}, {}, Qt::RightButton);
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].button, 1);
    EXPECT_TRUE(seen[0].ctrlKey);
    EXPECT_EQ(seen[0].clientX, 30);
    EXPECT_EQ(seen[0].clientY, 40);
    EXPECT_EQ(seen[1].button, 2);
}

TEST_F(ViewMouse, ACancelledPressDoesNotMoveTheCaret)
{
    show(Lines);
    caretTo(2, 1);
    view.events.onmousedown = [](DisplayEvent& event) { event.returnValue = false; };
    click(pointOf({0, 3}));
    EXPECT_EQ(caret(), (Position{2, 1}));
}

TEST_F(ViewMouse, ARightClickInTheSelectionKeepsIt)
{
    show(Lines);
    select({0, 2}, {1, 5});
    press(pointOf({1, 1}), {}, Qt::RightButton);
    EXPECT_EQ(document().selection(), (Selection{{0, 2}, {1, 5}}));
    press(pointOf({2, 3}), {}, Qt::RightButton);
    EXPECT_EQ(document().selection(), (Selection{{2, 3}, {2, 3}}));
}

TEST_F(ViewMouse, TheContextMenusEventIsRaised)
{
    show(Lines);
    int menus = 0;
    view.events.oncontextmenu = [&](DisplayEvent& event) {
        ++menus;
        EXPECT_EQ(event.clientX, 20);
        event.returnValue = false;
    };
    QContextMenuEvent event(QContextMenuEvent::Mouse, {20, 20}, view.viewport()->mapToGlobal(QPoint(20, 20)));
    QApplication::sendEvent(view.viewport(), &event);
    EXPECT_EQ(menus, 1);
}

TEST_F(ViewMouse, ADragFromTheSelectionStartsANewSelection)
{
    show(Lines);
    select({0, 0}, {1, 5});
    const QString before = text();
    int drags = 0;
    view.events.ondragstart = [&](DisplayEvent& event) {
        ++drags;
        event.returnValue = false;
    };
    press(pointOf({0, 3}));
    drag(pointOf({0, 9}));
    drag(pointOf({0, 10}));
    release(pointOf({0, 10}));
    EXPECT_EQ(drags, 1);
    EXPECT_EQ(text(), before);
    EXPECT_EQ(document().selection(), (Selection{{0, 3}, {0, 10}}));
}

TEST_F(ViewMouse, ThePageScrollsWhileADragIsHeldOutside)
{
    show(Lines.repeated(100));
    press(pointOf({1, 3}));
    drag({60, view.clientHeight() + 40});
    ASSERT_TRUE(QTest::qWaitFor([this] { return view.scrollTop() > Height; }, Patience));
    EXPECT_GT(caret().line, 30);
    EXPECT_EQ(document().selection().anchor, (Position{1, 3}));
    drag({60, -40});
    ASSERT_TRUE(QTest::qWaitFor([this] { return view.scrollTop() == 0; }, Patience));
    release({60, 10});
    const int still = view.scrollTop();
    QTest::qWait(100);
    EXPECT_EQ(view.scrollTop(), still);
}

TEST_F(ViewMouse, TheWheelScrolls)
{
    show(Lines.repeated(100));
    QWheelEvent event({50, 50}, view.viewport()->mapToGlobal(QPointF(50, 50)), {}, {0, -120}, {}, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &event);
    EXPECT_GT(view.scrollTop(), 20);
}

TEST_F(ViewMouse, LosingTheFocusRaisesItsEventAndKeepsTheSelection)
{
    show(Lines);
    select({0, 1}, {0, 5});
    int lost = 0;
    view.events.onfocusout = [&](DisplayEvent&) { ++lost; };
    view.clearFocus();
    EXPECT_EQ(lost, 1);
    EXPECT_EQ(document().selection(), (Selection{{0, 1}, {0, 5}}));
}

// ---------------------------------------------------------------- navigation and drops

class ViewNavigation : public ViewMouse
{
protected:
    QString writePage(const QString& name, const QByteArray& bytes)
    {
        const QString path = folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }
    /// Returns the action that the drag source is informed of.
    Qt::DropAction drop(const QMimeData& data)
    {
        const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter({20, 20}, offered, &data, Qt::LeftButton, {});
        enter.setDropAction(Qt::MoveAction);
        QApplication::sendEvent(view.viewport(), &enter);
        QDropEvent event({20, 20}, offered, &data, Qt::LeftButton, {});
        event.setDropAction(Qt::MoveAction);
        event.ignore();
        QApplication::sendEvent(view.viewport(), &event);
        return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
    }

    QTemporaryDir folder;
};

TEST_F(ViewNavigation, APageCompletesFromTheEventLoopReadOnly)
{
    const QString path = writePage(u"page.htm"_s, pageOf("<DIV>from a file</DIV>"));
    show(Lines);
    QStringList order;
    view.events.onbeforenavigate = [&](const QString& target, bool&) { order << u"before "_s + target; };
    view.events.ondocumentcomplete = [&](const QString& location) { order << u"complete "_s + location; };
    view.events.onreadystatechange = [&](DisplayEvent&) { order << view.readyState() + view.designMode(); };
    EXPECT_TRUE(view.Navigate(path));
    EXPECT_EQ(order, QStringList{u"before "_s + path});
    EXPECT_EQ(view.readyState(), u"loading"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return order.size() == 3; }, Patience));
    EXPECT_EQ(order[1], u"complete "_s + path);
    EXPECT_EQ(order[2], u"completeOff"_s);
    EXPECT_EQ(text(), u"from a file"_s);
    EXPECT_EQ(view.location(), path);
    type("x");
    EXPECT_EQ(text(), u"from a file"_s);
    // Making it editable raises the event again, after the call.
    view.setDesignMode(u"On"_s);
    EXPECT_EQ(order.size(), 3);
    ASSERT_TRUE(QTest::qWaitFor([&] { return order.size() == 4; }, Patience));
    EXPECT_EQ(order[3], u"completeOn"_s);
    type("x");
    EXPECT_EQ(text(), u"xfrom a file"_s);
}

TEST_F(ViewNavigation, AForbiddenNavigationLeavesThePage)
{
    show(Lines);
    const QString before = text();
    view.events.onbeforenavigate = [](const QString&, bool& cancel) { cancel = true; };
    EXPECT_FALSE(view.Navigate(writePage(u"page.htm"_s, pageOf("<DIV>other</DIV>"))));
    QTest::qWait(20);
    EXPECT_EQ(text(), before);
    EXPECT_TRUE(view.isEditable());
}

TEST_F(ViewNavigation, ADroppedFileIsANavigationAndDroppedTextIsIgnored)
{
    show(Lines);
    const QString before = text();
    QStringList targets;
    view.events.onbeforenavigate = [&](const QString& target, bool& cancel) {
        targets << target;
        cancel = true;
    };
    QMimeData file;
    file.setUrls({QUrl::fromLocalFile(u"/some/folder/book.fb2"_s)});
    EXPECT_EQ(drop(file), Qt::CopyAction) << "a move would let the source take its file away";
    EXPECT_EQ(targets, QStringList{u"/some/folder/book.fb2"_s});
    QMimeData words;
    words.setText(u"dropped"_s);
    EXPECT_EQ(drop(words), Qt::IgnoreAction);
    EXPECT_EQ(targets.size(), 1);
    EXPECT_EQ(text(), before);
}

TEST_F(ViewNavigation, APageInItsCodePageIsReadByItsCharset)
{
    const QString path
        = writePage(u"welcome.htm"_s,
                    "<HTML><meta content=\"text/html; charset=windows-1251\" "
                    "http-equiv=\"Content-Type\"><BODY><DIV>\xcf\xf0\xe8\xe2\xe5\xf2</DIV></BODY></HTML>");
    show(Lines);
    view.Navigate(path);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.readyState() == u"complete"; }, Patience));
    EXPECT_EQ(text(), u"Привет"_s);
}

TEST_F(ViewNavigation, AMissingFileShowsAnEmptyPage)
{
    show(Lines);
    view.Navigate(folder.filePath(u"nothing.htm"_s));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.readyState() == u"complete"; }, Patience));
    EXPECT_EQ(text(), QString());
    EXPECT_LE(view.scrollHeight(), view.clientHeight());
}

} // namespace
} // namespace vmk
