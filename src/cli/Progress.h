#pragma once

#include "WorkerProcesses.h"

#include <chrono>
#include <cstdint>
#include <memory>

namespace vmk {

struct CollectionOptions;

/// A line on standard error with the number of books done, their rate and the time left; only on a terminal.
class Progress
{
public:
    explicit Progress(const CollectionOptions& options);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Shows the line, at most a few times a second.
    void show(uint64_t done);
    /// Removes the line before something else is printed on the terminal.
    void clear();
    /// The same before a result, if standard output is the terminal too.
    void clearForOutput();
    void finish();

private:
    using Clock = std::chrono::steady_clock;

    bool isShown = false; // standard error is a terminal
    bool sharesTerminal = false; // standard output is one too
    bool hasLine = false;
    Clock::time_point start = Clock::now();
    Clock::time_point shown = start;
    std::unique_ptr<WorkerProcesses> counter; // walks the input to count it
    uint64_t total = 0; // 0: not known
};

} // namespace vmk
