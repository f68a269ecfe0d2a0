#include "SoundPlayer.h"

#include <QAudioDevice>
#include <QAudioSink>
#include <QBuffer>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFile>
#include <QMediaDevices>
#include <QThread>
#include <QTimer>
#include <QtEndian>

#include <algorithm>
#include <memory>
#include <new>

using namespace std::chrono_literals;

namespace vmk {

namespace {

/// The time, besides the sound's length, that a device may need to start. A device that does not respond does
/// not block the program for longer.
constexpr auto Patience = 1000ms;

struct Block
{
    QByteArray name;
    QByteArray content;
};

/// Removes the next block of a RIFF file from `rest`.
std::optional<Block> TakeBlock(QByteArray& rest)
{
    constexpr qsizetype HeadSize = 8;
    if (rest.size() < HeadSize)
        return std::nullopt;
    const qsizetype size = qFromLittleEndian<quint32>(rest.constData() + 4);
    Block block{rest.first(4), rest.mid(HeadSize, size)};
    rest = rest.mid(HeadSize + size + size % 2);
    return block;
}

std::optional<QAudioFormat> FormatOf(const WaveSound& sound)
{
    QAudioFormat format;
    format.setSampleRate(sound.sampleRate);
    format.setChannelCount(sound.channels);
    format.setSampleFormat(sound.bitsPerSample == 8 ? QAudioFormat::UInt8 : QAudioFormat::Int16);
    if (!format.isValid())
        return std::nullopt;
    return format;
}

/// The default device of the desktop.
class DesktopOutput : public SoundOutput
{
public:
    DesktopOutput(const QAudioDevice& device, const QAudioFormat& format)
        : sink(device, format)
    {
    }

    [[nodiscard]] bool start(QIODevice& samples) override
    {
        sink.start(&samples);
        return sink.error() == QAudio::NoError;
    }
    [[nodiscard]] bool hasStopped() const override { return sink.state() == QAudio::StoppedState; }
    [[nodiscard]] std::chrono::microseconds played() const override
    {
        return std::chrono::microseconds(sink.processedUSecs());
    }

private:
    QAudioSink sink;
};

SoundOutputMaker DesktopOutputFor(const WaveSound& sound)
{
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    const std::optional<QAudioFormat> format = FormatOf(sound);
    if (device.isNull() || !format || !device.isFormatSupported(*format))
        return {};
    return [device, format = *format] { return std::make_unique<DesktopOutput>(device, format); };
}

/// Plays on the calling thread and processes its events until the device has played everything.
void PlayHere(const WaveSound& sound, const SoundOutputMaker& makeOutput)
{
    QByteArray bytes = sound.samples;
    QBuffer samples(&bytes);
    samples.open(QIODevice::ReadOnly);
    const std::unique_ptr<SoundOutput> output = makeOutput();
    if (!output->start(samples))
        return;

    // The device becomes idle when it has received the last samples, before it has played them.
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (output->hasStopped() || output->played() >= sound.length())
            loop.quit();
    });
    look.start(10ms);
    QTimer::singleShot(sound.length() + Patience, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Plays on a separate thread, so that no timer and no key of the program runs meanwhile.
void PlayOnThread(const WaveSound& played, const SoundOutputMaker& makeOutput)
{
    std::unique_ptr<QThread> player(QThread::create([sound = played, makeOutput] {
        try {
            PlayHere(sound, makeOutput);
        } catch (const std::bad_alloc&) {
            // Without memory there is no sound.
        }
    }));
    player->start();
    if (player->wait(QDeadlineTimer(played.length() + Patience + Patience / 2)))
        return;
    // The device does not respond. The thread is abandoned and deletes itself if it ever ends.
    QThread* abandoned = player.release();
    QObject::connect(abandoned, &QThread::finished, abandoned, &QObject::deleteLater);
}

} // namespace

std::chrono::milliseconds WaveSound::length() const
{
    const qint64 bytesPerSecond = static_cast<qint64>(sampleRate) * channels * (bitsPerSample / 8);
    return std::chrono::milliseconds(bytesPerSecond > 0 ? samples.size() * 1000 / bytesPerSecond : 0);
}

std::optional<WaveSound> ReadWaveSound(const QByteArray& file)
{
    constexpr qsizetype FormatSize = 16;
    if (file.size() < 12 || !file.startsWith("RIFF") || file.mid(8, 4) != "WAVE")
        return std::nullopt;

    WaveSound sound;
    QByteArray rest = file.mid(12);
    while (const std::optional<Block> block = TakeBlock(rest)) {
        if (block->name == "fmt " && block->content.size() >= FormatSize) {
            const char* const format = block->content.constData();
            constexpr quint16 Uncompressed = 1;
            if (qFromLittleEndian<quint16>(format) != Uncompressed)
                return std::nullopt;
            sound.channels = qFromLittleEndian<quint16>(format + 2);
            sound.sampleRate
                = static_cast<int>(std::min<quint32>(qFromLittleEndian<quint32>(format + 4), 192000));
            sound.bitsPerSample = qFromLittleEndian<quint16>(format + 14);
        } else if (block->name == "data") {
            sound.samples = block->content;
        }
    }
    const bool playable = sound.channels >= 1 && sound.channels <= 2 && sound.sampleRate > 0
        && (sound.bitsPerSample == 8 || sound.bitsPerSample == 16) && !sound.samples.isEmpty();
    return playable ? std::optional(sound) : std::nullopt;
}

Seam<SoundOutputMaker(const WaveSound&)>& SoundOutputSeam()
{
    static Seam<SoundOutputMaker(const WaveSound&)> seam(DesktopOutputFor);
    return seam;
}

void PlayToEnd(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    try {
        const std::optional<WaveSound> sound = ReadWaveSound(file.readAll());
        const SoundOutputMaker makeOutput = sound ? SoundOutputSeam()(*sound) : SoundOutputMaker();
        if (makeOutput)
            PlayOnThread(*sound, makeOutput);
    } catch (const std::bad_alloc&) {
        // The command that plays it must not fail for the lack of a sound.
    }
}

} // namespace vmk
