#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <memory>

namespace vmk {

struct SpellDictionary;

/// One dictionary, loaded into Hunspell. Nothing else in the program uses Hunspell.
///
/// A speller may move between threads, but only one thread may use it at a time.
class Speller
{
public:
    /// Longer words, in UTF-16 units, are never right and have no suggestions.
    static constexpr qsizetype LongestWord = 100;

    /// Loads a dictionary, which can take some tenths of a second.
    /// @param problem receives one line with the reason if the dictionary cannot be used.
    /// @return null for files that cannot be read or that are no dictionary: too large, without a word count,
    ///     in an unknown encoding, without a word that is right by it, or, unless it belongs to the system,
    ///     with a content that ends or stalls the process that tries it.
    [[nodiscard]] static std::unique_ptr<Speller> Load(const SpellDictionary& files, QString* problem);

    ~Speller();
    Speller(const Speller&) = delete;
    Speller& operator=(const Speller&) = delete;

    /// Returns true if the dictionary accepts the word.
    [[nodiscard]] bool isRight(QStringView word);
    /// Returns words that may be meant, best first. Can take more than a second for a long word.
    [[nodiscard]] QStringList suggestions(QStringView word);
    /// Returns the letters that the dictionary lists for corrections, most frequent first; may be empty.
    [[nodiscard]] const QString& tryLetters() const;

private:
    class Engine;
    explicit Speller(std::unique_ptr<Engine> loadedEngine);

    std::unique_ptr<Engine> engine;
};

} // namespace vmk
