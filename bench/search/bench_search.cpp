// Measures find and replace through the real window, on a generated book, beside grep and perl on the page's
// text in the same run:
//
//   bench_search [MEGABYTES]
//
// Wall time of the middle of several runs; a run ends when the window is idle and painted again.

#include "BookGenerator.h"
#include "Boxes.h"
#include "Desktop.h"
#include "DisplayPage.h"
#include "DisplayView.h"
#include "FbFunctions.h"
#include "FileOperations.h"
#include "FindReplaceWbF.h"
#include "Form1.h"
#include "InitGlobals.h"
#include "PanelBar.h"
#include "SearchField.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "WidgetSeams.h"

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace vmk;

namespace {

constexpr int PatienceMilliseconds = 60'000;
constexpr int Runs = 5;

[[noreturn]] void Stop(const QString& reason)
{
    std::fprintf(stderr, "bench_search: %s\n", qPrintable(reason));
    std::exit(2);
}

double Milliseconds(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

double Middle(std::vector<double> times)
{
    std::ranges::sort(times);
    return times[times.size() / 2];
}

double RunProgram(const QString& program, const QStringList& arguments, const QString& input)
{
    return Milliseconds([&] {
        QProcess process;
        process.setStandardInputFile(input);
        process.setStandardOutputFile(QProcess::nullDevice());
        process.start(program, arguments);
        process.waitForFinished(PatienceMilliseconds);
    });
}

int MemoryMegabytes(const char* what)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(what))
            return int(line.split(':').last().trimmed().split(' ').first().toLongLong() / 1024);
    }
    return 0;
}

/// The peak counts from now on.
void ForgetPeakMemory()
{
    QFile reset(u"/proc/self/clear_refs"_s);
    if (reset.open(QIODevice::WriteOnly))
        reset.write("5");
}

/// The main window with a book and the find window.
class Bench
{
public:
    Bench()
    {
        form.Load();
        if (!QTest::qWaitFor([this] { return form.HTMLread->location() == EmptyPageFile; },
                             PatienceMilliseconds))
            Stop(u"the window does not open"_s);
    }

    void open(const QString& path)
    {
        if (!LoadBook(path, false))
            Stop(u"the book cannot be loaded"_s);
        const auto isReady = [this] {
            return form.StatusMsg->panelText(1) == "document complete"_L1
                && form.HTMLread->designMode() == "On"_L1 && form.HTMLread->isMeasured();
        };
        if (!QTest::qWaitFor(isReady, PatienceMilliseconds))
            Stop(u"the book is not complete"_s);
        FindReplaceWbF::Show(form);
        start();
    }
    [[nodiscard]] FindReplaceWbF& window() { return *FindReplaceWbF::Instance(); }
    [[nodiscard]] DisplayDocument& document() { return form.HTMLread->document(); }
    void start()
    {
        document().setSelection({}, {});
        settle();
        window().SelectionB->setChecked(false);
        window().BeginSearch(false);
    }
    void settle()
    {
        form.HTMLread->viewport()->repaint();
        QCoreApplication::processEvents();
    }
    /// From the click to idle.
    double press(QPushButton& button)
    {
        return Milliseconds([&] {
            button.click();
            settle();
        });
    }
    double undo()
    {
        return Milliseconds([&] {
            form.RunCommand(Command::Undo);
            settle();
        });
    }
    double replaceAll(const QString& text, const QString& replacement)
    {
        start();
        window().FindCB->Fill(text);
        window().ReplaceCB->Fill(replacement);
        return press(*window().ReplaceAllB);
    }
    [[nodiscard]] QString report() { return window().ReportL->text(); }

    Form1 form;
};

void WriteFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        Stop(u"cannot write "_s + path);
}

void MeasureFind(Bench& bench, const QString& page)
{
    const QString absent = u"no such text"_s;
    std::vector<double> own;
    std::vector<double> grep;
    for (int run = 0; run < Runs; ++run) {
        bench.start();
        bench.window().FindCB->Fill(absent);
        own.push_back(bench.press(*bench.window().FindB));
        grep.push_back(RunProgram(u"grep"_s, {u"-c"_s, u"-F"_s, absent}, page));
    }
    std::printf(
        "find a text that does not occur: %.0f ms (wanted: at most 100); grep -c -F: %.0f ms; ratio %.1f\n",
        Middle(own), Middle(grep), Middle(own) / Middle(grep));
}

void MeasurePlain(Bench& bench, const QString& text, bool mark)
{
    bench.window().MarkReplacedB->setChecked(mark);
    const double time = bench.replaceAll(text, u"replaced"_s);
    const QString report = bench.report();
    const double undone = bench.undo();
    bench.window().MarkReplacedB->setChecked(false);
    std::printf(
        "replace all%s: %.0f ms (wanted: at most %d), \"%s\"; undone in %.0f ms (wanted: at most 500)\n",
        mark ? " and mark" : "", time, mark ? 1500 : 1000, qPrintable(report), undone);
}

