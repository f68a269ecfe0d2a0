#pragma once

#include "Seam.h"

#include <QString>

namespace vmk {

/// Plays a sound file and returns when it has ended; a missing or broken file, or a machine without sound,
/// is passed over at once. Silent without a window.
[[nodiscard]] Seam<void(const QString& path)>& SoundSeam();

/// The system beep; returns at once. Silent without a window.
[[nodiscard]] Seam<void()>& BeepSeam();
void Beep();

/// Hands a file's path or a URL to the program that the system has registered for it; false if there is
/// none. False without a window.
[[nodiscard]] Seam<bool(const QString& target)>& OpenSeam();
bool OpenWithSystem(const QString& target);

/// The clipboard's plain text, empty if it holds none. Without a window a text of the process's own.
[[nodiscard]] Seam<QString()>& ClipboardTextSeam();
[[nodiscard]] Seam<void(const QString& text)>& SetClipboardTextSeam();
[[nodiscard]] QString ClipboardText();
void SetClipboardText(const QString& text);

} // namespace vmk
