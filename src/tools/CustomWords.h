#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <string_view>

namespace vmk {

/// The custom dictionary: words that the user has declared right. One word a line, CR LF, in the system's
/// code page; a word that the page lacks, or whose bytes would read as UTF-8, is in UTF-8.

/// The words of the file's bytes, trimmed, without empty ones. A line that is valid UTF-8 is taken as such,
/// any other as the system's code page.
[[nodiscard]] QStringList DecodeCustomWords(std::string_view bytes);
[[nodiscard]] std::string EncodeCustomWords(const QStringList& words);

/// The custom dictionary in memory. The number of entries is kept apart from the entries themselves, and the
/// two may differ; see `Remove` and `ClearAll`.
class CustomDictionary
{
public:
    /// The entries; their number is the upper bound of the lookup.
    QStringList CustomWords;
    /// What `AddWord` and `ListedWords` go by.
    qsizetype CustomWordCount = 0;

    /// Reads a file; one that is missing, or cannot be read, is an empty dictionary.
    void LoadCustomWords(const QString& file);
    /// Writes all entries. A write error is not reported. Does nothing if the file exists and could not be
    /// read: its words would be lost.
    void SaveCustomWords(const QString& file) const;
    /// Writes the trimmed words of a list, without empty ones, in the same way.
    void SaveCustomWordsFromList(const QStringList& words, const QString& file) const;

    /// True if the trimmed word is an entry, in the same case. Never with a count of 0.
    [[nodiscard]] bool IsCustomWord(const QString& word) const;
    /// Counts one more and makes the trimmed word the entry of that number; entries up to it that do not
    /// exist become empty, entries after it are dropped. Nothing for blanks.
    void AddWord(const QString& word);
    /// The entries from the first to number `CustomWordCount`, as far as they exist.
    [[nodiscard]] QStringList ListedWords() const;
    /// Entries removed in the list of words.
    /// @param remaining what the list still holds.
    /// @param removed how many went. The count keeps its old value, by design.
    void Remove(const QStringList& remaining, qsizetype removed);
    /// Sets the count to 0. The entries stay until the next `AddWord`, by design.
    void ClearAll() { CustomWordCount = 0; }

private:
    void write(const QStringList& words, const QString& file) const;

    bool mayWrite = true;
};

} // namespace vmk
