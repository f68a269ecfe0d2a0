#pragma once

#include "Seam.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class QIODevice;

namespace vmk {

/// A sound as stored in its file: uncompressed samples and their format.
struct WaveSound
{
    int sampleRate = 0;
    int channels = 0;
    int bitsPerSample = 0; ///< 8 (unsigned) or 16 (signed)
    QByteArray samples;

    [[nodiscard]] std::chrono::milliseconds length() const;
};

/// Parses the bytes of a wave file. Returns nothing unless they are an uncompressed wave of 8 or 16 bits. For
/// a truncated file, returns the samples that exist.
[[nodiscard]] std::optional<WaveSound> ReadWaveSound(const QByteArray& file);

/// A device that plays one sound. Used on the thread that has created it, which processes events.
class SoundOutput
{
public:
    SoundOutput() = default;
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;
    virtual ~SoundOutput() = default;

    /// Begins to play samples, which exist longer than the device. Returns false if the device refuses.
    [[nodiscard]] virtual bool start(QIODevice& samples) = 0;
    /// The device has stopped by itself: it failed, or was unplugged.
    [[nodiscard]] virtual bool hasStopped() const = 0;
    /// How much of the sound can already be heard.
    [[nodiscard]] virtual std::chrono::microseconds played() const = 0;
};

/// Creates the device, on the thread that plays.
using SoundOutputMaker = std::function<std::unique_ptr<SoundOutput>()>;

/// Returns the maker for a sound; none if there is no device for it. By default, the desktop's device.
[[nodiscard]] Seam<SoundOutputMaker(const WaveSound& sound)>& SoundOutputSeam();

/// Plays a wave file and returns when it has ended. Returns at once if the file cannot be played or there is
/// no sound device or no memory, and one second after the sound's length if the device does not respond.
void PlayToEnd(const QString& path);

} // namespace vmk
