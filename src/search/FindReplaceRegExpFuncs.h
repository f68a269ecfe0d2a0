#pragma once

#include "SearchState.h"

#include <optional>

/// Search and replacement by regular expression. The text of the scope is taken out in chunks, the expression
/// runs on it, and the text of each match, nothing more, is looked for in the document by a plain search. So
/// a match may be found at an earlier place with the same text; this is meant.
namespace vmk {

/// Characters of a chunk. A longer scope is searched chunk by chunk; a match over a chunk's edge is not
/// found.
inline constexpr int RegExpChunkSize = 50'000;

/// Looks for the next match and selects it; downwards only.
/// \param pattern as in the field
[[nodiscard]] FindResult RegExpFind(SearchState& state, const QString& pattern, const SearchOptions& options,
                                    const SearchEvents& events = {});

/// Replaces the hit, or what the user has selected in its place.
/// \param replacement with a "$" a template for the expression, otherwise a text whose `uni(...)` is expanded
[[nodiscard]] ReplaceResult RegExpReplaceHit(SearchState& state, QString replacement, const QString& pattern,
                                             const SearchOptions& options);

/// Replaces all matches in the scope, chunk by chunk. Each replacement and each mark is one step of undo.
/// There is no search position afterwards.
[[nodiscard]] ReplaceAllResult RegExpReplaceAll(SearchState& state, const QString& pattern,
                                                const QString& replacement, const SearchOptions& options,
                                                const SearchEvents& events);

/// Fills `RegExpChunkText` if it is empty; a long scope is cut into chunks first.
/// \param quiet the work is not reported
void GetRegExpChunk(SearchState& state, bool quiet, const SearchEvents& events = {});
/// Goes on to the next chunk. False if the present one is the last.
bool NextRegExpChunk(SearchState& state);

/// Text of the first match in `RegExpChunkText`, which is cut off after the match (after an empty one by one
/// character); empty without a match. Nothing if the pattern is bad or runs away.
[[nodiscard]] std::optional<QString> RegExpFirstMatch(SearchState& state, const QString& pattern,
                                                      bool matchCase, bool multiLine = false);

/// The first match in a text with a template applied to it: the expression runs again on the match alone, so
/// that what looks at its surroundings sees nothing else. Empty without a match. Nothing if the pattern is
/// bad or runs away.
[[nodiscard]] std::optional<QString> RegExpReplaceMatch(const QString& text, const QString& replacement,
                                                        const QString& pattern, bool matchCase,
                                                        bool multiLine = false);

/// Length of a range in characters, a line break being one.
[[nodiscard]] int RangeCharCount(const TextRange& range);

/// The first characters of a range, at most 10, as escapes of a regular expression: `\xhh`, `\uhhhh`; of a
/// bare caret the character after it. Characters from U+8000 on are left out, which is meant.
[[nodiscard]] QString SelectionAsRegExpHex(TextRange range);

} // namespace vmk
