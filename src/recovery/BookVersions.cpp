#include "BookVersions.h"

#include "Chance.h"
#include "Checksum.h"
#include "FileNames.h"
#include "FilePaths.h"
#include "FileState.h"
#include "Files.h"
#include "FolderListing.h"
#include "PrivateFiles.h"
#include "StartUpVariables.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr auto VersionPattern = "*.version"_L1;

/// The file that a path leads to, so that a book has the same versions by every path. Its folder exists.
QString PathOf(const QString& book)
{
    QString path = RealPath(book);
    if (!path.isEmpty())
        return path;
    const QString given = AbsolutePath(book);
    const QString folder = RealPath(FolderOf(given));
    return folder.isEmpty() ? given : folder + u'/' + FileNameOf(given);
}

QString FolderOfBook(const QString& backupFolder, const QString& book)
{
    constexpr qsizetype LongestName = 180;
    const QString path = PathOf(book);
    const auto sum = static_cast<quint32>(Checksum(path.toStdString()));
    return backupFolder + u'/' + ShortName(FileNameOf(path), LongestName)
        + u"-%1"_s.arg(sum, 8, 16, QLatin1Char('0'));
}

/// The files of versions in a folder, newest first: their names begin with the time.
QStringList VersionFiles(const QString& folder)
{
    QStringList names = FindFiles(folder, VersionPattern);
    std::ranges::sort(names, std::greater());
    for (QString& name : names)
        name = folder + u'/' + name;
    return names;
}

/// A name after all others of the folder, also if the clock was set back.
QString FreshVersion(const QString& folder)
{
    QString stem = Now().toString(u"yyyyMMdd-HHmmss-zzz"_s);
    const QStringList files = VersionFiles(folder);
    const QString last = files.isEmpty() ? QString() : BaseNameOf(FileNameOf(files.front()));
    if (stem <= last)
        stem = last + u'a';
    return folder + u'/' + stem + u".version"_s;
}

/// The folders in a folder, also those with names that are not UTF-8, but no links.
QStringList FoldersIn(const QString& folder)
{
    QString problem;
    const auto noFile = [](std::string_view) { return false; };
    const FolderListing listing(EncodeFileName(folder).toStdString(), noFile, &problem);
    QStringList paths;
    for (std::size_t i = 0; i < listing.size(); ++i) {
        const std::string_view name = listing.name(i);
        paths.append(folder + u'/'
                     + DecodeFileName(QByteArray(name.data(), qsizetype(name.size()))).chopped(1));
    }
    return paths;
}

void RemoveVersions(const QString& backupFolder, const QString& folder, const QString& newest)
{
    const QStringList own = VersionFiles(folder);
    for (qsizetype i = MostVersions; i < own.size(); ++i)
        DeleteOneFile(own[i]);

    struct File
    {
        QString name;
        QString path;
        qint64 bytes;
    };
    std::vector<File> all;
    std::uint64_t sum = 0;
    for (const QString& inner : FoldersIn(backupFolder)) {
        for (const QString& path : VersionFiles(inner)) {
            const qint64 bytes = std::max<qint64>(StateOfFile(path).bytes, 0);
            all.push_back({FileNameOf(path), path, bytes});
            sum += std::uint64_t(bytes);
        }
    }
    std::ranges::sort(all, {}, &File::name);
    for (const File& file : all) {
        if (sum <= MostVersionBytes)
            break;
        if (file.path == newest)
            continue;
        if (DeleteOneFile(file.path))
            sum -= std::uint64_t(file.bytes);
        RemoveEmptyFolder(FolderOf(file.path));
    }
}

/// Removes versions that are the book's own file: a process was killed between keeping it and replacing it.
void RemoveOwnNames(const QString& folder, const FileState& book)
{
    for (const QString& path : VersionFiles(folder)) {
        const FileState version = StateOfFile(path);
        if (version.inode == book.inode && version.device == book.device)
            DeleteOneFile(path);
    }
}

} // namespace

QString BackupFolder()
{
    return OfficeFolder + u"/Backup"_s;
}

KeptVersion KeepVersion(const QString& backupFolder, const QString& book, VersionBy way)
{
    KeptVersion kept;
    const FileState state = StateOfFile(book);
    if (!state.exists()) {
        kept.isSafe = true;
        return kept;
    }
    const QString folder = FolderOfBook(backupFolder, book);
    if (!MakePrivateFolder(backupFolder) || !MakePrivateFolder(folder)) {
        kept.reason = u"the folder %1 cannot be made"_s.arg(folder);
        return kept;
    }
    RemoveOwnNames(folder, state);
    const QString path = FreshVersion(folder);
    // A file in a folder that is not writable is replaced in place: a second name of it would change too.
    const bool mayLink = way == VersionBy::LinkOrCopy && IsFolderWritable(FolderOf(PathOf(book)));
    if (KeepFileAs(PathOf(book), path, mayLink, kept.reason) == KeptAs::Nothing)
        return kept;
    kept.isSafe = true;
    kept.path = path;
    RemoveVersions(backupFolder, folder, path);
    return kept;
}

WriteResult ReplaceBook(const QString& backupFolder, const QString& book, std::string_view bytes,
                        KeptVersion& kept)
{
    const auto drop = [&kept] {
        if (!kept.path.isEmpty())
            DeleteOneFile(kept.path);
    };
    // A file that is replaced by itself is no other version: repeated saves must not push out the versions.
    if (StateOfFile(book).bytes == qint64(bytes.size()) && ReadContent(book).bytes == bytes) {
        kept = {.isSafe = true, .path = {}, .reason = {}};
        return ReplaceContent(book, bytes, Durability::Flushed, backupFolder);
    }
    kept = KeepVersion(backupFolder, book);
    if (WriteResult written = ReplaceContent(book, bytes))
        return written;
    drop();
    // The second try may overwrite the file in place, which would change a second name of it.
    kept = KeepVersion(backupFolder, book, VersionBy::Copy);
    WriteResult written = ReplaceContent(book, bytes, Durability::Flushed, backupFolder);
    if (!written)
        drop();
    return written;
}

std::vector<BookVersion> VersionsOf(const QString& backupFolder, const QString& book)
{
    std::vector<BookVersion> versions;
    const QString folder = FolderOfBook(backupFolder, book);
    if (!IsPrivateFolder(backupFolder) || !IsPrivateFolder(folder))
        return versions;
    for (const QString& path : VersionFiles(folder)) {
        const FileState state = StateOfFile(path);
        versions.push_back({path, state.time(), state.bytes});
    }
    return versions;
}

} // namespace vmk
