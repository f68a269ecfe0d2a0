#include "Boxes.h"
#include "Chance.h"
#include "Desktop.h"
#include "Dialogs.h"
#include "MainWindowSeams.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

using namespace vmk;
using namespace Qt::StringLiterals;

TEST(Seams, AGuardReplacesASeamInItsScopeOnly)
{
    SetClipboardText(u"own"_s);
    {
        const SeamGuard guard(ClipboardTextSeam(), [] { return u"outer"_s; });
        {
            const SeamGuard inner(ClipboardTextSeam(), [] { return u"inner"_s; });
            EXPECT_EQ(ClipboardText(), u"inner"_s);
        }
        EXPECT_EQ(ClipboardText(), u"outer"_s);
    }
    EXPECT_EQ(ClipboardText(), u"own"_s);
}

TEST(Seams, AnOwnerRestoresTheEarlierSeams)
{
    const SeamGuard outer(ClipboardTextSeam(), [] { return u"outer"_s; });
    {
        SeamOwner owner;
        owner.fill(ClipboardTextSeam(), [] { return u"first"_s; });
        owner.fill(ClipboardTextSeam(), [] { return u"second"_s; });
        owner.fill(BoxSeam(), [](BoxKind, const QString&, const QString&) { return true; });
        EXPECT_EQ(ClipboardText(), u"second"_s);
        EXPECT_TRUE(YesNoBox(u"question"_s, u"title"_s));
        owner.release();
        EXPECT_EQ(ClipboardText(), u"outer"_s);
        owner.fill(ClipboardTextSeam(), [] { return u"third"_s; });
        EXPECT_EQ(ClipboardText(), u"third"_s);
    }
    EXPECT_EQ(ClipboardText(), u"outer"_s);
}

TEST(Seams, EachBoxReportsItsKindTextAndTitle)
{
    QStringList seen;
    const SeamGuard guard(BoxSeam(), [&](BoxKind kind, const QString& text, const QString& title) {
        seen.append(QString::number(int(kind)) + u' ' + text + u' ' + title);
        return true;
    });
    PlainBox(u"a"_s);
    InformationBox(u"b"_s, u"B"_s);
    StopBox(u"c"_s, u"C"_s);
    EXPECT_TRUE(YesNoBox(u"d"_s, u"D"_s));
    EXPECT_EQ(seen, (QStringList{u"0 a Vellumark"_s, u"1 b B"_s, u"2 c C"_s, u"3 d D"_s}));
}

TEST(Seams, WithoutAWindowABoxPrintsAndAnswersNo)
{
    testing::internal::CaptureStderr();
    EXPECT_FALSE(YesNoBox(u"one\r\ntwo"_s, u"Title"_s));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Title: one\ntwo\n");
}

TEST(Seams, WithoutAWindowDialogsAreCancelledAndNothingIsOpened)
{
    EXPECT_TRUE(AskFiles({}).isEmpty());
    EXPECT_TRUE(AskFile({}).isEmpty());
    EXPECT_FALSE(AskFont({.title = u"Font"_s, .current = {u"Verdana"_s, 10}}));
    EXPECT_FALSE(AskColor(u"#000000"_s));
    EXPECT_FALSE(OpenWithSystem(u"/nowhere"_s));
}

TEST(Seams, OnlyTheFirstFileOfSeveralIsTheFile)
{
    const SeamGuard guard(FileDialogSeam(), [](const FileDialogRequest& request) {
        return QStringList{request.title, u"b"_s};
    });
    FileDialogRequest request;
    request.title = u"a"_s;
    EXPECT_EQ(AskFile(request), u"a"_s);
}

TEST(Seams, AnHourglassEndsWithTheDefaultPointer)
{
    QList<Pointer> seen;
    const SeamGuard guard(PointerSeam(), [&](Pointer pointer) { seen.append(pointer); });
    {
        const HourglassScope hourglass;
    }
    EXPECT_EQ(seen, (QList<Pointer>{Pointer::Hourglass, Pointer::Default}));
}

TEST(Seams, StatusTextsReachTheirPanels)
{
    QString status;
    QString panel;
    const SeamGuard first(StatusSeam(), [&](const QString& text) { status = text; });
    const SeamGuard second(StatusPanelSeam(),
                           [&](int number, const QString& text) { panel = QString::number(number) + text; });
    ShowStatus(u"ready"_s);
    ShowStatusPanel(2, u" line"_s);
    EXPECT_EQ(status, u"ready"_s);
    EXPECT_EQ(panel, u"2 line"_s);
}

TEST(Seams, TheCounterGrowsAndTheFractionStaysBelowOne)
{
    const int64_t before = TickMilliseconds();
    for (int i = 0; i < 1000; ++i) {
        const double fraction = RandomFraction();
        ASSERT_GE(fraction, 0);
        ASSERT_LT(fraction, 1);
    }
    EXPECT_GE(TickMilliseconds(), before);
    EXPECT_LE(Now().secsTo(QDateTime::currentDateTime()), 1);
}

TEST(Seams, ATargetWithASchemeIsAnAddressWhateverFilesExist)
{
    const QTemporaryDir folder;
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    ASSERT_TRUE(QDir().mkpath(u"http:/example.org"_s));
    QFile file(u"mailto:me"_s);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(UrlOfTarget(u"http://example.org"_s), QUrl(u"http://example.org"_s));
    EXPECT_EQ(UrlOfTarget(u"mailto:me"_s), QUrl(u"mailto:me"_s));
    EXPECT_EQ(UrlOfTarget(folder.path()), QUrl::fromLocalFile(folder.path()));
    EXPECT_EQ(UrlOfTarget(folder.filePath(u"mailto:me"_s)),
              QUrl::fromLocalFile(folder.filePath(u"mailto:me"_s)));
    EXPECT_EQ(UrlOfTarget(u"www.example.org"_s), QUrl(u"www.example.org"_s));
    EXPECT_TRUE(QDir::setCurrent(before));
}
