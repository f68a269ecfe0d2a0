#include "Files.h"

#include "FileNames.h"
#include "FolderListing.h"
#include "InPlaceWrite.h"
#include "PendingFile.h"
#include "PosixFile.h"

#include <QDateTime>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <optional>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace vmk {

FileKind KindOfFile(const QString& path)
{
    const std::optional<struct stat> status = StatusOf(EncodeFileName(path));
    if (!status)
        return FileKind::None;
    if (S_ISDIR(status->st_mode))
        return FileKind::Folder;
    return S_ISREG(status->st_mode) ? FileKind::File : FileKind::Other;
}

bool EntryExists(const QString& path)
{
    return StatusOfLink(EncodeFileName(path)).has_value();
}

bool IsSameFile(const QString& a, const QString& b)
{
    const std::optional<struct stat> first = StatusOf(EncodeFileName(a));
    const std::optional<struct stat> second = StatusOf(EncodeFileName(b));
    return first && second && IsSameInode(*first, *second);
}

bool IsFolderWritable(const QString& folder)
{
    return KindOfFile(folder) == FileKind::Folder
        && ::faccessat(AT_FDCWD, EncodeFileName(folder).constData(), W_OK | X_OK, AT_EACCESS) == 0;
}

namespace {

FileContent ReadPath(const QByteArray& path)
{
    FileContent content;
    const auto fail = [&content](ReadOutcome outcome) {
        content.outcome = outcome;
        if (outcome == ReadOutcome::Unreadable)
            content.systemReason = SystemReason(errno);
        content.bytes = std::string();
        return content;
    };

    const Descriptor handle = OpenFile(path, O_RDONLY);
    if (!handle)
        return fail(errno == ENOENT || errno == ENOTDIR ? ReadOutcome::Missing : ReadOutcome::Unreadable);
    struct stat status = {};
    if (::fstat(handle.Get(), &status) != 0)
        return fail(ReadOutcome::Unreadable);
    if (S_ISDIR(status.st_mode))
        return fail(ReadOutcome::IsFolder);
    if (status.st_size > static_cast<off_t>(MaxFileBytes))
        return fail(ReadOutcome::TooLarge);

    // One byte more than the reported size, so that the same pass detects the end.
    std::size_t used = 0;
    content.bytes.resize(static_cast<std::size_t>(status.st_size) + 1);
    for (;;) {
        const ssize_t got = ReadSome(handle.Get(), content.bytes.data() + used, content.bytes.size() - used);
        if (got < 0)
            return fail(ReadOutcome::Unreadable);
        if (got == 0)
            break;
        used += static_cast<std::size_t>(got);
        if (used > MaxFileBytes)
            return fail(ReadOutcome::TooLarge);
        if (used == content.bytes.size())
            content.bytes.resize(std::min(std::max(2 * used, ChunkBytes), MaxFileBytes + 1));
    }
    content.bytes.resize(used);
    return content;
}

} // namespace

FileContent ReadContent(const QString& path)
{
    return ReadPath(EncodeFileName(path));
}

FileContent ReadContentAt(const std::string& systemPath)
{
    return ReadPath(QByteArray::fromStdString(systemPath));
}

QString ReadFailureText(const FileContent& content)
{
    switch (content.outcome) {
    case ReadOutcome::Ok:
        break;
    case ReadOutcome::Missing:
        return u"file not found"_s;
    case ReadOutcome::IsFolder:
        return u"is a folder"_s;
    case ReadOutcome::Unreadable:
        return u"cannot be read: "_s + content.systemReason;
    case ReadOutcome::TooLarge:
        return u"file too large"_s;
    }
    return {};
}

