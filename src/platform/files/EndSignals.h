#pragma once

namespace vmk {

/// Turns the signals that ask the process to end (SIGTERM, SIGINT, and SIGHUP of a closed terminal) into
/// bytes that can be read from a pipe, so that the event loop handles them. A signal that the caller of the
/// program ignores, as `nohup` does, is still ignored. Call it once. \return the descriptor to read from,
/// which is never closed; -1 if the system has no more descriptors: the signals then end the process as usual
[[nodiscard]] int WatchEndSignals();

} // namespace vmk
