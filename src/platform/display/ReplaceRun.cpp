#include "ReplaceRun.h"

namespace vmk {

ReplaceRun::ReplaceRun(DisplayDocument& edited, Position from)
    : document(edited)
    , present(edited, from, from)
{
}

void ReplaceRun::replace(Position from, Position to, const QString& text)
{
    last = TextRange(document, from, to);
    present = last;
    present.setText(text);
}

void ReplaceRun::mark(int length, QStringView color)
{
    TextRange marked = present;
    marked.moveStart(u"character", -length);
    marked.execCommand(u"BackColor", false, color.toString());
}

void ReplaceRun::moveTo(Position place)
{
    present = TextRange(document, place, place);
}

} // namespace vmk
