#include "Start.h"

#include "BookFileCheck.h"
#include "BookSeams.h"
#include "BookVariables.h"
#include "Books.h"
#include "Boxes.h"
#include "CommLineInfoF.h"
#include "Desktop.h"
#include "EmptyPage.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "InitGlobals.h"
#include "MainWindowSeams.h"
#include "ProcessEnd.h"
#include "QtPrinting.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TestPaths.h"
#include "WelcomePage.h"
#include "Workplace.h"

#include <QApplication>
#include <QLabel>
#include <QTimer>

#include <gtest/gtest.h>

#include <iconv.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

/// The program in a separate folder; everything that it does to its environment is recorded in order.
class Start : public testing::Test
{
protected:
    Start()
    {
        InitGlobals({.executable = place.Path(u"vellumark"_s), .userDataFolder = place.Path(u"user"_s)});
        ReadSettings(true);
        SchemaFile = QLatin1StringView(VMK_BIN_DIR "/VMK Office/Schemas/FictionBook.xsd");
        ValidateAfterLoad = false;
        SkipNavigationCheck = false;
        FirstStart = false;
        place.Make(u"clean.fb2"_s, SmallBook());
        place.Make(u"broken.fb2"_s, BookWithSchemaError());
        place.Make(u"notes.txt"_s, "text");
    }
    ~Start() override { CommLineInfoF::Unload(); }

    /// Closes the modal report form as soon as it is shown, and records its texts.
    void closeReportWhenShown()
    {
        auto* const timer = new QTimer(qApp);
        QObject::connect(timer, &QTimer::timeout, qApp, [this, timer] {
            CommLineInfoF* const form = CommLineInfoF::Existing();
            if (!form || QApplication::activeModalWidget() != form)
                return;
            delete timer;
            log(u"modal report: "_s + form->ReportL->text());
            form->close();
        });
        timer->start(5);
    }

    void log(const QString& line) { events += line; }

    [[nodiscard]] QString reportText() const
    {
        const CommLineInfoF* const form = CommLineInfoF::Existing();
        return form ? form->ReportL->text() : u"no report"_s;
    }

    Workplace place;
    QStringList events;

private:
    SeamGuard<bool(BoxKind, const QString&, const QString&)> boxes{
        BoxSeam(), [this](BoxKind kind, const QString& text, const QString& title) {
            log(u"box %1: %2 [%3]"_s.arg(kind == BoxKind::Stop ? u"stop"_s : u"other"_s, text, title));
            return false;
        }};
    SeamGuard<void(const QString&)> sounds{
        SoundSeam(), [this](const QString& path) { log(u"sound "_s + FileNameOf(path)); }};
    SeamGuard<void(const QString&)> status{StatusSeam(),
                                           [this](const QString& text) { log(u"status "_s + text); }};
    SeamGuard<void()> mainWindow{OpenMainWindowSeam(), [this] { log(u"window; report: "_s + reportText()); }};
    SeamGuard<bool(const QString&, bool)> load{
        LoadBookSeam(), [this](const QString& path, bool opening) {
            log(u"load "_s + path + (opening ? u" opening"_s : QString()));
            EXPECT_FALSE(ValidateAfterLoad) << "the flag is set after the call";
            return true;
        }};
    SeamGuard<void()> end{EndProcessSeam(), [this] { log(u"end"_s); }};
};

} // namespace

TEST_F(Start, LoadingOpensTheWindowAndHandsTheBookOver)
{
    EXPECT_TRUE(LoadFromCommandLine(place.Path(u"broken.fb2"_s), false));
    EXPECT_EQ(events,
              (QStringList{u"window; report: no report"_s,
                           u"load "_s + place.Path(u"broken.fb2"_s) + u" opening"_s}));
}

TEST_F(Start, LoadingARejectedExtensionShowsTheBoxAndKeepsTheWindowOpen)
{
    EXPECT_TRUE(LoadFromCommandLine(place.Path(u"notes.txt"_s), false));
    EXPECT_EQ(events,
              (QStringList{u"window; report: no report"_s,
                           u"box stop: file loading error: not allowed file extension [VMK: notes.txt]"_s}));
}

