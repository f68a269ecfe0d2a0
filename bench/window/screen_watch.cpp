// Reports when an area of the screen shows text:
//
//   screen_watch LEFT TOP WIDTH HEIGHT
//
// Checks every two milliseconds, waits until the area has the colours of rendered text, and prints the time
// in milliseconds since 1970. Prints "ready" when it starts to check. Returns 1 after a minute without text.

#include <QDateTime>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QSet>
#include <QThread>

#include <cstdio>

using namespace std::chrono_literals;

namespace {

/// An area without text has a background, and can have a frame.
bool ShowsText(QScreen& screen, const QRect& place)
{
    constexpr qsizetype ColoursOfText = 5;
    const QImage image = screen.grabWindow(0, place.x(), place.y(), place.width(), place.height()).toImage();
    QSet<QRgb> colours;
    for (int y = 0; y < image.height() && colours.size() < ColoursOfText; ++y) {
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, y));
    }
    return colours.size() >= ColoursOfText;
}

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 5) {
        std::fputs("usage: screen_watch LEFT TOP WIDTH HEIGHT\n", stderr);
        return 2;
    }
    const QRect place(arguments[1].toInt(), arguments[2].toInt(), arguments[3].toInt(), arguments[4].toInt());
    std::puts("ready");
    std::fflush(stdout);
    QScreen& screen = *QGuiApplication::primaryScreen();
    const QDeadlineTimer patience(60s);
    while (!ShowsText(screen, place)) {
        if (patience.hasExpired())
            return 1;
        QThread::msleep(2);
    }
    std::printf("%lld\n", static_cast<long long>(QDateTime::currentMSecsSinceEpoch()));
    return 0;
}
