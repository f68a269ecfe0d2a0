#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace vmk {

/// Random numbers that are the same with every library (splitmix64).
class Chance
{
public:
    explicit Chance(uint64_t seed)
        : state(seed)
    {
    }

    uint64_t next()
    {
        uint64_t bits = state += 0x9E3779B97F4A7C15;
        bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
        bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
        return bits ^ (bits >> 31);
    }
    /// A number from `low` to `high`, both included.
    int between(int low, int high)
    {
        return low + static_cast<int>(next() % static_cast<uint64_t>(high - low + 1));
    }
    /// True in `percent` of 100 cases.
    bool percent(int percent) { return between(1, 100) <= percent; }
    template <size_t Count>
    std::string_view oneOf(const std::array<std::string_view, Count>& choices)
    {
        return choices[static_cast<size_t>(next() % Count)];
    }

private:
    uint64_t state;
};

} // namespace vmk
