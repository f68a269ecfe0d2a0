#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

namespace vmk {

/// A sound as its file holds it: uncompressed samples and how to play them.
struct WaveSound
{
    int sampleRate = 0;
    int channels = 0;
    int bitsPerSample = 0; ///< 8 (unsigned) or 16 (signed)
    QByteArray samples;

    [[nodiscard]] std::chrono::milliseconds length() const;
};

/// Reads a wave file's bytes; nothing when they are no uncompressed wave of 8 or 16 bits. A file cut short
/// gives the samples that are there.
[[nodiscard]] std::optional<WaveSound> ReadWaveSound(const QByteArray& file);

/// Plays a wave file and returns when it has ended. Returns at once when the file cannot be played or there
/// is no sound device, and a second behind the sound's length when the device is stuck.
void PlayToEnd(const QString& path);

} // namespace vmk
