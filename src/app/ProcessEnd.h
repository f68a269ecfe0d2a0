#pragma once

#include "Seam.h"

namespace vmk {

/// Ends the process: leaves the event loop, or does nothing where none runs yet; then the caller returns
/// and `main` with it. The exit code tells nothing.
[[nodiscard]] Seam<void()>& EndProcessSeam();
void EndProcess();

} // namespace vmk
