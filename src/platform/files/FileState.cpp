#include "FileState.h"

#include "FileNames.h"

#include <cstdlib>
#include <memory>

#include <sys/stat.h>

namespace vmk {

QDateTime FileState::time() const
{
    constexpr qint64 Million = 1'000'000;
    return exists() ? QDateTime::fromMSecsSinceEpoch(modified / Million) : QDateTime();
}

FileState StateOfFile(const QString& path)
{
    struct stat status = {};
    if (::stat(EncodeFileName(path).constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    constexpr qint64 Billion = 1'000'000'000;
    return {status.st_size, status.st_mtim.tv_sec * Billion + status.st_mtim.tv_nsec, status.st_dev,
            status.st_ino, status.st_nlink};
}

QString RealPath(const QString& path)
{
    const std::unique_ptr<char, decltype(&std::free)> whole(
        ::realpath(EncodeFileName(path).constData(), nullptr), &std::free);
    return whole ? DecodeFileName(whole.get()) : QString();
}

} // namespace vmk
