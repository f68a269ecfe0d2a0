// The watch for the Escape key, with real windows and events.

#include "EscapeKey.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>
#include <QSocketNotifier>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <functional>
#include <unistd.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

/// A window whose events the test observes.
class Watched : public QLineEdit
{
public:
    int paints = 0;
    int closes = 0;
    int presses = 0;
    std::function<void(const QString&)> whenTyped = [](const QString&) {};

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        QLineEdit::paintEvent(event);
    }
    void closeEvent(QCloseEvent* event) override
    {
        ++closes;
        QLineEdit::closeEvent(event);
    }
    void mousePressEvent(QMouseEvent* event) override
    {
        ++presses;
        QLineEdit::mousePressEvent(event);
    }
    void keyPressEvent(QKeyEvent* event) override
    {
        QLineEdit::keyPressEvent(event);
        whenTyped(event->text());
    }
};

class EscapeKey : public testing::Test
{
protected:
    void SetUp() override
    {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        window.setFocus();
        QApplication::processEvents();
    }

    /// A key that the window has not received yet.
    void post(int key, const QString& text = QString())
    {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease})
            QCoreApplication::postEvent(window.windowHandle(),
                                        new QKeyEvent(type, key, Qt::NoModifier, text));
    }
    void postWord(const QString& word)
    {
        for (const QChar letter : word)
            post(letter.toUpper().unicode(), QString(letter));
    }

    Watched window;
};

} // namespace

TEST_F(EscapeKey, IsFoundAndTheOtherKeysAreDeliveredAfterwardsInOrder)
{
    {
        const auto watch = WatchEscapeKey();
        EXPECT_FALSE(watch->takeEscape());
        postWord(u"ab"_s);
        EXPECT_FALSE(watch->takeEscape());
        post(Qt::Key_Escape);
        postWord(u"c"_s);
        EXPECT_TRUE(watch->takeEscape());
        EXPECT_FALSE(watch->takeEscape());
        postWord(u"d"_s);
        EXPECT_FALSE(watch->takeEscape());
        EXPECT_EQ(window.text(), QString());
    }
    EXPECT_EQ(window.text(), QString());
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.text() == u"abcd"_s; }));
    // Later keys are handled at once, and Escape is a usual key again.
    postWord(u"e"_s);
    QApplication::processEvents();
    EXPECT_EQ(window.text(), u"abcde"_s);
}

TEST_F(EscapeKey, InputThatComesBeforeTheKeptOneIsDeliveredIsAppendedToIt)
{
    {
        const auto watch = WatchEscapeKey();
        postWord(u"ab"_s);
        EXPECT_FALSE(watch->takeEscape());
    }
    // As from the window system: spontaneous.
    QTest::keyClick(window.windowHandle(), Qt::Key_C);
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.text().size() == 3; }));
    EXPECT_EQ(window.text(), u"abc"_s);
}

TEST_F(EscapeKey, PaintingContinuesAndTimersAndSocketsWait)
{
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
    timer.start(0);
    int pipeEnds[2];
    ASSERT_EQ(pipe(pipeEnds), 0);
    ASSERT_EQ(write(pipeEnds[1], "x", 1), 1);
    int reads = 0;
    QSocketNotifier notifier(pipeEnds[0], QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
        ++reads;
        notifier.setEnabled(false);
    });
    window.paints = 0;
    {
        const auto watch = WatchEscapeKey();
        window.update();
        for (int i = 0; i < 100 && window.paints == 0; ++i) {
            EXPECT_FALSE(watch->takeEscape());
            QTest::qSleep(1);
        }
        EXPECT_GT(window.paints, 0);
        EXPECT_EQ(ticks, 0);
        EXPECT_EQ(reads, 0);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks > 0 && reads > 0; }));
    close(pipeEnds[0]);
    close(pipeEnds[1]);
}

TEST_F(EscapeKey, TheMouseAndTheEndOfAWindowWait)
{
    {
        const auto watch = WatchEscapeKey();
        QCoreApplication::postEvent(window.windowHandle(),
                                    new QMouseEvent(QEvent::MouseButtonPress, {5, 5},
                                                    window.mapToGlobal(QPointF(5, 5)), Qt::LeftButton,
                                                    Qt::LeftButton, Qt::NoModifier));
        bool isClosed = true;
        QMetaObject::invokeMethod(
            &window, [&] { isClosed = window.windowHandle()->close(); }, Qt::QueuedConnection);
        EXPECT_FALSE(watch->takeEscape());
        EXPECT_EQ(window.presses, 0);
        EXPECT_EQ(window.closes, 0);
        EXPECT_FALSE(isClosed);
    }
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.closes == 1; }));
    EXPECT_EQ(window.presses, 1);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(EscapeKey, AShortcutWaits)
{
    int activations = 0;
    QString textThen;
    QShortcut shortcut(Qt::Key_F10, &window);
    QObject::connect(&shortcut, &QShortcut::activated, [&] {
        ++activations;
        textThen = window.text();
    });
    {
        const auto watch = WatchEscapeKey();
        postWord(u"a"_s);
        // As from the window system, which tries shortcuts before the windows.
        QMetaObject::invokeMethod(
            &window, [this] { QTest::keyClick(window.windowHandle(), Qt::Key_F10); }, Qt::QueuedConnection);
        postWord(u"b"_s);
        EXPECT_FALSE(watch->takeEscape());
        EXPECT_EQ(activations, 0);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return activations == 1 && window.text() == u"ab"_s; }));
    EXPECT_EQ(textThen, u"a"_s);
    QTest::keyClick(window.windowHandle(), Qt::Key_F10);
    EXPECT_EQ(activations, 2);
}

TEST_F(EscapeKey, AKeptKeyThatBeginsMoreWorkIsFollowedByTheRestInOrder)
{
    bool found = false;
    window.whenTyped = [&](const QString& text) {
        if (text != u"a"_s)
            return;
        // A second work, in which further keys are pressed.
        const auto inner = WatchEscapeKey();
        postWord(u"d"_s);
        post(Qt::Key_Escape);
        found = inner->takeEscape();
        EXPECT_EQ(window.text(), u"a"_s);
    };
    {
        const auto watch = WatchEscapeKey();
        postWord(u"abc"_s);
        EXPECT_FALSE(watch->takeEscape());
    }
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.text().size() == 4; }));
    EXPECT_EQ(window.text(), u"abcd"_s);
    EXPECT_TRUE(found);
}

TEST_F(EscapeKey, AKeptKeyThatOpensABoxDoesNotStopTheRest)
{
    window.whenTyped = [&](const QString& text) {
        if (text == u"a"_s) {
            EXPECT_TRUE(QTest::qWaitFor([this] { return window.text() == u"abc"_s; }));
        }
    };
    {
        const auto watch = WatchEscapeKey();
        postWord(u"abc"_s);
        EXPECT_FALSE(watch->takeEscape());
    }
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.text() == u"abc"_s; }));
}

TEST_F(EscapeKey, AReceiverThatNoLongerExistsIsLeftOut)
{
    auto other = std::make_unique<Watched>();
    other->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(other.get()));
    {
        const auto watch = WatchEscapeKey();
        QCoreApplication::postEvent(other->windowHandle(), new QCloseEvent);
        postWord(u"a"_s);
        EXPECT_FALSE(watch->takeEscape());
        other.reset();
    }
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.text() == u"a"_s; }));
}
