#include "SessionFixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <array>
#include <chrono>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

// When a recorder begins a journal, and what the journal begins with.

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

/// The edits are passed on by the event loop.
class Recorder : public testing::Test
{
    int count = 1;
    std::array<char, 9> name{"recorder"};
    char* arguments = name.data();
    QCoreApplication application{count, &arguments};
};

QStringList TextOf(const DisplayDocument& document)
{
    QStringList text;
    for (int i = 0; i < document.lineCount(); ++i)
        text.append(document.line(i).text);
    return text;
}

/// Whether edits between two events count as a change depends on the text before and after them alone.
TEST_F(Recorder, TextThatIsChangedAndRestoredBetweenTwoEventsIsNoChange)
{
    int changed = 0;
    int unchanged = 0;
    for (unsigned seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE(seed);
        const Workplace place;
        Session session(place);
        std::mt19937 random(seed);
        const QStringList before = TextOf(session.document);
        for (unsigned steps = 1 + random() % 6; steps > 0; --steps)
            EditAtRandom(session.document, random);
        if (random() % 3 == 0) {
            while (session.document.undo()) { }
        }
        if (random() % 3 == 0) {
            // The same text again, in another part of the page.
            const Position end = session.document.end();
            const Position at = session.document.valid({end.line, end.offset - 1});
            const QString last = session.document.line(end.line).text.mid(at.offset);
            session.document.deleteRange(at, end);
            session.document.replaceText(at, at, last);
        }
        const bool isChanged = TextOf(session.document) != before;
        ++(isChanged ? changed : unchanged);
        ASSERT_EQ(session.recorder->hasUnsavedText(), isChanged);
        session.recorder->waitUntilWritten();
        ASSERT_EQ(session.journals().size(), isChanged ? 1 : 0);
        if (isChanged) {
            ASSERT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
        }
    }
    EXPECT_GT(changed, 20);
    EXPECT_GT(unchanged, 20);
}

// ---------------------------------------------------------------- pages that are being loaded

constexpr int LinesOfPage = 200;

/// The lines of a page in pieces.
class Pieces final : public LineSource
{
public:
    explicit Pieces(DisplayDocument& document)
        : block(document.tags().intern(u"DIV", {}))
    {
    }
    std::vector<LinePtr> next() override
    {
        constexpr int LinesOfPiece = 20;
        std::vector<LinePtr> piece;
        for (int i = 0; i < LinesOfPiece && made < LinesOfPage; ++i, ++made)
            piece.push_back(MakeLine({block, u"line %1"_s.arg(made), {}}));
        return piece;
    }
    bool isReady() override { return true; }

private:
    TagId block;
    int made = 0;
};

void LoadPieces(DisplayDocument& document)
{
    document.loadLines("<HTML><HEAD></HEAD><BODY>\r\n</BODY></HTML>", std::make_unique<Pieces>(document));
}

/// An edit in the first lines, which loads nothing.
void EditFirstLines(DisplayDocument& document, std::mt19937& random)
{
    const Position place{int(random() % 10), int(random() % 5)};
    document.setSelection(place, place);
    switch (random() % 4) {
    case 0:
        document.insertLineBreak();
        break;
    case 1:
        document.deleteForward();
        break;
    default:
        document.typeText(u"я"_s);
    }
}

/// Processes events until a journal exists; returns false if that takes longer than a minute.
bool WaitForJournal(const Session& session)
{
    constexpr qint64 Patience = 60'000;
    QElapsedTimer timer;
    for (timer.start(); timer.elapsed() < Patience; QCoreApplication::processEvents()) {
        if (!session.journals().isEmpty())
            return true;
    }
    return false;
}

TEST_F(Recorder, EditsDuringLoadingAreRecordedWithTheWholePage)
{
    for (unsigned seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        const Workplace place;
        Session session(place);
        std::mt19937 random(seed);
        // The second page is loaded while the thread of the first one's journal runs.
        for (int page = 0; page < 2; ++page) {
            LoadPieces(session.document);
            for (int step = 0; step < 40; ++step) {
                EditFirstLines(session.document, random);
                if (random() % 6 == 0)
                    session.document.loadMore();
                if (random() % 6 == 0)
                    QCoreApplication::processEvents();
            }
            session.recorder->waitUntilWritten();
            ASSERT_TRUE(session.recorder->hasUnsavedText());
            ASSERT_TRUE(session.document.isComplete());
            ASSERT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
            EditFirstLines(session.document, random);
            session.recorder->waitUntilWritten();
            ASSERT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
            session.recorder->noteSaved(CurrentBook);
        }
        EXPECT_EQ(session.problems, QStringList());
    }
}

TEST_F(Recorder, AJournalBeginsWhenThePageIsCompleteAndNotEarlier)
{
    const Workplace place;
    Session session(place);
    LoadPieces(session.document);
    session.document.typeText(u"typed"_s);
    QElapsedTimer timer;
    for (timer.start(); timer.elapsed() < 100;)
        QCoreApplication::processEvents();
    EXPECT_EQ(session.journals(), QStringList());
    EXPECT_FALSE(session.document.isComplete());
    while (session.document.loadMore()) { }
    ASSERT_TRUE(WaitForJournal(session));
    EXPECT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
}

