#pragma once

class QWidget;

namespace vmk {

/// The window that a box or dialog stands before: the active one if it belongs to the main window, else the
/// main window. Only where there is none it is the active window, or null. A form that goes by itself while
/// the box is open, as the report of a validation does, is therefore never the owner beside a main window.
[[nodiscard]] QWidget* DialogOwner();

} // namespace vmk
