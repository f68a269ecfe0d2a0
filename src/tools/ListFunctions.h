#pragma once

#include <QString>
#include <QStringList>

/// The user's lists of tags: text files with one tag per line.
namespace vmk {

/// Returns the trimmed lines of a list file without empty lines; nothing for a missing file and for a file of
/// at most four characters.
[[nodiscard]] QStringList ReadTagFile(const QString& path);

/// Replaces a list file by the trimmed lines that are not empty, each followed by CrLf.
/// \param kept  receives the written lines
/// \return false if the file could not be written; it is unchanged then
[[nodiscard]] bool WriteTagFile(const QStringList& lines, const QString& path, QStringList& kept);

/// Converts a text typed by the user to a tag: in lower case, with one pair of angle brackets and no blanks.
/// Returns an empty text if no name remains.
[[nodiscard]] QString InLineTagOf(const QString& text);

/// Returns the default list of tags to insert.
[[nodiscard]] QStringList DefaultFbTags();

} // namespace vmk
