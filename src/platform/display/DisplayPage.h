#pragma once

#include "DisplayDocument.h"
#include "DisplayElement.h"
#include "TextRange.h"

#include <QString>

#include <optional>
#include <vector>

/// The page as the editing logic knows it: the objects behind `FileDoc.selection`, `FileDoc.all`,
/// `FileDoc.body` and the commands of the control, by their given names, over a display document.
namespace vmk {

// ---- selection

/// A new range over the selection; at a caret an empty one.
[[nodiscard]] TextRange createRange(DisplayDocument& document);
/// "None" at a bare caret, else "Text".
[[nodiscard]] QString type(const DisplayDocument& document);
/// Deletes what is selected. Whole lines, when several are selected, go as lines: the line that followed
/// takes their place.
void clear(DisplayDocument& document);
/// Takes the selection away: the caret stands at its end.
void empty(DisplayDocument& document);

// ---- body and document

/// A range over the whole page.
[[nodiscard]] TextRange createTextRange(DisplayDocument& document);
/// The element at a node index; one that does not exist when the index is below 1 or too large.
[[nodiscard]] DisplayElement item(DisplayDocument& document, int index);
/// All elements, lines and in-line ones, whose `id` or `name` is that name (case counts), in their order.
[[nodiscard]] std::vector<DisplayElement> getElementsByName(DisplayDocument& document, const QString& name);
/// The element at a client point: a line's, or one that does not exist where only the body is; needs a view.
[[nodiscard]] DisplayElement elementFromPoint(DisplayDocument& document, int x, int y);
/// The text of the page, CrLf between lines.
[[nodiscard]] QString innerText(const DisplayDocument& document);

// ---- operations that the commands share

/// The node index of the line that holds the range's first, or last, character; -1 when it is in none. An
/// empty range counts with the place where it stands.
[[nodiscard]] int NodeAtRangeStart(const TextRange& range);
[[nodiscard]] int NodeAtRangeEnd(const TextRange& range);
/// The length of a range in characters, a line break being one.
[[nodiscard]] int RangeLength(const TextRange& range);

/// What `SelectNodes` found.
struct SelectedNodes
{
    int first = -1; ///< Node index, -1 when the selection lies in no line.
    int last = -1;
    TextRange range; ///< The selection grown to whole lines.
    QString html; ///< Of the lines, if it was asked for.
};

/// Grows the selection to whole lines.
/// @param select the grown range becomes the selection.
/// @param returnHtml the lines' HTML is wanted: of one line its `outerHTML`.
[[nodiscard]] SelectedNodes SelectNodes(DisplayDocument& document, bool select, bool returnHtml);

/// The tag around a range, from its "<" to its ">", with not more than 50 characters of it on either side of
/// the range; nothing if there is none.
[[nodiscard]] std::optional<TextRange> TagAround(const TextRange& range);
/// True when the caret, or what is selected, stands inside such a tag.
[[nodiscard]] bool CaretInsideTag(DisplayDocument& document);

} // namespace vmk
