#pragma once

#include "CustomWords.h"
#include "SpellChecker.h"
#include "SpellWords.h"
#include "TextRange.h"

#include <QString>

#include <cstdint>
#include <deque>
#include <memory>

namespace vmk {

/// The suspicious words of a text, searched only as far as requested.
class ProofreadingErrors
{
public:
    struct Error
    {
        QString Text;
        qsizetype Start = 0; ///< UTF-16 units from 0.
    };

    ProofreadingErrors(QString checkedText, SpellChecker& wordChecker);
    ProofreadingErrors(const ProofreadingErrors&) = delete;
    ProofreadingErrors& operator=(const ProofreadingErrors&) = delete;

    /// Returns an error by its number in reading order, from 1; null if there are fewer.
    [[nodiscard]] const Error* Item(int32_t index);

private:
    const QString text;
    SpellChecker& checker;
    SpellWords words;
    std::deque<Error> found; ///< A container whose elements are not moved when more are added.
};

/// The window of a spell check, called by the walk.
class SpellCheckWindow
{
public:
    /// Shows a report, painted before the call returns.
    virtual void showReport(const QString& text) = 0;
    virtual void hideReport() = 0;
    /// Shows a suspicious word and requests suggestions.
    virtual void showWord(const QString& word) = 0;
    /// Clears the word, its replacement and the suggestions.
    virtual void clearWord() = 0;
    virtual void setStartEnabled(bool enabled) = 0;
    /// Closes the window because there is no dictionary.
    virtual void unload() = 0;

protected:
    ~SpellCheckWindow() = default;
};

/// The spell check of a display: the walk from one suspicious word to the next, without a window.
///
/// The text is checked in chunks of 200 words. `SpellArea` is what remains of the area, `SpellChunk` the
/// chunk and, at a hit, its word. The text of the display changes only by `Replace`.
class SpellCheckWalk
{
public:
    /// Both must outlive the object.
    SpellCheckWalk(SpellCheckWindow& shownIn, SpellShelf& dictionaries);

    // ---- the area

    /// Sets the area at an activation of the window: the selection, or without one the whole text.
    void TakeArea(DisplayDocument& document);
    /// Selects the dictionaries for the book in the display and starts to load them.
    void Prepare(const DisplayDocument& document);
    /// Sets the area to the selection, or to all text after the caret, and finds its first suspicious word.
    void Start(DisplayDocument& document);

    // ---- the walk

    /// Checks `SpellChunk` and the chunks after it up to the next hit or the end of the area.
    /// @param continueCheck in: 0 starts with the first error of the chunk, any other value with the next
    /// one;
    ///     out: 0.
    void HtmlSpellCheck(int16_t& continueCheck);
    void Continue();
    /// Replaces the word of the hit and continues. An empty text deletes the word.
    void Replace(const QString& newText);
    /// Adds a word to the custom dictionary, writes the dictionary and continues. Does nothing for an empty
    /// word.
    void Add(const QString& word);
    /// Shows the final report.
    void FinishSpellCheck();
    /// Releases errors and ranges.
    /// @param quitWord the dictionaries are no longer needed.
    void CloseSpellDocument(bool quitWord);
    /// Ends the check because the display shows another page.
    void PageReplaced();

    /// Returns true from a hit until it is replaced, ignored or added.
    [[nodiscard]] bool isAtHit() const { return atHit; }
    /// Returns the suspicious word after that of the hit, if it is in the same chunk; otherwise empty.
    [[nodiscard]] QString followingWord();
    /// Returns the selected dictionaries.
    [[nodiscard]] const SpellDictionaries& dictionaries() const { return chosen; }

    CustomDictionary Custom;
    QString SearchAreaText;
    int16_t CheckedCount = 0;
    int16_t ReplacedInChunk = 0;
    int32_t ErrorIndex = 0;
    int32_t WordsFound = 0;
    int16_t WordsReplaced = 0;
    /// The number of characters by which replacements have made the chunk longer.
    int32_t PositionShift = 0;
    bool HitFound = false;
    bool WordLoaded = false;
    std::unique_ptr<ProofreadingErrors> SpellErrors;
    TextRange SpellChunk;
    TextRange SpellArea;

private:
    void LimitChunk();
    [[nodiscard]] bool startWord();
    void reportProblems();
    void checkChunks();
    [[nodiscard]] bool collectErrors();
    [[nodiscard]] bool walk();
    [[nodiscard]] bool nextChunk();
    void passOver(const ProofreadingErrors::Error& error);
    void showHit(const ProofreadingErrors::Error& error);
    void moveTo(const ProofreadingErrors::Error& error);
    [[nodiscard]] QString counts() const;

    SpellCheckWindow& window;
    SpellShelf& shelf;
    SpellChecker checker;
    SpellDictionaries chosen;
    QStringList reportedProblems;
    bool atHit = false;
};

} // namespace vmk