namespace {

WriteResult WriteToDevice(const QByteArray& target, std::string_view bytes)
{
    Descriptor handle = OpenFile(target, O_WRONLY | O_NOCTTY);
    const bool written = handle && WriteAll(handle.Get(), bytes) && handle.Close();
    return written ? WriteResult() : WriteResult(SystemReason(errno));
}

/// Whether an error shows that the folder, not the file, refuses a replacement. EBUSY: the file is a mount
/// point.
bool IsRefusalOfFolder(int error)
{
    return error == EACCES || error == EPERM || error == EROFS || error == EBUSY;
}

/// Writes a temporary file and renames it. Returns 0, or the error of the system.
int ReplaceByRename(const QByteArray& target, std::string_view bytes, Durability durability)
{
    PendingFile pending(target);
    if (!pending)
        return pending.Error();
    return WriteAll(pending.Get(), bytes) && pending.Commit(durability) ? 0 : errno;
}

} // namespace

WriteResult ReplaceContent(const QString& path, std::string_view bytes, Durability durability,
                           const QString& backupFolder)
{
    const QByteArray name = EncodeFileName(path);
    const QByteArray target = FollowLinks(name);
    switch (KindOfFile(path)) {
    case FileKind::Folder:
        return WriteResult(SystemReason(EISDIR));
    case FileKind::Other:
        return WriteToDevice(target, bytes);
    case FileKind::None:
    case FileKind::File:
        break;
    }
    if (target.isEmpty())
        return WriteResult(SystemReason(name.isEmpty() ? ENOENT : ELOOP));
    const int error = ReplaceByRename(target, bytes, durability);
    if (error == 0)
        return {};
    if (IsRefusalOfFolder(error) && !backupFolder.isEmpty()) {
        if (const std::optional<WriteResult> result = WriteInPlace(target, bytes, backupFolder))
            return *result;
    }
    return WriteResult(SystemReason(error));
}

bool CopyOneFile(const QString& from, const QString& to)
{
    const Descriptor source = OpenFile(EncodeFileName(from), O_RDONLY);
    struct stat status = {};
    if (!source || ::fstat(source.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    const QByteArray target = FollowLinks(EncodeFileName(to));
    const std::optional<struct stat> old = StatusOf(target);
    if (target.isEmpty() || (old && (IsSameInode(*old, status) || !S_ISREG(old->st_mode))))
        return false;
    PendingFile pending(target);
    constexpr mode_t PlainPermissions = 0777;
    return pending && CopyBytes(source.Get(), pending.Get())
        && pending.Commit(Durability::Flushed, (status.st_mode & PlainPermissions) | S_IRUSR | S_IWUSR);
}

bool MoveOneFile(const QString& from, const QString& to)
{
    const QByteArray source = EncodeFileName(from);
    const QByteArray target = FollowLinks(EncodeFileName(to));
    if (source.isEmpty() || target.isEmpty())
        return false;
    // Moving a link to its own target would leave only a link to itself.
    if (IsSameFile(from, to))
        return true;
    if (::rename(source.constData(), target.constData()) == 0) {
        FlushFolder(SystemFolderOf(target));
        return true;
    }
    return errno == EXDEV && CopyOneFile(from, to) && DeleteOneFile(from);
}

bool DeleteOneFile(const QString& path)
{
    const QByteArray name = EncodeFileName(path);
    const std::optional<struct stat> status = StatusOfLink(name);
    return status && !S_ISDIR(status->st_mode) && ::unlink(name.constData()) == 0;
}

QDate LastWriteDate(const QString& path)
{
    const std::optional<struct stat> status = StatusOf(EncodeFileName(path));
    return status ? QDateTime::fromSecsSinceEpoch(status->st_mtime).date() : QDate();
}

qint64 SizeOfFile(const QString& path)
{
    const std::optional<struct stat> status = StatusOf(EncodeFileName(path));
    return status ? qint64(status->st_size) : 0;
}

QString AbsolutePath(const QString& path)
{
    if (path.startsWith(u'/'))
        return path;
    QByteArray folder(PATH_MAX, '\0');
    if (::getcwd(folder.data(), static_cast<size_t>(folder.size())) == nullptr)
        return path;
    const QString current = DecodeFileName(QByteArray(folder.constData()));
    return (current.endsWith(u'/') ? current : current + u'/') + path;
}

} // namespace vmk
