#include "BookVersions.h"
#include "Command.h"
#include "CommandLine.h"
#include "InitGlobals.h"
#include "PageOfBook.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct VersionsOptions
{
    QString book;
    QString file; // empty: the book itself
    int restored = 0; // from 1; 0: the versions are listed
    bool json = false;
};

VersionsOptions ReadOptions(CommandLine& line)
{
    VersionsOptions options;
    while (line.next()) {
        const QString& option = line.option();
        if (option == u"--restore")
            options.restored = line.number(1, MostVersions);
        else if (option == u"--out")
            options.file = line.value();
        else if (option == u"--json")
            options.json = true;
        else if (!option.isEmpty())
            line.failUnknownOption();
        else if (options.book.isEmpty())
            options.book = line.operand();
        else
            line.fail(u"more than one book given"_s);
    }
    if (options.book.isEmpty())
        line.fail(u"no book given"_s);
    if (!options.file.isEmpty() && options.restored == 0)
        line.fail(u"--out needs --restore"_s);
    return options;
}

void PrintVersion(const VersionsOptions& options, int number, const BookVersion& version)
{
    if (!options.json) {
        PrintLine(u"%1: %2, %3 bytes, %4"_s.arg(number)
                      .arg(version.time.toString(u"yyyy-MM-dd HH:mm:ss"_s))
                      .arg(version.bytes)
                      .arg(ShownName(version.path)));
        return;
    }
    const QJsonObject object{{u"book"_s, options.book},
                             {u"version"_s, number},
                             {u"time"_s, version.time.toString(Qt::ISODate)},
                             {u"bytes"_s, version.bytes},
                             {u"file"_s, version.path}};
    PrintLine(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

int Restore(const VersionsOptions& options, const std::vector<BookVersion>& versions)
{
    if (options.restored > int(versions.size())) {
        PrintErrorLine(
            u"vmk: %1: there is no version %2"_s.arg(ShownName(options.book)).arg(options.restored));
        return ExitFailure;
    }
    const std::optional<std::string> bytes = ReadBook(versions[std::size_t(options.restored) - 1].path);
    const QString file = options.file.isEmpty() ? options.book : options.file;
    return bytes && WriteOutput(file, *bytes, Durability::Flushed) ? ExitClean : ExitFailure;
}

int RunVersions(const QStringList& arguments)
{
    CommandLine line(arguments);
    const VersionsOptions options = ReadOptions(line);
    if (!line.error().isEmpty()) {
        PrintErrorLine(u"vmk versions: "_s + line.error() + u"; try vmk versions --help"_s);
        return ExitFailure;
    }
    const QString backup = WorkspaceFolder(RunningProgramPlace()) + u"/Backup"_s;
    const std::vector<BookVersion> versions = VersionsOf(backup, options.book);
    if (options.restored > 0)
        return Restore(options, versions);
    if (versions.empty())
        PrintErrorLine(u"vmk: "_s + ShownName(options.book) + u": no earlier versions"_s);
    for (std::size_t i = 0; i < versions.size(); ++i)
        PrintVersion(options, int(i) + 1, versions[i]);
    return FlushOutput() ? ExitClean : ExitFailure;
}

} // namespace

const Command VersionsCommand = {"versions", "list or restore the earlier versions of a saved book",
                                 R"(usage: vmk versions BOOK [--restore N [--out FILE]] [--json]

Each save of the editor, and of a command that replaces BOOK, keeps the file before it. The newest 10 versions
of a book are kept, and at most 500 MB of all books together.

Without --restore, the versions are listed, the newest first: number, time of the version, its length, its file.

  --restore N  bring version N back, replacing BOOK; the present BOOK becomes the newest version
  --out FILE   write the version to FILE instead
  --json       print each version as a JSON object on one line
  --help       show this text

Exit status: 0 success, also without any version; 2 wrong usage, no such version, or a file that cannot be read
or written.
)",
                                 RunVersions};

} // namespace vmk
