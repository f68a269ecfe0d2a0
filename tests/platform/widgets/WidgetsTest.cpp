#include "Boxes.h"
#include "Desktop.h"
#include "DialogOwner.h"
#include "Dialogs.h"
#include "MainWindowSeams.h"
#include "SoundPlayer.h"
#include "StandardDialogs.h"
#include "TestPaths.h"
#include "Workplace.h"

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFontDialog>
#include <QHeaderView>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QTreeView>
#include <QUrl>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <new>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

/// Acts on the next modal window of a type as a user would, as soon as it is shown.
template <typename Dialog>
void WithNextDialog(std::function<void(Dialog&)> act)
{
    QTimer::singleShot(0, qApp, [act = std::move(act)] {
        auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        act(*dialog);
    });
}

QByteArray ProgramSound(const char* name)
{
    QFile file(QLatin1StringView(VMK_BIN_DIR "/sounds/") + QLatin1StringView(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Uses the dialogs of Qt, which are the same on every desktop, so that a test can operate them.
class Dialogs : public testing::Test
{
protected:
    void SetUp() override { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
    void TearDown() override { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs, false); }
};

} // namespace

TEST(MessageBoxes, EachKindHasItsIconAndButtons)
{
    const auto iconAndButtons = [](auto show) {
        std::pair<QMessageBox::Icon, QMessageBox::StandardButtons> seen;
        WithNextDialog<QMessageBox>([&seen](QMessageBox& box) {
            seen = {box.icon(), box.standardButtons()};
            box.close();
        });
        show();
        return seen;
    };
    using B = QMessageBox;
    EXPECT_EQ(iconAndButtons([] { PlainBox(u"t"_s); }), std::pair(B::NoIcon, B::StandardButtons(B::Ok)));
    EXPECT_EQ(iconAndButtons([] { InformationBox(u"t"_s); }),
              std::pair(B::Information, B::StandardButtons(B::Ok)));
    EXPECT_EQ(iconAndButtons([] { StopBox(u"t"_s); }), std::pair(B::Critical, B::StandardButtons(B::Ok)));
    EXPECT_EQ(iconAndButtons([] { EXPECT_FALSE(YesNoBox(u"t"_s)); }), std::pair(B::Question, B::Yes | B::No));
}

TEST(MessageBoxes, AConfirmationHasNoAsItsDefault)
{
    const auto defaultOf = [](auto show) {
        QAbstractButton* button = nullptr;
        QMessageBox::StandardButton kind = QMessageBox::NoButton;
        WithNextDialog<QMessageBox>([&](QMessageBox& box) {
            button = box.defaultButton();
            kind = box.standardButton(button);
            EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No);
            box.close();
        });
        EXPECT_FALSE(show());
        return kind;
    };
    EXPECT_EQ(defaultOf([] { return ConfirmBox(u"t"_s); }), QMessageBox::No);
    EXPECT_EQ(defaultOf([] { return YesNoBox(u"t"_s); }), QMessageBox::Yes);
}

TEST(MessageBoxes, AChoiceHasThreeAnswersAndClosingCancels)
{
    const auto answerTo = [](const std::function<void(QMessageBox&)>& act) {
        WithNextDialog<QMessageBox>([&act](QMessageBox& box) {
            EXPECT_EQ(box.icon(), QMessageBox::Question);
            EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            EXPECT_EQ(box.windowTitle(), u"Vellumark"_s);
            EXPECT_EQ(box.text(), u"one\ntwo"_s);
            act(box);
        });
        return ChoiceBox(u"one\r\ntwo"_s);
    };
    const auto press = [](Qt::Key key) { return [key](QMessageBox& box) { QTest::keyClick(&box, key); }; };
    const auto click = [](QMessageBox::StandardButton button) {
        return [button](QMessageBox& box) { box.button(button)->click(); };
    };
    EXPECT_EQ(answerTo(press(Qt::Key_Return)), BoxAnswer::Yes);
    EXPECT_EQ(answerTo(press(Qt::Key_Escape)), BoxAnswer::Cancel);
    EXPECT_EQ(answerTo([](QMessageBox& box) { box.close(); }), BoxAnswer::Cancel);
    EXPECT_EQ(answerTo(click(QMessageBox::Yes)), BoxAnswer::Yes);
    EXPECT_EQ(answerTo(click(QMessageBox::No)), BoxAnswer::No);
    EXPECT_EQ(answerTo(click(QMessageBox::Cancel)), BoxAnswer::Cancel);
}

TEST(MessageBoxes, TextIsPlainAndEitherLineEndSeparatesLines)
{
    QString text;
    QString title;
    WithNextDialog<QMessageBox>([&](QMessageBox& box) {
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        text = box.text();
        title = box.windowTitle();
        box.accept();
    });
    StopBox(u"<b>one</b>\r\ntwo\nthree"_s, u"VMK: a.fb2"_s);
    EXPECT_EQ(text, u"<b>one</b>\ntwo\nthree"_s);
    EXPECT_EQ(title, u"VMK: a.fb2"_s);
}

TEST(MessageBoxes, TheAnswerIsTheButtonPressed)
{
    for (const auto button : {QMessageBox::Yes, QMessageBox::No}) {
        WithNextDialog<QMessageBox>([button](QMessageBox& box) { box.button(button)->click(); });
        EXPECT_EQ(YesNoBox(u"Sure?"_s), button == QMessageBox::Yes);
    }
}

TEST(FileFilters, DescriptionsContainTheirPatternsExactlyOnce)
{
    EXPECT_EQ(NameFilters(u"Fiction Book Files (*.fb2)|*.fb2|"_s),
              QStringList{u"Fiction Book Files (*.fb2)"_s});
    EXPECT_EQ(NameFilters(u"Books|*.fb2;*.fb|All|*.*"_s),
              (QStringList{u"Books (*.fb2 *.fb)"_s, u"All (*.*)"_s}));
    EXPECT_EQ(NameFilters(QString()), QStringList());
    EXPECT_EQ(NameFilters(u"no pattern"_s), QStringList());
}

TEST_F(Dialogs, AFileDialogStartsInTheGivenFolderAndKeepsTheCurrentOne)
{
    const Workplace place;
    place.Make(u"a.fb2"_s, "x");
    const QString before = QDir::currentPath();
    WithNextDialog<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), u"Open it"_s);
        EXPECT_EQ(dialog.directory().canonicalPath(), QDir(place.Folder()).canonicalPath());
        EXPECT_EQ(dialog.nameFilters(), QStringList{u"Books (*.fb2)"_s});
        dialog.selectFile(u"a.fb2"_s);
        QDir::setCurrent(place.Folder());
        static_cast<QDialog&>(dialog).accept();
    });
    const QString path = AskFile({.kind = FileDialogRequest::Open,
                                  .title = u"Open it"_s,
                                  .folder = place.Folder(),
                                  .fileName = {},
                                  .filter = u"Books|*.fb2"_s});
    EXPECT_EQ(QFileInfo(path).canonicalFilePath(), QFileInfo(place.Path(u"a.fb2"_s)).canonicalFilePath());
    EXPECT_EQ(QDir::currentPath(), before);
}

