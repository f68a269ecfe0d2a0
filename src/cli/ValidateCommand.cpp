#include "BookCheck.h"
#include "CollectionRun.h"
#include "Command.h"
#include "CommandLine.h"
#include "InitGlobals.h"
#include "XmlReason.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <numeric>
#include <optional>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct ValidateOptions
{
    ValidateAgainst against = ValidateAgainst::Schema;
    QString schemaFile; // empty: the workspace's schema
    ErrorsToFind errors = ErrorsToFind::First;
    bool summary = false;
    CollectionOptions collection;
};

void TakeOption(CommandLine& line, ValidateOptions& options)
{
    const QString& option = line.option();
    if (options.collection.take(line))
        return;
    if (option == u"--schema") {
        options.schemaFile = line.value();
    } else if (option == u"--all-errors") {
        options.errors = ErrorsToFind::All;
    } else if (option == u"--summary") {
        options.summary = true;
    } else if (option == u"--against") {
        const QString value = line.value();
        options.against = value == u"schema" ? ValidateAgainst::Schema : ValidateAgainst::Namespace;
        if (value != u"schema" && value != u"namespace")
            line.fail(u"--against needs \"schema\" or \"namespace\""_s);
    } else {
        line.failUnknownOption();
    }
}

/// Returns the options, or nothing with the error in `problem`.
std::optional<ValidateOptions> ReadOptions(const QStringList& arguments, QString* problem)
{
    ValidateOptions options;
    CommandLine line(arguments);
    while (line.next()) {
        if (line.option().isEmpty())
            options.collection.inputs.append(line.operand());
        else
            TakeOption(line, options);
    }
    options.collection.check(line);
    if (options.against == ValidateAgainst::Namespace && !options.schemaFile.isEmpty())
        line.fail(u"--schema has no use with --against namespace"_s);
    *problem = line.error();
    return problem->isEmpty() ? std::optional(options) : std::nullopt;
}

QString WorkspaceSchema()
{
    // The supplied workspace: nothing is created or written here.
    return InstalledDataFolder(QCoreApplication::applicationFilePath())
        + u"/VMK Office/Schemas/FictionBook.xsd"_s;
}

int CheckAndPrint(const BookItem& book, const ValidateOptions& options, const BookValidation& validation)
{
    const BookCheck check = CheckBook(book, validation, options.errors);
    if (!check.failure.isEmpty()) {
        PrintFailure(check.book, check.failure, options.collection.json);
        return ExitFailure;
    }
    if (options.collection.json) {
        PrintLine(ResultJson(check, options.against, options.errors));
    } else {
        for (const QString& line : ResultLines(check, options.against))
            PrintLine(line);
    }
    if (options.summary)
        for (const XmlParseError& error : check.errors)
            CountError(KindOfReason(ShownReason(error)));
    return check.errors.empty() ? ExitClean : ExitFaults;
}

/// Returns the exit code of a result of an earlier run.
int CodeOfResult(const EarlierResult& result, std::vector<std::string>& kinds)
{
    const auto add = [&kinds](const QString& reason) { kinds.push_back(KindOfReason(reason).toStdString()); };
    if (!result.object.isEmpty()) {
        const QJsonArray all = result.object[u"errors"_s].toArray();
        for (const auto& error : all)
            add(error[u"reason"_s].toString());
        const QJsonObject first = result.object[u"error"_s].toObject();
        if (all.isEmpty() && !first.isEmpty())
            add(first[u"reason"_s].toString());
        return first.isEmpty() ? ExitClean : ExitFaults;
    }
    if (result.text.startsWith(u": No errors (against "_s))
        return ExitClean;
    add(result.text.section(u": Error against "_s, 1).section(u". "_s, 1));
    return ExitFaults;
}

constexpr QStringView SummaryStart = u"Summary: ";

