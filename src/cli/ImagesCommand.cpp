#include "BinaryElements.h"
#include "BookImages.h"
#include "Command.h"
#include "CommandLine.h"
#include "FileNames.h"
#include "FileOperations.h"
#include "ImageFiles.h"
#include "PageOfBook.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct ImagesOptions
{
    bool list = false;
    bool check = false;
    bool json = false;
    QString folder; // empty: nothing is extracted
    QStringList books;
};

ImagesOptions ReadOptions(CommandLine& line)
{
    ImagesOptions options;
    while (line.next()) {
        const QString& option = line.option();
        if (option.isEmpty())
            options.books.append(line.operand());
        else if (option == u"--list")
            options.list = true;
        else if (option == u"--check")
            options.check = true;
        else if (option == u"--json")
            options.json = true;
        else if (option == u"--out")
            options.folder = line.value();
        else
            line.failUnknownOption();
    }
    if (options.books.isEmpty())
        line.fail(u"no book given"_s);
    if (!options.check && options.folder.isEmpty())
        options.list = true;
    return options;
}

/// Prints one result, as text or as a JSON object.
class Results
{
public:
    Results(const QString& ofBook, bool asJson)
        : book(ofBook)
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
QString FolderOf(const ImagesOptions& options, qsizetype book)
{
    if (options.books.size() == 1)
        return options.folder;
    const auto nameOf = [&options](qsizetype i) { return FileOperation(BaseNameMode, options.books[i]); };
    const QString name = nameOf(book);
    int before = 0;
    for (qsizetype i = 0; i < book; ++i)
        before += nameOf(i) == name ? 1 : 0;
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
int HandleBook(const ImagesOptions& options, qsizetype index)
{
    std::optional<std::string> bytes = ReadBook(options.books[index]);
    if (!bytes)
        return ExitFailure;
    const BookBytes book = ReadableBook(*std::move(bytes));
    const Results results(options.books[index], options.json);
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
    if (!options.folder.isEmpty() && !Extract(results, book, FolderOf(options, index)))
        code = ExitFailure;
    return code;
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
    int worst = ExitClean;
    for (qsizetype i = 0; i < options.books.size(); ++i)
        worst = std::max(worst, HandleBook(options, i));
    return FlushOutput() ? worst : int(ExitFailure);
}

} // namespace

const Command ImagesCommand = {"images", "list, check or extract the images of books",
                               R"(usage: vmk images BOOK... [--list] [--check] [--out DIR] [--json]

Reads the binary resources of each BOOK. Without an option they are listed.

  --list     print each resource: id, type, bytes, width and height, and how many tags refer to it
  --check    print references without a resource, resources without a reference, ids used more than once
             and data that cannot be decoded
  --out DIR  write the images into DIR, under the names that the editor gives them; DIR is made if it is
             missing. With several books each has a folder of its own in DIR.
  --json     print each result as a JSON object on one line
  --help     show this text

Exit status: 0 success, 1 --check found something, 2 wrong use, or a file that cannot be read or written.
)",
                               RunImages};

} // namespace vmk
