// The undo steps by themselves: grouping, runs of typing, and what is kept of very long lines.

#include "UndoHistory.h"

#include <gtest/gtest.h>

namespace vmk {

using namespace Qt::StringLiterals;

namespace {

LinePtr LineOf(const QString& text)
{
    return MakeLine({NoTag, text, {}});
}

Selection Caret(int offset)
{
    return {{0, offset}, {0, offset}};
}

/// A change of line 0 from one text to another, by an edit from `from` to `oldEnd`.
LineChange Change(const QString& before, const QString& after, int from, int oldEnd, int newEnd)
{
    return {0, {LineOf(before)}, {LineOf(after)}, {{0, from}, {0, oldEnd}, {0, newEnd}}, nullptr};
}

/// Records one change as a step.
void Record(UndoHistory& history, LineChange change, int caretBefore, int caretAfter)
{
    history.openGroup();
    history.record(std::move(change), Caret(caretBefore));
    history.closeGroup(Caret(caretAfter));
}

/// Types a character at the end of line 0.
void Type(UndoHistory& history, const QString& text, QChar c)
{
    const int at = int(text.size());
    const bool joins = history.mayJoinTyping();
    history.openGroup();
    if (joins)
        history.reopenLastStep();
    history.record(Change(text, text + c, at, at, at + 1), Caret(at));
    history.noteTyping(joins);
    history.closeGroup(Caret(at + 1));
}

} // namespace

TEST(UndoHistory, StepsBackAndForwardInOrder)
{
    UndoHistory history;
    EXPECT_FALSE(history.canUndo());
    EXPECT_EQ(history.stepBack(), nullptr);
    Record(history, Change(u"a"_s, u"ab"_s, 1, 1, 2), 1, 2);
    Record(history, Change(u"ab"_s, u"abc"_s, 2, 2, 3), 2, 3);

    const UndoHistory::Step* step = history.stepBack();
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->changes.front().before.front()->text, u"ab");
    EXPECT_EQ(step->selectionBefore, Caret(2));
    EXPECT_EQ(step->selectionAfter, Caret(3));
    ASSERT_NE(history.stepBack(), nullptr);
    EXPECT_FALSE(history.canUndo());

    step = history.stepForward();
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->changes.front().after.front()->text, u"ab");
    EXPECT_TRUE(history.canRedo());
}

TEST(UndoHistory, AnEditDropsTheStepsThatCouldBeRedone)
{
    UndoHistory history;
    Record(history, Change(u"a"_s, u"b"_s, 0, 1, 1), 0, 1);
    ASSERT_NE(history.stepBack(), nullptr);
    Record(history, Change(u"a"_s, u"c"_s, 0, 1, 1), 0, 1);
    EXPECT_FALSE(history.canRedo());
    const UndoHistory::Step* step = history.stepBack();
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->changes.front().after.front()->text, u"c");
    EXPECT_FALSE(history.canUndo());
}

TEST(UndoHistory, NestedGroupsAreOneStep)
{
    UndoHistory history;
    history.openGroup();
    Record(history, Change(u"a"_s, u"ab"_s, 1, 1, 2), 1, 2);
    EXPECT_TRUE(history.isInGroup());
    Record(history, Change(u"ab"_s, u"abc"_s, 2, 2, 3), 2, 3);
    history.closeGroup(Caret(7));
    EXPECT_FALSE(history.isInGroup());

    const UndoHistory::Step* step = history.stepBack();
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->changes.size(), 2u);
    EXPECT_EQ(step->selectionBefore, Caret(1));
    EXPECT_EQ(step->selectionAfter, Caret(7));
    EXPECT_FALSE(history.canUndo());
}

TEST(UndoHistory, AnEmptyGroupIsNoStep)
{
    UndoHistory history;
    history.openGroup();
    history.closeGroup(Caret(0));
    EXPECT_FALSE(history.canUndo());
}

TEST(UndoHistory, ARunOfTypingIsOneChangeUntilItEnds)
{
    UndoHistory history;
    Type(history, u"a"_s, u'b');
    Type(history, u"ab"_s, u'c');
    Type(history, u"abc"_s, u'd');
    history.endTypingRun();
    EXPECT_FALSE(history.mayJoinTyping());
    Type(history, u"abcd"_s, u'e');

    const UndoHistory::Step* step = history.stepBack();
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->changes.front().before.front()->text, u"abcd");
    step = history.stepBack();
    ASSERT_NE(step, nullptr);
    ASSERT_EQ(step->changes.size(), 1u);
    EXPECT_EQ(step->changes.front().before.front()->text, u"a");
    EXPECT_EQ(step->changes.front().after.front()->text, u"abcd");
    EXPECT_EQ(step->changes.front().map.newEnd, (Position{0, 4}));
    EXPECT_EQ(step->selectionAfter, Caret(4));
    EXPECT_FALSE(history.mayJoinTyping()) << "nothing is typed into a step that is undone";
}

TEST(UndoHistory, TypingAtAnotherPositionIsASeparateChange)
{
    UndoHistory history;
    Type(history, u"ab"_s, u'c');
    history.openGroup();
    history.reopenLastStep();
    history.record(Change(u"abc"_s, u"xabc"_s, 0, 0, 1), Caret(0));
    history.noteTyping(true);
    history.closeGroup(Caret(1));
    const UndoHistory::Step* step = history.stepBack();
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->changes.size(), 2u);
}

TEST(UndoHistory, KeepsOfAVeryLongLineOnlyWhatHasChanged)
{
    const QString before = QString(10000, u'a');
    QString after = before;
    after.insert(5000, u'b');
    UndoHistory history;
    Record(history, Change(before, after, 5000, 5000, 5001), 5000, 5001);
    // The last step stays whole until the next one comes.
    Record(history, Change(u"x"_s, u"y"_s, 0, 1, 1), 0, 1);
    ASSERT_NE(history.stepBack(), nullptr);
    const UndoHistory::Step* step = history.stepBack();
    ASSERT_NE(step, nullptr);
    const LineChange& kept = step->changes.front();
    ASSERT_NE(kept.sharedEnds, nullptr);
    EXPECT_EQ(kept.before.front()->text, u"");
    EXPECT_EQ(kept.after.front()->text, u"b");
    EXPECT_EQ(kept.sharedEnds->frontText, 5000);
    EXPECT_EQ(kept.sharedEnds->backText, 5000);
}

TEST(UndoHistory, ClearedHoldsNoStep)
{
    UndoHistory history;
    Record(history, Change(u"a"_s, u"b"_s, 0, 1, 1), 0, 1);
    Record(history, Change(u"b"_s, u"c"_s, 0, 1, 1), 0, 1);
    ASSERT_NE(history.stepBack(), nullptr);
    history.clear();
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(history.canRedo());
}

} // namespace vmk
