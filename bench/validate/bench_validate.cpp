// Compares `vmk validate` with `xmllint --stream --noout --schema` on the same book and schema, in one run:
// wall time, start-up and reading included, and peak memory.

#include "ProgramTiming.h"

#include <filesystem>

using namespace vmk::bench;

namespace {

constexpr double WantedTimeRatio = 1.2;
constexpr double WantedMemoryRatio = 3.0;
constexpr int Runs = 9;

} // namespace

int main(int count, char** values)
{
    const std::string size = count > 1 ? values[1] : "15M";
    const std::string programs = VMK_BIN_DIR;
    const std::string schema = programs + "/VMK Office/Schemas/FictionBook.xsd";
    const std::string folder
        = std::filesystem::temp_directory_path() / ("bench_validate." + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    const std::string book = folder + "/book.fb2";
    const std::string output = folder + "/output";
    Run({programs + "/make_book", size}, book);
    const auto bookBytes = static_cast<double>(std::filesystem::file_size(book));

    // In turns, so that the load of the machine is the same for both.
    std::vector<Measure> vmkRuns;
    std::vector<Measure> xmllintRuns;
    for (int run = 0; run < Runs; ++run) {
        vmkRuns.push_back(Run({programs + "/vmk", "validate", "--schema", schema, book}, output));
        xmllintRuns.push_back(Run({"xmllint", "--stream", "--noout", "--schema", schema, book}, output));
    }
    std::filesystem::remove_all(folder);

    const Measure vmk = Middle(vmkRuns);
    const Measure xmllint = Middle(xmllintRuns);
    const double timeRatio = vmk.seconds / xmllint.seconds;
    const double memoryRatio = vmk.peakBytes / bookBytes;
    std::printf("book %.1f MB; middle of %d runs: vmk %.3f s, xmllint %.3f s\n", bookBytes / 1e6, Runs,
                vmk.seconds, xmllint.seconds);
    std::printf("wall time, vmk / xmllint: %.2f (wanted: at most %.1f)\n", timeRatio, WantedTimeRatio);
    std::printf("peak memory, vmk / book:  %.2f (wanted: at most %.1f)\n", memoryRatio, WantedMemoryRatio);
    return timeRatio <= WantedTimeRatio && memoryRatio <= WantedMemoryRatio ? 0 : 1;
}
