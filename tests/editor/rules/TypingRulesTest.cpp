#include "TypingRules.h"
#include "Repaint.h"
#include "RulesFixture.h"

using namespace vmk;

namespace {

class Typing : public Rules
{
};

} // namespace

TEST_F(Typing, SpaceBesideABlankChangesNothing)
{
    show("<DIV>one two</DIV>");
    for (const int offset : {3, 4}) {
        caret(0, offset);
        InsertSpace(document);
        EXPECT_EQ(text(0), "one two");
    }
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_TRUE(BookUnchanged);
}

TEST_F(Typing, SpaceBetweenLettersInsertsABlankAndMovesAfterIt)
{
    show("<DIV>onetwo</DIV>");
    caret(0, 3);
    InsertSpace(document);
    EXPECT_EQ(text(0), "one two");
    EXPECT_EQ(caretPlace(), (Position{0, 4}));
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_FALSE(BookUnchanged);
    undo();
    EXPECT_EQ(text(0), "onetwo");
}

TEST_F(Typing, SpaceReplacesASelectionUnlessItTouchesABlank)
{
    show("<DIV>one-two three</DIV>");
    select(0, 3, 0, 4);
    InsertSpace(document);
    EXPECT_EQ(text(0), "one two three");
    select(0, 4, 0, 7);
    InsertSpace(document);
    EXPECT_EQ(text(0), "one two three");
}

TEST_F(Typing, SpaceAtTheEndsOfLineAndDocument)
{
    show("<DIV>a</DIV>\r<DIV>b</DIV>");
    caret(1, 1);
    InsertSpace(document);
    EXPECT_EQ(text(1), "b ");
    caret(0, 0);
    InsertSpace(document);
    EXPECT_EQ(text(0), " a");
}

TEST_F(Typing, NonBreakingSpaceIsTheMarkOrTheCharacterItself)
{
    show("<DIV>ab</DIV>");
    caret(0, 1);
    InsertNbsp(document);
    EXPECT_EQ(text(0),
              "a\x7f"
              "b");
    ShowNbsp = 0;
    InsertNbsp(document);
    EXPECT_EQ(text(0),
              "a\x7f\xc2\xa0"
              "b");
    EXPECT_EQ(UndoSteps, 1);
}

TEST_F(Typing, CaretKeysMoveOneCharacterAndCollapseASelection)
{
    show("<DIV><SPAN class=t>&lt;p&gt;</SPAN>word</DIV>\r<DIV>next</DIV>");
    select(0, 1, 0, 3);
    MoveCaret(document, CaretDirection::Left);
    EXPECT_EQ(document.selection(), (Selection{{0, 0}, {0, 0}}));
    MoveCaret(document, CaretDirection::Left);
    EXPECT_EQ(caretPlace(), (Position{0, 0}));
    for (int step = 0; step < 8; ++step)
        MoveCaret(document, CaretDirection::Right);
    EXPECT_EQ(caretPlace(), (Position{1, 0}));
}

TEST_F(Typing, DeleteSelectionNotesAnEditAlsoAtACaret)
{
    show("<DIV>one</DIV>\r<DIV>two</DIV>");
    select(0, 1, 1, 1);
    DeleteSelection(document);
    EXPECT_EQ(text(0), "owo");
    undo();
    EXPECT_EQ(text(1), "two");
    caret(0, 0);
    DeleteSelection(document);
    EXPECT_EQ(text(0), "one");
    EXPECT_EQ(UndoSteps, 1);
}

TEST_F(Typing, BackspaceInsideAPaintedTagLeavesItsColoursUntilARepaint)
{
    show("<DIV><SPAN class=t>&lt;p&gt;</SPAN>word</DIV>");
    caret(0, 3);
    document.deleteBackward();
    EXPECT_EQ(lines(), "<DIV><SPAN class=t>&lt;p</SPAN>word</DIV>");
    RePaintSelection(document, {});
    EXPECT_EQ(lines(), "<DIV><SPAN class=t>&lt;pword</SPAN></DIV>");
    caret(0, 1);
    document.deleteBackward();
    RePaintSelection(document, {});
    EXPECT_EQ(lines(), "<DIV>pword</DIV>");
}
