#include "LineEdit.h"

#include "HtmlElements.h"

#include <algorithm>
#include <cstdint>

namespace vmk {

namespace {

/// A start tag that is open at a position, and the index of its mark.
struct OpenMark
{
    TagId tag = NoTag;
    std::size_t index = 0;
    int pos = 0;
};

std::vector<OpenMark> OpenMarks(const Line& line, std::size_t end)
{
    std::vector<OpenMark> open;
    for (std::size_t i = 0; i < end; ++i) {
        const Mark& mark = line.marks[i];
        if (mark.open)
            open.push_back({mark.tag, i, mark.pos});
        else
            open.pop_back();
    }
    return open;
}

/// The number of elements, from the outermost, that are open all the way from one mark to another.
std::size_t SharedDepth(const Line& line, std::size_t firstMark, std::size_t lastMark, std::size_t depth)
{
    std::size_t lowest = depth;
    for (std::size_t i = firstMark; i < lastMark; ++i) {
        depth = line.marks[i].open ? depth + 1 : depth - 1;
        lowest = std::min(lowest, depth);
    }
    return lowest;
}

/// The number of elements open at a cut, from the innermost, that end exactly there.
std::size_t EndingAt(const Line& line, Cut cut)
{
    std::size_t next = cut.mark;
    while (next < line.marks.size() && line.marks[next].pos == cut.offset && !line.marks[next].open)
        ++next;
    return next - cut.mark;
}

/// Composes one new line, mark by mark.
class LineComposer
{
public:
    explicit LineComposer(TagId lineBlock)
        : block(lineBlock)
    {
    }

    /// Appends the line up to a cut. Of the elements open there, those deeper than `shared` end; those that
    /// begin exactly at the cut are omitted.
    void appendLeft(const Line& source, Cut cut, const std::vector<OpenMark>& open, std::size_t shared)
    {
        const auto beginsAtCut = [&](std::size_t index) {
            return std::any_of(open.begin() + std::ptrdiff_t(shared), open.end(), [&](const OpenMark& mark) {
                return mark.index == index && mark.pos == cut.offset;
            });
        };
        text = source.text.first(cut.offset);
        marks.reserve(cut.mark);
        for (std::size_t i = 0; i < cut.mark; ++i) {
            if (source.marks[i].pos < cut.offset || !beginsAtCut(i))
                marks.push_back(source.marks[i]);
        }
        for (std::size_t i = open.size(); i > shared; --i) {
            if (open[i - 1].pos < cut.offset)
                close(open[i - 1].tag);
        }
    }

    /// Appends the line from a cut on. Elements open there and deeper than `shared` begin again, unless they
    /// end exactly at the cut.
    void appendRight(const Line& source, Cut cut, const std::vector<OpenMark>& open, std::size_t shared)
    {
        const std::size_t ended = std::min(EndingAt(source, cut), open.size() - shared);
        const std::size_t depth = open.size() - ended;
        std::size_t next = cut.mark + ended;
        for (std::size_t i = shared; i < depth; ++i)
            this->open(open[i].tag);
        const int shift = length() - cut.offset;
        text += QStringView(source.text).sliced(cut.offset);
        for (; next < source.marks.size(); ++next) {
            marks.push_back(source.marks[next]);
            marks.back().pos += shift;
        }
    }

    void append(const Line& piece)
    {
        const int shift = length();
        text += piece.text;
        for (Mark mark : piece.marks) {
            mark.pos += shift;
            marks.push_back(mark);
        }
    }

    void open(TagId tag) { marks.push_back(Mark::opening(length(), tag)); }
    void close(TagId tag) { marks.push_back(Mark::closing(length(), tag)); }

    [[nodiscard]] int length() const { return int(text.size()); }
    [[nodiscard]] Line take() { return {block, std::move(text), marks}; }
    [[nodiscard]] Line take(SharedMarks& known) { return {block, std::move(text), known.list(marks)}; }

private:
    TagId block;
    QString text;
    std::vector<Mark> marks;
};

/// The results for the inner lines of a content. Equal lines of a long one are mostly one object, and remain
/// one; equal marks become one list.
class ComposedLines
{
public:
    explicit ComposedLines(std::size_t count)
        : entries(count < ManyLines ? 1 : std::size_t(1) << HashBits)
    {
    }

