#pragma once

#include "DisplayDocument.h"

#include <QString>

/// Copy, cut and copy as text. The clipboard's text format carries the display's own HTML, so that a copied
/// piece comes back with its painting.
namespace vmk {

/// Puts the selection's HTML on the clipboard, whole lines as lines; with `cut` deletes the selection.
void CopySelection(DisplayDocument& document, bool cut);

/// Puts the selection's text on the clipboard: the book's mark-up as it reads on the screen.
void CopyAsText(DisplayDocument& document);

/// The text that HTML shows: what stands behind its head, without tags.
/// @param decodeAngleBrackets `&lt;` and `&gt;` become angle brackets.
/// @return line ends as a single CR, `&nbsp;` as U+00A0; other references stay as they are.
[[nodiscard]] QString HtmlToPlainText(const QString& html, bool decodeAngleBrackets);

} // namespace vmk
