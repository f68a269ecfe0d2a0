#include "CollectionRun.h"
#include "Command.h"
#include "CommandLine.h"
#include "DisplayCharacters.h"
#include "FileNames.h"
#include "FindReplaceFunctions.h"
#include "FindReplaceRegExpFuncs.h"
#include "PageOfBook.h"
#include "RegExp.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"
#include "TreeLines.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// The exit codes are grep's.
enum FindExit
{
    ExitFound = 0,
    ExitNotFound = 1,
    ExitTrouble = 2,
};

struct FindOptions
{
    QString text;
    bool regExp = false;
    SearchOptions search;
    CollectionOptions collection;
};

/// A match, in lines of the display.
struct Match
{
    int line = 0; ///< from 1
    int column = 0; ///< from 1
    QString text;
    QString lineText;
};

/// The options, or nothing with the reason in `problem`.
std::optional<FindOptions> ReadOptions(const QStringList& arguments, QString* problem)
{
    FindOptions options;
    CommandLine line(arguments);
    bool hasText = false;
    while (line.next()) {
        if (line.option() == u"--regexp")
            options.regExp = true;
        else if (line.option() == u"--match-case")
            options.search.matchCase = true;
        else if (line.option() == u"--whole-word")
            options.search.wholeWord = true;
        else if (line.option().isEmpty() && !std::exchange(hasText, true))
            options.text = line.operand();
        else if (line.option().isEmpty())
            options.collection.inputs.append(line.operand());
        else if (!options.collection.take(line))
            line.failUnknownOption();
    }
    if (options.text.isEmpty())
        line.fail(u"no text given"_s);
    options.collection.check(line);
    if (options.regExp && options.search.wholeWord)
        line.fail(u"--whole-word has no use with --regexp"_s);
    RegExp expression;
    expression.Pattern = options.text;
    if (options.regExp && !expression.Test(u""))
        line.fail(u"bad regular expression"_s);
    *problem = line.error();
    return problem->isEmpty() ? std::optional(options) : std::nullopt;
}

/// Reads a book as the editor shows it. Returns false, after a line about the reason, if it cannot be read.
bool ReadInto(DisplayDocument& document, const BookItem& book, bool json)
{
    FileContent content = book.content();
    if (content.outcome != ReadOutcome::Ok) {
        PrintFailure(book.name, ReadFailureText(content), json);
        return false;
    }
    std::optional<std::string> page
        = PageOfBook(book.name, std::move(content.bytes), BookReading::KeptSilently);
    if (!page)
        return false;
    // Guards have no meaning for a book that is not saved, and would be between the characters to find.
    const std::string text
        = ReplaceAll(ReplaceAll(*std::move(page), DisplayGuard, ""), DisplayGuardEscape, "");
    document.loadPage(QByteArray::fromStdString(text));
    return true;
}

std::vector<Match> FindIn(DisplayDocument& document, const FindOptions& options)
{
    std::vector<Match> matches;
    SearchState state(document);
    NewSearch(state, options.search, false);
    for (;;) {
        const FindResult found = options.regExp ? RegExpFind(state, options.text, options.search)
                                                : Find_Text(state, options.text, options.search);
        if (found.outcome != FindResult::Hit)
            return matches;
        const Position at = state.SearchRange.start();
        matches.push_back(
            {at.line + 1, at.offset + 1, state.SearchRange.text(), document.line(at.line).text});
    }
}

void Print(const QString& book, const Match& match, bool json)
{
    if (!json) {
        PrintLine(u"%1:%2:%3: "_s.arg(ShownName(book)).arg(match.line).arg(match.column) + match.lineText);
        return;
    }
    const QJsonObject object{{u"book"_s, ReadableName(book)},
                             {u"line"_s, match.line},
                             {u"column"_s, match.column},
                             {u"length"_s, match.text.size()},
                             {u"match"_s, match.text}};
    PrintLine(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

/// Prints the matches in one book. Returns its exit code.
int SearchBook(const BookItem& book, const FindOptions& options)
{
    DisplayDocument document;
    if (!ReadInto(document, book, options.collection.json))
        return ExitTrouble;
    const std::vector<Match> matches = FindIn(document, options);
    for (const Match& match : matches)
        Print(book.name, match, options.collection.json);
    return matches.empty() ? ExitNotFound : ExitFound;
}

int RunFind(const QStringList& arguments)
{
    QString problem;
    const std::optional<FindOptions> options = ReadOptions(arguments, &problem);
    if (!options) {
        PrintErrorLine(u"vmk find: "_s + problem + u"; try vmk find --help"_s);
        return ExitTrouble;
    }
    ReadSettings(true);
    // Non-breaking spaces as themselves, so that they can be searched for and are printed.
    ShowNbsp = 0;
    InLineTags = DefaultInLineTags();
    CollectionJob job;
    job.makeHandler = [&options]() -> BookHandler {
        return [&options](const BookItem& book) { return SearchBook(book, *options); };
    };
    job.codeOfLine = [](const EarlierResult& match, std::vector<std::string>&) {
        return match.text.isEmpty() && match.object.isEmpty() ? ExitNotFound : ExitFound;
    };
    const RunTotals totals = RunCollection(options->collection, job);
    if (totals.isIncomplete || totals.books[ExitTrouble] > 0)
        return ExitTrouble;
    return totals.books[ExitFound] > 0 ? ExitFound : ExitNotFound;
}

} // namespace

const Command FindCommand = {"find", "search books as the editor shows them",
                             R"(usage: vmk find [OPTION...] TEXT BOOK...

Searches each BOOK for TEXT, as the find window of the editor does in the book that it shows: tags are text,
and letters match in any case. Writes one line for each match, with the line and the column of the display,
counted from 1:

  BOOK:LINE:COLUMN: the line

Each BOOK is a file, a folder (with all "*.fb2" and "*.zip" in it), a zip archive (with all "*.fb2" in it), a
member of one (ARCHIVE.zip:MEMBER), or "-" for standard input.

  --regexp           TEXT is a regular expression
  --match-case       letters match only in the same case
  --whole-word       match only whole words
  --json             write one JSON object for each match: book, line, column, length, match
  --files-from FILE  take further paths from FILE, one in each line ("-": standard input)
  -0                 the paths in FILE end with a NUL character
  --jobs N           search N books at a time (default: one for each processor); results keep their order
  --resume FILE      write the results into FILE, and continue the run that has written it
  --help             show this text

Columns and lengths count UTF-16 units. uni(N) in a TEXT that is not a regular expression is the character
with number N.

Exit status: 0 found, 1 not found, 2 wrong use or a file that cannot be read.
)",
                             RunFind};

} // namespace vmk
