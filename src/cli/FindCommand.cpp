#include "BookCheck.h"
#include "Command.h"
#include "CommandLine.h"
#include "DisplayCharacters.h"
#include "FileNames.h"
#include "FindReplaceFunctions.h"
#include "FindReplaceRegExpFuncs.h"
#include "OrderedJobs.h"
#include "PageOfBook.h"
#include "RegExp.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"
#include "TreeLines.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <mutex>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr int MostJobs = 256;

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
    bool json = false;
    int jobs = 1;
    SearchOptions search;
    QStringList books;
};

/// A match, in lines of the display.
struct Match
{
    int line = 0; ///< from 1
    int column = 0; ///< from 1
    QString text;
    QString lineText;
};

struct BookMatches
{
    bool isRead = false;
    std::vector<Match> matches;
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
        else if (line.option() == u"--json")
            options.json = true;
        else if (line.option() == u"--jobs")
            options.jobs = line.number(1, MostJobs);
        else if (!line.option().isEmpty())
            line.failUnknownOption();
        else if (!std::exchange(hasText, true))
            options.text = line.operand();
        else
            options.books.append(line.operand());
    }
    if (options.text.isEmpty())
        line.fail(u"no text given"_s);
    if (options.books.isEmpty())
        line.fail(u"no book given"_s);
    if (options.books.count(u"-"_s) > 1)
        line.fail(u"standard input can be searched only once"_s);
    if (options.regExp && options.search.wholeWord)
        line.fail(u"--whole-word has no use with --regexp"_s);
    RegExp expression;
    expression.Pattern = options.text;
    if (options.regExp && !expression.Test(u""))
        line.fail(u"bad regular expression"_s);
    *problem = line.error();
    return problem->isEmpty() ? std::optional(options) : std::nullopt;
}

/// Reads a book as the editor shows it. The conversion works on the shared variables.
bool ReadInto(DisplayDocument& document, const QString& book)
{
    static std::mutex guard;
    const std::lock_guard lock(guard);
    FileContent content = ReadBookContent(book);
    if (content.outcome == ReadOutcome::Ok) {
        std::optional<std::string> page = PageOfBook(book, std::move(content.bytes), BookReading::Kept);
        if (!page)
            return false;
        // Guards have no meaning for a book that is not saved, and would be between the characters to find.
        *page = ReplaceAll(ReplaceAll(*std::move(page), DisplayGuard, ""), DisplayGuardEscape, "");
        document.loadPage(QByteArray::fromStdString(*page));
        return true;
    }
    PrintErrorLine(u"vmk: "_s + ShownName(book) + u": "_s + ReadFailureText(content));
    return false;
}

BookMatches SearchBook(const QString& book, const FindOptions& options)
{
    BookMatches result;
    DisplayDocument document;
    if (!ReadInto(document, book))
        return result;
    result.isRead = true;
    SearchState state(document);
    NewSearch(state, options.search, false);
    for (;;) {
        const FindResult found = options.regExp ? RegExpFind(state, options.text, options.search)
                                                : Find_Text(state, options.text, options.search);
        if (found.outcome != FindResult::Hit)
            return result;
        const Position at = state.SearchRange.start();
        result.matches.push_back(
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
    const QStringList& books = options->books;
    OrderedJobs<BookMatches> searches(size_t(books.size()), options->jobs, [&] {
        return [&](size_t index) { return SearchBook(books[qsizetype(index)], *options); };
    });
    bool isFound = false;
    bool isTrouble = false;
    for (qsizetype i = 0; i < books.size(); ++i) {
        const BookMatches result = searches.take(size_t(i));
        for (const Match& match : result.matches)
            Print(books[i], match, options->json);
        isFound = isFound || !result.matches.empty();
        isTrouble = isTrouble || !result.isRead;
    }
    if (!FlushOutput() || isTrouble)
        return ExitTrouble;
    return isFound ? ExitFound : ExitNotFound;
}

} // namespace

const Command FindCommand = {"find", "search books as the editor shows them",
                             R"(usage: vmk find [OPTION...] TEXT BOOK...

Searches each BOOK ("-": standard input) for TEXT, as the find window of the editor does in the book that it
shows: tags are text, and letters match in any case. Writes one line for each match, with the line and the
column of the display, counted from 1:

  BOOK:LINE:COLUMN: the line

  --regexp       TEXT is a regular expression
  --match-case   letters match only in the same case
  --whole-word   match only whole words
  --json         write one JSON object for each match: book, line, column, length, match
  --jobs N       search N books at a time; results stay in order
  --help         show this text

Columns and lengths count UTF-16 units. uni(N) in a TEXT that is not a regular expression is the character
with number N.

Exit status: 0 found, 1 not found, 2 wrong use or a file that cannot be read.
)",
                             RunFind};

} // namespace vmk
