#pragma once

#include <functional>
#include <mutex>

namespace vmk {

/// Runs something doubtful in a process of its own, which shares nothing with this one but what it reads.
/// @param attempt must not touch windows, other threads, or files to be written.
/// @param lock is held while the process is made, so that no other thread holds it in the new one.
/// @return true if it ended by itself within ten seconds, without a crash; also when the system starts no
///     process.
[[nodiscard]] bool PassesTrial(const std::function<void()>& attempt, std::mutex& lock);

} // namespace vmk
