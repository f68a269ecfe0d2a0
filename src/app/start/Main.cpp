#include "CommLineInfoF.h"
#include "CommandText.h"
#include "Form1.h"
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

/// The program says what it has to say in its windows. Hints of the toolkit are for developers, who get them
/// by setting the environment variable. Only where the program cannot go on is all of it told.
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
    // An edited book must outlive a failed save, and a terminal that is gone.
    vmk::SurviveFileSizeLimit();
    vmk::SurviveBrokenPipes();
    KeepToolkitHints();
    QApplication::setApplicationName(u"Vellumark"_s);
    QApplication::setDesktopFileName(u"vellumark"_s);
    const QApplication application(argc, argv);
    QApplication::setWindowIcon(QIcon(u":/icons/vellumark.svg"_s));
    // The main window ends the program, whatever other windows stand open; a box on its own does not.
    QApplication::setQuitOnLastWindowClosed(false);
    vmk::FillWidgetSeams();

    std::unique_ptr<vmk::Form1> mainWindow;
    vmk::OpenMainWindowSeam().Fill([&mainWindow] {
        if (mainWindow)
            return;
        mainWindow = std::make_unique<vmk::Form1>();
        mainWindow->Load();
    });

    // The toolkit has taken its own options out of the arguments.
    const QString commandText = vmk::CommandText(QApplication::arguments().mid(1));
    const int result = vmk::RunStart(commandText) ? QApplication::exec() : 0;
    vmk::CommLineInfoF::Unload();
    return result;
}
