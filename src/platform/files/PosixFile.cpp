#include "PosixFile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <string>

#include <fcntl.h>

namespace vmk {

QString SystemReason(int error)
{
#ifdef __GLIBC__
    const char* text = ::strerrordesc_np(error);
#else
    const char* text = std::strerror(error);
#endif
    return text == nullptr ? QStringLiteral("error %1").arg(error) : QString::fromLocal8Bit(text);
}

Descriptor OpenFile(const QByteArray& path, int flags, mode_t mode)
{
    int handle = -1;
    do
        handle = ::open(path.constData(), flags | O_CLOEXEC, mode);
    while (handle < 0 && errno == EINTR);
    return Descriptor(handle);
}

std::optional<struct stat> StatusOf(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 ? std::optional(status) : std::nullopt;
}

std::optional<struct stat> StatusOfLink(const QByteArray& path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 ? std::optional(status) : std::nullopt;
}

bool WriteAll(int handle, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(handle, bytes.data(), std::min(bytes.size(), ChunkBytes));
        if (written < 0 && errno == EINTR)
            continue;
        if (written == 0)
            errno = EIO;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

ssize_t ReadSome(int handle, char* buffer, std::size_t size)
{
    ssize_t got = 0;
    do
        got = ::read(handle, buffer, size);
    while (got < 0 && errno == EINTR);
    return got;
}

bool CopyBytes(int from, int to)
{
    std::string buffer(ChunkBytes, '\0');
    for (;;) {
        const ssize_t got = ReadSome(from, buffer.data(), buffer.size());
        if (got <= 0)
            return got == 0;
        if (!WriteAll(to, std::string_view(buffer).substr(0, static_cast<std::size_t>(got))))
            return false;
    }
}

QByteArray SystemFolderOf(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : path.left(slash);
}

QByteArray FollowLinks(QByteArray path)
{
    constexpr int MaxLinks = 40;
    for (int i = 0; i < MaxLinks; ++i) {
        QByteArray target(PATH_MAX, '\0');
        const ssize_t length
            = ::readlink(path.constData(), target.data(), static_cast<size_t>(target.size()));
        if (length < 0)
            return path;
        target.truncate(length);
        path = target.startsWith('/') ? target : SystemFolderOf(path) + '/' + target;
    }
    return {};
}

void FlushFolder(const QByteArray& folder)
{
    const Descriptor handle = OpenFile(folder, O_RDONLY | O_DIRECTORY);
    if (handle)
        ::fsync(handle.Get());
}

} // namespace vmk
