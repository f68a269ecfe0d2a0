#pragma once

#include <QString>
#include <QStringView>

namespace vmk {

/// Cuts a text into the words that a spell check looks at, in reading order.
///
/// A word is made of letters, with single apostrophes and hyphens between them. Soft hyphens, marks such as
/// stress accents, and other invisible characters inside a word belong to it. Passed over are words with
/// digits, words in capitals only, web and mail addresses, and paths. A lone surrogate separates words.
///
/// The cost is proportional to the text's length, whatever it holds.
class SpellWords
{
public:
    /// @param checkedText must outlive the object.
    explicit SpellWords(QStringView checkedText)
        : text(checkedText)
    {
    }

    /// Goes to the next word; false at the end of the text.
    [[nodiscard]] bool next();
    /// Position of the word in the text, UTF-16 units from 0.
    [[nodiscard]] qsizetype start() const { return wordStart; }
    /// UTF-16 units.
    [[nodiscard]] qsizetype length() const { return wordEnd - wordStart; }
    [[nodiscard]] QStringView word() const { return text.mid(wordStart, length()); }

private:
    void enterRun(qsizetype from);
    void takeToken();

    QStringView text;
    qsizetype at = 0; ///< Everything before has been looked at.
    qsizetype runEnd = 0; ///< End of the piece without blanks around `at`.
    qsizetype addressStart = 0; ///< Where an address begins in that piece; `runEnd` for none.
    qsizetype wordStart = 0;
    qsizetype wordEnd = 0;
    bool hasDigit = false; ///< About the token from `wordStart` to `wordEnd`, as is the next one.
    bool isCapitals = false;
};

/// True if a word that reaches over `position` would be cut there.
[[nodiscard]] bool IsInsideSpellWord(QStringView text, qsizetype position);

/// True if the word's letters are capitals, at least one.
[[nodiscard]] bool IsInCapitals(QStringView word);

/// True for the hyphens that join the parts of a word.
[[nodiscard]] bool IsWordHyphen(QChar c);
/// True for the straight and the curly apostrophe, the letter apostrophe and the prime.
[[nodiscard]] bool IsWordApostrophe(QChar c);

/// True for what a word contains without being changed by it: soft hyphens and other invisible characters.
[[nodiscard]] bool IsInvisibleInWord(char32_t c);

} // namespace vmk
