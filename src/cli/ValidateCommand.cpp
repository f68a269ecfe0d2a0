#include "BookCheck.h"
#include "Command.h"
#include "CommandLine.h"
#include "InitGlobals.h"
#include "OrderedJobs.h"

#include <QCoreApplication>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr int MostJobs = 256;

struct ValidateOptions
{
    ValidateAgainst against = ValidateAgainst::Schema;
    QString schemaFile; // empty: the workspace's schema
    bool json = false;
    int jobs = 1;
    QStringList books;
};

void TakeOption(CommandLine& line, ValidateOptions& options)
{
    const QString& option = line.option();
    if (option == u"--json") {
        options.json = true;
    } else if (option == u"--schema") {
        options.schemaFile = line.value();
    } else if (option == u"--jobs") {
        options.jobs = line.number(1, MostJobs);
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
            options.books.append(line.operand());
        else
            TakeOption(line, options);
    }
    if (options.books.isEmpty())
        line.fail(u"no book given"_s);
    if (options.books.count(u"-"_s) > 1)
        line.fail(u"standard input can be checked only once"_s);
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

int Validate(const ValidateOptions& options)
{
    const QString schemaFile = options.schemaFile.isEmpty() ? WorkspaceSchema() : options.schemaFile;
    const BookValidation validation(options.against, schemaFile);
    if (!validation.schemaProblem().isEmpty()) {
        PrintErrorLine(u"vmk: schema "_s + validation.schemaProblem());
        return ExitFailure;
    }

    int code = ExitClean;
    OrderedJobs<BookCheck> checks(static_cast<size_t>(options.books.size()), options.jobs, [&] {
        return
            [&](size_t index) { return CheckBook(options.books[static_cast<qsizetype>(index)], validation); };
    });
    for (size_t i = 0; i < static_cast<size_t>(options.books.size()); ++i) {
        const BookCheck check = checks.take(i);
        const bool unread = !check.failure.isEmpty();
        if (options.json)
            PrintLine(ResultJson(check, options.against));
        else if (unread)
            PrintErrorLine(u"vmk: "_s + ResultLine(check, options.against));
        else
            PrintLine(ResultLine(check, options.against));
        code = std::max<int>(code, unread ? ExitFailure : check.error ? ExitFaults : ExitClean);
    }
    return FlushOutput() ? code : ExitFailure;
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
       R"(usage: vmk validate [--against schema|namespace] [--schema FILE] [--json] [--jobs N] BOOK...

Checks each BOOK ("-" is standard input) and writes one line for it:

  BOOK: No errors (against schema)
  BOOK:LINE:COLUMN: Error against schema. REASON

  --against schema      check against the schema (default)
  --against namespace   check only that the book is well-formed and declares its prefixes
  --schema FILE         the schema, instead of FictionBook.xsd of the workspace
  --json                write one JSON object for each book
  --jobs N              check N books at a time; the results keep their order
  --help                show this text

Exit status: 0 no errors, 1 errors in a book, 2 wrong usage or a file that cannot be read.
)",
       RunValidate};

} // namespace vmk
