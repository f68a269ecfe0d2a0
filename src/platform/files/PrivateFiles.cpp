#include "PrivateFiles.h"

#include "FileNames.h"

#include <cerrno>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vmk {

namespace {

constexpr mode_t OwnFolder = 0700;
constexpr mode_t OwnFile = 0600;

bool LockHandle(int handle)
{
    int result = 0;
    do
        result = ::flock(handle, LOCK_EX | LOCK_NB);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

/// Whether an open file is still the one at the path, is regular and belongs to this user.
bool IsOwnFileAt(int handle, const QByteArray& path)
{
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(handle, &opened) == 0 && ::lstat(path.constData(), &named) == 0
        && opened.st_dev == named.st_dev && opened.st_ino == named.st_ino && S_ISREG(opened.st_mode)
        && opened.st_uid == ::geteuid();
}

} // namespace

bool MakePrivateFolder(const QString& path)
{
    const QByteArray name = EncodeFileName(path);
    if (name.isEmpty() || (::mkdir(name.constData(), OwnFolder) != 0 && errno != EEXIST))
        return false;
    return IsPrivateFolder(path);
}

bool IsPrivateFolder(const QString& path)
{
    struct stat status = {};
    return ::lstat(EncodeFileName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode)
        && status.st_uid == ::geteuid();
}

bool RemoveEmptyFolder(const QString& path)
{
    return ::rmdir(EncodeFileName(path).constData()) == 0;
}

// ---------------------------------------------------------------- a locked file

LockedFile LockedFile::create(const QString& path)
{
    LockedFile file;
    const QByteArray name = EncodeFileName(path);
    file.filePath = path;
    file.handle = OpenFile(name, O_RDWR | O_APPEND | O_CREAT | O_EXCL | O_NOFOLLOW, OwnFile);
    // Between both calls, another process may have taken the new file for one without an owner.
    if (!file.handle || !LockHandle(file.handle.Get()) || !IsOwnFileAt(file.handle.Get(), name)) {
        static_cast<void>(file.fail());
        file.close();
    }
    return file;
}

LockedFile LockedFile::open(const QString& path)
{
    LockedFile file;
    const QByteArray name = EncodeFileName(path);
    file.filePath = path;
    file.handle = OpenFile(name, O_RDWR | O_APPEND | O_NONBLOCK | O_NOFOLLOW);
    // The file may have been replaced while it was being locked.
    if (!file.handle || !LockHandle(file.handle.Get()) || !IsOwnFileAt(file.handle.Get(), name)) {
        static_cast<void>(file.fail());
        file.close();
    }
    return file;
}

std::string LockedFile::read()
{
    std::string bytes;
    struct stat status = {};
    if (!handle || ::fstat(handle.Get(), &status) != 0 || ::lseek(handle.Get(), 0, SEEK_SET) < 0)
        return bytes;
    bytes.resize(static_cast<std::size_t>(status.st_size));
    std::size_t used = 0;
    while (used < bytes.size()) {
        const ssize_t got = ReadSome(handle.Get(), bytes.data() + used, bytes.size() - used);
        if (got <= 0)
            break;
        used += static_cast<std::size_t>(got);
    }
    bytes.resize(used);
    return bytes;
}

bool LockedFile::append(std::string_view bytes)
{
    return (handle && WriteAll(handle.Get(), bytes)) || fail();
}

bool LockedFile::flush()
{
    return (handle && ::fdatasync(handle.Get()) == 0) || fail();
}

bool LockedFile::rename(const QString& path)
{
    const QByteArray name = EncodeFileName(path);
    if (!handle || ::rename(EncodeFileName(filePath).constData(), name.constData()) != 0)
        return fail();
    filePath = path;
    FlushFolder(SystemFolderOf(name));
    return true;
}

bool LockedFile::remove()
{
    const QByteArray name = EncodeFileName(filePath);
    const bool removed = handle && IsOwnFileAt(handle.Get(), name) && ::unlink(name.constData()) == 0;
    close();
    return removed;
}

void LockedFile::close()
{
    static_cast<void>(handle.Close());
}

bool LockedFile::fail()
{
    lastReason = SystemReason(errno);
    return false;
}

// ---------------------------------------------------------------- a second file

namespace {

bool CopyInto(const QByteArray& from, const QByteArray& to)
{
    const Descriptor source = OpenFile(from, O_RDONLY);
    struct stat status = {};
    if (!source || ::fstat(source.Get(), &status) != 0)
        return false;
    Descriptor copy = OpenFile(to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, OwnFile);
    if (!copy)
        return false;
    // Shares the blocks where the file system allows it.
    const bool isCopied
        = ::ioctl(copy.Get(), FICLONE, source.Get()) == 0 || CopyBytes(source.Get(), copy.Get());
    if (isCopied) {
        constexpr mode_t Plain = 0777;
        const struct timespec times[] = {status.st_atim, status.st_mtim};
        static_cast<void>(::futimens(copy.Get(), times));
        static_cast<void>(::fchmod(copy.Get(), status.st_mode & Plain));
    }
    if (isCopied && ::fsync(copy.Get()) == 0 && copy.Close())
        return true;
    const int error = errno;
    ::unlink(to.constData());
    errno = error;
    return false;
}

} // namespace

KeptAs KeepFileAs(const QString& from, const QString& to, bool mayLink, QString& reason)
{
    const QByteArray target = EncodeFileName(to);
    const QByteArray source = EncodeFileName(from);
    struct stat status = {};
    const bool isAlone
        = ::stat(source.constData(), &status) == 0 && status.st_nlink == 1 && status.st_uid == ::geteuid();
    if (mayLink && isAlone
        && ::linkat(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), AT_SYMLINK_FOLLOW) == 0) {
        FlushFolder(SystemFolderOf(target));
        return KeptAs::Link;
    }
    if (CopyInto(source, target)) {
        FlushFolder(SystemFolderOf(target));
        return KeptAs::Copy;
    }
    reason = SystemReason(errno);
    return KeptAs::Nothing;
}

} // namespace vmk
