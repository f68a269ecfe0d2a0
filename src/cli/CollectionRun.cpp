#include "CollectionRun.h"

#include "CommandLine.h"
#include "FileNames.h"
#include "OutputPaths.h"
#include "Progress.h"
#include "ResultFile.h"
#include "WorkerProcesses.h"

#include <QJsonDocument>

#include <algorithm>
#include <optional>
#include <set>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

/// Limits of the reports that wait for an earlier book.
constexpr size_t MostReadyBytes = size_t(32) << 20;
constexpr size_t ReportBytes = 256; // of a report without text

/// The memory of a summary is limited, whatever the books contain.
constexpr size_t MostKinds = 1000;
constexpr char OtherKinds[] = "other errors";

class Run
{
public:
    Run(const CollectionOptions& runOptions, const CollectionJob& commandJob)
        : options(runOptions)
        , job(commandJob)
        , walk(options.input())
        , progress(options)
    {
    }

    RunTotals run();

private:
    [[nodiscard]] bool openResults();
    [[nodiscard]] bool skipDone();
    [[nodiscard]] bool belongs(const BookItem& item, std::string_view line) const;
    void account(const BookItem& item, const std::vector<std::string>& lines);
    [[nodiscard]] EarlierResult readLine(const BookItem& item, std::string_view line) const;
    [[nodiscard]] std::optional<QString> failureOf(const BookItem& item, std::string_view line) const;
    [[nodiscard]] int codeOfLine(const BookItem& item, std::string_view line,
                                 std::vector<std::string>& kinds) const;

    void handleBooks();
    [[nodiscard]] std::optional<BookItem> nextItem();
    void give(WorkerProcesses& workers, BookItem item);
    void keep(uint64_t number, BookReport report);
    void printReady();
    void print(const BookReport& report);
    void write(std::string_view lines);
    void count(int code, const std::vector<std::string>& kinds);

    const CollectionOptions& options;
    const CollectionJob& job;
    BookWalk walk;
    Progress progress;
    TakenPaths taken;
    std::optional<ResultFile> results;
    Clock::time_point flushed = Clock::now();
    std::optional<BookItem> firstItem; // where a run continues
    bool isDone = false; // an earlier run has done everything
    uint64_t nextNumber = 0;
    uint64_t nextPrinted = 0;
    std::map<uint64_t, BookReport> ready; // that wait for an earlier one
    size_t readyBytes = 0;
    std::map<uint64_t, QString> names; // of the books without a report
    std::set<std::string> notices;
    RunTotals totals;
};

/// The report of a book or an archive that cannot be read.
BookReport FailureReport(const QString& name, const QString& failure, bool json)
{
    BookReport report;
    const ReportCapture capture(report);
    PrintFailure(name, failure, json);
    report.code = ExitFailure;
    return report;
}

std::string Handle(const BookHandler& handler, const BookItem& item, bool json)
{
    BookReport report;
    try {
        const ReportCapture capture(report);
        report.code = handler(item);
        // What an engine has reported about a book that it refuses is the reason.
        if (report.code == ExitFailure && !report.hasFailure) {
            if (json)
                PrintFailure(item.name, QString::fromStdString(report.errors).trimmed(), json);
            else
                std::swap(report.failure, report.errors);
        }
    } catch (const std::bad_alloc&) {
        report = FailureReport(item.name, u"not enough memory"_s, json);
    }
    return report.toBytes();
}

RunTotals Run::run()
{
    if (!openResults()) {
        totals.isIncomplete = true;
        return totals;
    }
    if (!isDone)
        handleBooks();
    for (const std::string& notice : notices)
        std::fwrite(notice.data(), 1, notice.size(), stderr);
    if (job.closing)
        for (const QString& line : job.closing(totals))
            write((line + u'\n').toStdString());
    progress.finish();
    if (results && !results->flush()) {
        PrintErrorLine(u"vmk: "_s + ShownName(options.resultFile) + u": "_s + results->problem());
        totals.isIncomplete = true;
    }
    if (!FlushOutput())
        totals.isIncomplete = true;
    return totals;
}

