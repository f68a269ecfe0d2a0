#include "LineDelta.h"

#include <algorithm>

namespace vmk {

namespace {

/// The length of the common prefix of two sequences, at most `most`.
template <class Iterator, class Alike>
auto alikeLength(Iterator a, Iterator b, std::ptrdiff_t most, Alike alike)
{
    return std::mismatch(a, a + most, b, alike).first - a;
}

std::ptrdiff_t shorter(std::ptrdiff_t a, std::ptrdiff_t b)
{
    return std::min(a, b);
}

} // namespace

CommonEnds commonEnds(const std::vector<LinePtr>& before, const std::vector<LinePtr>& after)
{
    const Line& oldFirst = *before.front();
    const Line& newFirst = *after.front();
    const Line& oldLast = *before.back();
    const Line& newLast = *after.back();
    const auto frontText
        = alikeLength(oldFirst.text.cbegin(), newFirst.text.cbegin(),
                      shorter(oldFirst.text.size(), newFirst.text.size()), std::equal_to<>());
    const auto frontMarks
        = alikeLength(oldFirst.marks.begin(), newFirst.marks.begin(),
                      shorter(std::ssize(oldFirst.marks), std::ssize(newFirst.marks)), std::equal_to<>());

    // In a single line the common end must not overlap the common beginning.
    const auto textLeft = [frontText](const std::vector<LinePtr>& lines) {
        return lines.back()->text.size() - (lines.size() == 1 ? frontText : 0);
    };
    const auto marksLeft = [frontMarks](const std::vector<LinePtr>& lines) {
        return std::ssize(lines.back()->marks) - (lines.size() == 1 ? frontMarks : 0);
    };
    const auto backText = alikeLength(oldLast.text.crbegin(), newLast.text.crbegin(),
                                      shorter(textLeft(before), textLeft(after)), std::equal_to<>());
    const auto longer = newLast.text.size() - oldLast.text.size();
    const auto backMarks = alikeLength(oldLast.marks.rbegin(), newLast.marks.rbegin(),
                                       shorter(marksLeft(before), marksLeft(after)),
                                       [longer](const Mark& oldMark, Mark newMark) {
                                           newMark.pos -= std::int32_t(longer);
                                           return oldMark == newMark;
                                       });
    return {frontText, std::size_t(frontMarks), backText, std::size_t(backMarks)};
}

std::vector<LinePtr> withoutEnds(const std::vector<LinePtr>& lines, const CommonEnds& ends)
{
    std::vector<LinePtr> trimmed = lines;
    auto last = std::make_shared<Line>(*lines.back());
    last->text.chop(ends.backText);
    last->marks.resize(last->marks.size() - ends.backMarks);
    trimmed.back() = last;
    auto first = std::make_shared<Line>(*trimmed.front());
    first->text.remove(0, ends.frontText);
    first->text.squeeze();
    first->marks.erase(first->marks.begin(), first->marks.begin() + std::ptrdiff_t(ends.frontMarks));
    first->marks.shrink_to_fit();
    trimmed.front() = first;
    return trimmed;
}

std::vector<LinePtr> withEnds(const std::vector<LinePtr>& trimmed, const CommonEnds& ends,
                              const Line& otherFirst, const Line& otherLast)
{
    std::vector<LinePtr> whole = trimmed;
    auto first = std::make_shared<Line>(*trimmed.front());
    first->text.prepend(QStringView(otherFirst.text).first(ends.frontText));
    first->marks.insert(first->marks.begin(), otherFirst.marks.begin(),
                        otherFirst.marks.begin() + std::ptrdiff_t(ends.frontMarks));
    whole.front() = first;
    auto last = std::make_shared<Line>(*whole.back());
    last->text.append(QStringView(otherLast.text).last(ends.backText));
    const auto longer = std::int32_t(last->text.size() - otherLast.text.size());
    for (auto mark = otherLast.marks.end() - std::ptrdiff_t(ends.backMarks); mark != otherLast.marks.end();
         ++mark) {
        last->marks.push_back(*mark);
        last->marks.back().pos += longer;
    }
    whole.back() = last;
    return whole;
}

} // namespace vmk
