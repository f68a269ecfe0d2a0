#include "SuggestionWorker.h"

#include "SpellChecker.h"
#include "SpellShelf.h"

#include <QHash>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace vmk {
namespace {

using Clock = std::chrono::steady_clock;

/// Similar words are found first, so that there are suggestions within the time limit of the window.
constexpr std::chrono::milliseconds LongestNearSearch(120);
constexpr qsizetype MostRemembered = 2'000;

/// The threads of destroyed workers, joined when they have ended, at the latest with the process.
class EndingThreads
{
public:
    static EndingThreads& Instance()
    {
        static EndingThreads threads;
        return threads;
    }

    void add(std::jthread thread, std::shared_ptr<std::atomic<bool>> ended)
    {
        const std::lock_guard lock(guard);
        std::erase_if(threads, [](const Thread& one) { return one.ended->load(); });
        threads.push_back({std::move(thread), std::move(ended)});
    }

private:
    struct Thread
    {
        std::jthread thread;
        std::shared_ptr<std::atomic<bool>> ended;
    };

    std::mutex guard;
    std::vector<Thread> threads;
};

} // namespace

struct SuggestionWorker::State
{
    explicit State(std::function<void(const QString&)> notify)
        : wordFound(std::move(notify))
    {
    }

    void run();
    void work(std::unique_lock<std::mutex>& lock, SpellChecker& checker, const QString& word);
    void keep(const QString& word, const Found& result);

    mutable std::mutex guard; ///< For all members below.
    mutable std::condition_variable changed;
    std::function<void(const QString&)> wordFound;
    std::optional<SpellDictionaries> dictionaries;
    QStringList waiting;
    QHash<QString, Found> known;
    uint64_t generation = 0; ///< Counts the changes of the dictionaries.
    bool stopped = false;

    std::shared_ptr<std::atomic<bool>> ended = std::make_shared<std::atomic<bool>>(false);
    std::jthread thread;
};

void SuggestionWorker::State::run()
{
    SpellShelf shelf;
    SpellChecker checker(shelf);
    std::unique_lock lock(guard);
    while (true) {
        changed.wait(lock, [this] { return stopped || (dictionaries && !waiting.isEmpty()); });
        if (stopped)
            return;
        checker.setDictionaries(*dictionaries);
        const QString word = waiting.takeFirst();
        if (!known.value(word).complete)
            work(lock, checker, word);
    }
}

void SuggestionWorker::State::work(std::unique_lock<std::mutex>& lock, SpellChecker& checker,
                                   const QString& word)
{
    const uint64_t begun = generation;
    const auto publish = [&](const Found& result) {
        if (stopped || generation != begun)
            return false;
        keep(word, result);
        changed.notify_all();
        wordFound(word);
        return true;
    };
    lock.unlock();
    const Clock::time_point end = Clock::now() + LongestNearSearch;
    QStringList near = checker.nearWords(word, [end] { return Clock::now() < end; });
    lock.lock();
    if (!publish({std::move(near), false}))
        return;
    lock.unlock();
    QStringList all = checker.suggestions(word);
    lock.lock();
    publish({std::move(all), true});
}

void SuggestionWorker::State::keep(const QString& word, const Found& result)
{
    if (known.size() >= MostRemembered)
        known.clear();
    known.insert(word, result);
}

SuggestionWorker::SuggestionWorker(std::function<void(const QString& word)> wordFound)
    : state(std::make_shared<State>(std::move(wordFound)))
{
    try {
        // The thread shares the state, and the destructor of the worker takes the handle out of the state.
        state->thread = std::jthread([shared = state] {
            try {
                shared->run();
            } catch (const std::bad_alloc&) {
                // Without memory there are no further suggestions.
            }
            shared->ended->store(true);
        });
    } catch (const std::system_error&) {
        // The system starts no further thread, so there are no suggestions.
    }
}

SuggestionWorker::~SuggestionWorker()
{
    std::jthread thread;
    {
        const std::lock_guard lock(state->guard);
        state->stopped = true;
        state->wordFound = nullptr;
        thread = std::move(state->thread);
    }
    state->changed.notify_all();
    if (thread.joinable())
        EndingThreads::Instance().add(std::move(thread), state->ended);
}

void SuggestionWorker::setDictionaries(const SpellDictionaries& chosen)
{
    const std::lock_guard lock(state->guard);
    if (state->dictionaries == chosen)
        return;
    state->dictionaries = chosen;
    state->known.clear();
    ++state->generation;
}

void SuggestionWorker::request(const QString& word, const QString& following)
{
    {
        const std::lock_guard lock(state->guard);
        state->waiting = {word};
        if (!following.isEmpty() && following != word)
            state->waiting.append(following);
    }
    state->changed.notify_all();
}

SuggestionWorker::Found SuggestionWorker::found(const QString& word) const
{
    const std::lock_guard lock(state->guard);
    return state->known.value(word);
}

SuggestionWorker::Found SuggestionWorker::wait(const QString& word, Clock::time_point until) const
{
    std::unique_lock lock(state->guard);
    state->changed.wait_until(lock, until, [&] { return state->known.value(word).complete; });
    return state->known.value(word);
}

} // namespace vmk
