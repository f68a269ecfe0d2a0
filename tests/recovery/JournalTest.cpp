#include "JournalWriter.h"
#include "SessionFixture.h"

#include <QElapsedTimer>

#include <algorithm>
#include <map>
#include <random>

/// The journal: what is recovered equals what was shown.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

Position Caret(const JournalBase& state)
{
    return state.selection.focus;
}

TEST(Journal, NothingIsWrittenBeforeTheFirstChange)
{
    const Workplace place;
    Session session(place);
    session.document.setSelection({2, 3}, {2, 5});
    session.recorder->waitUntilWritten();
    EXPECT_FALSE(QDir(session.folder).exists());
    EXPECT_FALSE(session.recorder->hasUnsavedText());
}

TEST(Journal, AMarkAloneIsNoChangeOfTheText)
{
    const Workplace place;
    Session session(place);
    session.document.wrapRange({2, 4}, {2, 7}, session.document.tags().intern(u"B", u""));
    session.recorder->waitUntilWritten();
    EXPECT_FALSE(session.recorder->hasUnsavedText());
    EXPECT_FALSE(QDir(session.folder).exists());
    // The mark is part of the page that the first change of the text records.
    session.type({2, 4}, u"x"_s);
    EXPECT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
}

TEST(Journal, AChangeOfTheTextBeforeAMarkIsAChange)
{
    const Workplace place;
    Session session(place);
    // Both reach the recorder together.
    session.document.setSelection({1, 1}, {1, 1});
    session.document.typeText(u"x"_s);
    session.document.wrapRange({2, 4}, {2, 7}, session.document.tags().intern(u"B", u""));
    EXPECT_TRUE(session.recorder->hasUnsavedText());
    session.recorder->waitUntilWritten();
    EXPECT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
}

TEST(Journal, HoldsPageCaretAndBinaryPart)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5},
                 u"слово\xa0"
                 "2"_s);
    const std::optional<RecordedSession> found = ReadJournal(session.journalBytes());
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->isComplete);
    EXPECT_TRUE(found->state.unsaved);
    EXPECT_EQ(found->state.facts.path, CurrentBook);
    EXPECT_EQ(found->state.facts.binaryCodePage, 1251);
    EXPECT_EQ(*found->state.binary, BinaryPart);
    EXPECT_EQ(Caret(found->state), session.document.selection().focus);
    EXPECT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
}

TEST(Journal, ANewPictureIsRecorded)
{
    const Workplace place;
    Session session(place);
    BinaryPart += "<binary id=\"b.png\">REVG</binary>";
    session.recorder->noteBinaryPartChange();
    session.recorder->waitUntilWritten();
    EXPECT_TRUE(session.recorder->hasUnsavedText());
    EXPECT_EQ(*ReadJournal(session.journalBytes())->state.binary, BinaryPart);
    session.type({1, 0}, u"x"_s);
    BinaryPart.clear();
    session.recorder->noteBinaryPartChange();
    session.recorder->waitUntilWritten();
    EXPECT_EQ(*ReadJournal(session.journalBytes())->state.binary, "");
}

TEST(Journal, MovingTheCaretIsRecorded)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"x"_s);
    session.document.setSelection({1, 1}, {1, 3});
    session.recorder->waitUntilWritten();
    const Selection expected{{1, 1}, {1, 3}};
    EXPECT_EQ(ReadJournal(session.journalBytes())->state.selection, expected);
}

TEST(Journal, ASavedTextIsNotUnsaved)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"x"_s);
    session.recorder->noteSaved(place.Path(u"other.fb2"_s));
    session.recorder->waitUntilWritten();
    EXPECT_FALSE(session.recorder->hasUnsavedText());
    const JournalBase state = ReadJournal(session.journalBytes())->state;
    EXPECT_FALSE(state.unsaved);
    EXPECT_EQ(state.facts.path, place.Path(u"other.fb2"_s));
    session.type({2, 5}, u"y"_s);
    EXPECT_TRUE(ReadJournal(session.journalBytes())->state.unsaved);
    EXPECT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
}