TEST_F(Dialogs, ACancelledFileDialogReturnsNothing)
{
    WithNextDialog<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(AskFiles({.kind = FileDialogRequest::OpenSeveral,
                        .title = {},
                        .folder = u"/no/such"_s,
                        .fileName = {},
                        .filter = {}}),
              QStringList());
}

TEST_F(Dialogs, ASaveDialogOffersTheNameAndDoesNotAskAboutReplacing)
{
    const Workplace place;
    place.Make(u"old.fb2"_s, "x");
    WithNextDialog<QFileDialog>([](QFileDialog& dialog) {
        EXPECT_EQ(QFileInfo(dialog.selectedFiles().value(0)).fileName(), u"old.fb2"_s);
        static_cast<QDialog&>(dialog).accept();
    });
    const QString path = AskFile({.kind = FileDialogRequest::Save,
                                  .title = {},
                                  .folder = place.Folder(),
                                  .fileName = u"old.fb2"_s,
                                  .filter = {}});
    EXPECT_EQ(QFileInfo(path).fileName(), u"old.fb2"_s);
}

TEST_F(Dialogs, ASaveDialogAddsTheExtensionOfItsFilter)
{
    const Workplace place;
    const auto saved = [&](const QString& filter) {
        WithNextDialog<QFileDialog>([](QFileDialog& dialog) {
            dialog.selectFile(u"new"_s);
            static_cast<QDialog&>(dialog).accept();
        });
        const QString path = AskFile({.kind = FileDialogRequest::Save,
                                      .title = {},
                                      .folder = place.Folder(),
                                      .fileName = {},
                                      .filter = filter});
        return QFileInfo(path).fileName();
    };
    EXPECT_EQ(saved(u"Fiction Book Files (*.fb2)|*.fb2|"_s), u"new.fb2"_s);
    EXPECT_EQ(saved(u"All files|*.*"_s), u"new"_s);
    EXPECT_EQ(saved(u"Pictures|*.png;*.jpg"_s), u"new"_s);
}

