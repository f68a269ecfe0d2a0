#pragma once

#include "Seam.h"

namespace vmk {

/// Ends the process: leaves the event loop. If no loop runs yet, does nothing; the caller then returns, and
/// `main` ends. The exit code has no meaning.
[[nodiscard]] Seam<void()>& EndProcessSeam();
void EndProcess();

} // namespace vmk
