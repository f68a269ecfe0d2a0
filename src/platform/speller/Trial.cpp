#include "Trial.h"

#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <optional>
#include <thread>
#include <unistd.h>

namespace vmk {
namespace {

/// Of processor time, so that a busy machine does not make a good file a bad one.
constexpr std::chrono::seconds LongestTrial(10);
/// A process that uses no processor time for this long waits for a lock that a thread of this process held
/// when the process was created.
constexpr std::chrono::milliseconds LongestStandstill(500);
constexpr int MostAttempts = 4;
constexpr std::chrono::milliseconds Step(2);

enum class Outcome : uint8_t
{
    Passed,
    Failed,
    Blocked, ///< The attempt did not reach its end for a reason of its own.
};

[[noreturn]] void RunAttempt(const std::function<void()>& attempt)
{
    // A crash is an expected result: no signal handler, no report, no core file.
    for (const int number : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL})
        std::signal(number, SIG_DFL);
    const rlimit none = {0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    const rlimit seconds = {LongestTrial.count(), LongestTrial.count()};
    ::setrlimit(RLIMIT_CPU, &seconds);
    ::close(STDOUT_FILENO);
    ::close(STDERR_FILENO);
    try {
        attempt();
    } catch (...) {
        ::_exit(1);
    }
    ::_exit(0);
}

/// Returns the processor time of a child; nothing if it has ended, or if the system does not report it.
std::optional<int64_t> ProcessorTime(pid_t child)
{
    clockid_t clock = {};
    timespec used = {};
    if (::clock_getcpuclockid(child, &clock) != 0 || ::clock_gettime(clock, &used) != 0)
        return std::nullopt;
    return int64_t(used.tv_sec) * 1'000'000'000 + used.tv_nsec;
}

Outcome AwaitEnd(pid_t child)
{
    auto lastProgress = std::chrono::steady_clock::now();
    std::optional<int64_t> used;
    int status = 0;
    while (::waitpid(child, &status, WNOHANG) == 0) {
        const auto now = std::chrono::steady_clock::now();
        if (const std::optional<int64_t> time = ProcessorTime(child); time != used) {
            used = time;
            lastProgress = now;
        } else if (now - lastProgress > LongestStandstill) {
            ::kill(child, SIGKILL);
            ::waitpid(child, &status, 0);
            return Outcome::Blocked;
        }
        std::this_thread::sleep_for(Step);
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? Outcome::Passed : Outcome::Failed;
}

} // namespace

bool PassesTrial(const std::function<void()>& attempt, std::mutex& lock)
{
    for (int i = 0; i < MostAttempts; ++i) {
        lock.lock();
        const pid_t child = ::fork();
        lock.unlock();
        if (child < 0)
            return true;
        if (child == 0)
            RunAttempt(attempt);
        if (const Outcome outcome = AwaitEnd(child); outcome != Outcome::Blocked)
            return outcome == Outcome::Passed;
    }
    return true;
}

} // namespace vmk
