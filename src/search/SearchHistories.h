#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <string_view>

/// The texts of former searches and replacements: four lists, the newest text first, each with its own file.
///
/// A file is UTF-16, low byte first, without a byte-order mark; each entry is followed by U+000D. "<" and ">"
/// of an entry are stored as "&lt;" and "&gt;"; nothing else is escaped.
namespace vmk {

/// The maximum number of entries after one was added.
inline constexpr qsizetype MostHistoryEntries = 40;

/// Inserts a text at the start of a list, or moves it there if the list contains it; removes the oldest
/// entries of a list that is too long. A blank text is ignored.
/// \return false if the list is unchanged
bool AddToHistoryList(QStringList& list, const QString& text);

/// Returns the entries of the bytes of a history file; an odd last byte and empty entries are ignored.
[[nodiscard]] QStringList DecodeHistory(std::string_view bytes);
/// Returns the bytes of a history file. A line break within an entry is written as a line feed.
[[nodiscard]] std::string EncodeHistory(const QStringList& list);

/// One list of the window with its default file.
struct History
{
    QStringList entries;
    QString path;
    /// The entries differ from the file, which is written when the list is saved.
    bool changed = false;
    /// The file exists but cannot be read: it is never overwritten.
    bool unreadable = false;
};

/// Reads a list from a file. A missing file yields an empty list.
/// \return false if the file exists but cannot be read
bool ReadHistoryFile(QStringList& list, const QString& path);
/// Writes a list to a file; an empty list leaves no file.
/// \return false on failure, with the file unchanged
[[nodiscard]] bool WriteHistoryFile(const QStringList& list, const QString& path);

/// Reads a list from its default file.
void LoadHistory(History& history);
/// Writes a list to its default file if it has changed. A file that cannot be read or written is unchanged.
/// \return false if the list could not be written
bool SaveHistory(History& history);

enum class HistoryMode
{
    Plain,
    RegExp
};

/// The four lists, named as the variables of their files.
struct SearchHistories
{
    /// Creates empty lists, without reading files.
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
    /// Writes both lists of a mode.
    /// \return false if one could not be written
    bool SaveHistories(HistoryMode mode);
};

} // namespace vmk