TEST_F(Start, LoadingAMissingFileIsReportedInTheOpenWindow)
{
    EXPECT_TRUE(LoadFromCommandLine(place.Path(u"missing.fb2"_s), false));
    EXPECT_EQ(events,
              (QStringList{u"window; report: no report"_s, u"status file not found"_s,
                           u"sound FileLoadError.wav"_s}));
}

TEST_F(Start, LoadingAPathInQuotesWithAnOptionFindsNoFile)
{
    EXPECT_TRUE(LoadFromCommandLine(u'"' + place.Path(u"clean.fb2"_s) + u'"', false));
    EXPECT_EQ(events.value(1), u"status file not found"_s);
}

TEST_F(Start, QuietLoadingOpensTheWindowAfterTheCheck)
{
    EXPECT_TRUE(LoadFromCommandLine(place.Path(u"clean.fb2"_s), true));
    EXPECT_EQ(events,
              (QStringList{u"window; report: no report"_s,
                           u"load "_s + place.Path(u"clean.fb2"_s) + u" opening"_s}));
    events.clear();
    EXPECT_FALSE(LoadFromCommandLine(place.Path(u"notes.txt"_s), true));
    EXPECT_EQ(events,
              QStringList{u"box stop: file loading error: not allowed file extension [VMK: notes.txt]"_s});
}

TEST_F(Start, LoadingAMissingFileQuietlyEndsTheProcess)
{
    EXPECT_FALSE(LoadFromCommandLine(place.Path(u"missing.fb2"_s), true));
    EXPECT_EQ(events,
              (QStringList{u"box stop: file not found [VMK: missing.fb2]"_s, u"end"_s,
                           u"status file not found"_s, u"sound FileLoadError.wav"_s}));
}

TEST_F(Start, ValidatingAMissingFileShowsABoxAndEndsTheProcess)
{
    EXPECT_FALSE(ValidateFromCommandLine(place.Path(u"missing.fb2"_s)));
    EXPECT_EQ(events, (QStringList{u"box stop: file not found [VMK: missing.fb2]"_s, u"end"_s}));
}

TEST_F(Start, ValidatingAWrongExtensionShowsABoxAndEndsTheProcessWithoutAWindow)
{
    EXPECT_FALSE(ValidateFromCommandLine(place.Path(u"notes.txt"_s)));
    EXPECT_EQ(events,
              (QStringList{u"box stop: file loading error: not allowed file extension [VMK: notes.txt]"_s,
                           u"end"_s}));
}

TEST_F(Start, ValidatingACleanFileWithoutAReportEndsTheProcess)
{
    CommandLineInfo = 0;
    EXPECT_FALSE(ValidateFromCommandLine(place.Path(u"clean.fb2"_s)));
    EXPECT_EQ(events, (QStringList{u"sound NoParseError.wav"_s, u"end"_s}));
    EXPECT_TRUE(SkipNavigationCheck);
    EXPECT_EQ(CommLineInfoF::Existing(), nullptr);
}

TEST_F(Start, ValidatingACleanFileReportsTheModeAndTheName)
{
    closeReportWhenShown();
    EXPECT_FALSE(ValidateFromCommandLine(place.Path(u"clean.fb2"_s)));
    EXPECT_EQ(events,
              (QStringList{u"sound NoParseError.wav"_s,
                           u"modal report: No errors (against schema)\nclean.fb2"_s, u"end"_s}));
}

TEST_F(Start, ValidatingAgainstTheNamespaceAcceptsSchemaErrors)
{
    ValidateOption = u"namespace!"_s;
    closeReportWhenShown();
    EXPECT_FALSE(ValidateFromCommandLine(place.Path(u"broken.fb2"_s)));
    EXPECT_EQ(events.value(1), u"modal report: No errors (against namespace)\nbroken.fb2"_s);
}

