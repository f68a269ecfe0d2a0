// Compares `vmk validate` of a library of small books with find, xargs and xmllint on the same books and
// processors in one run: wall time, start-up and reading included. Also one process against two, and peak
// memory.
//
// usage: bench_collections [BOOKS] [RUNS]

#include "ProgramTiming.h"

#include <filesystem>

using namespace vmk::bench;

namespace {

constexpr double WantedFiles = 0.7;
constexpr double WantedZip = 0.6;
constexpr double WantedSpeedup = 1.8;
constexpr double WantedMemory = 100e6;
constexpr int BookBytes = 30'000;

struct Medians
{
    Measure files, zip, xmllint, unzipAndXmllint, oneJob, fewBooks;
};

Medians MeasureAll(const std::string& folder, int runs)
{
    const std::string vmk = VMK_BIN_DIR "/vmk";
    const std::string schema = VMK_BIN_DIR "/VMK Office/Schemas/FictionBook.xsd";
    const std::string books = folder + "/books";
    const std::string zip = folder + "/books.zip";
    const std::string output = folder + "/output";
    const auto xmllint = [&schema](const std::string& below) {
        return "find '" + below + "' -name '*.fb2' -print0 | xargs -0 -P2 -n 64 xmllint --noout --schema '"
            + schema + "'";
    };
    const std::string unzip
        = "unzip -q '" + zip + "' -d '" + folder + "/unzipped' && " + xmllint(folder + "/unzipped");

    // In turns, so that the load of the machine is the same for all.
    std::vector<Measure> measures[6];
    for (int run = 0; run < runs; ++run) {
        measures[0].push_back(Run({vmk, "validate", "--jobs", "2", books}, output));
        measures[1].push_back(Run({"sh", "-c", xmllint(books)}, output));
        measures[2].push_back(Run({vmk, "validate", "--jobs", "2", zip}, output));
        measures[3].push_back(Run({"sh", "-c", unzip}, output));
        std::filesystem::remove_all(folder + "/unzipped");
        measures[4].push_back(Run({vmk, "validate", "--jobs", "1", books}, output));
        measures[5].push_back(Run({vmk, "validate", "--jobs", "2", books + "/0"}, output));
    }
    return {.files = Middle(measures[0]),
            .zip = Middle(measures[2]),
            .xmllint = Middle(measures[1]),
            .unzipAndXmllint = Middle(measures[3]),
            .oneJob = Middle(measures[4]),
            .fewBooks = Middle(measures[5])};
}

} // namespace

int main(int count, char** values)
{
    const std::string books = count > 1 ? values[1] : "20000";
    const int runs = count > 2 ? std::atoi(values[2]) : 3;
    const std::string folder
        = std::filesystem::temp_directory_path() / ("bench_collections." + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    Run({VMK_BIN_DIR "/make_library", folder + "/books", books, std::to_string(BookBytes)},
        folder + "/output");
    Run({"sh", "-c", "cd '" + folder + "' && zip -q -r books.zip books"}, folder + "/output");
    const Medians m = MeasureAll(folder, runs);
    std::filesystem::remove_all(folder);

    const double files = m.files.seconds / m.xmllint.seconds;
    const double zip = m.zip.seconds / m.unzipAndXmllint.seconds;
    const double speedup = m.oneJob.seconds / m.files.seconds;
    const double memory = std::max(m.files.peakBytes, m.zip.peakBytes);
    std::printf("%s books of %d KB, middle of %d runs\n", books.c_str(), BookBytes / 1000, runs);
    std::printf("files: vmk %.2f s, xmllint %.2f s, ratio %.2f (wanted: at most %.1f)\n", m.files.seconds,
                m.xmllint.seconds, files, WantedFiles);
    std::printf("zip:   vmk %.2f s, unzip and xmllint %.2f s, ratio %.2f (wanted: at most %.1f)\n",
                m.zip.seconds, m.unzipAndXmllint.seconds, zip, WantedZip);
    std::printf("1 job %.2f s, 2 jobs %.2f s: %.2f times faster (wanted: at least %.1f)\n", m.oneJob.seconds,
                m.files.seconds, speedup, WantedSpeedup);
    std::printf("peak memory: %.0f MB, of the first 1000 books %.0f MB, of the archive %.0f MB (wanted: at "
                "most %.0f)\n",
                m.files.peakBytes / 1e6, m.fewBooks.peakBytes / 1e6, m.zip.peakBytes / 1e6,
                WantedMemory / 1e6);
    return files <= WantedFiles && zip <= WantedZip && speedup >= WantedSpeedup && memory <= WantedMemory ? 0
                                                                                                          : 1;
}
