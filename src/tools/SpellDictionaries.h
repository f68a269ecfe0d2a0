#pragma once

#include "SpellDictionary.h"

#include <QChar>
#include <QString>

#include <vector>

namespace vmk {

/// Which of the installed dictionaries judge the words of a book.
///
/// The main dictionary is that of the book's language or, if there is none, of the user's language. It judges
/// the words in its script. Words in another script are judged by the usual language of that script: English
/// for Latin, Russian for Cyrillic; where that is missing, by the user's language, then by any dictionary of
/// the script.
class SpellDictionaries
{
public:
    /// @param bookLanguage the book's language tag, such as "ru" or "en-GB"; may be empty.
    /// @param userLocale the name of the user's locale, such as "de_DE".
    SpellDictionaries(std::vector<SpellDictionary> installedDictionaries, const QString& bookLanguage,
                      const QString& userLocale);

    /// The dictionaries for the words of a script, best first: the second one is for the case that the first
    /// cannot be loaded. Empty if none is installed.
    [[nodiscard]] std::vector<SpellDictionary> ofScript(QChar::Script script) const;
    /// The same for the book itself; empty if neither its language nor the user's has a dictionary.
    [[nodiscard]] std::vector<SpellDictionary> main() const;

    /// All that are installed.
    [[nodiscard]] const std::vector<SpellDictionary>& all() const { return installed; }

    bool operator==(const SpellDictionaries&) const = default;

private:
    [[nodiscard]] std::vector<SpellDictionary> ofTag(const QString& tag) const;

    std::vector<SpellDictionary> installed;
    QString bookTag;
    QString userTag;
};

} // namespace vmk
