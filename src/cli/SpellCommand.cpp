#include "CollectionRun.h"
#include "Command.h"
#include "CommandLine.h"
#include "CustomWords.h"
#include "Files.h"
#include "InitGlobals.h"
#include "SpellChecker.h"
#include "SpellReport.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct SpellOptions
{
    SpellReportOptions report;
    CollectionOptions collection;
};

void TakeOption(CommandLine& line, SpellOptions& options)
{
    const QString& option = line.option();
    if (options.collection.take(line))
        options.report.json = options.collection.json;
    else if (option == u"--suggest")
        options.report.suggest = true;
    else if (option == u"--unique")
        options.report.unique = true;
    else if (option == u"--markup")
        options.report.markup = BookMarkup::Include;
    else if (option == u"--lang")
        options.report.language = line.value();
    else
        line.failUnknownOption();
}

SpellOptions ReadOptions(CommandLine& line)
{
    SpellOptions options;
    while (line.next()) {
        if (line.option().isEmpty())
            options.collection.inputs.append(line.operand());
        else
            TakeOption(line, options);
    }
    options.collection.check(line);
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

/// The dictionaries of one process.
struct SpellWorker
{
    SpellShelf shelf;
    SpellChecker checker = SpellChecker(shelf);
};

int CheckAndPrint(const BookItem& book, const SpellReportOptions& options, SpellWorker& worker)
{
    const SpellReport report = CheckSpelling(book, options, worker.checker);
    for (const SuspiciousWord& word : report.words)
        PrintLine(SpellLine(report, word, options));
    for (const QString& problem : worker.shelf.problems())
        PrintNotice(u"vmk: dictionary "_s + problem);
    if (!report.failure.isEmpty()) {
        PrintFailure(report.book, report.failure, options.json);
        return ExitFailure;
    }
    return report.words.empty() ? ExitClean : ExitFaults;
}

int Spell(const SpellOptions& options)
{
    CollectionJob job;
    job.makeHandler = [&options]() -> BookHandler {
        return [&options, worker = std::make_shared<SpellWorker>()](const BookItem& book) {
            return CheckAndPrint(book, options.report, *worker);
        };
    };
    job.codeOfLine = [](const EarlierResult& word, std::vector<std::string>&) {
        return word.text.isEmpty() && word.object.isEmpty() ? ExitClean : ExitFaults;
    };
    return RunCollection(options.collection, job).worstCode();
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

const Command SpellCommand = {"spell", "list the suspicious words of books",
                              R"(usage: vmk spell [OPTION...] BOOK...

Checks the spelling of each BOOK and writes one line for each suspicious word:

  BOOK:LINE:COLUMN: word

Each BOOK is a file, a folder (with all "*.fb2" and "*.zip" in it), a zip archive (with all "*.fb2" in it), a
member of one (ARCHIVE.zip:MEMBER), or "-" for standard input.

The book's language decides the dictionary, then that of the locale. Words in another script are
judged by English (Latin) or Russian (Cyrillic). Words with digits, words in capitals only, web and
mail addresses, paths, and the words of the editor's custom dictionary are left out.

  --suggest          add what may be meant: "word: one, two"
  --unique           write each word of a book once, with its count after it, most frequent first
  --markup           check the names of tags and attributes too
  --lang LANGUAGE    take this language for the book's, such as ru or en-GB
  --json             write one JSON object for each word
  --files-from FILE  take further paths from FILE, one in each line ("-": standard input)
  -0                 the paths in FILE end with a NUL character
  --jobs N           check N books at a time (default: one for each processor); results keep their order
  --resume FILE      write the results into FILE, and continue the run that has written it
  --help             show this text

Exit status: 0 no suspicious words, 1 some, 2 wrong use, a book that cannot be read, or no dictionary.
)",
                              RunSpell};

} // namespace vmk
