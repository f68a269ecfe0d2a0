#include "CollectionRun.h"
#include "Command.h"
#include "CommandLine.h"
#include "DisplayDocument.h"
#include "FileNames.h"
#include "OutputPaths.h"
#include "PageOfBook.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct ConvertOptions
{
    QString file; // --out; empty for none
    CollectionOptions collection;
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
    if (options.collection.take(line))
        return;
    if (option == u"--out")
        options.file = line.value();
    else if (option == u"--out-dir")
        options.collection.outFolder = line.value();
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
        else
            options.collection.inputs.append(line.operand());
    }
    options.collection.check(line);
    const bool hasFolder = !options.collection.outFolder.isEmpty();
    if (options.file.isEmpty() && !hasFolder)
        line.fail(u"no file given to write to (--out or --out-dir)"_s);
    if (!options.file.isEmpty() && hasFolder)
        line.fail(u"--out and --out-dir exclude each other"_s);
    if (!options.file.isEmpty() && options.collection.inputs.size() > 1)
        line.fail(u"more than one book given"_s);
    if (!options.file.isEmpty() && options.collection.isCollection())
        line.fail(u"--out takes one book; folders, archives and lists need --out-dir"_s);
    return options;
}

void PrintSaved(const QString& book, const QString& file, bool json)
{
    if (json)
        PrintLine(QString::fromUtf8(
            QJsonDocument(QJsonObject{{u"book"_s, ReadableName(book)}, {u"file"_s, ReadableName(file)}})
                .toJson(QJsonDocument::Compact)));
    else
        PrintLine(ShownName(book) + u": saved to "_s + ShownName(file));
}

int ConvertBook(const BookItem& item, const ConvertOptions& options, OutputFolder& outputs)
{
    FileContent content = item.content();
    QString problem = ReadFailureText(content);
    QString file = options.file;
    if (problem.isEmpty() && IsBlank(content.bytes))
        problem = u"empty book - nothing to save"_s;
    if (problem.isEmpty() && file.isEmpty())
        file = outputs.pathFor(item, &problem);
    if (!problem.isEmpty()) {
        PrintFailure(item.name, problem, options.collection.json);
        return ExitFailure;
    }
    DisplayDocument document;
    if (!OpenBook(item.name, std::move(content.bytes), document, options.reading))
        return ExitFailure;
    const BookFile saved = FileOfDocument(item.name, document, options.reading);
    if (!WriteOutput(file, saved.bytes, Durability::Flushed))
        return ExitFailure;
    if (options.file.isEmpty())
        PrintSaved(item.name, file, options.collection.json);
    return ExitClean;
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
    if (!options.collection.makeOutFolder())
        return ExitFailure;
    CollectionJob job;
    job.makeHandler = [&options]() -> BookHandler {
        return [&options, outputs = OutputFolder(options.collection.outFolder)](
                   const BookItem& item) mutable { return ConvertBook(item, options, outputs); };
    };
    job.codeOfLine = [](const EarlierResult& saved, std::vector<std::string>&) {
        return saved.text.isEmpty() && saved.object.isEmpty() ? ExitFailure : ExitClean;
    };
    return RunCollection(options.collection, job).worstCode();
}

} // namespace

const Command ConvertCommand = {"convert", "load a book and save it in another encoding or layout",
                                R"(usage: vmk convert BOOK --out FILE [OPTION...]
       vmk convert BOOK... --out-dir DIR [OPTION...]

Loads each BOOK into the editor's display and saves it, unedited: the program is named in its description, and runs
of white space in the text shrink to one blank. Nothing else is lost: what the editor's own rules would change
is kept, and each such loss avoided is a line on standard error.

  --out FILE             the file to write, replaced completely or not at all; may be BOOK
  --out-dir DIR          write each book below DIR, under its own path; DIR is made if it is missing. BOOK can
                         then be a folder (with all "*.fb2" and "*.zip" in it) or a zip archive (with all "*.fb2"
                         in it). Writes one line for each book: "BOOK: saved to FILE".
  --encoding NAME        original (default), windows-1251, windows-1252, windows-1250 or utf-8
  --style STYLE          compact (one line), "line ends" (one element per line) or "tags tree"
                         (indented; default)
  --input-encoding NAME  read BOOK in this encoding, one of those above or unicode, whatever it declares
  --as-editor            read and save by the editor's own rules: line ends in the text vanish, UTF-16 is
                         cut, characters that the encoding lacks are substituted
  --files-from FILE      take further paths from FILE, one in each line ("-": standard input)
  -0                     the paths in FILE end with a NUL character
  --jobs N               convert N books at a time (default: one for each processor)
  --json                 write one JSON object for each book of --out-dir
  --resume FILE          write the results into FILE, and continue the run that has written it
  --help                 show this text

A book that is not well-formed is saved without indentation, and a line on standard error says so. A book with
characters that the encoding to save in lacks is saved in utf-8. An empty book is refused.

Exit status: 0 the file was written, 2 wrong usage, or a file that cannot be read or written.
)",
                                RunConvert};

} // namespace vmk
