#pragma once

#include "DisplayDocument.h"
#include "TextRange.h"

#include <QPoint>
#include <QString>

#include <vector>

/// Functions that the editing commands share: the lines that a command works on, and the record of an edit.
namespace vmk {

/// Records an edit of `steps` undo steps; one undo command reverts that many.
void MarkEdit(int steps);

/// The lines of the selection.
struct SelectedLines
{
    int first = -1; ///< Node index from 1; below 1 if the selection is outside any line.
    int last = -1;
    bool caret = false; ///< The selection is empty.
    QPoint place; ///< Client coordinates of the caret in pixels; only with `caret`.
    Position at; ///< The start of the selection.

    explicit operator bool() const { return first >= 1 && last >= 1; }
};

/// Returns the lines of the selection. Does not change the selection, so that undo restores it.
[[nodiscard]] SelectedLines TakeSelectedLines(DisplayDocument& document);

/// Selects whole lines.
void SelectLines(DisplayDocument& document, const SelectedLines& lines);

/// Replaces the lines by new ones. Nothing around them changes, even if they are all lines of the document.
/// Takes two undo steps: the replacement and an empty one after it, so that no state in between lacks the
/// lines.
void ReplaceLines(DisplayDocument& document, const SelectedLines& lines, std::vector<LinePtr> newLines);

/// Returns the HTML between two cuts of a line. Elements that extend over a cut are closed there.
[[nodiscard]] QString HtmlBetween(const DisplayDocument& document, int line, Cut from, Cut to);

/// Returns the HTML of a range for copying. A whole line is copied with its block; part of a line with the
/// elements that it contains completely, so that a whole painted tag keeps its painting.
[[nodiscard]] QString HtmlToCopy(const TextRange& range);

/// Moves the caret to the character nearest to a client point, in pixels.
void PlaceCaret(DisplayDocument& document, QPoint clientPoint);

/// Moves the caret back into its line after the line was replaced by one with the same text: to the character
/// nearest to its old client point. If the row is no longer at that point, and in a line so long that its
/// rows break differently, the caret keeps its position in the text.
/// \param move        pixels from the old point to the target point
/// \param characters  the number of characters to move from there
void PutCaretBack(DisplayDocument& document, const SelectedLines& lines, QPoint move, int characters);

} // namespace vmk
