// Work that Escape cancels.

#include "Cancelling.h"

#include "Chance.h"
#include "MainWindowSeams.h"

#include <gtest/gtest.h>

#include <QStringList>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

class Cancelling : public testing::Test
{
protected:
    Cancelling()
        : clock(TickSeam(), [this] { return now; })
        , status(StatusSeam(), [this](const QString& text) { texts.append(text); })
        , watches(EscapeWatchSeam(), [this]() -> std::unique_ptr<EscapeWatch> {
            ++begun;
            return std::make_unique<Watch>(*this);
        })
    {
    }

    class Watch final : public EscapeWatch
    {
    public:
        explicit Watch(Cancelling& watchedTest)
            : test(watchedTest)
        {
        }
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;
        ~Watch() override { ++test.ended; }
        bool takeEscape() override
        {
            ++test.looks;
            // Code that runs meanwhile.
            EXPECT_FALSE(CancellableWork::isCancelled());
            return test.pressed;
        }

    private:
        Cancelling& test;
    };

    int64_t now = 1000;
    bool pressed = false;
    int begun = 0;
    int ended = 0;
    int looks = 0;
    QStringList texts;
    SeamGuard<int64_t()> clock;
    SeamGuard<void(const QString&)> status;
    SeamGuard<std::unique_ptr<EscapeWatch>()> watches;
};

} // namespace

TEST_F(Cancelling, WithoutWorkNothingIsCancelled)
{
    CancellableWork::cancel();
    EXPECT_FALSE(CancellableWork::isCancelled());
    now += 10'000;
    EXPECT_FALSE(CancellableWork::isCancelled());
    EXPECT_EQ(begun, 0);
}

TEST_F(Cancelling, ShortWorkIsNotInterrupted)
{
    {
        const CancellableWork work(u"working"_s, u"cancelled"_s);
        pressed = true;
        now += 99;
        EXPECT_FALSE(CancellableWork::isCancelled());
    }
    EXPECT_EQ(begun, 0);
    EXPECT_TRUE(texts.isEmpty());
}

TEST_F(Cancelling, LongWorkLooksForTheKeyEveryFewMilliseconds)
{
    {
        const CancellableWork work(u"working"_s, u"cancelled"_s);
        now += 100;
        EXPECT_FALSE(CancellableWork::isCancelled());
        EXPECT_EQ(looks, 1);
        now += 19;
        EXPECT_FALSE(CancellableWork::isCancelled());
        EXPECT_EQ(looks, 1);
        now += 1;
        EXPECT_FALSE(CancellableWork::isCancelled());
        EXPECT_EQ(looks, 2);
        EXPECT_EQ(texts, QStringList{u"working"_s});
    }
    EXPECT_EQ(begun, 1);
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(texts, (QStringList{u"working"_s, QString()}));
}

TEST_F(Cancelling, EscapeCancelsTheWorkAndNoOther)
{
    {
        const CancellableWork work(u"working"_s, u"cancelled"_s);
        const CancellableWork part(u"part"_s, u"part"_s);
        pressed = true;
        now += 100;
        EXPECT_TRUE(CancellableWork::isCancelled());
        pressed = false;
        now += 100;
        EXPECT_TRUE(CancellableWork::isCancelled());
        EXPECT_EQ(looks, 1);
    }
    EXPECT_EQ(texts, (QStringList{u"working"_s, u"cancelled"_s}));
    EXPECT_FALSE(CancellableWork::isCancelled());
    const CancellableWork next(u"working"_s, u"cancelled"_s);
    now += 100;
    EXPECT_FALSE(CancellableWork::isCancelled());
}

TEST_F(Cancelling, ThePartOfAWorkDoesNotEndIt)
{
    const CancellableWork work(u"working"_s, u"cancelled"_s);
    {
        const CancellableWork part(u"part"_s, u"part"_s);
    }
    CancellableWork::cancel();
    EXPECT_TRUE(CancellableWork::isCancelled());
}

TEST_F(Cancelling, AStateIsReadWithoutALookForTheKey)
{
    const CancellableWork work(u"working"_s, u"cancelled"_s);
    pressed = true;
    now += 100;
    EXPECT_FALSE(CancellableWork::wasCancelled());
    EXPECT_EQ(looks, 0);
    EXPECT_TRUE(CancellableWork::isCancelled());
    EXPECT_TRUE(CancellableWork::wasCancelled());
}

TEST_F(Cancelling, WithoutAWindowNoKeyIsLookedFor)
{
    int asked = 0;
    const SeamGuard none(EscapeWatchSeam(), [&asked] {
        ++asked;
        return std::unique_ptr<EscapeWatch>();
    });
    const CancellableWork work(u"working"_s, u"cancelled"_s);
    for (int i = 0; i < 5; ++i) {
        now += 1000;
        EXPECT_FALSE(CancellableWork::isCancelled());
    }
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(texts.isEmpty());
}
