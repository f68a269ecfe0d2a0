#include "FindReplaceRegExpFuncs.h"

#include "DisplayPage.h"
#include "HtmlFragmentText.h"
#include "RegExp.h"
#include "ReplaceRun.h"
#include "RunEvents.h"
#include "TextFunctions.h"
#include "TextSearch.h"
#include "UniCodes.h"

#include <QSet>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// The end of a chunk is moved back by this number of words, so that it is less likely to cut a match.
constexpr int ChunkEdgeWords = 3;
/// A search ends when the pattern has failed in this number of chunks. Each failure may take a quarter of a
/// second.
constexpr int MostFailures = 2;
/// The number of undo steps between two reports.
constexpr int32_t ReportEvery = 100;

RegExp ExpressionOf(const QString& pattern, bool matchCase, bool multiLine, bool global)
{
    RegExp expression;
    expression.Pattern = pattern;
    expression.IgnoreCase = !matchCase;
    expression.MultiLine = multiLine;
    expression.Global = global;
    return expression;
}

/// Returns true if a replacement is a template, which contains a "$".
bool IsTemplate(const QString& replacement)
{
    return replacement.contains(u'$');
}

/// Moves the end of a chunk back, but never to its start: a single long word is cut.
void MoveEndBack(TextRange& chunk)
{
    TextRange shorter = chunk;
    shorter.moveEnd(u"word", -ChunkEdgeWords);
    if (shorter.end() > chunk.start())
        chunk.setEndPoint(u"EndToEnd", shorter);
}

void EnterChunkMode(SearchState& state, int length)
{
    state.ChunksRemain = state.ChunkModeStarted = true;
    state.WholeScopeRange = state.ScopeRange;
    state.ScopeRange.collapse(true);
    state.ScopeRange.moveEnd(u"character", RegExpChunkSize);
    MoveEndBack(state.ScopeRange);
    state.RegExpChunkCount = int32_t(std::lrint(double(length) / RegExpChunkSize));
    state.RegExpMaxChunks = 2 * state.RegExpChunkCount;
}

} // namespace

// ---------------------------------------------------------------- chunks

int RangeCharCount(const TextRange& range)
{
    const DisplayDocument* document = range.ofDocument();
    return document ? int(document->characterIndex(range.end()) - document->characterIndex(range.start()))
                    : 0;
}

void GetRegExpChunk(SearchState& state, bool quiet, const SearchEvents& events)
{
    if (!state.RegExpChunkText.isEmpty())
        return;
    const int length = RangeCharCount(state.ScopeRange);
    if (length <= RegExpChunkSize && !state.ChunksRemain) {
        state.ChunkModeStarted = false;
        state.WholeScopeRange = TextRange();
    } else if (!state.ChunkModeStarted) {
        EnterChunkMode(state, length);
    }
    if (!quiet)
        events.report(u"...getting text..."_s);
    state.RegExpChunkText = HtmlFragmentToText(state.ScopeRange.htmlText(), true);
    if (!quiet)
        events.report(QString());
}

bool NextRegExpChunk(SearchState& state)
{
    if (!state.ChunksRemain)
        return false;
    TextRange& chunk = state.ScopeRange;
    chunk.collapse(false);
    bool isLast = chunk.moveEnd(u"character", RegExpChunkSize) < RegExpChunkSize;
    if (!isLast) {
        MoveEndBack(chunk);
        isLast = chunk.compareEndPoints(u"EndToEnd", state.WholeScopeRange) >= 0;
    }
    if (isLast) {
        chunk.setEndPoint(u"EndToEnd", state.WholeScopeRange);
        state.ChunksRemain = false;
    }
    state.RegExpChunkText.clear();
    return true;
}

// ---------------------------------------------------------------- matches

std::optional<QString> RegExpFirstMatch(SearchState& state, const QString& pattern, bool matchCase,
                                        bool multiLine)
{
    QString& text = state.RegExpChunkText;
    const auto matches = ExpressionOf(pattern, matchCase, multiLine, false).Execute(text);
    if (!matches || matches->empty()) {
        text.clear();
        return matches ? std::optional(QString()) : std::nullopt;
    }
    const RegExpMatch& match = matches->front();
    if (match.FirstIndex + 1 < text.size())
        text.remove(0, match.FirstIndex + std::max<qsizetype>(1, match.Value.size()));
    else
        text.clear();
    return match.Value;
}

std::optional<QString> RegExpReplaceMatch(const QString& text, const QString& replacement,
                                          const QString& pattern, bool matchCase, bool multiLine)
{
    const RegExp expression = ExpressionOf(pattern, matchCase, multiLine, false);
    const auto matches = expression.Execute(text);
    if (!matches)
        return std::nullopt;
    return matches->empty() ? QString() : expression.Replace(matches->front().Value, replacement);
}

// ---------------------------------------------------------------- one hit

