#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace vmk {

enum class Direction
{
    Up,
    Down
};

/// The scroll positions at which the reader has stopped, each as a fraction of the page's height.
struct PositionList
{
    /// The maximum number of entries.
    static constexpr int MostEntries = 40;

    /// Entry 0 is not used.
    std::vector<double> entries = std::vector<double>(2);
    /// The number of entries in use.
    int16_t count = 1;
    /// The index of the current entry, from 1.
    int16_t index = 1;

    /// Resets the list to one entry.
    void reset(double entry);
    /// Inserts an entry after the current one and makes it the current one.
    void insert(double entry);
    /// Makes the entry before or after the current one the current one.
    /// \return the entry; nothing at the end of the list
    std::optional<double> step(Direction direction);
    /// Returns whether the last entry, not the current one, is less than one pixel from a position.
    /// \param top, height  the position and the height of the page, pixels
    [[nodiscard]] bool endsAt(double top, double height) const;
};

} // namespace vmk
