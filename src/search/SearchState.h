#pragma once

#include "TextRange.h"

#include <QString>

#include <cstdint>
#include <functional>

namespace vmk {

/// How the user wants to search.
struct SearchOptions
{
    bool wholeWord = false;
    bool matchCase = false;
    /// Towards the start of the book; regular expressions search downwards only.
    bool up = false;
    /// The selection is the scope.
    bool selection = false;
    /// The next hit is found at once after a replacement.
    bool autoFindNext = false;
    /// What a replace-all puts in gets a background colour.
    bool markReplaced = false;
    /// The display shows non-breaking spaces as marks: in a plain search a non-breaking space matches both.
    bool nbspMarks = false;
};

/// A search over a document, between its steps: where it is, what it may touch, what it has counted.
struct SearchState
{
    explicit SearchState(DisplayDocument& searched)
        : document(&searched)
    {
    }

    DisplayDocument* document;

    /// The search position; after a hit the hit itself.
    TextRange SearchRange;
    /// The part of the document that the search may touch; with chunks the present one.
    TextRange ScopeRange;
    /// Hits and replacements since the report was reset.
    int32_t FoundCount = 0;
    int32_t ReplacedCount = 0;
    /// The last plain search ended on a hit, which a replace-all must not count again.
    bool FoundFlag = false;
    /// A hit is selected and may be replaced: `ReplaceB` is enabled.
    bool HitStands = false;
    /// A running replace-all is to stop.
    bool StopRequested = false;

    // ---- regular expressions, which search the text of the scope in chunks

    /// The text of the chunk that is not yet searched; empty: it is still to be fetched.
    QString RegExpChunkText;
    /// The scope was cut into chunks.
    bool ChunkModeStarted = false;
    /// The present chunk is not the last.
    bool ChunksRemain = false;
    /// The whole scope while `ScopeRange` is one chunk of it.
    TextRange WholeScopeRange;
    /// A replace-all goes through no more chunks than this.
    int32_t RegExpMaxChunks = 1;
    /// Estimated number of chunks.
    int32_t RegExpChunkCount = 1;
    /// The last search ended on a hit.
    bool RegExpFoundFlag = false;
    /// Length of the last match, 0 for none.
    int32_t LastMatchLength = 0;
};

/// What a run that takes its time does with its window.
struct SearchEvents
{
    /// Shows a report at once.
    std::function<void(const QString& text)> report = [](const QString&) {};
    /// Lets waiting input be handled; it may set `StopRequested`, and must not change the document.
    std::function<void()> processEvents = [] {};
};

/// How one step of a search ended.
struct FindResult
{
    enum Outcome
    {
        Hit, ///< `SearchRange` is the hit, and is selected
        Finished, ///< there is no further hit; the counts are reset
        Nothing ///< there was nothing to search for
    };
    Outcome outcome = Nothing;
    QString report; ///< to be shown; empty for `Nothing`
};

/// How a single replacement ended.
struct ReplaceResult
{
    /// The new text, selected; null when the next hit is to be found at once.
    TextRange newText;
    QString report;
};

/// How a replace-all ended.
struct ReplaceAllResult
{
    /// Steps of undo that it has made.
    int32_t undoSteps = 0;
    /// The last text put in, selected; null without one.
    TextRange lastText;
    /// The final report; empty when there is none to show.
    QString report;
    /// The run came to its end, which the user hears.
    bool beep = false;
};

/// The background of marked replacements.
inline constexpr QStringView ReplacedColor = u"#ffb848";

/// Clears what a search by regular expression knows of its chunks, and `FoundFlag`.
void ResetSearchState(SearchState& state);

/// Begins anew from the document's selection: sets `SearchRange` and `ScopeRange` and forgets the last hit.
/// Without `options.selection` the scope reaches from the selection to the end of the book, or with
/// `options.up` to its start; the search does not wrap around.
/// \param keepPosition with `options.selection` and a short selection only the position is set anew, and the
///     scope stays
void NewSearch(SearchState& state, const SearchOptions& options, bool keepPosition);

/// A selection of the document that is wider than this many pixels is long: a scope, not a text to search.
inline constexpr int ShortSelectionWidth = 500;

/// "Found: N Replaced: M".
[[nodiscard]] QString CountsReport(const SearchState& state);
/// "Search finished. Found: N Replaced: M"; the counts go to 0 afterwards.
[[nodiscard]] QString FinishedReport(SearchState& state);

/// If the user has selected something else since the last hit, that becomes the hit.
void TakeSelection(SearchState& state);
/// Selects the text that was put in where a range begins.
/// \return the range over it
TextRange SelectNewText(TextRange at, qsizetype length);

} // namespace vmk