TEST(Journal, EndsWithThePage)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"x"_s);
    session.recorder->noteSaved(CurrentBook);
    session.document.loadPage(SmallPage);
    session.recorder->waitUntilWritten();
    EXPECT_EQ(session.journals(), QStringList());
    EXPECT_FALSE(session.recorder->hasUnsavedText());
}

TEST(Journal, OfATextThatIsKeptElsewhereEndsWithThePage)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"x"_s);
    session.recorder->noteKept();
    session.document.loadPage(SmallPage);
    session.recorder->waitUntilWritten();
    EXPECT_EQ(session.journals(), QStringList());
}

TEST(Journal, OfATextThatIsNowhereElseStays)
{
    const Workplace place;
    Session session(place);
    session.type({2, 5}, u"x"_s);
    session.recorder->noteKept();
    session.type({2, 5}, u"y"_s);
    const QByteArray page = session.document.savePage();
    session.document.loadPage(SmallPage);
    session.recorder->waitUntilWritten();
    EXPECT_EQ(RecoveredPage(session.journalBytes()), page);
}

// ---------------------------------------------------------------- damage

/// A small session and the pages that a reader may find, by the length of the journal up to them.
struct SmallSession
{
    SmallSession()
        : session(place)
    {
        const auto note = [this] { pages[session.journalBytes().size()] = session.document.savePage(); };
        // Without a move of the caret, only the base is written.
        session.document.replaceText({2, 5}, {2, 5}, u"a"_s);
        session.recorder->waitUntilWritten();
        note();
        session.type({2, 6}, u"bc"_s);
        note();
        session.document.insertLineBreak();
        session.recorder->waitUntilWritten();
        note();
        session.document.wrapRange({2, 1}, {3, 2}, session.document.tags().intern(u"I", u"class=x"));
        session.recorder->waitUntilWritten();
        note();
        session.document.undo(2);
        session.recorder->waitUntilWritten();
        note();
        bytes = session.journalBytes();
    }

    /// The page that a journal whose first `length` bytes are valid must yield.
    [[nodiscard]] QByteArray pageUpTo(std::size_t length) const
    {
        const auto after = pages.upper_bound(length);
        return after == pages.begin() ? QByteArray() : std::prev(after)->second;
    }

    const Workplace place;
    Session session;
    std::map<std::size_t, QByteArray> pages;
    std::string bytes;
};

TEST(Journal, CutAnywhereYieldsTheLongestValidPrefix)
{
    const SmallSession small;
    ASSERT_EQ(small.pages.size(), 5U);
    for (std::size_t length = 0; length <= small.bytes.size(); ++length)
        ASSERT_EQ(RecoveredPage(small.bytes.substr(0, length)), small.pageUpTo(length)) << length;
}

TEST(Journal, FlippedAnywhereYieldsTheLongestValidPrefix)
{
    const SmallSession small;
    for (std::size_t i = 0; i < small.bytes.size(); ++i) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            std::string bytes = small.bytes;
            bytes[i] = static_cast<char>(static_cast<unsigned char>(bytes[i]) ^ (1U << bit));
            ASSERT_EQ(RecoveredPage(bytes), small.pageUpTo(i)) << i << " bit " << bit;
        }
    }
}

TEST(Journal, RecordsInAnotherPlaceAreInvalid)
{
    const SmallSession small;
    const auto first = small.pages.begin();
    const auto second = std::next(first);
    const auto third = std::next(second);
    const std::string base = small.bytes.substr(0, first->first);
    const std::string one = small.bytes.substr(first->first, second->first - first->first);
    const std::string two = small.bytes.substr(second->first, third->first - second->first);
    EXPECT_EQ(RecoveredPage(base + two), first->second);
    EXPECT_EQ(RecoveredPage(base + two + one), first->second);
    EXPECT_EQ(RecoveredPage(base + one + one), second->second);
    EXPECT_EQ(RecoveredPage(base + one + two), third->second);
}

