#include "TestPaths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr std::array Names = {"DocComplete",  "FileLoadError", "FileSaved", "NameSpaceErrorOnSave",
                              "NoParseError", "ParseError",    "bul'"};

std::string Bytes(const std::string& name)
{
    std::ifstream file(std::string(VMK_BIN_DIR) + "/sounds/" + name + ".wav", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

uint32_t Number(const std::string& bytes, size_t offset, size_t size)
{
    uint32_t value = 0;
    for (size_t i = size; i-- > 0;)
        value = value << 8 | static_cast<uint8_t>(bytes.at(offset + i));
    return value;
}

struct Wave
{
    double rate = 0;
    std::vector<double> samples; // -1 to 1

    [[nodiscard]] double seconds() const { return static_cast<double>(samples.size()) / rate; }

    /// Loudness (root mean square) of a range of samples.
    [[nodiscard]] double loudness(size_t from, size_t count) const
    {
        double sum = 0;
        for (size_t i = from; i < from + count; ++i)
            sum += samples.at(i) * samples.at(i);
        return std::sqrt(sum / static_cast<double>(count));
    }

    /// The pitch of each 30 ms in Hz, from its upward zero crossings; 0 for silence.
    [[nodiscard]] std::vector<double> pitches() const
    {
        std::vector<double> result;
        const auto step = static_cast<size_t>(rate * 0.03);
        for (size_t from = 0; from + step <= samples.size(); from += step) {
            double crossings = 0;
            for (size_t i = from + 1; i < from + step; ++i)
                crossings += samples[i - 1] < 0 && samples[i] >= 0;
            result.push_back(loudness(from, step) < 0.01 ? 0 : crossings / 0.03);
        }
        return result;
    }
};

/// Reads a file whose header the first test has checked.
Wave Read(const std::string& name)
{
    const std::string bytes = Bytes(name);
    Wave wave;
    wave.rate = Number(bytes, 24, 4);
    for (size_t i = 44; i + 1 < bytes.size(); i += 2)
        wave.samples.push_back(static_cast<int16_t>(Number(bytes, i, 2)) / 32768.0);
    return wave;
}

/// Mean difference in octaves between two pitch lines; a pitch against silence counts as one octave.
double Difference(std::vector<double> a, std::vector<double> b)
{
    a.resize(std::max(a.size(), b.size()));
    b.resize(a.size());
    double sum = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i] > 0 && b[i] > 0)
            sum += std::min(1.0, std::abs(std::log2(a[i] / b[i])));
        else if (a[i] > 0 || b[i] > 0)
            sum += 1;
    }
    return sum / static_cast<double>(a.size());
}

class SoundFiles : public testing::TestWithParam<const char*>
{
};

} // namespace

TEST_P(SoundFiles, AreMonoSixteenBitWaveFiles)
{
    const std::string bytes = Bytes(GetParam());
    ASSERT_GT(bytes.size(), 44U);
    EXPECT_EQ(bytes.substr(0, 4), "RIFF");
    EXPECT_EQ(Number(bytes, 4, 4), bytes.size() - 8);
    EXPECT_EQ(bytes.substr(8, 8), "WAVEfmt ");
    EXPECT_EQ(Number(bytes, 16, 4), 16U);
    EXPECT_EQ(Number(bytes, 20, 2), 1U) << "PCM";
    EXPECT_EQ(Number(bytes, 22, 2), 1U) << "channels";
    EXPECT_EQ(Number(bytes, 28, 4), Number(bytes, 24, 4) * 2) << "bytes a second";
    EXPECT_EQ(Number(bytes, 32, 2), 2U) << "bytes a sample";
    EXPECT_EQ(Number(bytes, 34, 2), 16U) << "bits a sample";
    EXPECT_EQ(bytes.substr(36, 4), "data");
    EXPECT_EQ(Number(bytes, 40, 4), bytes.size() - 44);
}

TEST_P(SoundFiles, AreShortBecauseTheProgramWaitsForThem)
{
    const double seconds = Read(GetParam()).seconds();
    EXPECT_GT(seconds, 0.1);
    EXPECT_LT(seconds, 0.7);
}

TEST_P(SoundFiles, AreHeardButNotDistorted)
{
    const Wave wave = Read(GetParam());
    const auto [low, high] = std::minmax_element(wave.samples.begin(), wave.samples.end());
    EXPECT_GT(wave.loudness(0, wave.samples.size()), 0.03);
    EXPECT_LT(*high, 0.9);
    EXPECT_GT(*low, -0.9);
}

TEST_P(SoundFiles, BeginAndEndWithoutAClick)
{
    const Wave wave = Read(GetParam());
    EXPECT_LT(std::abs(wave.samples.front()), 0.01);
    EXPECT_LT(std::abs(wave.samples.back()), 0.01);
}

TEST_P(SoundFiles, DifferFromEachOtherByEar)
{
    const std::vector<double> own = Read(GetParam()).pitches();
    for (const char* other : Names) {
        if (std::strcmp(other, GetParam()) != 0) {
            EXPECT_GT(Difference(own, Read(other).pitches()), 0.25) << GetParam() << " and " << other;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, SoundFiles, testing::ValuesIn(Names), [](const auto& test) {
    std::string name = test.param;
    std::erase(name, '\'');
    return name;
});

TEST(SoundMeanings, AnErrorFallsAndACleanBookRises)
{
    const auto ends = [](const char* name) {
        std::vector<double> pitches = Read(name).pitches();
        std::erase(pitches, 0);
        return std::pair(pitches.at(1), pitches.at(pitches.size() - 2));
    };
    const auto [cleanStart, cleanEnd] = ends("NoParseError");
    EXPECT_GT(cleanEnd, cleanStart * 1.5);
    const auto [errorStart, errorEnd] = ends("ParseError");
    EXPECT_LT(errorEnd, errorStart * 0.9);
}
