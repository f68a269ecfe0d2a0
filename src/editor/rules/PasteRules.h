#pragma once

#include "DisplayDocument.h"

#include <QPoint>
#include <QString>

/// Paste. The text of the clipboard is always read as HTML: text from this display keeps its painting, and
/// whole lines remain lines. A tag in a text that was copied as text becomes an element of the display and is
/// no longer mark-up of the book, which is intended. Escape cancels a paste that takes longer than a moment.
namespace vmk {

/// Pastes into the line. Blanks collapse. Whole lines become part of the caret's line if the caret is inside
/// it, and separate lines above or below it if the caret is at its start or end.
/// \param clipboard  the clipboard's text; if it is blank, nothing happens
/// \param lastPress  the caret at the last mouse press, in client coordinates (pixels)
/// \param nbsp       the display's character for a non-breaking space (see `ShownNbsp`)
void PasteText(DisplayDocument& document, QString clipboard, QPoint lastPress, QChar nbsp);

/// Pastes as lines: splits the caret's line in two around them. Blanks are kept.
void PasteHtml(DisplayDocument& document, QString clipboard, QPoint lastPress, QChar nbsp);

/// Returns the number of caret steps over a piece of HTML when it is displayed.
[[nodiscard]] int TextLengthOfHtml(QString html);

} // namespace vmk
