#pragma once

#include "Seam.h"

#include <QDateTime>

#include <cstdint>

/// Values that differ from run to run: time and random numbers.
namespace vmk {

/// A counter in milliseconds that never decreases.
[[nodiscard]] Seam<int64_t()>& TickSeam();
[[nodiscard]] int64_t TickMilliseconds();

/// The local date and time.
[[nodiscard]] Seam<QDateTime()>& NowSeam();
[[nodiscard]] QDateTime Now();

/// A random fraction, from 0 inclusive to 1 exclusive.
[[nodiscard]] Seam<double()>& RandomSeam();
[[nodiscard]] double RandomFraction();

} // namespace vmk
