#pragma once

#include "DisplayLines.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace vmk {

/// The lines of a document in order, as a gap buffer. Replacing lines costs the lines themselves plus the
/// distance to the previous edit, so that edits that proceed through the book in one direction are cheap even
/// if each of them adds or removes a line.
class LineStore
{
public:
    [[nodiscard]] int size() const { return int(slots.size() - gapSize); }

    /// \param index  0 to `size() - 1`
    [[nodiscard]] const LinePtr& operator[](int index) const
    {
        const auto i = std::size_t(index);
        return slots[i < gapStart ? i : i + gapSize];
    }

    /// Replaces all lines.
    void assign(std::vector<LinePtr> newLines)
    {
        slots = std::move(newLines);
        gapStart = slots.size();
        gapSize = 0;
    }

    /// Returns all lines in order; the store is empty afterwards.
    [[nodiscard]] std::vector<LinePtr> take()
    {
        moveGap(std::size_t(size()));
        slots.resize(std::size_t(size()));
        gapStart = gapSize = 0;
        return std::exchange(slots, {});
    }

    /// Adds lines after all others.
    void append(const std::vector<LinePtr>& newLines)
    {
        slots.insert(slots.end(), newLines.begin(), newLines.end());
    }

    /// Takes the memory for inserting that many lines. The next `replace` by as many then cannot fail.
    void reserve(std::size_t inserted)
    {
        if (inserted > gapSize)
            growGap(inserted);
    }

    /// Replaces `removed` lines from `first` on by `inserted`.
    void replace(int first, int removed, const std::vector<LinePtr>& inserted)
    {
        if (std::size_t(removed) == inserted.size()) {
            for (std::size_t i = 0; i < inserted.size(); ++i)
                slot(std::size_t(first) + i) = inserted[i];
            return;
        }
        reserve(inserted.size());
        moveGap(std::size_t(first));
        for (int i = 0; i < removed; ++i)
            slots[gapStart + gapSize++].reset();
        std::copy(inserted.begin(), inserted.end(), slots.begin() + std::ptrdiff_t(gapStart));
        gapStart += inserted.size();
        gapSize -= inserted.size();
    }

private:
    LinePtr& slot(std::size_t index) { return slots[index < gapStart ? index : index + gapSize]; }

    void moveGap(std::size_t place)
    {
        const auto at = [this](std::size_t i) { return slots.begin() + std::ptrdiff_t(i); };
        if (gapSize == 0)
            gapStart = place;
        else if (place < gapStart)
            std::move_backward(at(place), at(gapStart), at(gapStart + gapSize));
        else
            std::move(at(gapStart + gapSize), at(place + gapSize), at(gapStart));
        gapStart = place;
    }

    void growGap(std::size_t needed)
    {
        const std::size_t added = needed + slots.size() / 16 + 16;
        slots.insert(slots.begin() + std::ptrdiff_t(gapStart), added, LinePtr());
        gapSize += added;
    }

    std::vector<LinePtr> slots;
    std::size_t gapStart = 0;
    std::size_t gapSize = 0;
};

} // namespace vmk
