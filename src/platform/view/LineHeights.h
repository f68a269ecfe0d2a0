#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vmk {

/// What one line of a page takes on the screen.
struct LineExtent
{
    /// Pixels from the line's top to the next line's top.
    uint32_t height : 31 = 0;
    /// The height comes from a real layout and not from an estimate.
    uint32_t measured : 1 = 0;
    /// Visual rows that the line wraps into.
    uint32_t rows = 1;

    friend bool operator==(const LineExtent&, const LineExtent&) = default;
};

/// The extents of a page's lines in order: line to y and y to line in log n, at any number of lines.
///
/// The lines stand in blocks of a few hundred; a Fenwick tree over the blocks' totals gives every prefix
/// sum. A change inside a block costs log n, a block split or taken out a pass over the blocks.
class LineHeights
{
public:
    /// Takes the place of all lines.
    void assign(std::span<const LineExtent> extents);

    /// Takes `removed` lines out at `first` and puts `inserted` in their place.
    /// `first` + `removed` is at most `lineCount()`.
    void replace(int first, int removed, std::span<const LineExtent> inserted);

    /// Changes one line's extent.
    void set(int line, LineExtent extent);

    [[nodiscard]] int lineCount() const { return total.lines; }
    /// Pixels of all lines together.
    [[nodiscard]] int64_t totalHeight() const { return total.height; }
    /// Rows of all lines together.
    [[nodiscard]] int64_t totalRows() const { return total.rows; }
    /// Lines whose height is still an estimate.
    [[nodiscard]] int unmeasuredLines() const { return total.unmeasured; }

    /// The extent of a line from 0 to `lineCount()` - 1.
    [[nodiscard]] LineExtent at(int line) const;

    /// Pixels above a line; `lineCount()` gives the total height.
    [[nodiscard]] int64_t top(int line) const;

    /// Rows above a line; `lineCount()` gives all rows.
    [[nodiscard]] int64_t rowsBefore(int line) const;

    /// The line that holds pixel `y`: the first line for a `y` above the page, the last one for a `y`
    /// below it, 0 when there are no lines. A line of no height is never found but as the last one.
    [[nodiscard]] int lineAt(int64_t y) const;

    /// The first unmeasured line from `from` on, -1 if there is none.
    [[nodiscard]] int nextUnmeasured(int from) const;

private:
    struct Sum
    {
        int lines = 0;
        int unmeasured = 0;
        int64_t height = 0;
        int64_t rows = 0;

        void add(const LineExtent& extent);
        Sum& operator+=(const Sum& other);
        Sum& operator-=(const Sum& other);
    };
    struct Block
    {
        std::vector<LineExtent> extents;
        Sum sum;
    };
    struct Place
    {
        size_t block;
        int offset;
        Sum before;
    };

    [[nodiscard]] Place placeOf(int line) const;
    [[nodiscard]] Sum sumBefore(int line) const;
    void changeBlock(size_t block, const Sum& newSum);
    void rebuildTree();
    static void appendBlocks(std::vector<Block>& blocks, std::span<const LineExtent> extents);

    std::vector<Block> blocks;
    /// Fenwick tree over the blocks' sums; entry i stands at i + 1.
    std::vector<Sum> tree;
    Sum total;
};

} // namespace vmk
