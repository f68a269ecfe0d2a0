#pragma once

namespace vmk {

/// Fills the seams of the desktop with the toolkit's means: message boxes, file, font and colour dialogs,
/// sound, opening of files and URLs, the clipboard and the mouse pointer. Once, with the application object
/// in place and before anything is shown.
void FillWidgetSeams();

} // namespace vmk
