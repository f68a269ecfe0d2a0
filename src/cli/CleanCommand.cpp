#include "CleanUpEngine.h"
#include "Command.h"
#include "CommandLine.h"
#include "DisplayDocument.h"
#include "DisplayText.h"
#include "DisplayValuesOfSettings.h"
#include "FileNames.h"
#include "PageOfBook.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"
#include "XmlDocument.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <algorithm>
#include <deque>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr int MostJobs = 256;

struct NamedTable
{
    QString file;
    CleanUpTable table;
};

struct CleanOptions
{
    QStringList tableFiles;
    QStringList books;
    QString file;
    bool inPlace = false;
    bool dryRun = false;
    bool force = false;
    bool json = false;
    int jobs = 1;
    BookReading reading = BookReading::Kept;
};

void TakeOption(CommandLine& line, CleanOptions& options)
{
    const QString& option = line.option();
    if (option == u"--table")
        options.tableFiles += line.value();
    else if (option == u"--out")
        options.file = line.value();
    else if (option == u"--in-place")
        options.inPlace = true;
    else if (option == u"--dry-run")
        options.dryRun = true;
    else if (option == u"--force")
        options.force = true;
    else if (option == u"--json")
        options.json = true;
    else if (option == u"--as-editor")
        options.reading = BookReading::AsEditor;
    else if (option == u"--jobs")
        options.jobs = line.number(1, MostJobs);
    else
        line.failUnknownOption();
}

CleanOptions ReadOptions(CommandLine& line)
{
    CleanOptions options;
    while (line.next()) {
        if (line.option().isEmpty())
            options.books += line.operand();
        else
            TakeOption(line, options);
    }
    const bool writes = !options.file.isEmpty() || options.inPlace;
    if (options.tableFiles.isEmpty())
        line.fail(u"no table given (--table)"_s);
    if (options.books.isEmpty())
        line.fail(u"no book given"_s);
    if (!writes && !options.dryRun)
        line.fail(u"no file given to write to (--out, --in-place or --dry-run)"_s);
    if (!options.file.isEmpty() && options.inPlace)
        line.fail(u"--out and --in-place exclude each other"_s);
    if (!options.file.isEmpty() && options.books.size() > 1)
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
    if (options.json) {
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

int CleanOneBook(const CleanOptions& options, const QString& book, const std::vector<NamedTable>& tables)
{
    std::optional<std::string> bytes = ReadBook(book);
    if (!bytes)
        return ExitFailure;
    if (IsBlank(*bytes)) {
        PrintErrorLine(u"vmk: "_s + ShownName(book) + u": empty book - nothing to save"_s);
        return ExitFailure;
    }
    DisplayDocument document;
    if (!OpenBook(book, *std::move(bytes), document, options.reading))
        return ExitFailure;

    const bool wasWellFormed = IsWellFormed(document);
    for (const NamedTable& named : tables) {
        const CleanUpRun run = CleanUpBookFragment(document, named.table, Paint(), NoProgress);
        for (size_t row = 0; row < run.rows.size(); ++row)
            PrintRow(options, book, named.file, row + 1, run.rows[row]);
    }
    const bool isBroken = wasWellFormed && !IsWellFormed(document);
    const bool writes = !options.dryRun && (!isBroken || options.force);
    if (writes) {
        const BookFile file = FileOfDocument(book, document, options.reading);
        if (!WriteOutput(options.inPlace ? book : options.file, file.bytes, Durability::Flushed))
            return ExitFailure;
    }
    if (!isBroken)
        return ExitClean;
    PrintErrorLine(u"vmk: "_s + ShownName(book) + (writes ? u": written"_s : u": not written"_s)
                   + u": no longer well-formed after "_s + BreakingRow(document, tables));
    return ExitFaults;
}

/// The arguments for a process that cleans one of several books.
QStringList ArgumentsForOne(const CleanOptions& options, const QString& book)
{
    // The process class replaces the bytes of a name that are not UTF-8.
    const auto encoded
        = [](const QString& name) { return QString::fromLatin1(EncodeFileName(name).toPercentEncoding()); };
    QStringList arguments = {PercentEncoded, u"clean"_s};
    for (const QString& table : options.tableFiles)
        arguments += {u"--table"_s, encoded(table)};
    if (options.inPlace)
        arguments += u"--in-place"_s;
    if (options.dryRun)
        arguments += u"--dry-run"_s;
    if (options.force)
        arguments += u"--force"_s;
    if (options.json)
        arguments += u"--json"_s;
    if (options.reading == BookReading::AsEditor)
        arguments += u"--as-editor"_s;
    return arguments + QStringList{u"--"_s, encoded(book)};
}

/// Prints what a process has printed, and returns its exit code.
int Finish(QProcess& process)
{
    process.waitForFinished(-1);
    const QByteArray errors = process.readAllStandardError();
    const QByteArray output = process.readAllStandardOutput();
    for (const QByteArray& line : output.split('\n')) {
        if (!line.isEmpty())
            PrintLine(DecodeFileName(line));
    }
    for (const QByteArray& line : errors.split('\n')) {
        if (!line.isEmpty())
            PrintErrorLine(DecodeFileName(line));
    }
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : int(ExitFailure);
}

/// Cleans several books, each in a process of its own, because the state of an open book is shared variables.
/// The results keep the order of the books.
int CleanInProcesses(const CleanOptions& options)
{
    int code = ExitClean;
    std::deque<std::unique_ptr<QProcess>> running;
    const auto finishFirst = [&] {
        code = std::max(code, Finish(*running.front()));
        running.pop_front();
    };
    for (const QString& book : options.books) {
        if (running.size() == size_t(options.jobs))
            finishFirst();
        running.push_back(std::make_unique<QProcess>());
        running.back()->start(QCoreApplication::applicationFilePath(), ArgumentsForOne(options, book));
    }
    while (!running.empty())
        finishFirst();
    return code;
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

    int code = ExitClean;
    if (options.jobs > 1 && options.books.size() > 1) {
        code = CleanInProcesses(options);
    } else {
        ReadSettings(true);
        InLineTags = DefaultInLineTags();
        OutputEncoding = u"original"_s;
        OutputStyle = u"tags tree"_s;
        for (const QString& book : options.books)
            code = std::max(code, CleanOneBook(options, book, *tables));
    }
    return FlushOutput() ? code : ExitFailure;
}

} // namespace

const Command CleanCommand = {"clean", "apply tables of replacements to books",
                              R"(usage: vmk clean --table FILE [--table FILE...] BOOK --out FILE
       vmk clean --table FILE [--table FILE...] --in-place|--dry-run [--jobs N] BOOK...

Applies the rows in use of each table to the whole of each BOOK, as the book cleaner of the editor does, and
saves the book as "vmk convert" does. Writes one line for each row, with the number of replacements:

  BOOK: TABLE:ROW: COUNT

  --table FILE   a clean-up file; several are applied one after another
  --out FILE     the file to write, replaced whole or not at all
  --in-place     replace each BOOK itself
  --dry-run      write no book, only the counts
  --force        write a book also if it was well-formed before and is not any more; without this option it
                 is not written, and a line on standard error names the row
  --as-editor    read the book by the editor's own rules, see vmk convert
  --json         write one JSON object for each row
  --jobs N       clean N books at a time; results stay in order
  --help         show this text

Exit status: 0 done, 1 a book is not well-formed any more, 2 wrong use, or a file that cannot be read or
written.
)",
                              RunClean};

} // namespace vmk
