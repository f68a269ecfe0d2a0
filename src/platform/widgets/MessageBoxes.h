#pragma once

#include "Boxes.h"

namespace vmk {

/// Shows a box over the active window until the user closes it; returns true for Yes. The text is plain text.
bool ShowMessageBox(BoxKind kind, const QString& text, const QString& title);

/// The same for a question with Yes, No and Cancel.
BoxAnswer ShowChoiceBox(const QString& text, const QString& title);

} // namespace vmk
