// The built program as a user starts it, on its own display.

#include "Books.h"
#include "FileOperations.h"
#include "InitGlobals.h"
#include "QtPrinting.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "TestPaths.h"
#include "Workplace.h"
#include "XDesktop.h"

#include <gtest/gtest.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

const QString MainWindow = u"^(Vellumark| VMK: .*)$"_s;
const QString Report = u"^ Fiction Book validation result$"_s;

class Program : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!XDesktop::IsPossible())
            GTEST_SKIP() << "Xvfb and xdotool are not installed";
        desktop.emplace();
        ASSERT_TRUE(desktop->isUp());

        // A portable folder: the program and the folders beside it.
        ASSERT_TRUE(QFile::copy(QLatin1StringView(VMK_BIN_DIR "/vellumark"), executable()));
        for (const QString& name : {u"sounds"_s, u"VMK Office"_s})
            FileOperation(CopyFolderMode, QLatin1StringView(VMK_BIN_DIR "/") + name, place.Path(name));
        place.Make(u"clean book.fb2"_s, SmallBook());
        place.Make(u"broken.fb2"_s, BookWithSchemaError());
        place.Make(u"notes.txt"_s, "text");
    }

    void TearDown() override
    {
        if (HasFailure()) {
            program.waitForFinished(100);
            ADD_FAILURE() << "The program's state is " << program.state() << ", its exit code "
                          << program.exitCode()
                          << "; it said: " << program.readAllStandardError().toStdString()
                          << "\nwindows: " << desktop->windows(u".*"_s).join(u' ').toStdString();
        }
        program.kill();
        program.waitForFinished();
    }

    [[nodiscard]] QString executable() const { return place.Path(u"vellumark"_s); }

    /// Writes a settings file as an earlier run would, with one changed setting.
    void keepSettings(int commandLineInfo) const
    {
        InitGlobals({.executable = executable(), .userDataFolder = place.Path(u"user"_s)});
        ReadSettings(true);
        CommandLineInfo = commandLineInfo;
        ASSERT_TRUE(WriteSettings({.left = 150, .top = 150, .width = 10500, .height = 7500}));
    }

    void start(const QStringList& arguments)
    {
        program.setProcessEnvironment(desktop->environment());
        program.setWorkingDirectory(place.Folder());
        program.setChildProcessModifier(XDesktop::GoWithTheTest);
        program.start(executable(), arguments);
        ASSERT_TRUE(program.waitForStarted());
    }

    [[nodiscard]] bool runs() const { return program.state() == QProcess::Running; }

    /// The program ends by itself, with exit code 0 and without output.
    void expectEnd()
    {
        if (program.state() != QProcess::NotRunning) {
            ASSERT_TRUE(program.waitForFinished(XDesktop::PatienceMilliseconds));
        }
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0);
        EXPECT_EQ(program.readAllStandardOutput().toStdString(), "");
        EXPECT_EQ(program.readAllStandardError().toStdString(), "");
    }

    Workplace place;
    std::optional<XDesktop> desktop;
    QProcess program;
};

} // namespace

TEST_F(Program, ACleanBookEndsWithNoWindowWhenNoReportIsWanted)
{
    keepSettings(0);
    start({u"clean book.fb2"_s, u"-V"_s});
    expectEnd();
}

TEST_F(Program, ACleanBookIsReportedUntilTheUserClosesTheForm)
{
    start({u"clean book.fb2"_s, u"-V"_s});
    const QString report = desktop->waitForWindow(Report);
    ASSERT_FALSE(report.isEmpty());
    EXPECT_FALSE(program.waitForFinished(500)) << "it waits for the user";
    EXPECT_TRUE(desktop->windows(MainWindow).isEmpty());
    ASSERT_TRUE(desktop->press(desktop->waitForWindow(Report), u"Escape"_s));
    expectEnd();
}

