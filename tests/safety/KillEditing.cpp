// Kills a program that edits a book, at random times, and compares what its journal recovers with what it
// showed.
//
//   kill_editing TIMES [SECONDS] [SEED]
//
// Each time, a process of its own opens a book in the real main window (without a display) and types, pastes,
// breaks lines, deletes, undoes, replaces all and cleans up. It notes each state of its document with the
// time. The recovered text must equal a state that the document had at most SECONDS (1) before the kill.

#include "BookVariables.h"
#include "Boxes.h"
#include "Chance.h"
#include "Desktop.h"
#include "DisplayPage.h"
#include "DisplayView.h"
#include "FbFunctions.h"
#include "FileOperations.h"
#include "Files.h"
#include "Form1.h"
#include "InitGlobals.h"
#include "JournalReader.h"
#include "MainWindowSeams.h"
#include "RecoveryFolder.h"
#include "Settings.h"
#include "TestPaths.h"

#include <QApplication>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

int64_t Nanoseconds()
{
    timespec now = {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

/// A number for a state of the document.
std::size_t MarkOf(const DisplayDocument& document)
{
    return qHash(document.savePage(), 0);
}

std::string MakeBookText()
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<FictionBook "
                       "xmlns=\"http://www.gribuser.ru/xml/fictionbook/2.0\"><body><section>";
    for (int i = 0; i < 300; ++i)
        text += "<p>Paragraph " + std::to_string(i)
            + " with a few words, and one <strong>strong</strong> one.</p>";
    return text + "</section></body></FictionBook>";
}

// ---------------------------------------------------------------- the process that is killed

class Editor
{
public:
    Editor(const QString& folder, unsigned seed)
        : random(seed)
        , log(QFile::encodeName(folder + u"/states"_s).toStdString(), std::ios::app)
    {
    }

    void note()
    {
        const std::size_t mark = MarkOf(document());
        if (mark == lastMark)
            return;
        lastMark = mark;
        log << Nanoseconds() << ' ' << mark << std::endl;
    }

    void act()
    {
        DisplayDocument& page = document();
        const Position place = anywhere();
        switch (below(14)) {
        case 0:
            page.setSelection(place, place);
            key(Qt::Key_Return);
            break;
        case 1:
            page.setSelection(place, place);
            key(Qt::Key_Backspace);
            break;
        case 2:
            SetClipboardText(u"pasted text, line one\nline two <p>with a tag</p>"_s);
            page.setSelection(place, place);
            key(Qt::Key_V, Qt::ControlModifier);
            break;
        case 3:
            key(Qt::Key_Z, Qt::ControlModifier);
            break;
        case 4:
            key(Qt::Key_Y, Qt::ControlModifier);
            break;
        case 5:
            replaceAll();
            break;
        case 6:
            page.setSelection(place, page.valid({place.line, place.offset + 8}));
            key(Qt::Key_Delete);
            break;
        case 7:
            page.setSelection(place, page.valid({place.line, place.offset + 6}));
            key(Qt::Key_B, Qt::ControlModifier);
            break;
        default:
            page.setSelection(place, place);
            for (int i = 0; i < 5; ++i) {
                QTest::keyClick(Form1::Instance()->HTMLread, char('a' + below(26)));
                note();
            }
            break;
        }
        note();
    }

private:
    DisplayDocument& document() { return Form1::Instance()->HTMLread->document(); }
    int below(int count) { return int(random() % unsigned(std::max(count, 1))); }
    Position anywhere()
    {
        const int line = below(document().lineCount());
        return document().valid({line, below(int(document().line(line).text.size()) + 1)});
    }
    void key(Qt::Key code, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(Form1::Instance()->HTMLread, code, modifiers);
    }
    /// Replaces a letter in every line, as replace-all and the clean-up do: one run over the document.
    void replaceAll()
    {
        std::vector<InLineStep> steps;
        const QChar sought(u'a' + below(26));
        for (int line = 0; line < document().lineCount(); ++line) {
            const auto found = int(document().line(line).text.indexOf(sought));
            if (found >= 0)
                steps.push_back({line, found, found + 1, QString(QChar(u'A' + below(26))), NoTag, 0});
        }
        document().replaceInLines(std::move(steps));
        note();
        ProcessEvents();
    }

    std::mt19937 random;
    std::ofstream log;
    std::size_t lastMark = 0;
};

int RunEditor(int count, char** values, const QString& folder, unsigned seed)
{
    ::qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, values);
    BoxSeam().Fill([](BoxKind, const QString&, const QString&) { return false; });
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder);
    InitGlobals({folder + u"/vellumark"_s, folder + u"/user"_s});
    ReadSettings(true);
    Form1 form;
    form.Load();
    Editor editor(folder, seed);
    std::string text = MakeBookText();
    if (!WriteFileText(folder + u"/book.fb2"_s, text) || !LoadBook(folder + u"/book.fb2"_s, false))
        return 1;
    if (!QTest::qWaitFor([&] { return form.HTMLread->isEditable(); }, 60'000))
        return 1;
    form.HTMLread->setFocus();
    editor.note();
    // The states between two events of a long command.
    const auto processEvents = ProcessEventsSeam().Fill({});
    ProcessEventsSeam().Fill([&] {
        editor.note();
        if (processEvents)
            processEvents();
    });
    std::ofstream(QFile::encodeName(folder + u"/ready"_s).toStdString()) << "ready" << std::flush;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&editor] { editor.act(); });
    timer.start(15);
    return QApplication::exec();
}

