// Compares `vmk validate` with `xmllint --stream --noout --schema` on the same book and schema, in one run:
// wall time, start-up and reading included, and peak memory.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr double WantedTimeRatio = 1.2;
constexpr double WantedMemoryRatio = 3.0;
constexpr int Runs = 9;

struct Measure
{
    double seconds = 0;
    double peakBytes = 0;
};

/// Runs a program to its end with its output in a file. This process stays small, since the system counts
/// its memory to the child's until the child has started its program.
Measure Run(const std::vector<std::string>& command, const std::string& outputFile)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);

    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        const int output = open(outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(output, STDOUT_FILENO);
        dup2(output, STDERR_FILENO);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "bench_validate: %s failed\n", command[0].c_str());
        std::exit(2);
    }
    return {time.count(), static_cast<double>(usage.ru_maxrss) * 1024};
}

/// The middle one of the times, the largest of the peaks.
Measure Middle(std::vector<Measure> measures)
{
    std::ranges::sort(measures, {}, &Measure::seconds);
    Measure middle = measures[measures.size() / 2];
    middle.peakBytes = std::ranges::max(measures, {}, &Measure::peakBytes).peakBytes;
    return middle;
}

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

    // In turns, so that both meet the same moods of the machine.
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
