#pragma once

#include <string>

namespace vmk {

/// Returns the first page that a new user sees, in windows-1251.
[[nodiscard]] std::string WelcomePageBytes();

/// Writes the page to `WelcomeFile`, replacing an existing file, and shows it in the main window.
void ShowWelcomePage();

} // namespace vmk
