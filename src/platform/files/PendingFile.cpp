#include "PendingFile.h"

#include "FileAttributes.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <dirent.h>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <string_view>

#include <fcntl.h>
#include <sys/file.h>

namespace vmk {

namespace {

constexpr std::string_view NameStart = ".vmk-";
constexpr std::string_view NameEnd = ".tmp";

bool IsTemporaryName(std::string_view name)
{
    if (name.size() <= NameStart.size() + NameEnd.size() || !name.starts_with(NameStart)
        || !name.ends_with(NameEnd))
        return false;
    name.remove_prefix(NameStart.size());
    name.remove_suffix(NameEnd.size());
    constexpr std::size_t LongestNumber = 13; // 64 bits, base 36
    return name.size() <= LongestNumber
        && std::ranges::all_of(name, [](char c) { return ('0' <= c && c <= '9') || ('a' <= c && c <= 'z'); });
}

/// Locks a file for one process. Returns false if another one has it, or has just removed it.
bool Own(int handle)
{
    if (::flock(handle, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return false;
    struct stat status = {};
    return ::fstat(handle, &status) != 0 || status.st_nlink > 0;
}

void RemoveIfAbandoned(const QByteArray& path)
{
    // A file of another user is not opened; a link or a pipe is not followed.
    const Descriptor file = OpenFile(path, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    struct stat status = {};
    if (file && ::fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode)
        && ::flock(file.Get(), LOCK_EX | LOCK_NB) == 0)
        ::unlink(path.constData());
}

/// Whether the folder is to be searched now: a small one always.
class SearchTimes
{
public:
    bool isDue(const QByteArray& folder)
    {
        const std::lock_guard guard(mutex);
        const auto last = large.find(folder);
        return last == large.end() || Clock::now() - last->second >= std::chrono::seconds(1);
    }
    void note(const QByteArray& folder, int entries)
    {
        constexpr int ManyEntries = 1000;
        const std::lock_guard guard(mutex);
        if (entries >= ManyEntries)
            large[folder] = Clock::now();
        else
            large.erase(folder);
    }

private:
    using Clock = std::chrono::steady_clock;
    std::mutex mutex;
    std::map<QByteArray, Clock::time_point> large;
};

} // namespace

QByteArray TemporaryName(const QByteArray& target)
{
    static std::random_device source;
    const quint64 number = (quint64(source()) << 32) | source();
    return SystemFolderOf(target) + '/' + NameStart.data() + QByteArray::number(number, 36) + NameEnd.data();
}

void RemoveLeftovers(const QByteArray& folder)
{
    static SearchTimes times;
    if (!times.isDue(folder))
        return;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.constData()), &::closedir);
    int count = 0;
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr) {
        ++count;
        if (IsTemporaryName(entry->d_name))
            RemoveIfAbandoned(folder + '/' + entry->d_name);
    }
    times.note(folder, count);
}

PendingFile::PendingFile(const QByteArray& path)
    : target(path)
    , old(StatusOf(path))
{
    handle = OpenTemporary();
    if (handle && old) {
        TakeOwner();
        CopyFileAttributes(target, handle.Get());
    }
}

PendingFile::~PendingFile()
{
    if (name.isEmpty())
        return;
    const int error = errno;
    ::unlink(name.constData());
    errno = error;
}

bool PendingFile::Commit(Durability durability, std::optional<mode_t> permissions)
{
    // A file system without permissions may refuse; the content is more important.
    if (const std::optional<mode_t> mode = permissions ? permissions : oldMode)
        static_cast<void>(::fchmod(handle.Get(), *mode));
    const bool isFlushed = durability == Durability::Flushed;
    if ((isFlushed && ::fsync(handle.Get()) != 0) || !handle.Close())
        return false;
    // The lock lasts until the file has its name.
    if (::rename(name.constData(), target.constData()) != 0)
        return false;
    name.clear();
    lock.Close();
    if (isFlushed) {
        FlushFolder(SystemFolderOf(target));
        RemoveLeftovers(SystemFolderOf(target));
    }
    return true;
}

Descriptor PendingFile::OpenTemporary()
{
    // Private until the old permissions are set.
    const mode_t mode = old ? 0600 : 0666;
    constexpr int Tries = 100;
    for (int i = 0; i < Tries; ++i) {
        const QByteArray candidate = TemporaryName(target);
        Descriptor opened = OpenFile(candidate, O_WRONLY | O_CREAT | O_EXCL, mode);
        if (opened) {
            // Another process may have taken the file for an abandoned one in this moment.
            if (!Own(opened.Get()))
                continue;
            // A second descriptor of the same lock: the file is closed, for its errors, before it is renamed.
            lock = Descriptor(::fcntl(opened.Get(), F_DUPFD_CLOEXEC, 0));
            name = candidate;
            return opened;
        }
        openError = errno;
        if (openError != EEXIST)
            break;
    }
    return Descriptor();
}

void PendingFile::TakeOwner()
{
    oldMode = old->st_mode & PermissionBits;
    struct stat now = {};
    if (::fstat(handle.Get(), &now) != 0 || (now.st_uid == old->st_uid && now.st_gid == old->st_gid))
        return;
    if (::fchown(handle.Get(), old->st_uid, old->st_gid) == 0)
        return;
    // Another user's file: a program must not run with the rights of its new owner or group.
    if (now.st_uid != old->st_uid)
        oldMode = *oldMode & ~mode_t(S_ISUID);
    if (::fchown(handle.Get(), uid_t(-1), old->st_gid) != 0)
        oldMode = *oldMode & ~mode_t(S_ISGID);
}

} // namespace vmk
