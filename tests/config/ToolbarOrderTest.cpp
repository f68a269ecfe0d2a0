#include "ToolbarOrder.h"

#include "QtPrinting.h"
#include "ToolbarStore.h"
#include "Workplace.h"

#include <QRandomGenerator>
#include <QSettings>

#include <gtest/gtest.h>

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int DesignCount = 19;
constexpr int S = SeparatorIndex;

std::optional<ToolbarOrder> Parsed(const QString& text)
{
    return ParseOrder(text, DesignCount);
}

} // namespace

// ---------------------------------------------------------------- the stored text

TEST(ToolbarOrderText, NumbersAreSeparatedByCommasWithoutATrailingOne)
{
    EXPECT_EQ(FormatOrder({3, S, 1}), u"3,0,1"_s);
    EXPECT_EQ(FormatOrder({7}), u"7"_s);
    EXPECT_EQ(FormatOrder({}), QString());
}

TEST(ToolbarOrderText, AStoredOrderIsReadBack)
{
    const ToolbarOrder order{19, S, 1, 2, S, S, 18};
    EXPECT_EQ(Parsed(FormatOrder(order)), order);
}

TEST(ToolbarOrderText, AnEmptyTextIsNoOrder)
{
    EXPECT_EQ(Parsed({}), std::nullopt);
}

TEST(ToolbarOrderText, AnIndexAboveTheDesignIsSkipped)
{
    EXPECT_EQ(Parsed(u"2,20,1,99999,3"_s), (ToolbarOrder{2, 1, 3}));
    EXPECT_EQ(Parsed(u"19"_s), ToolbarOrder{19});
}

TEST(ToolbarOrderText, ANegativeIndexIsSkipped)
{
    EXPECT_EQ(Parsed(u"-1,4,-2000000000"_s), ToolbarOrder{4});
}

TEST(ToolbarOrderText, ARepeatedButtonIsSkippedAndARepeatedSeparatorIsKept)
{
    EXPECT_EQ(Parsed(u"4,4,0,0,4,5"_s), (ToolbarOrder{4, S, S, 5}));
}

TEST(ToolbarOrderText, BlanksAroundANumberDoNotCount)
{
    EXPECT_EQ(Parsed(u" 4 ,\t5 "_s), (ToolbarOrder{4, 5}));
}

TEST(ToolbarOrderText, GarbageIsNoOrder)
{
    for (const QString& text : {u"1,2,x"_s, u"1,,2"_s, u"1,2,"_s, u"1;2"_s, u"99999999999999999999"_s,
                                u"1.5"_s, u"\u0661"_s + QChar(), u"@Invalid()"_s})
        EXPECT_EQ(Parsed(text), std::nullopt) << text.toStdString();
}

TEST(ToolbarOrderText, AnOrderWithoutAnyButtonIsNoOrder)
{
    EXPECT_EQ(Parsed(u"0,0"_s), std::nullopt);
    EXPECT_EQ(Parsed(u"20,21"_s), std::nullopt);
}

