#pragma once

namespace vmk {

/// Shows shift, line, column and character codes of the caret in panel 2 of `Status`. Clears the panel for a
/// selection.
void ShowCaretPosition();
/// Shows the length of the book's file in panel 3 of `Status`.
void ShowFileLength();

} // namespace vmk
