#include "Monkey.h"
#include "Files.h"
#include "Pictures.h"
#include "SaveBook.h"
#include "SmallDictionaries.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

#include <unistd.h>

/// The runs of the monkey. In the environment:
///
/// - `VMK_MONKEY_BOOK`, the path of a book, for another book
/// - `VMK_MONKEY_SEED`
/// - `VMK_MONKEY_STEPS` for longer runs of the test of keys and commands
/// - `VMK_DAY_STEPS` for longer runs of the test with the tools. One step is one action of a user, about one
/// in a
///   second: 86 400 steps are a day of uninterrupted work.
/// - `VMK_DAY_ONLY`, the name of the only action in that test, to find what needs memory or time
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// The memory of this process, in megabytes.
double ResidentMegabytes()
{
    constexpr double Megabyte = 1024.0 * 1024.0;
    std::ifstream status("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    status >> pages >> resident;
    return double(resident) * double(::sysconf(_SC_PAGESIZE)) / Megabyte;
}

TEST_F(Monkey, KeepsEveryCharacterAndUndoesItAll)
{
    random.seed(unsigned(FromEnvironment("VMK_MONKEY_SEED", 1)));
    const int steps = FromEnvironment("VMK_MONKEY_STEPS", 3'000);
    for (int step = 0; step < steps && !HasFatalFailure(); ++step) {
        SCOPED_TRACE(step);
        Step();
        KeepSize();
    }
    if (HasFatalFailure())
        return;
    CheckUndoOfAll();
}

/// The monkey with all windows, on a book with pictures.
class MonkeyDay : public Monkey
{
protected:
    void SetUp() override
    {
        dictionaries.makeUsual();
        SetUpAllWindows(Book());
        if (const QByteArray only = qgetenv("VMK_DAY_ONLY"); !only.isEmpty()) {
            for (size_t i = 0; i < names.size(); ++i)
                weights[i] = only == names[i] ? 1 : 0;
        }
    }

    /// Opens the first book again: a user does not edit random text for hours.
    void StartAgain()
    {
        CheckUndoOfAll();
        CheckJournal();
        LoadAndWait(MakeBook(book));
        OutputEncoding = u"utf-8"_s;
        NoteBook();
    }
    void Report(int step)
    {
        std::printf("step %d: %.1f MB, %d lines\n", step, ResidentMegabytes(), Document().lineCount());
        std::fflush(stdout);
    }

    const SmallDictionaries dictionaries;
};

TEST_F(MonkeyDay, WorkWithAllToolsKeepsTheDocument)
{
    constexpr int StepsOfABook = 1'000;
    constexpr int StepsOfACheck = 200;
    random.seed(unsigned(FromEnvironment("VMK_MONKEY_SEED", 1)));
    const int steps = FromEnvironment("VMK_DAY_STEPS", 800);
    std::vector<double> megabytes;
    for (int step = 1; step <= steps && !HasFatalFailure(); ++step) {
        SCOPED_TRACE(step);
        Step();
        KeepSize();
        if (step % StepsOfACheck == 0)
            CheckJournal();
        if (step % StepsOfABook == 0) {
            StartAgain();
            Report(step);
            megabytes.push_back(ResidentMegabytes());
        }
    }
    for (size_t i = 0; i < names.size(); ++i)
        std::printf("%s: %d\n", names[i], runs[i]);
    if (HasFatalFailure())
        return;
    CheckUndoOfAll();
    CheckJournal();
    // With the same book the process needs the same memory in the second half of the run as in the first.
    if (megabytes.size() >= 8) {
        const auto middle = megabytes.begin() + std::ptrdiff_t(megabytes.size() / 2);
        const double before = *std::max_element(megabytes.begin() + 1, middle);
        EXPECT_LT(*std::max_element(middle, megabytes.end()), 1.25 * before + 50);
    }
}

} // namespace
} // namespace vmk
