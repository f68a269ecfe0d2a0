#include "SearchState.h"

#include "DisplayPage.h"

namespace vmk {

using namespace Qt::StringLiterals;

void ResetSearchState(SearchState& state)
{
    state.RegExpChunkText.clear();
    state.ChunkModeStarted = false;
    state.ChunksRemain = false;
    state.RegExpMaxChunks = 1;
    state.RegExpChunkCount = 1;
    state.RegExpFoundFlag = false;
    state.LastMatchLength = 0;
    state.FoundFlag = false;
}

void NewSearch(SearchState& state, const SearchOptions& options, bool keepPosition)
{
    ResetSearchState(state);
    state.FoundCount = state.ReplacedCount = 0;
    state.StopRequested = false;
    state.HitSelected = false;

    const TextRange selection = page::createRange(*state.document);
    if (keepPosition && options.selection && selection.boundingWidth() <= ShortSelectionWidth) {
        state.SearchRange = selection;
        state.SearchRange.collapse(!options.up);
        return;
    }
    state.ScopeRange = selection;
    if (!options.selection) {
        if (options.up)
            state.ScopeRange.moveStart(u"textedit", -1);
        else
            state.ScopeRange.moveEnd(u"textedit", 1);
    }
    state.SearchRange = state.ScopeRange;
    state.SearchRange.collapse(!options.up);
}

QString CountsReport(const SearchState& state)
{
    return u"Found: %1 Replaced: %2"_s.arg(state.FoundCount).arg(state.ReplacedCount);
}

QString FinishedReport(SearchState& state)
{
    QString report = u"Search finished. "_s + CountsReport(state);
    state.FoundCount = state.ReplacedCount = 0;
    return report;
}

void TakeSelection(SearchState& state)
{
    const TextRange selection = page::createRange(*state.document);
    if (selection.isEqual(state.SearchRange))
        return;
    state.SearchRange = selection;
    state.SearchRange.select();
}

TextRange SelectNewText(TextRange at, qsizetype length)
{
    at.collapse(true);
    at.moveEnd(u"character", int(length));
    at.select();
    return at;
}

} // namespace vmk