TEST_F(Program, TheBoxOfABookThatIsNotWellFormedRemainsAfterTheReport)
{
    place.Make(u"torn.fb2"_s, "<FictionBook><body>");
    start({u"torn.fb2"_s, u"-V"_s});
    // The window, still without a book, and the box in front of it.
    ASSERT_TRUE(XDesktop::WaitUntil([&] { return desktop->windows(u"^Vellumark$"_s).size() >= 2; }));
    EXPECT_TRUE(XDesktop::WaitUntil([&] { return desktop->windows(Report).isEmpty(); }));
    ASSERT_TRUE(desktop->press(desktop->windows(u"^Vellumark$"_s).last(), u"Return"_s));
    EXPECT_FALSE(desktop->waitForWindow(u"^ VMK: torn.fb2$"_s).isEmpty());
    EXPECT_FALSE(program.waitForFinished(500)) << "the main window stays open";
}

TEST_F(Program, ABookWithAnErrorIsOpenedAndTheReportClosesWhenItIsComplete)
{
    start({u"broken.fb2"_s, u"-V"_s});
    ASSERT_FALSE(desktop->waitForWindow(u"^ VMK: broken.fb2$"_s).isEmpty());
    EXPECT_TRUE(XDesktop::WaitUntil([&] { return desktop->windows(Report).isEmpty(); }));
    EXPECT_FALSE(program.waitForFinished(500)) << "the main window stays open";
    EXPECT_EQ(program.readAllStandardError().toStdString(), "");
}

TEST_F(Program, ABarePathIsOpened)
{
    start({u"clean book.fb2"_s});
    EXPECT_FALSE(desktop->waitForWindow(u"^ VMK: clean book.fb2$"_s).isEmpty());
}

TEST_F(Program, ValidatingAWrongExtensionShowsABoxAndEnds)
{
    start({u"notes.txt"_s, u"-V"_s});
    const QString box = desktop->waitForWindow(u"^VMK: notes.txt$"_s);
    ASSERT_FALSE(box.isEmpty());
    EXPECT_TRUE(desktop->windows(MainWindow).isEmpty());
    ASSERT_TRUE(desktop->press(box, u"Return"_s));
    expectEnd();
}

TEST_F(Program, ValidatingAMissingFileShowsABoxAndEnds)
{
    start({u"missing.fb2"_s, u"-V"_s});
    const QString box = desktop->waitForWindow(u"^VMK: missing.fb2$"_s);
    ASSERT_FALSE(box.isEmpty());
    ASSERT_TRUE(desktop->press(box, u"Return"_s));
    expectEnd();
}

TEST_F(Program, LoadingAWrongExtensionShowsABoxAndKeepsTheMainWindow)
{
    start({u"notes.txt"_s, u"-L"_s});
    const QString box = desktop->waitForWindow(u"^VMK: notes.txt$"_s);
    ASSERT_FALSE(box.isEmpty());
    ASSERT_TRUE(desktop->press(box, u"Return"_s));
    EXPECT_TRUE(XDesktop::WaitUntil([&] { return desktop->windows(u"^VMK: notes.txt$"_s).isEmpty(); }));
    EXPECT_FALSE(desktop->waitForWindow(MainWindow).isEmpty());
    EXPECT_TRUE(runs());
}

TEST_F(Program, TheFirstStartShowsTheWelcomePageAndLaterOnesDoNot)
{
    start({});
    ASSERT_FALSE(desktop->waitForWindow(MainWindow).isEmpty());
    EXPECT_TRUE(XDesktop::WaitUntil([&] { return FileExists(place.Path(u"VMK Office/Welcome.htm"_s)); }));
    program.kill();
    program.waitForFinished();

    QFile::remove(place.Path(u"VMK Office/Welcome.htm"_s));
    keepSettings(1);
    start({});
    ASSERT_FALSE(desktop->waitForWindow(MainWindow).isEmpty());
    EXPECT_TRUE(XDesktop::WaitUntil([&] { return FileExists(place.Path(u"VMK Office/VMKEmpty.htm"_s)); }));
    EXPECT_FALSE(FileExists(place.Path(u"VMK Office/Welcome.htm"_s)));
}

