#include "SessionFixture.h"

#include "Chance.h"

#include <QCoreApplication>
#include <QDateTime>

#include <sys/stat.h>
#include <unistd.h>

/// The folder of journals and unsaved texts.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

std::optional<InterruptedSession> Newest(const QString& folder)
{
    QStringList damaged;
    return NewestInterruptedSession(folder, damaged);
}

void MakeOld(const QString& path, int days)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        file.setFileTime(QDateTime::currentDateTime().addDays(-days), QFileDevice::FileModificationTime));
}

QStringList FilesOf(const QString& folder, const QString& pattern)
{
    return QDir(folder).entryList({pattern}, QDir::Files, QDir::Name);
}

TEST(RecoveryFolder, ACrashedSessionIsFound)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"lost"_s);
    const QByteArray page = session.document.savePage();
    session.crash();
    const std::optional<InterruptedSession> found = Newest(session.folder);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->state.facts.path, CurrentBook);
    EXPECT_TRUE(found->time.isValid());
    DisplayDocument document;
    ShowSession(found->state, document);
    EXPECT_EQ(document.savePage(), page);
}

TEST(RecoveryFolder, AJournalThatIsCutIsFoundAsIncomplete)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"lost"_s);
    session.type({2, 5}, u"last"_s);
    const QString journal = session.folder + u'/' + session.journals().front();
    session.crash();
    ASSERT_TRUE(Newest(session.folder)->isComplete);
    QFile file(journal);
    ASSERT_TRUE(file.resize(file.size() - 1));
    const std::optional<InterruptedSession> found = Newest(session.folder);
    ASSERT_TRUE(found);
    EXPECT_FALSE(found->isComplete);
}

TEST(RecoveryFolder, AMissingFolderHasNoSessions)
{
    const Workplace place;
    EXPECT_FALSE(Newest(place.Path(u"Recovery"_s)));
    CleanRecoveryFolder(place.Path(u"Recovery"_s));
    EXPECT_FALSE(QDir(place.Path(u"Recovery"_s)).exists());
}

TEST(RecoveryFolder, TheJournalOfALivingSessionIsNotTouched)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"living"_s);
    EXPECT_FALSE(Newest(session.folder));
    CleanRecoveryFolder(session.folder);
    EXPECT_EQ(session.journals().size(), 1);
    session.type({2, 5}, u"more "_s);
    EXPECT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
}

TEST(RecoveryFolder, AFoundSessionBelongsToItsFinder)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"lost"_s);
    session.crash();
    std::optional<InterruptedSession> found = Newest(session.folder);
    ASSERT_TRUE(found);
    EXPECT_FALSE(Newest(session.folder));
    found.reset();
    EXPECT_TRUE(Newest(session.folder));
}

TEST(RecoveryFolder, OfSeveralSessionsTheNewestIsFoundFirst)
{
    const Workplace place;
    Session first(place);
    first.type({2, 5}, u"first"_s);
    Session second(place);
    CurrentBook = place.Path(u"second.fb2"_s);
    second.type({2, 5}, u"second"_s);
    first.crash();
    second.crash();
    for (const QString& name : FilesOf(first.folder, u"book*.journal"_s))
        MakeOld(first.folder + u'/' + name, 1);
    std::optional<InterruptedSession> newest = Newest(first.folder);
    ASSERT_TRUE(newest);
    EXPECT_EQ(newest->state.facts.path, place.Path(u"second.fb2"_s));
    const std::optional<InterruptedSession> other = Newest(first.folder);
    ASSERT_TRUE(other);
    EXPECT_EQ(other->state.facts.path, place.Path(u"book.fb2"_s));
}

TEST(RecoveryFolder, AJournalWithoutUnsavedTextIsRemoved)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"saved"_s);
    session.recorder->noteSaved(CurrentBook);
    session.recorder->waitUntilWritten();
    // As after a kill: a copy that nobody has locked.
    ASSERT_TRUE(
        QFile::copy(session.folder + u'/' + session.journals().front(), session.folder + u"/x.journal"_s));
    EXPECT_FALSE(Newest(session.folder));
    EXPECT_FALSE(session.journals().contains(u"x.journal"_s));
    EXPECT_EQ(session.journals().size(), 1);
}

