#pragma once

#include "DisplayDocument.h"

#include <QString>

#include <optional>

/// Node shift: the left margin of lines, which shows the nesting of the book.
namespace vmk {

/// Returns a line's start tag with `shift` pixels more of left margin, or unchanged if its margin is not a
/// number.
/// \param startTag  `<DIV …>`, its margin written as `MARGIN-LEFT: <n>px"`
[[nodiscard]] QString ShiftedRight(const QString& startTag, int shift);

/// Returns a line's start tag with `shift` pixels less of left margin, or nothing if its margin is smaller.
[[nodiscard]] std::optional<QString> ShiftedLeft(const QString& startTag, int shift);

/// Shifts the selected lines, or the caret's line, to the right by `pixels`. Two undo steps. The lines remain
/// selected; a caret keeps its position. Does nothing outside a line.
void RightShift(DisplayDocument& document, int pixels);

/// Shifts the selected lines, or the caret's line, to the left. Lines with a margin below `pixels` are
/// unchanged; a line that reaches 0 keeps its style with 0px. Two undo steps. Does nothing outside a line, if
/// no line has a margin, or if the only line has too little.
void LeftShift(DisplayDocument& document, int pixels);

} // namespace vmk
