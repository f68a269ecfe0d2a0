#include "PageOfBook.h"

#include "BookDocument.h"
#include "BookLosses.h"
#include "BookToDisplay.h"
#include "BookVersions.h"
#include "Boxes.h"
#include "CommandLine.h"
#include "InitGlobals.h"
#include "SaveBook.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

using namespace Qt::StringLiterals;

namespace vmk {

std::optional<std::string> ReadBook(const QString& book)
{
    FileContent content = ReadContent(book);
    if (content.outcome == ReadOutcome::Ok)
        return std::move(content.bytes);
    PrintErrorLine(u"vmk: "_s + ShownName(book) + u": "_s + ReadFailureText(content));
    return std::nullopt;
}

namespace {

/// Reports on standard error the losses that `convert` avoids or causes, and the texts of its boxes.
template <typename Conversion>
bool WithRemarks(const QString& book, BookReading reading, Conversion convert)
{
    const QString start = u"vmk: "_s + ShownName(book) + u": "_s;
    const SeamGuard losses(LossSeam(), [&start, reading](const BookLosses& found) {
        const bool report = reading == BookReading::Kept;
        for (const QString& line : report ? found.descriptionLines() : QStringList())
            PrintErrorLine(start + u"kept: "_s + line);
        if (found.replacedBytes > 0)
            PrintErrorLine(start + u"lost: bytes that are no characters: "_s
                           + QString::number(found.replacedBytes));
        return reading != BookReading::AsEditor;
    });
    const SeamGuard box(BoxSeam(), [&start](BoxKind, const QString& text, const QString&) {
        PrintErrorLine(start + text);
        return false;
    });
    return convert();
}

/// What is said about characters that the encoding lacks. Without losses the book is then saved in UTF-8.
MissingAnswer ReportMissingCharacters(const QString& book, BookReading reading,
                                      const MissingCharacters& missing, const QString& encoding)
{
    const bool keep = reading != BookReading::AsEditor;
    PrintErrorLine(u"vmk: "_s + ShownName(book) + (keep ? u": kept"_s : u": lost"_s) + u": characters that "_s
                   + encoding + u" lacks: "_s + QString::number(missing.count) + u" ("_s + missing.examples
                   + (keep ? u"); saved in utf-8"_s : u")"_s));
    return keep ? MissingAnswer::Utf8 : MissingAnswer::Substitute;
}

} // namespace

std::optional<std::string> PageOfBook(const QString& book, std::string bytes, BookReading reading)
{
    if (!WithRemarks(book, reading, [&bytes] { return ConvertBookToDisplay(bytes, false); }))
        return std::nullopt;
    return bytes;
}

bool OpenBook(const QString& book, std::string bytes, DisplayDocument& document, BookReading reading)
{
    return WithRemarks(book, reading,
                       [&bytes, &document] { return BookToDocument(std::move(bytes), document); });
}

namespace {

WriteResult WriteToStandardOutput(std::string_view bytes)
{
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0)
        return {};
    return WriteResult(QString::fromLocal8Bit(std::strerror(errno)));
}

QString BackupFolderOfProgram()
{
    return WorkspaceFolder(RunningProgramPlace()) + u"/Backup"_s;
}

/// Keeps the file that is replaced as an earlier version, if it matters and the workspace exists.
WriteResult WriteVersioned(const QString& file, std::string_view bytes, Durability durability)
{
    const QString backup = BackupFolderOfProgram();
    const bool isVersioned = durability == Durability::Flushed
        && KindOfFile(WorkspaceFolder(RunningProgramPlace())) == FileKind::Folder;
    if (!isVersioned)
        return ReplaceContent(file, bytes, durability, backup);
    KeptVersion version;
    WriteResult written = ReplaceBook(backup, file, bytes, version);
    if (!version.isSafe)
        PrintErrorLine(u"vmk: "_s + ShownName(file) + u": earlier version not kept: "_s + version.reason);
    return written;
}

} // namespace

bool WriteOutput(const QString& file, std::string_view bytes, Durability durability)
{
    const WriteResult written
        = file.isEmpty() ? WriteToStandardOutput(bytes) : WriteVersioned(file, bytes, durability);
    if (!written)
        PrintErrorLine(u"vmk: "_s + (file.isEmpty() ? u"standard output"_s : ShownName(file))
                       + u": cannot be written: "_s + written.Failure());
    return bool(written);
}

BookFile FileOfDocument(const QString& book, const DisplayDocument& document, BookReading reading)
{
    const SeamGuard missing(MissingCharactersSeam(),
                            [&](const MissingCharacters& found, const QString& encoding) {
                                return ReportMissingCharacters(book, reading, found, encoding);
                            });
    return DocumentToBook(document);
}

} // namespace vmk
