#pragma once

#include <ctime>

namespace vmk {

/// Time that this process has spent running since the object was made: how busy the machine is otherwise does
/// not count.
class ProcessorTime
{
public:
    [[nodiscard]] double seconds() const
    {
        return static_cast<double>(std::clock() - start) / static_cast<double>(CLOCKS_PER_SEC);
    }

private:
    std::clock_t start = std::clock();
};

} // namespace vmk
