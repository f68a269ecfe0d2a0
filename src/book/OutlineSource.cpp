#include "OutlineSource.h"

#include <algorithm>
#include <new>
#include <system_error>

namespace vmk {

namespace {

constexpr std::size_t LinesOfPiece = 2'000;

} // namespace

OutlineSource::OutlineSource(OutlineLines outlineLines, std::size_t first)
    : lines(std::move(outlineLines))
{
    const std::size_t end = std::clamp<std::size_t>(first, 1, lines.count());
    pieces.push_back(lines.make(0, end));
    if (end == lines.count()) {
        isWorking = false;
        return;
    }
    try {
        thread = std::jthread([this, end](const std::stop_token& stop) { work(stop, end); });
    } catch (const std::system_error&) {
        isWorking = false; // the pieces are made when they are needed
    }
}

OutlineSource::~OutlineSource() = default;

/// Makes the pieces from a line on.
void OutlineSource::work(const std::stop_token& stop, std::size_t start)
{
    while (start < lines.count() && !stop.stop_requested()) {
        const std::size_t end = endOfPiece(start);
        try {
            std::vector<LinePtr> piece = lines.make(start, end);
            const std::lock_guard lock(guard);
            pieces.push_back(std::move(piece));
        } catch (const std::bad_alloc&) {
            break;
        }
        lines.passed(end);
        made.notify_one();
        start = end;
    }
    const std::lock_guard lock(guard);
    isWorking = false;
    made.notify_one();
}

std::vector<LinePtr> OutlineSource::next()
{
    std::unique_lock lock(guard);
    made.wait(lock, [this] { return !pieces.empty() || !isWorking; });
    std::vector<LinePtr> piece;
    if (!pieces.empty()) {
        piece = std::move(pieces.front());
        pieces.pop_front();
    } else {
        // The thread has ended early, without memory, or does not exist.
        piece = lines.make(taken, endOfPiece(taken));
    }
    taken += piece.size();
    return piece;
}

bool OutlineSource::isReady()
{
    const std::lock_guard lock(guard);
    return !pieces.empty() || !isWorking;
}

std::size_t OutlineSource::endOfPiece(std::size_t start) const
{
    return std::min(start + LinesOfPiece, lines.count());
}

} // namespace vmk
