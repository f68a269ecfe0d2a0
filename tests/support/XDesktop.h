#pragma once

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <QThread>

#include <functional>

#include <csignal>
#include <sys/prctl.h>

namespace vmk {

/// A virtual X display for one test, with functions for the user's actions. It ends with the object.
class XDesktop
{
public:
    /// True if the required programs are installed.
    [[nodiscard]] static bool IsPossible()
    {
        return !QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty()
            && !QStandardPaths::findExecutable(QStringLiteral("xdotool")).isEmpty();
    }

    XDesktop()
    {
        // The server chooses a free number and writes it when it is ready. Without -noreset it would restart
        // after its last client and lose the next one.
        server.setChildProcessModifier(GoWithTheTest);
        server.start(QStringLiteral("Xvfb"),
                     {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                      QStringLiteral("0"), QStringLiteral("1024x768x24"), QStringLiteral("-nolisten"),
                      QStringLiteral("tcp"), QStringLiteral("-noreset")});
        QElapsedTimer timer;
        timer.start();
        while (!server.canReadLine() && timer.elapsed() < PatienceMilliseconds)
            server.waitForReadyRead(200);
        display = QStringLiteral(":") + QString::fromLatin1(server.readLine()).trimmed();
    }
    XDesktop(const XDesktop&) = delete;
    XDesktop& operator=(const XDesktop&) = delete;
    ~XDesktop()
    {
        server.terminate();
        server.waitForFinished(PatienceMilliseconds);
    }

    [[nodiscard]] bool isUp() const { return display.size() > 1; }

    [[nodiscard]] QProcessEnvironment environment() const
    {
        QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
        result.insert(QStringLiteral("DISPLAY"), display);
        result.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        return result;
    }

    /// Identifiers of the visible windows with a caption that matches.
    [[nodiscard]] QStringList windows(const QString& captionPattern) const
    {
        const QString found
            = QString::fromUtf8(hand({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                      QStringLiteral("--name"), captionPattern}));
        return found.split(u'\n', Qt::SkipEmptyParts);
    }

    /// Waits for such a window; returns its identifier, or an empty text if none appears.
    [[nodiscard]] QString waitForWindow(const QString& captionPattern) const
    {
        QString found;
        WaitUntil([&] { return !(found = windows(captionPattern).value(0)).isEmpty(); });
        return found;
    }

    /// Sends a key, by its X name, to a window; false if the window does not accept the focus in time.
    [[nodiscard]] bool press(const QString& window, const QString& key) const
    {
        // A new window may refuse the focus at first.
        const bool taken = WaitUntil([&] {
            hand({QStringLiteral("windowfocus"), window});
            return hand({QStringLiteral("getwindowfocus")}).trimmed() == window.toLatin1();
        });
        if (taken)
            hand({QStringLiteral("key"), key});
        return taken;
    }

    /// Called in a new process: it ends with the test, even if the test crashes.
    static void GoWithTheTest() { ::prctl(PR_SET_PDEATHSIG, SIGTERM); }

    /// False if the condition does not become true in time.
    static bool WaitUntil(const std::function<bool()>& condition)
    {
        QElapsedTimer timer;
        timer.start();
        while (!condition()) {
            if (timer.elapsed() > PatienceMilliseconds)
                return false;
            QThread::msleep(30);
        }
        return true;
    }

    static constexpr int PatienceMilliseconds = 60000;

private:
    /// Runs xdotool and returns its output.
    QByteArray hand(const QStringList& arguments) const
    {
        QProcess tool;
        tool.setProcessEnvironment(environment());
        tool.start(QStringLiteral("xdotool"), arguments);
        // xdotool can block forever if a window closes meanwhile.
        constexpr int ToolPatienceMilliseconds = 20000;
        if (!tool.waitForFinished(ToolPatienceMilliseconds)) {
            tool.kill();
            tool.waitForFinished();
        }
        return tool.readAllStandardOutput();
    }

    QProcess server;
    QString display;
};

} // namespace vmk