TEST_F(Start, ValidatingAFileWithErrorsOpensTheBookUnderTheReport)
{
    EXPECT_TRUE(ValidateFromCommandLine(place.Path(u"broken.fb2"_s)));
    EXPECT_EQ(events,
              (QStringList{u"window; report: validation failed\n...loading file to VMK...wait, please..."_s,
                           u"sound bul'.wav"_s, u"load "_s + place.Path(u"broken.fb2"_s) + u" opening"_s}));
    EXPECT_FALSE(SkipNavigationCheck);
    const CommLineInfoF* const form = CommLineInfoF::Existing();
    ASSERT_NE(form, nullptr);
    EXPECT_TRUE(form->isVisible());
    EXPECT_FALSE(form->isModal());
    EXPECT_TRUE(form->windowFlags() & Qt::WindowStaysOnTopHint);
}

// ---------------------------------------------------------------- the complete sequence

namespace {

/// Removes the settings file and the welcome page of the test program before and after each test.
class WholeStart : public Start
{
protected:
    WholeStart() { clear(); }
    ~WholeStart() override { clear(); }

    static void clear()
    {
        InitGlobals();
        QFile::remove(IniFilePath);
        FirstStart = false;
    }
};

} // namespace

TEST_F(WholeStart, WithoutASettingsFileTheProgramStartsForTheFirstTime)
{
    EXPECT_TRUE(RunStart(QString()));
    EXPECT_EQ(events, QStringList{u"window; report: no report"_s});
    EXPECT_TRUE(FirstStart);
    EXPECT_EQ(ValidateOption, u"schema"_s) << "the settings are read";
    EXPECT_TRUE(FolderExists(TempFolder)) << "the workspace exists";
}

TEST_F(WholeStart, ANewFolderOfCleanUpTablesGetsTheSampleTables)
{
    InitGlobals();
    FileOperation(DeleteFolderMode, UserCleanUpFolder);
    EXPECT_TRUE(RunStart(QString()));
    const QString sample = UserCleanUpFolder + u"/Russian typography.dat"_s;
    EXPECT_TRUE(FileExists(sample));
    FileOperation(DeleteFileMode, sample);
    EXPECT_TRUE(RunStart(QString()));
    EXPECT_FALSE(FileExists(sample)) << "a deleted table is not written again";
}

TEST_F(WholeStart, WithASettingsFileItIsNotTheFirstTime)
{
    ReadSettings(true);
    ASSERT_TRUE(WriteSettings({}));
    EXPECT_TRUE(RunStart(QString()));
    EXPECT_FALSE(FirstStart);
}

TEST_F(WholeStart, AFailedValidationRequestsAValidationOfTheLoadedBook)
{
    EXPECT_TRUE(RunStart(place.Path(u"broken.fb2"_s) + u" -V"_s));
    EXPECT_TRUE(ValidateAfterLoad);
}

TEST_F(WholeStart, ACleanValidationEndsBeforeTheFlagIsSet)
{
    closeReportWhenShown();
    EXPECT_FALSE(RunStart(place.Path(u"clean.fb2"_s) + u" -V"_s));
    EXPECT_FALSE(ValidateAfterLoad);
    EXPECT_EQ(events.last(), u"end"_s);
}

TEST_F(WholeStart, ARelativePathIsLoadedByItsFullPath)
{
    const QString before = QDir::currentPath();
    QDir::setCurrent(place.Folder());
    EXPECT_TRUE(RunStart(u"clean.fb2 -L"_s));
    const QString full = QDir::currentPath() + u"/clean.fb2"_s;
    QDir::setCurrent(before);
    EXPECT_EQ(events.last(), u"load "_s + full + u" opening"_s);
}

TEST_F(WholeStart, TwoBlanksBeforeTheOptionFindNoFile)
{
    EXPECT_FALSE(RunStart(place.Path(u"clean.fb2"_s) + u"  -V"_s));
    EXPECT_EQ(events, (QStringList{u"box stop: file not found [VMK: clean.fb2 ]"_s, u"end"_s}));
}

