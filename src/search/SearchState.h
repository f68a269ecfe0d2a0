#pragma once

#include "TextRange.h"

#include <QString>

#include <cstdint>
#include <functional>

namespace vmk {

/// The options of a search.
struct SearchOptions
{
    bool wholeWord = false;
    bool matchCase = false;
    /// Searches towards the start of the book; regular expressions search only downwards.
    bool up = false;
    /// The selection is the scope.
    bool selection = false;
    /// Searches for the next match immediately after a replacement.
    bool autoFindNext = false;
    /// The text that a replace-all inserts has a background colour.
    bool markReplaced = false;
    /// The display shows non-breaking spaces as marks: in a plain search a non-breaking space matches both.
    bool nbspMarks = false;
};

/// The state of a search in a document between its steps: position, scope and counts.
struct SearchState
{
    explicit SearchState(DisplayDocument& searched)
        : document(&searched)
    {
    }

    DisplayDocument* document;

    /// The search position; after a match, the match itself.
    TextRange SearchRange;
    /// The part of the document that is searched; with chunks, the current one.
    TextRange ScopeRange;
    /// The number of matches and replacements since the report was reset.
    int32_t FoundCount = 0;
    int32_t ReplacedCount = 0;
    /// The last plain search ended on a match, which a replace-all must not count twice.
    bool FoundFlag = false;
    /// A match is selected and can be replaced: `ReplaceB` is enabled.
    bool HitSelected = false;
    /// A running replace-all must stop.
    bool StopRequested = false;

    // ---- regular expressions, which search the text of the scope in chunks

    /// The unsearched text of the chunk; if empty, it has to be fetched.
    QString RegExpChunkText;
    /// The scope was divided into chunks.
    bool ChunkModeStarted = false;
    /// The current chunk is not the last one.
    bool ChunksRemain = false;
    /// The whole scope while `ScopeRange` is one chunk of it.
    TextRange WholeScopeRange;
    /// The maximum number of chunks of a replace-all.
    int32_t RegExpMaxChunks = 1;
    /// The estimated number of chunks.
    int32_t RegExpChunkCount = 1;
    /// The last search ended on a match.
    bool RegExpFoundFlag = false;
    /// The length of the last match; 0 if there is none.
    int32_t LastMatchLength = 0;
};

/// The calls of a long run to its window.
struct SearchEvents
{
    /// Shows a report immediately.
    std::function<void(const QString& text)> report = [](const QString&) {};
    /// Processes pending input. It may set `StopRequested`, and must not change the document.
    std::function<void()> processEvents = [] {};
};

/// The result of one search step.
struct FindResult
{
    enum Outcome
    {
        Hit, ///< `SearchRange` is the match and is selected
        Finished, ///< there is no further match; the counts are reset
        Nothing ///< there is nothing to search for
    };
    Outcome outcome = Nothing;
    QString report; ///< the text to show; empty for `Nothing`
};

/// The result of a single replacement.
struct ReplaceResult
{
    /// The new text, selected; null if the next match has to be searched for immediately.
    TextRange newText;
    QString report;
};

/// The result of a replace-all.
struct ReplaceAllResult
{
    /// The number of its undo steps.
    int32_t undoSteps = 0;
    /// The last inserted text, selected; null if there is none.
    TextRange lastText;
    /// The final report; empty if there is none.
    QString report;
    /// The run is complete, which a sound signals.
    bool beep = false;
};

/// The background of marked replacements.
inline constexpr QStringView ReplacedColor = u"#ffb848";

/// Clears the state of a search by regular expression, and `FoundFlag`.
void ResetSearchState(SearchState& state);

/// Starts a new search at the document's selection: sets `SearchRange` and `ScopeRange` and clears the last
/// match. Without `options.selection` the scope extends from the selection to the end of the book, or with
/// `options.up` to its start; the search does not wrap around.
/// \param keepPosition  with `options.selection` and a short selection, only sets the position and keeps the
///                      scope
void NewSearch(SearchState& state, const SearchOptions& options, bool keepPosition);

/// A selection wider than this number of pixels is long: it is a scope, not a text to search for.
inline constexpr int ShortSelectionWidth = 500;

/// Returns "Found: N Replaced: M".
[[nodiscard]] QString CountsReport(const SearchState& state);
/// Returns "Search finished. Found: N Replaced: M" and resets the counts.
[[nodiscard]] QString FinishedReport(SearchState& state);

/// If the user has selected other text since the last match, this text becomes the match.
void TakeSelection(SearchState& state);
/// Selects the text that was inserted at the start of a range.
/// \return the range of the text
TextRange SelectNewText(TextRange at, qsizetype length);

} // namespace vmk
