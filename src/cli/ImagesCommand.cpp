#include "BinaryElements.h"
#include "BookImages.h"
#include "CollectionRun.h"
#include "Command.h"
#include "CommandLine.h"
#include "FileNames.h"
#include "FileOperations.h"
#include "ImageFiles.h"
#include "OutputPaths.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct ImagesOptions
{
    bool list = false;
    bool check = false;
    QString folder; // --out; empty for none
    CollectionOptions collection;

    [[nodiscard]] bool extracts() const { return !folder.isEmpty() || !collection.outFolder.isEmpty(); }
};

ImagesOptions ReadOptions(CommandLine& line)
{
    ImagesOptions options;
    while (line.next()) {
        const QString& option = line.option();
        if (option.isEmpty())
            options.collection.inputs.append(line.operand());
        else if (option == u"--list")
            options.list = true;
        else if (option == u"--check")
            options.check = true;
        else if (option == u"--out")
            options.folder = line.value();
        else if (option == u"--out-dir")
            options.collection.outFolder = line.value();
        else if (!options.collection.take(line))
            line.failUnknownOption();
    }
    options.collection.check(line);
    if (!options.folder.isEmpty() && !options.collection.outFolder.isEmpty())
        line.fail(u"--out and --out-dir exclude each other"_s);
    if (!options.folder.isEmpty() && options.collection.isCollection())
        line.fail(u"--out takes single books; folders, archives and lists need --out-dir"_s);
    if (!options.check && !options.extracts())
        options.list = true;
    return options;
}

/// Prints one result, as text or as a JSON object.
class Results
{
public:
    Results(QString ofBook, bool asJson)
        : book(std::move(ofBook))
        , json(asJson)
    {
    }

    void print(QJsonObject object, const QString& text) const
    {
        object.insert(u"book"_s, ReadableName(book));
        PrintLine(json ? QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact))
                       : ShownName(book) + u": "_s + text);
    }

private:
    QString book;
    bool json;
};

void PrintResource(const Results& results, const BookResource& resource)
{
    const PictureInfo& picture = resource.picture;
    QJsonObject object{{u"id"_s, resource.id},
                       {u"type"_s, resource.type},
                       {u"bytes"_s, resource.bytes},
                       {u"uses"_s, resource.uses}};
    QString text
        = u"%1, %2, %3 bytes, "_s.arg(ShownName(resource.id), ShownName(resource.type)).arg(resource.bytes);
    if (picture.width > 0) {
        object.insert(u"width"_s, picture.width);
        object.insert(u"height"_s, picture.height);
        text += u"%1x%2, "_s.arg(picture.width).arg(picture.height);
    }
    text += resource.uses == 1 ? u"used by 1 tag"_s : u"used by %1 tags"_s.arg(resource.uses);
    results.print(std::move(object), text);
}

/// Prints the faults of the resources. \return their number
int CheckResources(const Results& results, const BookResources& book)
{
    int faults = 0;
    const auto report = [&](const QString& kind, const QString& id, const QString& reason) {
        ++faults;
        QJsonObject object{{u"fault"_s, kind}, {u"id"_s, id}};
        if (!reason.isEmpty())
            object.insert(u"reason"_s, reason);
        results.print(object,
                      kind + u": "_s + ShownName(id) + (reason.isEmpty() ? QString() : u": "_s + reason));
    };
    for (const QString& id : book.missing)
        report(u"reference without a resource"_s, id, QString());
    for (const BookResource& resource : book.resources) {
        if (resource.isRepeated)
            report(u"id used more than once"_s, resource.id, QString());
        else if (resource.uses == 0)
            report(u"resource without a reference"_s, resource.id, QString());
        if (const QString problem = DecodingProblem(resource); !problem.isEmpty())
            report(u"undecodable data"_s, resource.id, problem);
    }
    if (faults == 0)
        results.print({{u"fault"_s, QJsonValue()}}, u"No errors"_s);
    return faults;
}

/// Returns the folder for the pictures of a book. Each of several books has a separate folder.
QString FolderOf(const ImagesOptions& options, const QString& book)
{
    const QStringList& books = options.collection.inputs;
    if (books.size() == 1)
        return options.folder;
    const QString name = FileOperation(BaseNameMode, book);
    const auto before
        = std::count_if(books.begin(), std::ranges::find(books, book),
                        [&name](const QString& other) { return FileOperation(BaseNameMode, other) == name; });
    return options.folder + u'/' + name + (before == 0 ? QString() : u" (%1)"_s.arg(before + 1));
}

