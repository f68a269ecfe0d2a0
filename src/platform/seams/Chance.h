#pragma once

#include "Seam.h"

#include <QDateTime>

#include <cstdint>

/// What differs from run to run: time and the random number.
namespace vmk {

/// Milliseconds of a counter that only grows.
[[nodiscard]] Seam<int64_t()>& TickSeam();
[[nodiscard]] int64_t TickMilliseconds();

/// Local date and time.
[[nodiscard]] Seam<QDateTime()>& NowSeam();
[[nodiscard]] QDateTime Now();

/// A random fraction, 0 included and 1 not.
[[nodiscard]] Seam<double()>& RandomSeam();
[[nodiscard]] double RandomFraction();

} // namespace vmk
