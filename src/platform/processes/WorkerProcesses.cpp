#include "WorkerProcesses.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// A worker has one task while it works on another; with short tasks it has several, and a message contains
/// several results, because each message wakes a process.
constexpr size_t LeastDepth = 2;
constexpr size_t MostDepth = 64;
constexpr milliseconds WorkOfDepth(20);
constexpr milliseconds LongestDelay(5);
constexpr size_t MostTaskBytes = 1 << 22;

QString FaultOf(int status)
{
    if (!WIFSIGNALED(status))
        return u"the process that read the book ended"_s;
    return u"the process that read the book ended: "_s
        + QString::fromLocal8Bit(::strsignal(WTERMSIG(status)));
}

} // namespace

WorkerProcesses::WorkerProcesses(int count, std::function<Work()> maker)
    : makeWork(std::move(maker))
    , depth(LeastDepth)
    , measured(Clock::now())
{
    for (int i = 0; i < count && startWorker(); ++i) { }
}

WorkerProcesses::~WorkerProcesses()
{
    // A worker ends when its channel does. Other processes that were started later can have its end open too.
    for (const auto& worker : workers)
        ::shutdown(worker->channel.descriptor(), SHUT_RDWR);
    for (const auto& worker : workers) {
        // The result of a task that is not finished has no receiver.
        if (!worker->tasks.empty())
            ::kill(worker->process, SIGKILL);
        ::waitpid(worker->process, nullptr, 0);
    }
}

bool WorkerProcesses::startWorker()
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    MessageChannel own(ends[0]);
    MessageChannel other(ends[1]);
    const pid_t process = ::fork();
    if (process == 0) {
        // The end of a channel is seen only if no other process has it open.
        own.close();
        for (const auto& worker : workers)
            worker->channel.close();
        work(std::move(other));
    }
    if (process < 0)
        return false;
    ::fcntl(own.descriptor(), F_SETFL, O_NONBLOCK);
    workers.push_back(std::make_unique<Worker>(Worker{process, std::move(own), {}, 0, false}));
    return true;
}

/// The life of a worker.
void WorkerProcesses::work(MessageChannel channel)
{
    const Work handle = makeWork();
    Clock::time_point sent = Clock::now();
    while (channel.read()) {
        while (const std::optional<std::string> task = channel.take()) {
            channel.add(handle(*task));
            if (Clock::now() - sent < LongestDelay)
                continue;
            if (!channel.write())
                ::_exit(0);
            sent = Clock::now();
        }
        if (!channel.write())
            break;
        sent = Clock::now();
    }
    ::_exit(0);
}

bool WorkerProcesses::isFull(const Worker& worker) const
{
    const bool isRetrying = !worker.tasks.empty() && worker.tasks.back().isRetry;
    return isRetrying || worker.tasks.size() >= depth || worker.taskBytes >= MostTaskBytes;
}

bool WorkerProcesses::wantsTask() const
{
    if (!waiting.empty())
        return false;
    return workers.empty() || std::ranges::any_of(workers, [this](const auto& w) { return !isFull(*w); });
}

void WorkerProcesses::submit(uint64_t number, std::string bytes)
{
    ++pendingTasks;
    waiting.push_back({number, std::move(bytes), false});
    distribute();
}

void WorkerProcesses::distribute()
{
    while (!waiting.empty() && !workers.empty()) {
        Worker& idle = **std::ranges::min_element(workers, {},
                                                  [](const auto& worker) { return worker->tasks.size(); });
        // A retried task is the only one of its worker, so that it is known which one ends a process.
        if (isFull(idle) || (waiting.front().isRetry && !idle.tasks.empty()))
            break;
        idle.channel.add(waiting.front().bytes);
        idle.taskBytes += waiting.front().bytes.size();
        idle.tasks.push_back(std::move(waiting.front()));
        waiting.pop_front();
    }
}

std::optional<WorkerProcesses::Result> WorkerProcesses::next(milliseconds patience)
{
    const bool isEndless = patience.count() < 0;
    const Clock::time_point deadline = Clock::now() + patience;
    while (results.empty() && pendingTasks > 0) {
        if (workers.empty())
            return workHere();
        const auto left = std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
        exchange(isEndless ? patience : std::max(left, milliseconds(0)));
        if (!isEndless && Clock::now() >= deadline)
            break;
    }
    if (results.empty())
        return std::nullopt;
    Result result = std::move(results.front());
    results.pop_front();
    --pendingTasks;
    return result;
}

std::optional<WorkerProcesses::Result> WorkerProcesses::workHere()
{
    if (!ownWork)
        ownWork = makeWork();
    const Task task = std::move(waiting.front());
    waiting.pop_front();
    --pendingTasks;
    return Result{task.number, ownWork(task.bytes), {}};
}

/// Sends and receives once; waits at most `patience` for something to receive.
void WorkerProcesses::exchange(milliseconds patience)
{
    distribute();
    std::vector<pollfd> handles;
    for (const auto& worker : workers) {
        worker->isEnded = worker->isEnded || !worker->channel.write();
        const short events = worker->channel.hasOutput() ? POLLIN | POLLOUT : POLLIN;
        handles.push_back({worker->channel.descriptor(), events, 0});
    }
    if (::poll(handles.data(), handles.size(), static_cast<int>(patience.count())) > 0) {
        for (size_t i = 0; i < handles.size(); ++i)
            if ((handles[i].revents & ~POLLOUT) != 0)
                receive(*workers[i]);
    }
    replaceEnded();
    measure();
}

void WorkerProcesses::receive(Worker& worker)
{
    worker.isEnded = !worker.channel.read();
    while (std::optional<std::string> bytes = worker.channel.take()) {
        worker.taskBytes -= worker.tasks.front().bytes.size();
        results.push_back({worker.tasks.front().number, *std::move(bytes), {}});
        worker.tasks.pop_front();
        ++ended;
    }
}

/// A worker that ended with one task ended because of it. Of several tasks, any can be the reason: each is
/// done again by itself.
void WorkerProcesses::replaceEnded()
{
    for (size_t i = 0; i < workers.size();) {
        if (!workers[i]->isEnded) {
            ++i;
            continue;
        }
        int status = 0;
        workers[i]->channel.close();
        ::waitpid(workers[i]->process, &status, 0);
        std::deque<Task> tasks = std::move(workers[i]->tasks);
        workers.erase(workers.begin() + static_cast<ptrdiff_t>(i));
        // Without a task at fault, a new process would end in the same way.
        if (tasks.empty())
            continue;
        if (tasks.size() == 1) {
            results.push_back({tasks.front().number, {}, FaultOf(status)});
            tasks.clear();
        }
        for (Task& task : tasks)
            task.isRetry = true;
        waiting.insert(waiting.begin(), std::make_move_iterator(tasks.begin()),
                       std::make_move_iterator(tasks.end()));
        static_cast<void>(startWorker());
    }
}

/// Adapts the number of tasks that a worker has to their duration.
void WorkerProcesses::measure()
{
    const Clock::time_point now = Clock::now();
    if (now - measured < WorkOfDepth || workers.empty())
        return;
    const double periods = std::chrono::duration<double>(now - measured) / WorkOfDepth;
    const auto perPeriod
        = static_cast<size_t>(static_cast<double>(ended) / static_cast<double>(workers.size()) / periods);
    depth = std::clamp(perPeriod, LeastDepth, MostDepth);
    measured = now;
    ended = 0;
}

} // namespace vmk