TEST_F(Dialogs, AnOpenDialogAcceptsItsOfferedNameWithoutTheExtension)
{
    const Workplace place;
    place.Make(u"FictionBook.xsd"_s, "x");
    WithNextDialog<QFileDialog>([](QFileDialog& dialog) { static_cast<QDialog&>(dialog).accept(); });
    const QString path = AskFile({.kind = FileDialogRequest::Open,
                                  .title = {},
                                  .folder = place.Folder(),
                                  .fileName = u"FictionBook"_s,
                                  .filter = u"Fiction Book Shemes Files (*.xsd)|*.xsd|"_s});
    EXPECT_EQ(QFileInfo(path).fileName(), u"FictionBook.xsd"_s);
}

TEST_F(Dialogs, AnOpenDialogShowsSizesAndDatesCompletely)
{
    const Workplace place;
    place.Make(u"a book with a rather long name.fb2"_s, "x");
    WithNextDialog<QFileDialog>([](QFileDialog& dialog) {
        EXPECT_GE(dialog.width(), 760);
        const auto* list = dialog.findChild<QTreeView*>(u"treeView"_s);
        ASSERT_NE(list, nullptr);
        EXPECT_TRUE(QTest::qWaitFor([list] { return list->model()->rowCount(list->rootIndex()) == 1; }));
        const auto fits = [list](int column) {
            const QModelIndex cell = list->model()->index(0, column, list->rootIndex());
            const QAbstractItemView& view = *list;
            return list->columnWidth(column) >= view.sizeHintForIndex(cell).width();
        };
        for (const int column : {1, 2, 3})
            EXPECT_TRUE(QTest::qWaitFor([&] { return fits(column); })) << column;
        EXPECT_EQ(list->header()->sectionResizeMode(0), QHeaderView::Stretch);
        dialog.reject();
    });
    (void)AskFile({.kind = FileDialogRequest::Open,
                   .title = {},
                   .folder = place.Folder(),
                   .fileName = {},
                   .filter = u"Books|*.fb2"_s});
}

TEST_F(Dialogs, ABoxDuringLongWorkHasTheDefaultPointer)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    WithNextDialog<QMessageBox>([](QMessageBox& box) {
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::ArrowCursor);
        box.close();
    });
    PlainBox(u"t"_s);
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QGuiApplication::restoreOverrideCursor();
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(Dialogs, ABoxIsInFrontOfTheMainWindowWhateverFormIsActive)
{
    QMainWindow mainWindow;
    mainWindow.show();
    QWidget form;
    form.show();
    QApplication::setActiveWindow(&form);
    ASSERT_EQ(QApplication::activeWindow(), &form);
    EXPECT_EQ(DialogOwner(), &mainWindow);

    QDialog tool(&mainWindow);
    tool.show();
    QApplication::setActiveWindow(&tool);
    EXPECT_EQ(DialogOwner(), &tool);

    mainWindow.hide();
    QApplication::setActiveWindow(&form);
    EXPECT_EQ(DialogOwner(), &form);
}

