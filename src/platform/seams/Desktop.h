#pragma once

#include "Seam.h"

#include <QString>
#include <QUrl>

namespace vmk {

/// Plays a sound file and returns when it has ended. Returns at once if the file is missing or broken, or if
/// the machine has no sound. Silent without a window.
[[nodiscard]] Seam<void(const QString& path)>& SoundSeam();

/// The system beep; returns at once. Silent without a window.
[[nodiscard]] Seam<void()>& BeepSeam();
void Beep();

/// The address of a target: one that begins with a scheme ("http:", "mailto:") is an address, whatever files
/// exist; any other is a file path if the file exists.
[[nodiscard]] QUrl UrlOfTarget(const QString& target);

/// Opens a file path or a URL with the program that the system has registered for it. Returns false if there
/// is none, or without a window.
[[nodiscard]] Seam<bool(const QString& target)>& OpenSeam();
bool OpenWithSystem(const QString& target);

/// The clipboard's plain text; empty if it contains none. Without a window, a text private to the process.
[[nodiscard]] Seam<QString()>& ClipboardTextSeam();
[[nodiscard]] Seam<void(const QString& text)>& SetClipboardTextSeam();
[[nodiscard]] QString ClipboardText();
void SetClipboardText(const QString& text);

/// The text that was selected last in any program, on desktops that have this second clipboard: the middle
/// button pastes it. Without a window or on another desktop, always empty.
[[nodiscard]] Seam<QString()>& PrimaryTextSeam();
[[nodiscard]] Seam<void(const QString& text)>& SetPrimaryTextSeam();
[[nodiscard]] QString PrimaryText();
void SetPrimaryText(const QString& text);

} // namespace vmk
