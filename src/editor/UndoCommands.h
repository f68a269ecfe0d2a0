#pragma once

namespace vmk {

/// Undoes the last edit: `UndoSteps` steps of the display, at least one. Typing does not change that number:
/// after a shift and a typed character, one undo reverts both steps, which is intended.
void UndoEdit();
void RedoEdit();

} // namespace vmk
