#pragma once

#include "ProcessorTime.h"

#include <algorithm>

namespace vmk {

/// The processor time of `work` in units of the processor time of `reference`, which does comparable work on
/// an input of the same size. The machine's speed and sanitizers affect both alike. \return the smallest of
/// three measurements, so that a disturbance does not count
template <class Work, class Reference>
[[nodiscard]] double WorkRatio(Work&& work, Reference&& reference)
{
    constexpr double LongEnough = 0.02;
    const auto secondsOf = [](auto&& run) {
        const ProcessorTime time;
        int runs = 0;
        do {
            run();
            ++runs;
        } while (time.seconds() < LongEnough);
        return time.seconds() / runs;
    };
    const double unit = secondsOf(reference);
    double ratio = secondsOf(work) / unit;
    for (int i = 0; i < 2 && ratio > 1; ++i)
        ratio = std::min(ratio, secondsOf(work) / unit);
    return ratio;
}

} // namespace vmk