// ---------------------------------------------------------------- continuing an earlier run

bool Run::openResults()
{
    if (options.resultFile.isEmpty())
        return true;
    results.emplace(options.resultFile);
    const bool isUsable = results->problem().isEmpty() && skipDone() && results->problem().isEmpty();
    if (!results->problem().isEmpty())
        PrintErrorLine(u"vmk: "_s + ShownName(options.resultFile) + u": "_s + results->problem());
    return isUsable;
}

/// Compares the results of the earlier run with the input, book by book, and counts them. The run continues
/// at the last book with results, because only a later one proves that they are complete.
bool Run::skipDone()
{
    while (!results->atEnd()) {
        const std::optional<BookItem> item = nextItem();
        const uint64_t start = results->position();
        if (!item) {
            isDone = true;
            if (!job.closingStart.isEmpty()
                && results->nextLine().starts_with(job.closingStart.toStdString()))
                return results->cut(start);
            PrintErrorLine(u"vmk: "_s + ShownName(options.resultFile) + u": contains other results: "_s
                           + QString::fromStdString(results->nextLine()));
            return false;
        }
        const std::vector<std::string> lines
            = results->readWhile([&](std::string_view line) { return belongs(*item, line); });
        if (!lines.empty() && results->atEnd()) {
            firstItem = item;
            return results->cut(start);
        }
        account(*item, lines);
    }
    return results->cut(results->position());
}

bool Run::belongs(const BookItem& item, std::string_view line) const
{
    if (options.json) {
        const QByteArray bytes = QByteArray::fromRawData(line.data(), qsizetype(line.size()));
        return QJsonDocument::fromJson(bytes).object()[u"book"_s].toString() == ReadableName(item.name);
    }
    const std::string name = EncodeFileName(ShownName(item.name)).toStdString();
    return line.starts_with("vmk: " + name + ": ")
        || (item.failure.isEmpty() && line.starts_with(name + ":"));
}

EarlierResult Run::readLine(const BookItem& item, std::string_view line) const
{
    if (options.json)
        return {{}, QJsonDocument::fromJson(QByteArray(line.data(), qsizetype(line.size()))).object()};
    const QString text = DecodeFileName(QByteArray(line.data(), qsizetype(line.size())));
    return {text.mid(ShownName(item.name).size()), {}};
}

/// Returns the failure that a line of an earlier run reports; nothing if it is a result.
std::optional<QString> Run::failureOf(const BookItem& item, std::string_view line) const
{
    if (options.json) {
        const QJsonValue failure = readLine(item, line).object.value(u"failure"_s);
        return failure.isUndefined() ? std::nullopt : std::optional(failure.toString());
    }
    const std::string start = "vmk: " + EncodeFileName(ShownName(item.name)).toStdString() + ": ";
    if (!line.starts_with(start))
        return std::nullopt;
    return DecodeFileName(QByteArray(line.data(), qsizetype(line.size())).mid(qsizetype(start.size())));
}

int Run::codeOfLine(const BookItem& item, std::string_view line, std::vector<std::string>& kinds) const
{
    if (const std::optional<QString> failure = failureOf(item, line))
        return job.codeOfFailure ? job.codeOfFailure(*failure) : int(ExitFailure);
    return job.codeOfLine(readLine(item, line), kinds);
}

void Run::account(const BookItem& item, const std::vector<std::string>& lines)
{
    int code = ExitClean;
    std::vector<std::string> kinds;
    for (const std::string& line : lines)
        code = std::max(code, codeOfLine(item, line, kinds));
    // A search prints nothing about a book without a match.
    count(lines.empty() ? job.codeOfLine({}, kinds) : code, kinds);
}

// ---------------------------------------------------------------- handling books

