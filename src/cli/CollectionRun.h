#pragma once

#include "BookItem.h"
#include "BookReport.h"
#include "CollectionOptions.h"
#include "Command.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace vmk {

/// Handles one book: prints its results and returns its exit code.
using BookHandler = std::function<int(const BookItem& item)>;

/// A line of an earlier run.
struct EarlierResult
{
    QString text; ///< what follows the name of the book; empty for a JSON object
    QJsonObject object;
};

/// What a run has found.
struct RunTotals
{
    std::array<uint64_t, 3> books = {}; ///< by exit code: clean, with faults, not read
    std::map<std::string, uint64_t> kinds; ///< errors by their kind
    bool isIncomplete = false; ///< the results could not be written, or the run could not begin

    /// The exit code of a command that returns the worst one of its books.
    [[nodiscard]] int worstCode() const;
};

/// How a command handles a collection.
struct CollectionJob
{
    /// Called once in each process that handles books.
    std::function<BookHandler()> makeHandler;
    /// Returns the exit code of a line of an earlier run; adds its errors to `kinds`.
    std::function<int(const EarlierResult& line, std::vector<std::string>& kinds)> codeOfLine;
    /// Returns the exit code of a book for which an earlier run has reported this failure; `ExitFailure` if
    /// it is not set.
    std::function<int(const QString& reason)> codeOfFailure = {};
    /// Returns the lines at the end of the results; they begin with `closingStart`.
    std::function<QStringList(const RunTotals& totals)> closing = {};
    QString closingStart = {};
};

/// Handles all books of an input, several at a time, and prints their results in the order of the input. A
/// book, member, archive or folder that cannot be read is one line, and the run continues.
[[nodiscard]] RunTotals RunCollection(const CollectionOptions& options, const CollectionJob& job);

} // namespace vmk
