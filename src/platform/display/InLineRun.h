#pragma once

#include "DisplayLines.h"

#include <QString>

#include <cstddef>
#include <span>
#include <vector>

namespace vmk {

/// A replacement within a line, or a mark on its new text: one step of undo.
struct InLineStep
{
    int line = 0;
    /// Of a replacement: offsets in the line as it was before the run. Never equal, and never in front of an
    /// earlier step's.
    int from = 0;
    int to = 0;
    /// Of a replacement: without line breaks.
    QString text;
    /// The element that a mark is; `NoTag` for a replacement.
    TagId mark = NoTag;
    /// Of a mark: it is put around so many characters, the last one being the last replacement's.
    int length = 0;
};

/// Replacements in many lines, kept so that any number of them can be taken back: each line as it was and as
/// it is, and the steps in between.
class InLineRun
{
public:
    struct ChangedLine
    {
        int index = 0;
        std::size_t firstStep = 0;
        LinePtr before;
        LinePtr after;
    };

    /// \param stepsInOrder ascending by line and place
    explicit InLineRun(std::vector<InLineStep> stepsInOrder);
    /// Makes the lines as they are after the run.
    /// \param lineAt the line of an index in the document
    /// \return false if a line's elements nest too deep: then the run cannot be used
    template <typename LineAt>
    [[nodiscard]] bool make(LineAt lineAt)
    {
        for (ChangedLine& changed : changedLines) {
            changed.before = lineAt(changed.index);
            changed.after = rewritten(changed, steps.size());
            if (isTooDeepFor(changed))
                return false;
        }
        return true;
    }

    [[nodiscard]] const std::vector<InLineStep>& allSteps() const { return steps; }
    [[nodiscard]] std::size_t size() const { return steps.size(); }
    /// How many steps are done in the document.
    [[nodiscard]] std::size_t done() const { return doneSteps; }
    [[nodiscard]] bool isDone() const { return doneSteps == steps.size(); }
    void setDone(std::size_t count) { doneSteps = count; }

    /// The lines that the steps from one number to another change.
    [[nodiscard]] std::span<const ChangedLine> changedBetween(std::size_t first, std::size_t last) const;
    /// Returns a line after `done` steps of the run.
    [[nodiscard]] LinePtr lineWhen(const ChangedLine& changed, std::size_t done) const;
    /// Returns the offset, after `to` steps of the run, of what is at `offset` after `from` steps.
    [[nodiscard]] int carried(const ChangedLine& changed, int offset, std::size_t from, std::size_t to) const;
    /// Returns the selection after the run, for a selection made before it.
    [[nodiscard]] Selection carried(const Selection& selection) const;
    /// Forgets the steps that are not done.
    void dropUndone();

private:
    [[nodiscard]] std::size_t lastStep(const ChangedLine& changed) const;
    [[nodiscard]] LinePtr rewritten(const ChangedLine& changed, std::size_t done) const;
    [[nodiscard]] static bool isTooDeepFor(const ChangedLine& changed);
    [[nodiscard]] Position carried(Position place) const;

    std::vector<InLineStep> steps;
    std::vector<ChangedLine> changedLines;
    std::size_t doneSteps = 0;
};

} // namespace vmk
