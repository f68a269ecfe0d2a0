#pragma once

#include "SpellDictionaries.h"
#include "SpellShelf.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace vmk {

class Speller;

/// Decides whether the words of a book are suspicious, remembers each verdict, and suggests words. For one
/// thread.
class SpellChecker
{
public:
    /// @param loadedDictionaries must outlive the checker.
    explicit SpellChecker(SpellShelf& loadedDictionaries);

    /// Sets the dictionaries. If they are the same as before, the verdicts are kept.
    void setDictionaries(const SpellDictionaries& chosen);
    /// Starts to load the dictionaries that a book in the chosen language is likely to need.
    void prepare();
    /// Returns true if any dictionary can be loaded; waits for the first one.
    [[nodiscard]] bool hasDictionary();

    /// Returns the verdict on a word of `SpellWords`. Soft hyphens, stress marks and the kind of apostrophe
    /// and hyphen make no difference. A compound with hyphens is right if it is known as a whole, or if all
    /// its parts are. A word in a script without a dictionary is not suspicious.
    [[nodiscard]] bool isSuspicious(QStringView word);
    /// Returns the words that may be meant, best first. Can take more than a second.
    [[nodiscard]] QStringList suggestions(QStringView word);
    /// Returns the right words among those of `NearWords`.
    /// @param goOn called repeatedly; false ends the search with the words found so far.
    [[nodiscard]] QStringList nearWords(QStringView word, const std::function<bool()>& goOn);

private:
    struct WordHash
    {
        using is_transparent = void;
        size_t operator()(std::u16string_view word) const { return std::hash<std::u16string_view>()(word); }
    };

    [[nodiscard]] std::vector<SpellDictionary> likelyDictionaries() const;
    [[nodiscard]] bool isRight(const QString& word);
    [[nodiscard]] bool isRightPart(QStringView part);
    [[nodiscard]] Speller* spellerFor(QStringView word);

    SpellShelf& shelf;
    SpellDictionaries dictionaries;
    std::map<QChar::Script, std::shared_ptr<Speller>> spellers; ///< Null for a script without a dictionary.
    std::unordered_map<std::u16string, bool, WordHash, std::equal_to<>> verdicts;
};

} // namespace vmk
