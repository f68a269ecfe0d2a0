#pragma once

#include "DisplayDocument.h"

#include <QPoint>
#include <QString>

/// Paste. Whatever the clipboard's text holds is taken as HTML: text from this display comes back with its
/// painting, whole lines as lines. A tag in a text that was copied as text becomes an element of the display
/// and is mark-up of the book no more, which is meant.
namespace vmk {

/// Pastes into the line: blanks collapse, whole lines become part of the caret's line when it stands inside
/// one, and lines of their own above or below it when it stands at its start or end.
/// @param clipboard    the clipboard's text; nothing happens when it is blank
/// @param lastPress    the caret at the last press of a mouse button, client coordinates in pixels
void PasteText(DisplayDocument& document, QString clipboard, QPoint lastPress);

/// Pastes as lines: the caret's line is broken in two around them, blanks stay as they are.
void PasteHtml(DisplayDocument& document, QString clipboard, QPoint lastPress);

/// The number of caret steps that a piece of HTML takes when shown.
[[nodiscard]] int TextLengthOfHtml(QString html);

} // namespace vmk
