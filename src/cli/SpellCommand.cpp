#include "Command.h"
#include "CommandLine.h"
#include "CustomWords.h"
#include "Files.h"
#include "InitGlobals.h"
#include "OrderedJobs.h"
#include "SpellChecker.h"
#include "SpellReport.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr int MostJobs = 256;

struct SpellOptions
{
    SpellReportOptions report;
    int jobs = 1;
    QStringList books;
};

void TakeOption(CommandLine& line, SpellOptions& options)
{
    const QString& option = line.option();
    if (option == u"--suggest")
        options.report.suggest = true;
    else if (option == u"--json")
        options.report.json = true;
    else if (option == u"--unique")
        options.report.unique = true;
    else if (option == u"--markup")
        options.report.markup = BookMarkup::Include;
    else if (option == u"--lang")
        options.report.language = line.value();
    else if (option == u"--jobs")
        options.jobs = line.number(1, MostJobs);
    else
        line.failUnknownOption();
}

SpellOptions ReadOptions(CommandLine& line)
{
    SpellOptions options;
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
    const QString& language = options.report.language;
    const auto speaks
        = [&](const SpellDictionary& dictionary) { return dictionary.language() == LanguageOfTag(language); };
    if (!language.isEmpty() && std::ranges::none_of(InstalledDictionaries(DictionaryFolders()), speaks))
        line.fail(u"no dictionary is installed for "_s + language);
    return options;
}

/// The words of the editor's custom dictionary; none, with a line on standard error, if it cannot be read.
QStringList ReadCustomWords()
{
    const QString file = WorkspaceFolder(RunningProgramPlace()) + u"/CustomDictionary.dat"_s;
    const FileContent content = ReadContent(file);
    if (content.outcome != ReadOutcome::Ok && content.outcome != ReadOutcome::Missing)
        PrintErrorLine(u"vmk: "_s + ShownName(file) + u": "_s + ReadFailureText(content));
    return DecodeCustomWords(content.bytes);
}

/// A dictionary serves one thread at a time: each worker has its own.
struct SpellWorker
{
    SpellShelf shelf;
    SpellChecker checker = SpellChecker(shelf);
};

int Spell(const SpellOptions& options)
{
    std::mutex guard;
    QStringList problems;
    OrderedJobs<SpellReport> jobs(static_cast<size_t>(options.books.size()), options.jobs, [&] {
        return [&, own = std::make_shared<SpellWorker>()](size_t index) {
            SpellReport report
                = CheckSpelling(options.books[static_cast<qsizetype>(index)], options.report, own->checker);
            const std::lock_guard lock(guard);
            problems += own->shelf.problems();
            return report;
        };
    });
    int code = ExitClean;
    for (size_t i = 0; i < static_cast<size_t>(options.books.size()); ++i) {
        const SpellReport report = jobs.take(i);
        for (const SuspiciousWord& word : report.words)
            PrintLine(SpellLine(report, word, options.report));
        if (!report.failure.isEmpty())
            PrintErrorLine(u"vmk: "_s + ShownName(report.book) + u": "_s + report.failure);
        code = std::max<int>(code,
                             !report.failure.isEmpty()  ? ExitFailure
                                 : report.words.empty() ? ExitClean
                                                        : ExitFaults);
    }
    problems.removeDuplicates();
    for (const QString& problem : problems)
        PrintErrorLine(u"vmk: dictionary "_s + problem);
    return FlushOutput() ? code : ExitFailure;
}

int RunSpell(const QStringList& arguments)
{
    CommandLine line(arguments);
    SpellOptions options = ReadOptions(line);
    if (!line.error().isEmpty()) {
        PrintErrorLine(u"vmk spell: "_s + line.error() + u"; try vmk spell --help"_s);
        return ExitFailure;
    }
    options.report.customWords = ReadCustomWords();
    return Spell(options);
}

} // namespace

const Command SpellCommand
    = {"spell", "list the suspicious words of books",
       R"(usage: vmk spell [--suggest] [--unique] [--markup] [--lang LANGUAGE] [--json] [--jobs N] BOOK...

Checks the spelling of each BOOK ("-": standard input) and writes one line for each suspicious word:

  BOOK:LINE:COLUMN: word

The book's language decides the dictionary, then that of the locale. Words in another script are
judged by English (Latin) or Russian (Cyrillic). Words with digits, words in capitals only, web and
mail addresses, paths, and the words of the editor's custom dictionary are left out.

  --suggest         add what may be meant: "word: one, two"
  --unique          write each word of a book once, with its count after it, most frequent first
  --markup          check the names of tags and attributes too
  --lang LANGUAGE   take this language for the book's, such as ru or en-GB
  --json            write one JSON object for each word
  --jobs N          check N books at a time; results stay in order
  --help            show this text

Exit status: 0 no suspicious words, 1 some, 2 wrong use, a book that cannot be read, or no dictionary.
)",
       RunSpell};

} // namespace vmk
