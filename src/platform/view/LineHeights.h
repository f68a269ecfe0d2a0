#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vmk {

/// The space of one line of a page on the screen.
struct LineExtent
{
    /// Pixels from the top of the line to the top of the next line.
    uint32_t height : 31 = 0;
    /// The height is from a real layout, not from an estimate.
    uint32_t measured : 1 = 0;
    /// The number of visual rows of the wrapped line.
    uint32_t rows = 1;

    friend bool operator==(const LineExtent&, const LineExtent&) = default;
};

/// The extents of a page's lines in order. Converts line to y and y to line in O(log n).
///
/// The lines are stored in blocks of a few hundred; a Fenwick tree over the totals of the blocks returns
/// every prefix sum. A change inside a block costs O(log n); splitting or removing a block costs a pass over
/// the blocks.
class LineHeights
{
public:
    /// Replaces all lines.
    void assign(std::span<const LineExtent> extents);

    /// Replaces `removed` lines from `first` on by `inserted`. `first` + `removed` is at most `lineCount()`.
    void replace(int first, int removed, std::span<const LineExtent> inserted);

    /// Changes the extent of one line.
    void set(int line, LineExtent extent);

    [[nodiscard]] int lineCount() const { return total.lines; }
    /// The height of all lines in pixels.
    [[nodiscard]] int64_t totalHeight() const { return total.height; }
    /// The number of rows of all lines.
    [[nodiscard]] int64_t totalRows() const { return total.rows; }
    /// The number of lines with an estimated height.
    [[nodiscard]] int unmeasuredLines() const { return total.unmeasured; }

    /// The extent of a line, 0 to `lineCount()` - 1.
    [[nodiscard]] LineExtent at(int line) const;

    /// The height above a line in pixels; for `lineCount()`, the total height.
    [[nodiscard]] int64_t top(int line) const;

    /// The number of rows above a line; for `lineCount()`, the number of all rows.
    [[nodiscard]] int64_t rowsBefore(int line) const;

    /// Returns the line at pixel `y`: the first line for a `y` above the page, the last one for a `y` below
    /// it, 0 if there are no lines. A line of height 0 is only returned if it is the last one.
    [[nodiscard]] int lineAt(int64_t y) const;

    /// Returns the first unmeasured line from `from` on, -1 if there is none.
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
    /// A Fenwick tree over the sums of the blocks; entry i is at index i + 1.
    std::vector<Sum> tree;
    Sum total;
};

} // namespace vmk