// ---------------------------------------------------------------- the checks

TEST_F(Start, TheStartOfTheExtensionIdentifiesABookFile)
{
    for (const auto& name : {u"a.fb2"_s, u"a.fb"_s, u"a.fbz"_s, u"a.FB2"_s, u"a.b.Fb3"_s}) {
        EXPECT_TRUE(CheckBookFile(name, BookRefusal::StatusBar)) << name.toStdString();
    }
    EXPECT_TRUE(events.isEmpty());
    for (const auto& name : {u"a.txt"_s, u"a.fb2.zip"_s, u"a.f"_s, u"a."_s, QString()}) {
        EXPECT_FALSE(CheckBookFile(name, BookRefusal::StatusBar)) << name.toStdString();
        EXPECT_EQ(events,
                  (QStringList{u"status file loading error: not allowed file extension"_s,
                               u"sound FileLoadError.wav"_s}));
        events.clear();
    }
}

TEST_F(Start, WithBoxesAMissingFileIsNamedWithItsPath)
{
    EXPECT_FALSE(CheckBookFile(u"/no/such.fb2"_s, BookRefusal::Box));
    EXPECT_EQ(events,
              QStringList{u"box stop: file loading error: file not found\r\n/no/such.fb2 [VMK: such.fb2]"_s});
    events.clear();
    EXPECT_FALSE(CheckBookFile(u"/no/such.fb2"_s, BookRefusal::BoxAndEnd));
    EXPECT_EQ(events.last(), u"end"_s);
}

TEST_F(Start, TheParserIsThere)
{
    EXPECT_TRUE(CheckMsxml());
    EXPECT_TRUE(events.isEmpty());
}

TEST_F(Start, WithoutAParserTheProcessEndsWhateverTheAnswer)
{
    for (const bool yes : {true, false}) {
        events.clear();
        QString question;
        const SeamGuard box(BoxSeam(), [&](BoxKind kind, const QString& text, const QString& title) {
            EXPECT_EQ(kind, BoxKind::YesNo);
            EXPECT_EQ(title, u"MS XML Check Error"_s);
            question = text;
            return yes;
        });
        const SeamGuard open(OpenSeam(), [&](const QString& target) {
            log(target.startsWith(u"https://"_s) ? u"page"_s : target);
            return true;
        });
        EXPECT_FALSE(CheckMsxml([](std::string_view) { return false; }));
        EXPECT_EQ(question, u"MS XML 4.0 installation not found\r\nDo you want to download it now?"_s);
        EXPECT_EQ(events, yes ? QStringList({u"page"_s, u"end"_s}) : QStringList({u"end"_s}));
    }
}

TEST_F(Start, TheParserIsTriedOnASmallText)
{
    EXPECT_TRUE(CheckMsxml([](std::string_view text) {
        return text == "<?xml version=\"1.0\" encoding=\"UTF-8\"?><nscheck></nscheck>";
    }));
}

TEST_F(Start, AQuietValidationReturnsWhetherThereIsAnError)
{
    EXPECT_FALSE(ValidateFileQuietly(place.Path(u"clean.fb2"_s)));
    EXPECT_EQ(FbNamespace, u"http://www.gribuser.ru/xml/fictionbook/2.0"_s);
    EXPECT_TRUE(ValidateFileQuietly(place.Path(u"broken.fb2"_s)));
    EXPECT_TRUE(events.isEmpty());
}

TEST_F(Start, AQuietValidationAcceptsItsModeInAnyCase)
{
    ValidateOption = u"SCHEMA"_s;
    EXPECT_TRUE(ValidateFileQuietly(place.Path(u"broken.fb2"_s)));
    ValidateOption = u"namespace"_s;
    EXPECT_FALSE(ValidateFileQuietly(place.Path(u"broken.fb2"_s)));
    place.Make(u"open.fb2"_s, BookWithOpenTag());
    EXPECT_TRUE(ValidateFileQuietly(place.Path(u"open.fb2"_s)));
}

