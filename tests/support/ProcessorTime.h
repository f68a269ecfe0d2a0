#pragma once

#include <ctime>

namespace vmk {

/// Processor time of this process since the object was created; it does not depend on the load of the
/// machine.
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
