#include "ReplaceRun.h"

#include <utility>

namespace vmk {
namespace {

bool hasLineBreak(const QString& text)
{
    return text.contains(u'\r') || text.contains(u'\n');
}

} // namespace

ReplaceRun::ReplaceRun(DisplayDocument& edited, Position from)
    : document(edited)
    , present(edited, from, from)
{
}

Position ReplaceRun::position() const
{
    return gathered.empty() ? present.end() : gatheredTo;
}

void ReplaceRun::replace(Position from, Position to, const QString& text)
{
    if (from.line != to.line || hasLineBreak(text)) {
        // What is gathered in the same line moves the text.
        const int moved = !gathered.empty() && gatheredTo.line == from.line ? shift : 0;
        flush();
        const int movedEnd = to.line == from.line ? moved : 0;
        last = TextRange(document, {from.line, from.offset + moved}, {to.line, to.offset + movedEnd});
        present = last;
        present.setText(text);
        return;
    }
    if (gathered.empty() || gatheredTo.line != from.line)
        shift = 0;
    gathered.push_back({from.line, from.offset, to.offset, text, NoTag, 0});
    gatheredTo = to;
    lastLength = int(text.size());
    shift += lastLength - (to.offset - from.offset);
}

void ReplaceRun::mark(int length, QStringView color)
{
    const bool inLine = !gathered.empty() && gatheredTo.offset + shift >= length;
    if (inLine) {
        const TagId font = document.tags().intern(u"FONT", {});
        const QString style = QStringLiteral("BACKGROUND-COLOR: ") + color.toString();
        gathered.push_back(
            {gatheredTo.line, 0, 0, {}, document.tags().withAttribute(font, u"style", style), length});
        return;
    }
    flush();
    TextRange marked = present;
    marked.moveStart(u"character", -length);
    // A mark over no text is a step too, so that an undo command reverts this run and no other edit.
    if (!marked.execCommand(u"BackColor", false, color.toString()))
        document.splice(0, 0, {}, {{0, 0}, {0, 0}, {0, 0}});
}

void ReplaceRun::moveTo(Position place)
{
    flush();
    present = TextRange(document, place, place);
}

void ReplaceRun::flush()
{
    if (gathered.empty())
        return;
    document.replaceInLines(std::exchange(gathered, {}));
    const Position end{gatheredTo.line, gatheredTo.offset + shift};
    present = TextRange(document, end, end);
    last = TextRange(document, {end.line, end.offset - lastLength}, end);
}

} // namespace vmk
