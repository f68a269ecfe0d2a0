#include "Files.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <optional>
#include <random>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr std::size_t ChunkBytes = 1 << 20;
constexpr mode_t PermissionBits = 07777;

/// An open file descriptor; closed at the end of its scope.
class Descriptor
{
public:
    explicit Descriptor(int opened = -1)
        : handle(opened)
    {
    }
    Descriptor(Descriptor&& other) noexcept
        : handle(std::exchange(other.handle, -1))
    {
    }
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { Close(); }

    explicit operator bool() const { return handle >= 0; }
    [[nodiscard]] int Get() const { return handle; }

    /// Returns false if the system reports a delayed write error.
    bool Close() { return handle < 0 || ::close(std::exchange(handle, -1)) == 0; }

private:
    int handle;
};

/// The system's form of a path; empty for a path that no file can have.
QByteArray SystemPath(const QString& path)
{
    return path.contains(QChar(0)) ? QByteArray() : QFile::encodeName(path);
}

Descriptor OpenFile(const QByteArray& path, int flags, mode_t mode = 0)
{
    int handle = -1;
    do
        handle = ::open(path.constData(), flags | O_CLOEXEC, mode);
    while (handle < 0 && errno == EINTR);
    return Descriptor(handle);
}

std::optional<struct stat> Status(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 ? std::optional(status) : std::nullopt;
}

std::optional<struct stat> LinkStatus(const QByteArray& path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 ? std::optional(status) : std::nullopt;
}

bool IsSameInode(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool WriteAll(int handle, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(handle, bytes.data(), std::min(bytes.size(), ChunkBytes));
        if (written < 0 && errno == EINTR)
            continue;
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

QByteArray FolderOf(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : path.left(slash);
}

/// The target of a write to a path: links are followed to the last one, whose target may not exist. Empty for
/// a cycle of links.
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
        path = target.startsWith('/') ? target : FolderOf(path) + '/' + target;
    }
    return {};
}

/// Makes the rename itself durable: flushing a folder writes its entries.
void FlushFolder(const QByteArray& folder)
{
    const Descriptor handle = OpenFile(folder, O_RDONLY | O_DIRECTORY);
    if (handle)
        ::fsync(handle.Get());
}

/// A name next to `target` that no file has; short, so that it fits even if the target name is long.
QByteArray TemporaryName(const QByteArray& target)
{
    static std::random_device source;
    const quint64 number = (quint64(source()) << 32) | source();
    return FolderOf(target) + "/.vmk-" + QByteArray::number(number, 36) + ".tmp";
}

/// The new content of a target: a temporary file next to it, deleted unless committed.
class PendingFile
{
public:
    /// `path` is not a link. The temporary file takes the permissions and owner of an existing file.
    explicit PendingFile(const QByteArray& path)
        : target(path)
        , old(Status(path))
        , handle(OpenTemporary())
    {
        if (handle && old)
            TakeOwner();
    }
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    ~PendingFile()
    {
        if (!name.isEmpty())
            ::unlink(name.constData());
    }

    explicit operator bool() const { return bool(handle); }
    [[nodiscard]] int Get() const { return handle.Get(); }

    /// Renames only when every byte is written, and flushed to the disk if requested.
    bool Commit(Durability durability = Durability::Flushed, std::optional<mode_t> permissions = {})
    {
        // A file system without permissions may refuse; the content is more important.
        if (const std::optional<mode_t> mode = permissions ? permissions : oldMode)
            static_cast<void>(::fchmod(handle.Get(), *mode));
        const bool isFlushed = durability == Durability::Flushed;
        if ((isFlushed && ::fsync(handle.Get()) != 0) || !handle.Close())
            return false;
        if (::rename(name.constData(), target.constData()) != 0)
            return false;
        name.clear();
        if (isFlushed)
            FlushFolder(FolderOf(target));
        return true;
    }

private:
    Descriptor OpenTemporary()
    {
        // Private until the old permissions are set.
        const mode_t mode = old ? 0600 : 0666;
        constexpr int Tries = 100;
        for (int i = 0; i < Tries; ++i) {
            const QByteArray candidate = TemporaryName(target);
            Descriptor opened = OpenFile(candidate, O_WRONLY | O_CREAT | O_EXCL, mode);
            if (opened) {
                name = candidate;
                return opened;
            }
            if (errno != EEXIST)
                break;
        }
        return Descriptor();
    }

