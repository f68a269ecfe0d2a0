#pragma once

#include <QString>

/// The start of the program: executes the request of the command line once, before the event loop.
///
/// The functions return true if the process continues with the event loop, false if it has ended.
namespace vmk {

/// Runs all steps up to the open window: the workspace, the settings, the parser check, and the request of
/// the command text.
[[nodiscard]] bool RunStart(const QString& commandText);

/// Opens the main window and loads a book. With `quiet`, opens the window only for a book that passes the
/// check; a missing file ends the process after a box.
[[nodiscard]] bool LoadFromCommandLine(const QString& path, bool quiet);

/// Validates a book file without a main window; the report form is shown during the run. A book with an error
/// is opened in the main window. A valid book ends the process, after a report if the user has enabled it.
[[nodiscard]] bool ValidateFromCommandLine(const QString& path);

} // namespace vmk
