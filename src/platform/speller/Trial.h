#pragma once

#include <functional>
#include <mutex>

namespace vmk {

/// Runs a function that may crash in a separate process.
/// @param attempt must not touch windows, other threads, or files to be written.
/// @param lock held while the process is created, so that no other thread holds it in the new process.
/// @return true if the function returned within ten seconds of processor time, without a crash; also if it
/// could not be tried: if the system starts no process, or if each of several new processes waits forever for
/// a lock that another thread of this process holds.
[[nodiscard]] bool PassesTrial(const std::function<void()>& attempt, std::mutex& lock);

} // namespace vmk
