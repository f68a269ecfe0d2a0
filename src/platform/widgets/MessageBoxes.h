#pragma once

#include "Boxes.h"

namespace vmk {

/// Shows a box over the active window until it is answered; true for Yes. The text is taken as plain text.
bool ShowMessageBox(BoxKind kind, const QString& text, const QString& title);

} // namespace vmk
