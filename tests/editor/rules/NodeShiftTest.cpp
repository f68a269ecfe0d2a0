#include "NodeShift.h"
#include "RulesFixture.h"

#include "EditReference.h"

#include <random>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

constexpr char ThreeLines[] = "<DIV id=FirstDiv>one</DIV>\r"
                              "<DIV style=\"MARGIN-LEFT: 5px\">two</DIV>\r"
                              "<DIV style=\"MARGIN-LEFT: 10px\">three</DIV>";

class Shifting : public Rules
{
};

} // namespace

TEST_F(Shifting, RightShiftOfALineWithoutStyleAddsOneStep)
{
    show("<DIV>word</DIV>");
    caret(0, 2);
    RightShift(document);
    EXPECT_EQ(lines(), "<DIV style=\"MARGIN-LEFT: 5px\">word</DIV>");
    EXPECT_EQ(UndoSteps, 2);
    EXPECT_FALSE(BookUnchanged);
}

TEST_F(Shifting, RightShiftAddsOneStepToAMargin)
{
    show(ThreeLines);
    caret(1, 0);
    RightShift(document);
    EXPECT_EQ(lines(),
              "<DIV id=FirstDiv>one</DIV>\n<DIV style=\"MARGIN-LEFT: 10px\">two</DIV>\n"
              "<DIV style=\"MARGIN-LEFT: 10px\">three</DIV>");
}

TEST_F(Shifting, LeftShiftOfALineWithLessThanAStepChangesNothing)
{
    show("<DIV style=\"MARGIN-LEFT: 3px\">word</DIV>");
    caret(0, 1);
    LeftShift(document);
    EXPECT_EQ(lines(), "<DIV style=\"MARGIN-LEFT: 3px\">word</DIV>");
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_TRUE(BookUnchanged);
    EXPECT_FALSE(document.canUndo());
}

TEST_F(Shifting, LeftShiftDownToZeroLeavesTheMarginInTheTag)
{
    show("<DIV style=\"MARGIN-LEFT: 5px\">word</DIV>");
    caret(0, 4);
    LeftShift(document);
    EXPECT_EQ(lines(), "<DIV style=\"MARGIN-LEFT: 0px\">word</DIV>");
    EXPECT_EQ(UndoSteps, 2);
}

TEST_F(Shifting, ThreeSelectedLinesMoveAndStaySelected)
{
    show(ThreeLines);
    select(0, 1, 2, 2);
    RightShift(document);
    EXPECT_EQ(lines(),
              "<DIV id=FirstDiv style=\"MARGIN-LEFT: 5px\">one</DIV>\n"
              "<DIV style=\"MARGIN-LEFT: 10px\">two</DIV>\n"
              "<DIV style=\"MARGIN-LEFT: 15px\">three</DIV>");
    EXPECT_EQ(selected(), "one\r\ntwo\r\nthree");
}

TEST_F(Shifting, LinesAtTheLeftEdgeStayWhileOthersMove)
{
    show(ThreeLines);
    select(0, 0, 2, 5);
    LeftShift(document);
    EXPECT_EQ(lines(),
              "<DIV id=FirstDiv>one</DIV>\n<DIV style=\"MARGIN-LEFT: 0px\">two</DIV>\n"
              "<DIV style=\"MARGIN-LEFT: 5px\">three</DIV>");
}

TEST_F(Shifting, TwoLinesWithTheSameStartTagAreEachShiftedOnce)
{
    show("<DIV style=\"MARGIN-LEFT: 5px\">a</DIV>\r<DIV style=\"MARGIN-LEFT: 5px\">b</DIV>");
    select(0, 0, 1, 1);
    RightShift(document);
    EXPECT_EQ(lines(), "<DIV style=\"MARGIN-LEFT: 10px\">a</DIV>\n<DIV style=\"MARGIN-LEFT: 10px\">b</DIV>");
}

TEST_F(Shifting, OneUndoCommandRevertsAShiftAndRedoRepeatsIt)
{
    for (const bool all : {false, true}) {
        show(ThreeLines);
        const std::string before = lines();
        if (all)
            select(0, 0, 2, 5);
        else
            caret(2, 3);
        const Selection selection = document.selection();
        RightShift(document);
        const std::string after = lines();
        undo();
        EXPECT_EQ(lines(), before);
        if (!all) {
            EXPECT_EQ(document.selection(), selection);
        }
        EXPECT_FALSE(document.canUndo());
        redo();
        EXPECT_EQ(lines(), after);
    }
}

