#pragma once

#include "DisplayDocument.h"
#include "DisplayElement.h"
#include "TextRange.h"

#include <QString>

#include <optional>
#include <vector>

/// The page as the editing code uses it: the objects of `FileDoc.selection`, `FileDoc.all`, `FileDoc.body`
/// and the commands of the control, under their fixed names, over a display document.
namespace vmk {

/// The functions of the page, by the names that the rules of editing use.
namespace page {

// ---- selection

/// Returns a new range over the selection; empty at a caret.
[[nodiscard]] TextRange createRange(DisplayDocument& document);
/// Returns "None" at a caret, otherwise "Text".
[[nodiscard]] QString type(const DisplayDocument& document);
/// Deletes the selection. If whole lines are selected and there are several, they are deleted as lines: the
/// following line takes their index.
void clear(DisplayDocument& document);
/// Collapses the selection: the caret is then at its end.
void empty(DisplayDocument& document);

// ---- body and document

/// Returns a range over the whole page.
[[nodiscard]] TextRange createTextRange(DisplayDocument& document);
/// Returns the element at a node index; it does not exist if the index is below 1 or too large.
[[nodiscard]] DisplayElement item(DisplayDocument& document, int index);
/// Returns all elements, lines and in-line elements, whose `id` or `name` is `name` (case-sensitive), in
/// order.
[[nodiscard]] std::vector<DisplayElement> getElementsByName(DisplayDocument& document, const QString& name);
/// The same among the lines that are loaded, such as elements that were added since: loads nothing.
[[nodiscard]] std::vector<DisplayElement> getLoadedElementsByName(DisplayDocument& document,
                                                                  const QString& name);
/// Returns the element at a client point: a line, or a non-existing element outside all lines. Requires a
/// view.
[[nodiscard]] DisplayElement elementFromPoint(DisplayDocument& document, int x, int y);
/// Returns the text of the page, with CrLf between lines.
[[nodiscard]] QString innerText(const DisplayDocument& document);

} // namespace page

// ---- operations that the commands share

/// Returns the node index of the line of the range's first (or last) character; -1 if it is in none. For an
/// empty range, its position counts.
[[nodiscard]] int NodeAtRangeStart(const TextRange& range);
[[nodiscard]] int NodeAtRangeEnd(const TextRange& range);
/// Returns the length of a range in characters; a line break counts as one.
[[nodiscard]] int RangeLength(const TextRange& range);

/// The result of `SelectNodes`.
struct SelectedNodes
{
    int first = -1; ///< Node index; -1 if the selection is outside any line.
    int last = -1;
    TextRange range; ///< The selection extended to whole lines.
    QString html; ///< The HTML of the lines, if requested.
};

struct SelectNodesOptions
{
    bool select = false; ///< selects the extended range
    bool returnHtml = false; ///< returns the HTML of the lines: for one line its `outerHTML`
};

/// Extends the selection to whole lines.
[[nodiscard]] SelectedNodes SelectNodes(DisplayDocument& document, SelectNodesOptions options);

/// Returns the tag around a range, from its "<" to its ">", with at most 50 characters of it on either side
/// of the range; nothing if there is none.
[[nodiscard]] std::optional<TextRange> TagAround(const TextRange& range);
/// Returns true if the caret or the selection is inside such a tag.
[[nodiscard]] bool CaretInsideTag(DisplayDocument& document);

} // namespace vmk
