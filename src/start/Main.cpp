#include "CommLineInfoF.h"
#include "CommandText.h"
#include "FileNames.h"
#include "Form1.h"
#include "MainWindowSeams.h"
#include "ProcessFiles.h"
#include "Start.h"
#include "WidgetSeams.h"

#include <QApplication>
#include <QIcon>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

using namespace Qt::StringLiterals;

namespace {

/// The exit status of a call that the program refuses.
constexpr int Refused = 2;

constexpr const char* Usage = "usage: vellumark [BOOK [-V | -L]]\n"
                              "       vellumark --version | --help\n\n"
                              "  BOOK     opens the book\n"
                              "  BOOK -V  validates the book; opens it only if it has an error\n"
                              "  BOOK -L  opens the book\n\n"
                              "See also: vmk --help\n";

/// Prints the version or the usage if the only argument requests it; these need no display.
bool AnswerWithoutDisplay(int argc, char* argv[])
{
    if (argc != 2)
        return false;
    const std::string_view argument(argv[1]);
    if (argument == "--version")
        std::printf("vellumark %s\n", VMK_VERSION);
    else if (argument == "--help" || argument == "-h")
        std::fputs(Usage, stdout);
    else
        return false;
    return true;
}

/// Whether windows can be opened: the toolkit ends the program with a fatal message if not.
std::atomic<bool> hasDisplay = false;

/// Ends the program at a fatal message of the toolkit.
void EndAtFatalMessage(const std::string& hints)
{
    if (hasDisplay) {
        std::fputs(hints.c_str(), stderr);
        return;
    }
    std::fputs("vellumark: no display: the editor needs X11 or Wayland (DISPLAY or WAYLAND_DISPLAY); vmk "
               "needs none\n",
               stderr);
    std::_Exit(Refused);
}

/// The program reports in its windows. Messages of the toolkit are for developers, who enable them with the
/// environment variable. Only a fatal message is always reported.
void KeepToolkitHints()
{
    if (qEnvironmentVariableIsSet("VELLUMARK_HINTS"))
        return;
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        static std::mutex mutex;
        static std::string hints;
        const std::lock_guard lock(mutex);
        hints += "vellumark: " + text.toStdString() + "\n";
        if (type == QtFatalMsg)
            EndAtFatalMessage(hints);
    });
}

} // namespace

int main(int argc, char* argv[])
{
    vmk::HoldStandardHandles();
    if (AnswerWithoutDisplay(argc, argv))
        return std::fflush(stdout) == 0 ? 0 : Refused;
    // An edited book must survive a failed save and a closed terminal.
    vmk::SurviveFileSizeLimit();
    vmk::SurviveBrokenPipes();
    KeepToolkitHints();
    QApplication::setApplicationName(u"Vellumark"_s);
    QApplication::setDesktopFileName(u"vellumark"_s);
    const QApplication application(argc, argv);
    hasDisplay = true;
    QApplication::setWindowIcon(QIcon(u":/icons/vellumark.svg"_s));
    // Closing the main window ends the program, even if other windows are open; closing a box does not.
    QApplication::setQuitOnLastWindowClosed(false);
    vmk::FillWidgetSeams();

    std::unique_ptr<vmk::Form1> mainWindow;
    vmk::OpenMainWindowSeam().Fill([&mainWindow] {
        if (mainWindow)
            return;
        mainWindow = std::make_unique<vmk::Form1>();
        mainWindow->Load();
    });

    // The toolkit has removed its own options from them. Its list of arguments replaces the bytes of a name
    // that are not UTF-8.
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(vmk::DecodeFileName(argv[i]));
    const QString commandText = vmk::CommandText(arguments);
    const int result = vmk::RunStart(commandText) ? QApplication::exec() : 0;
    vmk::CommLineInfoF::Unload();
    return result;
}
