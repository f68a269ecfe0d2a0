#pragma once

#include "DisplayDocument.h"
#include "OutlinePage.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace vmk {

/// The lines of an outlined book in pieces. A thread makes them ahead of their use.
class OutlineSource final : public LineSource
{
public:
    /// \param first  the number of lines of the first piece, which the caller's thread makes
    OutlineSource(OutlineLines lines, std::size_t first);
    ~OutlineSource() override;

    [[nodiscard]] std::vector<LinePtr> next() override;
    [[nodiscard]] bool isReady() override;

private:
    void work(const std::stop_token& stop, std::size_t start);
    [[nodiscard]] std::size_t endOfPiece(std::size_t start) const;

    const OutlineLines lines;
    std::size_t taken = 0; ///< lines that `next` has returned

    std::mutex guard; ///< for the members below
    std::condition_variable made;
    std::deque<std::vector<LinePtr>> pieces;
    bool isWorking = true; ///< the thread makes further pieces
    std::jthread thread; ///< destroyed first
};

} // namespace vmk