TEST_F(Dialogs, AFontDialogStartsWithTheGivenFontAndReturnsTheSelectedOne)
{
    const FontChoice current{.name = u"DejaVu Sans"_s, .size = 13, .bold = true, .italic = false};
    WithNextDialog<QFontDialog>([](QFontDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), u"Change viewer font"_s);
        EXPECT_EQ(dialog.currentFont().pointSize(), 13);
        EXPECT_TRUE(dialog.currentFont().bold());
        dialog.accept();
    });
    const FontDialogRequest request{.title = u"Change viewer font"_s, .current = current};
    EXPECT_EQ(AskFont(request), current);
    WithNextDialog<QFontDialog>([](QFontDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(AskFont(request), std::nullopt);
}

TEST_F(Dialogs, AColorDialogUsesHexDigits)
{
    WithNextDialog<QColorDialog>([](QColorDialog& dialog) {
        EXPECT_EQ(dialog.currentColor(), QColor(165, 42, 42));
        dialog.setCurrentColor(QColor(10, 11, 255));
        dialog.accept();
    });
    EXPECT_EQ(AskColor(u"#a52a2a"_s), u"#0A0BFF"_s);
    WithNextDialog<QColorDialog>([](QColorDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(AskColor(u"no colour"_s), std::nullopt);
}

TEST(Sound, EverySoundOfTheProgramIsDecoded)
{
    for (const char* name : {"DocComplete.wav", "FileLoadError.wav", "FileSaved.wav",
                             "NameSpaceErrorOnSave.wav", "NoParseError.wav", "ParseError.wav", "bul'.wav"}) {
        const std::optional<WaveSound> sound = ReadWaveSound(ProgramSound(name));
        ASSERT_TRUE(sound) << name;
        EXPECT_EQ(sound->channels, 1);
        EXPECT_EQ(sound->bitsPerSample, 16);
        EXPECT_GT(sound->length().count(), 100);
        EXPECT_LT(sound->length().count(), 700);
    }
}

TEST(Sound, ATruncatedFileIsReadUpToItsEndOrRejected)
{
    const QByteArray whole = ProgramSound("bul'.wav").first(200);
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        const std::optional<WaveSound> sound = ReadWaveSound(whole.first(size));
        ASSERT_EQ(sound.has_value(), size > 44) << size;
        if (sound) {
            EXPECT_EQ(sound->samples.size(), size - 44);
        }
    }
}

TEST(Sound, OtherFilesThanUncompressedWavesAreRejected)
{
    QByteArray compressed = ProgramSound("bul'.wav");
    compressed[20] = 2;
    EXPECT_FALSE(ReadWaveSound(compressed));
    EXPECT_FALSE(ReadWaveSound("RIFF1234WAVE"));
    EXPECT_FALSE(ReadWaveSound(QByteArray(1000, '\xff')));
    // A block that claims to be larger than the file.
    EXPECT_FALSE(ReadWaveSound(QByteArray("RIFF1234WAVEfmt \xff\xff\xff\xff", 20) + QByteArray(40, '\1')));
}

namespace {

// So many failed plays end before one real sound would, even on a busy machine.
constexpr int ManyPlays = 20;
constexpr int ShortestSound = 300; // milliseconds

} // namespace

TEST(Sound, AMissingOrBrokenFileIsSkippedImmediately)
{
    const Workplace place;
    place.Make(u"broken.wav"_s, "RIFF....WAVE");
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < ManyPlays; ++i) {
        PlayToEnd(place.Path(u"missing.wav"_s));
        PlayToEnd(place.Path(u"broken.wav"_s));
    }
    EXPECT_LT(timer.elapsed(), ManyPlays * ShortestSound / 2);
}

TEST(Sound, WithoutADevicePlayingReturnsImmediately)
{
    const SeamGuard none(SoundOutputSeam(), [](const WaveSound&) { return SoundOutputMaker(); });
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < ManyPlays; ++i)
        PlayToEnd(QLatin1StringView(VMK_BIN_DIR "/sounds/NoParseError.wav"));
    EXPECT_LT(timer.elapsed(), ManyPlays * ShortestSound / 2);
}