TEST(Journal, OtherBytesAfterItAreReported)
{
    const SmallSession small;
    const std::optional<RecordedSession> found = ReadJournal(small.bytes + "rest");
    ASSERT_TRUE(found);
    EXPECT_FALSE(found->isComplete);
    EXPECT_EQ(found->usedBytes, small.bytes.size());
}

/// A batch with a valid checksum and a content that does not fit.
TEST(Journal, ABatchThatDoesNotFitEndsThePrefix)
{
    const Workplace place;
    JournalBase base;
    base.binary = std::make_shared<const std::string>();
    base.lines = {MakeLine({NoTag, u"one"_s, {}})};
    base.facts.pageFront = "<HTML><BODY>";
    JournalWriter writer(place.Path(u"Recovery"_s));
    ASSERT_TRUE(writer.begin(base));
    JournalBatch good;
    good.splices.push_back({0, 1, {MakeLine({NoTag, u"two"_s, {}})}});
    ASSERT_TRUE(writer.write(good));
    const std::uint64_t length = writer.length();
    JournalBatch bad;
    // A tag that does not exist.
    bad.splices.push_back({0, 1, {MakeLine({7, u"three"_s, {}})}});
    ASSERT_TRUE(writer.write(bad));
    ASSERT_TRUE(writer.write(good));
    const std::optional<RecordedSession> found = ReadJournal(ReadContent(writer.path()).bytes);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->usedBytes, length);
    EXPECT_EQ(found->state.lines.front()->text, u"two"_s);
}

TEST(Journal, TheRestOfAnEarlierBaseDoesNotPreventTheNext)
{
    const Workplace place;
    JournalBase base;
    base.binary = std::make_shared<const std::string>();
    base.lines = {MakeLine({NoTag, u"one"_s, {}})};
    base.facts.pageFront = "<HTML><BODY>";
    JournalWriter writer(place.Path(u"Recovery"_s));
    ASSERT_TRUE(writer.begin(base));
    QFile rest(writer.path() + u".new"_s);
    ASSERT_TRUE(rest.open(QIODevice::WriteOnly));
    rest.write("part of a base");
    rest.close();
    // Too long for the journal, and not compressible.
    std::mt19937 random(1); // NOLINT: the same text in each run
    QString text;
    for (int i = 0; i < 100'000; ++i)
        text += QChar(char16_t(0x100 + random() % 0xc000));
    JournalBatch batch;
    batch.splices.push_back({0, 1, {MakeLine({NoTag, text, {}})}});
    EXPECT_TRUE(writer.write(batch)) << writer.reason().toStdString();
    EXPECT_EQ(writer.baseCount(), 2);
    const std::optional<RecordedSession> found = ReadJournal(ReadContent(writer.path()).bytes);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->state.lines.front()->text, text);
    EXPECT_FALSE(QFile::exists(rest.fileName()));
}

// ---------------------------------------------------------------- random sessions

TEST(Journal, RandomSessionsAreRecoveredExactly)
{
    for (unsigned seed = 1; seed <= 12; ++seed) {
        const Workplace place;
        Session session(place);
        std::mt19937 random(seed);
        for (int step = 0; step < 300; ++step) {
            EditAtRandom(session.document, random);
            if (random() % 16 != 0)
                continue;
            session.recorder->waitUntilWritten();
            if (!session.recorder->hasUnsavedText())
                continue;
            const std::string bytes = session.journalBytes();
            ASSERT_EQ(RecoveredPage(bytes), session.document.savePage()) << seed << " step " << step;
            ASSERT_EQ(ReadJournal(bytes)->state.selection, session.document.selection()) << seed;
        }
        EXPECT_EQ(session.problems, QStringList());
    }
}

// ---------------------------------------------------------------- length

