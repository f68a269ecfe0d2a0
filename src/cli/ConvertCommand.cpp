#include "Command.h"
#include "CommandLine.h"
#include "DisplayDocument.h"
#include "PageOfBook.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct ConvertOptions
{
    QString book;
    QString file;
    QString encoding = u"original"_s;
    QString style = u"tags tree"_s;
    QString inputEncoding = u"original"_s;
    BookReading reading = BookReading::Kept;
};

/// The value of the current option, which must be in the list.
QString ListedValue(CommandLine& line, const QStringList& list)
{
    const QString option = line.option();
    QString value = line.value();
    if (!list.contains(value))
        line.fail(option + u" needs one of: \""_s + list.join(u"\", \""_s) + u'"');
    return value;
}

void TakeOption(CommandLine& line, ConvertOptions& options)
{
    const QString& option = line.option();
    if (option == u"--out")
        options.file = line.value();
    else if (option == u"--as-editor")
        options.reading = BookReading::AsEditor;
    else if (option == u"--encoding")
        options.encoding = ListedValue(line, OutputEncodings);
    else if (option == u"--style")
        options.style = ListedValue(line, OutputStyles);
    else if (option == u"--input-encoding")
        options.inputEncoding = ListedValue(line, OutputEncodings + QStringList{u"unicode"_s});
    else
        line.failUnknownOption();
}

ConvertOptions ReadOptions(CommandLine& line)
{
    ConvertOptions options;
    while (line.next()) {
        if (!line.option().isEmpty())
            TakeOption(line, options);
        else if (options.book.isEmpty())
            options.book = line.operand();
        else
            line.fail(u"more than one book given"_s);
    }
    if (options.book.isEmpty())
        line.fail(u"no book given"_s);
    if (options.file.isEmpty())
        line.fail(u"no file given to write to (--out)"_s);
    return options;
}

int RunConvert(const QStringList& arguments)
{
    CommandLine line(arguments);
    const ConvertOptions options = ReadOptions(line);
    if (!line.error().isEmpty()) {
        PrintErrorLine(u"vmk convert: "_s + line.error() + u"; try vmk convert --help"_s);
        return ExitFailure;
    }

    ReadSettings(true);
    InLineTags = DefaultInLineTags();
    InputEncoding = options.inputEncoding;
    OutputEncoding = options.encoding;
    OutputStyle = options.style;
    std::optional<std::string> book = ReadBook(options.book);
    if (!book)
        return ExitFailure;
    if (IsBlank(*book)) {
        PrintErrorLine(u"vmk: "_s + ShownName(options.book) + u": empty book - nothing to save"_s);
        return ExitFailure;
    }
    DisplayDocument document;
    if (!OpenBook(options.book, *std::move(book), document, options.reading))
        return ExitFailure;
    const BookFile file = FileOfDocument(options.book, document, options.reading);
    return WriteOutput(options.file, file.bytes, Durability::Flushed) ? ExitClean : ExitFailure;
}

} // namespace

const Command ConvertCommand
    = {"convert", "load a book and save it in another encoding or layout",
       R"(usage: vmk convert BOOK --out FILE [--encoding NAME] [--style STYLE] [--input-encoding NAME]
       [--as-editor]

Loads BOOK into the editor's display and saves it, unedited: the program is named in its description, and runs
of white space in the text shrink to one blank. Nothing else is lost: what the editor's own rules would change
is kept, and each such loss avoided is a line on standard error.

  --out FILE             the file to write, replaced completely or not at all; may be BOOK
  --encoding NAME        original (default), windows-1251, windows-1252, windows-1250 or utf-8
  --style STYLE          compact (one line), "line ends" (one element per line) or "tags tree"
                         (indented; default)
  --input-encoding NAME  read BOOK in this encoding, one of those above or unicode, whatever it declares
  --as-editor            read and save by the editor's own rules: line ends in the text vanish, UTF-16 is
                         cut, characters that the encoding lacks are substituted
  --help                 show this text

A book that is not well-formed is saved without indentation, and a line on standard error says so. A book with
characters that the encoding to save in lacks is saved in utf-8. An empty book is refused.

Exit status: 0 the file was written, 2 wrong usage, or a file that cannot be read or written.
)",
       RunConvert};

} // namespace vmk
