#pragma once

#include <QString>
#include <QStringView>

namespace vmk {

/// Divides a text into the words of a spell check, in reading order.
///
/// A word consists of letters, with single apostrophes and hyphens between them. Soft hyphens, marks such as
/// stress accents, and other invisible characters inside a word belong to it. Words with digits, words in
/// capitals only, web and mail addresses and paths are skipped. A lone surrogate separates words, and so does
/// the border between a script without blanks, such as Chinese, and any other script.
///
/// The cost is proportional to the length of any text.
class SpellWords
{
public:
    /// @param checkedText must outlive the object.
    explicit SpellWords(QStringView checkedText)
        : text(checkedText)
    {
    }

    /// Advances to the next word. Returns false at the end of the text.
    [[nodiscard]] bool next();
    /// Returns the position of the word in the text, in UTF-16 units from 0.
    [[nodiscard]] qsizetype start() const { return wordStart; }
    /// Returns the length in UTF-16 units.
    [[nodiscard]] qsizetype length() const { return wordEnd - wordStart; }
    [[nodiscard]] QStringView word() const { return text.mid(wordStart, length()); }

private:
    void enterRun(qsizetype from);
    void takeToken();

    QStringView text;
    qsizetype at = 0; ///< Everything before is done.
    qsizetype runEnd = 0; ///< The end of the run without blanks around `at`.
    qsizetype addressStart = 0; ///< The start of the first address in the run; `runEnd` for none.
    qsizetype wordStart = 0;
    qsizetype wordEnd = 0;
    bool hasDigit = false; ///< Of the token from `wordStart` to `wordEnd`, as the next member.
    bool isCapitals = false;
};

/// Returns true if `position` is inside a word.
[[nodiscard]] bool IsInsideSpellWord(QStringView text, qsizetype position);

/// Returns true if a word has letters and all of them are capitals.
[[nodiscard]] bool IsInCapitals(QStringView word);

/// Returns true for the hyphens that join the parts of a word.
[[nodiscard]] bool IsWordHyphen(QChar c);
/// Returns true for the straight and the curly apostrophe, the letter apostrophe and the prime.
[[nodiscard]] bool IsWordApostrophe(QChar c);

/// Returns true for soft hyphens and other invisible characters, which do not change a word.
[[nodiscard]] bool IsInvisibleInWord(char32_t c);

} // namespace vmk