TEST_F(Start, AQuietValidationIgnoresAnUnreadableSchema)
{
    SchemaFile = place.Path(u"missing.xsd"_s);
    EXPECT_FALSE(ValidateFileQuietly(place.Path(u"broken.fb2"_s)));
}

TEST_F(Start, AnEncodingThatTheParserCannotReadIsAnError)
{
    QByteArray text = QByteArray::fromStdString(SmallBook());
    text.replace("UTF-8", "x-klingon");
    place.Make(u"odd.fb2"_s, {text.constData(), size_t(text.size())});
    EXPECT_TRUE(ValidateFileQuietly(place.Path(u"odd.fb2"_s)));
    // The book is loaded all the same.
    EXPECT_TRUE(ValidateFromCommandLine(place.Path(u"odd.fb2"_s)));
    EXPECT_EQ(events.last(), u"load "_s + place.Path(u"odd.fb2"_s) + u" opening"_s);
}

TEST_F(Start, AnEmptyOrUnreadableFileIsAnError)
{
    place.Make(u"empty.fb2"_s, "");
    EXPECT_TRUE(ValidateFileQuietly(place.Path(u"empty.fb2"_s)));
    EXPECT_TRUE(ValidateFileQuietly(place.Path(u"missing.fb2"_s)));
    EXPECT_TRUE(ValidateFileQuietly(place.Folder()));
}

// ---------------------------------------------------------------- the report form

TEST(ReportForm, GrowsWithItsLabelAndKeepsItInTheMiddle)
{
    const ReportGeometry place = LayOutReport(
        {.labelWidth = 6000, .labelHeight = 3000, .margin = 120, .edgesX = 60, .edgesY = 60, .caption = 345});
    EXPECT_FLOAT_EQ(place.formWidth, 6000 + 240 + 60);
    EXPECT_FLOAT_EQ(place.formHeight, 3000 + 240 + 60 + 345);
    EXPECT_FLOAT_EQ(place.labelLeft, 150);
    EXPECT_FLOAT_EQ(place.labelTop, 120);
}

TEST(ReportForm, IsNeverSmallerThanItsLeastSize)
{
    const ReportGeometry place = LayOutReport(
        {.labelWidth = 100, .labelHeight = 100, .margin = 120, .edgesX = 60, .edgesY = 60, .caption = 345});
    EXPECT_FLOAT_EQ(place.formWidth, 3500);
    EXPECT_FLOAT_EQ(place.formHeight, 1300);
    EXPECT_FLOAT_EQ(place.labelLeft, 1700);
    EXPECT_FLOAT_EQ(place.labelTop, (1300 - 405 - 100) / 2.0F);
}

TEST_F(Start, TheReportFormHasTheSizeOfItsText)
{
    CommLineInfoF& form = CommLineInfoF::Instance();
    EXPECT_EQ(form.windowTitle(), u" Fiction Book validation result"_s);
    form.ShowActionReport(u"one"_s, {.topmost = true});
    const QSize small = form.size();
    EXPECT_EQ(small.width(), qRound(3500 / TwipsPerPixelX) - qRound(2 * EdgeX));
    form.ShowActionReport(QString(200, u'w') + u"\r\ntwo\r\nthree\r\nfour\r\nfive\r\nsix"_s,
                          {.caption = u"Other"_s, .topmost = true});
    EXPECT_GT(form.width(), small.width());
    EXPECT_GT(form.height(), small.height());
    EXPECT_TRUE(form.rect().contains(form.ReportL->geometry()));
    EXPECT_EQ(form.windowTitle(), u"Other"_s);
    EXPECT_EQ(form.ReportL->text().count(u'\n'), 5);
    EXPECT_TRUE(form.isVisible());
}

// ---------------------------------------------------------------- pages

