#include "JournalThread.h"

#include "JournalWriter.h"
#include "LineStore.h"

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

    void operator()(AllLines& task)
    {
        page.assign(std::move(task.lines));
        isPageKnown = true;
    }
    void operator()(MoreLines& task) { page.append(task.lines); }
    void operator()(Beginning& task)
    {
        whenSafe = std::move(task.whenSafe);
        if (!std::exchange(isPageKnown, false)) {
            writer.setAside();
            return giveUp();
        }
        task.base.lines = page.take();
        note(writer.begin(std::move(task.base)));
    }
    void operator()(Restart& task)
    {
        page.assign({});
        isPageKnown = false;
        note(writer.restart(std::move(task.base)));
    }
    void operator()(JournalBatch& batch)
    {
        if (writer.isOpen())
            return note(writer.write(batch));
        if (!isPageKnown)
            return;
        for (const LineSplice& splice : batch.splices)
            page.replace(splice.first, splice.removed, splice.inserted);
    }
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
    /// Memory has run out in a task: the program continues, and the journal has the text up to that task. If
    /// the lines of a page are lost before its journal begins, that is reported when it would begin.
    void runOutOfMemory()
    {
        page.assign({});
        isPageKnown = false;
        if (writer.isOpen())
            giveUp();
    }
    [[nodiscard]] bool isBehind() const { return writer.isBehind(); }
    [[nodiscard]] bool needsRetry() const { return writer.isOpen() && !writer.isGood(); }
    void retry()
    {
        note(writer.retry());
        finishRound();
    }

private:
    void giveUp()
    {
        try {
            writer.giveUp(NoMemory);
            note(false);
        } catch (const std::bad_alloc&) {
            // The next write reports it.
        }
    }
    void note(bool success)
    {
        if (success == wasGood || (success && writer.isOpen() && !writer.isGood()))
            return;
        wasGood = success;
        if (report)
            report(success ? QString() : writer.reason());
    }

    JournalWriter writer;
    LineStore page; ///< the lines of the page that is shown, until its journal begins
    bool isPageKnown = false;
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

void JournalThread::setLines(std::vector<LinePtr> lines)
{
    if (!thread.joinable()) {
        tasks.clear();
        waitingBatches = 0;
        isDropping = false;
    }
    put(AllLines{std::move(lines)}, false);
}

void JournalThread::appendLines(std::vector<LinePtr> lines)
{
    put(MoreLines{std::move(lines)}, false);
}

void JournalThread::begin(JournalBase base, std::function<void()> whenSafe)
{
    if (start())
        put(Beginning{std::move(base), std::move(whenSafe)}, true);
}

void JournalThread::restart(JournalBase base)
{
    if (start())
        put(Restart{std::move(base)}, true);
}

/// Starts the thread, which takes the tasks that have been waiting.
bool JournalThread::start()
{
    try {
        if (!thread.joinable() && !isDropping)
            thread = std::thread([this] { run(); });
    } catch (const std::system_error& error) {
        // The system starts no further thread.
        tasks.clear();
        isDropping = true;
        if (report)
            report(QString::fromLocal8Bit(error.what()));
    }
    return thread.joinable();
}

void JournalThread::add(JournalBatch batch)
{
    put(std::move(batch), false);
    // The changes of a page whose text remains the same would take more and more memory.
    constexpr int MostWaiting = 256;
    if (!thread.joinable() && ++waitingBatches > MostWaiting)
        static_cast<void>(start());
}

void JournalThread::end(End end)
{
    put(end, true);
}

void JournalThread::put(Task task, bool isUrgent)
{
    if (isDropping)
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
        const auto attempt = [&worker](const auto& work) {
            try {
                work();
            } catch (const std::bad_alloc&) {
                worker.runOutOfMemory();
            }
        };
        for (Task& task : round)
            attempt([&] { std::visit(worker, task); });
        attempt([&] { worker.finishRound(); });
        behind = worker.isBehind();
        // Lines that nobody else uses any more are freed here, not while the caller waits.
        round.clear();
        lock.lock();
        busy = false;
        changed.notify_all();
    }
}

} // namespace vmk