void MeasureRegExp(Bench& bench, const QString& page)
{
    bench.window().RegExpB->click();
    const double time = bench.replaceAll(u"(\\w+) (\\w+)"_s, u"$2-$1"_s);
    const QString report = bench.report();
    const double undone = bench.undo();
    bench.window().RegExpB->click();
    const double perl = RunProgram(
        u"perl"_s, {u"-CSD"_s, u"-0777"_s, u"-pe"_s, u"s/([A-Za-z0-9_]+) ([A-Za-z0-9_]+)/$2-$1/g"_s}, page);
    std::printf(
        "replace all by regular expression: %.0f ms, \"%s\"; perl: %.0f ms; ratio %.1f; undone in %.0f ms\n",
        time, qPrintable(report), perl, time / perl, undone);
}

void MeasureStop(Bench& bench, const QString& text)
{
    QElapsedTimer sincePress;
    QTimer stop;
    QObject::connect(&stop, &QTimer::timeout, &bench.form, [&] {
        if (!bench.window().isRunning() || sincePress.isValid())
            return;
        sincePress.start();
        bench.window().ReplaceAllB->click();
    });
    stop.start(30);
    bench.replaceAll(text, u"replaced"_s);
    stop.stop();
    if (!sincePress.isValid())
        std::printf("stop: the run had ended before\n");
    else
        std::printf("stop pressed in the middle: idle after %lld ms (wanted: at most 100), \"%s\"; undone in "
                    "%.0f ms\n",
                    static_cast<long long>(sincePress.elapsed()), qPrintable(bench.report()), bench.undo());
}

void MeasureLongLine(Bench& bench, const QString& folder)
{
    constexpr int Hits = 5'000;
    const QByteArray line = (QByteArray("hit ") + QByteArray(196, 'w') + ' ').repeated(Hits);
    const QString book = folder + u"/line.fb2"_s;
    WriteFile(book,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<FictionBook><body><section><p>" + line
                  + "</p></section></body></FictionBook>");
    bench.open(book);
    const double time = bench.replaceAll(u"hit"_s, u"replaced"_s);
    const QString report = bench.report();
    std::printf("5 000 hits in one line of 1 MB: %.0f ms (wanted: at most 500), \"%s\"; undone in %.0f ms\n",
                time, qPrintable(report), bench.undo());
}

void MeasureAll(const QString& folder, size_t bookSize)
{
    FileOperation(CopyFolderMode, QStringLiteral(VMK_BIN_DIR "/VMK Office"), folder + u"/VMK Office"_s);
    InitGlobals({folder + u"/vellumark"_s, folder + u"/user"_s});
    ReadSettings(true);
    const std::string book = MakeBook({.size = bookSize, .pictures = false});
    const QString path = folder + u"/book.fb2"_s;
    WriteFile(path, QByteArray::fromStdString(book));
    Bench bench;
    bench.open(path);
    const QString text = page::innerText(bench.document());
    const QString page = folder + u"/page.txt"_s;
    WriteFile(page, text.toUtf8());
    // A text with about as many hits as wanted.
    QString sought;
    qsizetype nearest = text.size();
    for (const QString& candidate : {u"<p>"_s, u"the"_s, u"and"_s, u"er"_s, u"th"_s, u"on"_s, u"he"_s}) {
        const qsizetype off = std::abs(text.count(candidate, Qt::CaseInsensitive) - 50'000);
        if (off < nearest) {
            nearest = off;
            sought = candidate;
        }
    }
    const int before = MemoryMegabytes("VmRSS");
    ForgetPeakMemory();
    std::printf("book %.1f MB, %d lines; replaced text \"%s\"\n", double(book.size()) / 1e6,
                bench.document().lineCount(), qPrintable(sought));
    MeasureFind(bench, page);
    MeasurePlain(bench, sought, false);
    MeasurePlain(bench, sought, true);
    MeasureRegExp(bench, page);
    MeasureStop(bench, sought);
    const int peak = MemoryMegabytes("VmHWM");
    std::printf(
        "memory: %d MB with the book open, at most %d MB: %.1f times the book more (wanted: at most 3)\n",
        before, peak, double(peak - before) * 1e6 / double(book.size()));
    MeasureLongLine(bench, folder);
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && !qEnvironmentVariableIsSet("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    FillWidgetSeams();
    const SeamGuard silence(SoundSeam(), [](const QString&) {});
    const SeamGuard noBeep(BeepSeam(), [] {});
    const SeamGuard yes(BoxSeam(), [](BoxKind, const QString& text, const QString&) {
        std::fprintf(stderr, "bench_search: %s\n", qPrintable(text));
        return true;
    });
    constexpr size_t Megabyte = 1'000'000;
    const size_t megabytes = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 15;
    const QTemporaryDir folder;
    MeasureAll(folder.path(), megabytes * Megabyte);
    return 0;
}
