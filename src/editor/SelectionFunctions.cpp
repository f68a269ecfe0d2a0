#include "SelectionFunctions.h"

#include "EditorState.h"
#include "MainDisplay.h"

namespace vmk {

TextRange SelectionRange()
{
    return page::createRange(FileDoc());
}

SelectedNodes SelectNodes(LineSelectionOptions options)
{
    SelectedNodes nodes = SelectNodes(FileDoc(), {.select = true, .returnHtml = options.returnHtml});
    if (nodes.first < 1)
        return nodes;
    if (options.cancelEvent)
        LinesSelected = true;
    LineAnchorRange.reset();
    if (options.keepAnchor)
        LineAnchorRange = nodes.range;
    return nodes;
}

void StoreOffsets()
{
    const TextRange range = SelectionRange();
    CaretOffsetLeft = range.offsetLeft();
    CaretOffsetTop = range.offsetTop();
    SavedScrollLeft = MainDisplay().scrollLeft();
    SavedScrollTop = MainDisplay().scrollTop();
}

void StoreMouseDownRange()
{
    MouseDownRange = SelectionRange();
}

bool SelectTagAtCaret()
{
    if (!MouseDownRange)
        return false;
    const std::optional<TextRange> tag = TagAround(*MouseDownRange);
    if (tag)
        tag->select();
    return tag.has_value();
}

bool ShiftClickSelect()
{
    if (!LineAnchorRange)
        return false;
    const int scrollTop = MainDisplay().scrollTop();
    TripleClickPending = false;
    TextRange range = SelectionRange();
    if (range.compareEndPoints(EndPoints::EndToEnd, *LineAnchorRange) == 1)
        range.setEndPoint(EndPoints::StartToStart, *LineAnchorRange);
    else if (range.compareEndPoints(EndPoints::StartToStart, *LineAnchorRange) == -1)
        range.setEndPoint(EndPoints::EndToEnd, *LineAnchorRange);
    range.select();
    SelectNodes({.keepAnchor = true});
    MainDisplay().scroll(0, scrollTop);
    LineAnchorRange = SelectionRange();
    LinesSelected = true;
    return true;
}

} // namespace vmk
