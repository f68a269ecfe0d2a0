#pragma once

#include "DisplayDocument.h"
#include "TextRange.h"

#include <QPoint>
#include <QString>

#include <vector>

/// What the editing commands share: the lines that a command works on, and how an edit is noted.
namespace vmk {

/// Notes an edit of `steps` undo steps: one undo command will take back so many.
void MarkEdit(int steps);

/// The lines under the selection.
struct SelectedLines
{
    int first = -1; ///< Node index from 1; below 1 when the selection lies in no line.
    int last = -1;
    bool caret = false; ///< Nothing was selected.
    QPoint place; ///< The caret's client coordinates, pixels; only with `caret`.
    Position at; ///< Where the selection begins.

    explicit operator bool() const { return first >= 1 && last >= 1; }
};

/// Takes the lines under the selection, which stays as it is: undo brings it back as the user made it.
[[nodiscard]] SelectedLines TakeSelectedLines(DisplayDocument& document);

/// Makes whole lines the selection.
void SelectLines(DisplayDocument& document, const SelectedLines& lines);

/// Puts new lines in the place of the taken ones, in the two undo steps of such a command: the old ones go,
/// the new ones come. Nothing around them changes, not even when they are all that there is.
void ReplaceLines(DisplayDocument& document, const SelectedLines& lines, std::vector<LinePtr> newLines);

/// The HTML of what stands between two cuts of a line; elements that reach over one of them are closed there.
[[nodiscard]] QString HtmlBetween(const DisplayDocument& document, int line, Cut from, Cut to);

/// The HTML of a range as it is copied. A whole line comes as a line, in its block; a piece of one with the
/// elements that it covers from end to end, so that a whole painted tag keeps its painting.
[[nodiscard]] QString HtmlToCopy(const TextRange& range);

/// Puts the caret at the character nearest to a client point.
void PlaceCaret(DisplayDocument& document, QPoint clientPoint);

/// Puts the caret back into its line, which has been replaced by one of the same text: at the character
/// nearest to its old client point. Where the row has moved away from there, and in a line so long that its
/// rows break anew, the caret goes with its text.
/// @param move    pixels from the old point to the one that counts
/// @param characters  how many characters to move on from there
void PutCaretBack(DisplayDocument& document, const SelectedLines& lines, QPoint move, int characters);

} // namespace vmk
