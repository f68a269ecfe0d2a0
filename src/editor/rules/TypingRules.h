#pragma once

#include "DisplayDocument.h"

/// The keys that the program handles instead of the display: caret keys, the space bar and the non-breaking
/// space. Enter, Delete, Backspace and all character keys belong to the display.
namespace vmk {

/// The directions of the caret keys.
enum class CaretDirection
{
    Left,
    Right
};

/// Moves the caret by one character; marks count like text. A selection first collapses to its start.
void MoveCaret(DisplayDocument& document, CaretDirection direction);

/// Replaces the selection by a blank unless a blank is on either side of it: two consecutive blanks cannot be
/// typed.
void InsertSpace(DisplayDocument& document);

/// Replaces the selection by a non-breaking space.
/// \param nbsp  the display's character for a non-breaking space (see `ShownNbsp`)
void InsertNbsp(DisplayDocument& document, QChar nbsp);

/// Deletes the selection and records an edit; at a caret, deletes nothing.
void DeleteSelection(DisplayDocument& document);

} // namespace vmk
