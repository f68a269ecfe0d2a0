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
    /// Longer words are never right and have no suggestions, UTF-16 units.
    static constexpr qsizetype LongestWord = 100;

    /// Loads a dictionary, which may take a good part of a second.
    /// @param problem receives one plain line that says why the dictionary cannot be used.
    /// @return null for files that cannot be read or that are no dictionary: too large, without a word count,
    ///     in an unknown encoding, none of whose own words is right, or, for one that does not come with the
    ///     system, that crash or stall a process that tries them.
    [[nodiscard]] static std::unique_ptr<Speller> Load(const SpellDictionary& files, QString* problem);

    ~Speller();
    Speller(const Speller&) = delete;
    Speller& operator=(const Speller&) = delete;

    /// True if the dictionary accepts the word as it is written.
    [[nodiscard]] bool isRight(QStringView word);
    /// Words that may be meant, best first. May take more than a second for a long word.
    [[nodiscard]] QStringList suggestions(QStringView word);
    /// The letters that the dictionary names as worth trying in place of others, most frequent first; may be
    /// empty.
    [[nodiscard]] const QString& tryLetters() const;

private:
    class Engine;
    explicit Speller(std::unique_ptr<Engine> loadedEngine);

    std::unique_ptr<Engine> engine;
};

} // namespace vmk
