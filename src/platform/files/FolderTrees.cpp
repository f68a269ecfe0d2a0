#include "FileNames.h"
#include "Files.h"
#include "PendingFile.h"
#include "PosixFile.h"

#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

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

/// The sorted names of all entries. The toolkit leaves out names that are not UTF-8.
QStringList EntriesOf(const QString& folder)
{
    QStringList names;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(EncodeFileName(folder).constData()),
                                                      &::closedir);
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr) {
        const QString name = DecodeFileName(entry->d_name);
        if (name != u"." && name != u"..")
            names.append(name);
    }
    names.sort();
    return names;
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

bool MakeOneFolder(const QString& path)
{
    const QByteArray name = EncodeFileName(path);
    if (::mkdir(name.constData(), 0777) == 0)
        return true;
    const int error = errno;
    const bool exists = KindOfFile(path) == FileKind::Folder;
    errno = error;
    return exists;
}

bool DeleteFolderTree(const QString& path)
{
    const QByteArray name = EncodeFileName(path);
    const std::optional<struct stat> status = StatusOfLink(name);
    if (!status || !S_ISDIR(status->st_mode) || IsSameFile(path, u"/"_s))
        return false;
    // Access to a folder closed to its owner is enabled, as a file's attributes are cleared before deletion.
    if ((status->st_mode & S_IRWXU) != S_IRWXU)
        ::chmod(name.constData(), (status->st_mode & PermissionBits) | S_IRWXU);
    bool allGone = true;
    for (const QString& entry : EntriesOf(path)) {
        const QString inner = Join(path, entry);
        const std::optional<struct stat> innerStatus = StatusOfLink(EncodeFileName(inner));
        const bool isFolder = innerStatus && S_ISDIR(innerStatus->st_mode);
        allGone = (isFolder ? DeleteFolderTree(inner) : DeleteOneFile(inner)) && allGone;
    }
    return ::rmdir(name.constData()) == 0 && allGone;
}

bool CopyFolderTree(const QString& from, const QString& to)
{
    if (KindOfFile(from) != FileKind::Folder || IsInside(to, from) || IsInside(from, to))
        return false;
    const QString target = DecodeFileName(FollowLinks(EncodeFileName(to)));
    const FileKind old = KindOfFile(target);
    if (target.isEmpty() || (old != FileKind::None && old != FileKind::Folder))
        return false;

    const QString fresh = DecodeFileName(TemporaryName(EncodeFileName(target)));
    const QString aside = DecodeFileName(TemporaryName(EncodeFileName(target)));
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

} // namespace vmk