TEST(RecoveryFolder, ADeclinedSessionIsKeptFor30DaysAndNotFoundAgain)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"declined"_s);
    const QByteArray page = session.document.savePage();
    session.crash();
    MakeOld(session.folder + u'/' + session.journals().front(), 100);
    std::optional<InterruptedSession> found = Newest(session.folder);
    ASSERT_TRUE(found);
    const QString path = DeclineSession(*found);
    EXPECT_TRUE(path.endsWith(u".declined"_s));
    EXPECT_EQ(RecoveredPage(ReadContent(path).bytes), page);
    EXPECT_FALSE(Newest(session.folder));
    // The time begins when the user declines.
    CleanRecoveryFolder(session.folder);
    EXPECT_TRUE(QFile::exists(path));
    MakeOld(path, 29);
    CleanRecoveryFolder(session.folder);
    EXPECT_TRUE(QFile::exists(path));
    MakeOld(path, 31);
    CleanRecoveryFolder(session.folder);
    EXPECT_FALSE(QFile::exists(path));
}

TEST(RecoveryFolder, ADamagedJournalIsSetAsideAndNamed)
{
    const Workplace place;
    place.MakeFolders(u"Recovery"_s);
    place.Make(u"Recovery/a.journal"_s, "not a journal");
    place.Make(u"Recovery/b.journal"_s, "");
    QStringList damaged;
    EXPECT_FALSE(NewestInterruptedSession(place.Path(u"Recovery"_s), damaged));
    damaged.sort();
    EXPECT_EQ(damaged,
              (QStringList{place.Path(u"Recovery/a.declined"_s), place.Path(u"Recovery/b.declined"_s)}));
    EXPECT_EQ(ReadContent(damaged.front()).bytes, "not a journal");
}

TEST(RecoveryFolder, RemainsOfAKilledProcessAreRemoved)
{
    const Workplace place;
    place.MakeFolders(u"Recovery"_s);
    place.Make(u"Recovery/a.journal.new"_s, "half");
    place.Make(u"Recovery/b (unsaved 2026-01-01 00-00-00).fb2.new"_s, "half");
    CleanRecoveryFolder(place.Path(u"Recovery"_s));
    EXPECT_EQ(place.Names(u"Recovery"_s), QStringList());
}

TEST(RecoveryFolder, ALinkIsNotFollowed)
{
    const Workplace place;
    place.MakeFolders(u"Recovery"_s);
    place.Make(u"target"_s, "precious");
    ASSERT_TRUE(QFile::link(place.Path(u"target"_s), place.Path(u"Recovery/a.journal"_s)));
    QStringList damaged;
    EXPECT_FALSE(NewestInterruptedSession(place.Path(u"Recovery"_s), damaged));
    EXPECT_EQ(damaged, QStringList());
    EXPECT_EQ(ReadContent(place.Path(u"target"_s)).bytes, "precious");
    EXPECT_FALSE(LockedFile::create(place.Path(u"Recovery/a.journal"_s)));
}

TEST(RecoveryFolder, AFolderThatIsALinkIsNotUsed)
{
    const Workplace place;
    place.MakeFolders(u"elsewhere"_s);
    ASSERT_TRUE(QFile::link(place.Path(u"elsewhere"_s), place.Path(u"Recovery"_s)));
    Session session(place);
    session.type({2, 5}, u"x"_s);
    EXPECT_EQ(place.Names(u"elsewhere"_s), QStringList());
    QString reason;
    EXPECT_EQ(KeepUnsavedBook(place.Path(u"Recovery"_s), u"/b.fb2"_s, "text", reason), QString());
    EXPECT_NE(reason, QString());
    EXPECT_EQ(place.Names(u"elsewhere"_s), QStringList());
}

