#pragma once

#include <QString>

#include <cstdint>

namespace vmk {

/// With `SoundsOn` plays the file and returns when it has ended; a missing file is ignored. With sounds off
/// gives the system beep if `beepInstead`, so that errors are heard and successes are not.
void PlaySoundFile(const QString& path, bool beepInstead);

/// The same for one of the program's own sounds, by its file name in the folder `sounds`.
void PlayProgramSound(const QString& name, bool beepInstead);

/// Result of `WaitForInput` when the time has passed.
inline constexpr int WaitTimeOut = 258;

/// Waits until a time has passed or one of `count` handles (file descriptors) can be read, while the
/// interface goes on working. `milliseconds` of -1 waits for ever; 0 and other negative times end at once.
/// Gives the index of the handle, or `WaitTimeOut`, also when there is no application object to wait in.
int WaitForInput(int32_t milliseconds, const int* handles, int count);

} // namespace vmk
