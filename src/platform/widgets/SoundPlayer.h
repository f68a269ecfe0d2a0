#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

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

/// Plays a wave file and returns when it has ended. Returns at once if the file cannot be played or there is
/// no sound device, and one second after the sound's length if the device does not respond.
void PlayToEnd(const QString& path);

} // namespace vmk
