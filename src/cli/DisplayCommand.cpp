#include "Command.h"
#include "CommandLine.h"
#include "PageOfBook.h"
#include "Settings.h"
#include "StartUpVariables.h"
#include "TreeLines.h"

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct DisplayOptions
{
    QString book;
    QString page; // empty: standard output
    QString settings; // empty: the defaults
    BookReading reading = BookReading::Kept;
};

DisplayOptions ReadOptions(CommandLine& line)
{
    DisplayOptions options;
    while (line.next()) {
        if (line.option() == u"--out")
            options.page = line.value();
        else if (line.option() == u"--as-editor")
            options.reading = BookReading::AsEditor;
        else if (line.option() == u"--settings")
            options.settings = line.value();
        else if (!line.option().isEmpty())
            line.failUnknownOption();
        else if (options.book.isEmpty())
            options.book = line.operand();
        else
            line.fail(u"more than one book given"_s);
    }
    if (options.book.isEmpty())
        line.fail(u"no book given"_s);
    return options;
}

/// Reads the settings of a record without changing the file. On failure, reports it on standard error and
/// returns false.
bool TakeSettings(const QString& record)
{
    if (record.isEmpty()) {
        ReadSettings(true);
        return true;
    }
    const FileContent content = ReadContent(record);
    QString problem = ReadFailureText(content);
    if (problem.isEmpty() && !DecodeSettings(content.bytes))
        problem = u"not a settings record"_s;
    if (!problem.isEmpty()) {
        PrintErrorLine(u"vmk: "_s + ShownName(record) + u": "_s + problem);
        return false;
    }
    IniFilePath = record;
    ReadSettings(false);
    return true;
}

int RunDisplay(const QStringList& arguments)
{
    CommandLine line(arguments);
    const DisplayOptions options = ReadOptions(line);
    if (!line.error().isEmpty()) {
        PrintErrorLine(u"vmk display: "_s + line.error() + u"; try vmk display --help"_s);
        return ExitFailure;
    }
    if (IsSameFile(options.book, options.page)) {
        PrintErrorLine(u"vmk: "_s + ShownName(options.page)
                       + u": is the book itself; the page needs another file"_s);
        return ExitFailure;
    }
    if (!TakeSettings(options.settings))
        return ExitFailure;
    InLineTags = DefaultInLineTags();
    std::optional<std::string> book = ReadBook(options.book);
    if (!book)
        return ExitFailure;
    const std::optional<std::string> page = PageOfBook(options.book, *std::move(book), options.reading);
    return page && WriteOutput(options.page, *page, Durability::Scratch) ? ExitClean : ExitFailure;
}

} // namespace

const Command DisplayCommand = {"display", "write the page that the editor shows of a book",
                                R"(usage: vmk display BOOK [--out PAGE] [--settings RECORD] [--as-editor]

Writes the page that the editor would show of BOOK, in UTF-8. The book is read without losses, and each loss
avoided is a line on standard error.

  --out PAGE         write to this file, replaced whole or not at all, in place of standard output
  --settings RECORD  take this settings record of the editor in place of its default settings
  --as-editor        read the book by the editor's own rules, which may join or cut text
  --help             show this text

A book that is not well-formed is shown without indentation and reported on standard error.

Exit status: 0 the page was written, 2 wrong usage, or a file that cannot be read or written.
)",
                                RunDisplay};

} // namespace vmk
