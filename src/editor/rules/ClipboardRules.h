#pragma once

#include "DisplayDocument.h"

#include <QString>

/// Copy, cut and copy as text. The text format of the clipboard contains the display's own HTML, so that a
/// copied piece keeps its painting when it is pasted.
namespace vmk {

/// Copies the HTML of the selection to the clipboard, whole lines as lines. With `cut`, deletes the
/// selection.
void CopySelection(DisplayDocument& document, bool cut);

/// Copies the text of the selection to the clipboard: the book's mark-up as it is displayed.
void CopyAsText(DisplayDocument& document);

/// Returns the text that HTML shows: the part after its head, without tags.
/// \param decodeAngleBrackets  replaces `&lt;` and `&gt;` by angle brackets
/// \return line ends as a single CR, `&nbsp;` as U+00A0; other references are unchanged
[[nodiscard]] QString HtmlToPlainText(const QString& html, bool decodeAngleBrackets);

} // namespace vmk
