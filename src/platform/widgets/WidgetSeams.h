#pragma once

namespace vmk {

/// Sets the seams of the desktop to functions of the toolkit: message boxes, file, font and colour dialogs,
/// sound, opening of files and URLs, the clipboard and the mouse pointer. Called once, with an application
/// object, before anything is shown.
void FillWidgetSeams();

} // namespace vmk
