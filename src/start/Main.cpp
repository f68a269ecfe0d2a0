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

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

using namespace Qt::StringLiterals;

namespace {

/// The program reports in its windows. Messages of the toolkit are for developers, who enable them with the
/// environment variable. Only a fatal message is always written.
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
            std::fputs(hints.c_str(), stderr);
    });
}

} // namespace

int main(int argc, char* argv[])
{
    vmk::HoldStandardHandles();
    // An edited book must survive a failed save and a closed terminal.
    vmk::SurviveFileSizeLimit();
    vmk::SurviveBrokenPipes();
    KeepToolkitHints();
    QApplication::setApplicationName(u"Vellumark"_s);
    QApplication::setDesktopFileName(u"vellumark"_s);
    const QApplication application(argc, argv);
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
