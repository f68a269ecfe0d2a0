#include "CollectionOptions.h"

#include "CommandLine.h"
#include "FileNames.h"

#include <QDir>

#include <algorithm>
#include <thread>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr int MostJobs = 256;

std::string SystemBytes(const QString& path)
{
    return EncodeFileName(path).toStdString();
}

/// True for a folder and an archive. A member of an archive is one book.
bool HasSeveralBooks(const QString& path)
{
    const FileKind kind = KindOfFile(path);
    return kind == FileKind::Folder
        || (kind == FileKind::File && path.endsWith(u".zip"_s, Qt::CaseInsensitive));
}

} // namespace

bool CollectionOptions::take(CommandLine& line)
{
    const QString& option = line.option();
    if (option == u"--files-from")
        listFile = line.value();
    else if (option == u"-0" || option == u"--null")
        nulSeparated = true;
    else if (option == u"--jobs")
        jobs = line.number(1, MostJobs);
    else if (option == u"--json")
        json = true;
    else if (option == u"--resume")
        resultFile = line.value();
    else
        return false;
    return true;
}

void CollectionOptions::check(CommandLine& line) const
{
    if (inputs.isEmpty() && listFile.isEmpty())
        line.fail(u"no book given"_s);
    if (inputs.count(u"-"_s) + (listFile == u"-" ? 1 : 0) > 1)
        line.fail(u"standard input can be read only once"_s);
    if (nulSeparated && listFile.isEmpty())
        line.fail(u"-0 has no use without --files-from"_s);
    if (!listFile.isEmpty() && listFile != u"-" && KindOfFile(listFile) == FileKind::None)
        line.fail(ShownName(listFile) + u": file not found"_s);
}

bool CollectionOptions::makeOutFolder() const
{
    if (outFolder.isEmpty() || QDir().mkpath(outFolder))
        return true;
    PrintErrorLine(u"vmk: "_s + ShownName(outFolder) + u": the folder cannot be made"_s);
    return false;
}

bool CollectionOptions::isCollection() const
{
    return !listFile.isEmpty() || std::ranges::any_of(inputs, HasSeveralBooks);
}

int CollectionOptions::workers() const
{
    if (isOneBook())
        return 0;
    const int wanted = jobs > 0 ? jobs : std::clamp(int(std::thread::hardware_concurrency()), 1, MostJobs);
    return isCollection() ? wanted : std::min(wanted, int(inputs.size()));
}

BookInput CollectionOptions::input() const
{
    BookInput books;
    for (const QString& path : inputs)
        books.paths.push_back(SystemBytes(path));
    books.listFile = SystemBytes(listFile);
    books.listSeparator = nulSeparated ? '\0' : '\n';
    books.skippedFolder = SystemBytes(outFolder);
    books.withOutputs = !outFolder.isEmpty();
    return books;
}

} // namespace vmk
