#include "Sounds.h"
#include "Desktop.h"
#include "SettingsVariables.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

#include <array>

#include <unistd.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

class Sounds : public testing::Test
{
protected:
    ~Sounds() override { SoundsOn = 0; }

    QStringList heard;
    SeamGuard<void(const QString&)> sound{SoundSeam(), [this](const QString& path) { heard.append(path); }};
    SeamGuard<void()> beep{BeepSeam(), [this] { heard.append(u"beep"_s); }};
};

class WaitForInputTest : public testing::Test
{
protected:
    int argc = 1;
    std::array<char, 5> name{"test"};
    std::array<char*, 2> argv{name.data(), nullptr};
    QCoreApplication application{argc, argv.data()};
};

} // namespace

TEST_F(Sounds, WithSoundsOnTheFileIsPlayed)
{
    SoundsOn = 1;
    PlaySoundFile(u"a.wav"_s, true);
    PlaySoundFile(u"b.wav"_s, false);
    EXPECT_EQ(heard, (QStringList{u"a.wav"_s, u"b.wav"_s}));
}

TEST_F(Sounds, WithSoundsOffAnErrorBeepsAndASuccessStaysSilent)
{
    SoundsOn = 0;
    PlaySoundFile(u"error.wav"_s, true);
    PlaySoundFile(u"success.wav"_s, false);
    EXPECT_EQ(heard, QStringList{u"beep"_s});
}

TEST_F(WaitForInputTest, TakesTheGivenTimeAndProcessesEvents)
{
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
    timer.start(5);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(WaitForInput(500, nullptr, 0), WaitTimeOut);
    EXPECT_GE(clock.elapsed(), 499);
    EXPECT_GE(ticks, 2);
}

TEST_F(WaitForInputTest, ReturnsImmediatelyWithoutTimeLeft)
{
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(WaitForInput(0, nullptr, 0), WaitTimeOut);
    EXPECT_EQ(WaitForInput(-2, nullptr, 0), WaitTimeOut);
    EXPECT_LT(clock.elapsed(), 5'000) << "it waits";
}

TEST_F(WaitForInputTest, ASignalledHandleEndsTheWait)
{
    std::array<int, 2> quiet{};
    std::array<int, 2> signalled{};
    ASSERT_EQ(::pipe(quiet.data()), 0);
    ASSERT_EQ(::pipe(signalled.data()), 0);
    QTimer::singleShot(5, [&] { ASSERT_EQ(::write(signalled[1], "x", 1), 1); });
    const std::array<int, 2> handles{quiet[0], signalled[0]};
    EXPECT_EQ(WaitForInput(-1, handles.data(), 2), 1);
    for (const int handle : {quiet[0], quiet[1], signalled[0], signalled[1]})
        ::close(handle);
}

TEST_F(WaitForInputTest, EndsWithTheProgram)
{
    QTimer::singleShot(5, [] { QCoreApplication::exit(); });
    EXPECT_EQ(WaitForInput(-1, nullptr, 0), WaitTimeOut);
}
