#pragma once

#include <QString>

/// The unsaved text of the open book. These functions do nothing without a main window.
namespace vmk {

class SessionRecorder;

/// The folder of journals and unsaved texts.
[[nodiscard]] QString RecoveryFolder();

/// Keeps the text of the open book, if it has unsaved changes, as a complete book in `RecoveryFolder`, on the
/// disk before the call returns. Asks nothing and shows nothing. To be called before the text is replaced:
/// before another book is loaded, when the window is closed, and when the process is asked to end. May be
/// called again: a text that is already kept, or that equals the book's file, is not written a second time.
/// \return false if the text could not be kept; the journal of the session then stays for the next start
bool KeepUnsavedText();

/// The open book was saved to a file, which is then the book's.
void NoteTextSaved(const QString& path);
/// A command has changed `BinaryPart`.
void NoteBinaryPartChange();

/// Sets the recorder of the main window; null at its end. Not owned.
void SetRecorder(SessionRecorder* recorder);
[[nodiscard]] SessionRecorder* Recorder();

} // namespace vmk
