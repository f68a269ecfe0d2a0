#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <string_view>

/// What was searched for and put in: four lists, the newest text first, each with a file of its own.
///
/// A file is UTF-16, low byte first, without a byte-order mark; each entry is followed by U+000D. "<" and ">"
/// of an entry are stored as "&lt;" and "&gt;"; nothing else is escaped.
namespace vmk {

/// A list never grows beyond this by adding to it.
inline constexpr qsizetype MostHistoryEntries = 40;

/// Puts a text at the front of a list; one that is in it moves there, and the oldest fall off the end. A
/// blank text is ignored.
/// \return false if the list is as it was
bool AddToHistoryList(QStringList& list, const QString& text);

/// The entries of a history file's bytes; an odd last byte and empty entries count for nothing.
[[nodiscard]] QStringList DecodeHistory(std::string_view bytes);
/// The bytes of a history file. A line break within an entry is written as a line feed.
[[nodiscard]] std::string EncodeHistory(const QStringList& list);

/// One list of the window with its default file.
struct History
{
    QStringList entries;
    QString path;
    /// The file does not hold these entries: it is written when the list is saved.
    bool changed = false;
    /// The file is there and cannot be read: it is left alone.
    bool unreadable = false;
};

/// Reads a list from a file. A missing file yields an empty list.
/// \return false if the file is there and cannot be read
bool ReadHistoryFile(QStringList& list, const QString& path);
/// Writes a list to a file; an empty list leaves no file.
/// \return false if that failed; the file is as it was then
[[nodiscard]] bool WriteHistoryFile(const QStringList& list, const QString& path);

/// Reads a list from its default file.
void LoadHistory(History& history);
/// Writes a list to its default file if it has changed. A file that cannot be read or written stays.
/// \return false if the list could not be written
bool SaveHistory(History& history);

enum class HistoryMode
{
    Plain,
    RegExp
};

/// The lists under their files' names.
struct SearchHistories
{
    /// All empty; nothing is read yet.
    SearchHistories();

    History HisFind;
    History HisReplace;
    History HisFindRegExp;
    History HisReplaceRegExp;

    [[nodiscard]] History& find(HistoryMode mode)
    {
        return mode == HistoryMode::RegExp ? HisFindRegExp : HisFind;
    }
    [[nodiscard]] History& replace(HistoryMode mode)
    {
        return mode == HistoryMode::RegExp ? HisReplaceRegExp : HisReplace;
    }
    /// Reads both lists of a mode.
    void LoadHistories(HistoryMode mode);
    /// Writes both lists of a mode. \return false if one could not be written
    bool SaveHistories(HistoryMode mode);
};

} // namespace vmk
