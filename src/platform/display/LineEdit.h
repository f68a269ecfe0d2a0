#pragma once

#include "DisplayDocument.h"

#include <vector>

/// New lines from old ones: the arithmetic of text and marks behind every edit. Nothing here knows of a
/// document; all functions take lines and give lines whose marks are nested and closed.
namespace vmk {

/// Where text typed at an offset goes: into the element that ends there, for a caret behind a word goes on
/// with that word; at the start of a line into the element that begins there; into an empty element that
/// stands there waiting for text (but not into an anchor).
[[nodiscard]] Cut insertionCut(const TagTable& tags, const Line& line, int offset);
/// In front of the first character of a range that begins there: behind all tags at the place.
[[nodiscard]] Cut rangeStartCut(const Line& line, int offset);
/// Behind the last character of a range that ends there: in front of all tags at the place.
[[nodiscard]] Cut rangeEndCut(const Line& line, int offset);

/// The in-line elements open at a cut, outermost first.
[[nodiscard]] std::vector<TagId> elementsAt(const Line& line, Cut cut);

/// What is to be done with in-line elements that an edit leaves without text.
enum class EmptyElements
{
    Keep,
    Remove
};

/// Replaces what stands between two cuts by lines of content.
/// @param first, a the line and the cut where the replaced content begins.
/// @param last, b the same for its end; `first` and `last` are one line, or different ones.
/// @param content at least one line; the first one goes on the line of `a`, the last one is followed by
///     what stands behind `b`. Blocks: each line's own, `NoTag` for `nextBlock`; the first keeps its own.
/// @param emptyElements for elements around the whole replaced text.
/// @return as many lines as `content` has. Elements around all of the replaced text go on around the
///     content; others end, or begin again, beside it.
[[nodiscard]] std::vector<Line> replaceContent(const Line& first, Cut a, const Line& last, Cut b,
                                               const std::vector<Line>& content, TagId nextBlock,
                                               EmptyElements emptyElements);

/// What stands between two cuts of a line as a line of its own. Elements that reach over one of the cuts
/// are closed there, those around both cuts are left out.
[[nodiscard]] Line contentBetween(const Line& line, Cut a, Cut b);

/// True if in-line elements nest deeper in the line than `MaxInlineDepth`.
[[nodiscard]] bool isTooDeep(const Line& line);
/// The line without the elements that are too deep.
[[nodiscard]] Line withinDepth(const Line& line);

/// Puts an element around what stands between two offsets: once if that splits no other element, else
/// around each piece.
[[nodiscard]] Line wrapContent(const Line& line, int from, int to, TagId tag);

} // namespace vmk
