#include "Trial.h"

#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <thread>
#include <unistd.h>

namespace vmk {
namespace {

constexpr std::chrono::seconds LongestTrial(10);
constexpr std::chrono::milliseconds Step(2);

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

} // namespace

bool PassesTrial(const std::function<void()>& attempt, std::mutex& lock)
{
    lock.lock();
    const pid_t child = ::fork();
    lock.unlock();
    if (child < 0)
        return true;
    if (child == 0)
        RunAttempt(attempt);
    const auto end = std::chrono::steady_clock::now() + LongestTrial;
    int status = 0;
    while (::waitpid(child, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end) {
            ::kill(child, SIGKILL);
            ::waitpid(child, &status, 0);
            return false;
        }
        std::this_thread::sleep_for(Step);
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace vmk
