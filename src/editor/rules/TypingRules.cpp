#include "TypingRules.h"

#include "DisplayPage.h"
#include "EditLines.h"
#include "TextRange.h"

namespace vmk {

using namespace Qt::StringLiterals;

void MoveCaret(DisplayDocument& document, CaretDirection direction)
{
    TextRange range = page::createRange(document);
    range.move(TextUnit::Character, direction == CaretDirection::Left ? -1 : 1);
    range.select();
}

void InsertSpace(DisplayDocument& document)
{
    // A blank next to a blank is ignored, even if it would replace a selection.
    TextRange range = page::createRange(document);
    TextRange before = range.duplicate();
    before.collapse(true);
    before.moveStart(TextUnit::Character, -1);
    TextRange after = range.duplicate();
    after.collapse(false);
    after.moveEnd(TextUnit::Character, 1);
    if (before.text() == u" " || after.text() == u" ")
        return;

    range.setText(u" "_s);
    range.select();
    MarkEdit(1);
}

void InsertNbsp(DisplayDocument& document, QChar nbsp)
{
    TextRange range = page::createRange(document);
    range.setText(nbsp);
    range.select();
    MarkEdit(1);
}

void DeleteSelection(DisplayDocument& document)
{
    document.eraseSelection();
    MarkEdit(1);
}

} // namespace vmk
