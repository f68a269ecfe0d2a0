#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <string>
#include <string_view>

/// Files as the system sees them. All that is particular to POSIX stays in this folder; the rest of the
/// program goes through `FileOperations.h`.
namespace vmk {

enum class FileKind
{
    None, ///< nothing there, or not reachable
    File, ///< an ordinary file
    Folder,
    Other ///< a device, a pipe or a socket
};

enum class ReadOutcome
{
    Ok,
    Missing,
    IsFolder,
    Unreadable,
    TooLarge
};

/// A whole file, or why there is none.
struct FileContent
{
    ReadOutcome outcome = ReadOutcome::Ok;
    std::string bytes;
    /// The system's words on an outcome of `Unreadable`, else empty.
    QString systemReason;
};

/// Larger files are refused: positions in a book are 32-bit.
inline constexpr std::size_t MaxFileBytes = 0x7fffffff;

/// What stands at the path; links are followed. `None` for a link that leads nowhere.
[[nodiscard]] FileKind KindOfFile(const QString& path);

/// Whether a directory entry of this name stands, a dangling link included.
[[nodiscard]] bool EntryExists(const QString& path);

/// Whether both paths lead to the same existing file or folder.
[[nodiscard]] bool IsSameFile(const QString& a, const QString& b);

/// Whether the process may make files in the folder.
[[nodiscard]] bool IsFolderWritable(const QString& folder);

/// Reads a whole file, device or pipe; up to `MaxFileBytes`.
[[nodiscard]] FileContent ReadContent(const QString& path);

/// One plain line for the user: "file not found", "is a folder", "cannot be read: ..."; empty for `Ok`.
[[nodiscard]] QString ReadFailureText(const FileContent& content);

/// Whether a write must outlast a failure of the machine.
enum class Durability
{
    Flushed, ///< on the disk before the call returns
    Scratch ///< left to the system to write out; for files of one run
};

/// Puts the bytes in place of the file's content, or makes the file.
/// The bytes go to a temporary file beside the target, are flushed to the disk, and take the target's name
/// by a rename: whatever fails, the old or the new content stands, whole. The target's permissions stay as
/// they are, so a read-only file is replaced too and stays read-only. A link is written through to what it
/// leads to; of a file with several names only this one is replaced; a device or pipe is written straight.
/// False when the old content stands.
[[nodiscard]] bool ReplaceContent(const QString& path, std::string_view bytes,
                                  Durability durability = Durability::Flushed);

/// Copies one ordinary file over `to`, with the guarantees of `ReplaceContent`; the copy takes the
/// permissions of `from` and is writable by its owner. False if nothing was changed.
[[nodiscard]] bool CopyOneFile(const QString& from, const QString& to);

/// Moves a file, or a folder within its file system, over `to`. Between file systems a file is copied and
/// then deleted. Nothing is done when both are the same file. False if the move failed.
[[nodiscard]] bool MoveOneFile(const QString& from, const QString& to);

/// Deletes one file or link; never a folder. True if it is gone by this call.
bool DeleteOneFile(const QString& path);

/// Makes one folder level. True if a folder stands at the path afterwards.
[[nodiscard]] bool MakeOneFolder(const QString& path);

/// Deletes a folder with all that is in it. Links are deleted, what they lead to stays. A root folder is
/// refused. False if anything was left.
bool DeleteFolderTree(const QString& path);

/// Copies a folder with all its content to `to`, in whose place the copy is put when it is complete: an
/// existing folder there goes only then. Links are copied as what they lead to. False, with both folders
/// as they were, if anything cannot be copied, or if one folder lies inside the other.
[[nodiscard]] bool CopyFolderTree(const QString& from, const QString& to);

/// Names of the folder's files (not folders) that fit the pattern, sorted. `*` stands for any run of
/// characters and `?` for one; "*.*" fits every name.
[[nodiscard]] QStringList FindFiles(const QString& folder, const QString& pattern);

/// Date of the last change, local time; invalid if the file is missing.
[[nodiscard]] QDate LastWriteDate(const QString& path);

} // namespace vmk