namespace {

/// What a device of a test does, and what it has seen.
struct DeviceCourse
{
    bool isRefusing = false;
    bool hasNoMemory = false;
    bool isSilent = false; ///< It accepts the samples and never plays them.
    bool isUnplugged = false; ///< It stops before the end.
    QSemaphore* blocker = nullptr; ///< Starting waits for it.
    std::atomic<bool> hasPlayedAll = false;
    std::atomic<bool> isGone = false; ///< The device was closed.
    std::atomic<QThread*> thread = nullptr;
    QByteArray samples;
};

/// A device that plays in real time, without a sound.
class TimedOutput : public SoundOutput
{
public:
    TimedOutput(DeviceCourse& deviceCourse, std::chrono::milliseconds soundLength)
        : course(deviceCourse)
        , length(soundLength)
    {
    }

    ~TimedOutput() override { course.isGone = true; }

    [[nodiscard]] bool start(QIODevice& samples) override
    {
        course.thread = QThread::currentThread();
        if (course.hasNoMemory)
            throw std::bad_alloc();
        if (course.blocker)
            course.blocker->acquire();
        // A real device takes the samples long before it has played them.
        course.samples = samples.readAll();
        timer.start();
        return !course.isRefusing;
    }
    [[nodiscard]] bool hasStopped() const override { return course.isUnplugged && timer.elapsed() > 20; }
    [[nodiscard]] std::chrono::microseconds played() const override
    {
        if (course.isSilent || course.isUnplugged)
            return {};
        const std::chrono::microseconds now(timer.nsecsElapsed() / 1000);
        course.hasPlayedAll = now >= length;
        return std::min<std::chrono::microseconds>(now, length);
    }

private:
    DeviceCourse& course;
    std::chrono::milliseconds length;
    QElapsedTimer timer;
};

/// Plays one of the program's sounds, of less than a second, on such a device.
class SoundDevice : public testing::Test
{
protected:
    void play()
    {
        ranMeanwhile = false;
        QTimer::singleShot(0, qApp, [this] { ranMeanwhile = true; });
        QElapsedTimer timer;
        timer.start();
        PlayToEnd(QLatin1StringView(VMK_BIN_DIR "/sounds/NoParseError.wav"));
        elapsed = std::chrono::milliseconds(timer.elapsed());
        EXPECT_FALSE(ranMeanwhile) << "no timer and no key of the program runs during the sound";
        QApplication::processEvents();
        EXPECT_TRUE(ranMeanwhile);
    }

    const WaveSound sound = ReadWaveSound(ProgramSound("NoParseError.wav")).value_or(WaveSound());
    DeviceCourse course;
    std::chrono::milliseconds elapsed{};
    bool ranMeanwhile = false;

private:
    const SeamGuard<SoundOutputMaker(const WaveSound&)> devices{
        SoundOutputSeam(), [this](const WaveSound& played) {
            EXPECT_EQ(played.samples, sound.samples);
            return [this] { return std::make_unique<TimedOutput>(course, sound.length()); };
        }};
};

} // namespace

TEST_F(SoundDevice, TheProgramWaitsUntilTheSoundHasEnded)
{
    play();
    EXPECT_TRUE(course.hasPlayedAll);
    EXPECT_GE(elapsed, sound.length());
    EXPECT_EQ(course.samples, sound.samples);
    EXPECT_NE(course.thread.load(), QThread::currentThread());
}

TEST_F(SoundDevice, ADeviceThatRefusesOrStopsIsNotWaitedFor)
{
    // As many failures as would take minutes if each one were waited for.
    constexpr int Many = 100;
    course.isRefusing = true;
    std::chrono::milliseconds sum{};
    for (int i = 0; i < Many; ++i, sum += elapsed)
        play();
    EXPECT_LT(sum, Many * sound.length() / 2);
    course.isRefusing = false;
    course.isUnplugged = true;
    sum = {};
    constexpr int Few = 5;
    for (int i = 0; i < Few; ++i, sum += elapsed)
        play();
    EXPECT_LT(sum, Few * (sound.length() + std::chrono::milliseconds(500)));
    EXPECT_FALSE(course.hasPlayedAll);
}

