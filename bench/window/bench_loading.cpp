// Measures the loading of large books in the window: the time from the call to the first painted lines, the
// time until all lines are loaded, keys that are typed meanwhile, and the memory. In the same run, xmllint
// lays out the same book.
//
//   bench_loading [MEGABYTES...]
//
// Without arguments, 15 and 100. Prints wall time and processor time, which shows how much of a time is
// caused by the load of the machine.

#include "BookGenerator.h"
#include "Boxes.h"
#include "Desktop.h"
#include "DisplayView.h"
#include "FbFunctions.h"
#include "FileOperations.h"
#include "Form1.h"
#include "InitGlobals.h"
#include "Settings.h"
#include "WidgetSeams.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
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
    std::vector<double> first, whole, used, keys;
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
    QElapsedTimer key;
    while (!view.document().isComplete() && timer.elapsed() < PatienceMilliseconds) {
        QCoreApplication::processEvents();
        if (view.designMode() != "On"_L1)
            continue;
        key.start();
        QTest::keyClick(&view, Qt::Key_A);
        times.keys.push_back(Milliseconds(key));
    }
    times.whole.push_back(Milliseconds(timer));
    times.used.push_back(Processor(RUSAGE_SELF) - before);
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

void Measure(Form1& form, const QString& folder, int megabytes)
{
    BookPlan plan;
    plan.size = std::size_t(megabytes) * 1'000'000;
    plan.pictures = plan.movable = false;
    const std::string text = MakeBook(plan);
    const QString book = folder + u"/book.fb2"_s;
    if (!WriteFileBytes(book, text))
        Stop(u"the book cannot be written"_s);

    const double memory = Memory("VmRSS");
    Times times;
    for (int i = 0; i < Runs; ++i)
        LoadOnce(form, book, times);
    const double size = double(text.size()) / 1048576;
    const auto [wall, used] = LayOutByXmllint(book);
    std::printf("%d MB: first lines %.0f ms, all lines %.0f ms (processor %.0f ms)\n", megabytes,
                Middle(times.first), Middle(times.whole), Middle(times.used));
    std::printf(
        "  xmllint --format: %.0f ms (processor %.0f ms); ratio of the first lines %.2f, of all %.2f\n", wall,
        used, Middle(times.first) / wall, Middle(times.whole) / wall);
    std::printf("  memory: %.0f MB, %.1f times the book\n", Memory("VmRSS") - memory,
                (Memory("VmRSS") - memory) / size);
    if (!times.keys.empty()) {
        std::ranges::sort(times.keys);
        std::printf("  %zu keys while loading: median %.2f ms, 99%% %.2f ms, longest %.2f ms\n",
                    times.keys.size(), times.keys[times.keys.size() / 2],
                    times.keys[times.keys.size() * 99 / 100], times.keys.back());
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
    for (int i = 1; i < count; ++i)
        sizes.push_back(std::atoi(arguments[i]));
    if (sizes.empty())
        sizes = {15, 100};
    for (const int size : sizes)
        Measure(form, folder.path(), std::clamp(size, 1, 400));
    return 0;
}
