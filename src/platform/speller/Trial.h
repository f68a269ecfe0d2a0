#pragma once

#include <functional>
#include <mutex>

namespace vmk {

/// Runs a function that may crash in a separate process.
/// @param attempt must not touch windows, other threads, or files to be written.
/// @param lock held while the process is created, so that no other thread holds it in the new process.
/// @return true if the function returned within ten seconds, without a crash; also if the system starts no
/// process.
[[nodiscard]] bool PassesTrial(const std::function<void()>& attempt, std::mutex& lock);

} // namespace vmk
