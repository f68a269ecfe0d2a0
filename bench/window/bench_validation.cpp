// Compares the validation of the window, from the key F8 to the painted selection, with
// `xmllint --stream --noout --schema` on the same book and schema, in turns in one run. Two books: one
// without an error, and one whose only error is at its end.
//
//   bench_validation [MEGABYTES]
//
// Prints wall time and processor time, which shows how much of a ratio is caused by the load of the
// machine. The first validation of the process is printed separately: it compiles the schema.

#include "BookGenerator.h"
#include "Desktop.h"
#include "DisplayView.h"
#include "FbFunctions.h"
#include "FileOperations.h"
#include "Form1.h"
#include "InitGlobals.h"
#include "PanelBar.h"
#include "Settings.h"
#include "SettingsVariables.h"
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
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace vmk;

namespace {

constexpr double WantedRatio = 2.0;
constexpr int Runs = 9;
constexpr int PatienceMilliseconds = 60'000;

struct Measure
{
    double wall = 0; ///< milliseconds
    double processor = 0; ///< milliseconds, user and system
};

[[noreturn]] void Stop(const QString& reason)
{
    std::fprintf(stderr, "bench_validation: %s\n", qPrintable(reason));
    std::exit(2);
}

double ProcessorMilliseconds(int whose)
{
    rusage usage = {};
    getrusage(whose, &usage);
    const auto milliseconds
        = [](const timeval& time) { return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3; };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

Measure Time(int whose, const std::function<void()>& work)
{
    const double processor = ProcessorMilliseconds(whose);
    QElapsedTimer timer;
    timer.start();
    work();
    const double wall = double(timer.nsecsElapsed()) / 1e6;
    return {wall, ProcessorMilliseconds(whose) - processor};
}

Measure Middle(std::vector<Measure> measures)
{
    std::ranges::sort(measures, {}, &Measure::wall);
    return measures[measures.size() / 2];
}

void OpenBook(Form1& form, const QString& path)
{
    if (!LoadBook(path, false))
        Stop(u"the book cannot be loaded"_s);
    if (!QTest::qWaitFor([&] { return form.StatusMsg->panelText(1) == "document complete"_L1; },
                         PatienceMilliseconds))
        Stop(u"the book is not complete: "_s + form.StatusMsg->panelText(1));
    // The display finishes its idle measurements before a user presses a key.
    if (!QTest::qWaitFor(
            [&] { return form.HTMLread->designMode() == "On"_L1 && form.HTMLread->isMeasured(); },
            PatienceMilliseconds))
        Stop(u"the display does not come to rest"_s);
    form.HTMLread->setFocus();
}

/// One validation from the key press; returns its time and checks its result.
Measure PressF8(Form1& form, const QString& outcome)
{
    DisplayDocument& document = form.HTMLread->document();
    document.setSelection({}, {});
    form.HTMLread->scroll(0, 0);
    form.HTMLread->viewport()->repaint();
    const Measure measure = Time(RUSAGE_SELF, [&form] {
        QTest::keyClick(form.HTMLread, Qt::Key_F8);
        form.HTMLread->viewport()->repaint();
    });
    if (!form.StatusMsg->panelText(1).startsWith(outcome))
        Stop(u"another outcome: "_s + form.StatusMsg->panelText(1));
    return measure;
}

Measure RunXmllint(const QString& book, int outcome)
{
    return Time(RUSAGE_CHILDREN, [&] {
        QProcess xmllint;
        xmllint.start(u"xmllint"_s, {u"--stream"_s, u"--noout"_s, u"--schema"_s, SchemaFile, book});
        if (!xmllint.waitForFinished(PatienceMilliseconds) || xmllint.exitCode() != outcome)
            Stop(u"xmllint failed: "_s + QString::fromUtf8(xmllint.readAllStandardError()));
    });
}

/// Prints a row; true if the ratio meets the goal.
bool Compare(Form1& form, const QString& book, bool valid)
{
    OpenBook(form, book);
    const QString outcome = valid ? u"No errors (against schema)"_s : u"Error against schema. "_s;
    constexpr int XmllintInvalid = 3;
    const Measure first = PressF8(form, outcome);
    std::vector<Measure> own;
    std::vector<Measure> xmllint;
    for (int run = 0; run < Runs; ++run) {
        own.push_back(PressF8(form, outcome));
        xmllint.push_back(RunXmllint(book, valid ? 0 : XmllintInvalid));
    }
    const Measure f8 = Middle(own);
    const Measure lint = Middle(xmllint);
    std::printf("%s: F8 %.0f ms (processor %.0f; the first %.0f), xmllint %.0f ms (processor %.0f)\n",
                valid ? "no error" : "error at the end", f8.wall, f8.processor, first.wall, lint.wall,
                lint.processor);
    std::printf("  F8 / xmllint: wall time %.2f (wanted: at most %.1f), processor time %.2f\n",
                f8.wall / lint.wall, WantedRatio, f8.processor / lint.processor);
    std::fflush(stdout);
    return f8.wall <= WantedRatio * lint.wall;
}

QString WriteBook(const QString& path, const std::string& text)
{
    QFile file(path);
    const auto size = qsizetype(text.size());
    if (!file.open(QIODevice::WriteOnly) || file.write(text.data(), size) != size)
        Stop(u"cannot write "_s + path);
    return path;
}

bool Measured(const QString& folder, size_t bookSize)
{
    FileOperation(CopyFolderMode, QStringLiteral(VMK_BIN_DIR "/VMK Office"), folder + u"/VMK Office"_s);
    InitGlobals({folder + u"/vellumark"_s, folder + u"/user"_s});
    ReadSettings(true);

    std::string text = MakeBook({.size = bookSize, .pictures = false});
    const QString validBook = WriteBook(folder + u"/valid.fb2"_s, text);
    text.insert(text.rfind("</section>"), "<chapter/>");
    const QString wrongBook = WriteBook(folder + u"/wrong.fb2"_s, text);
    std::printf("book %.1f MB; middle of %d runs\n", double(text.size()) / 1e6, Runs);

    Form1 form;
    form.Load();
    const bool validIsFast = Compare(form, validBook, true);
    const bool wrongIsFast = Compare(form, wrongBook, false);
    return validIsFast && wrongIsFast;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && !qEnvironmentVariableIsSet("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    FillWidgetSeams();
    // Sounds play after the result, and their time does not count.
    const SeamGuard silence(SoundSeam(), [](const QString&) {});
    constexpr size_t Megabyte = 1'000'000;
    const size_t megabytes = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 15;
    const QTemporaryDir folder;
    return Measured(folder.path(), megabytes * Megabyte) ? 0 : 1;
}
