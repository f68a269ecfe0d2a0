#pragma once

#include "DisplayLines.h"
#include "InLineRun.h"
#include "LineDelta.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace vmk {

/// The lines from `first` on, before and after one splice.
struct LineChange
{
    int first;
    std::vector<LinePtr> before;
    std::vector<LinePtr> after;
    EditMap map;
    /// The common ends of very long lines, which are stored only once; null if the lines are complete.
    std::unique_ptr<const CommonEnds> sharedEnds;
};

/// The undo steps of a document: what was changed, grouped into steps, and which of them are done. It only
/// records; the document applies the changes.
class UndoHistory
{
public:
    struct Step
    {
        std::vector<LineChange> changes;
        Selection selectionBefore;
        Selection selectionAfter;
        bool typing = false; ///< A run of typing that the next typed character continues.
        /// Many steps in one instead of `changes`; it may be reverted in part.
        std::unique_ptr<InLineRun> run;
    };

    /// Forgets all steps; open groups stay open.
    void clear();

    // ---- recording

    /// Changes recorded between the outermost `openGroup` and its `closeGroup` are one step.
    void openGroup() { ++groupDepth; }
    /// \param selection  that of the document after the changes of the group
    void closeGroup(const Selection& selection);
    [[nodiscard]] bool isInGroup() const { return groupDepth > 0; }

    /// Adds a change, within a group; steps that could be redone are dropped.
    /// \param selection  that of the document before the change
    /// \return the change as kept, until the next call
    const LineChange& record(LineChange change, const Selection& selection);

    /// Adds a run outside any group; steps that could be redone are dropped.
    /// \param selection  that of the document before the run
    InLineRun& recordRun(std::unique_ptr<InLineRun> run, const Selection& selection);

    // ---- typing

    /// Whether text typed now, outside any group, may join the last step.
    [[nodiscard]] bool mayJoinTyping() const;
    /// The next change recorded in the open group is added to the last step.
    void reopenLastStep() { stepOpen = true; }
    /// Marks the last step as typed, if its group is the outermost one.
    /// \param joined  the last change has joined an earlier one, and is merged with it if it continues at
    /// its end
    void noteTyping(bool joined);
    /// The next typed text begins a separate step.
    void endTypingRun();

    // ---- undo and redo

    [[nodiscard]] bool canUndo() const { return doneSteps > 0; }
    [[nodiscard]] std::size_t undoSteps() const { return doneSteps; }
    [[nodiscard]] bool canRedo() const { return isRunUnderWay() || doneSteps < steps.size(); }
    /// The step to undo next: all of it, or what is done of a run. There must be one.
    [[nodiscard]] const Step* lastDone() const { return &steps[doneSteps - 1]; }
    /// The step to redo next: all of it, or the rest of a run. There must be one.
    [[nodiscard]] const Step* firstUndone() const
    {
        return &steps[isRunUnderWay() ? doneSteps - 1 : doneSteps];
    }
    /// Counts the last step as undone. \return that step, until the next call; null when there is none.
    [[nodiscard]] const Step* stepBack() { return canUndo() ? &steps[--doneSteps] : nullptr; }
    /// Counts the next undone step as done. \return that step, until the next call; null when there is none.
    [[nodiscard]] const Step* stepForward()
    {
        return doneSteps < steps.size() ? &steps[doneSteps++] : nullptr;
    }

private:
    [[nodiscard]] bool isRunUnderWay() const
    {
        return doneSteps > 0 && steps[doneSteps - 1].run && !steps[doneSteps - 1].run->isDone();
    }
    void dropUndone();
    void mergeTyping();
    static void makeSmall(LineChange& change);

    std::vector<Step> steps;
    std::size_t doneSteps = 0; ///< Those after them can be redone.
    int groupDepth = 0;
    bool stepOpen = false; ///< The group running has its step already.
};

} // namespace vmk
