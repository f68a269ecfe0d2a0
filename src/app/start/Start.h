#pragma once

#include "Seam.h"

#include <QString>

/// The program's start: what the command line asks for is done here, once, before the event loop.
///
/// The procedures give true when the process goes on into the event loop, false when it has ended.
namespace vmk {

/// What `main` fills in: makes and opens the main window, if it is not open.
[[nodiscard]] Seam<void()>& OpenMainWindowSeam();
/// Hands a book to the main window; true when it is on its way to the display.
[[nodiscard]] Seam<bool(const QString& path, bool opening)>& LoadBookSeam();

/// The program's way from its first step to the open window: the workspace, the settings, the parser, and
/// the course that the command text asks for.
[[nodiscard]] bool RunStart(const QString& commandText);

/// Opens the main window and loads a book. With `quiet` the window opens only for a book that passes the
/// check, and a missing file ends the process with a box.
[[nodiscard]] bool LoadFromCommandLine(const QString& path, bool quiet);

/// Validates a book file without a window, with the report form for as long as it takes. A book with an
/// error is opened in the main window; a clean one ends the process, after a report if the user wants it.
[[nodiscard]] bool ValidateFromCommandLine(const QString& path);

} // namespace vmk
