#include "InPlaceWrite.h"

#include "FileNames.h"
#include "PendingFile.h"
#include "PosixFile.h"

#include <QCryptographicHash>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// The copy of a file: one for each path, so that copies do not accumulate.
QByteArray BackupOf(const QByteArray& path, const QString& folder)
{
    const std::unique_ptr<char, decltype(&std::free)> whole(::realpath(path.constData(), nullptr),
                                                            &std::free);
    const QByteArray full(whole ? whole.get() : path.constData());
    const QByteArray mark = QCryptographicHash::hash(full, QCryptographicHash::Sha1).toHex().left(8);
    const QByteArray name = full.mid(full.lastIndexOf('/') + 1);
    return EncodeFileName(folder) + '/' + mark + '-' + name.left(NAME_MAX - mark.size() - 1);
}

bool WriteBackup(int file, const QByteArray& backup)
{
    PendingFile copy(backup);
    if (!copy) {
        errno = copy.Error();
        return false;
    }
    constexpr mode_t Private = 0600;
    return ::lseek(file, 0, SEEK_SET) == 0 && CopyBytes(file, copy.Get())
        && copy.Commit(Durability::Flushed, Private);
}

/// Allocates the space before anything is overwritten. A file system that cannot do so does not refuse.
bool Reserve(int file, off_t oldSize, std::size_t size)
{
    const auto end = static_cast<off_t>(size);
    if (end <= oldSize)
        return true;
    const int error = ::posix_fallocate(file, oldSize, end - oldSize);
    if (error == 0 || error == EINVAL || error == EOPNOTSUPP || error == ENODEV)
        return true;
    // If this fails too, the file has zero bytes after its old text. The first error is the one to report.
    [[maybe_unused]] const int shortened = ::ftruncate(file, oldSize);
    errno = error;
    return false;
}

bool Overwrite(int file, std::string_view bytes)
{
    return ::lseek(file, 0, SEEK_SET) == 0 && WriteAll(file, bytes)
        && ::ftruncate(file, static_cast<off_t>(bytes.size())) == 0 && ::fsync(file) == 0;
}

bool Restore(int file, const QByteArray& backup, off_t oldSize)
{
    const Descriptor copy = OpenFile(backup, O_RDONLY);
    return copy && ::lseek(file, 0, SEEK_SET) == 0 && CopyBytes(copy.Get(), file)
        && ::ftruncate(file, oldSize) == 0 && ::fsync(file) == 0;
}

bool MakeFolders(const QString& path)
{
    return MakeOneFolder(path)
        || (path.lastIndexOf(u'/') > 0 && MakeFolders(path.left(path.lastIndexOf(u'/')))
            && MakeOneFolder(path));
}

} // namespace

std::optional<WriteResult> WriteInPlace(const QByteArray& path, std::string_view bytes,
                                        const QString& backupFolder)
{
    const Descriptor file = OpenFile(path, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    struct stat status = {};
    if (!file || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    const QByteArray backup = BackupOf(path, backupFolder);
    if (!MakeFolders(backupFolder) || !WriteBackup(file.Get(), backup))
        return WriteResult(u"no backup copy can be written: "_s + SystemReason(errno));
    if (!Reserve(file.Get(), status.st_size, bytes.size()))
        return WriteResult(SystemReason(errno));
    if (Overwrite(file.Get(), bytes))
        return WriteResult();
    const QString reason = SystemReason(errno);
    if (Restore(file.Get(), backup, status.st_size))
        return WriteResult(reason);
    return WriteResult(reason + u"; the old content is in "_s + DecodeFileName(backup));
}

} // namespace vmk
