#include "FileOperations.h"

#include "FileNames.h"
#include "FilePaths.h"
#include "FolderListing.h"
#include "StartUpVariables.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

bool IsSeparator(QChar c)
{
    return c == u'\\' || c == u'/';
}

/// Short paths keep their separator: without it, a root would become a different path.
QString DropTrailingSeparator(QString path)
{
    constexpr qsizetype ShortestDropped = 4;
    if (path.size() >= ShortestDropped && IsSeparator(path.back()))
        path.chop(1);
    return path;
}

bool IsLink(const QString& path)
{
    return IsLinkAt(EncodeFileName(path).toStdString());
}

/// Whether the folder of a path in the workspace is reached by a link. The workspace may come from another
/// user, as an archive does: a link in it must not make the program write or delete elsewhere. The workspace
/// itself may be a link.
bool LeadsOutOfWorkspace(const QString& path)
{
    if (OfficeFolder.isEmpty() || !path.startsWith(OfficeFolder + u'/'))
        return false;
    for (qsizetype slash = path.indexOf(u'/', OfficeFolder.size() + 1); slash > 0;
         slash = path.indexOf(u'/', slash + 1)) {
        if (slash + 1 < path.size() && IsLink(path.left(slash)))
            return true;
    }
    return false;
}

/// Prepares a path for a file or a folder that replaces what is there. A link in the workspace to a file is
/// removed, and its target stays as it is. \return false for a path that leads out of the workspace
bool MayReplace(const QString& path)
{
    if (LeadsOutOfWorkspace(path))
        return false;
    if (OfficeFolder.isEmpty() || !path.startsWith(OfficeFolder + u'/') || !IsLink(path))
        return true;
    return KindOfFile(path) != FileKind::Folder && DeleteOneFile(path);
}

/// Replaces a file; links outside the workspace are followed.
bool Replace(const QString& path, std::string_view bytes, Durability durability)
{
    return MayReplace(path) && bool(ReplaceContent(path, bytes, durability));
}

bool IsPattern(const QString& path)
{
    return path.endsWith(u'*');
}

QStringList FilesOfPattern(const QString& pattern)
{
    const QString folder = FolderOf(pattern);
    return FindFiles(folder.isEmpty() ? u"."_s : folder, FileNameOf(pattern));
}

/// Copies or moves one file or all files of a pattern; returns true if all of them succeeded.
bool Transfer(const QString& from, const QString& to, bool (*transferOne)(const QString&, const QString&))
{
    if (!IsPattern(from)) {
        if (!FileExists(from))
            return false;
        if (const QString folder = FolderOf(to); !folder.isEmpty())
            MakeFolder(folder);
        return transferOne(from, to);
    }
    MakeFolder(to);
    const QString targetFolder = IsSeparator(to.back()) ? to : to + u'/';
    bool allDone = true;
    for (const QString& name : FilesOfPattern(from))
        allDone = transferOne(FolderOf(from) + name, targetFolder + name) && allDone;
    return allDone;
}

void DeleteFiles(const QString& path)
{
    if (!IsPattern(path)) {
        DeleteOneFile(path);
        return;
    }
    for (const QString& name : FilesOfPattern(path))
        DeleteOneFile(FolderOf(path) + name);
}

} // namespace

bool FileExists(const QString& path)
{
    const QString plain = DropTrailingSeparator(path);
    if (FileNameOf(plain).trimmed().isEmpty())
        return false;
    return KindOfFile(plain) != FileKind::None || (IsPattern(plain) && !FilesOfPattern(plain).isEmpty());
}

bool FolderExists(const QString& path)
{
    const QString plain = DropTrailingSeparator(path);
    return !FileNameOf(plain).trimmed().isEmpty() && KindOfFile(plain) == FileKind::Folder;
}

bool MakeFolder(const QString& path)
{
    const bool hasSeparator = path.size() > 1 && IsSeparator(path.back());
    return !LeadsOutOfWorkspace(path) && MakeOneFolder(hasSeparator ? path.chopped(1) : path);
}

std::string ReadFileText(const QString& path)
{
    return ReadContent(path).bytes;
}

bool WriteFileText(const QString& path, std::string_view text)
{
    return Replace(path, text, Durability::Flushed);
}

bool WriteScratchFile(const QString& path, std::string_view text)
{
    return Replace(path, text, Durability::Scratch);
}

bool ReadFileBytes(const QString& path, std::string& bytes, int32_t& length)
{
    static_assert(MaxFileBytes <= std::numeric_limits<int32_t>::max());
    FileContent content = ReadContent(path);
    bytes = std::move(content.bytes);
    if (content.outcome != ReadOutcome::Ok)
        return false;
    if (length == -1)
        length = static_cast<int32_t>(bytes.size());
    return true;
}

bool WriteFileBytes(const QString& path, std::string_view bytes)
{
    return Replace(path, bytes, Durability::Flushed);
}

QDate FileDate(const QString& path)
{
    return LastWriteDate(path);
}

QString FileOperation(int mode, const QString& a, const QString& b)
{
    const bool needsTarget = mode == CopyFileMode || mode == MoveFileMode || mode == CopyFolderMode;
    if (a.isEmpty() || (needsTarget && b.isEmpty()))
        return {};
    const bool deletes = mode == DeleteFileMode || mode == DeleteFolderMode;
    if ((deletes && LeadsOutOfWorkspace(a))
        || (needsTarget && FileExists(a) && !MayReplace(DropTrailingSeparator(b))))
        return {};
    switch (mode) {
    case DeleteFileMode:
        DeleteFiles(a);
        break;
    case DeleteFolderMode:
        DeleteFolderTree(DropTrailingSeparator(a));
        break;
    case CopyFileMode:
        Transfer(a, b, CopyOneFile);
        break;
    case MoveFileMode:
        return Transfer(a, b, MoveOneFile) ? u"ok"_s : QString();
    case CopyFolderMode:
        // A failed copy leaves both folders unchanged; the caller checks whether `b` exists.
        static_cast<void>(CopyFolderTree(DropTrailingSeparator(a), DropTrailingSeparator(b)));
        break;
    case ExtensionMode:
        return ExtensionOf(a);
    case FolderOfMode:
        return FolderOf(a);
    case NameMode:
        return FileNameOf(a);
    case BaseNameMode:
        return BaseNameOf(a);
    case DriveMode:
        return DriveOf(a);
    case WithoutExtensionMode:
        return WithoutExtension(a);
    default:
        break;
    }
    return {};
}

} // namespace vmk
