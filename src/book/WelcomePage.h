#pragma once

#include <string>

namespace vmk {

/// The first thing that a new user sees, in windows-1251.
[[nodiscard]] std::string WelcomePageBytes();

/// Writes the page to `WelcomeFile`, in place of one that stands there, and shows it in the main window.
void ShowWelcomePage();

} // namespace vmk