    void TakeOwner()
    {
        oldMode = old->st_mode & PermissionBits;
        struct stat now = {};
        if (::fstat(handle.Get(), &now) != 0 || (now.st_uid == old->st_uid && now.st_gid == old->st_gid))
            return;
        // Another user's file: if the owner cannot be restored, the file must not run with that user's
        // rights.
        if (::fchown(handle.Get(), old->st_uid, old->st_gid) != 0
            && ::fchown(handle.Get(), uid_t(-1), old->st_gid) != 0)
            oldMode = *oldMode & ~mode_t(S_ISUID | S_ISGID);
    }

    QByteArray target;
    QByteArray name;
    std::optional<struct stat> old;
    std::optional<mode_t> oldMode;
    Descriptor handle;
};

/// Copies an open file to a pending file.
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

bool MatchesPattern(QStringView name, QStringView pattern)
{
    if (pattern == u"*.*")
        return true;
    // Greedy, with backtracking to the last star: linear in practice, never exponential.
    qsizetype n = 0;
    qsizetype p = 0;
    qsizetype star = -1;
    qsizetype starName = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            star = p++;
            starName = n;
        } else if (p < pattern.size() && (pattern[p] == u'?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star >= 0) {
            p = star + 1;
            n = ++starName;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}

QString Join(const QString& folder, const QString& name)
{
    return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

constexpr QDir::Filters AllEntries = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

QStringList EntriesOf(const QString& folder)
{
    return QDir(folder).entryList(AllEntries, QDir::Name);
}

/// Copies into a folder that does not exist yet; each call lists one level.
bool CopyTreeInto(const QString& from, const QString& to)
{
    const auto copyEntry = [&](const QString& name) {
        const QString source = Join(from, name);
        const QString target = Join(to, name);
        const bool isFolder = KindOfFile(source) == FileKind::Folder;
        return isFolder ? CopyTreeInto(source, target) : CopyOneFile(source, target);
    };
    return MakeOneFolder(to) && std::ranges::all_of(EntriesOf(from), copyEntry);
}

/// Whether `inner` is inside the folder `outer`, at any depth; neither has to exist.
bool IsInside(const QString& inner, const QString& outer)
{
    const QString outerPath = QFileInfo(outer).canonicalFilePath();
    if (outerPath.isEmpty())
        return false;
    QString path = QFileInfo(inner).absoluteFilePath();
    while (!QFileInfo::exists(path) && QFileInfo(path).path() != path)
        path = QFileInfo(path).path();
    path = QFileInfo(path).canonicalFilePath();
    return path == outerPath || path.startsWith(Join(outerPath, QString()));
}

} // namespace

FileKind KindOfFile(const QString& path)
{
    const std::optional<struct stat> status = Status(SystemPath(path));
    if (!status)
        return FileKind::None;
    if (S_ISDIR(status->st_mode))
        return FileKind::Folder;
    return S_ISREG(status->st_mode) ? FileKind::File : FileKind::Other;
}

bool EntryExists(const QString& path)
{
    return LinkStatus(SystemPath(path)).has_value();
}

bool IsSameFile(const QString& a, const QString& b)
{
    const std::optional<struct stat> first = Status(SystemPath(a));
    const std::optional<struct stat> second = Status(SystemPath(b));
    return first && second && IsSameInode(*first, *second);
}

bool IsFolderWritable(const QString& folder)
{
    return KindOfFile(folder) == FileKind::Folder
        && ::faccessat(AT_FDCWD, SystemPath(folder).constData(), W_OK | X_OK, AT_EACCESS) == 0;
}

FileContent ReadContent(const QString& path)
{
    FileContent content;
    const auto fail = [&content](ReadOutcome outcome) {
        content.outcome = outcome;
        if (outcome == ReadOutcome::Unreadable)
            content.systemReason = QString::fromLocal8Bit(std::strerror(errno));
        content.bytes = std::string();
        return content;
    };

    const Descriptor handle = OpenFile(SystemPath(path), O_RDONLY);
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

bool ReplaceContent(const QString& path, std::string_view bytes, Durability durability)
{
    const QByteArray target = FollowLinks(SystemPath(path));
    switch (KindOfFile(path)) {
    case FileKind::Folder:
        return false;
    case FileKind::Other: {
        Descriptor handle = OpenFile(target, O_WRONLY | O_NOCTTY);
        return handle && WriteAll(handle.Get(), bytes) && handle.Close();
    }
    case FileKind::None:
    case FileKind::File:
        break;
    }
    if (target.isEmpty())
        return false;
    PendingFile pending(target);
    return pending && WriteAll(pending.Get(), bytes) && pending.Commit(durability);
}

bool CopyOneFile(const QString& from, const QString& to)
{
    const Descriptor source = OpenFile(SystemPath(from), O_RDONLY);
    struct stat status = {};
    if (!source || ::fstat(source.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    const QByteArray target = FollowLinks(SystemPath(to));
    const std::optional<struct stat> old = Status(target);
    if (target.isEmpty() || (old && (IsSameInode(*old, status) || !S_ISREG(old->st_mode))))
        return false;
    PendingFile pending(target);
    constexpr mode_t PlainPermissions = 0777;
    return pending && CopyBytes(source.Get(), pending.Get())
        && pending.Commit(Durability::Flushed, (status.st_mode & PlainPermissions) | S_IRUSR | S_IWUSR);
}

bool MoveOneFile(const QString& from, const QString& to)
{
    const QByteArray source = SystemPath(from);
    const QByteArray target = FollowLinks(SystemPath(to));
    if (source.isEmpty() || target.isEmpty())
        return false;
    // Moving a link to its own target would leave only a link to itself.
    if (IsSameFile(from, to))
        return true;
    if (::rename(source.constData(), target.constData()) == 0) {
        FlushFolder(FolderOf(target));
        return true;
    }
    return errno == EXDEV && CopyOneFile(from, to) && DeleteOneFile(from);
}

bool DeleteOneFile(const QString& path)
{
    const QByteArray name = SystemPath(path);
    const std::optional<struct stat> status = LinkStatus(name);
    return status && !S_ISDIR(status->st_mode) && ::unlink(name.constData()) == 0;
}

bool MakeOneFolder(const QString& path)
{
    const QByteArray name = SystemPath(path);
    return !name.isEmpty() && (::mkdir(name.constData(), 0777) == 0 || KindOfFile(path) == FileKind::Folder);
}

bool DeleteFolderTree(const QString& path)
{
    const QByteArray name = SystemPath(path);
    const std::optional<struct stat> status = LinkStatus(name);
    if (!status || !S_ISDIR(status->st_mode) || IsSameFile(path, u"/"_s))
        return false;
    // Access to a folder closed to its owner is enabled, as a file's attributes are cleared before deletion.
    if ((status->st_mode & S_IRWXU) != S_IRWXU)
        ::chmod(name.constData(), (status->st_mode & PermissionBits) | S_IRWXU);
    bool allGone = true;
    for (const QString& entry : EntriesOf(path)) {
        const QString inner = Join(path, entry);
        const std::optional<struct stat> innerStatus = LinkStatus(SystemPath(inner));
        const bool isFolder = innerStatus && S_ISDIR(innerStatus->st_mode);
        allGone = (isFolder ? DeleteFolderTree(inner) : DeleteOneFile(inner)) && allGone;
    }
    return ::rmdir(name.constData()) == 0 && allGone;
}

bool CopyFolderTree(const QString& from, const QString& to)
{
    if (KindOfFile(from) != FileKind::Folder || IsInside(to, from) || IsInside(from, to))
        return false;
    const QString target = QFile::decodeName(FollowLinks(SystemPath(to)));
    const FileKind old = KindOfFile(target);
    if (target.isEmpty() || (old != FileKind::None && old != FileKind::Folder))
        return false;

    const QString fresh = QFile::decodeName(TemporaryName(SystemPath(target)));
    const QString aside = QFile::decodeName(TemporaryName(SystemPath(target)));
    if (!CopyTreeInto(from, fresh)) {
        DeleteFolderTree(fresh);
        return false;
    }
    if (old == FileKind::Folder && !MoveOneFile(target, aside)) {
        DeleteFolderTree(fresh);
        return false;
    }
    if (!MoveOneFile(fresh, target)) {
        // Restore the old folder before anything is deleted.
        const bool restored = old != FileKind::Folder || MoveOneFile(aside, target);
        if (restored)
            DeleteFolderTree(fresh);
        return false;
    }
    if (old == FileKind::Folder)
        DeleteFolderTree(aside);
    return true;
}

QStringList FindFiles(const QString& folder, const QString& pattern)
{
    QStringList found;
    for (const QString& name : EntriesOf(folder)) {
        if (KindOfFile(Join(folder, name)) != FileKind::Folder && MatchesPattern(name, pattern))
            found.append(name);
    }
    return found;
}

QDate LastWriteDate(const QString& path)
{
    return QFileInfo(path).lastModified().date();
}

} // namespace vmk