std::optional<BookItem> Run::nextItem()
{
    if (firstItem)
        return std::exchange(firstItem, std::nullopt);
    std::optional<BookItem> item = walk.next();
    if (item && item->failure.isEmpty() && !item->output.empty() && !taken.take(item->output))
        item->failure = u"not written: an earlier book has the path "_s + NameOfPath(item->output);
    return item;
}

void Run::handleBooks()
{
    WorkerProcesses workers(options.workers(), [this]() -> WorkerProcesses::Work {
        return [this, handler = job.makeHandler()](std::string_view task) {
            return Handle(handler, BookItem::ofBytes(task), options.json);
        };
    });
    bool hasMore = true;
    while (hasMore || workers.pending() > 0) {
        while (hasMore && workers.wantsTask() && readyBytes < MostReadyBytes) {
            std::optional<BookItem> item = nextItem();
            hasMore = item.has_value();
            if (item)
                give(workers, *std::move(item));
        }
        constexpr milliseconds Patience(200);
        if (std::optional<WorkerProcesses::Result> result = workers.next(Patience)) {
            const auto name = names.extract(result->number).mapped();
            keep(result->number,
                 result->fault.isEmpty() ? BookReport::ofBytes(result->bytes)
                                         : FailureReport(name, result->fault, options.json));
        }
        progress.show(nextPrinted);
    }
}

void Run::give(WorkerProcesses& workers, BookItem item)
{
    const uint64_t number = nextNumber++;
    walk.load(item);
    if (item.failure.isEmpty()) {
        names.emplace(number, item.name);
        workers.submit(number, item.toBytes());
    } else {
        keep(number, FailureReport(item.name, item.failure, options.json));
    }
}

void Run::keep(uint64_t number, BookReport report)
{
    if (number == nextPrinted) {
        print(report);
        ++nextPrinted;
        printReady();
        return;
    }
    readyBytes += report.output.size() + report.errors.size() + ReportBytes;
    ready.emplace(number, std::move(report));
}

void Run::printReady()
{
    while (!ready.empty() && ready.begin()->first == nextPrinted) {
        const BookReport& report = ready.begin()->second;
        readyBytes -= report.output.size() + report.errors.size() + ReportBytes;
        print(report);
        ready.erase(ready.begin());
        ++nextPrinted;
    }
}

void Run::print(const BookReport& report)
{
    count(report.code, report.kinds);
    notices.insert(report.notices.begin(), report.notices.end());
    write(report.output);
    if (results)
        write(report.failure);
    if (report.errors.empty() && report.failure.empty())
        return;
    progress.clear();
    std::fwrite(report.errors.data(), 1, report.errors.size(), stderr);
    std::fwrite(report.failure.data(), 1, report.failure.size(), stderr);
}

void Run::write(std::string_view lines)
{
    if (lines.empty())
        return;
    if (!results) {
        progress.clearForOutput();
        std::fwrite(lines.data(), 1, lines.size(), stdout);
        return;
    }
    constexpr milliseconds FlushPeriod(1000);
    static_cast<void>(results->append(lines));
    if (Clock::now() - flushed > FlushPeriod) {
        static_cast<void>(results->flush());
        flushed = Clock::now();
    }
}

void Run::count(int code, const std::vector<std::string>& kinds)
{
    ++totals.books[static_cast<size_t>(std::clamp<int>(code, ExitClean, ExitFailure))];
    for (const std::string& kind : kinds) {
        const bool isKept = totals.kinds.size() < MostKinds || totals.kinds.contains(kind);
        ++totals.kinds[isKept ? kind : std::string(OtherKinds)];
    }
}

} // namespace

int RunTotals::worstCode() const
{
    if (isIncomplete || books[ExitFailure] > 0)
        return ExitFailure;
    return books[ExitFaults] > 0 ? ExitFaults : ExitClean;
}

RunTotals RunCollection(const CollectionOptions& options, const CollectionJob& job)
{
    return Run(options, job).run();
}

} // namespace vmk
