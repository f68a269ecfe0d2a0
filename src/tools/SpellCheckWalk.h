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

/// The suspicious words of a text, found as far as they are asked for.
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

    /// The error of that number, from 1, in reading order; null if there are fewer.
    [[nodiscard]] const Error* Item(int32_t index);

private:
    const QString text;
    SpellChecker& checker;
    SpellWords words;
    std::deque<Error> found; ///< Errors stay where they are when more are found.
};

/// What a spell check shows while it walks.
class SpellCheckWindow
{
public:
    /// Shows a report, painted before the call returns.
    virtual void showReport(const QString& text) = 0;
    virtual void hideReport() = 0;
    /// Shows a suspicious word and looks for suggestions.
    virtual void showWord(const QString& word) = 0;
    /// Empties the word, its replacement and the suggestions.
    virtual void clearWord() = 0;
    virtual void setStartEnabled(bool enabled) = 0;
    /// Closes the window: there is nothing to check with.
    virtual void unload() = 0;

protected:
    ~SpellCheckWindow() = default;
};

/// The spell check of a display: the walk from one suspicious word to the next, without a window.
///
/// The text is checked in chunks of 200 words. `SpellArea` is what remains of the area, `SpellChunk` the
/// chunk and, at a hit, the word in question. The text of the display changes only by `Replace`.
class SpellCheckWalk
{
public:
    /// Both must outlive the object.
    SpellCheckWalk(SpellCheckWindow& shownIn, SpellShelf& dictionaries);

    // ---- the area

    /// The first setting, at each activation of the window: the selection, or the whole text without one.
    void TakeArea(DisplayDocument& document);
    /// Chooses the dictionaries for the book that the display shows and begins to load them.
    void Prepare(const DisplayDocument& document);
    /// Takes the selection as the area, or all from the caret on, and goes to its first suspicious word.
    void Start(DisplayDocument& document);

    // ---- the walk

    /// Zero: checks `SpellChunk`. Otherwise: goes on to the next error of the chunk; the flag is then zero.
    /// Ends at a hit or at the end of the area.
    void HtmlSpellCheck(int16_t& continueCheck);
    void Continue();
    /// Replaces the word in question and goes on. An empty text deletes the word.
    void Replace(const QString& newText);
    /// Adds a word to the custom dictionary, writes it and goes on. Nothing happens for an empty word.
    void Add(const QString& word);
    /// The final report.
    void FinishSpellCheck();
    /// Forgets errors and ranges.
    /// @param quitWord the dictionaries are no longer needed.
    void CloseSpellDocument(bool quitWord);
    /// Another page is shown: what was found has no place in it.
    void PageReplaced();

    /// True from a hit until it is dealt with.
    [[nodiscard]] bool isAtHit() const { return atHit; }
    /// The suspicious word after the one in question, if it is in the same chunk; else empty.
    [[nodiscard]] QString followingWord();
    /// Which dictionaries judge.
    [[nodiscard]] const SpellDictionaries& dictionaries() const { return chosen; }

    CustomDictionary Custom;
    QString SearchAreaText;
    int16_t CheckedCount = 0;
    int16_t ReplacedInChunk = 0;
    int32_t ErrorIndex = 0;
    int32_t WordsFound = 0;
    int16_t WordsReplaced = 0;
    /// How much longer the chunk is in the display than the text that was checked.
    int32_t PositionShift = 0;
    bool HitFound = false;
    bool WordLoaded = false;
    std::unique_ptr<ProofreadingErrors> SpellErrors;
    TextRange SpellChunk;
    TextRange SpellArea;

private:
    void LimitChunk();
    [[nodiscard]] bool startWord();
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
