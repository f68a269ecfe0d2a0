#pragma once

#include "DisplayDocument.h"

#include <QString>

#include <optional>

/// Node shifting: the left margin of lines, which shows the nesting of the book.
namespace vmk {

/// A line's start tag with `shift` pixels more of left margin; as it was when its margin is not a number.
/// @param startTag `<DIV …>`, its margin written as `MARGIN-LEFT: <n>px"`.
[[nodiscard]] QString ShiftedRight(const QString& startTag, int shift);

/// A line's start tag with `shift` pixels less of left margin; nothing when it has less than that.
[[nodiscard]] std::optional<QString> ShiftedLeft(const QString& startTag, int shift);

/// Moves the selected lines, or the caret's, one step to the right: they gain `NodeShift` pixels of left
/// margin. Two undo steps. The lines stay selected, a caret stays where it was.
/// Does nothing outside a line.
void RightShift(DisplayDocument& document);

/// Moves the selected lines, or the caret's, one step to the left. Lines with less than `NodeShift` pixels of
/// margin stay put; one that reaches 0 keeps its style with 0px. Two undo steps.
/// Does nothing outside a line, nor when no line has a margin or the only one has too little.
void LeftShift(DisplayDocument& document);

} // namespace vmk