QStringList SummaryText(const RunTotals& totals)
{
    const auto& [valid, invalid, unread] = totals.books;
    QStringList lines
        = {SummaryStart.toString()
           + u"%1 books, %2 without errors, %3 with errors, %4 not read"_s.arg(valid + invalid + unread)
                 .arg(valid)
                 .arg(invalid)
                 .arg(unread)};
    std::vector<std::pair<std::string, uint64_t>> kinds(totals.kinds.begin(), totals.kinds.end());
    std::ranges::stable_sort(kinds, std::greater(), &std::pair<std::string, uint64_t>::second);
    for (const auto& [kind, count] : kinds)
        lines += u"%1  %2"_s.arg(count, 9).arg(QString::fromStdString(kind));
    return lines;
}

QString SummaryJson(const RunTotals& totals)
{
    const auto& [valid, invalid, unread] = totals.books;
    QJsonObject kinds;
    for (const auto& [kind, count] : totals.kinds)
        kinds[QString::fromStdString(kind)] = qint64(count);
    const QJsonObject summary{{u"books"_s, qint64(valid + invalid + unread)},
                              {u"valid"_s, qint64(valid)},
                              {u"invalid"_s, qint64(invalid)},
                              {u"unread"_s, qint64(unread)},
                              {u"errors"_s, kinds}};
    return QString::fromUtf8(
        QJsonDocument(QJsonObject{{u"summary"_s, summary}}).toJson(QJsonDocument::Compact));
}

int Validate(const ValidateOptions& options)
{
    const QString schemaFile = options.schemaFile.isEmpty() ? WorkspaceSchema() : options.schemaFile;
    // Compiled once; each process has it.
    const BookValidation validation(options.against, schemaFile);
    if (!validation.schemaProblem().isEmpty()) {
        PrintErrorLine(u"vmk: schema "_s + validation.schemaProblem());
        return ExitFailure;
    }
    CollectionJob job;
    job.makeHandler = [&]() -> BookHandler {
        return [&](const BookItem& book) { return CheckAndPrint(book, options, validation); };
    };
    job.codeOfLine = CodeOfResult;
    if (options.summary) {
        const bool json = options.collection.json;
        job.closing = [json](const RunTotals& totals) {
            return json ? QStringList{SummaryJson(totals)} : SummaryText(totals);
        };
        job.closingStart = json ? u"{\"summary\":"_s : SummaryStart.toString();
    }
    return RunCollection(options.collection, job).worstCode();
}

int RunValidate(const QStringList& arguments)
{
    QString problem;
    const std::optional<ValidateOptions> options = ReadOptions(arguments, &problem);
    if (options)
        return Validate(*options);
    PrintErrorLine(u"vmk validate: "_s + problem + u"; try vmk validate --help"_s);
    return ExitFailure;
}

} // namespace

const Command ValidateCommand
    = {"validate", "check books against the schema, or for well-formedness and namespaces",
       R"(usage: vmk validate [OPTION...] BOOK...

Checks each BOOK and writes one line for it:

  BOOK: No errors (against schema)
  BOOK:LINE:COLUMN: Error against schema. REASON

Each BOOK is a file, a folder (with all "*.fb2" and "*.zip" in it), a zip archive (with all "*.fb2" in it), a
member of one (ARCHIVE.zip:MEMBER), or "-" for standard input. What cannot be read is one line on standard
error.

  --against schema      check against the schema (default)
  --against namespace   check only that the book is well-formed and declares its prefixes
  --schema FILE         the schema, instead of FictionBook.xsd of the workspace
  --all-errors          report every error against the schema, each on a line, instead of the first one
  --summary             write at the end how many books have errors, and the errors counted by kind
  --json                write one JSON object for each book
  --files-from FILE     take further paths from FILE, one in each line ("-": standard input)
  -0                    the paths in FILE end with a NUL character
  --jobs N              check N books at a time (default: one for each processor); the results keep their order
  --resume FILE         write the results into FILE, and continue the run that has written it
  --help                show this text

Exit status: 0 no errors, 1 errors in a book, 2 wrong usage or a file that cannot be read.
)",
       RunValidate};

} // namespace vmk
