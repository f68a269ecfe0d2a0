// Memory that runs out in an event: the operation is undone, a box reports it, the text stays.

#include "MemoryGuard.h"

#include "Boxes.h"
#include "DisplayView.h"
#include "Form1.h"
#include "InitGlobals.h"
#include "MainWindowSeams.h"
#include "ProcessEnd.h"
#include "Settings.h"
#include "Workplace.h"

#include <gtest/gtest.h>

#include <new>
#include <thread>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

class MemoryGuard : public testing::Test
{
protected:
    MemoryGuard()
    {
        InitGlobals({.executable = place.Path(u"vellumark"_s), .userDataFolder = place.Path(u"user"_s)});
        ReadSettings(true);
    }

    Workplace place;
    QStringList boxes;
};

QString TextOf(const DisplayDocument& document)
{
    QString text;
    for (int i = 0; i < document.lineCount(); ++i)
        text += document.line(i).text + u'|';
    return text;
}

/// Throws in the middle of a notification about a change, as a layout without memory does.
class FailingListener final : public DisplayListener
{
public:
    void linesChanged(int, const std::vector<LinePtr>&, const std::vector<LinePtr>&) override
    {
        throw std::bad_alloc();
    }
    void selectionChanged() override { }
    void documentReset() override { }
};

} // namespace

TEST_F(MemoryGuard, AnEventThatSucceedsReturnsItsResult)
{
    EXPECT_TRUE(GuardMemory([] { return true; }));
    EXPECT_FALSE(GuardMemory([] { return false; }));
}

TEST_F(MemoryGuard, TheFailedOperationIsUndoneAndReported)
{
    const SeamGuard box(BoxSeam(), [this](BoxKind, const QString& text, const QString&) {
        boxes.append(text);
        return false;
    });
    Form1 window;
    DisplayDocument& document = window.HTMLread->document();
    document.insertLines(0, u"<DIV>one</DIV><DIV>two</DIV>"_s);
    document.typeText(u"word"_s);
    const QString before = TextOf(document);
    const std::size_t steps = document.undoSteps();

    EXPECT_TRUE(GuardMemory([&]() -> bool {
        document.insertLines(1, u"<DIV>three</DIV>"_s);
        const DisplayDocument::EditGroup group(document);
        document.insertLines(0, u"<DIV>four</DIV>"_s);
        throw std::bad_alloc();
    }));
    EXPECT_EQ(TextOf(document), before);
    EXPECT_EQ(document.undoSteps(), steps);
    EXPECT_EQ(boxes.size(), 1);

    // The next operation works as usual.
    EXPECT_TRUE(GuardMemory([&] {
        document.insertLines(0, u"<DIV>five</DIV>"_s);
        return true;
    }));
    EXPECT_EQ(TextOf(document), u"five|"_s + before);
    EXPECT_EQ(boxes.size(), 1);
}

TEST_F(MemoryGuard, AFailureInTheMiddleOfANotificationLeavesAConsistentDocument)
{
    DisplayDocument document;
    document.insertLines(0, u"<DIV>one</DIV><DIV>two</DIV>"_s);
    const QString before = TextOf(document);
    FailingListener listener;
    document.setListener(&listener);
    EXPECT_THROW(document.insertLines(1, u"<DIV>three</DIV>"_s), std::bad_alloc);
    document.setListener(nullptr);
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(TextOf(document), before);
}

TEST_F(MemoryGuard, AFailureOfTheReportEndsTheProcess)
{
    int ends = 0;
    const SeamGuard end(EndProcessSeam(), [&ends] { ++ends; });
    const SeamGuard restore(RestoreBookSeam(), [](std::size_t) { throw std::bad_alloc(); });
    EXPECT_TRUE(GuardMemory([]() -> bool { throw std::bad_alloc(); }));
    EXPECT_EQ(ends, 1);
}

TEST_F(MemoryGuard, AnEventOfAnotherThreadIsLeftToThatThread)
{
    int boxCount = 0;
    const SeamGuard box(BoxSeam(), [&boxCount](BoxKind, const QString&, const QString&) {
        ++boxCount;
        return false;
    });
    int asked = 0;
    const SeamGuard steps(UndoStepsSeam(), [&asked] {
        ++asked;
        return std::size_t(0);
    });
    bool thrown = false;
    bool delivered = false;
    std::thread thread([&] {
        delivered = GuardMemory([] { return true; });
        try {
            GuardMemory([]() -> bool { throw std::bad_alloc(); });
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
    });
    thread.join();
    EXPECT_TRUE(delivered);
    EXPECT_TRUE(thrown);
    EXPECT_EQ(boxCount, 0);
    EXPECT_EQ(asked, 0);
}

TEST_F(MemoryGuard, OtherExceptionsPass)
{
    EXPECT_THROW(GuardMemory([]() -> bool { throw 1; }), int);
}
