#include "DisplayDocument.h"

#include <algorithm>

namespace vmk {

Position EditMap::operator()(Position place) const
{
    if (place <= from)
        return place;
    if (place < oldEnd)
        return from;
    if (place.line > oldEnd.line)
        return {place.line - oldEnd.line + newEnd.line, place.offset};
    return {newEnd.line, place.offset - oldEnd.offset + newEnd.offset};
}

// ---------------------------------------------------------------- groups

DisplayDocument::EditGroup::EditGroup(DisplayDocument& groupedDocument)
    : document(groupedDocument)
{
    ++document.groupDepth;
}

DisplayDocument::EditGroup::~EditGroup()
{
    if (--document.groupDepth > 0 || !document.stepOpen)
        return;
    document.stepOpen = false;
    document.steps.back().selectionAfter = document.currentSelection;
}

// ---------------------------------------------------------------- the document

DisplayDocument::DisplayDocument()
{
    reset({});
}

DisplayDocument::~DisplayDocument() = default;

void DisplayDocument::reset(std::vector<LinePtr> newLines)
{
    if (newLines.empty())
        newLines.push_back(std::make_shared<const Line>());
    lines.assign(std::move(newLines));
    steps.clear();
    undoSteps = 0;
    currentSelection = {};
    if (listener)
        listener->documentReset();
}

Position DisplayDocument::end() const
{
    const int last = lineCount() - 1;
    return {last, int(line(last).text.size())};
}

Position DisplayDocument::valid(Position place) const
{
    if (place.line < 0)
        return {};
    if (place.line >= lineCount())
        return end();
    const QString& text = line(place.line).text;
    place.offset = std::clamp(place.offset, 0, int(text.size()));
    const bool insidePair = place.offset > 0 && place.offset < text.size()
        && text[place.offset].isLowSurrogate() && text[place.offset - 1].isHighSurrogate();
    if (insidePair)
        --place.offset;
    return place;
}

void DisplayDocument::setSelection(Position anchor, Position focus)
{
    const Selection wanted{valid(anchor), valid(focus)};
    if (groupDepth == 0)
        endTypingRun();
    if (wanted == currentSelection)
        return;
    currentSelection = wanted;
    if (listener)
        listener->selectionChanged();
}

// ---------------------------------------------------------------- splice, undo, redo

void DisplayDocument::splice(int first, int removed, std::vector<LinePtr> inserted, const EditMap& map)
{
    const EditGroup group(*this);
    if (removed == lineCount() && inserted.empty())
        inserted.push_back(std::make_shared<const Line>());

    Change change{first, {}, std::move(inserted), map};
    change.before.reserve(std::size_t(removed));
    for (int i = 0; i < removed; ++i)
        change.before.push_back(lines[first + i]);

    if (!stepOpen) {
        steps.resize(undoSteps);
        steps.push_back({{}, currentSelection, currentSelection, false});
        ++undoSteps;
        stepOpen = true;
    }
    steps.back().changes.push_back(std::move(change));
    exchange(first, removed, steps.back().changes.back().after, map);
}

void DisplayDocument::exchange(int first, int removed, const std::vector<LinePtr>& inserted, const EditMap& map)
{
    lines.replace(first, removed, inserted);
    const Selection moved{valid(map(currentSelection.anchor)), valid(map(currentSelection.focus))};
    const bool selectionMoved = moved != currentSelection;
    currentSelection = moved;
    if (!listener)
        return;
    listener->linesChanged(first, removed, int(inserted.size()));
    if (selectionMoved)
        listener->selectionChanged();
}

void DisplayDocument::endTypingRun()
{
    if (undoSteps > 0)
        steps[undoSteps - 1].typing = false;
}

bool DisplayDocument::undo()
{
    if (!canUndo())
        return false;
    const UndoStep& step = steps[--undoSteps];
    for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change)
        exchange(change->first, int(change->after.size()), change->before, change->map.inverse());
    endTypingRun();
    setSelection(step.selectionBefore.anchor, step.selectionBefore.focus);
    return true;
}

bool DisplayDocument::redo()
{
    if (!canRedo())
        return false;
    const UndoStep& step = steps[undoSteps++];
    for (const Change& change : step.changes)
        exchange(change.first, int(change.before.size()), change.after, change.map);
    endTypingRun();
    setSelection(step.selectionAfter.anchor, step.selectionAfter.focus);
    return true;
}

} // namespace vmk
