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

/// Does pieces of work on several threads, begun in their order.
template <typename Result>
class OrderedJobs
{
public:
    /// \param count    how many pieces there are
    /// \param threads  how many are done at a time, from 1
    /// \param work     does a piece, numbered from 0; called on any thread
    OrderedJobs(std::size_t count, int threads, std::function<Result(std::size_t)> work)
        : doPiece(std::move(work))
        , results(count)
    {
        try {
            for (std::size_t i = 0; i < std::min(std::size_t(threads), count); ++i)
                workers.emplace_back([this] { workOn(); });
        } catch (const std::system_error&) {
            // The system gives no more threads. Fewer do the same; without any, `take` does the work.
        }
    }

    /// Waits for the result of piece number `index`, from 0; to be called once for each.
    [[nodiscard]] Result take(std::size_t index)
    {
        if (workers.empty())
            workOn();
        std::unique_lock lock(guard);
        ready.wait(lock, [&] { return results[index].has_value(); });
        return *std::exchange(results[index], std::nullopt);
    }

private:
    void workOn()
    {
        std::unique_lock lock(guard);
        while (next < results.size()) {
            const std::size_t index = next++;
            lock.unlock();
            Result result = doPiece(index);
            lock.lock();
            results[index] = std::move(result);
            ready.notify_one();
        }
    }

    std::function<Result(std::size_t)> doPiece;
    std::mutex guard; // for all that follows
    std::condition_variable ready;
    std::size_t next = 0;
    std::vector<std::optional<Result>> results;
    std::vector<std::jthread> workers; // last: they are waited for before the rest is destroyed
};

} // namespace vmk
