#pragma once

#include "DisplayDocument.h"

#include <QPoint>
#include <QString>

#include <string>
#include <string_view>

/// Painting of lines that are in the display already: while a user types, colours go stale, and this brings
/// them up to date from the bare text.
namespace vmk {

/// How tags are painted.
struct PaintStyle
{
    bool tagHighlighting = true; ///< Tags, attributes and comments in classes of their own.
    bool boldTags = false; ///< Without highlighting: tags in bold.
};

/// The style that the settings ask for.
[[nodiscard]] PaintStyle CurrentPaintStyle();

/// Paints bare lines, given and returned as HTML in UTF-8. Real tags stay as they are, and a value whose
/// quote is not closed within its line stays unpainted.
[[nodiscard]] std::string PaintLines(std::string_view html, const PaintStyle& style);

/// Paints bare lines given as HTML, by the settings; the document is left alone.
[[nodiscard]] QString RePaintHtml(const QString& html);

/// Where the last press of a mouse button found the page, pixels.
struct LastPress
{
    QPoint caret; ///< Client coordinates of the caret.
    QPoint scroll; ///< How far the page was scrolled.
};

/// Throws away the painting of the selected lines, or of the caret's, and paints them anew. Two undo steps;
/// the book counts as unchanged, since its text is. A caret stays in its line; a selection ends as a caret
/// at the place of the last press. Does nothing outside a line.
void RePaintSelection(DisplayDocument& document, const LastPress& lastPress);

} // namespace vmk