TEST_F(Program, AQuotedPathWithAnOptionIsNotFoundInTheOpenWindow)
{
    start({u"\"clean book.fb2\" -L"_s});
    ASSERT_FALSE(desktop->waitForWindow(MainWindow).isEmpty());
    EXPECT_FALSE(program.waitForFinished(500));
    EXPECT_FALSE(desktop->windows(MainWindow).isEmpty());
}

TEST_F(Program, TwoProgramsRunSideBySide)
{
    start({});
    ASSERT_FALSE(desktop->waitForWindow(MainWindow).isEmpty());
    QProcess second;
    second.setProcessEnvironment(desktop->environment());
    second.setChildProcessModifier(XDesktop::GoWithTheTest);
    second.start(executable(), {});
    EXPECT_TRUE(XDesktop::WaitUntil([&] { return desktop->windows(MainWindow).size() == 2; }));
    second.kill();
    second.waitForFinished();
    EXPECT_TRUE(runs());
}

TEST_F(Program, ASecondStartSharesTheSettingsAndTheTemporaryFolder)
{
    const auto leave = [this](QProcess& process, const QString& window) {
        for (const QString& key : {u"F10"_s, u"Down"_s, u"Up"_s, u"Return"_s})
            ASSERT_TRUE(desktop->press(window, key));
        EXPECT_TRUE(process.waitForFinished(XDesktop::PatienceMilliseconds));
    };
    const auto lastFile = [this] {
        InitGlobals({.executable = executable(), .userDataFolder = place.Path(u"user"_s)});
        ReadSettings(false);
        return LastFile;
    };
    const std::string other = SmallBook("<p>Other text</p>");
    place.Make(u"other.fb2"_s, other);
    const QString page = place.Path(u"VMK Office/Temp/Fb2SourceHtml.htm"_s);

    start({u"clean book.fb2"_s});
    const QString first = desktop->waitForWindow(u"^ VMK: clean book.fb2$"_s);
    ASSERT_FALSE(first.isEmpty());
    EXPECT_NE(ReadFileText(page).find(">Text<"), std::string::npos);

    QProcess second;
    second.setProcessEnvironment(desktop->environment());
    second.setWorkingDirectory(place.Folder());
    second.setChildProcessModifier(XDesktop::GoWithTheTest);
    second.start(executable(), {u"other.fb2"_s});
    const QString secondWindow = desktop->waitForWindow(u"^ VMK: other.fb2$"_s);
    ASSERT_FALSE(secondWindow.isEmpty());
    // The second program has emptied the folder and written its own page there.
    EXPECT_NE(ReadFileText(page).find("Other text"), std::string::npos);

    // The first one saves its own book all the same.
    ASSERT_TRUE(desktop->press(first, u"F4"_s));
    EXPECT_TRUE(XDesktop::WaitUntil([&] {
        return ReadFileText(place.Path(u"clean book.fb2"_s)).find("\r\n\t<body>") != std::string::npos;
    }));
    EXPECT_NE(ReadFileText(place.Path(u"clean book.fb2"_s)).find("<p>Text<"), std::string::npos);
    EXPECT_EQ(ReadFileText(place.Path(u"other.fb2"_s)), other);

    // The one that ends last leaves its settings.
    leave(program, first);
    EXPECT_EQ(lastFile(), place.Path(u"clean book.fb2"_s));
    EXPECT_FALSE(FileExists(page));
    EXPECT_FALSE(second.waitForFinished(300))
        << second.exitCode() << second.readAllStandardError().toStdString();
    ASSERT_TRUE(desktop->press(secondWindow, u"F4"_s));
    EXPECT_TRUE(XDesktop::WaitUntil(
        [&] { return ReadFileText(place.Path(u"other.fb2"_s)).find("\r\n\t<body>") != std::string::npos; }));
    leave(second, secondWindow);
    EXPECT_EQ(lastFile(), place.Path(u"other.fb2"_s));
}
