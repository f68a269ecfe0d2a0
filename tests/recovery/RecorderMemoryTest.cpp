#include "SessionFixture.h"

#include <QCoreApplication>

#include <array>
#include <cstdlib>
#include <functional>
#include <new>
#include <utility>
#include <vector>

// The journal of a session in which memory runs out at any point.

using namespace Qt::StringLiterals;

namespace {

/// The number of the allocation on this thread that fails, counted from the next one; 0 for none.
thread_local int allocationThatFails = 0;

void* Allocate(std::size_t size)
{
    const bool fails = allocationThatFails > 0 && --allocationThatFails == 0;
    void* memory = fails ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

} // namespace

void* operator new(std::size_t size)
{
    return Allocate(size);
}
void* operator new[](std::size_t size)
{
    return Allocate(size);
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

namespace vmk {
namespace {

/// The edits are passed on by the event loop.
class RecorderMemory : public testing::Test
{
protected:
    /// Runs `work` in new sessions; in each one, another allocation fails. Whatever has failed, the journal
    /// has what was edited, and a later edit.
    /// \param prepare  runs before, with enough memory
    static void RunWithEachFailure(const std::function<void(Session&)>& prepare,
                                   const std::function<void(Session&)>& work)
    {
        constexpr int AtLeast = 1;
        bool hasFailed = true;
        for (int failing = 1; hasFailed; ++failing) {
            SCOPED_TRACE(failing);
            const Workplace place;
            Session session(place);
            prepare(session);
            const std::size_t steps = session.document.undoSteps();
            allocationThatFails = failing;
            try {
                work(session);
            } catch (const std::bad_alloc&) {
                // As in the program: the command fails.
            }
            hasFailed = std::exchange(allocationThatFails, 0) == 0;
            ASSERT_TRUE(hasFailed || failing > AtLeast);

            if (session.document.undoSteps() > steps) {
                EXPECT_TRUE(session.recorder->hasUnsavedText());
                session.recorder->waitUntilWritten();
                ASSERT_EQ(RecoveredPage(session.journalBytes()), session.document.savePage());
            }
            const Position end = session.document.end();
            session.document.replaceText(end, end, u" later"_s);
            EXPECT_TRUE(session.recorder->hasUnsavedText());
            session.recorder->waitUntilWritten();
            const std::string journal = session.journalBytes();
            ASSERT_EQ(RecoveredPage(journal), session.document.savePage());
            EXPECT_EQ(*ReadJournal(journal)->state.binary, BinaryPart);
        }
    }

private:
    int count = 1;
    std::array<char, 9> name{"recorder"};
    char* arguments = name.data();
    QCoreApplication application{count, &arguments};
};

void EditSeveralLines(Session& session)
{
    session.document.replaceHtml({1, 0}, {2, 1}, u"<P>new</P><DIV style=\"color:red\"><B>lines</B></DIV>");
    session.document.setSelection({0, 1}, {0, 2});
    QCoreApplication::processEvents();
}

TEST_F(RecorderMemory, TheFirstEditOfABook)
{
    RunWithEachFailure([](Session&) {}, EditSeveralLines);
}

TEST_F(RecorderMemory, AnEditOfARecordedBook)
{
    RunWithEachFailure([](Session& session) { session.type({1, 1}, u"before"_s); }, EditSeveralLines);
}

TEST_F(RecorderMemory, AChangeOfTheBinaryPart)
{
    const auto change = [](Session& session) {
        BinaryPart += "<binary id=\"b.png\">QUJD</binary>";
        session.recorder->noteBinaryPartChange();
        QCoreApplication::processEvents();
    };
    RunWithEachFailure([](Session&) {}, change);
    RunWithEachFailure([](Session& session) { session.type({1, 1}, u"before"_s); }, change);
}

TEST_F(RecorderMemory, ASave)
{
    RunWithEachFailure(
        [](Session& session) {
            session.type({1, 1}, u"before"_s);
        },
        [](Session& session) { session.recorder->noteSaved(CurrentBook); });
}

/// The lines of a page, two at a time.
class Pieces final : public LineSource
{
public:
    explicit Pieces(TagId lineBlock)
        : block(lineBlock)
    {
    }
    std::vector<LinePtr> next() override
    {
        constexpr int Count = 10;
        std::vector<LinePtr> piece;
        for (int i = 0; i < 2 && made < Count; ++i, ++made)
            piece.push_back(MakeLine({block, QString::number(made), {}}));
        return piece;
    }
    bool isReady() override { return true; }

private:
    TagId block;
    int made = 0;
};

TEST_F(RecorderMemory, TheLoadingOfABook)
{
    const auto begin = [](Session& session) {
        session.document.loadLines("<HTML><BODY>",
                                   std::make_unique<Pieces>(session.document.tags().intern(u"DIV", {})));
    };
    RunWithEachFailure(begin, [](Session& session) {
        while (session.document.loadMore()) { }
    });
}

} // namespace
} // namespace vmk