// ---------------------------------------------------------------- the process that kills

struct State
{
    int64_t time = 0;
    std::size_t mark = 0;
};

std::vector<State> ReadStates(const QString& folder)
{
    std::vector<State> states;
    std::ifstream log(QFile::encodeName(folder + u"/states"_s).toStdString());
    for (std::string line; std::getline(log, line);) {
        std::istringstream words(line);
        State state;
        if (words >> state.time >> state.mark && !log.eof())
            states.push_back(state);
    }
    return states;
}

/// Returns how long before the kill the document last had the state that is recovered, in seconds; negative
/// if it never had it.
double AgeOfRecovered(const QString& folder, int64_t killed)
{
    const std::vector<State> states = ReadStates(folder);
    if (states.empty())
        return -1;
    std::size_t mark = states.front().mark; // without a journal: the book as loaded
    QStringList damaged;
    const auto session = NewestInterruptedSession(folder + u"/VMK Office/Recovery"_s, damaged);
    if (session) {
        DisplayDocument document;
        ShowSession(session->state, document);
        mark = MarkOf(document);
    }
    if (!damaged.isEmpty())
        return -1;
    for (std::size_t i = states.size(); i-- > 0;) {
        if (states[i].mark != mark)
            continue;
        return i + 1 == states.size() ? 0 : double(killed - states[i + 1].time) / 1e9;
    }
    return -1;
}

bool KillOnce(const QString& program, unsigned seed, double& age)
{
    std::mt19937 random(seed);
    const QTemporaryDir folder;
    FileOperation(CopyFolderMode, QStringLiteral(VMK_BIN_DIR "/VMK Office"),
                  folder.filePath(u"VMK Office"_s));
    for (const QString& left : {u"VMK Office/Backup"_s, u"VMK Office/Recovery"_s})
        FileOperation(DeleteFolderMode, folder.filePath(left));
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(program, {u"--edit"_s, folder.path(), QString::number(seed)});
    if (!process.waitForStarted())
        return false;
    for (int i = 0; i < 6'000 && !FileExists(folder.filePath(u"ready"_s)); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 2'500'000));
    const int64_t killed = Nanoseconds();
    process.kill();
    process.waitForFinished();
    age = AgeOfRecovered(folder.path(), killed);
    if (age >= 0)
        return true;
    folder.path();
    std::printf("FAILED: seed %u: the recovered text is none that was shown\n", seed);
    return false;
}

} // namespace

int main(int count, char** values)
{
    if (count > 3 && std::string(values[1]) == "--edit")
        return RunEditor(count, values, QString::fromLocal8Bit(values[2]), unsigned(std::atoi(values[3])));
    ::qputenv("QT_HASH_SEED", "0");
    const QCoreApplication application(count, values);
    const int times = count > 1 ? std::atoi(values[1]) : 10;
    const double most = count > 2 ? std::atof(values[2]) : 1;
    const unsigned seed = count > 3 ? unsigned(std::atoi(values[3])) : 1;
    int failures = 0;
    double oldest = 0;
    for (int i = 0; i < times; ++i) {
        double age = 0;
        if (!KillOnce(QCoreApplication::applicationFilePath(), seed + unsigned(i), age))
            ++failures;
        else if (age > most) {
            std::printf("FAILED: seed %u: the recovered text is %.3f s old\n", seed + unsigned(i), age);
            ++failures;
        }
        oldest = std::max(oldest, age);
    }
    std::printf("%d kills: %d failures, the oldest recovered state ended %.3f s before the kill\n", times,
                failures, oldest);
    return failures == 0 ? 0 : 1;
}
