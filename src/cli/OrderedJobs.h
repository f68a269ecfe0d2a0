#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace vmk {

/// Numbered jobs on several threads, whose results are taken in the order of the numbers.
template <typename Result>
class OrderedJobs
{
public:
    /// Does the job of a number, from 0. Each thread has one of its own.
    using Worker = std::function<Result(size_t index)>;

    /// \param makeWorker is called once on each thread.
    OrderedJobs(size_t count, int threads, std::function<Worker()> makeWorker)
        : newWorker(std::move(makeWorker))
        , results(count)
    {
        try {
            for (size_t i = 0; i < std::min(static_cast<size_t>(threads), count); ++i)
                workers.emplace_back([this] { work(); });
        } catch (const std::system_error&) {
            // The system starts no more threads. Fewer do the same; without any, `take` does the work.
        }
    }

    /// Waits for a result; to be asked for once for each number.
    [[nodiscard]] Result take(size_t index)
    {
        if (workers.empty())
            work();
        std::unique_lock lock(guard);
        ready.wait(lock, [&] { return results[index].has_value(); });
        return *std::exchange(results[index], std::nullopt);
    }

private:
    void work()
    {
        const Worker worker = newWorker();
        std::unique_lock lock(guard);
        while (nextIndex < results.size()) {
            const size_t index = nextIndex++;
            lock.unlock();
            Result result = worker(index);
            lock.lock();
            results[index] = std::move(result);
            ready.notify_one();
        }
    }

    std::function<Worker()> newWorker;
    std::mutex guard; // for all that follows
    std::condition_variable ready;
    size_t nextIndex = 0;
    std::vector<std::optional<Result>> results;
    std::vector<std::jthread> workers; // last: they are waited for before the rest is destroyed
};

} // namespace vmk
