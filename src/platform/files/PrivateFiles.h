#pragma once

#include "PosixFile.h"

#include <QString>

#include <string>
#include <string_view>

/// Files that the program keeps for itself: journals and earlier versions. They are readable for their owner
/// only, and a link that somebody has planted in their place is not followed.
namespace vmk {

/// Creates a folder, one level, for this user only. Returns true if it exists afterwards as a real folder of
/// this user, not as a link.
[[nodiscard]] bool MakePrivateFolder(const QString& path);

/// Returns whether a real folder of this user, not a link to one, exists at the path.
[[nodiscard]] bool IsPrivateFolder(const QString& path);

/// Removes a folder that is empty. Returns true if this call removed it.
bool RemoveEmptyFolder(const QString& path);

/// A file that one process writes and that no other process uses meanwhile. The lock ends with the process,
/// however it ends, so that a locked file belongs to a living process.
class LockedFile
{
public:
    /// Creates and locks a new file. Fails if anything exists at the path.
    [[nodiscard]] static LockedFile create(const QString& path);
    /// Opens and locks an existing regular file of this user. Fails if another process has locked it.
    [[nodiscard]] static LockedFile open(const QString& path);

    explicit operator bool() const { return bool(handle); }
    [[nodiscard]] const QString& path() const { return filePath; }
    /// The system's message for the last failure.
    [[nodiscard]] const QString& reason() const { return lastReason; }

    /// Returns the whole content; an empty text on failure.
    [[nodiscard]] std::string read();
    /// Writes at the end of the file. After a failure, part of the bytes may be written.
    [[nodiscard]] bool append(std::string_view bytes);
    /// Waits until the content is on the disk.
    [[nodiscard]] bool flush();
    /// Renames the file, over an existing one, and waits until the new name is on the disk.
    [[nodiscard]] bool rename(const QString& path);
    /// Removes the file from its folder, and closes it.
    bool remove();
    /// Closes the file and ends the lock.
    void close();

private:
    [[nodiscard]] bool fail();

    Descriptor handle;
    QString filePath;
    QString lastReason;
};

/// The content of a second file that is kept.
enum class KeptAs
{
    Nothing, ///< it could not be kept
    Link, ///< a second name of the same file
    Copy, ///< a copy that shares the blocks on the disk where the file system allows it
};

/// Keeps the content of a regular file under another name, which must not exist. A hard link if `mayLink` and
/// the file is the user's and has no other name, because a program that writes into the file would change
/// both; otherwise a copy with the permissions and the time of the file. \param reason  receives the system's
/// message on failure
[[nodiscard]] KeptAs KeepFileAs(const QString& from, const QString& to, bool mayLink, QString& reason);

} // namespace vmk
