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
/// The rows do not work on ranges. They work on one string: the HTML of the lines without the painting, in
/// which the angle brackets that the display shows are masked. At the end the lines are painted and replaced
/// together, so that a run takes two undo steps, regardless of the number of rows.
namespace vmk {

/// The outcome of one row.
enum class CleanUpRowState
{
    Skipped, ///< The row is not enabled, or has no text to replace.
    Applied,
    BadExpression, ///< The expression is not valid; the text is unchanged.
    Stopped ///< The expression took too long, or the result is too large; the text is unchanged.
};

struct CleanUpRowResult
{
    CleanUpRowState state = CleanUpRowState::Skipped;
    qsizetype replacements = 0;
};

/// The outcome of a run.
struct CleanUpRun
{
    bool found = false; ///< The scope contains lines of the page; otherwise the page is unchanged.
    std::vector<CleanUpRowResult> rows; ///< One for each row of the table.
};

/// Receives the status text of each step.
using CleanUpProgress = std::function<void(const QString& status)>;

/// Applies the enabled rows, in order, to all lines of the scope, always to whole lines. A scope with an
/// unknown name means the selection. The run takes two undo steps, and sets `UndoSteps` and `BookUnchanged`.
/// \param paint     how the lines are painted afterwards
/// \param progress  called with each status text
CleanUpRun CleanUpBookFragment(DisplayDocument& document, const CleanUpTable& table, const TagPaint& paint,
                               const CleanUpProgress& progress);

/// Applies the enabled rows, in order, to HTML without painting whose shown angle brackets are masked.
/// \param html     the result of `MaskShownAngles`
/// \param results  receives the outcome of each row
/// \return the HTML after all rows
[[nodiscard]] QString ApplyCleanUpRows(QString html, const std::vector<CleanUpRow>& rows,
                                       std::vector<CleanUpRowResult>& results,
                                       const CleanUpProgress& progress);

/// Replaces `&lt;` by character 1 and `&gt;` by character 2. Removes these two characters first.
[[nodiscard]] QString MaskShownAngles(QString html);

/// Reverses `MaskShownAngles`. A bracket that is no longer part of a tag, because a row has damaged the tag,
/// becomes text too: an unterminated tag would hide the text after it.
/// \return the HTML, in UTF-8
[[nodiscard]] std::string UnmaskShownAngles(const QString& html);

/// Masks the brackets in both values of a row, so that they match shown brackets. In an expression they
/// become the escapes `\x01` and `\x02`.
void MaskCleanUpAngles(QString& what, QString& by, bool isRegExp);

/// Searches a text for `name(...)`.
/// \return the text between the parentheses after `ParseCleanUpChr`; empty if there is none
[[nodiscard]] QString ParseCleanUpFunction(const QString& text, const QString& name);

/// Replaces each `chr(N)`, N from 1 to 255, by the character of that byte in the system's code page. Other
/// numbers are unchanged. A text that would become empty is unchanged.
void ParseCleanUpChr(QString& text);

} // namespace vmk
