// Tasks in other processes: every task has one result, also when its process ends.

#include "WorkerProcesses.h"
#include "QtPrinting.h"

#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <set>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

using namespace vmk;
using namespace std::chrono_literals;

namespace {

WorkerProcesses::Work Doubling()
{
    return [](std::string_view task) { return std::string(task) + std::string(task); };
}

/// Runs numbered tasks to the end; "ended: REASON" for one that ended its process.
std::map<uint64_t, std::string> RunAll(WorkerProcesses& workers, const std::vector<std::string>& tasks)
{
    std::map<uint64_t, std::string> results;
    size_t next = 0;
    while (next < tasks.size() || workers.pending() > 0) {
        while (next < tasks.size() && workers.wantsTask()) {
            workers.submit(next, tasks[next]);
            ++next;
        }
        const auto result = workers.next(-1ms);
        if (!result)
            break;
        EXPECT_FALSE(results.contains(result->number));
        results[result->number]
            = result->fault.isEmpty() ? result->bytes : "ended: " + result->fault.toStdString();
    }
    return results;
}

} // namespace

TEST(WorkerProcesses, EveryTaskHasItsOwnResultOfAnyLength)
{
    std::vector<std::string> tasks;
    for (size_t i = 0; i < 500; ++i)
        tasks.push_back(std::to_string(i) + ':' + std::string(i * i, char('a' + i % 26)));
    tasks[7] = std::string(9'000'000, 'z');
    tasks[8].clear();
    for (const int count : {0, 1, 3}) {
        WorkerProcesses workers(count, Doubling);
        const auto results = RunAll(workers, tasks);
        ASSERT_EQ(results.size(), tasks.size());
        for (size_t i = 0; i < tasks.size(); ++i)
            ASSERT_EQ(results.at(i), tasks[i] + tasks[i]) << i;
    }
}

TEST(WorkerProcesses, TasksRunInOtherProcesses)
{
    WorkerProcesses workers(2, [] {
        return [](std::string_view) {
            std::this_thread::sleep_for(5ms);
            return std::to_string(::getpid());
        };
    });
    EXPECT_FALSE(workers.isHere());
    std::set<std::string> processes;
    for (const auto& [number, process] : RunAll(workers, std::vector<std::string>(40)))
        processes.insert(process);
    EXPECT_EQ(processes.size(), 2U);
    EXPECT_FALSE(processes.contains(std::to_string(::getpid())));
}

TEST(WorkerProcesses, ATaskThatEndsItsProcessIsTheOnlyOneWithoutAResult)
{
    std::vector<std::string> tasks(300, "good");
    tasks[0] = tasks[150] = tasks[151] = tasks[299] = "bad";
    WorkerProcesses workers(2, [] {
        return [](std::string_view task) {
            if (task == "bad")
                ::raise(SIGKILL);
            return std::string(task);
        };
    });
    const auto results = RunAll(workers, tasks);
    ASSERT_EQ(results.size(), tasks.size());
    for (size_t i = 0; i < tasks.size(); ++i)
        EXPECT_EQ(results.at(i),
                  tasks[i] == "bad" ? "ended: the process that read the book ended: Killed" : "good")
            << i;
}

TEST(WorkerProcesses, AWorkerIsMadeOnceInEachProcess)
{
    WorkerProcesses workers(
        1, [] { return [calls = 0](std::string_view) mutable { return std::to_string(++calls); }; });
    const auto results = RunAll(workers, std::vector<std::string>(50));
    EXPECT_EQ(results.at(49), "50");
}

TEST(WorkerProcesses, NextWaitsNoLongerThanItsPatience)
{
    WorkerProcesses workers(1, [] {
        return [](std::string_view) {
            std::this_thread::sleep_for(10s);
            return std::string();
        };
    });
    EXPECT_FALSE(workers.next(0ms)) << "no task";
    workers.submit(1, {});
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(workers.next(20ms));
    EXPECT_EQ(workers.pending(), 1U);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
}

TEST(WorkerProcesses, OfSlowTasksOnlyAFewAreTaken)
{
    WorkerProcesses workers(1, [] {
        return [](std::string_view) {
            std::this_thread::sleep_for(1s);
            return std::string();
        };
    });
    int taken = 0;
    for (; workers.wantsTask() && taken < 1000; ++taken)
        workers.submit(uint64_t(taken), {});
    EXPECT_LE(taken, 3);
}