    struct Entry
    {
        LinePtr piece;
        LinePtr composed; ///< The result for that piece.
    };
    /// The entry of a piece, which may be that of another one.
    [[nodiscard]] Entry& of(const LinePtr& piece)
    {
        constexpr std::uint64_t Spread = 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
        const auto address = std::uint64_t(reinterpret_cast<std::uintptr_t>(piece.get()));
        return entries[entries.size() == 1 ? 0 : address * Spread >> (64 - HashBits)];
    }
    SharedMarks marks;

private:
    static constexpr std::size_t ManyLines = 1000;
    static constexpr unsigned HashBits = 12;
    std::vector<Entry> entries;
};

bool IsEmptyLine(const Line& line)
{
    return line.text.isEmpty() && line.marks.empty();
}

bool TakesText(const Tag& tag)
{
    return tag.name != u"A" && KindOfElement(tag.name) != ElementKind::Void;
}

} // namespace

// ---------------------------------------------------------------- cuts

Cut InsertionCut(const TagTable& tags, const Line& line, int offset)
{
    const auto& marks = line.marks;
    const auto firstHere = std::lower_bound(marks.begin(), marks.end(), offset,
                                            [](const Mark& mark, int pos) { return mark.pos < pos; });
    const auto begin = std::size_t(firstHere - marks.begin());
    std::size_t end = begin;
    while (end < marks.size() && marks[end].pos == offset)
        ++end;

    for (std::size_t i = begin; i + 1 < end; ++i) {
        if (marks[i].open && !marks[i + 1].open && TakesText(tags[marks[i].tag]))
            return {offset, i + 1};
    }
    // The elements of the text before it continue; at the start of a line, the first element takes the text.
    return {offset, offset > 0 ? begin : end};
}

Cut RangeStartCut(const Line& line, int offset)
{
    const auto after = std::upper_bound(line.marks.begin(), line.marks.end(), offset,
                                        [](int pos, const Mark& mark) { return pos < mark.pos; });
    return {offset, std::size_t(after - line.marks.begin())};
}

Cut RangeEndCut(const Line& line, int offset)
{
    const auto here = std::lower_bound(line.marks.begin(), line.marks.end(), offset,
                                       [](const Mark& mark, int pos) { return mark.pos < pos; });
    return {offset, std::size_t(here - line.marks.begin())};
}

std::vector<TagId> ElementsAt(const Line& line, Cut cut)
{
    std::vector<TagId> tags;
    for (const OpenMark& mark : OpenMarks(line, cut.mark))
        tags.push_back(mark.tag);
    return tags;
}

// ---------------------------------------------------------------- edits

std::vector<LinePtr> ReplaceLineContent(const Line& first, Cut a, const Line& last, Cut b,
                                        std::vector<LinePtr> content, TagId nextBlock,
                                        EmptyElements emptyElements)
{
    const auto openBefore = OpenMarks(first, a.mark);
    const auto openAfter = OpenMarks(last, b.mark);
    std::size_t shared = &first == &last ? SharedDepth(first, a.mark, b.mark, openBefore.size()) : 0;
    if (content.size() == 1 && IsEmptyLine(*content[0]) && emptyElements == EmptyElements::Remove) {
        // An element that would have no text counts as one that ends on both sides.
        const std::size_t lasting = openAfter.size() - std::min(EndingAt(last, b), openAfter.size());
        while (shared > lasting && openBefore[shared - 1].pos == a.offset)
            --shared;
    }

    ComposedLines known(content.size());
    for (std::size_t i = 0; i < content.size(); ++i) {
        const LinePtr kept = content[i];
        const Line& piece = *kept;
        const bool isFirst = i == 0;
        const bool isLast = i + 1 == content.size();
        const TagId block = piece.block == NoTag ? nextBlock : piece.block;
        // In several lines, the shared elements continue only in lines that are not empty.
        const std::size_t around = content.size() > 1 && IsEmptyLine(piece) ? 0 : shared;
        const bool isInner = !isFirst && !isLast;
        if (isInner && around == 0 && block == piece.block)
            continue;
        ComposedLines::Entry& entry = known.of(kept);
        if (isInner && entry.piece == kept) {
            content[i] = entry.composed;
            continue;
        }

        LineComposer composer(isFirst ? first.block : block);
        if (isFirst) {
            composer.appendLeft(first, a, openBefore, around);
        } else {
            for (std::size_t k = 0; k < around; ++k)
                composer.open(openBefore[k].tag);
        }
        composer.append(piece);
        if (isLast) {
            composer.appendRight(last, b, openAfter, around);
        } else {
            for (std::size_t k = around; k > 0; --k)
                composer.close(openBefore[k - 1].tag);
        }
        content[i] = MakeLine(isInner ? composer.take(known.marks) : composer.take());
        if (isInner)
            entry = {kept, content[i]};
    }
    return content;
}

Line ContentBetween(const Line& line, Cut a, Cut b)
{
    const auto openBefore = OpenMarks(line, a.mark);
    const auto openAfter = OpenMarks(line, b.mark);
    const std::size_t shared = SharedDepth(line, a.mark, b.mark, openBefore.size());

    LineComposer composer(line.block);
    for (std::size_t i = shared; i < openBefore.size(); ++i)
        composer.open(openBefore[i].tag);
    std::vector<Mark> inner(line.marks.begin() + a.mark, line.marks.begin() + b.mark);
    for (Mark& mark : inner)
        mark.pos -= a.offset;
    composer.append({line.block, line.text.mid(a.offset, b.offset - a.offset), inner});
    for (std::size_t i = openAfter.size(); i > shared; --i)
        composer.close(openAfter[i - 1].tag);
    return composer.take();
}

bool IsTooDeep(const Line& line)
{
    if (line.marks.size() <= 2 * MaxInlineDepth)
        return false;
    std::size_t depth = 0;
    return std::any_of(line.marks.begin(), line.marks.end(), [&depth](const Mark& mark) {
        depth = mark.open ? depth + 1 : depth - 1;
        return depth > MaxInlineDepth;
    });
}

Line WithinDepth(const Line& line)
{
    std::vector<Mark> kept;
    std::size_t depth = 0;
    for (const Mark& mark : line.marks) {
        const std::size_t inside = mark.open ? ++depth : depth--;
        if (inside <= MaxInlineDepth)
            kept.push_back(mark);
    }
    return {line.block, line.text, kept};
}

std::vector<Mark> WrappedMarks(std::span<const Mark> inside, int from, int to, TagId tag)
{
    std::size_t depth = inside.size();
    std::size_t lowest = depth;
    for (const Mark& mark : inside) {
        depth = mark.open ? depth + 1 : depth - 1;
        lowest = std::min(lowest, depth);
    }
    const bool whole = depth == inside.size() && lowest == depth;

    std::vector<Mark> marks;
    marks.reserve(inside.size() + 2);
    marks.push_back(Mark::opening(from, tag));
    bool pieceOpen = true;
    for (std::size_t i = 0; i < inside.size(); ++i) {
        const Mark& mark = inside[i];
        if (!whole && pieceOpen) {
            marks.push_back(Mark::closing(mark.pos, tag));
            pieceOpen = false;
        }
        marks.push_back(mark);
        const bool pieceBegins = i + 1 == inside.size() || inside[i + 1].pos > mark.pos;
        if (!whole && pieceBegins) {
            marks.push_back(Mark::opening(mark.pos, tag));
            pieceOpen = true;
        }
    }
    marks.push_back(Mark::closing(to, tag));
    return marks;
}

Line WrapContent(const Line& line, int from, int to, TagId tag)
{
    const auto first = line.marks.begin() + std::ptrdiff_t(RangeStartCut(line, from).mark);
    const auto last = line.marks.begin() + std::ptrdiff_t(RangeEndCut(line, to).mark);
    const std::vector<Mark> wrapped = WrappedMarks({first, last}, from, to, tag);
    std::vector<Mark> marks;
    marks.reserve(line.marks.size() + wrapped.size());
    marks.assign(line.marks.begin(), first);
    marks.insert(marks.end(), wrapped.begin(), wrapped.end());
    marks.insert(marks.end(), last, line.marks.end());
    return {line.block, line.text, marks};
}

} // namespace vmk
