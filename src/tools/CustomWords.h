#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <string_view>

namespace vmk {

/// The custom dictionary: words that the user has added. The file has one word per line, CR LF, in the
/// system's code page; a word that the code page lacks, or whose bytes would be valid UTF-8, is in UTF-8.

/// Returns the words of the bytes of the file, trimmed, without empty ones. A line that is valid UTF-8 is
/// decoded as such, any other by the system's code page. Byte order marks before a word are ignored.
[[nodiscard]] QStringList DecodeCustomWords(std::string_view bytes);
/// Returns the bytes of the file.
[[nodiscard]] std::string EncodeCustomWords(const QStringList& words);

/// The custom dictionary in memory. The number of entries is kept apart from the entries themselves, and the
/// two may differ; see `Remove` and `ClearAll`.
class CustomDictionary
{
public:
    /// The entries; the lookup searches all of them.
    QStringList CustomWords;
    /// The number that `AddWord` and `ListedWords` use.
    qsizetype CustomWordCount = 0;

    /// Reads a file; one that is missing, or cannot be read, is an empty dictionary.
    void LoadCustomWords(const QString& file);
    /// Writes all entries. A write error is not reported. Does nothing if the file exists and could not be
    /// read: its words would be lost.
    void SaveCustomWords(const QString& file) const;
    /// Writes the trimmed words of a list, without empty ones, in the same way.
    void SaveCustomWordsFromList(const QStringList& words, const QString& file) const;

    /// Returns true if the trimmed word is an entry, in the same case. False with a count of 0.
    [[nodiscard]] bool IsCustomWord(const QString& word) const;
    /// Increases the count and sets the entry with that number to the trimmed word. Missing entries before it
    /// are empty, entries after it are removed. Does nothing for blanks.
    void AddWord(const QString& word);
    /// Returns the entries up to number `CustomWordCount` that exist.
    [[nodiscard]] QStringList ListedWords() const;
    /// Replaces the entries after words were removed from the list. The count keeps its old value, by design.
    /// @param remaining the words of the list.
    /// @param removed the number of removed words.
    void Remove(const QStringList& remaining, qsizetype removed);
    /// Sets the count to 0. The entries stay until the next `AddWord`, by design.
    void ClearAll() { CustomWordCount = 0; }

private:
    void write(const QStringList& words, const QString& file) const;

    bool mayWrite = true;
};

} // namespace vmk
