#pragma once

#include <QString>
#include <QStringList>

/// The user's lists of tags: text files with one tag a line.
namespace vmk {

/// The lines of a list file, trimmed, without the empty ones. Empty for a missing file, and for one of at
/// most four characters.
[[nodiscard]] QStringList ReadTagFile(const QString& path);

/// Replaces a list file by the trimmed lines that are not empty, each with CrLf after it.
/// @param kept set to the lines as they were written
/// @return false if the file could not be written; the old one stays then.
[[nodiscard]] bool WriteTagFile(const QStringList& lines, const QString& path, QStringList& kept);

/// The tag that a user means by `text`: in small letters, with one pair of angle brackets and no blanks.
/// Empty when nothing is left.
[[nodiscard]] QString InLineTagOf(const QString& text);

/// The tags that a new user finds in the list of tags to insert.
[[nodiscard]] QStringList DefaultFbTags();

} // namespace vmk
