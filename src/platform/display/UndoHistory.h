#pragma once

#include "DisplayLines.h"
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

/// The undo steps of a document: recorded changes, grouped into steps, and the number of executed steps. Only
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
    };

    /// Removes all steps; open groups remain open.
    void clear();

    // ---- recording

    /// Changes recorded between the outermost `openGroup` and its `closeGroup` are one step.
    void openGroup() { ++groupDepth; }
    /// \param selection  the selection of the document after the changes of the group
    void closeGroup(const Selection& selection);
    [[nodiscard]] bool isInGroup() const { return groupDepth > 0; }

    /// Adds a change, within a group; removes steps that could be redone.
    /// \param selection  the selection of the document before the change
    /// \return the recorded change; valid until the next call
    const LineChange& record(LineChange change, const Selection& selection);

    // ---- typing

    /// Returns whether text typed now, outside any group, can be joined to the last step.
    [[nodiscard]] bool mayJoinTyping() const;
    /// Adds the next change recorded in the open group to the last step.
    void reopenLastStep() { stepOpen = true; }
    /// Marks the last step as typed, if its group is the outermost one.
    /// \param joined  the last change was joined to an earlier one, and is merged with it if it continues at
    ///                its end
    void noteTyping(bool joined);
    /// The next typed text begins a new step.
    void endTypingRun();

    // ---- undo and redo

    [[nodiscard]] bool canUndo() const { return doneSteps > 0; }
    [[nodiscard]] bool canRedo() const { return doneSteps < steps.size(); }
    /// Counts the last step as undone. Returns that step, valid until the next call; null if there is none.
    [[nodiscard]] const Step* stepBack() { return canUndo() ? &steps[--doneSteps] : nullptr; }
    /// Counts the next undone step as done. Returns that step, valid until the next call; null if there is
    /// none.
    [[nodiscard]] const Step* stepForward() { return canRedo() ? &steps[doneSteps++] : nullptr; }

private:
    void mergeTyping();
    static void makeSmall(LineChange& change);

    std::vector<Step> steps;
    std::size_t doneSteps = 0; ///< Steps after them can be redone.
    int groupDepth = 0;
    bool stepOpen = false; ///< The current group already has its step.
};

} // namespace vmk