TEST_F(Recorder, ManyEditsInOneCommandDoNotLoadTheRestOfThePage)
{
    const Workplace place;
    Session session(place);
    LoadPieces(session.document);
    session.document.typeText(u"a"_s);
    // Longer than a command may take before its edits are recorded.
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    for (int i = 0; i < 200; ++i)
        session.document.typeText(u"a"_s);
    EXPECT_FALSE(session.document.isComplete());
    session.recorder->waitUntilWritten();
    EXPECT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
}

TEST_F(Recorder, ManyEditsInOneCommandAreRecordedBeforeItEnds)
{
    const Workplace place;
    Session session(place);
    session.document.typeText(u"a"_s);
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    for (int i = 0; i < 200; ++i)
        session.document.typeText(u"a"_s);
    QElapsedTimer timer;
    for (timer.start(); session.journals().isEmpty() && timer.elapsed() < 60'000;)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(session.journals().size(), 1);
}

// ---------------------------------------------------------------- the binary part

TEST_F(Recorder, ALargeBinaryPartIsRecordedAsItIsWhenTheJournalBegins)
{
    const std::string large(30'000'000, 'x');
    // Nothing, a longer part, and another part of the same length follow while the first one is copied.
    for (const char* added : {"", "more", "="}) {
        SCOPED_TRACE(added);
        const Workplace place;
        Session session(place);
        BinaryPart = large;
        session.type({1, 0}, {});
        session.document.typeText(u"typed"_s);
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        EXPECT_EQ(session.journals(), QStringList());
        if (*added != '\0') {
            if (*added == '=')
                std::ranges::fill(BinaryPart, 'y');
            else
                BinaryPart += added;
            session.recorder->noteBinaryPartChange();
        }
        ASSERT_TRUE(WaitForJournal(session));
        session.recorder->waitUntilWritten();
        EXPECT_TRUE(*ReadJournal(session.journalBytes())->state.binary == BinaryPart);
        EXPECT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
    }
    BinaryPart.clear();
}

// ---------------------------------------------------------------- the thread

TEST_F(Recorder, AJournalOfUnknownLinesIsReportedAndNotWritten)
{
    const Workplace place;
    std::vector<QString> problems;
    std::mutex mutex;
    JournalThread journal(place.Path(u"Recovery"_s), [&](const QString& problem) {
        const std::lock_guard lock(mutex);
        problems.push_back(problem);
    });
    JournalBase base;
    base.binary = std::make_shared<const std::string>();
    journal.begin(base);
    JournalBatch batch;
    batch.splices.push_back({0, 1, {MakeLine({NoTag, u"two"_s, {}})}});
    journal.add(batch);
    journal.waitUntilWritten();
    EXPECT_EQ(problems, std::vector<QString>{u"not enough memory"_s});
    EXPECT_TRUE(QDir(place.Path(u"Recovery"_s)).isEmpty());

    journal.end(JournalThread::End::SetAside);
    journal.setLines({MakeLine({NoTag, u"one"_s, {}})});
    journal.begin(base);
    journal.add(batch);
    journal.waitUntilWritten();
    EXPECT_EQ(problems.size(), 2U);
    EXPECT_EQ(problems.back(), QString());
    EXPECT_EQ(QDir(place.Path(u"Recovery"_s)).entryList({u"*.journal"_s}, QDir::Files).size(), 1);
}

/// Changes of the marks alone do not begin a journal, however many they are.
TEST_F(Recorder, ManyEditsBeforeAJournalBeginsDoNotKeepTheirLines)
{
    const Workplace place;
    JournalThread journal(place.Path(u"Recovery"_s), {});
    const QString early = u"early"_s.repeated(2); // shared with its line as long as that exists
    journal.setLines({MakeLine({NoTag, early, {}})});
    ASSERT_FALSE(early.isDetached());
    for (int i = 0; i < 1000; ++i) {
        JournalBatch batch;
        batch.splices.push_back({0, 1, {MakeLine({NoTag, QString::number(i), {}})}});
        journal.add(std::move(batch));
    }
    journal.waitUntilWritten();
    EXPECT_TRUE(early.isDetached());

    JournalBase base;
    base.binary = std::make_shared<const std::string>();
    base.facts.pageFront = "<HTML><BODY>";
    journal.begin(base);
    journal.waitUntilWritten();
    const QDir folder(place.Path(u"Recovery"_s));
    const QStringList files = folder.entryList({u"*.journal"_s}, QDir::Files);
    ASSERT_EQ(files.size(), 1);
    const auto session = ReadJournal(ReadContent(folder.filePath(files[0])).bytes);
    ASSERT_TRUE(session);
    EXPECT_EQ(session->state.lines.front()->text, u"999"_s);
    journal.end(JournalThread::End::Remove);
}

} // namespace
} // namespace vmk
