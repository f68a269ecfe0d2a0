#pragma once

#include "DisplayDocument.h"

#include <span>
#include <vector>

/// Computes new lines from old ones: the text and mark operations of every edit. Independent of a document;
/// all functions take and return lines whose marks are nested and closed.
namespace vmk {

/// Returns the cut at which text typed at an offset is inserted: in the element that ends there, because a
/// caret after a word continues that word; at the start of a line, in the element that begins there; or in an
/// empty element at the offset (but not in an anchor).
[[nodiscard]] Cut InsertionCut(const TagTable& tags, const Line& line, int offset);
/// Returns the cut before the first character of a range that begins there: after all tags at the offset.
[[nodiscard]] Cut RangeStartCut(const Line& line, int offset);
/// Returns the cut after the last character of a range that ends there: before all tags at the offset.
[[nodiscard]] Cut RangeEndCut(const Line& line, int offset);

/// Returns the in-line elements that are open at a cut, outermost first.
[[nodiscard]] std::vector<TagId> ElementsAt(const Line& line, Cut cut);

/// The treatment of in-line elements that an edit leaves without text.
enum class EmptyElements
{
    Keep,
    Remove
};

/// Replaces the content between two cuts by lines of content.
/// \param first, a       the line and the cut at which the replaced content begins
/// \param last, b        the same for its end; `first` and `last` may be the same line
/// \param content        at least one line. The first one is appended to the text before `a`, the text after
///                       `b` is appended to the last one. Each line keeps its block, with `nextBlock` for
///                       `NoTag`; the first has the block of `first`.
/// \param emptyElements  applies to elements around the whole replaced text
/// \return as many lines as `content` has. Elements around all of the replaced text continue around the
///         content; others end before it or begin after it.
[[nodiscard]] std::vector<LinePtr> ReplaceLineContent(const Line& first, Cut a, const Line& last, Cut b,
                                                      std::vector<LinePtr> content, TagId nextBlock,
                                                      EmptyElements emptyElements);

/// Returns the content between two cuts of a line as a separate line. Elements that extend over a cut are
/// closed there; elements around both cuts are omitted.
[[nodiscard]] Line ContentBetween(const Line& line, Cut a, Cut b);

/// Returns true if in-line elements in the line nest deeper than `MaxInlineDepth`.
[[nodiscard]] bool IsTooDeep(const Line& line);
/// Returns the line without the elements that are too deep.
[[nodiscard]] Line WithinDepth(const Line& line);

/// Returns the marks between two offsets of a line with an element put around the content: one element if it
/// splits no other, otherwise one around each piece.
/// \param inside  the marks after the first character of the content and before its last one
[[nodiscard]] std::vector<Mark> WrappedMarks(std::span<const Mark> inside, int from, int to, TagId tag);
/// Puts an element around the content between two offsets: one element if it splits no other, otherwise one
/// around each piece.
[[nodiscard]] Line WrapContent(const Line& line, int from, int to, TagId tag);

} // namespace vmk
