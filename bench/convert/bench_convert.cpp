// Compares `vmk display` and `vmk convert` with `xmllint --format --noblanks` on the same books, in one run:
// wall time, start-up, reading and writing included, and peak memory; and shows how they grow with the book.

#include "ProgramTiming.h"

#include <filesystem>

using namespace vmk::bench;

namespace {

constexpr double WantedDisplayRatio = 1.5;
constexpr double WantedConvertRatio = 3.0;
constexpr double WantedMemoryRatio = 6.0;
constexpr int Runs = 7;
const std::string Programs = VMK_BIN_DIR;

struct Times
{
    double megabytes = 0;
    Measure display;
    Measure convert;
    Measure xmllint;
};

/// Runs the three programs in turns, so that the load of the machine is the same for all.
Times Compare(const std::string& folder, const std::string& size)
{
    const std::string book = folder + "/book.fb2";
    const std::string output = folder + "/output";
    const std::string said = folder + "/said";
    Run({Programs + "/make_book", size}, book);

    std::vector<Measure> display;
    std::vector<Measure> convert;
    std::vector<Measure> xmllint;
    for (int run = 0; run < Runs; ++run) {
        xmllint.push_back(Run({"xmllint", "--format", "--noblanks", book, "--output", output}, said));
        display.push_back(Run({Programs + "/vmk", "display", book, "--out", output}, said));
        convert.push_back(Run({Programs + "/vmk", "convert", book, "--out", output}, said));
    }
    return {static_cast<double>(std::filesystem::file_size(book)) / 1e6, Middle(display), Middle(convert),
            Middle(xmllint)};
}

bool Report(const char* name, const Times& times, const Measure& ours, double wantedRatio)
{
    const double timeRatio = ours.seconds / times.xmllint.seconds;
    const double memoryRatio = ours.peakBytes / (times.megabytes * 1e6);
    std::printf("%s / xmllint, wall time: %.2f (wanted: at most %.1f)\n", name, timeRatio, wantedRatio);
    std::printf("%s / book, peak memory: %.2f (wanted: at most %.1f)\n", name, memoryRatio,
                WantedMemoryRatio);
    return timeRatio <= wantedRatio && memoryRatio <= WantedMemoryRatio;
}

} // namespace

int main()
{
    const std::string folder
        = std::filesystem::temp_directory_path() / ("bench_convert." + std::to_string(getpid()));
    std::filesystem::create_directory(folder);

    const Times times = Compare(folder, "15M");
    std::printf("book %.1f MB; middle of %d runs: display %.3f s, convert %.3f s, xmllint %.3f s\n",
                times.megabytes, Runs, times.display.seconds, times.convert.seconds, times.xmllint.seconds);
    const bool displayGood = Report("display", times, times.display, WantedDisplayRatio);
    const bool convertGood = Report("convert", times, times.convert, WantedConvertRatio);

    std::printf("growth, milliseconds a megabyte:\n");
    for (const char* size : {"1M", "4M", "16M", "64M"}) {
        const Times grown = Compare(folder, size);
        std::printf("  %5.1f MB: display %5.1f, convert %5.1f, xmllint %5.1f\n", grown.megabytes,
                    1000 * grown.display.seconds / grown.megabytes,
                    1000 * grown.convert.seconds / grown.megabytes,
                    1000 * grown.xmllint.seconds / grown.megabytes);
    }
    std::filesystem::remove_all(folder);
    return displayGood && convertGood ? 0 : 1;
}
