#pragma once

#include "XmlError.h"

#include <QString>

#include <string_view>

/// A book's life in the main window: loading, validating, reading.
namespace vmk {

/// Puts a book into the display, which is complete only later; the display's events finish the job.
/// @param opening  from the command line: empties the temporary tree first and brings the window up
/// @return false when the book was refused; status and sound have told why
bool LoadBook(const QString& path, bool opening);

/// Deletes the display's files and the whole temporary tree; with `remake` leaves an empty one.
void RemoveDisplayFiles(bool remake);

/// True if the page is no higher than the window and blank. A higher page is not looked at.
[[nodiscard]] bool IsDisplayBlank();

/// True when the display must not go to `url`: it goes to `DisplayFile` only. Reports the refusal unless
/// `SkipNavigationCheck`.
[[nodiscard]] bool CheckNavigation(const QString& url);

/// Hands a copy of the book to the reader that the system has for such files.
void ShowFb2TextPreview();

/// Validates the display's text, reports the outcome, and puts the selection at the error.
void ValidateDisplay();

/// The place in the display of a place in the text that was validated.
/// @param text   UTF-8; lines end with CR and LF; of the characters only the ampersand is escaped
/// @param place  as the parser of `text` tells it
/// @return characters (UTF-16 units) from the display's start, a line break counting as one
[[nodiscard]] int DisplayOffset(std::string_view text, const XmlPosition& place);

} // namespace vmk
