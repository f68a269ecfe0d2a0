#pragma once

#include <QString>

#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// Everything that a command has printed about one book, and its exit code.
struct BookReport
{
    int code = 0;
    std::string output; ///< lines for standard output
    std::string errors; ///< lines for standard error
    std::string failure; ///< the line about a book that cannot be read, for standard error
    std::vector<std::string> kinds; ///< the kinds of the errors of the book, for a summary
    std::vector<std::string> notices; ///< lines for standard error that are printed once in a run
    bool hasFailure = false; ///< `PrintFailure` was called; not part of the bytes

    /// Returns the report as bytes for another process, and the report of such bytes.
    [[nodiscard]] std::string toBytes() const;
    [[nodiscard]] static BookReport ofBytes(std::string_view bytes);
};

/// Collects in a report, for its scope, what this process prints.
class ReportCapture
{
public:
    explicit ReportCapture(BookReport& report);
    ReportCapture(const ReportCapture&) = delete;
    ReportCapture& operator=(const ReportCapture&) = delete;
    ~ReportCapture();

private:
    BookReport* before;
};

/// Writes a line and a line end to standard output or standard error in the system's encoding.
void PrintLine(const QString& line);
void PrintErrorLine(const QString& line);

/// Reports a book that cannot be read or written, or that is damaged by a command: a line on standard error,
/// or a JSON object on standard output. \param book  its name
void PrintFailure(const QString& book, const QString& reason, bool asJson);

/// Writes a line to standard error that several books of a run can cause, and that is printed once.
void PrintNotice(const QString& line);

/// Counts an error of the current book for the summary of the run. Has no effect outside a run.
void CountError(const QString& kind);

/// Writes the buffered output of `PrintLine`. On failure, reports it on standard error and returns false.
[[nodiscard]] bool FlushOutput();

} // namespace vmk
