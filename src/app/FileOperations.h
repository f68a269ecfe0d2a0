#pragma once

#include "Files.h"

#include <QDate>
#include <QString>

#include <cstdint>
#include <string>
#include <string_view>

/// All access to the file system. Failures are visible only in the results; nothing is reported to the user.
namespace vmk {

/// Returns true if a file or a folder exists at the path or, for a name that ends in "*", a file that matches
/// the pattern. A trailing separator is ignored in a path of 4 or more characters. Returns false if the name
/// part is blank, and thus for a root.
[[nodiscard]] bool FileExists(const QString& path);

/// The same test for folders only.
[[nodiscard]] bool FolderExists(const QString& path);

/// Creates one folder level; a trailing separator is ignored. Returns true if the folder exists afterwards.
bool MakeFolder(const QString& path);

/// Returns the content of a file; empty if it is missing or unreadable. `ReadContent` of `Files.h` reports
/// the reason.
[[nodiscard]] std::string ReadFileText(const QString& path);

/// Replaces or creates a file, including a read-only one. The file afterwards contains either all of the old
/// or all of the new content.
/// \return false if it contains the old content
[[nodiscard]] bool WriteFileText(const QString& path, std::string_view text);

/// Like `WriteFileText`, without waiting for the disk: for large files that only this run needs, such as the
/// display file.
[[nodiscard]] bool WriteScratchFile(const QString& path, std::string_view text);

/// Reads a file into `bytes`. A `length` of -1 receives the length of the file in bytes; any other value is
/// unchanged.
/// \return false, with `bytes` empty, if the file cannot be read
[[nodiscard]] bool ReadFileBytes(const QString& path, std::string& bytes, int32_t& length);

/// Same as `WriteFileText`.
[[nodiscard]] bool WriteFileBytes(const QString& path, std::string_view bytes);

/// Returns the date of the file's last change, without the time; invalid if the file is missing.
[[nodiscard]] QDate FileDate(const QString& path);

/// Modes of `FileOperation`. The path modes are the functions of `FilePaths.h`.
enum FileMode
{
    DeleteFileMode = 0, ///< delete the file or pattern `a`
    DeleteFolderMode = 1, ///< delete the folder `a` with all its content
    CopyFileMode = 2, ///< copy file or pattern `a` to `b`
    MoveFileMode = 3, ///< move file or pattern `a` to `b`; "ok" if all of it was moved
    CopyFolderMode = 4, ///< copy the folder `a` with all its content to `b`, replacing an existing `b`
    ExtensionMode = 5, ///< the text after the last "."; all of it if there is none
    FolderOfMode = 6, ///< the text up to and including the last separator, or empty
    NameMode = 7, ///< the text after the last separator
    BaseNameMode = 8, ///< the name without its last extension
    DriveMode = 9, ///< the text up to and including the last ":\", or empty
    WithoutExtensionMode = 10, ///< the path without its last extension
};

/// Executes one file operation or splits a path. An empty `a` does nothing in any mode, an empty `b` does
/// nothing in the modes 2, 3 and 4. A source that ends in "*" is a pattern, and `b` is then the target
/// folder. One level of the target's folder is created if it is missing.
/// \return a result in mode 3 and in the path modes only; for the others, check with `FileExists`
QString FileOperation(int mode, const QString& a, const QString& b = QString());

} // namespace vmk
