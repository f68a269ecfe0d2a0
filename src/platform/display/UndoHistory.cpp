#include "UndoHistory.h"

#include <algorithm>

namespace vmk {

void UndoHistory::clear()
{
    steps.clear();
    doneSteps = 0;
}

void UndoHistory::closeGroup(const Selection& selection)
{
    if (--groupDepth > 0 || !stepOpen)
        return;
    stepOpen = false;
    steps.back().selectionAfter = selection;
}

const LineChange& UndoHistory::record(LineChange change, const Selection& selection)
{
    if (stepOpen) {
        if (!steps.back().typing)
            makeSmall(steps.back().changes.back());
        steps.back().changes.push_back(std::move(change));
    } else {
        dropUndone();
        for (std::size_t i = 0; doneSteps > 0 && i < steps.back().changes.size(); ++i)
            makeSmall(steps.back().changes[i]);
        // If memory runs out, there is no step without a change.
        Step step{{}, selection, selection, false, nullptr};
        step.changes.push_back(std::move(change));
        steps.push_back(std::move(step));
        ++doneSteps;
        stepOpen = true;
    }
    return steps.back().changes.back();
}

InLineRun& UndoHistory::recordRun(std::unique_ptr<InLineRun> run, const Selection& selection)
{
    dropUndone();
    steps.push_back({{}, selection, selection, false, std::move(run)});
    ++doneSteps;
    return *steps.back().run;
}

/// Forgets what could be redone.
void UndoHistory::dropUndone()
{
    steps.resize(doneSteps);
    if (!steps.empty() && steps.back().run)
        steps.back().run->dropUndone();
}

/// Reduces a change in very long lines to the changed part, so that a key press there does not store the
/// line.
void UndoHistory::makeSmall(LineChange& change)
{
    constexpr qsizetype VeryLong = 8192;
    const auto isVeryLong = [](const LinePtr& line) { return line->text.size() >= VeryLong; };
    const bool isWorthIt = !change.sharedEnds && !change.after.empty()
        && std::any_of(change.before.begin(), change.before.end(), isVeryLong);
    if (!isWorthIt)
        return;
    const CommonEnds ends = CommonEndsOf(change.before, change.after);
    if (ends == CommonEnds())
        return;
    // All of the new parts, then the change: memory may run out in between.
    auto before = WithoutEnds(change.before, ends);
    auto after = WithoutEnds(change.after, ends);
    change.sharedEnds = std::make_unique<const CommonEnds>(ends);
    change.before = std::move(before);
    change.after = std::move(after);
}

bool UndoHistory::mayJoinTyping() const
{
    return groupDepth == 0 && canUndo() && !canRedo() && steps.back().typing;
}

void UndoHistory::noteTyping(bool joined)
{
    steps.back().typing = groupDepth == 1;
    if (joined)
        mergeTyping();
}

/// Merges the last two changes into one, where the second one continues typing at the end of the first.
void UndoHistory::mergeTyping()
{
    std::vector<LineChange>& changes = steps.back().changes;
    LineChange& earlier = changes[changes.size() - 2];
    LineChange& later = changes.back();
    const bool typedOn = earlier.after.size() == 1 && later.before.size() == 1 && later.after.size() == 1
        && earlier.first == later.first && later.map.from == earlier.map.newEnd
        && later.map.from == later.map.oldEnd;
    if (!typedOn)
        return;
    earlier.after = std::move(later.after);
    earlier.map.newEnd = later.map.newEnd;
    changes.pop_back();
}

void UndoHistory::endTypingRun()
{
    if (doneSteps > 0)
        steps[doneSteps - 1].typing = false;
}

} // namespace vmk