TEST(ToolbarOrderText, AHugeListIsNoOrder)
{
    EXPECT_EQ(Parsed(u"1,"_s + u"0,"_s.repeated(10'000'000) + u"2"_s), std::nullopt);
    EXPECT_EQ(Parsed(u"1"_s + u",0"_s.repeated(500)), std::nullopt);
    EXPECT_EQ(Parsed(QString(10'000, u' ') + u'1'), std::nullopt);
    EXPECT_TRUE(Parsed(u"1"_s + u",0"_s.repeated(499)));
}

// ---------------------------------------------------------------- the lists of the dialog

TEST(ToolbarListsTest, ButtonsThatAreNotShownAreAvailableAfterTheSeparator)
{
    const ToolbarLists lists = MakeLists({2, S, 4}, 5);
    EXPECT_EQ(lists.shown, (ToolbarOrder{2, S, 4}));
    EXPECT_EQ(lists.available, (ToolbarOrder{S, 1, 3, 5}));
}

TEST(ToolbarListsTest, AButtonIsAddedBeforeTheSelectedOne)
{
    ToolbarLists lists = MakeLists({1, 2}, 4);
    EXPECT_EQ(AddButton(lists, 2, 1), 1);
    EXPECT_EQ(lists, (ToolbarLists{{S, 3}, {1, 4, 2}}));
    EXPECT_EQ(AddButton(lists, 1, 0), 0);
    EXPECT_EQ(lists, (ToolbarLists{{S}, {3, 1, 4, 2}}));
}

TEST(ToolbarListsTest, WithoutASelectedOneAButtonIsAddedAtTheEnd)
{
    ToolbarLists lists = MakeLists({1}, 3);
    EXPECT_EQ(AddButton(lists, 1, -1), 1);
    EXPECT_EQ(AddButton(lists, 1, 99), 2);
    EXPECT_EQ(lists.shown, (ToolbarOrder{1, 2, 3}));
}

TEST(ToolbarListsTest, TheSeparatorIsTakenAnyNumberOfTimes)
{
    ToolbarLists lists = MakeLists({1}, 1);
    for (int i = 0; i < 5; ++i)
        AddButton(lists, 0, 0);
    EXPECT_EQ(lists, (ToolbarLists{{S}, {S, S, S, S, S, 1}}));
}

TEST(ToolbarListsTest, ARemovedButtonReturnsToItsDesignPosition)
{
    ToolbarLists lists = MakeLists({5, 3, 1}, 5);
    EXPECT_EQ(RemoveButton(lists, 1), 1);
    EXPECT_EQ(lists, (ToolbarLists{{S, 2, 3, 4}, {5, 1}}));
    EXPECT_EQ(RemoveButton(lists, 1), 0);
    EXPECT_EQ(lists, (ToolbarLists{{S, 1, 2, 3, 4}, {5}}));
    EXPECT_EQ(RemoveButton(lists, 0), -1);
    EXPECT_EQ(lists, (ToolbarLists{{S, 1, 2, 3, 4, 5}, {}}));
}

TEST(ToolbarListsTest, ARemovedSeparatorIsDropped)
{
    ToolbarLists lists = MakeLists({1, S, 2}, 3);
    EXPECT_EQ(RemoveButton(lists, 1), 1);
    EXPECT_EQ(lists, (ToolbarLists{{S, 3}, {1, 2}}));
}

TEST(ToolbarListsTest, ARowIsSwappedWithItsNeighbour)
{
    ToolbarLists lists = MakeLists({1, 2, 3}, 3);
    EXPECT_EQ(MoveButton(lists, 2, -1), 1);
    EXPECT_EQ(lists.shown, (ToolbarOrder{1, 3, 2}));
    EXPECT_EQ(MoveButton(lists, 0, +1), 1);
    EXPECT_EQ(lists.shown, (ToolbarOrder{3, 1, 2}));
}

TEST(ToolbarListsTest, TheEndsOfTheListHaveNoNeighbour)
{
    ToolbarLists lists = MakeLists({1, 2}, 2);
    EXPECT_EQ(MoveButton(lists, 0, -1), -1);
    EXPECT_EQ(MoveButton(lists, 1, +1), -1);
    EXPECT_EQ(MoveButton(lists, -1, +1), -1);
    EXPECT_EQ(lists.shown, (ToolbarOrder{1, 2}));
}

TEST(ToolbarListsTest, RowsThatDoNotExistChangeNothing)
{
    const ToolbarLists before = MakeLists({1, 2}, 3);
    ToolbarLists lists = before;
    EXPECT_EQ(AddButton(lists, -1, 0), -1);
    EXPECT_EQ(AddButton(lists, 2, 0), -1);
    EXPECT_EQ(RemoveButton(lists, -1), -1);
    EXPECT_EQ(RemoveButton(lists, 2), -1);
    EXPECT_EQ(lists, before);
}

TEST(ToolbarListsTest, NoSequenceOfStepsLosesOrDoublesAButton)
{
    QRandomGenerator random(7);
    ToolbarLists lists = MakeLists({1, 2, 3, 4, 5, 6, 7, 8, 9}, 9);
    for (int step = 0; step < 20'000; ++step) {
        const int row = random.bounded(-1, 14);
        switch (random.bounded(3)) {
        case 0:
            AddButton(lists, row, random.bounded(-1, 14));
            break;
        case 1:
            RemoveButton(lists, row);
            break;
        default:
            MoveButton(lists, row, random.bounded(2) ? 1 : -1);
        }
        ToolbarOrder all = lists.shown;
        all.insert(all.end(), lists.available.begin() + 1, lists.available.end());
        std::erase(all, SeparatorIndex);
        std::ranges::sort(all);
        ASSERT_EQ(all, (ToolbarOrder{1, 2, 3, 4, 5, 6, 7, 8, 9}));
        ASSERT_EQ(lists.available.front(), SeparatorIndex);
        ASSERT_TRUE(std::ranges::is_sorted(lists.available));
    }
}

// ---------------------------------------------------------------- the store

namespace {

class ToolbarStoreTest : public testing::Test
{
protected:
    ToolbarStoreTest()
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, workplace.Folder());
    }

    const Workplace workplace;
};

} // namespace

TEST_F(ToolbarStoreTest, ValuesAreReadFromTheUsersFolder)
{
    const ToolbarStore store({}, {});
    EXPECT_EQ(store.value(ToolbarStore::CustomToolbarKey), QString());
    store.setValue(ToolbarStore::CustomToolbarKey, u"3,1,2"_s);
    store.setNumber(ToolbarStore::LargeIconsKey, 1);
    EXPECT_EQ(ToolbarStore({}, {}).value(ToolbarStore::CustomToolbarKey), u"3,1,2"_s);
    EXPECT_EQ(store.number(ToolbarStore::LargeIconsKey, 0), 1);
    // Title and section are the program's where none are named.
    EXPECT_EQ(ToolbarStore(u"Vellumark"_s, u"Settings"_s).value(ToolbarStore::CustomToolbarKey), u"3,1,2"_s);
    EXPECT_EQ(workplace.Names(u"Vellumark"_s).size(), 1);
}

TEST_F(ToolbarStoreTest, ApplicationsAndSectionsAreSeparate)
{
    ToolbarStore(u"one"_s, u"a"_s).setValue(ToolbarStore::CustomToolbarKey, u"1"_s);
    EXPECT_EQ(ToolbarStore(u"one"_s, u"b"_s).value(ToolbarStore::CustomToolbarKey), QString());
    EXPECT_EQ(ToolbarStore(u"two"_s, u"a"_s).value(ToolbarStore::CustomToolbarKey), QString());
}

TEST_F(ToolbarStoreTest, AListWithoutQuotesIsRead)
{
    workplace.MakeFolders(u"Vellumark"_s);
    workplace.Make(u"Vellumark/Vellumark.conf"_s,
                   "[Settings]\nCustom%20Toolbar=3, 1, 2\nNo%20text%20labels=many\n");
    const ToolbarStore store({}, {});
    EXPECT_EQ(store.value(ToolbarStore::CustomToolbarKey), u"3,1,2"_s);
    EXPECT_EQ(store.number(ToolbarStore::NoTextKey, 1), 1);
}

TEST_F(ToolbarStoreTest, AFileOfRandomBytesHoldsNothing)
{
    workplace.MakeFolders(u"Vellumark"_s);
    QRandomGenerator random(11);
    for (int round = 0; round < 20; ++round) {
        std::string bytes(5'000, '\0');
        std::ranges::generate(bytes, [&random] { return char(random.bounded(256)); });
        workplace.Make(u"Vellumark/Vellumark.conf"_s, bytes);
        EXPECT_EQ(ToolbarStore({}, {}).value(ToolbarStore::CustomToolbarKey), QString());
    }
}

} // namespace vmk