TEST_F(Shifting, WithoutAnyMarginLeftShiftOnlySelectsTheLines)
{
    show("<DIV id=FirstDiv>one</DIV>\r<DIV>two</DIV>");
    select(0, 1, 1, 1);
    LeftShift(document);
    EXPECT_EQ(selected(), "one\r\ntwo");
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_FALSE(document.canUndo());
}

TEST_F(Shifting, OutsideALineNothingHappens)
{
    show("");
    RightShift(document);
    LeftShift(document);
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_FALSE(document.canUndo());
}

TEST_F(Shifting, TheFirstTheLastAndTheOnlyLineKeepTheirPositions)
{
    for (const int line : {0, 2}) {
        show(ThreeLines);
        caret(line, 1);
        RightShift(document);
        EXPECT_EQ(document.lineCount(), 3);
        EXPECT_EQ(text(0) + text(1) + text(2), "onetwothree");
        EXPECT_EQ(caretPlace().line, line);
    }
}

TEST_F(Shifting, AgreesWithTheOracleOnRandomLines)
{
    std::mt19937 random(4);
    const char* const tags[] = {"<DIV>",
                                "<DIV style=\"MARGIN-LEFT: 5px\">",
                                "<DIV style=\"MARGIN-LEFT: 3px\">",
                                "<DIV class=x style=\"COLOR: red\">",
                                "<DIV style=\"margin-left: 15px\">",
                                "<DIV style=\"MARGIN-LEFT: 7.5px\">",
                                "<DIV style=\"MARGIN-LEFT: 5px; COLOR: red\">",
                                "<DIV id=FirstDiv>",
                                "<DIV style=\"MARGIN-LEFT: 100px\">"};
    for (int round = 0; round < 2000; ++round) {
        const int count = 1 + int(random() % 5);
        std::string page;
        for (int i = 0; i < count; ++i)
            page += std::string(tags[random() % std::size(tags)])
                + "line <SPAN class=t>&lt;p&gt;</SPAN></DIV>";
        show(page.c_str());
        select(0, 0, count - 1, int(document.line(count - 1).text.size()));
        const std::string html = lines();
        if (random() % 2 == 0) {
            RightShift(document);
            EXPECT_EQ(lines(), reference::ShiftRight(html, NodeShift));
        } else {
            LeftShift(document);
            EXPECT_EQ(lines(), reference::ShiftLeft(html, NodeShift, count == 1).value_or(html));
        }
    }
}

TEST_F(Shifting, TheCaretIsSearchedTwoPixelsToTheRightOfItsOldPosition)
{
    NodeShift = GridLayout::CellWidth;
    show("<DIV>word word</DIV>");
    caret(0, 4);
    RightShift(document);
    // The text at the old position has moved right by a cell.
    EXPECT_EQ(document.selection(), (Selection{{0, 3}, {0, 3}}));
}

TEST_F(Shifting, TheCaretMovesBackByACharacterAfterALeftShift)
{
    NodeShift = GridLayout::CellWidth;
    show("<DIV style=\"MARGIN-LEFT: 10px\">word word</DIV>");
    caret(0, 4);
    LeftShift(document);
    // The text has moved left by a cell, and the caret moves back by one character.
    EXPECT_EQ(document.selection(), (Selection{{0, 4}, {0, 4}}));
}

TEST_F(Shifting, OneUndoAfterATypedCharacterLeavesEveryLineInPlace)
{
    show(ThreeLines);
    caret(1, 3);
    RightShift(document);
    document.setSelection({1, 3}, {1, 3});
    document.typeText(u"x"_s);
    undo();
    // The character and the empty second step of the shift are undone; no state lacks the line.
    EXPECT_EQ(document.lineCount(), 3);
    EXPECT_EQ(text(1), "two");
    document.undo();
    EXPECT_EQ(text(1), "two");
    EXPECT_FALSE(document.canUndo());
}
