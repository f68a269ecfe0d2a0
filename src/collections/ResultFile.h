#pragma once

#include <QString>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// The results of a run in a file: one or more lines for a book, in the order of the input, so that an
/// interrupted run can continue from its own file.
class ResultFile
{
public:
    /// Opens a file for reading and appending; it is made if it is missing. `problem` is set on failure.
    explicit ResultFile(const QString& name);

    /// The system's error message of the first failure; empty if there is none.
    [[nodiscard]] const QString& problem() const { return failure; }

    /// Reads the lines of an earlier run that are complete, as long as `belongs` accepts them.
    /// \return the lines without their line ends
    [[nodiscard]] std::vector<std::string>
    readWhile(const std::function<bool(std::string_view line)>& belongs);
    /// Whether all complete lines have been read.
    [[nodiscard]] bool atEnd();
    /// The next line that has not been read; empty at the end.
    [[nodiscard]] const std::string& nextLine();
    /// The position of the next line that has not been read, in bytes.
    [[nodiscard]] uint64_t position() const { return readTo; }

    /// Removes everything from a position on. Later lines are appended there.
    [[nodiscard]] bool cut(uint64_t position);
    /// Appends lines that end with a line end.
    [[nodiscard]] bool append(std::string_view lines);
    [[nodiscard]] bool flush();

private:
    struct Closer
    {
        void operator()(std::FILE* opened) const { std::fclose(opened); }
    };

    void fetch();
    [[nodiscard]] bool check(bool succeeded);

    std::unique_ptr<std::FILE, Closer> file;
    QString failure;
    std::string line; // the next one, if `isFetched`
    bool isFetched = false;
    bool isComplete = false; // the next line has a line end
    uint64_t readTo = 0;
};

} // namespace vmk
