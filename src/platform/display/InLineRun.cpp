#include "InLineRun.h"

#include "DisplayDocument.h"
#include "LineEdit.h"
#include "LineRewriter.h"
#include "TextRange.h"

#include <algorithm>

namespace vmk {

InLineRun::InLineRun(std::vector<InLineStep> stepsInOrder)
    : steps(std::move(stepsInOrder))
{
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (i == 0 || steps[i].line != steps[i - 1].line)
            changedLines.push_back({steps[i].line, i, {}, {}});
    }
}

bool InLineRun::isTooDeepFor(const ChangedLine& changed)
{
    return IsTooDeep(*changed.after);
}

/// The number after that of the line's last step.
std::size_t InLineRun::lastStep(const ChangedLine& changed) const
{
    const auto next = std::size_t(&changed - changedLines.data()) + 1;
    return next < changedLines.size() ? changedLines[next].firstStep : steps.size();
}

std::span<const InLineRun::ChangedLine> InLineRun::changedBetween(std::size_t first, std::size_t last) const
{
    const auto begin = std::upper_bound(
        changedLines.begin(), changedLines.end(), first,
        [](std::size_t step, const ChangedLine& changed) { return step < changed.firstStep; });
    const auto end
        = std::lower_bound(begin, changedLines.end(), last, [](const ChangedLine& changed, std::size_t step) {
              return changed.firstStep < step;
          });
    return first < last ? std::span(begin - 1, end) : std::span<const ChangedLine>();
}

LinePtr InLineRun::rewritten(const ChangedLine& changed, std::size_t done) const
{
    LineRewriter rewriter(*changed.before);
    for (std::size_t i = changed.firstStep; i < std::min(done, lastStep(changed)); ++i) {
        const InLineStep& step = steps[i];
        if (step.mark == NoTag)
            rewriter.replace(step.from, step.to, step.text);
        else
            rewriter.wrapLast(step.length, step.mark);
    }
    return MakeLine(rewriter.take());
}

LinePtr InLineRun::lineWhen(const ChangedLine& changed, std::size_t done) const
{
    if (done <= changed.firstStep)
        return changed.before;
    return done >= lastStep(changed) ? changed.after : rewritten(changed, done);
}

int InLineRun::carried(const ChangedLine& changed, int offset, std::size_t from, std::size_t to) const
{
    // Each step's places as they are while it is done.
    std::vector<EditMap> maps;
    const auto [first, last] = std::minmax(from, to);
    int shift = 0;
    for (std::size_t i = changed.firstStep; i < std::min(last, lastStep(changed)); ++i) {
        const InLineStep& step = steps[i];
        if (step.mark != NoTag)
            continue;
        const int start = step.from + shift;
        const int length = int(step.text.size());
        if (i >= first)
            maps.push_back({{0, start}, {0, step.to + shift}, {0, start + length}});
        shift += length - (step.to - step.from);
    }
    Position place{0, offset};
    if (from < to) {
        for (const EditMap& map : maps)
            place = map(place);
    } else {
        for (std::size_t i = maps.size(); i-- > 0;)
            place = maps[i].inverse()(place);
    }
    return place.offset;
}

Position InLineRun::carried(Position place) const
{
    const auto changed
        = std::lower_bound(changedLines.begin(), changedLines.end(), place.line,
                           [](const ChangedLine& line, int index) { return line.index < index; });
    if (changed != changedLines.end() && changed->index == place.line)
        place.offset = carried(*changed, place.offset, 0, doneSteps);
    return place;
}

Selection InLineRun::carried(const Selection& selection) const
{
    return {carried(selection.anchor), carried(selection.focus)};
}

void InLineRun::dropUndone()
{
    if (isDone())
        return;
    while (!changedLines.empty() && changedLines.back().firstStep >= doneSteps)
        changedLines.pop_back();
    if (!changedLines.empty())
        changedLines.back().after = lineWhen(changedLines.back(), doneSteps);
    steps.resize(doneSteps);
}

// ---------------------------------------------------------------- in a document

void DisplayDocument::replaceInLines(std::vector<InLineStep> replacements)
{
    if (replacements.empty())
        return;
    auto run = std::make_unique<InLineRun>(std::move(replacements));
    // A line whose elements would nest too deep loses some of them with each step: those steps are made one
    // after the other.
    if (history.isInGroup() || !run->make([this](int index) { return lines[index]; }))
        return replaceOneByOne(run->allSteps());
    InLineRun& made = history.recordRun(std::move(run), currentSelection);
    moveRun(made, made.size());
}

/// The same with an ordinary step of undo for each.
void DisplayDocument::replaceOneByOne(const std::vector<InLineStep>& replacements)
{
    int shift = 0;
    Position end;
    for (std::size_t i = 0; i < replacements.size(); ++i) {
        const InLineStep& step = replacements[i];
        if (i > 0 && step.line != replacements[i - 1].line)
            shift = 0;
        if (step.mark != NoTag) {
            wrapRange({step.line, end.offset - step.length}, end, step.mark);
            continue;
        }
        end = replaceText({step.line, step.from + shift}, {step.line, step.to + shift}, step.text);
        shift += int(step.text.size()) - (step.to - step.from);
    }
}

/// Does steps of a run, or takes them back, until so many are done.
void DisplayDocument::moveRun(InLineRun& run, std::size_t done)
{
    const std::size_t before = run.done();
    const Selection oldSelection = currentSelection;
    std::vector<LinePtr> removed(1);
    std::vector<LinePtr> inserted(1);
    for (const InLineRun::ChangedLine& changed :
         run.changedBetween(std::min(before, done), std::max(before, done))) {
        removed[0] = lines[changed.index];
        inserted[0] = run.lineWhen(changed, done);
        lines.replace(changed.index, 1, inserted);
        ++revision;
        knownLineStarts = std::min(knownLineStarts, changed.index + 1);
        const auto carry = [&](Position& place) {
            if (place.line == changed.index)
                place = valid({place.line, run.carried(changed, place.offset, before, done)});
        };
        for (TextRange* range : liveRanges) {
            carry(range->first);
            carry(range->last);
        }
        carry(currentSelection.anchor);
        carry(currentSelection.focus);
        notify([&](DisplayListener& observer) { observer.linesChanged(changed.index, removed, inserted); });
    }
    run.setDone(done);
    if (oldSelection != currentSelection)
        notify([](DisplayListener& observer) { observer.selectionChanged(); });
}

} // namespace vmk
