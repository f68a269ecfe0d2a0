#pragma once

#include "SearchState.h"

#include <optional>

/// Search and replacement by regular expression. The text of the scope is extracted in chunks and matched
/// against the expression. A plain search then finds the text of each match in the document, without its
/// context. So a match may be found at an earlier position with the same text, which is intended.
namespace vmk {

/// The number of characters in a chunk. A longer scope is searched chunk by chunk; a match that crosses the
/// border of two chunks is not found.
inline constexpr int RegExpChunkSize = 50'000;

/// Searches for the next match and selects it; downwards only.
/// \param pattern  the content of the field
[[nodiscard]] FindResult RegExpFind(SearchState& state, const QString& pattern, const SearchOptions& options,
                                    const SearchEvents& events = {});

/// Replaces the match, or the text that the user has selected instead.
/// \param replacement  with a "$", a template for the expression; otherwise a text whose `uni(...)` are
///                     expanded
[[nodiscard]] ReplaceResult RegExpReplaceHit(SearchState& state, QString replacement, const QString& pattern,
                                             const SearchOptions& options);

/// Replaces all matches in the scope, chunk by chunk. Each replacement and each mark is one undo step.
/// Afterwards there is no search position.
[[nodiscard]] ReplaceAllResult RegExpReplaceAll(SearchState& state, const QString& pattern,
                                                const QString& replacement, const SearchOptions& options,
                                                const SearchEvents& events);

/// Fills `RegExpChunkText` if it is empty; divides a long scope into chunks first.
/// \param quiet  does not report progress
void GetRegExpChunk(SearchState& state, bool quiet, const SearchEvents& events = {});
/// Advances to the next chunk. Returns false if the current one is the last.
bool NextRegExpChunk(SearchState& state);

/// Returns the text of the first match in `RegExpChunkText`, and removes the text up to the end of the match
/// (after an empty match, one more character). Empty without a match. Returns nothing if the pattern is bad
/// or exceeds its time.
[[nodiscard]] std::optional<QString> RegExpFirstMatch(SearchState& state, const QString& pattern,
                                                      bool matchCase, bool multiLine = false);

/// Returns the first match in a text with a template applied to it. The expression is executed again on the
/// match alone, so that assertions do not see its context. Empty without a match. Returns nothing if the
/// pattern is bad or exceeds its time.
[[nodiscard]] std::optional<QString> RegExpReplaceMatch(const QString& text, const QString& replacement,
                                                        const QString& pattern, bool matchCase,
                                                        bool multiLine = false);

/// Returns the length of a range in characters; a line break counts as one.
[[nodiscard]] int RangeCharCount(const TextRange& range);

/// Returns the first characters of a range, at most 10, as escapes of a regular expression: `\xhh`, `\uhhhh`;
/// at a caret, the character after it. Characters from U+8000 on are omitted, which is intended.
[[nodiscard]] QString SelectionAsRegExpHex(TextRange range);

} // namespace vmk
