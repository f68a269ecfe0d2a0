#pragma once

#include <QDateTime>
#include <QString>

namespace vmk {

/// The state of a file by which a change through another program is detected.
struct FileState
{
    qint64 bytes = -1; ///< -1 for a file that does not exist
    qint64 modified = 0; ///< the time of the last change, in nanoseconds since 1970
    quint64 device = 0;
    quint64 inode = 0;
    quint64 names = 0; ///< the number of its hard links

    [[nodiscard]] bool exists() const { return bytes >= 0; }
    /// The time of the last change as local time; invalid for a file that does not exist.
    [[nodiscard]] QDateTime time() const;

    /// Compares all but the number of names, which changes without the content.
    friend bool operator==(const FileState& a, const FileState& b)
    {
        return a.bytes == b.bytes && a.modified == b.modified && a.device == b.device && a.inode == b.inode;
    }
};

/// Returns the state of a regular file; links are followed. Anything else counts as missing.
[[nodiscard]] FileState StateOfFile(const QString& path);

/// Returns the path of an existing file or folder without links; empty if there is none.
[[nodiscard]] QString RealPath(const QString& path);

} // namespace vmk
