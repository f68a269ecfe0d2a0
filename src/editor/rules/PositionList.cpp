#include "PositionList.h"

#include <cmath>
#include <cstddef>

namespace vmk {

void PositionList::reset(double entry)
{
    count = index = 1;
    entries = {0, entry};
}

void PositionList::insert(double entry)
{
    const auto last = size_t(count);
    if (count < MostEntries) {
        ++count;
        ++index;
        entries.resize(size_t(count) + 1);
        entries[size_t(count)] = 0;
        // In the middle of the list the old last entry is lost and the last one remains 0, which is intended.
        for (size_t to = last; to > size_t(index); --to)
            entries[to] = entries[to - 1];
    } else if (index <= MostEntries / 2) {
        // Because it runs downwards, all these entries receive the value of the last one, which is intended.
        for (size_t to = last - 1; to > size_t(index); --to)
            entries[to] = entries[to + 1];
        ++index;
    } else {
        for (size_t to = 1; to < size_t(index); ++to)
            entries[to] = entries[to + 1];
    }
    entries[size_t(index)] = entry;
}

std::optional<double> PositionList::step(Direction direction)
{
    if (direction == Direction::Down ? index >= count : index < 2)
        return std::nullopt;
    index = int16_t(index + (direction == Direction::Down ? 1 : -1));
    return entries[size_t(index)];
}

bool PositionList::endsAt(double top, double height) const
{
    return std::abs(entries[size_t(count)] * height - top) < 1;
}

} // namespace vmk
