#pragma once

#include "SpellDictionary.h"

#include <QChar>
#include <QString>

#include <vector>

namespace vmk {

/// Selects the dictionaries for the words of a book.
///
/// The main dictionary is that of the book's language or, if there is none, of the user's language. It is
/// used for the words in its script. For words in another script, the usual language of that script is used:
/// English for Latin, Russian for Cyrillic; without its dictionary the user's language, then any dictionary
/// of the script.
class SpellDictionaries
{
public:
    /// @param bookLanguage the book's language tag, such as "ru" or "en-GB"; may be empty.
    /// @param userLocale the name of the user's locale, such as "de_DE".
    SpellDictionaries(std::vector<SpellDictionary> installedDictionaries, const QString& bookLanguage,
                      const QString& userLocale);

    /// Returns the dictionaries for the words of a script, best first: the second is used if the first cannot
    /// be loaded. Empty if none is installed.
    [[nodiscard]] std::vector<SpellDictionary> ofScript(QChar::Script script) const;
    /// Returns the dictionaries for the book's language or, without one, for the user's, in the same order.
    [[nodiscard]] std::vector<SpellDictionary> main() const;

    /// Returns all installed dictionaries.
    [[nodiscard]] const std::vector<SpellDictionary>& all() const { return installed; }

    bool operator==(const SpellDictionaries&) const = default;

private:
    [[nodiscard]] std::vector<SpellDictionary> ofTag(const QString& tag) const;

    std::vector<SpellDictionary> installed;
    QString bookTag;
    QString userTag;
};

} // namespace vmk
