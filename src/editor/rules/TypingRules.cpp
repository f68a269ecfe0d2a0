#include "TypingRules.h"

#include "DisplayPage.h"
#include "EditLines.h"
#include "NonBreakingSpace.h"
#include "SettingsVariables.h"
#include "TextRange.h"

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QChar RealNbsp(0xa0);

} // namespace

void MoveCaret(DisplayDocument& document, CaretDirection direction)
{
    TextRange range = createRange(document);
    range.move(u"character", direction == CaretDirection::Left ? -1 : 1);
    range.select();
}

void InsertSpace(DisplayDocument& document, bool ctrl)
{
    if (ctrl) {
        InsertNbsp(document);
        return;
    }

    // A blank next to a blank is ignored, even if it would replace a selection.
    TextRange range = createRange(document);
    TextRange before = range.duplicate();
    before.collapse(true);
    before.moveStart(u"character", -1);
    TextRange behind = range.duplicate();
    behind.collapse(false);
    behind.moveEnd(u"character", 1);
    if (before.text() == u" " || behind.text() == u" ")
        return;

    range.setText(u" "_s);
    range.select();
    MarkEdit(1);
}

void InsertNbsp(DisplayDocument& document)
{
    TextRange range = createRange(document);
    range.setText(ShowNbsp == 1 ? QString(QLatin1Char(NbspMarker)) : QString(RealNbsp));
    range.select();
    MarkEdit(1);
}

void DeleteSelection(DisplayDocument& document)
{
    document.deleteSelection();
    MarkEdit(1);
}

} // namespace vmk
