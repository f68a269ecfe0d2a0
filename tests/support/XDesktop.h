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

/// A virtual X display of a test's own, gone afterwards, and the user's hands on it.
class XDesktop
{
public:
    /// Whether the programs that it takes are installed.
    [[nodiscard]] static bool IsPossible()
    {
        return !QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty()
            && !QStandardPaths::findExecutable(QStringLiteral("xdotool")).isEmpty();
    }

    XDesktop()
    {
        // It picks a free display and writes its number as soon as it can be reached. One that starts anew
        // whenever its last client leaves would lose the next.
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

    /// Waits for such a window; its identifier, or empty if none came.
    [[nodiscard]] QString waitForWindow(const QString& captionPattern) const
    {
        QString found;
        WaitUntil([&] { return !(found = windows(captionPattern).value(0)).isEmpty(); });
        return found;
    }

    /// Types a key, named as X names it, into a window; false if the window does not take the keys in time.
    [[nodiscard]] bool press(const QString& window, const QString& key) const
    {
        // One that has only just appeared may refuse.
        const bool taken = WaitUntil([&] {
            hand({QStringLiteral("windowfocus"), window});
            return hand({QStringLiteral("getwindowfocus")}).trimmed() == window.toLatin1();
        });
        if (taken)
            hand({QStringLiteral("key"), key});
        return taken;
    }

    /// For a process that is about to start: it does not outlive the test, even one that crashes.
    static void GoWithTheTest() { ::prctl(PR_SET_PDEATHSIG, SIGTERM); }

    /// False if the condition did not come true in time.
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
    /// What the user's hand finds or does.
    QByteArray hand(const QStringList& arguments) const
    {
        QProcess tool;
        tool.setProcessEnvironment(environment());
        tool.start(QStringLiteral("xdotool"), arguments);
        // A window that goes while the tool looks at it can leave the tool waiting for ever.
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
