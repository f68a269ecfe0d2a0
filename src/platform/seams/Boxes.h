#pragma once

#include "Seam.h"

#include <QString>

namespace vmk {

/// The icon and the buttons of a box.
enum class BoxKind
{
    Plain, ///< no icon, OK
    Information, ///< information icon, OK
    Stop, ///< stop (error) icon, OK
    YesNo, ///< question, Yes and No
    Confirm ///< the same with No as the default button
};

/// The default title of a box.
inline constexpr QLatin1StringView ProgramTitle("Vellumark");

/// Shows a modal box; returns true for Yes. Without a window, the text is written to standard error and the
/// result is false. Lines of the text are separated by `CrLf` or LF.
[[nodiscard]] Seam<bool(BoxKind kind, const QString& text, const QString& title)>& BoxSeam();

/// The answer to a question that can be taken back.
enum class BoxAnswer
{
    Yes,
    No,
    Cancel ///< also by closing the box
};

/// Shows a modal question with Yes (the default), No and Cancel. Without a window, the text is written to
/// standard error and the result is `Cancel`.
[[nodiscard]] Seam<BoxAnswer(const QString& text, const QString& title)>& ChoiceBoxSeam();

void PlainBox(const QString& text, const QString& title = ProgramTitle);
void InformationBox(const QString& text, const QString& title = ProgramTitle);
void StopBox(const QString& text, const QString& title = ProgramTitle);
/// Returns true for Yes; closing the box means No.
[[nodiscard]] bool YesNoBox(const QString& text, const QString& title = ProgramTitle);
/// Asks before something is replaced: like `YesNoBox`, but Enter means No.
[[nodiscard]] bool ConfirmBox(const QString& text, const QString& title = ProgramTitle);
[[nodiscard]] BoxAnswer ChoiceBox(const QString& text, const QString& title = ProgramTitle);

} // namespace vmk
