#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

/// Files as the system presents them. Names are those of `FileNames.h`. All POSIX code is in this folder; the
/// rest of the program uses `FileOperations.h`.
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

/// The result of a write: true if it succeeded.
class [[nodiscard]] WriteResult
{
public:
    WriteResult() = default;
    /// A failure. `reason` is one line for the user, such as "No space left on device".
    explicit WriteResult(QString reason)
        : failure(std::move(reason))
    {
    }

    explicit operator bool() const { return failure.isEmpty(); }
    /// Empty after a success.
    [[nodiscard]] const QString& Failure() const { return failure; }

private:
    QString failure;
};

/// Replaces the content of a file, or creates the file.
///
/// The bytes are written to a temporary file next to the target, flushed to the disk, and renamed to the
/// target. After any failure, the file contains either all of the old or all of the new content. The
/// permissions of the target are kept, so that a read-only file is replaced too and remains read-only. A link
/// is followed to its target. Of a file with several names, only this name is replaced. A device or pipe is
/// written directly. A flushed write also removes the temporary files next to the target that killed
/// processes left.
/// \param backupFolder  where a copy of the old content is kept, if the folder of a writable file accepts no
///                      other file: the file is then overwritten in place. The last copy of each file stays.
///                      The folder is created if it is missing. If empty, such a file is not written.
/// \return a failure if the old content is unchanged
WriteResult ReplaceContent(const QString& path, std::string_view bytes,
                           Durability durability = Durability::Flushed, const QString& backupFolder = {});

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

/// Returns the size in bytes; 0 for a missing file.
[[nodiscard]] qint64 SizeOfFile(const QString& path);

/// Returns the path from the root for one from the current folder.
[[nodiscard]] QString AbsolutePath(const QString& path);

} // namespace vmk
