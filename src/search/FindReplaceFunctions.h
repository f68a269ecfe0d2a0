#pragma once

#include "SearchState.h"

/// Plain search and replacement in a document. The search covers the visible text: running text and shown
/// tags, across colours and line breaks.
namespace vmk {

/// Searches for the next match. At the end of the scope the search is finished until `NewSearch`; further
/// calls find nothing.
/// \param text  the content of the field; each `uni(...)` in it is expanded
[[nodiscard]] FindResult Find_Text(SearchState& state, QString text, const SearchOptions& options);

/// Replaces the match, or the text that the user has selected instead, as one undo step.
/// \param replacement  the content of the field; each `uni(...)` in it is expanded; an empty one deletes
[[nodiscard]] ReplaceResult Replace_Text(SearchState& state, QString replacement,
                                         const SearchOptions& options);

/// Replaces all matches from the search position to the end of the scope, for either direction. A match that
/// ends at the end of a selected scope is not replaced, in contrast to `Find_Text`, which is intended. Each
/// replacement and each mark is one undo step.
[[nodiscard]] ReplaceAllResult Replace_All(SearchState& state, QString text, QString replacement,
                                           const SearchOptions& options, const SearchEvents& events);

} // namespace vmk