namespace {

std::string WithIconv(const std::string& bytes, const char* from, const char* to)
{
    const iconv_t converter = iconv_open(to, from);
    std::string result(bytes.size() * 4, '\0');
    std::string source = bytes;
    char* in = source.data();
    char* out = result.data();
    size_t inLeft = source.size();
    size_t outLeft = result.size();
    EXPECT_EQ(iconv(converter, &in, &inLeft, &out, &outLeft), 0U);
    iconv_close(converter);
    result.resize(result.size() - outLeft);
    return result;
}

} // namespace

TEST_F(Start, TheWelcomePageIsExactlyThisOne)
{
    QString shown;
    const SeamGuard navigate(NavigateSeam(), [&shown](const QString& path, bool preview) {
        EXPECT_FALSE(preview);
        shown = path;
    });
    place.Make(u"VMK Office/Welcome.htm"_s, "an old page that is longer than nothing");
    ShowWelcomePage();
    EXPECT_EQ(shown, WelcomeFile);
    EXPECT_EQ(
        WithIconv(ReadFileText(WelcomeFile), "CP1251", "UTF-8"),
        "<HTML><meta content=\"text/html; charset=windows-1251\" http-equiv=\"Content-Type\"><BODY "
        "STYLE=\"font-family: "
        "Tahoma; font-size:10pt; font-weight:bold; color:blue; margin-top:60px; margin-left:2px; "
        "margin-right:2px\">\r\n"
        "<H2 align=center><FONT STYLE=\"font-size:18pt; color:black\">Vellumark</FONT></H2>"
        "<DIV align=center><FONT STYLE=\"font-size:11pt; color:black\">Программа для редактирования и "
        "валидации "
        "книг в формате Fiction Book</FONT></DIV><BR>"
        "<DIV align=center>Если Вы знакомы с программой - загружайте файл и начинайте работать</DIV><BR>"
        "<DIV align=center>Если не знакомы - нажимайте F3, загружайте файлы в порядке их нумерации и "
        "следуйте "
        "инструкциям красного цвета</DIV>"
        "<BR><BR><BR><H2 align=center><FONT STYLE=\"font-size:14pt; color:red\">!!!БУДЬТЕ БДИТЕЛЬНЫ - ВМК НЕ "
        "ДРЕМЛЕТ!!!</FONT></H2></BODY></HTML>");
}

TEST_F(Start, AnEmptyPageNotifiesItsWindowAndReplacesTheFile)
{
    const SeamGuard navigate(NavigateSeam(), [this](const QString& path, bool preview) {
        EXPECT_FALSE(preview);
        log(u"page "_s + FileNameOf(path));
    });
    const SeamGuard caption(CaptionSeam(), [this](const QString& text, bool preview) {
        EXPECT_FALSE(preview);
        log(u"caption "_s + text);
    });
    const SeamGuard panels(StatusPanelSeam(), [this](int panel, const QString& text) {
        EXPECT_EQ(text, QString());
        log(u"panel %1"_s.arg(panel));
    });
    const SeamGuard pointer(PointerSeam(), [this](Pointer shape) {
        EXPECT_EQ(shape, Pointer::Default);
        log(u"pointer"_s);
    });
    place.Make(u"VMK Office/VMKEmpty.htm"_s, "an old page");

    ShowEmptyPage({.caption = u"Vellumark"_s, .status = u"ready"_s, .sound = u"ParseError.wav"_s});
    EXPECT_EQ(events,
              (QStringList{u"pointer"_s, u"status ready"_s, u"panel 1"_s, u"panel 2"_s, u"panel 3"_s,
                           u"panel 4"_s, u"panel 5"_s, u"caption Vellumark"_s, u"sound ParseError.wav"_s,
                           u"page VMKEmpty.htm"_s}));
    EXPECT_EQ(ReadFileText(EmptyPageFile), "<HTML><BODY></BODY></HTML>");

    // Without a new caption the window keeps the current one.
    events.clear();
    ShowEmptyPage({.status = u"ready"_s});
    EXPECT_FALSE(events.contains(u"caption "_s));
    EXPECT_EQ(events.last(), u"page VMKEmpty.htm"_s);
}
