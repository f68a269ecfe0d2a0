#pragma once

#include "MarkList.h"
#include "TagTable.h"

#include <QString>

#include <atomic>
#include <compare>
#include <cstdint>
#include <utility>
#include <vector>

/// The parts of a display document: lines with their marks, positions between characters, and the effect of
/// an edit on positions.
namespace vmk {

/// The number of `LinePtr` to a line. It is not part of the line's value: a copy begins with none.
class LineUses
{
public:
    LineUses() = default;
    LineUses(const LineUses& /*other*/) noexcept { }
    LineUses& operator=(const LineUses& /*other*/) noexcept { return *this; }
    ~LineUses() = default;

    void add() const noexcept { count.fetch_add(1, std::memory_order_relaxed); }
    /// Returns true for the last one.
    [[nodiscard]] bool remove() const noexcept { return count.fetch_sub(1, std::memory_order_acq_rel) == 1; }

    friend bool operator==(const LineUses& /*a*/, const LineUses& /*b*/) { return true; }

private:
    mutable std::atomic<std::uint32_t> count = 0;
};

/// One line of the page: its block `<DIV …>`, its text, and its in-line tags in order.
struct Line
{
    Line() = default;
    Line(TagId lineBlock, QString lineText, MarkList lineMarks)
        : block(lineBlock)
        , text(std::move(lineText))
        , marks(std::move(lineMarks))
    {
    }

    TagId block = NoTag; ///< `NoTag` only for the one empty line of a document without content.
    LineUses uses;
    QString text; ///< Never contains CR or LF.
    MarkList marks; ///< Ascending by `pos`, properly nested, all closed.

    friend bool operator==(const Line&, const Line&) = default;
};

/// A shared line, which does not change any more. A page can have a line for each few bytes of a text, and
/// several lists of its lines exist; the pointer and the line are therefore as small as possible. Pointers to
/// one line may be used in several threads.
class LinePtr
{
public:
    LinePtr() = default;
    LinePtr(const LinePtr& other) noexcept
        : line(other.line)
    {
        if (line)
            line->uses.add();
    }
    LinePtr(LinePtr&& other) noexcept
        : line(std::exchange(other.line, nullptr))
    {
    }
    LinePtr& operator=(LinePtr other) noexcept
    {
        std::swap(line, other.line);
        return *this;
    }
    ~LinePtr()
    {
        if (line && line->uses.remove())
            delete line;
    }

    void reset() { *this = LinePtr(); }
    [[nodiscard]] const Line* get() const { return line; }
    const Line& operator*() const { return *line; }
    const Line* operator->() const { return line; }
    explicit operator bool() const { return line != nullptr; }
    friend bool operator==(const LinePtr&, const LinePtr&) = default;

private:
    friend LinePtr MakeLine(Line content);

    const Line* line = nullptr;
};

/// Returns a new shared line.
[[nodiscard]] inline LinePtr MakeLine(Line content)
{
    LinePtr made;
    made.line = new Line(std::move(content));
    made.line->uses.add();
    return made;
}

/// A position between two characters: line from 0, offset in its text from 0 to its length.
struct Position
{
    int line = 0;
    int offset = 0;

    friend auto operator<=>(const Position&, const Position&) = default;
};

/// A position in a line between two marks, or between a mark and a character: before the character at
/// `offset` and the mark with index `mark`, after all earlier ones.
struct Cut
{
    int offset = 0;
    std::size_t mark = 0;
};

/// The selection. The caret is at `focus`; with equal ends there is only a caret.
struct Selection
{
    Position anchor;
    Position focus;

    [[nodiscard]] bool isEmpty() const { return anchor == focus; }
    [[nodiscard]] Position start() const { return anchor < focus ? anchor : focus; }
    [[nodiscard]] Position end() const { return anchor < focus ? focus : anchor; }
    friend bool operator==(const Selection&, const Selection&) = default;
};

/// Maps positions across an edit that replaces the text from `from` to `oldEnd` by a text that ends at
/// `newEnd`. Positions up to and including `from` are unchanged, positions from `oldEnd` on move with the
/// text, and positions in between become `from`.
struct EditMap
{
    Position from;
    Position oldEnd;
    Position newEnd;
    bool inFront = false; ///< Whole lines were inserted before `from`, which moves with its line.

    [[nodiscard]] Position operator()(Position place) const;
    [[nodiscard]] EditMap inverse() const { return {from, newEnd, oldEnd, false}; }
};

} // namespace vmk
