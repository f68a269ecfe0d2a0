#include "Sounds.h"

#include "Desktop.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>

#include <memory>
#include <vector>

namespace vmk {

void PlaySoundFile(const QString& path, bool beepInstead)
{
    if (SoundsOn == 1)
        SoundSeam()(path);
    else if (beepInstead)
        Beep();
}

void PlayProgramSound(const QString& name, bool beepInstead)
{
    PlaySoundFile((AppPath == u"/" ? QString() : AppPath) + QDir::separator() + QLatin1StringView("sounds")
                      + QDir::separator() + name,
                  beepInstead);
}

int WaitForInput(int32_t milliseconds, const int* handles, int count)
{
    constexpr int32_t ForEver = -1;
    if ((milliseconds <= 0 && milliseconds != ForEver) || !QCoreApplication::instance())
        return WaitTimeOut;

    // Remains the result if the program ends during the wait.
    int result = WaitTimeOut;
    QEventLoop loop;
    QTimer timer;
    if (milliseconds != ForEver) {
        timer.setSingleShot(true);
        timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
        timer.start(milliseconds);
    }
    std::vector<std::unique_ptr<QSocketNotifier>> notifiers;
    for (int i = 0; i < count; ++i) {
        notifiers.push_back(std::make_unique<QSocketNotifier>(handles[i], QSocketNotifier::Read));
        QObject::connect(notifiers.back().get(), &QSocketNotifier::activated, &loop, [&loop, &result, i] {
            result = i;
            loop.quit();
        });
    }
    loop.exec();
    return result;
}

} // namespace vmk
