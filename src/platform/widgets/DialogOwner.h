#pragma once

class QWidget;

namespace vmk {

/// Returns the parent of a box or dialog: the active window if it belongs to the main window, otherwise the
/// main window. Without a main window, the active window or null. A form that closes itself while the box is
/// open, such as the report of a validation, is therefore never the parent while there is a main window.
[[nodiscard]] QWidget* DialogOwner();

} // namespace vmk
