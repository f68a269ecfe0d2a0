#pragma once

#include "DisplayDocument.h"
#include "TagPaint.h"

#include <QPoint>
#include <QString>

#include <string>
#include <string_view>

/// Painting of displayed lines. Typing makes their colours out of date; these functions paint them again from
/// the bare text.
namespace vmk {

/// Paints bare lines; input and result are HTML in UTF-8. Real tags are unchanged. A value whose quote is not
/// closed within its line is not painted.
[[nodiscard]] std::string PaintLines(std::string_view html, const TagPaint& paint);

/// Returns the HTML of lines without their painting, with `\r\n` between them.
/// \param first  line from 0
[[nodiscard]] QString BareHtml(const DisplayDocument& document, int first, int count);

/// Paints bare lines, given as HTML. Does not change the document.
[[nodiscard]] QString RePaintHtml(const QString& html, const TagPaint& paint);

/// The state of the page at the last mouse press, in pixels.
struct LastPress
{
    QPoint caret; ///< Client coordinates of the caret.
    QPoint scroll; ///< The scroll position of the page.
};

/// Removes the painting of the selected lines, or of the caret's line, and paints them again. Two undo steps.
/// The book counts as unchanged, because its text is. A caret remains in its line; a selection becomes a
/// caret at the position of the last press. Does nothing outside a line.
void RePaintSelection(DisplayDocument& document, const LastPress& lastPress, const TagPaint& paint);

} // namespace vmk