TEST_F(SoundDevice, WithoutMemoryThereIsNoSound)
{
    course.hasNoMemory = true;
    play();
    EXPECT_NE(course.thread.load(), nullptr);
    EXPECT_NE(course.thread.load(), QThread::currentThread());
    EXPECT_TRUE(course.isGone);
    EXPECT_FALSE(course.hasPlayedAll);
    const SeamGuard failing(SoundOutputSeam(),
                            [](const WaveSound&) -> SoundOutputMaker { throw std::bad_alloc(); });
    play();
}

TEST_F(SoundDevice, ASilentDeviceIsLeftAfterASecond)
{
    course.isSilent = true;
    play();
    EXPECT_GE(elapsed, sound.length() + std::chrono::seconds(1));
    EXPECT_TRUE(course.isGone);
}

TEST_F(SoundDevice, ADeviceThatDoesNotRespondIsAbandoned)
{
    QSemaphore blocker;
    course.blocker = &blocker;
    play();
    EXPECT_GE(elapsed, sound.length() + std::chrono::seconds(1));
    EXPECT_FALSE(course.isGone);
    // It responds much later: its thread ends and is removed.
    const QPointer<QThread> thread = course.thread.load();
    ASSERT_FALSE(thread.isNull());
    blocker.release();
    EXPECT_TRUE(QTest::qWaitFor([&thread] { return thread.isNull(); }, 20'000));
}

namespace {

/// Receives the URLs that would be opened by the system.
class UrlCatcher : public QObject
{
    Q_OBJECT

public:
    explicit UrlCatcher(const QString& urlScheme)
        : scheme(urlScheme)
    {
        QDesktopServices::setUrlHandler(scheme, this, "take");
    }
    ~UrlCatcher() override { QDesktopServices::unsetUrlHandler(scheme); }

    QUrl taken;

public Q_SLOTS:
    void take(const QUrl& url) { taken = url; }

private:
    QString scheme;
};

} // namespace

TEST(Opening, AFileIsOpenedAsALocalUrlAndAnAddressUnchanged)
{
    const Workplace place;
    place.Make(u"a picture #1.png"_s, "x");
    const UrlCatcher files(u"file"_s);
    EXPECT_TRUE(OpenWithSystem(place.Path(u"a picture #1.png"_s)));
    EXPECT_EQ(files.taken.toLocalFile(), place.Path(u"a picture #1.png"_s));

    const UrlCatcher web(u"https"_s);
    EXPECT_TRUE(OpenWithSystem(u"https://example.org/a?b=c#d"_s));
    EXPECT_EQ(web.taken, QUrl(u"https://example.org/a?b=c#d"_s));
}

TEST(Opening, AFileWithoutAProgramIsNotOpened)
{
    // A stand-in for the desktop's own tool.
    const Workplace place;
    place.Make(u"a.fb2"_s, "x");
    place.Make(u"xdg-mime"_s,
               "#!/bin/sh\n[ \"$2\" = filetype ] && echo text/plain\n[ \"$2\" = default ] && echo "
               "\"$HANDLER\"\nexit 0\n");
    QFile::setPermissions(place.Path(u"xdg-mime"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther
                              | QFile::ExeOther | QFile::ReadGroup | QFile::ExeGroup);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", place.Folder().toUtf8() + ':' + path);
    const UrlCatcher files(u"file"_s);
    EXPECT_FALSE(OpenWithSystem(place.Path(u"a.fb2"_s)));
    EXPECT_TRUE(files.taken.isEmpty());
    qputenv("HANDLER", "reader.desktop");
    EXPECT_TRUE(OpenWithSystem(place.Path(u"a.fb2"_s)));
    EXPECT_FALSE(files.taken.isEmpty());
    qunsetenv("HANDLER");
    qputenv("PATH", path);
}

TEST(Clipboard, ContainsPlainText)
{
    SetClipboardText(u"текст & <b>"_s);
    EXPECT_EQ(ClipboardText(), u"текст & <b>"_s);
}

TEST(MousePointer, OneCallRestoresTheDefault)
{
    SetPointer(Pointer::Default);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    SetPointer(Pointer::Hourglass);
    SetPointer(Pointer::Hourglass);
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    SetPointer(Pointer::Default);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

#include "WidgetsTest.moc"
