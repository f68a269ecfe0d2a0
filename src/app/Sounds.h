#pragma once

#include <QString>

#include <cstdint>

namespace vmk {

/// With `SoundsOn`, plays the file and returns when it has ended; a missing file is ignored. With sounds off,
/// plays the system beep if `beepInstead`, so that errors are audible and successes are not.
void PlaySoundFile(const QString& path, bool beepInstead);

/// The same for one of the program's sounds, by its file name in the folder `sounds`.
void PlayProgramSound(const QString& name, bool beepInstead);

/// The result of `WaitForInput` at a time-out.
inline constexpr int WaitTimeOut = 258;

/// Waits until a time has passed or one of `count` handles (file descriptors) is readable. The user interface
/// continues to work.
/// \param milliseconds  -1 waits without limit; 0 and other negative values return at once
/// \return the index of the handle, or `WaitTimeOut`, also if there is no application object
int WaitForInput(int32_t milliseconds, const int* handles, int count);

} // namespace vmk
