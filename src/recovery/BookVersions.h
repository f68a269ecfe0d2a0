#pragma once

#include "Files.h"

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <string_view>
#include <vector>

/// Earlier versions of saved books, in the folder `VMK Office/Backup`. Each book has a folder of its own
/// there, named after the book and a checksum of its path.
namespace vmk {

/// The newest versions of a book that are kept.
inline constexpr int MostVersions = 10;
/// The versions of all books together, in bytes; the oldest are removed first.
inline constexpr std::uint64_t MostVersionBytes = 500ULL * 1024 * 1024;

/// The folder of the open program's workspace for the versions, and for the old content of a book that is
/// overwritten in place.
[[nodiscard]] QString BackupFolder();

/// An earlier version of a book.
struct BookVersion
{
    QString path; ///< of the file that holds it
    QDateTime time; ///< when it was written as the book
    qint64 bytes = 0;
};

/// The result of keeping a version.
struct KeptVersion
{
    bool isSafe = false; ///< The present content is in the folder, or there is nothing to keep.
    QString path; ///< of the new version; empty if there was nothing to keep
    QString reason; ///< why it could not be kept
};

/// How a version is made.
enum class VersionBy
{
    LinkOrCopy, ///< a hard link if possible; the file must then be replaced by a rename
    Copy
};

/// Keeps the present content of a book's file as a version, before the file is replaced. Afterwards removes
/// the versions beyond the limits, except for the new one.
/// \param backupFolder  created if its parent exists
[[nodiscard]] KeptVersion KeepVersion(const QString& backupFolder, const QString& book,
                                      VersionBy way = VersionBy::LinkOrCopy);

/// Replaces a book's file, and keeps its old content as a version. A version that cannot be kept does not
/// prevent this. Nothing is kept if the content stays the same.
/// \param kept  receives the version; `isSafe` is false if it could not be kept
WriteResult ReplaceBook(const QString& backupFolder, const QString& book, std::string_view bytes,
                        KeptVersion& kept);

/// Returns the versions of a book, newest first.
[[nodiscard]] std::vector<BookVersion> VersionsOf(const QString& backupFolder, const QString& book);

} // namespace vmk
