#include "CleanUpEngine.h"
#include "CollectionRun.h"
#include "Command.h"
#include "CommandLine.h"
#include "DisplayDocument.h"
#include "DisplayText.h"
#include "DisplayValuesOfSettings.h"
#include "FileNames.h"
#include "OutputPaths.h"
#include "PageOfBook.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"
#include "XmlDocument.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// The reason in the report of a book that the tables have damaged.
constexpr QLatin1StringView BrokenAfter(": no longer well-formed after ");

struct NamedTable
{
    QString file;
    CleanUpTable table;
};

struct CleanOptions
{
    QStringList tableFiles;
    QString file; // --out; empty for none
    bool inPlace = false;
    bool dryRun = false;
    bool force = false;
    CollectionOptions collection;
    BookReading reading = BookReading::Kept;
};

void TakeOption(CommandLine& line, CleanOptions& options)
{
    const QString& option = line.option();
    if (options.collection.take(line))
        return;
    if (option == u"--table")
        options.tableFiles += line.value();
    else if (option == u"--out")
        options.file = line.value();
    else if (option == u"--out-dir")
        options.collection.outFolder = line.value();
    else if (option == u"--in-place")
        options.inPlace = true;
    else if (option == u"--dry-run")
        options.dryRun = true;
    else if (option == u"--force")
        options.force = true;
    else if (option == u"--as-editor")
        options.reading = BookReading::AsEditor;
    else
        line.failUnknownOption();
}

CleanOptions ReadOptions(CommandLine& line)
{
    CleanOptions options;
    while (line.next()) {
        if (line.option().isEmpty())
            options.collection.inputs += line.operand();
        else
            TakeOption(line, options);
    }
    const bool hasFolder = !options.collection.outFolder.isEmpty();
    const int targets = int(!options.file.isEmpty()) + int(options.inPlace) + int(hasFolder);
    if (options.tableFiles.isEmpty())
        line.fail(u"no table given (--table)"_s);
    options.collection.check(line);
    if (targets == 0 && !options.dryRun)
        line.fail(u"no file given to write to (--out, --out-dir, --in-place or --dry-run)"_s);
    if (targets > 1)
        line.fail(u"--out, --out-dir and --in-place exclude each other"_s);
    if (!options.file.isEmpty()
        && (options.collection.inputs.size() > 1 || options.collection.isCollection()))
        line.fail(u"--out takes one book"_s);
    return options;
}

/// Reads the tables; nothing, with a line on standard error, if one cannot be read.
std::optional<std::vector<NamedTable>> ReadTables(const QStringList& files)
{
    std::vector<NamedTable> tables;
    for (const QString& file : files) {
        const FileContent content = ReadContent(file);
        QString failure = ReadFailureText(content);
        std::optional<CleanUpTable> table;
        if (failure.isEmpty()) {
            table = CleanUpTableOfBytes(content.bytes);
            if (!table)
                failure = u"cannot load file: bad file signature"_s;
        }
        if (!table) {
            PrintErrorLine(u"vmk: "_s + ShownName(file) + u": "_s + failure);
            return std::nullopt;
        }
        // The companion always cleans whole books.
        table->CleanWhere = CleanUpScopes().front();
        tables.push_back({file, *std::move(table)});
    }
    return tables;
}

QLatin1StringView NameOf(CleanUpRowState state)
{
    switch (state) {
    case CleanUpRowState::Skipped:
        return "not used"_L1;
    case CleanUpRowState::Applied:
        return "applied"_L1;
    case CleanUpRowState::BadExpression:
        return "not a valid regular expression"_L1;
    case CleanUpRowState::Stopped:
        return "stopped: too much work or too much text"_L1;
    }
    return {};
}

