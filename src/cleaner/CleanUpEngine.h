#pragma once

#include "CleanUpTable.h"
#include "DisplayDocument.h"
#include "TagPaint.h"

#include <QString>

#include <functional>
#include <string>
#include <vector>

/// Applying a table of replacements to a document.
///
/// The rows do not work on ranges but on one string, the HTML of the lines without their painting, in which
/// the angle brackets that the display shows are masked. At the end the lines are painted and put back in one
/// piece, so that a run costs two undo steps however many rows it has.
namespace vmk {

/// What became of one row.
enum class CleanUpRowState
{
    Skipped, ///< The row is not enabled, or replaces nothing.
    Applied,
    BadExpression, ///< The expression is not valid; the text is unchanged.
    Stopped ///< The expression ran away, or its result is too large; the text is unchanged.
};

struct CleanUpRowResult
{
    CleanUpRowState state = CleanUpRowState::Skipped;
    qsizetype replacements = 0;
};

/// What a run did.
struct CleanUpRun
{
    bool found = false; ///< The scope lies in lines of the page; otherwise nothing was done.
    std::vector<CleanUpRowResult> rows; ///< One for each row of the table.
};

/// Receives the status text of each step.
using CleanUpProgress = std::function<void(const QString& status)>;

/// Applies the enabled rows, in order, to the lines that the scope touches; always to whole lines. Scopes
/// with an unknown name mean the selection. The run is two undo steps, and sets `UndoSteps` and
/// `BookUnchanged`.
/// \param paint  how the lines are painted afterwards
CleanUpRun CleanUpBookFragment(DisplayDocument& document, const CleanUpTable& table, const TagPaint& paint,
                               const CleanUpProgress& progress);

/// The rows alone: applies them to bare HTML whose shown angle brackets are masked.
/// \param html  see `MaskShownAngles`
[[nodiscard]] QString ApplyCleanUpRows(QString html, const std::vector<CleanUpRow>& rows,
                                       std::vector<CleanUpRowResult>& results,
                                       const CleanUpProgress& progress);

/// Puts the characters 1 and 2 in the place of `&lt;` and `&gt;`; others of the two are deleted.
[[nodiscard]] QString MaskShownAngles(QString html);

/// The reverse. A bracket that is no tag of a line any more, because a row has damaged the tag, becomes text
/// too: a tag that does not end would take the text after it out of sight.
/// \return the HTML in UTF-8
[[nodiscard]] std::string UnmaskShownAngles(const QString& html);

/// Masks the brackets of a row's two values, so that they mean shown brackets. In an expression they become
/// the escapes `\x01` and `\x02`.
void MaskCleanUpAngles(QString& what, QString& by, bool isRegExp);

/// Looks for `name(...)` in a text.
/// \return what is between the parentheses, through `ParseCleanUpChr`; empty when there is none.
[[nodiscard]] QString ParseCleanUpFunction(const QString& text, const QString& name);

/// Replaces each `chr(N)`, N from 1 to 255, by the character of that byte in the system's code page. Other
/// numbers stay as they are; a text that would become empty stays whole.
void ParseCleanUpChr(QString& text);

} // namespace vmk