TEST(RecoveryFolder, NothingIsReadFromOrRemovedInAFolderThatIsALink)
{
    const Workplace place;
    {
        Session session(place);
        session.type({2, 5}, u"x"_s);
        session.crash();
    }
    ASSERT_TRUE(QDir().rename(place.Path(u"Recovery"_s), place.Path(u"elsewhere"_s)));
    place.Make(u"elsewhere/old.declined"_s, "precious");
    place.Make(u"elsewhere/a.journal.new"_s, "precious");
    place.Make(u"elsewhere/Unsaved texts.list"_s, R"({"text":"a (unsaved x).fb2","book":"/b.fb2"})");
    place.Make(u"elsewhere/a (unsaved x).fb2"_s, "text");
    MakeOld(place.Path(u"elsewhere/old.declined"_s), 100);
    const QStringList before = place.Names(u"elsewhere"_s);
    const QString folder = place.Path(u"Recovery"_s);
    ASSERT_TRUE(QFile::link(place.Path(u"elsewhere"_s), folder));
    EXPECT_FALSE(Newest(folder));
    CleanRecoveryFolder(folder);
    EXPECT_EQ(TakeNewsOfUnsavedText(folder, u"/b.fb2"_s), QString());
    EXPECT_EQ(place.Names(u"elsewhere"_s), before);
}

/// A folder of another user, with files of this user in it.
class OtherUser : public testing::Test
{
protected:
    void SetUp() override
    {
        if (::geteuid() != 0)
            GTEST_SKIP() << "only a superuser can make files of another user";
    }
    static void give(const QString& path)
    {
        constexpr uid_t Other = 12'345;
        ASSERT_EQ(::lchown(QFile::encodeName(path).constData(), Other, gid_t(-1)), 0);
    }

    const Workplace place;
};

TEST_F(OtherUser, HasAFolderThatIsNotUsed)
{
    place.MakeFolders(u"Recovery"_s);
    place.Make(u"Recovery/old.declined"_s, "precious");
    place.Make(u"Recovery/Unsaved texts.list"_s, R"({"text":"a (unsaved x).fb2","book":"/b.fb2"})");
    place.Make(u"Recovery/a (unsaved x).fb2"_s, "text");
    MakeOld(place.Path(u"Recovery/old.declined"_s), 100);
    const QStringList before = place.Names(u"Recovery"_s);
    give(place.Path(u"Recovery"_s));
    Session session(place);
    session.type({2, 5}, u"x"_s);
    QCoreApplication::processEvents();
    QString reason;
    EXPECT_EQ(KeepUnsavedBook(session.folder, u"/b.fb2"_s, "text", reason), QString());
    EXPECT_TRUE(reason.contains(session.folder)) << reason.toStdString();
    CleanRecoveryFolder(session.folder);
    EXPECT_EQ(TakeNewsOfUnsavedText(session.folder, u"/b.fb2"_s), QString());
    EXPECT_EQ(place.Names(u"Recovery"_s), before);
}

TEST_F(OtherUser, HasAJournalThatIsRefused)
{
    Session session(place);
    session.type({2, 5}, u"x"_s);
    const QString journal = session.folder + u'/' + session.journals().front();
    session.crash();
    ASSERT_TRUE(Newest(session.folder));
    give(journal);
    EXPECT_FALSE(Newest(session.folder));
    EXPECT_FALSE(LockedFile::open(journal));
    EXPECT_TRUE(QFile::exists(journal));
    // Its name is not used either.
    EXPECT_FALSE(LockedFile::create(journal));
}

TEST_F(OtherUser, HasNotesThatAreNotRead)
{
    place.MakeFolders(u"Recovery"_s);
    place.Make(u"Recovery/Unsaved texts.list"_s, R"({"text":"a (unsaved x).fb2","book":"/b.fb2"})");
    place.Make(u"Recovery/a (unsaved x).fb2"_s, "text");
    EXPECT_NE(TakeNewsOfUnsavedText(place.Path(u"Recovery"_s), u"/b.fb2"_s), QString());
    place.Make(u"Recovery/Unsaved texts.list"_s, R"({"text":"a (unsaved x).fb2","book":"/b.fb2"})");
    give(place.Path(u"Recovery/Unsaved texts.list"_s));
    EXPECT_EQ(TakeNewsOfUnsavedText(place.Path(u"Recovery"_s), u"/b.fb2"_s), QString());
}