void PrintRow(const CleanOptions& options, const QString& book, const QString& table, size_t row,
              const CleanUpRowResult& result)
{
    if (options.collection.json) {
        const QJsonObject object = {{u"book"_s, ReadableName(book)},
                                    {u"table"_s, ReadableName(table)},
                                    {u"row"_s, qint64(row)},
                                    {u"state"_s, QString(NameOf(result.state))},
                                    {u"replacements"_s, qint64(result.replacements)}};
        PrintLine(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
        return;
    }
    const QString what = result.state == CleanUpRowState::Applied ? QString::number(result.replacements)
                                                                  : QString(NameOf(result.state));
    PrintLine(ShownName(book) + u": "_s + ShownName(table) + u':' + QString::number(row) + u": "_s + what);
}

bool IsWellFormed(const DisplayDocument& document)
{
    return !HasParseError(TextOfDisplay(document, AngleMarks::Restore), XmlEncoding::utf8());
}

void NoProgress(const QString&) { }

TagPaint Paint()
{
    return TagPaint::Of(DisplayValuesOfSettings());
}

/// Names the first row after which the book is not well-formed any more, as TABLE:ROW.
/// \param document  after the runs of all tables, which are taken back first
QString BreakingRow(DisplayDocument& document, const std::vector<NamedTable>& tables)
{
    while (document.undo()) { }
    for (const NamedTable& named : tables) {
        for (size_t row = 0; row < named.table.rows.size(); ++row) {
            CleanUpBookFragment(document, {named.table.CleanWhere, {named.table.rows[row]}}, Paint(),
                                NoProgress);
            if (!IsWellFormed(document))
                return ShownName(named.file) + u':' + QString::number(row + 1);
        }
    }
    return {};
}

/// Reads a book and finds the file to write. On failure, reports it and returns nothing.
std::optional<std::string> ReadToClean(const BookItem& book, const CleanOptions& options,
                                       OutputFolder& outputs, QString* file)
{
    FileContent content = book.content();
    QString problem = ReadFailureText(content);
    if (problem.isEmpty() && IsBlank(content.bytes))
        problem = u"empty book - nothing to save"_s;
    if (problem.isEmpty() && options.inPlace && (book.packed || book.path == "-"))
        problem = u"cannot be changed in place; --out-dir takes any book"_s;
    if (problem.isEmpty() && !book.output.empty() && !options.dryRun)
        *file = outputs.pathFor(book, &problem);
    else
        *file = options.inPlace ? book.name : options.file;
    if (problem.isEmpty())
        return std::move(content.bytes);
    PrintFailure(book.name, problem, options.collection.json);
    return std::nullopt;
}

int CleanOneBook(const BookItem& book, const CleanOptions& options, const std::vector<NamedTable>& tables,
                 OutputFolder& outputs)
{
    QString target;
    std::optional<std::string> bytes = ReadToClean(book, options, outputs, &target);
    DisplayDocument document;
    if (!bytes || !OpenBook(book.name, *std::move(bytes), document, options.reading))
        return ExitFailure;

    const bool wasWellFormed = IsWellFormed(document);
    for (const NamedTable& named : tables) {
        const CleanUpRun run = CleanUpBookFragment(document, named.table, Paint(), NoProgress);
        for (size_t row = 0; row < run.rows.size(); ++row)
            PrintRow(options, book.name, named.file, row + 1, run.rows[row]);
    }
    const bool isBroken = wasWellFormed && !IsWellFormed(document);
    const bool writes = !options.dryRun && (!isBroken || options.force);
    if (writes) {
        const BookFile file = FileOfDocument(book.name, document, options.reading);
        if (!WriteOutput(target, file.bytes, Durability::Flushed))
            return ExitFailure;
    }
    if (!isBroken)
        return ExitClean;
    PrintFailure(book.name,
                 (writes ? u"written"_s : u"not written"_s) + BrokenAfter + BreakingRow(document, tables),
                 options.collection.json);
    return ExitFaults;
}

int RunClean(const QStringList& arguments)
{
    CommandLine line(arguments);
    const CleanOptions options = ReadOptions(line);
    if (!line.error().isEmpty()) {
        PrintErrorLine(u"vmk clean: "_s + line.error() + u"; try vmk clean --help"_s);
        return ExitFailure;
    }
    const auto tables = ReadTables(options.tableFiles);
    if (!tables)
        return ExitFailure;

    if (!options.collection.makeOutFolder())
        return ExitFailure;
    ReadSettings(true);
    InLineTags = DefaultInLineTags();
    OutputEncoding = u"original"_s;
    OutputStyle = u"tags tree"_s;
    CollectionJob job;
    job.makeHandler = [&]() -> BookHandler {
        return [&, outputs = OutputFolder(options.collection.outFolder)](const BookItem& book) mutable {
            return CleanOneBook(book, options, *tables, outputs);
        };
    };
    job.codeOfLine = [](const EarlierResult&, std::vector<std::string>&) { return ExitClean; };
    job.codeOfFailure
        = [](const QString& reason) { return reason.contains(BrokenAfter) ? ExitFaults : ExitFailure; };
    return RunCollection(options.collection, job).worstCode();
}

} // namespace

const Command CleanCommand = {"clean", "apply tables of replacements to books",
                              R"(usage: vmk clean --table FILE [--table FILE...] BOOK --out FILE
       vmk clean --table FILE [--table FILE...] --out-dir DIR|--in-place|--dry-run [OPTION...] BOOK...

Applies the rows in use of each table to the whole of each BOOK, as the book cleaner of the editor does, and
saves the book as "vmk convert" does. Writes one line for each row, with the number of replacements:

  BOOK: TABLE:ROW: COUNT

Each BOOK is a file, a folder (with all "*.fb2" and "*.zip" in it), a zip archive (with all "*.fb2" in it) or a
member of one (ARCHIVE.zip:MEMBER).

  --table FILE       a clean-up file; several are applied one after another
  --out FILE         the file to write, replaced whole or not at all
  --out-dir DIR      write each book below DIR, under its own path; DIR is made if it is missing
  --in-place         replace each BOOK itself; not for books in archives
  --dry-run          write no book, only the counts
  --force            write a book also if it was well-formed before and is not any more; without this option
                     it is not written, and a line on standard error names the row
  --as-editor        read the book by the editor's own rules, see vmk convert
  --json             write one JSON object for each row, and for a book that is not well-formed any more
  --files-from FILE  take further paths from FILE, one in each line ("-": standard input)
  -0                 the paths in FILE end with a NUL character
  --jobs N           clean N books at a time (default: one for each processor); results keep their order
  --resume FILE      write the results into FILE, and continue the run that has written it
  --help             show this text

Exit status: 0 done, 1 a book is not well-formed any more, 2 wrong use, or a file that cannot be read or
written.
)",
                              RunClean};

} // namespace vmk
