#include "CommLineInfoF.h"
#include "CommandText.h"
#include "EndSignals.h"
#include "FileNames.h"
#include "Form1.h"
#include "MainWindowSeams.h"
#include "MemoryGuard.h"
#include "ProcessFiles.h"
#include "Start.h"
#include "UnsavedText.h"
#include "WidgetSeams.h"

#include <QApplication>
#include <QIcon>
#include <QSessionManager>
#include <QSocketNotifier>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>
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

/// Memory may run out in any event, including the slices of work of a timer.
class GuardedApplication : public QApplication
{
public:
    using QApplication::QApplication;
    bool notify(QObject* receiver, QEvent* event) override
    {
        return vmk::GuardMemory([&] { return QApplication::notify(receiver, event); });
    }
};

/// A signal ends the program as closing the window does. The end of the desktop session keeps the unsaved
/// text; the desktop then closes the window, or not if another program cancels the end.
/// \param isEnded  set at a signal: one that arrives at a question of the start leaves only the loop of its
/// box
void EndWithoutLoss(QApplication& application, const std::unique_ptr<vmk::Form1>& mainWindow, bool& isEnded)
{
    const auto end = [&mainWindow, &isEnded] {
        isEnded = true;
        // Without memory for the text, which its journal has, the program ends without a question.
        try {
            vmk::KeepUnsavedText();
            if (mainWindow)
                mainWindow->close();
        } catch (const std::bad_alloc&) {
        }
        QApplication::exit();
    };
    const int signalPipe = vmk::WatchEndSignals();
    if (signalPipe >= 0) {
        auto* notifier = new QSocketNotifier(signalPipe, QSocketNotifier::Read, &application);
        QObject::connect(notifier, &QSocketNotifier::activated, &application, [notifier, end] {
            // One signal is enough.
            notifier->setEnabled(false);
            end();
        });
    }
    QObject::connect(
        &application, &QGuiApplication::commitDataRequest, &application, [] { vmk::KeepUnsavedText(); },
        Qt::DirectConnection);
    QObject::connect(
        &application, &QGuiApplication::saveStateRequest, &application,
        [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); },
        Qt::DirectConnection);
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
    GuardedApplication application(argc, argv);
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

    bool isEnded = false;
    EndWithoutLoss(application, mainWindow, isEnded);

    // The toolkit has removed its own options from them. Its list of arguments replaces the bytes of a name
    // that are not UTF-8.
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(vmk::DecodeFileName(argv[i]));
    const QString commandText = vmk::CommandText(arguments);
    const int result = vmk::RunStart(commandText) && !isEnded ? QApplication::exec() : 0;
    vmk::CommLineInfoF::Unload();
    return result;
}
