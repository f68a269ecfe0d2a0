#include "LineRewriter.h"

#include "LineEdit.h"

#include <algorithm>

namespace vmk {

LineRewriter::LineRewriter(const Line& line)
    : source(line)
{
    text.reserve(line.text.size());
    marks.reserve(line.marks.size());
}

void LineRewriter::copyMark(const Mark& mark)
{
    Mark copy = mark;
    copy.pos = length() + mark.pos - sourceOffset;
    marks.push_back(copy);
    if (mark.open)
        open.push_back(mark.tag);
    else
        open.pop_back();
}

/// Ends the elements deeper than `shared`; an element that begins here too is removed.
void LineRewriter::endElements(std::size_t shared)
{
    int ended = 0;
    for (std::size_t i = marks.size(); i > 0 && open.size() > shared; --i) {
        const Mark mark = marks[i - 1];
        if (mark.pos < length())
            break;
        ended += mark.open ? -1 : 1;
        if (ended >= 0)
            continue;
        ended = 0;
        open.pop_back();
        marks.erase(marks.begin() + std::ptrdiff_t(i - 1));
    }
    for (; open.size() > shared; open.pop_back())
        marks.push_back(Mark::closing(length(), open.back()));
}

void LineRewriter::replace(int from, int to, const QString& inserted)
{
    // All that is in front of the text, with the tags at its start.
    for (; sourceMark < source.marks.size() && source.marks[sourceMark].pos <= from; ++sourceMark)
        copyMark(source.marks[sourceMark]);
    text += QStringView(source.text).sliced(sourceOffset, from - sourceOffset);
    sourceOffset = to;

    // The tags within the text: elements around all of it go on, others end, or begin again, beside it.
    const auto isInside
        = [&] { return sourceMark < source.marks.size() && source.marks[sourceMark].pos < to; };
    if (!isInside()) {
        text += inserted;
        return;
    }
    std::vector<TagId> after = open;
    std::size_t shared = open.size();
    for (; isInside(); ++sourceMark) {
        if (source.marks[sourceMark].open)
            after.push_back(source.marks[sourceMark].tag);
        else
            after.pop_back();
        shared = std::min(shared, after.size());
    }
    endElements(shared);
    text += inserted;
    const auto endsHere = [&] {
        return sourceMark < source.marks.size() && source.marks[sourceMark].pos == to
            && !source.marks[sourceMark].open;
    };
    for (; after.size() > shared && endsHere(); ++sourceMark)
        after.pop_back();
    for (std::size_t i = shared; i < after.size(); ++i) {
        marks.push_back(Mark::opening(length(), after[i]));
        open.push_back(after[i]);
    }
}

void LineRewriter::wrapLast(int count, TagId tag)
{
    int from = length() - count;
    // No mark begins inside a surrogate pair.
    if (from > 0 && text[from].isLowSurrogate() && text[from - 1].isHighSurrogate())
        --from;
    const auto byPlace = [](const Mark& mark, int pos) { return mark.pos < pos; };
    // Only the last marks are looked at, not the line's.
    auto first = marks.end();
    while (first != marks.begin() && (first - 1)->pos > from)
        --first;
    const auto last = std::lower_bound(first, marks.end(), length(), byPlace);
    std::vector<Mark> tail = WrappedMarks({first, last}, from, length(), tag);
    tail.insert(tail.end(), last, marks.end());
    marks.erase(first, marks.end());
    marks.insert(marks.end(), tail.begin(), tail.end());
}

Line LineRewriter::take()
{
    for (; sourceMark < source.marks.size(); ++sourceMark)
        copyMark(source.marks[sourceMark]);
    text += QStringView(source.text).sliced(sourceOffset);
    text.squeeze();
    return {source.block, std::move(text), marks};
}

} // namespace vmk