TEST(RecoveryFolder, FilesAreReadableByTheirOwnerOnly)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"x"_s);
    constexpr auto Others = QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::WriteGroup
        | QFileDevice::WriteOther | QFileDevice::ExeGroup | QFileDevice::ExeOther;
    EXPECT_FALSE(QFile::permissions(session.folder).testAnyFlags(Others));
    EXPECT_FALSE(QFile::permissions(session.folder + u'/' + session.journals().front()).testAnyFlags(Others));
}

// ---------------------------------------------------------------- unsaved texts

TEST(UnsavedTexts, AreNamedAfterBookAndTime)
{
    const Workplace place;
    const SeamGuard now(NowSeam(), [] { return QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7)); });
    const QString folder = place.Path(u"Recovery"_s);
    QString reason;
    EXPECT_EQ(KeepUnsavedBook(folder, u"/books/war.fb2"_s, "one", reason),
              folder + u"/war (unsaved 2026-03-04 05-06-07).fb2"_s);
    // A second one in the same second.
    EXPECT_EQ(KeepUnsavedBook(folder, u"/books/war.fb2"_s, "two", reason),
              folder + u"/war (unsaved 2026-03-04 05-06-07) 2.fb2"_s);
    EXPECT_EQ(ReadContent(folder + u"/war (unsaved 2026-03-04 05-06-07).fb2"_s).bytes, "one");
}

TEST(UnsavedTexts, OfABookWithTheLongestNameAreKept)
{
    const Workplace place;
    const QString folder = place.Path(u"Recovery"_s);
    QString reason;
    for (const QString& name :
         {QString(85, QChar(0x4e00)), QString::fromUtf8("🙂").repeated(63), QString(255, u'n')}) {
        EXPECT_NE(KeepUnsavedBook(folder, u"/books/"_s + name, "text", reason), QString())
            << reason.toStdString();
        Session session(place);
        CurrentBook = u"/books/"_s + name;
        session.type({2, 5}, u"x"_s);
        EXPECT_EQ(session.journals().size(), 1);
        session.recorder->noteKept();
    }
}

TEST(UnsavedTexts, TheNewest20AreKept)
{
    const Workplace place;
    const QString folder = place.Path(u"Recovery"_s);
    QString reason;
    for (int i = 0; i < 23; ++i) {
        const QString path = KeepUnsavedBook(folder, u"/b%1.fb2"_s.arg(i), "text", reason);
        ASSERT_NE(path, QString());
        MakeOld(path, 100 - i);
    }
    CleanRecoveryFolder(folder);
    const QStringList names = FilesOf(folder, u"*.fb2"_s);
    EXPECT_EQ(names.size(), 20);
    EXPECT_TRUE(names.filter(u"b2 ("_s).isEmpty());
    EXPECT_EQ(names.filter(u"b22 ("_s).size(), 1);
}

TEST(UnsavedTexts, AreAnnouncedOnceToTheirBook)
{
    const Workplace place;
    const QString folder = place.Path(u"Recovery"_s);
    QString reason;
    const QString first = KeepUnsavedBook(folder, u"/books/a.fb2"_s, "text", reason);
    const QString other = KeepUnsavedBook(folder, u"/elsewhere/a.fb2"_s, "text", reason);
    EXPECT_EQ(TakeNewsOfUnsavedText(folder, u"/books/b.fb2"_s), QString());
    EXPECT_EQ(TakeNewsOfUnsavedText(folder, u"/books/a.fb2"_s), first);
    EXPECT_EQ(TakeNewsOfUnsavedText(folder, u"/books/a.fb2"_s), QString());
    EXPECT_EQ(TakeNewsOfUnsavedText(folder, u"/elsewhere/a.fb2"_s), other);
    const QString next = KeepUnsavedBook(folder, u"/books/a.fb2"_s, "text", reason);
    EXPECT_EQ(TakeNewsOfUnsavedText(folder, u"/books/a.fb2"_s), next);
}

