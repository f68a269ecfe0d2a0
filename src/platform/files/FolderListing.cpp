#include "FolderListing.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace vmk {

namespace {

FileKind KindOf(mode_t mode)
{
    if (S_ISREG(mode))
        return FileKind::File;
    return S_ISDIR(mode) ? FileKind::Folder : FileKind::Other;
}

std::optional<struct stat> StatusAt(const std::string& path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

/// The kind of an entry, without a call of the system where the folder contains it.
FileKind KindOfEntry(DIR* folder, const dirent& entry)
{
    if (entry.d_type == DT_REG)
        return FileKind::File;
    if (entry.d_type == DT_DIR)
        return FileKind::Folder;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN)
        return FileKind::Other;
    struct stat status = {};
    if (::fstatat(::dirfd(folder), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return FileKind::None;
    if (!S_ISLNK(status.st_mode))
        return KindOf(status.st_mode);
    const bool isFile = ::fstatat(::dirfd(folder), entry.d_name, &status, 0) == 0 && S_ISREG(status.st_mode);
    return isFile ? FileKind::File : FileKind::Other;
}

} // namespace

FileKind KindAt(const std::string& systemPath)
{
    const std::optional<struct stat> status = StatusAt(systemPath);
    return status ? KindOf(status->st_mode) : FileKind::None;
}

bool IsSameAt(const std::string& a, const std::string& b)
{
    const std::optional<struct stat> first = StatusAt(a);
    const std::optional<struct stat> second = StatusAt(b);
    return first && second && first->st_dev == second->st_dev && first->st_ino == second->st_ino;
}

bool IsLinkAt(const std::string& systemPath)
{
    struct stat status = {};
    return ::lstat(systemPath.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

uint64_t FileSizeAt(const std::string& systemPath)
{
    const std::optional<struct stat> status = StatusAt(systemPath);
    return status ? static_cast<uint64_t>(std::max<off_t>(status->st_size, 0)) : 0;
}

FolderListing::FolderListing(const std::string& systemPath,
                             const std::function<bool(std::string_view name)>& isWanted, QString* problem)
{
    struct Closer
    {
        void operator()(DIR* folder) const { ::closedir(folder); }
    };
    const std::unique_ptr<DIR, Closer> folder(::opendir(systemPath.c_str()));
    errno = folder ? 0 : errno;
    while (folder) {
        errno = 0;
        const dirent* entry = ::readdir(folder.get());
        if (entry == nullptr)
            break;
        const std::string_view name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        const FileKind kind = KindOfEntry(folder.get(), *entry);
        if (kind == FileKind::Folder || (kind == FileKind::File && isWanted(name)))
            add(name, kind == FileKind::Folder);
    }
    if (errno != 0)
        *problem = QString::fromLocal8Bit(std::strerror(errno));
    std::ranges::sort(starts, {}, [this](size_t start) { return std::string_view(names.data() + start); });
}

void FolderListing::add(std::string_view name, bool isFolder)
{
    starts.push_back(names.size());
    names += name;
    if (isFolder)
        names += '/';
    names += '\0';
}

} // namespace vmk
