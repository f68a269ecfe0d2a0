#pragma once

#include "Cancelling.h"

#include <memory>

namespace vmk {

/// Begins a watch for the Escape key in all windows of the program; see `EscapeWatchSeam`. While a watch
/// handles events, input and changes of focus wait, timers and sockets wait, a drop is refused, and closing a
/// window waits. Painting and calls from other threads are handled.
[[nodiscard]] std::unique_ptr<EscapeWatch> WatchEscapeKey();

} // namespace vmk
