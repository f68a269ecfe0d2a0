#include "LineHeights.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace vmk {
namespace {

LineExtent extent(unsigned height, unsigned rows = 1, bool measured = false)
{
    LineExtent made;
    made.height = height;
    made.rows = rows;
    made.measured = measured ? 1 : 0;
    return made;
}

/// The plain version: a vector that is searched from its start.
struct PlainHeights
{
    std::vector<LineExtent> lines;

    [[nodiscard]] int64_t top(int line) const
    {
        int64_t sum = 0;
        for (int i = 0; i < line; ++i)
            sum += lines[size_t(i)].height;
        return sum;
    }
    [[nodiscard]] int64_t rowsBefore(int line) const
    {
        int64_t sum = 0;
        for (int i = 0; i < line; ++i)
            sum += lines[size_t(i)].rows;
        return sum;
    }
    [[nodiscard]] int lineAt(int64_t y) const
    {
        int64_t bottom = 0;
        for (size_t i = 0; i < lines.size(); ++i) {
            bottom += lines[i].height;
            if (y < bottom)
                return int(i);
        }
        return std::max(0, int(lines.size()) - 1);
    }
    [[nodiscard]] int nextUnmeasured(int from) const
    {
        for (auto i = size_t(from); i < lines.size(); ++i) {
            if (!lines[i].measured)
                return int(i);
        }
        return -1;
    }
};

void expectAlike(const LineHeights& heights, const PlainHeights& plain, std::mt19937& random)
{
    const int count = int(plain.lines.size());
    ASSERT_EQ(heights.lineCount(), count);
    ASSERT_EQ(heights.totalHeight(), plain.top(count));
    ASSERT_EQ(heights.totalRows(), plain.rowsBefore(count));
    for (int probe = 0; probe < 8 && count > 0; ++probe) {
        const int line = int(random() % unsigned(count));
        ASSERT_EQ(heights.at(line), plain.lines[size_t(line)]);
        ASSERT_EQ(heights.top(line), plain.top(line));
        ASSERT_EQ(heights.rowsBefore(line), plain.rowsBefore(line));
        ASSERT_EQ(heights.nextUnmeasured(line), plain.nextUnmeasured(line));
        const int64_t y = plain.top(line) + int64_t(random() % 5);
        ASSERT_EQ(heights.lineAt(y), y < 0 ? 0 : plain.lineAt(y));
    }
}

TEST(LineHeights, AnEmptyListReturnsZeros)
{
    const LineHeights heights;
    EXPECT_EQ(heights.lineCount(), 0);
    EXPECT_EQ(heights.totalHeight(), 0);
    EXPECT_EQ(heights.lineAt(100), 0);
    EXPECT_EQ(heights.top(0), 0);
    EXPECT_EQ(heights.nextUnmeasured(0), -1);
}

TEST(LineHeights, PointsBeyondThePageReturnItsEnds)
{
    LineHeights heights;
    heights.assign(std::vector{extent(10), extent(20), extent(30)});
    EXPECT_EQ(heights.lineAt(-5), 0);
    EXPECT_EQ(heights.lineAt(9), 0);
    EXPECT_EQ(heights.lineAt(10), 1);
    EXPECT_EQ(heights.lineAt(59), 2);
    EXPECT_EQ(heights.lineAt(1000), 2);
    EXPECT_EQ(heights.top(3), 60);
}

TEST(LineHeights, AgreesWithAPlainListUnderRandomEdits)
{
    std::mt19937 random(7);
    LineHeights heights;
    PlainHeights plain;
    for (int step = 0; step < 3000; ++step) {
        const auto count = unsigned(plain.lines.size());
        const bool large = random() % 20 == 0;
        if (count > 0 && random() % 2 == 0) {
            const auto line = random() % count;
            const LineExtent changed = extent(random() % 40, 1 + random() % 3, random() % 2 == 0);
            heights.set(int(line), changed);
            plain.lines[line] = changed;
        } else {
            const unsigned first = random() % (count + 1);
            const unsigned removed = std::min<unsigned>(count - first, random() % (large ? 3000 : 4));
            std::vector<LineExtent> inserted(random() % (large ? 2000 : 4));
            for (LineExtent& line : inserted)
                line = extent(random() % 40, 1 + random() % 3, random() % 2 == 0);
            heights.replace(int(first), int(removed), inserted);
            const auto at
                = plain.lines.erase(plain.lines.begin() + first, plain.lines.begin() + first + removed);
            plain.lines.insert(at, inserted.begin(), inserted.end());
        }
        if (step % 10 == 0) {
            ASSERT_NO_FATAL_FAILURE(expectAlike(heights, plain, random)) << "step " << step;
        }
    }
}

TEST(LineHeights, ManyLinesInsertedAnywhereAgreeWithAPlainList)
{
    std::mt19937 random(8);
    for (const int count : {0, 1, 255, 256, 600, 1500}) {
        for (const int inserted : {511, 512, 513, 700, 1024, 5000}) {
            for (const int first : {0, count / 3, count}) {
                for (const int removed : {0, (count - first) / 2, count - first}) {
                    PlainHeights plain;
                    for (int i = 0; i < count; ++i)
                        plain.lines.push_back(extent(unsigned(i % 50), 1, i % 2 == 0));
                    LineHeights heights;
                    heights.assign(plain.lines);
                    std::vector<LineExtent> lines;
                    lines.reserve(size_t(inserted));
                    for (int i = 0; i < inserted; ++i)
                        lines.push_back(extent(unsigned(100 + i), 2, i % 3 == 0));
                    heights.replace(first, removed, lines);
                    const auto at = plain.lines.erase(plain.lines.begin() + first,
                                                      plain.lines.begin() + first + removed);
                    plain.lines.insert(at, lines.begin(), lines.end());
                    ASSERT_NO_FATAL_FAILURE(expectAlike(heights, plain, random))
                        << count << ' ' << inserted << ' ' << first << ' ' << removed;
                }
            }
        }
    }
}

} // namespace
} // namespace vmk
