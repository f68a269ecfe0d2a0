#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <string>
#include <string_view>

/// Files as the system presents them. All POSIX code is in this folder; the rest of the program uses
/// `FileOperations.h`.
namespace vmk {

/// The kind of a directory entry.
enum class FileKind
{
    None, ///< does not exist, or is not accessible
    File, ///< a regular file
    Folder,
    Other ///< a device, a pipe or a socket
};

/// The result of reading a file.
enum class ReadOutcome
{
    Ok,
    Missing,
    IsFolder,
    Unreadable,
    TooLarge
};

/// The content of a file, or the reason why it could not be read.
struct FileContent
{
    ReadOutcome outcome = ReadOutcome::Ok;
    std::string bytes;
    /// The system's error message for `Unreadable`, otherwise empty.
    QString systemReason;
};

/// Larger files are refused: positions in a book are 32-bit.
inline constexpr std::size_t MaxFileBytes = 0x7fffffff;

/// Returns the kind of file at the path; links are followed. `None` for a dangling link.
[[nodiscard]] FileKind KindOfFile(const QString& path);

/// Returns whether a directory entry with this name exists; a dangling link counts.
[[nodiscard]] bool EntryExists(const QString& path);

/// Returns whether both paths refer to the same existing file or folder.
[[nodiscard]] bool IsSameFile(const QString& a, const QString& b);

/// Returns whether the process can create files in the folder.
[[nodiscard]] bool IsFolderWritable(const QString& folder);

/// Reads a complete file, device or pipe, up to `MaxFileBytes`.
[[nodiscard]] FileContent ReadContent(const QString& path);

/// Returns one line for the user: "file not found", "is a folder", "cannot be read: ..."; empty for `Ok`.
[[nodiscard]] QString ReadFailureText(const FileContent& content);

/// Whether a write must survive a crash of the machine.
enum class Durability
{
    Flushed, ///< on the disk before the call returns
    Scratch ///< the system writes it later; for files of one run
};

/// Replaces the content of a file, or creates the file.
///
/// The bytes are written to a temporary file next to the target, flushed to the disk, and renamed to the
/// target. After any failure, the file contains either all of the old or all of the new content. The
/// permissions of the target are kept, so that a read-only file is replaced too and remains read-only. A link
/// is followed to its target. Of a file with several names, only this name is replaced. A device or pipe is
/// written directly.
/// \return false if the old content is unchanged
[[nodiscard]] bool ReplaceContent(const QString& path, std::string_view bytes,
                                  Durability durability = Durability::Flushed);

/// Copies one regular file over `to`, with the guarantees of `ReplaceContent`. The copy has the permissions
/// of `from` and is writable by its owner.
/// \return false if nothing was changed
[[nodiscard]] bool CopyOneFile(const QString& from, const QString& to);

/// Moves a file, or a folder within its file system, over `to`. Between file systems a file is copied and
/// then deleted. Does nothing if both are the same file.
/// \return false if the move failed
[[nodiscard]] bool MoveOneFile(const QString& from, const QString& to);

/// Deletes one file or link, never a folder. Returns true if this call deleted it.
bool DeleteOneFile(const QString& path);

/// Creates one folder level. Returns true if a folder exists at the path afterwards.
[[nodiscard]] bool MakeOneFolder(const QString& path);

/// Deletes a folder with its content. Links are deleted, their targets are not. A root folder is refused.
/// \return false if anything remains
bool DeleteFolderTree(const QString& path);

/// Copies a folder with its content to `to`. The complete copy then replaces `to`; an existing folder there
/// is deleted only at that point. Links are copied as their targets.
/// \return false, with both folders unchanged, if anything cannot be copied, or if one folder is inside the
///         other
[[nodiscard]] bool CopyFolderTree(const QString& from, const QString& to);

/// Returns the sorted names of the folder's files (not folders) that match the pattern. `*` matches any run
/// of characters and `?` matches one; "*.*" matches every name.
[[nodiscard]] QStringList FindFiles(const QString& folder, const QString& pattern);

/// Returns the date of the last change in local time; invalid if the file is missing.
[[nodiscard]] QDate LastWriteDate(const QString& path);

} // namespace vmk
