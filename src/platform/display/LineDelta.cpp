#include "LineDelta.h"

#include "CommonEnds.h"

#include <span>

namespace vmk {

CommonEnds CommonEndsOf(const std::vector<LinePtr>& before, const std::vector<LinePtr>& after)
{
    const Line& oldFirst = *before.front();
    const Line& newFirst = *after.front();
    const Line& oldLast = *before.back();
    const Line& newLast = *after.back();
    const auto frontText = CommonFront(oldFirst.text, newFirst.text);
    const auto frontMarks = CommonFront(oldFirst.marks, newFirst.marks);

    // In a single line the back begins after the front.
    const auto frontWithin = [](const std::vector<LinePtr>& lines, std::ptrdiff_t front) {
        return lines.size() == 1 ? front : 0;
    };
    const auto backText = CommonBack(oldLast.text, frontWithin(before, frontText), newLast.text,
                                     frontWithin(after, frontText));
    const auto longer = newLast.text.size() - oldLast.text.size();
    const auto backMarks
        = CommonBack(oldLast.marks, frontWithin(before, frontMarks), newLast.marks,
                     frontWithin(after, frontMarks), [longer](const Mark& oldMark, Mark newMark) {
                         newMark.pos -= std::int32_t(longer);
                         return oldMark == newMark;
                     });
    return {frontText, std::size_t(frontMarks), backText, std::size_t(backMarks)};
}

std::vector<LinePtr> WithoutEnds(const std::vector<LinePtr>& lines, const CommonEnds& ends)
{
    std::vector<LinePtr> trimmed = lines;
    Line last = *lines.back();
    last.text.chop(ends.backText);
    last.marks = std::span<const Mark>(last.marks).first(last.marks.size() - ends.backMarks);
    trimmed.back() = MakeLine(std::move(last));
    Line first = *trimmed.front();
    first.text.remove(0, ends.frontText);
    first.text.squeeze();
    first.marks = std::span<const Mark>(first.marks).subspan(ends.frontMarks);
    trimmed.front() = MakeLine(std::move(first));
    return trimmed;
}

std::vector<LinePtr> WithEnds(const std::vector<LinePtr>& trimmed, const CommonEnds& ends,
                              const Line& otherFirst, const Line& otherLast)
{
    std::vector<LinePtr> whole = trimmed;
    Line first = *trimmed.front();
    first.text.prepend(QStringView(otherFirst.text).first(ends.frontText));
    std::vector<Mark> marks(otherFirst.marks.begin(), otherFirst.marks.begin() + ends.frontMarks);
    marks.insert(marks.end(), first.marks.begin(), first.marks.end());
    first.marks = marks;
    whole.front() = MakeLine(std::move(first));
    Line last = *whole.back();
    last.text.append(QStringView(otherLast.text).last(ends.backText));
    const auto longer = std::int32_t(last.text.size() - otherLast.text.size());
    marks = last.marks.toVector();
    for (Mark mark : std::span<const Mark>(otherLast.marks).last(ends.backMarks)) {
        mark.pos += longer;
        marks.push_back(mark);
    }
    last.marks = marks;
    whole.back() = MakeLine(std::move(last));
    return whole;
}

} // namespace vmk
