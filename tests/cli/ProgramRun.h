#pragma once

#include <string>
#include <vector>

namespace vmk {

/// The result of a program run.
struct ProgramRun
{
    int exitCode = -1; ///< -1 if a signal ended it
    std::string output;
    std::string errors;
    double seconds = 0; ///< processor time
    long peakBytes = 0;
};

/// How a program is run.
struct ProgramSetting
{
    std::string input; ///< for standard input
    std::string outputFile; ///< target of standard output instead of `ProgramRun::output`
    std::string workingFolder; ///< empty for the current one
    int userId = -1; ///< the user; -1 for the current one
    std::string locale = "C.UTF-8"; ///< for LC_ALL
    std::string dataFolder; ///< for XDG_DATA_HOME, if it is not empty
    long largestFile = -1; ///< limit in bytes on each file that it writes; -1 for none
    long mostMemory = -1; ///< limit in bytes on its address space; -1 for none
    long mostThreads = -1; ///< limit on the processes and threads of its user; -1 for none
    bool closedHandles = false; ///< without standard input, output and error
};

/// Runs a program to its end: one of the build folder, such as "vmk", or one given by its full path.
[[nodiscard]] ProgramRun RunProgram(const std::string& name, const std::vector<std::string>& arguments,
                                    const ProgramSetting& setting = {});

} // namespace vmk
