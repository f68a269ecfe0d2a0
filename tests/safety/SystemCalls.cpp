#include "SystemCalls.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace vmk::calls {

namespace {

std::mutex Mutex;
bool IsWatching = false;
Watch Watched;
Failure Planned;
int Count = 0;
std::string FailedKind;
std::string FailedCall;
std::vector<Call> Calls;

/// What becomes of a call.
enum class Verdict
{
    Unwatched,
    Succeeds,
    Fails
};

std::string PathOf(int handle)
{
    std::array<char, PATH_MAX> path = {};
    std::array<char, 64> link = {};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", handle);
    const ssize_t length = ::readlink(link.data(), path.data(), path.size());
    return length < 0 ? std::string() : std::string(path.data(), std::size_t(length));
}

std::uint64_t InodeOf(int handle)
{
    struct stat status = {};
    return ::fstat(handle, &status) == 0 ? status.st_ino : 0;
}

std::uint64_t InodeOf(const char* path)
{
    struct stat status = {};
    return ::stat(path, &status) == 0 ? status.st_ino : 0;
}

Verdict Judge(const char* name, const std::string& path)
{
    const bool isWatched = IsWatching && path.find(Watched.inside) != std::string::npos
        && (Watched.outside.empty() || path.find(Watched.outside) == std::string::npos);
    if (!isWatched)
        return Verdict::Unwatched;
    ++Count;
    if (Count == Planned.number) {
        FailedKind = name;
        FailedCall = std::string(name) + " " + path;
    }
    const bool fails = Count == Planned.number || (Planned.isLasting && FailedKind == name);
    if (fails)
        errno = Planned.error;
    return fails ? Verdict::Fails : Verdict::Succeeds;
}

/// The function of the C library.
template <typename Function>
Function* Real(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

void Begin(Watch watch, Failure failure)
{
    const std::lock_guard lock(Mutex);
    Watched = std::move(watch);
    Planned = failure;
    Count = 0;
    FailedKind.clear();
    FailedCall.clear();
    Calls.clear();
    IsWatching = true;
}

std::string End()
{
    const std::lock_guard lock(Mutex);
    IsWatching = false;
    return FailedCall;
}

const std::vector<Call>& Recorded()
{
    return Calls;
}

namespace {

int Open(const char* name, const char* path, int flags, mode_t mode)
{
    const std::lock_guard lock(Mutex);
    const bool changes = (flags & O_ACCMODE) != O_RDONLY;
    const Verdict verdict = changes ? Judge("open", path) : Verdict::Unwatched;
    if (verdict == Verdict::Fails)
        return -1;
    static auto* const real = Real<int(const char*, int, ...)>("open");
    static_cast<void>(name);
    const bool isNew = verdict == Verdict::Succeeds && InodeOf(path) == 0;
    const int handle = real(path, flags, mode);
    if (handle >= 0 && isNew)
        Calls.push_back({Call::Create, InodeOf(handle), path, {}, {}, 0});
    return handle;
}

int Sync(const char* name, int handle)
{
    const std::lock_guard lock(Mutex);
    const std::string path = PathOf(handle);
    const Verdict verdict = Judge(name, path);
    if (verdict == Verdict::Fails)
        return -1;
    // The tests do not need the disk itself.
    if (verdict == Verdict::Unwatched)
        return Real<int(int)>(name)(handle);
    struct stat status = {};
    const bool isFolder = ::fstat(handle, &status) == 0 && S_ISDIR(status.st_mode);
    Calls.push_back({isFolder ? Call::SyncFolder : Call::SyncFile, status.st_ino, path, {}, {}, 0});
    return 0;
}

} // namespace

} // namespace vmk::calls

using namespace vmk::calls;

// The names and the types are those of the C library.
// NOLINTBEGIN(readability-identifier-naming, readability-inconsistent-declaration-parameter-name)
extern "C" {

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return Open("open", path, flags, mode);
}

ssize_t write(int handle, const void* bytes, size_t count)
{
    static auto* const real = Real<ssize_t(int, const void*, size_t)>("write");
    const std::lock_guard lock(Mutex);
    if (!IsWatching)
        return real(handle, bytes, count);
    const Verdict verdict = Judge("write", PathOf(handle));
    if (verdict == Verdict::Unwatched)
        return real(handle, bytes, count);
    if (verdict == Verdict::Fails) {
        const int error = errno;
        if (!Planned.isShort || count < 2)
            return -1;
        static_cast<void>(error);
        count /= 2;
    }
    const ssize_t written = real(handle, bytes, count);
    if (written > 0)
        Calls.push_back({Call::Write,
                         InodeOf(handle),
                         {},
                         {},
                         std::string(static_cast<const char*>(bytes), size_t(written)),
                         0});
    return written;
}

int fsync(int handle)
{
    return Sync("fsync", handle);
}

int fdatasync(int handle)
{
    return Sync("fdatasync", handle);
}

int ftruncate(int handle, off_t length) noexcept
{
    static auto* const real = Real<int(int, off_t)>("ftruncate");
    const std::lock_guard lock(Mutex);
    const Verdict verdict = Judge("ftruncate", PathOf(handle));
    if (verdict == Verdict::Fails)
        return -1;
    if (verdict == Verdict::Succeeds)
        Calls.push_back({Call::Truncate, InodeOf(handle), {}, {}, {}, std::uint64_t(length)});
    return real(handle, length);
}

int posix_fallocate(int handle, off_t offset, off_t length)
{
    static auto* const real = Real<int(int, off_t, off_t)>("posix_fallocate");
    const std::lock_guard lock(Mutex);
    if (Judge("posix_fallocate", PathOf(handle)) != Verdict::Fails)
        return real(handle, offset, length);
    // The space of a full disk is used up to its end.
    if (Planned.isShort && length > 1)
        real(handle, offset, length / 2);
    return Planned.error;
}

int fchmod(int handle, mode_t mode) noexcept
{
    static auto* const real = Real<int(int, mode_t)>("fchmod");
    const std::lock_guard lock(Mutex);
    return Judge("fchmod", PathOf(handle)) == Verdict::Fails ? -1 : real(handle, mode);
}

int mkdir(const char* path, mode_t mode) noexcept
{
    static auto* const real = Real<int(const char*, mode_t)>("mkdir");
    const std::lock_guard lock(Mutex);
    return Judge("mkdir", path) == Verdict::Fails ? -1 : real(path, mode);
}

int rename(const char* from, const char* to) noexcept
{
    static auto* const real = Real<int(const char*, const char*)>("rename");
    const std::lock_guard lock(Mutex);
    const Verdict verdict = Judge("rename", from);
    if (verdict == Verdict::Fails)
        return -1;
    const int result = real(from, to);
    if (result == 0 && verdict == Verdict::Succeeds)
        Calls.push_back({Call::Rename, 0, from, to, {}, 0});
    return result;
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept
{
    static auto* const real = Real<int(int, const char*, int, const char*, int)>("linkat");
    const std::lock_guard lock(Mutex);
    const Verdict verdict = Judge("linkat", to);
    if (verdict == Verdict::Fails)
        return -1;
    const int result = real(fromFolder, from, toFolder, to, flags);
    if (result == 0 && verdict == Verdict::Succeeds)
        Calls.push_back({Call::Link, InodeOf(to), from, to, {}, 0});
    return result;
}

int unlink(const char* path) noexcept
{
    static auto* const real = Real<int(const char*)>("unlink");
    const std::lock_guard lock(Mutex);
    const Verdict verdict = Judge("unlink", path);
    if (verdict == Verdict::Fails)
        return -1;
    const int result = real(path);
    if (result == 0 && verdict == Verdict::Succeeds)
        Calls.push_back({Call::Unlink, 0, path, {}, {}, 0});
    return result;
}

} // extern "C"
// NOLINTEND(readability-identifier-naming, readability-inconsistent-declaration-parameter-name)
