#pragma once

#include "BookVariables.h"
#include "CaretTag.h"
#include "DisplayValuesOfSettings.h"
#include "NodeShift.h"
#include "NonBreakingSpace.h"
#include "PasteRules.h"
#include "Repaint.h"
#include "SettingsVariables.h"
#include "TypingRules.h"

/// The commands that depend on settings, with the settings in force, as the main window calls them.
namespace vmk {

[[nodiscard]] inline TagPaint CurrentTagPaint()
{
    return TagPaint::Of(DisplayValuesOfSettings());
}

[[nodiscard]] inline QChar CurrentNbsp()
{
    return ShownNbsp(ShowNbsp == 1);
}

inline void InsertNbsp(DisplayDocument& document)
{
    InsertNbsp(document, CurrentNbsp());
}

inline void RightShift(DisplayDocument& document)
{
    RightShift(document, NodeShift);
}

inline void LeftShift(DisplayDocument& document)
{
    LeftShift(document, NodeShift);
}

inline void PasteText(DisplayDocument& document, const QString& clipboard, QPoint lastPress)
{
    PasteText(document, clipboard, lastPress, CurrentNbsp());
}

inline void PasteHtml(DisplayDocument& document, const QString& clipboard, QPoint lastPress)
{
    PasteHtml(document, clipboard, lastPress, CurrentNbsp());
}

inline void RePaintSelection(DisplayDocument& document, const LastPress& lastPress)
{
    RePaintSelection(document, lastPress, CurrentTagPaint());
}

[[nodiscard]] inline QString RePaintHtml(const QString& html)
{
    return RePaintHtml(html, CurrentTagPaint());
}

[[nodiscard]] inline TagEntries EntriesFor(const CaretTag& tag, std::string_view binaryPart)
{
    return EntriesFor(tag, binaryPart, WorkCodePage);
}

} // namespace vmk
