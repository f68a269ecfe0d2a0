#pragma once

#include "Files.h"

#include <QDate>
#include <QString>

#include <cstdint>
#include <string>
#include <string_view>

/// The one gate to the file system. Failures show only in the results; nothing is reported here.
namespace vmk {

/// True if a file, a folder or, for a name that ends in "*", a file of that pattern stands at the path.
/// A trailing separator is dropped from a path of 4 characters or more; a path whose name part is blank
/// is false, so a bare root is.
[[nodiscard]] bool FileExists(const QString& path);

/// The same test for a folder alone.
[[nodiscard]] bool FolderExists(const QString& path);

/// Makes one folder level; a trailing separator is dropped. True if the folder stands afterwards.
bool MakeFolder(const QString& path);

/// The whole file; empty if it is missing or cannot be read. `ReadContent` of `Files.h` tells why.
[[nodiscard]] std::string ReadFileText(const QString& path);

/// Replaces or makes the file; a read-only file too. Either the old or the new content stands afterwards,
/// whole. False if the old one does.
[[nodiscard]] bool WriteFileText(const QString& path, std::string_view text);

/// As `WriteFileText`, without waiting for the disk: for large files that only this run needs, such as the
/// display file.
[[nodiscard]] bool WriteScratchFile(const QString& path, std::string_view text);

/// Reads the whole file into `bytes`. A `length` of -1 comes back as the file's length in bytes, any other
/// stays. False, with `bytes` empty, if the file cannot be read.
[[nodiscard]] bool ReadFileBytes(const QString& path, std::string& bytes, int32_t& length);

/// As `WriteFileText`.
[[nodiscard]] bool WriteFileBytes(const QString& path, std::string_view bytes);

/// Date of the file's last change, without the time; invalid if the file is missing.
[[nodiscard]] QDate FileDate(const QString& path);

/// Modes of `FileOperation`. The path modes go by the text alone and take both "\" and "/" as separators.
enum FileMode
{
    DeleteFileMode = 0, ///< delete the file or pattern `a`
    DeleteFolderMode = 1, ///< delete the folder `a` with all its content
    CopyFileMode = 2, ///< copy file or pattern `a` to `b`
    MoveFileMode = 3, ///< move file or pattern `a` to `b`; "ok" if all of it was moved
    CopyFolderMode = 4, ///< copy the folder `a` with all its content to `b`, in place of an existing `b`
    ExtensionMode = 5, ///< the text behind the last "."; all of it if there is none
    FolderOfMode = 6, ///< the text up to and including the last separator, or empty
    NameMode = 7, ///< the text behind the last separator
    BaseNameMode = 8, ///< the name without its last extension
    DriveMode = 9, ///< the text up to and including the last ":\", or empty
    WithoutExtensionMode = 10, ///< the path without its last extension
};

/// Does one file operation or splits a path. An empty `a` is a no-op in every mode, an empty `b` in the
/// modes 2, 3 and 4. A source that ends in "*" is a pattern, and `b` then the target folder; the target's
/// folder is made if missing, one level. Only the moving and the path modes give a result: whether one of
/// the others worked is asked of `FileExists`.
QString FileOperation(int mode, const QString& a, const QString& b = QString());

} // namespace vmk
