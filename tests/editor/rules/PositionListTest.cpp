#include "PositionList.h"

#include <gtest/gtest.h>

namespace vmk {

TEST(PositionList, StepsThroughItsEntriesAndStopsAtBothEnds)
{
    PositionList list;
    list.reset(0.1);
    list.insert(0.2);
    list.insert(0.3);
    EXPECT_EQ(list.count, 3);
    EXPECT_EQ(list.step(Direction::Down), std::nullopt);
    EXPECT_EQ(list.step(Direction::Up), 0.2);
    EXPECT_EQ(list.step(Direction::Up), 0.1);
    EXPECT_EQ(list.step(Direction::Up), std::nullopt);
    EXPECT_EQ(list.index, 1);
    EXPECT_EQ(list.step(Direction::Down), 0.2);
}

TEST(PositionList, InsertsAfterTheCurrentEntryAndLosesTheLastOne)
{
    PositionList list;
    list.reset(0.1);
    for (const double entry : {0.2, 0.3, 0.4})
        list.insert(entry);
    list.index = 2;
    list.insert(0.25);
    EXPECT_EQ(list.entries, (std::vector<double>{0, 0.1, 0.2, 0.25, 0.3, 0}));
    EXPECT_EQ(list.count, 5);
    EXPECT_EQ(list.index, 3);
}

TEST(PositionList, HoldsFortyEntriesAndForgetsTheOldest)
{
    PositionList list;
    list.reset(1);
    for (int entry = 2; entry <= 41; ++entry)
        list.insert(entry);
    EXPECT_EQ(list.count, PositionList::MostEntries);
    EXPECT_EQ(list.index, PositionList::MostEntries);
    EXPECT_EQ(list.entries[1], 2);
    EXPECT_EQ(list.entries[40], 41);
}

TEST(PositionList, WhenFullTheLaterEntriesGetTheValueOfTheLast)
{
    PositionList list;
    list.reset(1);
    for (int entry = 2; entry <= 40; ++entry)
        list.insert(entry);
    list.index = 20;
    list.insert(0.5);
    EXPECT_EQ(list.count, 40);
    EXPECT_EQ(list.index, 21);
    EXPECT_EQ(list.entries[20], 20);
    EXPECT_EQ(list.entries[21], 0.5);
    for (size_t i = 22; i <= 40; ++i)
        EXPECT_EQ(list.entries[i], 40) << i;
}

TEST(PositionList, ComparesAPositionWithItsLastEntry)
{
    PositionList list;
    list.reset(0.5);
    list.insert(0.75);
    list.index = 1;
    EXPECT_TRUE(list.endsAt(750.9, 1000));
    EXPECT_FALSE(list.endsAt(751, 1000));
    EXPECT_FALSE(list.endsAt(500, 1000)) << "that is the current entry, not the last";
}

} // namespace vmk