TEST(UnsavedTexts, ARemovedTextIsNotAnnounced)
{
    const Workplace place;
    const QString folder = place.Path(u"Recovery"_s);
    QString reason;
    ASSERT_TRUE(QFile::remove(KeepUnsavedBook(folder, u"/books/a.fb2"_s, "text", reason)));
    EXPECT_EQ(TakeNewsOfUnsavedText(folder, u"/books/a.fb2"_s), QString());
}

TEST(UnsavedTexts, DamagedNotesAnnounceNothing)
{
    const Workplace place;
    place.MakeFolders(u"Recovery"_s);
    place.Make(u"Recovery/Unsaved texts.list"_s,
               std::string(1, '\0') + "{]\n{\"book\":\"/a\",\"text\":\"../x\"}\n[1]\n");
    place.Make(u"x"_s, "outside");
    EXPECT_EQ(TakeNewsOfUnsavedText(place.Path(u"Recovery"_s), u"/a"_s), QString());
}

TEST(UnsavedTexts, ALinkInPlaceOfTheNotesIsNotFollowed)
{
    const Workplace place;
    const std::string precious(100'000, 'p');
    place.MakeFolders(u"Recovery"_s);
    place.Make(u"target"_s, precious);
    const QString notes = place.Path(u"Recovery/Unsaved texts.list"_s);
    ASSERT_TRUE(QFile::link(place.Path(u"target"_s), notes));
    QString reason;
    EXPECT_NE(KeepUnsavedBook(place.Path(u"Recovery"_s), u"/b.fb2"_s, "text", reason), QString());
    EXPECT_EQ(ReadContent(place.Path(u"target"_s)).bytes, precious);
}

TEST(UnsavedTexts, APipeInPlaceOfTheNotesDoesNotBlock)
{
    const Workplace place;
    place.MakeFolders(u"Recovery"_s);
    const QString notes = place.Path(u"Recovery/Unsaved texts.list"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(notes).constData(), 0600), 0);
    EXPECT_EQ(TakeNewsOfUnsavedText(place.Path(u"Recovery"_s), u"/b.fb2"_s), QString());
}

TEST(UnsavedTexts, LongNotesAreShortenedToTheTextsThatExist)
{
    const Workplace place;
    const QString folder = place.Path(u"Recovery"_s);
    place.MakeFolders(u"Recovery"_s);
    std::string notes;
    for (int i = 0; i < 2'000; ++i)
        notes += R"({"text":"gone (unsaved x).fb2","book":"/g.fb2"})"
                 "\n";
    place.Make(u"Recovery/a (unsaved x).fb2"_s, "text");
    notes += R"({"text":"a (unsaved x).fb2","book":"/a.fb2"})"
             "\n";
    place.Make(u"Recovery/Unsaved texts.list"_s, notes);
    QString reason;
    const QString kept = KeepUnsavedBook(folder, u"/b.fb2"_s, "text", reason);
    EXPECT_LT(QFile(place.Path(u"Recovery/Unsaved texts.list"_s)).size(), 1'000);
    EXPECT_EQ(TakeNewsOfUnsavedText(folder, u"/a.fb2"_s), folder + u"/a (unsaved x).fb2"_s);
    EXPECT_EQ(TakeNewsOfUnsavedText(folder, u"/b.fb2"_s), kept);
    EXPECT_EQ(FilesOf(folder, u"*.new"_s), QStringList());
}

TEST(UnsavedTexts, AFullDiskLeavesNoPart)
{
    const Workplace place;
    const QString folder = place.Path(u"Recovery"_s);
    QString reason;
    {
        const FileSizeLimit limit(100);
        EXPECT_EQ(KeepUnsavedBook(folder, u"/a.fb2"_s, std::string(1000, 'x'), reason), QString());
    }
    EXPECT_NE(reason, QString());
    EXPECT_EQ(place.Names(u"Recovery"_s), QStringList());
}

} // namespace
} // namespace vmk