TEST(Journal, OfALongSessionIsNeverLongerThanThreeBooks)
{
    const Workplace place;
    QByteArray page = "<HTML><BODY>\r\n";
    std::mt19937 random(5);
    for (int i = 0; i < 500; ++i) {
        page += "<DIV>";
        for (int word = 0; word < 20; ++word)
            page += QByteArray::number(random() % 100'000) + ' ';
        page += "</DIV>\r";
    }
    place.Make(u"book.fb2"_s, std::string(std::size_t(page.size()), 'x'));
    DisplayDocument document;
    document.loadPage(page + "</BODY></HTML>");

    JournalBase base;
    base.facts.path = place.Path(u"book.fb2"_s);
    base.facts.onDisk = StateOfFile(base.facts.path);
    base.facts.pageFront = document.pageFront();
    base.binary = std::make_shared<const std::string>();
    for (int id = 1; id < document.tags().size(); ++id)
        base.tags.push_back({document.tags()[TagId(id)].name, document.tags()[TagId(id)].attributes});
    for (int i = 0; i < document.lineCount(); ++i)
        base.lines.push_back(document.linePtr(i));
    JournalWriter writer(place.Path(u"Recovery"_s));
    ASSERT_TRUE(writer.begin(base));
    const std::uint64_t baseLength = writer.length();
    std::uint64_t longest = 0;
    for (int step = 0; step < 20'000; ++step) {
        const int line = int(random() % 500);
        const Position at{line, int(random() % 20)};
        document.replaceText(at, {line, at.offset + 1}, QString(QChar(u'a' + int(random() % 26))));
        JournalBatch batch;
        batch.splices.push_back({line, 1, {document.linePtr(line)}});
        ASSERT_TRUE(writer.write(batch));
        longest = std::max(longest, writer.length());
    }
    EXPECT_GT(writer.baseCount(), 1);
    // While a new base is written, the old journal is still there.
    EXPECT_LE(longest + baseLength, 3 * std::uint64_t(page.size()));
    EXPECT_EQ(RecoveredPage(ReadContent(writer.path()).bytes), document.savePage());
    EXPECT_EQ(QDir(place.Path(u"Recovery"_s)).entryList(QDir::Files).size(), 1);
}

TEST(Journal, TypingInAVeryLongLineWritesOnlyTheDifference)
{
    const Workplace place;
    Session session(place, "<HTML><BODY><DIV>" + QByteArray(1'000'000, 'x') + "</DIV></BODY></HTML>");
    session.type({0, 500'000}, u"a"_s);
    const std::size_t before = session.journalBytes().size();
    session.type({0, 500'001}, u"b"_s);
    const std::size_t after = session.journalBytes().size();
    EXPECT_GT(after, before);
    EXPECT_LT(after - before, 100U);
}

TEST(Journal, AVeryLargeInsertionIsWrittenAsANewBase)
{
    const Workplace place;
    JournalBase base;
    base.binary = std::make_shared<const std::string>();
    base.lines = {MakeLine({NoTag, u"one"_s, {}}), MakeLine({NoTag, u"two"_s, {}})};
    base.facts.pageFront = "<HTML><BODY>";
    JournalWriter writer(place.Path(u"Recovery"_s));
    ASSERT_TRUE(writer.begin(base));

    JournalBatch batch;
    batch.newTags = {{u"DIV"_s, {}}, {u"B"_s, {}}};
    batch.splices.push_back({1, 1, {}});
    for (int i = 0; i < 300'000; ++i) {
        const QString number = QString::number(i);
        batch.splices.back().inserted.push_back(
            MakeLine({1, number, {Mark::opening(0, 2), Mark::closing(int(number.size()), 2)}}));
    }
    batch.splices.push_back({0, 1, {MakeLine({1, u"none"_s, {}})}});
    batch.binary = std::make_shared<const std::string>("<binary/>");
    batch.facts = base.facts;
    batch.facts->path = u"other.fb2"_s;
    batch.selection = {{7, 1}, {8, 1}};
    batch.unsaved = false;
    ASSERT_TRUE(writer.write(batch)) << writer.reason().toStdString();
    EXPECT_EQ(writer.baseCount(), 2);
    JournalBatch small;
    small.splices.push_back({2, 1, {MakeLine({1, u"last"_s, {}})}});
    small.selection = {{1, 0}, {1, 0}};
    ASSERT_TRUE(writer.write(small));
    EXPECT_EQ(writer.baseCount(), 2);

    const std::optional<RecordedSession> read = ReadJournal(ReadContent(writer.path()).bytes);
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->isComplete);
    std::vector<LinePtr> expected = batch.splices[0].inserted;
    expected[1] = small.splices[0].inserted[0];
    expected.insert(expected.begin(), batch.splices[1].inserted[0]);
    EXPECT_TRUE(std::ranges::equal(read->state.lines, expected,
                                   [](const LinePtr& a, const LinePtr& b) { return *a == *b; }));
    EXPECT_EQ(*read->state.binary, "<binary/>");
    EXPECT_EQ(read->state.facts.path, u"other.fb2"_s);
    EXPECT_EQ(read->state.selection, small.selection);
    EXPECT_EQ(read->state.tags.size(), 2U);
}

// ---------------------------------------------------------------- time

TEST(Journal, AnEditIsWrittenWithoutFurtherCalls)
{
    const Workplace place;
    JournalThread journal(place.Path(u"Recovery"_s), {});
    JournalBase base;
    base.binary = std::make_shared<const std::string>();
    base.lines = {MakeLine({NoTag, u"one"_s, {}})};
    journal.setLines(base.lines);
    journal.begin(base);
    journal.waitUntilWritten();
    const QDir folder(place.Path(u"Recovery"_s));
    const QString path = folder.filePath(folder.entryList(QDir::Files).value(0));
    const qint64 before = StateOfFile(path).bytes;
    JournalBatch batch;
    batch.splices.push_back({0, 1, {MakeLine({NoTag, u"two"_s, {}})}});
    journal.add(batch);
    QElapsedTimer timer;
    timer.start();
    constexpr qint64 Patience = 30'000;
    while (StateOfFile(path).bytes == before && timer.elapsed() < Patience)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_NE(StateOfFile(path).bytes, before);
    RecordProperty("milliseconds", int(timer.elapsed()));
}

// ---------------------------------------------------------------- failures

TEST(Journal, AFolderThatCannotBeMadeIsReportedOnceAndTriedAgain)
{
    const Workplace place;
    place.Make(u"Recovery"_s, "a file");
    std::vector<QString> problems;
    std::mutex mutex;
    DisplayDocument document;
    document.loadPage(SmallPage);
    {
        JournalThread journal(place.Path(u"Recovery"_s), [&](const QString& problem) {
            const std::lock_guard lock(mutex);
            problems.push_back(problem);
        });
        JournalBase base;
        base.binary = std::make_shared<const std::string>();
        base.lines = {document.linePtr(0)};
        bool isSafe = false;
        journal.setLines(base.lines);
        journal.begin(base, [&] { isSafe = true; });
        journal.waitUntilWritten();
        EXPECT_FALSE(isSafe);
        journal.add({});
        journal.waitUntilWritten();
        QFile::remove(place.Path(u"Recovery"_s));
        journal.add({});
        journal.waitUntilWritten();
        EXPECT_TRUE(isSafe);
    }
    ASSERT_EQ(problems.size(), 2U);
    EXPECT_TRUE(problems[0].contains(u"cannot be made"_s)) << problems[0].toStdString();
    EXPECT_EQ(problems[1], QString());
    EXPECT_EQ(QDir(place.Path(u"Recovery"_s)).entryList(QDir::Files).size(), 1);
}

TEST(Journal, MemoryThatRunsOutOnTheThreadIsReportedAndTheJournalRemains)
{
    const Workplace place;
    const QDir folder(place.Path(u"Recovery"_s));
    const auto journals = [&folder] { return folder.entryList({u"*.journal"_s}, QDir::Files); };
    std::vector<QString> problems;
    std::mutex mutex;
    JournalThread journal(folder.path(), [&](const QString& problem) {
        const std::lock_guard lock(mutex);
        problems.push_back(problem);
        if (problems.size() == 1)
            throw std::bad_alloc();
    });
    JournalBase base;
    base.binary = std::make_shared<const std::string>();
    base.lines = {MakeLine({NoTag, u"one"_s, {}})};
    journal.setLines(base.lines);
    journal.begin(base, [] { throw std::bad_alloc(); });
    journal.waitUntilWritten();
    JournalBatch batch;
    batch.splices.push_back({0, 1, {MakeLine({NoTag, u"two"_s, {}})}});
    journal.add(batch);
    journal.waitUntilWritten();
    ASSERT_EQ(journals().size(), 1);
    // The state after the failure is not known, so the journal has the one before it.
    EXPECT_EQ(ReadJournal(ReadContent(folder.filePath(journals()[0])).bytes)->state.lines.front()->text,
              u"one"_s);
    EXPECT_FALSE(LockedFile::open(folder.filePath(journals()[0])));
    EXPECT_TRUE(journal.isBehind());
    // The whole state continues the same journal.
    JournalBase whole = base;
    whole.lines = {MakeLine({NoTag, u"three"_s, {}}), MakeLine({NoTag, u"four"_s, {}})};
    journal.restart(whole);
    batch.splices[0].first = 1;
    journal.add(batch);
    batch.splices[0].first = 0;
    journal.waitUntilWritten();
    EXPECT_FALSE(journal.isBehind());
    ASSERT_EQ(journals().size(), 1);
    const std::vector<LinePtr> lines
        = ReadJournal(ReadContent(folder.filePath(journals()[0])).bytes)->state.lines;
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0]->text, u"three"_s);
    EXPECT_EQ(lines[1]->text, u"two"_s);
    journal.end(JournalThread::End::Remove);
    journal.waitUntilWritten();
    EXPECT_EQ(journals().size(), 0);

    journal.setLines(base.lines);

    journal.begin(base);
    journal.add(batch);
    journal.waitUntilWritten();
    ASSERT_EQ(journals().size(), 1);
    EXPECT_EQ(ReadJournal(ReadContent(folder.filePath(journals()[0])).bytes)->state.lines.front()->text,
              u"two"_s);
    EXPECT_EQ(problems, (std::vector<QString>{u"not enough memory"_s, QString()}));
}

TEST(Journal, AFullDiskIsReportedAndNothingIsLost)
{
    const Workplace place;
    JournalBase base;
    base.binary = std::make_shared<const std::string>();
    base.lines = {MakeLine({NoTag, u"one"_s, {}})};
    base.facts.pageFront = "<HTML><BODY>";
    JournalWriter writer(place.Path(u"Recovery"_s));
    ASSERT_TRUE(writer.begin(base));
    JournalBatch batch;
    // Incompressible, so that it does not fit below the limit.
    std::mt19937 random(3);
    QString text;
    for (int i = 0; i < 8'000; ++i)
        text += QChar(u'a' + int(random() % 26));
    batch.splices.push_back({0, 1, {MakeLine({NoTag, text, {}})}});
    {
        const FileSizeLimit limit(writer.length() + 100);
        EXPECT_FALSE(writer.write(batch));
        EXPECT_FALSE(writer.isGood());
        EXPECT_NE(writer.reason(), QString());
        // The old state is still there.
        EXPECT_EQ(ReadJournal(ReadContent(writer.path()).bytes)->state.lines.front()->text, u"one"_s);
        // No other process may take the journal.
        EXPECT_FALSE(LockedFile::open(writer.path()));
    }
    EXPECT_TRUE(writer.retry());
    EXPECT_EQ(ReadJournal(ReadContent(writer.path()).bytes)->state.lines.front()->text, text);
}

} // namespace
} // namespace vmk