namespace {

/// Searches for the text of a match in the document and sets `SearchRange` to it.
/// @return true if it is found in the scope
bool FindTextOfMatch(SearchState& state, const QString& match, const SearchOptions& options)
{
    if (match.isEmpty())
        return false;
    if (state.HitSelected)
        state.SearchRange.collapse(false);
    // It is the text of the match itself, so the search is case-sensitive.
    return state.SearchRange.findText(match, 1, TextRange::MatchCase)
        && (!options.selection || state.SearchRange.compareEndPoints(u"StartToEnd", state.ScopeRange) <= 0);
}

/// Searches match by match and chunk by chunk for one that is found in the document.
bool FindMatch(SearchState& state, const QString& pattern, const SearchOptions& options,
               const SearchEvents& events)
{
    int failures = 0;
    do {
        if (!TrimBlanks(pattern).isEmpty()) {
            GetRegExpChunk(state, false, events);
            const auto match = RegExpFirstMatch(state, pattern, options.matchCase);
            state.LastMatchLength = match ? int32_t(match->size()) : 0;
            if (match && FindTextOfMatch(state, *match, options))
                return true;
            if (!match && ++failures == MostFailures)
                return false;
        }
    } while (NextRegExpChunk(state));
    return false;
}

} // namespace

FindResult RegExpFind(SearchState& state, const QString& pattern, const SearchOptions& options,
                      const SearchEvents& events)
{
    const bool found = FindMatch(state, pattern, options, events);
    if (!found) {
        ResetSearchState(state);
        state.HitSelected = false;
        return {FindResult::Finished, FinishedReport(state)};
    }
    state.HitSelected = state.RegExpFoundFlag = true;
    ++state.FoundCount;
    state.SearchRange.select();
    return {FindResult::Hit, CountsReport(state)};
}

ReplaceResult RegExpReplaceHit(SearchState& state, QString replacement, const QString& pattern,
                               const SearchOptions& options)
{
    TakeSelection(state);
    if (IsTemplate(replacement)) {
        const QString hit = state.SearchRange.text();
        // If the pattern fails, the text is unchanged.
        replacement = RegExpReplaceMatch(hit, replacement, pattern, options.matchCase).value_or(hit);
    } else {
        ParseUniCodes(replacement);
    }
    ReplaceResult result;
    const TextRange newText = state.SearchRange.duplicate();
    state.SearchRange.setText(replacement);
    state.SearchRange = newText;
    if (!options.autoFindNext)
        result.newText = SelectNewText(newText, replacement.size());
    state.SearchRange.collapse(false);
    state.SearchRange.setEndPoint(u"EndToEnd", state.ScopeRange);
    state.HitSelected = false;
    ++state.ReplacedCount;
    state.LastMatchLength = 0;
    result.report = CountsReport(state);
    return result;
}

// ---------------------------------------------------------------- all matches

namespace {

/// One run of `RegExpReplaceAll`.
class RegExpRun
{
public:
    RegExpRun(SearchState& searchState, const QString& searchPattern, const QString& rawReplacement,
              const SearchOptions& searchOptions, const SearchEvents& searchEvents)
        : state(searchState)
        , pattern(searchPattern)
        , raw(rawReplacement)
        , expanded(rawReplacement)
        , options(searchOptions)
        , events(searchEvents)
        , runEvents(searchEvents)
        , run(*searchState.document, searchState.ScopeRange.start())
    {
        ParseUniCodes(expanded);
    }

    /// Replaces in all chunks.
    /// @return false if the run ended because there are more chunks than expected
    bool replaceAll();

    [[nodiscard]] int32_t undoSteps() const { return steps; }
    /// Selects the last inserted text; null if there is none.
    [[nodiscard]] TextRange selectLastText() const;

private:
    void replaceChunk();
    void replaceMatch(const QString& match);
    [[nodiscard]] QString chunkReport() const
    {
        return u"Chunk %1 of %2 "_s.arg(iteration).arg(state.RegExpChunkCount);
    }
    [[nodiscard]] QString replacedReport() const { return u"Replaced: %1"_s.arg(state.ReplacedCount); }
    /// The length of the template, not of the inserted text: a long template marks more than its result,
    /// which is intended.
    [[nodiscard]] int markLength() const { return std::max(1, int(raw.size())); }

