// Costs of opening the page of a book in the display and of editing it.
//
//   bench_view PAGE [--chromium PROGRAM]
//
// PAGE is a page as `vmk display` writes it. Prints: the time from file to first painted, editable screen,
// compared with the time of headless Chromium for a screenshot of the same page minus an empty one; memory
// above an empty window; the time of a key (document and paint) at the start, in the middle and at the end,
// and in a single line of a megabyte; the first paint after a jump; the longest idle slice; 50 000 replaces
// and their undo. Times of single events are printed as wall time and as processor time, which does not count
// other programs. There are no limits.

#include "DisplayPage.h"
#include "DisplayView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <ctime>
#include <functional>
#include <random>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int Keys = 1000;
constexpr int Jumps = 200;
constexpr QSize WindowSize(1000, 800);

QTextStream& out()
{
    static QTextStream stream(stdout);
    return stream;
}

/// A duration in milliseconds.
struct Duration
{
    double wall = 0;
    double processor = 0; ///< Of this thread.
};

class Stopwatch
{
public:
    Stopwatch() { timer.start(); }

    [[nodiscard]] Duration elapsed() const
    {
        return {double(timer.nsecsElapsed()) / 1e6, processorTime() - processorStart};
    }

private:
    [[nodiscard]] static double processorTime()
    {
        timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    }

    QElapsedTimer timer;
    double processorStart = processorTime();
};

/// Records how long each timer event of the view took.
class TimedApplication : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (event->type() != QEvent::Timer || receiver != watched)
            return QApplication::notify(receiver, event);
        const Stopwatch watch;
        const bool result = QApplication::notify(receiver, event);
        slices.push_back(watch.elapsed());
        return result;
    }

    const QObject* watched = nullptr;
    std::vector<Duration> slices;
};

Duration timeOf(const std::function<void()>& work)
{
    const Stopwatch watch;
    work();
    return watch.elapsed();
}

double milliseconds(const std::function<void()>& work)
{
    return timeOf(work).wall;
}

double percentile(std::vector<double> values, double part)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[std::min(values.size() - 1, size_t(double(values.size()) * part))];
}

QString percentiles(const std::vector<double>& times)
{
    const auto part = [&times](double share) { return QString::number(percentile(times, share), 'f', 2); };
    return u"median %1 ms, p99 %2 ms, longest %3 ms"_s.arg(part(0.5), part(0.99), part(1));
}

void printTimes(const QString& what, const std::vector<Duration>& times)
{
    std::vector<double> wall;
    std::vector<double> processor;
    for (const Duration& time : times) {
        wall.push_back(time.wall);
        processor.push_back(time.processor);
    }
    out() << what << ": " << percentiles(wall) << "; processor: " << percentiles(processor) << " ("
          << times.size() << " times)" << Qt::endl;
}

double residentMegabytes()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * 4096 / 1e6;
}

/// Milliseconds of one headless screenshot, negative when the browser cannot be run.
double chromiumTime(const QString& program, const QString& page, const QString& folder)
{
    QProcess browser;
    const QStringList arguments{u"--headless"_s,
                                u"--no-sandbox"_s,
                                u"--disable-gpu"_s,
                                u"--disable-quic"_s,
                                u"--no-first-run"_s,
                                u"--disable-background-networking"_s,
                                u"--disable-component-update"_s,
                                u"--disable-sync"_s,
                                u"--user-data-dir="_s + folder + u"/profile"_s,
                                u"--window-size=%1,%2"_s.arg(WindowSize.width()).arg(WindowSize.height()),
                                u"--screenshot="_s + folder + u"/shot.png"_s,
                                u"file://"_s + page};
    bool done = false;
    const double time = milliseconds([&] {
        browser.start(program, arguments);
        done = browser.waitForFinished(300000) && browser.exitCode() == 0;
    });
    return done ? time : -1;
}

void press(vmk::DisplayView& view, const QString& text)
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, text);
    QApplication::sendEvent(&view, &event);
    view.viewport()->repaint();
}

std::vector<Duration> keyTimes(vmk::DisplayView& view, vmk::Position place, int keys)
{
    view.document().setSelection(place, place);
    view.viewport()->repaint();
    std::vector<Duration> times;
    for (int i = 0; i < keys; ++i)
        times.push_back(timeOf([&] { press(view, i % 6 == 5 ? u" "_s : u"x"_s); }));
    return times;
}

double openingTime(vmk::DisplayView& view, const QString& page)
{
    bool painted = false;
    view.events.ondocumentcomplete = [&](const QString&) {
        view.setDesignMode(u"On"_s);
        view.viewport()->repaint();
        painted = true;
    };
    return milliseconds([&] {
        view.Navigate(page);
        while (!painted)
            QApplication::processEvents();
    });
}