/// False, with a line on standard error, if a picture could not be written.
bool Extract(const Results& results, const BookBytes& book, const QString& folder)
{
    const ExtractedPictures pictures = ExtractPictures(
        BinaryPartOf(book.bytes), book.codePage, folder, std::numeric_limits<int>::max(), [](int) {},
        [&](const ExtractedPicture& picture) {
            if (!picture.file.isEmpty())
                results.print({{u"id"_s, picture.id}, {u"file"_s, QString(folder + u'/' + picture.file)}},
                              ShownName(picture.id) + u": saved to "_s
                                  + ShownName(folder + u'/' + picture.file));
        });
    if (pictures.unwritten > 0)
        PrintErrorLine(u"vmk: %1 images could not be written to "_s.arg(pictures.unwritten)
                       + ShownName(folder));
    return pictures.unwritten == 0;
}

/// Applies the options to one book. \return its exit code
int HandleBook(const BookItem& item, const ImagesOptions& options, OutputFolder& outputs)
{
    FileContent content = item.content();
    QString problem = ReadFailureText(content);
    QString folder;
    if (problem.isEmpty() && options.extracts())
        folder = item.output.empty() ? FolderOf(options, item.name) : outputs.pathFor(item.output, &problem);
    if (!problem.isEmpty()) {
        PrintFailure(item.name, problem, options.collection.json);
        return ExitFailure;
    }
    const BookBytes book = ReadableBook(std::move(content.bytes));
    const Results results(item.name, options.collection.json);
    int code = ExitClean;
    if (options.list || options.check) {
        const BookResources resources = ListResources(book);
        for (const BookResource& resource : resources.resources) {
            if (options.list)
                PrintResource(results, resource);
        }
        if (options.check && CheckResources(results, resources) > 0)
            code = ExitFaults;
    }
    return options.extracts() && !Extract(results, book, folder) ? ExitFailure : code;
}

/// Returns the exit code of a result of an earlier run: 1 for one that --check has found.
int CodeOfResult(const EarlierResult& result, std::vector<std::string>&)
{
    constexpr std::array Faults = {"reference without a resource"_L1, "id used more than once"_L1,
                                   "resource without a reference"_L1, "undecodable data"_L1};
    const bool isFault = result.object[u"fault"_s].isString()
        || std::ranges::any_of(Faults, [&result](QLatin1StringView fault) {
                             return result.text.startsWith(u": "_s + fault + u": "_s);
                         });
    return isFault ? ExitFaults : ExitClean;
}

int RunImages(const QStringList& arguments)
{
    CommandLine line(arguments);
    const ImagesOptions options = ReadOptions(line);
    if (!line.error().isEmpty()) {
        PrintErrorLine(u"vmk images: "_s + line.error() + u"; try vmk images --help"_s);
        return ExitFailure;
    }
    if (!options.folder.isEmpty() && !MakeFolder(options.folder)) {
        PrintErrorLine(u"vmk: "_s + ShownName(options.folder) + u": the folder cannot be made"_s);
        return ExitFailure;
    }
    if (!options.collection.makeOutFolder())
        return ExitFailure;
    CollectionJob job;
    job.makeHandler = [&options]() -> BookHandler {
        return [&options, outputs = OutputFolder(options.collection.outFolder)](
                   const BookItem& item) mutable { return HandleBook(item, options, outputs); };
    };
    job.codeOfLine = CodeOfResult;
    return RunCollection(options.collection, job).worstCode();
}

} // namespace

const Command ImagesCommand
    = {"images", "list, check or extract the images of books",
       R"(usage: vmk images BOOK... [--list] [--check] [--out DIR | --out-dir DIR] [OPTION...]

Reads the binary resources of each BOOK. Without an option they are listed. Each BOOK is a file, a folder (with
all "*.fb2" and "*.zip" in it), a zip archive (with all "*.fb2" in it), a member of one (ARCHIVE.zip:MEMBER), or
"-" for standard input.

  --list             print each resource: id, type, bytes, width and height, and how many tags refer to it
  --check            print references without a resource, resources without a reference, ids used more than
                     once and data that cannot be decoded
  --out DIR          write the images into DIR, under the names that the editor gives them; DIR is made if it
                     is missing. With several books each has a folder of its own in DIR.
  --out-dir DIR      write the images of each book into a folder in DIR that has the path of the book
  --json             print each result as a JSON object on one line
  --files-from FILE  take further paths from FILE, one in each line ("-": standard input)
  -0                 the paths in FILE end with a NUL character
  --jobs N           read N books at a time (default: one for each processor); results keep their order
  --resume FILE      write the results into FILE, and continue the run that has written it
  --help             show this text

Exit status: 0 success, 1 --check found something, 2 wrong use, or a file that cannot be read or written.
)",
       RunImages};

} // namespace vmk
