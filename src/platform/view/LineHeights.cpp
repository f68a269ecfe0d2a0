#include "LineHeights.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace vmk {

namespace {

/// The number of lines in a new block, and the maximum to which a block may grow.
constexpr size_t BlockFill = 256;
constexpr size_t BlockLimit = 2 * BlockFill;

} // namespace

void LineHeights::Sum::add(const LineExtent& extent)
{
    ++lines;
    unmeasured += extent.measured ? 0 : 1;
    height += extent.height;
    rows += extent.rows;
}

LineHeights::Sum& LineHeights::Sum::operator+=(const Sum& other)
{
    lines += other.lines;
    unmeasured += other.unmeasured;
    height += other.height;
    rows += other.rows;
    return *this;
}

LineHeights::Sum& LineHeights::Sum::operator-=(const Sum& other)
{
    lines -= other.lines;
    unmeasured -= other.unmeasured;
    height -= other.height;
    rows -= other.rows;
    return *this;
}

void LineHeights::assign(std::span<const LineExtent> extents)
{
    blocks.clear();
    appendBlocks(blocks, extents);
    rebuildTree();
}

void LineHeights::replace(int first, int removed, std::span<const LineExtent> inserted)
{
    if (removed == 0 && inserted.empty())
        return;
    if (blocks.empty()) {
        assign(inserted);
        return;
    }
    // The blocks of the first and the last removed line; a line after the end belongs to the last block.
    const Place from = placeOf(first);
    const Place to = removed > 0 ? placeOf(first + removed - 1) : from;
    const size_t tailOffset = removed > 0 ? to.offset + 1 : to.offset;

    // Nearly every edit is inside one block: only that block and its branch of the tree change.
    Block& block = blocks[from.block];
    const size_t newSize = block.extents.size() - removed + inserted.size();
    if (from.block == to.block && newSize > 0 && newSize <= BlockLimit) {
        const auto at = block.extents.erase(block.extents.begin() + from.offset,
                                            block.extents.begin() + static_cast<std::ptrdiff_t>(tailOffset));
        block.extents.insert(at, inserted.begin(), inserted.end());
        Sum sum;
        for (const LineExtent& extent : block.extents)
            sum.add(extent);
        changeBlock(from.block, sum);
        return;
    }

    // Of many new lines, all but a few need no other copy.
    const size_t alone = inserted.size() > BlockLimit ? inserted.size() - BlockFill : 0;
    std::vector<LineExtent> merged(block.extents.begin(), block.extents.begin() + from.offset);
    std::vector<Block> fresh;
    if (alone > 0) {
        appendBlocks(fresh, merged);
        appendBlocks(fresh, inserted.first(alone));
        merged.clear();
    }
    merged.insert(merged.end(), inserted.begin() + static_cast<std::ptrdiff_t>(alone), inserted.end());
    const std::vector<LineExtent>& last = blocks[to.block].extents;
    merged.insert(merged.end(), last.begin() + static_cast<std::ptrdiff_t>(tailOffset), last.end());
    appendBlocks(fresh, merged);
    const auto gap = blocks.erase(blocks.begin() + static_cast<std::ptrdiff_t>(from.block),
                                  blocks.begin() + static_cast<std::ptrdiff_t>(to.block) + 1);
    blocks.insert(gap, std::make_move_iterator(fresh.begin()), std::make_move_iterator(fresh.end()));
    rebuildTree();
}

void LineHeights::set(int line, LineExtent extent)
{
    const Place place = placeOf(line);
    Block& block = blocks[place.block];
    LineExtent& old = block.extents[place.offset];
    if (old == extent)
        return;
    Sum sum = block.sum;
    Sum gone;
    gone.add(old);
    sum -= gone;
    sum.add(extent);
    old = extent;
    changeBlock(place.block, sum);
}

LineExtent LineHeights::at(int line) const
{
    const Place place = placeOf(line);
    return blocks[place.block].extents[place.offset];
}

int64_t LineHeights::top(int line) const
{
    return sumBefore(line).height;
}

int64_t LineHeights::rowsBefore(int line) const
{
    return sumBefore(line).rows;
}

int LineHeights::lineAt(int64_t y) const
{
    if (total.lines == 0 || y < 0)
        return 0;
    if (y >= total.height)
        return total.lines - 1;
    // Descends to the last block that begins at or above y.
    size_t index = 0;
    Sum before;
    for (size_t step = std::bit_floor(blocks.size()); step > 0; step /= 2) {
        if (index + step <= blocks.size() && before.height + tree[index + step].height <= y) {
            index += step;
            before += tree[index];
        }
    }
    int64_t bottom = before.height;
    int line = before.lines;
    for (const LineExtent& extent : blocks[index].extents) {
        bottom += extent.height;
        if (y < bottom)
            break;
        ++line;
    }
    return line;
}

int LineHeights::nextUnmeasured(int from) const
{
    if (total.unmeasured == 0 || from >= total.lines)
        return -1;
    const Place place = placeOf(from);
    int line = from;
    int offset = place.offset;
    for (size_t i = place.block; i < blocks.size(); ++i, offset = 0) {
        const Block& block = blocks[i];
        if (block.sum.unmeasured == 0) {
            line += block.sum.lines - offset;
            continue;
        }
        for (; offset < block.sum.lines; ++offset, ++line) {
            if (!block.extents[offset].measured)
                return line;
        }
    }
    return -1;
}

LineHeights::Place LineHeights::placeOf(int line) const
{
    // Descends to the last block that begins at or before the line.
    size_t index = 0;
    Sum before;
    for (size_t step = std::bit_floor(blocks.size()); step > 0; step /= 2) {
        if (index + step < blocks.size() && before.lines + tree[index + step].lines <= line) {
            index += step;
            before += tree[index];
        }
    }
    return {index, line - before.lines, before};
}

LineHeights::Sum LineHeights::sumBefore(int line) const
{
    if (line <= 0 || blocks.empty())
        return {};
    if (line >= total.lines)
        return total;
    const Place place = placeOf(line);
    Sum sum = place.before;
    for (int i = 0; i < place.offset; ++i)
        sum.add(blocks[place.block].extents[i]);
    return sum;
}

void LineHeights::changeBlock(size_t block, const Sum& newSum)
{
    Sum change = newSum;
    change -= blocks[block].sum;
    blocks[block].sum = newSum;
    total += change;
    for (size_t i = block + 1; i < tree.size(); i += i & (~i + 1))
        tree[i] += change;
}

void LineHeights::rebuildTree()
{
    total = {};
    tree.assign(blocks.size() + 1, {});
    for (size_t i = 1; i < tree.size(); ++i) {
        total += blocks[i - 1].sum;
        tree[i] += blocks[i - 1].sum;
        const size_t parent = i + (i & (~i + 1));
        if (parent < tree.size())
            tree[parent] += tree[i];
    }
}

void LineHeights::appendBlocks(std::vector<Block>& blocks, std::span<const LineExtent> extents)
{
    while (!extents.empty()) {
        const size_t count = std::min(BlockFill, extents.size());
        Block block;
        block.extents.assign(extents.begin(), extents.begin() + static_cast<std::ptrdiff_t>(count));
        for (const LineExtent& extent : block.extents)
            block.sum.add(extent);
        blocks.push_back(std::move(block));
        extents = extents.subspan(count);
    }
}

} // namespace vmk
