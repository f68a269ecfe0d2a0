// Measures the loading of large books in the window: the time from the call to the first painted lines, the
// time until all lines are loaded, keys that are typed at a constant rate from the first lines on, and the
// memory. In the same run, xmllint lays out the same book.
//
//   bench_loading [--pictures] [MEGABYTES...]
//
// Without numbers, 15 and 100. With `--pictures`, an eighth of a book is pictures. Prints wall time and
// processor time, which shows how much of a time is caused by the load of the machine.
//
// The time of a key is that from the moment when it is due until its character is painted: it includes what
// else the event loop does then, such as a slice of the load, or the beginning of the journal. A pass is one
// turn of the event loop with the keys that are due then; its processor time is that of the user's thread
// alone. The last line is the time from the first key in a complete book until the journal with this key is
// on the disk.

#include "BookGenerator.h"
#include "Boxes.h"
#include "Desktop.h"
#include "DisplayView.h"
#include "FbFunctions.h"
#include "FileOperations.h"
#include "Form1.h"
#include "InitGlobals.h"
#include "SessionRecorder.h"
#include "Settings.h"
#include "UnsavedText.h"
#include "WidgetSeams.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <vector>

using namespace Qt::StringLiterals;
using namespace vmk;

namespace {

constexpr int Runs = 5;
constexpr int PatienceMilliseconds = 60'000;

[[noreturn]] void Stop(const QString& reason)
{
    std::fprintf(stderr, "bench_loading: %s\n", qPrintable(reason));
    std::exit(2);
}

double Processor(int whose)
{
    rusage usage = {};
    getrusage(whose, &usage);
    const auto milliseconds
        = [](const timeval& time) { return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3; };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

/// Of the calling thread, in milliseconds.
double ThreadProcessor()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

double Milliseconds(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

double Middle(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// A value of the process in megabytes, such as "VmRSS".
double Memory(const QByteArray& name)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf(name + ':');
    return at < 0 ? 0 : text.mid(at + name.size() + 1, 20).simplified().split(' ')[0].toDouble() / 1024;
}

/// Notes when the view has painted the first lines of a page.
class PaintWatch final : public QObject
{
public:
    explicit PaintWatch(DisplayView& watched)
        : view(watched)
    {
        view.viewport()->installEventFilter(this);
    }
    bool painted = false;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        // The lines of a book are there as soon as its page is; they are painted by this event.
        painted = painted || (event->type() == QEvent::Paint && view.document().loadedLineCount() > 1);
        return false;
    }

private:
    DisplayView& view;
};

struct Times
{
    std::vector<double> first, whole, used, keys, passes;
    double firstKey = 0; ///< the longest of all runs
};

/// Types at a constant rate until some time after the load.
class Typist
{
public:
    Typist(DisplayView& display, Times& results)
        : view(display)
        , times(results)
    {
        timer.start();
    }

    /// Processes events and types the keys that are due.
    void pass()
    {
        const double before = ThreadProcessor();
        QCoreApplication::processEvents();
        type();
        times.passes.push_back(ThreadProcessor() - before);
    }
    [[nodiscard]] double firstTime() const { return first; }

private:
    static constexpr double Interval = 20;

    void type()
    {
        if (view.designMode() != "On"_L1)
            return;
        if (due == 0)
            due = Milliseconds(timer);
        for (; Milliseconds(timer) >= due; due += Interval) {
            QTest::keyClick(&view, Qt::Key_A);
            view.viewport()->repaint();
            const double time = Milliseconds(timer) - due;
            if (isFirst)
                first = time;
            isFirst = false;
            times.keys.push_back(time);
        }
    }

    DisplayView& view;
    Times& times;
    QElapsedTimer timer;
    double due = 0;
    double first = 0;
    bool isFirst = true;
};

void LoadOnce(Form1& form, const QString& book, Times& times)
{
    DisplayView& view = *form.HTMLread;
    view.setPage("<HTML><BODY></BODY></HTML>");
    QTest::qWait(50);
    PaintWatch watch(view);
    const double before = Processor(RUSAGE_SELF);
    QElapsedTimer timer;
    timer.start();
    if (!LoadBook(book, false))
        Stop(u"the book cannot be loaded"_s);
    while (!watch.painted && timer.elapsed() < PatienceMilliseconds)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    times.first.push_back(Milliseconds(timer));
    Typist typist(view, times);
    while (!view.document().isComplete() && timer.elapsed() < PatienceMilliseconds)
        typist.pass();
    times.whole.push_back(Milliseconds(timer));
    times.used.push_back(Processor(RUSAGE_SELF) - before);
    // The journal begins now, and the page is measured.
    constexpr int After = 1'500; // milliseconds
    for (const auto end = timer.elapsed() + After; timer.elapsed() < end;)
        typist.pass();
    times.firstKey = std::max(times.firstKey, typist.firstTime());
}

/// Returns the time from the first key until its journal is on the disk.
double TimeUntilRecorded(Form1& form, const QString& book)
{
    DisplayView& view = *form.HTMLread;
    const auto journals
        = [] { return QDir(RecoveryFolder()).entryList({u"*.journal"_s}, QDir::Files).size(); };
    if (!LoadBook(book, false))
        Stop(u"the book cannot be loaded"_s);
    if (!QTest::qWaitFor([&] { return view.isEditable() && view.document().isComplete(); },
                         PatienceMilliseconds))
        Stop(u"the book does not become complete"_s);
    Recorder()->waitUntilWritten();
    const qsizetype before = journals(); // of the runs before
    QTest::keyClick(&view, Qt::Key_A);
    QElapsedTimer timer;
    for (timer.start(); journals() == before && timer.elapsed() < PatienceMilliseconds;)
        QCoreApplication::processEvents();
    return Milliseconds(timer);
}

/// Median times of xmllint, wall and processor.
std::pair<double, double> LayOutByXmllint(const QString& book)
{
    std::vector<double> wall;
    std::vector<double> used;
    for (int i = 0; i < Runs; ++i) {
        const double before = Processor(RUSAGE_CHILDREN);
        QElapsedTimer timer;
        timer.start();
        QProcess lint;
        lint.setStandardOutputFile(QProcess::nullDevice());
        lint.start(u"xmllint"_s, {u"--format"_s, book});
        if (!lint.waitForFinished(PatienceMilliseconds))
            Stop(u"xmllint does not run"_s);
        wall.push_back(Milliseconds(timer));
        used.push_back(Processor(RUSAGE_CHILDREN) - before);
    }
    return {Middle(wall), Middle(used)};
}

void Measure(Form1& form, const QString& folder, int megabytes, bool pictures)
{
    BookPlan plan;
    plan.size = std::size_t(megabytes) * 1'000'000;
    plan.pictures = pictures;
    plan.movable = false;
    const std::string text = MakeBook(plan);
    const QString book = folder + u"/book.fb2"_s;
    if (!WriteFileBytes(book, text))
        Stop(u"the book cannot be written"_s);

    const double memory = Memory("VmRSS");
    Times times;
    for (int i = 0; i < Runs; ++i)
        LoadOnce(form, book, times);
    const double memoryAfter = Memory("VmRSS");
    const double recorded = TimeUntilRecorded(form, book);
    const double size = double(text.size()) / 1048576;
    const auto [wall, used] = LayOutByXmllint(book);
    std::printf("%d MB: first lines %.0f ms, all lines %.0f ms (processor %.0f ms)\n", megabytes,
                Middle(times.first), Middle(times.whole), Middle(times.used));
    std::printf(
        "  xmllint --format: %.0f ms (processor %.0f ms); ratio of the first lines %.2f, of all %.2f\n", wall,
        used, Middle(times.first) / wall, Middle(times.whole) / wall);
    std::printf("  memory: %.0f MB, %.1f times the book\n", memoryAfter - memory,
                (memoryAfter - memory) / size);
    if (!times.keys.empty()) {
        std::ranges::sort(times.keys);
        std::printf("  %zu keys from the first lines on: median %.2f ms, 99%% %.2f ms, longest %.2f ms; the "
                    "first one at most %.2f ms\n",
                    times.keys.size(), times.keys[times.keys.size() / 2],
                    times.keys[times.keys.size() * 99 / 100], times.keys.back(), times.firstKey);
        std::ranges::sort(times.passes);
        std::printf("  processor time of the passes: 99%% %.2f ms, longest %.2f ms\n",
                    times.passes[times.passes.size() * 99 / 100], times.passes.back());
        std::printf("  first key to its journal on the disk: %.0f ms\n", recorded);
    }
}

} // namespace

int main(int count, char** arguments)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    const QTemporaryDir folder;
    FillWidgetSeams();
    const SeamGuard<void(const QString&)> silence(SoundSeam(), [](const QString&) {});
    // A question of the loading would wait for an answer.
    const SeamGuard<bool(BoxKind, const QString&, const QString&)> answer(
        BoxSeam(), [](BoxKind, const QString&, const QString&) { return true; });
    FileOperation(CopyFolderMode, QStringLiteral(VMK_BIN_DIR "/VMK Office"),
                  folder.filePath(u"VMK Office"_s));
    InitGlobals({folder.filePath(u"vellumark"_s), folder.filePath(u"user"_s)});
    ReadSettings(true);
    Form1 form;
    form.Load();
    QTest::qWait(200);
    std::vector<int> sizes;
    bool pictures = false;
    for (int i = 1; i < count; ++i) {
        if (std::string_view(arguments[i]) == "--pictures")
            pictures = true;
        else
            sizes.push_back(std::atoi(arguments[i]));
    }
    if (sizes.empty())
        sizes = {15, 100};
    for (const int size : sizes)
        Measure(form, folder.path(), std::clamp(size, 1, 400), pictures);
    return 0;
}