void compareOpening(const QString& page, const QString& browser)
{
    std::vector<double> times;
    for (int i = 0; i < 5; ++i) {
        vmk::DisplayView view;
        view.resize(WindowSize);
        view.show();
        QApplication::processEvents();
        times.push_back(openingTime(view, page));
    }
    const double own = percentile(times, 0.5);
    out() << "opening, file to first painted editable screen: " << QString::number(own, 'f', 0) << " ms"
          << Qt::endl;

    QTemporaryDir folder;
    QFile empty(folder.filePath(u"empty.htm"_s));
    if (!empty.open(QIODevice::WriteOnly))
        return;
    empty.write("<HTML><BODY></BODY></HTML>");
    empty.close();
    static_cast<void>(chromiumTime(browser, empty.fileName(), folder.path()));
    const double start = chromiumTime(browser, empty.fileName(), folder.path());
    const double whole = chromiumTime(browser, page, folder.path());
    if (start < 0 || whole < 0) {
        out() << "no Chromium to compare with" << Qt::endl;
        return;
    }
    out() << "Chromium, the same page: " << QString::number(whole - start, 'f', 0)
          << " ms above its start of " << QString::number(start, 'f', 0)
          << " ms; ratio 1 : " << QString::number((whole - start) / own, 'f', 1) << Qt::endl;
}

void measureWork(TimedApplication& app, const QString& page)
{
    vmk::DisplayView view;
    view.resize(WindowSize);
    view.show();
    QApplication::processEvents();
    const double empty = residentMegabytes();
    openingTime(view, page);
    out() << "memory above an empty window: " << QString::number(residentMegabytes() - empty, 'f', 0)
          << " MB opened" << Qt::flush;

    // Jumps first, while most lines are not measured yet.
    std::mt19937 random(1);
    std::vector<Duration> jumps;
    for (int i = 0; i < Jumps; ++i) {
        const int place = int(random() % unsigned(view.scrollHeight()));
        jumps.push_back(timeOf([&] {
            view.scroll(0, place);
            view.viewport()->repaint();
        }));
    }
    app.watched = &view;
    app.slices.clear();
    QElapsedTimer idle;
    idle.start();
    while (!view.isMeasured())
        QApplication::processEvents();
    const qint64 idleTime = idle.elapsed();
    out() << ", " << QString::number(residentMegabytes() - empty, 'f', 0) << " MB all measured" << Qt::endl;
    printTimes(u"first paint after a jump"_s, jumps);
    printTimes(u"idle slice"_s, app.slices);
    out() << "all lines measured after " << idleTime << " ms of idle time" << Qt::endl;

    const int last = view.document().lineCount() - 1;
    printTimes(u"key at the start"_s, keyTimes(view, {0, 3}, Keys));
    printTimes(u"key in the middle"_s, keyTimes(view, {last / 2, 3}, Keys));
    printTimes(u"key at the end"_s, keyTimes(view, view.document().end(), Keys));
    printTimes(u"idle slice after the keys"_s, app.slices);
    app.watched = nullptr;
}

void measureLongLine(TimedApplication& app)
{
    std::mt19937 random(2);
    QByteArray text;
    while (text.size() < 1000000)
        text += QByteArray(1 + int(random() % 10), char('a' + int(random() % 26))) + ' ';
    vmk::DisplayView view;
    view.resize(WindowSize);
    view.show();
    view.setPage("<HTML><BODY STYLE=\"font-family:DejaVu Serif; font-size:12pt\"><DIV>first</DIV><DIV>" + text
                 + "</DIV></BODY></HTML>");
    view.setDesignMode(u"On"_s);
    app.watched = &view;
    app.slices.clear();
    for (const int offset : {0, 500000, 999000}) {
        printTimes(u"key in a line of 1 MB, at %1"_s.arg(offset), keyTimes(view, {1, offset}, Keys));
        while (!view.isMeasured())
            QApplication::processEvents();
    }
    printTimes(u"idle slice in that line"_s, app.slices);
    app.watched = nullptr;
}

void measureReplacing()
{
    constexpr int Hits = 50000;
    vmk::DisplayView view;
    view.resize(WindowSize);
    view.show();
    view.setPage("<HTML><BODY>" + QByteArray("<DIV>some text with one hit in it</DIV>").repeated(Hits)
                 + "</BODY></HTML>");
    view.setDesignMode(u"On"_s);
    view.viewport()->repaint();
    int found = 0;
    const double replaced = milliseconds([&] {
        vmk::TextRange range = vmk::page::createTextRange(view.document());
        range.collapse();
        while (range.findText(u"hit"_s)) {
            range.setText(u"match"_s);
            ++found;
        }
        view.viewport()->repaint();
    });
    int undone = 0;
    const double back = milliseconds([&] {
        while (view.document().undo())
            ++undone;
        view.viewport()->repaint();
    });
    out() << found << " hits replaced one by one before the eye: " << QString::number(replaced, 'f', 0)
          << " ms; " << undone << " steps undone: " << QString::number(back, 'f', 0) << " ms" << Qt::endl;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && !qEnvironmentVariableIsSet("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    TimedApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(u"page"_s, u"The page file."_s);
    parser.addOption({u"chromium"_s, u"The browser to compare with."_s, u"program"_s, u"chromium"_s});
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    const QString page = QFileInfo(parser.positionalArguments().constFirst()).absoluteFilePath();
    measureWork(app, page);
    measureLongLine(app);
    measureReplacing();
    compareOpening(page, parser.value(u"chromium"_s));
    return 0;
}