    SearchState& state;
    const QString& pattern;
    const QString& raw;
    QString expanded;
    const SearchOptions& options;
    const SearchEvents& events;
    RunEvents runEvents;
    ReplaceRun run;
    int32_t iteration = 0;
    int32_t steps = 0;
    bool replaced = false;
    qsizetype lastLength = 0;
    /// Texts that do not occur after the position.
    QSet<QString> missing;
};

bool RegExpRun::replaceAll()
{
    do {
        if (++iteration > state.RegExpMaxChunks)
            return false;
        runEvents.process([] {});
        GetRegExpChunk(state, true);
        if (!state.StopRequested)
            replaceChunk();
        run.flush();
    } while (!state.StopRequested && NextRegExpChunk(state));
    return true;
}

void RegExpRun::replaceChunk()
{
    const auto matches = ExpressionOf(pattern, options.matchCase, false, true).Execute(state.RegExpChunkText);
    if (!matches || matches->empty())
        return;
    const Position start = state.ScopeRange.start();
    // A text of the previous chunk may have been found after the start of this one; the search moves back.
    if (run.position() > start)
        missing.clear();
    run.moveTo(start);
    if (state.ChunksRemain)
        events.report(chunkReport() + replacedReport());
    int32_t reportedSteps = -1;
    for (size_t i = 0; i < matches->size() && !state.StopRequested; ++i) {
        // Only once for a number of steps, if matches are skipped.
        if (steps % ReportEvery == 0 && steps != std::exchange(reportedSteps, steps))
            events.report((state.ChunksRemain ? chunkReport() : QString())
                          + u"Match %1 of %2 "_s.arg(i).arg(matches->size()) + replacedReport());
        replaceMatch((*matches)[i].Value);
    }
}

/// Replaces the next occurrence of the text of a match, if there is one.
void RegExpRun::replaceMatch(const QString& match)
{
    if (match.isEmpty() || missing.contains(match))
        return;
    // Whether a match cuts a surrogate pair depends on the text inserted before it.
    if (match.front().isLowSurrogate())
        run.flush();
    // Letters match in any case, even with a case-sensitive expression, which is intended.
    const auto hit = TextSearch(match, false, false).findForward(*state.document, run.position());
    if (!hit) {
        missing.insert(match);
        return;
    }
    const auto replacement = IsTemplate(raw) ? RegExpReplaceMatch(match, raw, pattern, options.matchCase)
                                             : std::optional(expanded);
    if (!replacement) {
        // The pattern has failed on the match alone: the text is unchanged.
        run.moveTo(hit->second);
        return;
    }
    run.replace(hit->first, hit->second, *replacement);
    ++steps;
    lastLength = replacement->size();
    replaced = true;
    runEvents.process([this] { run.flush(); });
    if (state.StopRequested)
        return;
    ++state.FoundCount;
    ++state.ReplacedCount;
    if (options.markReplaced) {
        ++steps;
        run.mark(markLength(), ReplacedColor);
    }
}

TextRange RegExpRun::selectLastText() const
{
    if (!replaced)
        return {};
    return SelectNewText(run.lastText(), options.markReplaced ? markLength() : lastLength);
}

} // namespace

ReplaceAllResult RegExpReplaceAll(SearchState& state, const QString& pattern, const QString& replacement,
                                  const SearchOptions& options, const SearchEvents& events)
{
    ReplaceAllResult result;
    result.beep = true;
    if (pattern.isEmpty()) {
        while (!state.StopRequested && NextRegExpChunk(state)) { }
    } else {
        events.report(u"...replacing...wait, please..."_s);
        if (state.RegExpFoundFlag) {
            // The selected match is not replaced.
            state.ScopeRange.setEndPoint(u"StartToEnd", page::createRange(*state.document));
            --state.FoundCount;
        }
        ResetSearchState(state);
        RegExpRun run(state, pattern, replacement, options, events);
        result.beep = run.replaceAll();
        result.undoSteps = run.undoSteps();
        if (result.beep)
            result.lastText = run.selectLastText();
    }
    if (result.beep) {
        result.report = u"Replaced: %1"_s.arg(state.ReplacedCount);
        state.FoundCount = state.ReplacedCount = 0;
    }
    state.SearchRange = TextRange();
    ResetSearchState(state);
    state.StopRequested = state.HitSelected = false;
    return result;
}

// ---------------------------------------------------------------- characters as escapes

QString SelectionAsRegExpHex(TextRange range)
{
    constexpr qsizetype MostCharacters = 10;
    constexpr char16_t FirstOmitted = 0x8000;
    const bool isCaret = range.boundingWidth() == 0;
    if (isCaret)
        range.moveEnd(u"character");
    QString text = range.text();
    if (isCaret || text.size() == 1) {
        text = range.htmlText().contains("&nbsp;"_L1) ? QString(QChar(0xA0)) : text.left(1);
    } else {
        if (text.size() > MostCharacters) {
            range.collapse();
            range.moveEnd(u"character", int(MostCharacters));
        }
        const QString html = range.htmlText();
        text = html.contains("&nbsp;"_L1) ? HtmlFragmentToText(html, false) : text.left(MostCharacters);
    }
    QString escapes;
    for (const QChar c : text) {
        if (c.unicode() >= FirstOmitted)
            continue;
        const bool isLong = c.unicode() > 0xFF;
        escapes += (isLong ? u"\\u"_s : u"\\x"_s)
            + QString::number(c.unicode(), 16).rightJustified(isLong ? 4 : 2, u'0');
    }
    return escapes;
}

} // namespace vmk
