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

/// Verdicts on the words of one book, remembered for each word, and suggestions. For one thread.
class SpellChecker
{
public:
    /// @param loadedDictionaries where the dictionaries are; must outlive the checker.
    explicit SpellChecker(SpellShelf& loadedDictionaries);

    /// Sets which dictionaries judge. Verdicts are kept if they are the same as before.
    void setDictionaries(const SpellDictionaries& chosen);
    /// Begins to load the dictionaries that a book in the chosen language is likely to need.
    void prepare();
    /// True if there is any dictionary at all; waits for it to be loaded.
    [[nodiscard]] bool hasDictionary();

    /// The verdict on one word as `SpellWords` cuts it. Soft hyphens, stress marks and the kind of apostrophe
    /// and hyphen make no difference. A compound with hyphens is right if it is known as a whole, or if all
    /// its parts are. A word in a script without a dictionary is not suspicious.
    [[nodiscard]] bool isSuspicious(QStringView word);
    /// What may be meant, best first. May take more than a second.
    [[nodiscard]] QStringList suggestions(QStringView word);
    /// The right words among those that `NearWords` makes.
    /// @param goOn is asked now and then; false ends the search with what was found so far.
    [[nodiscard]] QStringList nearWords(QStringView word, const std::function<bool()>& goOn);

private:
    struct WordHash
    {
        using is_transparent = void;
        size_t operator()(std::u16string_view word) const { return std::hash<std::u16string_view>()(word); }
    };

    [[nodiscard]] bool isRight(const QString& word);
    [[nodiscard]] bool isRightPart(QStringView part);
    [[nodiscard]] Speller* spellerFor(QStringView word);

    SpellShelf& shelf;
    SpellDictionaries dictionaries;
    std::map<QChar::Script, std::shared_ptr<Speller>> spellers; ///< Null for a script without a dictionary.
    std::unordered_map<std::u16string, bool, WordHash, std::equal_to<>> verdicts;
};

} // namespace vmk
