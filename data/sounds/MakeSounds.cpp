// Writes the program's sounds: make_sounds FOLDER.
//
// Each outcome has its own sound, recognisable by its shape and not only by its pitch: success rises, failure
// falls or knocks, and a book opened at its error bubbles upwards.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int SampleRate = 44100;

enum class Timbre
{
    Bell, ///< A struck note whose high partials decay first.
    Reed, ///< A sustained, slightly rough note.
    Wood, ///< A short knock.
    Drop, ///< A pure tone, for glides.
};

/// One note: start in seconds from the start of the sound, duration in seconds, pitch in Hz at both ends,
/// loudness from 0 to 1.
struct Note
{
    double start;
    double length;
    double fromPitch;
    double toPitch;
    double loudness;
    Timbre timbre;
};

struct Sound
{
    std::string_view fileName;
    std::vector<Note> notes;
};

std::vector<Sound> AllSounds()
{
    constexpr double C4 = 261.63, E4 = 329.63, A3 = 220.0, C5 = 523.25, E5 = 659.26, G5 = 783.99, A5 = 880.0,
                     C6 = 1046.5, E6 = 1318.5;
    using enum Timbre;
    return {
        // The book is open: two bells, one step upwards.
        {"DocComplete.wav", {{0, 0.30, E5, E5, 0.5, Bell}, {0.13, 0.42, A5, A5, 0.5, Bell}}},
        // Nothing was opened: two dull knocks.
        {"FileLoadError.wav", {{0, 0.16, 175, 150, 0.9, Wood}, {0.17, 0.20, 175, 140, 0.9, Wood}}},
        // Saved: a knock like that of a drawer, and one high bell.
        {"FileSaved.wav", {{0, 0.12, 420, 380, 0.6, Wood}, {0.07, 0.40, E6, E6, 0.4, Bell}}},
        // Saved, but not as requested: the same, followed by a falling reed.
        {"NameSpaceErrorOnSave.wav",
         {{0, 0.12, 420, 380, 0.6, Wood}, {0.07, 0.28, E6, E6, 0.4, Bell}, {0.32, 0.26, E4, A3, 0.35, Reed}}},
        // No error: a chord from low to high.
        {"NoParseError.wav",
         {{0, 0.50, C5, C5, 0.3, Bell},
          {0.09, 0.45, E5, E5, 0.3, Bell},
          {0.18, 0.40, G5, G5, 0.3, Bell},
          {0.27, 0.38, C6, C6, 0.35, Bell}}},
        // An error: two reeds, the second one lower.
        {"ParseError.wav", {{0, 0.20, E4, E4, 0.45, Reed}, {0.20, 0.32, C4, C4 * 0.94, 0.45, Reed}}},
        // The book is opened at its error: three rising bubbles.
        {"bul'.wav",
         {{0, 0.09, 260, 720, 0.6, Drop},
          {0.12, 0.08, 330, 900, 0.55, Drop},
          {0.23, 0.12, 240, 1050, 0.6, Drop}}},
    };
}

/// One sample of a note's wave before its envelope; phase in periods, age from 0 to 1.
double Wave(Timbre timbre, double phase, double age)
{
    const auto partial
        = [phase](double multiple) { return std::sin(2 * std::numbers::pi * multiple * phase); };
    switch (timbre) {
    case Timbre::Bell:
        return partial(1) + 0.5 * partial(2) * std::exp(-4 * age) + 0.25 * partial(4.2) * std::exp(-9 * age);
    case Timbre::Reed:
        return partial(1) + partial(2) / 2 + partial(3) / 3 + partial(5) / 5 + 0.2 * partial(1.01);
    case Timbre::Wood:
        return partial(1) + 0.6 * partial(2.7) * std::exp(-12 * age)
            + 0.3 * partial(5.1) * std::exp(-25 * age);
    case Timbre::Drop:
        return partial(1);
    }
    return 0;
}

/// The loudness over a note's duration, age from 0 to 1; begins and ends at 0, so that no click is audible.
double Envelope(Timbre timbre, double age, double length)
{
    const double attack = std::min(1.0, age * length / 0.004);
    const double release = std::min(1.0, (1 - age) * length / 0.02);
    switch (timbre) {
    case Timbre::Bell:
        return attack * release * std::exp(-3.5 * age);
    case Timbre::Wood:
        return attack * release * std::exp(-6 * age);
    case Timbre::Reed:
        return attack * release;
    case Timbre::Drop:
        return std::sin(std::numbers::pi * age);
    }
    return 0;
}

std::vector<double> Mix(const std::vector<Note>& notes)
{
    double end = 0;
    for (const Note& note : notes)
        end = std::max(end, note.start + note.length);
    std::vector<double> samples(static_cast<size_t>(end * SampleRate) + 1);
    for (const Note& note : notes) {
        const auto first = static_cast<size_t>(note.start * SampleRate);
        const auto count = static_cast<size_t>(note.length * SampleRate);
        double phase = 0;
        for (size_t i = 0; i < count; ++i) {
            const double age = static_cast<double>(i) / static_cast<double>(count);
            samples[first + i]
                += note.loudness * Envelope(note.timbre, age, note.length) * Wave(note.timbre, phase, age);
            phase += (note.fromPitch + (note.toPitch - note.fromPitch) * age) / SampleRate;
        }
    }
    return samples;
}

void AppendLittleEndian(std::string& bytes, uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>((value >> (8 * i)) & 0xff);
}

/// Returns a mono 16-bit PCM file whose loudest sample has a comfortable level.
std::string WaveFile(const std::vector<double>& samples)
{
    constexpr double Peak = 0.5 * 32767;
    double loudest = 0;
    for (const double sample : samples)
        loudest = std::max(loudest, std::abs(sample));

    const auto dataSize = static_cast<uint32_t>(samples.size() * 2);
    std::string bytes = "RIFF";
    AppendLittleEndian(bytes, 36 + dataSize, 4);
    bytes += "WAVEfmt ";
    AppendLittleEndian(bytes, 16, 4); // size of the format block
    AppendLittleEndian(bytes, 1, 2); // PCM
    AppendLittleEndian(bytes, 1, 2); // channels
    AppendLittleEndian(bytes, SampleRate, 4);
    AppendLittleEndian(bytes, SampleRate * 2, 4); // bytes per second
    AppendLittleEndian(bytes, 2, 2); // bytes per sample
    AppendLittleEndian(bytes, 16, 2); // bits per sample
    bytes += "data";
    AppendLittleEndian(bytes, dataSize, 4);
    for (const double sample : samples)
        AppendLittleEndian(bytes, static_cast<uint32_t>(std::lround(sample / loudest * Peak)), 2);
    return bytes;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::fputs("usage: make_sounds FOLDER\n", stderr);
        return 2;
    }
    for (const Sound& sound : AllSounds()) {
        const std::string path = std::string(argv[1]) + "/" + std::string(sound.fileName);
        const std::string bytes = WaveFile(Mix(sound.notes));
        std::ofstream file(path, std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        file.close();
        if (!file) {
            std::fprintf(stderr, "make_sounds: cannot write %s\n", path.c_str());
            return 1;
        }
    }
    return 0;
}
