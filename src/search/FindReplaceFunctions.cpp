#include "FindReplaceFunctions.h"

#include "ReplaceRun.h"
#include "RunEvents.h"
#include "TextSearch.h"
#include "UniCodes.h"
#include "WordBreaks.h"

#include <algorithm>
#include <optional>

namespace vmk {
namespace {

int FlagsOf(const SearchOptions& options)
{
    int flags = 0;
    if (options.wholeWord)
        flags += TextRange::WholeWord;
    if (options.matchCase)
        flags += TextRange::MatchCase;
    if (options.nbspMarks)
        flags += TextRange::NbspMarks;
    return flags;
}

bool IsInScope(const SearchState& state, bool up)
{
    return up ? state.SearchRange.compareEndPoints(u"StartToStart", state.ScopeRange) >= 0
              : state.SearchRange.compareEndPoints(u"EndToEnd", state.ScopeRange) <= 0;
}

/// The number of matches between two reports.
constexpr int ReportEvery = 100;

} // namespace

FindResult Find_Text(SearchState& state, QString text, const SearchOptions& options)
{
    bool found = false;
    if (!text.isEmpty()) {
        ParseUniCodes(text);
        if (text.isEmpty())
            return {};
        if (state.HitSelected)
            state.SearchRange.collapse(options.up);
        found = state.SearchRange.findText(text, options.up ? -1 : 1, FlagsOf(options))
            && IsInScope(state, options.up);
    }
    state.FoundFlag = state.HitSelected = found;
    if (!found)
        return {FindResult::Finished, FinishedReport(state)};
    ++state.FoundCount;
    state.SearchRange.select();
    return {FindResult::Hit, CountsReport(state)};
}

ReplaceResult Replace_Text(SearchState& state, QString replacement, const SearchOptions& options)
{
    TakeSelection(state);
    ParseUniCodes(replacement);
    ReplaceResult result;
    const TextRange newText = state.SearchRange.duplicate();
    state.SearchRange.setText(replacement);
    state.SearchRange = newText;
    if (!options.autoFindNext)
        result.newText = SelectNewText(newText, replacement.size());
    state.SearchRange.collapse(options.up);
    if (options.up)
        state.SearchRange.setEndPoint(u"StartToStart", state.ScopeRange);
    else
        state.SearchRange.setEndPoint(u"EndToEnd", state.ScopeRange);
    state.HitSelected = state.FoundFlag = false;
    ++state.ReplacedCount;
    result.report = CountsReport(state);
    return result;
}

namespace {

/// Returns true if the text before a match, which may be the last replacement, decides whether it is one.
bool DependsOnTextBefore(const QString& text, const SearchOptions& options)
{
    return text.front().isLowSurrogate() || (options.wholeWord && !IsWordCharacter(text.front()));
}

/// The loop of `Replace_All`.
/// @return the number of undo steps
int32_t ReplaceHits(SearchState& state, ReplaceRun& run, const QString& text, const QString& replacement,
                    const SearchOptions& options, const SearchEvents& events)
{
    const TextSearch search(text, options.matchCase, options.wholeWord, options.nbspMarks);
    const int markLength = std::max(1, int(replacement.size()));
    const bool dependsOnTextBefore = DependsOnTextBefore(text, options);
    RunEvents runEvents(events);
    int32_t undoSteps = 0;
    for (;;) {
        if (dependsOnTextBefore)
            run.flush();
        runEvents.process([&run] { run.flush(); });
        if (state.StopRequested)
            break;
        const auto hit = search.findForward(*state.document, run.position());
        if (!hit)
            break;
        // A match that ends at the end of the selection is not replaced.
        if (options.selection && hit->second >= state.ScopeRange.end())
            break;
        ++state.FoundCount;
        ++state.ReplacedCount;
        ++undoSteps;
        if (state.FoundCount % ReportEvery == 0)
            events.report(CountsReport(state));
        run.replace(hit->first, hit->second, replacement);
        if (options.markReplaced) {
            ++undoSteps;
            // An empty replacement marks the character before it.
            run.mark(markLength, ReplacedColor);
        }
    }
    return undoSteps;
}

/// Replaces all matches from `SearchRange` on.
ReplaceAllResult ReplaceFrom(SearchState& state, const QString& text, const QString& replacement,
                             const SearchOptions& options, const SearchEvents& events)
{
    ReplaceAllResult result;
    ReplaceRun run(*state.document, state.SearchRange.start());
    result.undoSteps = ReplaceHits(state, run, text, replacement, options, events);
    run.flush();
    if (result.undoSteps == 0)
        return result;
    state.SearchRange = TextRange(*state.document, run.position(), run.position());
    state.SearchRange.setEndPoint(u"EndToEnd", state.ScopeRange);
    result.lastText = SelectNewText(run.lastText(), replacement.size());
    return result;
}

} // namespace

ReplaceAllResult Replace_All(SearchState& state, QString text, QString replacement,
                             const SearchOptions& options, const SearchEvents& events)
{
    ReplaceAllResult result;
    if (!text.isEmpty()) {
        ParseUniCodes(text);
        ParseUniCodes(replacement);
        // The selected match is found again.
        if (state.FoundFlag)
            --state.FoundCount;
        events.report(QStringLiteral("...replacing...wait, please..."));
        // Without a position, after a replace-all by regular expression, nothing is found.
        if (!state.SearchRange.isNull())
            result = ReplaceFrom(state, text, replacement, options, events);
    }
    result.beep = true;
    result.report = CountsReport(state);
    state.FoundCount = state.ReplacedCount = 0;
    state.FoundFlag = state.StopRequested = false;
    state.HitSelected = false;
    return result;
}

} // namespace vmk
