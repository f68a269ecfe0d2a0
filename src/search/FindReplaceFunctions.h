#pragma once

#include "SearchState.h"

/// Plain search and replacement over a document. The search runs over the text that the reader sees: running
/// text and shown tags alike, through the colours and over line breaks.
namespace vmk {

/// Looks for the next hit. At the scope's end the search is over until `NewSearch`; a further call finds
/// nothing again.
/// \param text as in the field; `uni(...)` in it is expanded
[[nodiscard]] FindResult Find_Text(SearchState& state, QString text, const SearchOptions& options);

/// Replaces the hit, or what the user has selected in its place, as one step of undo.
/// \param replacement as in the field; `uni(...)` in it is expanded; an empty one deletes
[[nodiscard]] ReplaceResult Replace_Text(SearchState& state, QString replacement,
                                         const SearchOptions& options);

/// Replaces all hits from the search position to the end of the scope, whatever the direction. A hit that
/// ends where a selected scope ends is not replaced, in contrast to `Find_Text`; this is meant. Each
/// replacement and each mark is one step of undo.
[[nodiscard]] ReplaceAllResult Replace_All(SearchState& state, QString text, QString replacement,
                                           const SearchOptions& options, const SearchEvents& events);

} // namespace vmk
