#include "JournalThread.h"

#include "JournalWriter.h"

#include <chrono>
#include <new>
#include <system_error>
#include <utility>

namespace vmk {

namespace {

/// Edits that follow one another within this time are written together.
constexpr std::chrono::milliseconds GatheringTime(200);
/// The time until a failed write is tried again.
constexpr std::chrono::milliseconds RetryTime(2000);

/// The message for the user if memory runs out on the thread.
constexpr QLatin1StringView NoMemory("not enough memory");

} // namespace

/// The part that runs on the thread: the writer, and what it reports.
class JournalThread::Worker
{
public:
    Worker(const QString& folder, const std::function<void(const QString&)>& reportProblem)
        : writer(folder)
        , report(reportProblem)
    {
    }

    void operator()(Beginning& task)
    {
        note(writer.begin(std::move(task.base)));
        whenSafe = std::move(task.whenSafe);
    }
    void operator()(JournalBatch& batch) { note(writer.write(batch)); }
    void operator()(End end)
    {
        whenSafe = {};
        if (end == End::Remove)
            writer.remove();
        else
            writer.setAside();
    }

    void finishRound()
    {
        note(writer.flush());
        if (whenSafe && writer.isGood())
            std::exchange(whenSafe, {})();
    }
    /// Memory has run out in a task: the program continues, and the journal has the text up to that task.
    void giveUp()
    {
        try {
            writer.giveUp(NoMemory);
            note(false);
        } catch (const std::bad_alloc&) {
            // The next write reports it.
        }
    }
    [[nodiscard]] bool needsRetry() const { return writer.isOpen() && !writer.isGood(); }
    void retry()
    {
        note(writer.retry());
        finishRound();
    }

private:
    void note(bool success)
    {
        if (success == wasGood || (success && writer.isOpen() && !writer.isGood()))
            return;
        wasGood = success;
        if (report)
            report(success ? QString() : writer.reason());
    }

    JournalWriter writer;
    const std::function<void(const QString&)>& report;
    std::function<void()> whenSafe;
    bool wasGood = true;
};

JournalThread::JournalThread(QString recoveryFolder, std::function<void(const QString&)> reportProblem)
    : folder(std::move(recoveryFolder))
    , report(std::move(reportProblem))
{
}

JournalThread::~JournalThread()
{
    {
        const std::lock_guard lock(mutex);
        stopping = urgent = true;
    }
    changed.notify_all();
    if (thread.joinable())
        thread.join();
}

void JournalThread::begin(JournalBase base, std::function<void()> whenSafe)
{
    try {
        if (!thread.joinable())
            thread = std::thread([this] { run(); });
    } catch (const std::system_error& error) {
        // The system starts no further thread.
        if (report)
            report(QString::fromLocal8Bit(error.what()));
        return;
    }
    put(Beginning{std::move(base), std::move(whenSafe)}, true);
}

void JournalThread::add(JournalBatch batch)
{
    put(std::move(batch), false);
}

void JournalThread::end(End end)
{
    put(end, true);
}

void JournalThread::put(Task task, bool isUrgent)
{
    if (!thread.joinable())
        return;
    {
        const std::lock_guard lock(mutex);
        tasks.push_back(std::move(task));
        urgent = urgent || isUrgent;
    }
    changed.notify_all();
}

void JournalThread::waitUntilWritten()
{
    if (!thread.joinable())
        return;
    std::unique_lock lock(mutex);
    urgent = true;
    changed.notify_all();
    changed.wait(lock, [this] { return tasks.empty() && !busy; });
}

void JournalThread::run()
{
    Worker worker(folder, report);
    std::unique_lock lock(mutex);
    for (;;) {
        const auto hasWork = [this] { return !tasks.empty() || stopping; };
        if (!worker.needsRetry()) {
            changed.wait(lock, hasWork);
        } else if (!changed.wait_for(lock, RetryTime, hasWork)) {
            lock.unlock();
            try {
                worker.retry();
            } catch (const std::bad_alloc&) {
                // The retry after this one has all of the state too.
            }
            lock.lock();
            continue;
        }
        if (tasks.empty())
            return;
        changed.wait_for(lock, GatheringTime, [this] { return urgent; });
        std::vector<Task> round = std::exchange(tasks, {});
        urgent = stopping;
        busy = true;
        lock.unlock();
        try {
            for (Task& task : round)
                std::visit(worker, task);
            worker.finishRound();
        } catch (const std::bad_alloc&) {
            worker.giveUp();
        }
        // Lines that nobody else uses any more are freed here, not while the caller waits.
        round.clear();
        lock.lock();
        busy = false;
        changed.notify_all();
    }
}

} // namespace vmk
