#pragma once

#include "DisplayDocument.h"

/// Where the program steps in between the keyboard and the display's own editing: caret keys, the space bar,
/// the non-breaking space. Enter, Delete, Backspace and all character keys are the display's.
namespace vmk {

enum class CaretDirection
{
    Left,
    Right
};

/// Moves the caret by one character, over marks as over text; a selection collapses to its start first.
void MoveCaret(DisplayDocument& document, CaretDirection direction);

/// Puts a blank in the selection's place unless a blank stands on either side of it: two blanks in a row
/// cannot be typed. With `ctrl` a non-breaking space.
void InsertSpace(DisplayDocument& document, bool ctrl);

/// Puts a non-breaking space in the selection's place: its visible mark while `ShowNbsp` is 1.
void InsertNbsp(DisplayDocument& document);

/// Deletes what is selected and notes an edit; at a bare caret nothing is deleted.
void DeleteSelection(DisplayDocument& document);

} // namespace vmk
