#pragma once

#include "MessageChannel.h"

#include <QString>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// Tasks that run in processes forked from this one, several at a time.
///
/// A task has this process's memory as it was when its worker was started, and cannot change it: shared
/// variables and libraries need no locks, and a fault in one task does not end the others. The workers are
/// started before the program starts a thread. If the system starts no process, tasks run in this one.
class WorkerProcesses
{
public:
    /// Turns the bytes of a task into the bytes of its result.
    using Work = std::function<std::string(std::string_view task)>;

    struct Result
    {
        uint64_t number = 0; ///< of the task
        std::string bytes;
        QString fault; ///< why the process ended during the task; empty if it did not
    };

    /// \param count     the number of processes; 0 runs the tasks in this process
    /// \param maker     is called once in each process
    WorkerProcesses(int count, std::function<Work()> maker);
    ~WorkerProcesses();
    WorkerProcesses(const WorkerProcesses&) = delete;
    WorkerProcesses& operator=(const WorkerProcesses&) = delete;

    /// Whether a worker needs a task now, so that it does not have to wait for one later.
    [[nodiscard]] bool wantsTask() const;
    void submit(uint64_t number, std::string bytes);
    /// Whether tasks run in this process, because there is no other.
    [[nodiscard]] bool isHere() const { return workers.empty(); }
    /// The number of tasks without a returned result.
    [[nodiscard]] size_t pending() const { return pendingTasks; }

    /// Returns the next result, in the order in which tasks end; nothing after `patience`, or if no task is
    /// pending. A negative patience waits without a limit.
    [[nodiscard]] std::optional<Result> next(std::chrono::milliseconds patience);

private:
    struct Task
    {
        uint64_t number;
        std::string bytes;
        bool isRetry = false; // a process has ended with this task or one sent with it
    };
    struct Worker
    {
        int process;
        MessageChannel channel;
        std::deque<Task> tasks; // sent, without a result
        size_t taskBytes = 0;
        bool isEnded = false;
    };

    [[nodiscard]] bool isFull(const Worker& worker) const;
    [[nodiscard]] bool startWorker();
    [[noreturn]] void work(MessageChannel channel);
    void distribute();
    void exchange(std::chrono::milliseconds patience);
    void receive(Worker& worker);
    void replaceEnded();
    void measure();
    [[nodiscard]] std::optional<Result> workHere();

    std::function<Work()> makeWork;
    Work ownWork; // without a process
    std::vector<std::unique_ptr<Worker>> workers;
    std::deque<Task> waiting; // for a worker
    std::deque<Result> results;
    size_t pendingTasks = 0;
    size_t depth; // tasks that a worker has at a time
    size_t ended = 0; // tasks since `measured`
    std::chrono::steady_clock::time_point measured;
};

} // namespace vmk
