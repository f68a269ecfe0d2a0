// Measures the preview of the settings dialog: from a key press in a field to the painted preview.
//
//   bench_preview
//
// Prints the middle and the largest time, and the ratio to `xmllint --format` on the sample book, in turns in
// one run.

#include "Desktop.h"
#include "DisplayView.h"
#include "FileOperations.h"
#include "Form1.h"
#include "InitGlobals.h"
#include "PreviewF.h"
#include "PreviewPage.h"
#include "Settings.h"
#include "SettingsF.h"
#include "WidgetSeams.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace vmk;

namespace {

constexpr double WantedMilliseconds = 50;
constexpr int Runs = 41;
constexpr int PatienceMilliseconds = 30'000;

[[noreturn]] void Stop(const QString& reason)
{
    std::fprintf(stderr, "bench_preview: %s\n", qPrintable(reason));
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

/// Types a digit at the end of the field and waits for the preview with the new value.
double Change(SettingsF& settings, int run)
{
    constexpr int Digits = 10;
    settings.LeftMarginT->setText(u"1"_s);
    DisplayView& view = *PreviewF::Existing()->FbPreview;
    view.viewport()->repaint();
    const QString expected = u"margin-left:1%1"_s.arg(run % Digits);
    const double time = Milliseconds([&] {
        QTest::keyClick(settings.LeftMarginT, Qt::Key(Qt::Key_0 + run % Digits));
        const bool isShown = QTest::qWaitFor(
            [&] { return QString::fromUtf8(view.document().savePage()).contains(expected); },
            PatienceMilliseconds);
        if (!isShown)
            Stop(u"the preview does not show the change"_s);
        view.viewport()->repaint();
    });
    return time;
}

double RunXmllint()
{
    return Milliseconds([] {
        QProcess xmllint;
        xmllint.start(u"xmllint"_s, {u"--format"_s, SampleBookFile()});
        if (!xmllint.waitForFinished(PatienceMilliseconds) || xmllint.exitCode() != 0)
            Stop(u"xmllint failed"_s);
    });
}

bool Measured(const QString& folder)
{
    FileOperation(CopyFolderMode, QStringLiteral(VMK_BIN_DIR "/VMK Office"), folder + u"/VMK Office"_s);
    InitGlobals({folder + u"/vellumark"_s, folder + u"/user"_s});
    ReadSettings(true);
    Form1 form;
    form.Load();
    SettingsF::Show(form);
    SettingsF& settings = *SettingsF::Existing();
    if (!QTest::qWaitFor([&] { return settings.SettingsLoading == 0; }, PatienceMilliseconds))
        Stop(u"the dialog is not active"_s);
    settings.PreviewB->click();
    if (!PreviewF::Existing())
        Stop(u"there is no preview"_s);

    std::vector<double> own;
    std::vector<double> xmllint;
    for (int run = 0; run < Runs; ++run) {
        own.push_back(Change(settings, run));
        xmllint.push_back(RunXmllint());
    }
    SettingsF::Unload();
    const double middle = Middle(own);
    const double lint = Middle(xmllint);
    std::printf(
        "preview after a change: middle of %d runs %.1f ms, largest %.1f ms (at most %.0f ms wanted)\n", Runs,
        middle, std::ranges::max(own), WantedMilliseconds);
    std::printf("  preview / xmllint --format (%.1f ms): %.2f\n", lint, middle / lint);
    return middle <= WantedMilliseconds;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && !qEnvironmentVariableIsSet("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    FillWidgetSeams();
    const SeamGuard silence(SoundSeam(), [](const QString&) {});
    const QTemporaryDir folder;
    return Measured(folder.path()) ? 0 : 1;
}
