#pragma once

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <vector>

/// Times whole programs, for comparisons in one run.
namespace vmk::bench {

struct Measure
{
    double seconds = 0;
    double peakBytes = 0;
};

/// Runs a program to its end with its output in a file. This process must stay small: the system counts
/// its memory as the child's until the child has started its program.
inline Measure Run(const std::vector<std::string>& command, const std::string& outputFile)
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
        std::fprintf(stderr, "%s failed\n", command[0].c_str());
        std::exit(2);
    }
    return {time.count(), static_cast<double>(usage.ru_maxrss) * 1024};
}

/// The median of the times, the largest of the peaks.
inline Measure Middle(std::vector<Measure> measures)
{
    std::ranges::sort(measures, {}, &Measure::seconds);
    Measure middle = measures[measures.size() / 2];
    middle.peakBytes = std::ranges::max(measures, {}, &Measure::peakBytes).peakBytes;
    return middle;
}

} // namespace vmk::bench
