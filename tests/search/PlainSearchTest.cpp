#include "LayoutOfWidth.h"
#include "SearchFixture.h"

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class PlainSearch : public SearchFixture
{
};

TEST_F(PlainSearch, AHitIsSelectedAndCounted)
{
    show(u"<DIV>one two</DIV><DIV>two</DIV>"_s);
    EXPECT_TRUE(find(u"two"_s));
    EXPECT_EQ(hit(), (Position{0, 4}));
    EXPECT_EQ(selected(), u"two"_s);
    EXPECT_TRUE(state.HitSelected);
    EXPECT_EQ(report, u"Found: 1 Replaced: 0"_s);
    EXPECT_TRUE(find(u"two"_s));
    EXPECT_EQ(hit(), (Position{1, 0}));
    EXPECT_FALSE(find(u"two"_s));
    EXPECT_EQ(report, u"Search finished. Found: 2 Replaced: 0"_s);
    EXPECT_FALSE(state.HitSelected);
}

TEST_F(PlainSearch, AfterTheEndNothingIsFoundUntilANewSearch)
{
    show(u"<DIV>a</DIV>"_s);
    EXPECT_TRUE(find(u"a"_s));
    EXPECT_FALSE(find(u"a"_s));
    EXPECT_FALSE(find(u"b"_s));
    EXPECT_EQ(report, u"Search finished. Found: 0 Replaced: 0"_s);
    start();
    EXPECT_TRUE(find(u"a"_s));
}

TEST_F(PlainSearch, AnEmptyTextFinishesTheSearch)
{
    show(u"<DIV>a</DIV>"_s);
    EXPECT_TRUE(find(u"a"_s));
    EXPECT_FALSE(find(u""_s));
    EXPECT_FALSE(state.HitSelected);
    EXPECT_EQ(report, u"Search finished. Found: 1 Replaced: 0"_s);
}

TEST_F(PlainSearch, UniOfZeroIsSearchedLiterally)
{
    show(u"<DIV>a uni(0) A</DIV>"_s);
    EXPECT_TRUE(find(u"uni(0)"_s));
    EXPECT_EQ(hit(), (Position{0, 2}));
}

TEST_F(PlainSearch, CodesOfTheTextAreExpanded)
{
    options.matchCase = true;
    show(u"<DIV>a A</DIV>"_s);
    EXPECT_TRUE(find(u"uni(65)"_s));
    EXPECT_EQ(hit(), (Position{0, 2}));
}

TEST_F(PlainSearch, ShownTagsAreTextAndColoursAreNot)
{
    show(u"<DIV><SPAN class=t>&lt;p<FONT class=n> id=</FONT>&gt;</SPAN>text</DIV>"_s);
    EXPECT_TRUE(find(u"<p"_s));
    EXPECT_EQ(hit(), (Position{0, 0}));
    start();
    EXPECT_TRUE(find(u"<p id=>te"_s));
    start();
    EXPECT_FALSE(find(u"class"_s));
}

TEST_F(PlainSearch, WholeWordsAndCase)
{
    show(u"<DIV>cats Cat cat</DIV>"_s);
    options.wholeWord = true;
    EXPECT_TRUE(find(u"cat"_s));
    EXPECT_EQ(hit(), (Position{0, 5}));
    options.matchCase = true;
    EXPECT_TRUE(find(u"cat"_s));
    EXPECT_EQ(hit(), (Position{0, 9}));
}

TEST_F(PlainSearch, UpwardsTheScopeEndsAtTheStartOfTheBook)
{
    show(u"<DIV>a</DIV><DIV>a b a</DIV>"_s);
    options.up = true;
    document.setSelection({1, 4}, {1, 4});
    NewSearch(state, options, false);
    EXPECT_TRUE(find(u"a"_s));
    EXPECT_EQ(hit(), (Position{1, 0}));
    EXPECT_TRUE(find(u"a"_s));
    EXPECT_EQ(hit(), (Position{0, 0}));
    EXPECT_FALSE(find(u"a"_s));
}

TEST_F(PlainSearch, AHitBeyondTheSelectionEndsTheSearch)
{
    show(u"<DIV>a b a</DIV>"_s);
    options.selection = true;
    select(0, 0, 0, 3);
    NewSearch(state, options, false);
    EXPECT_TRUE(find(u"a"_s));
    EXPECT_FALSE(find(u"a"_s));
}

TEST_F(PlainSearch, AHitAtTheSelectionsEndIsFoundButNotReplaced)
{
    show(u"<DIV>a b a b</DIV>"_s);
    options.selection = true;
    select(0, 0, 0, 5);
    NewSearch(state, options, false);
    EXPECT_TRUE(find(u"a"_s));
    EXPECT_TRUE(find(u"a"_s));
    select(0, 0, 0, 5);
    NewSearch(state, options, false);
    EXPECT_EQ(replaceAll(u"a"_s, u"x"_s), 1);
    EXPECT_EQ(text(), u"x b a b"_s);
}

TEST_F(PlainSearch, KeepingThePositionLeavesTheScopeOfASelection)
{
    show(u"<DIV>abcdefgh</DIV>"_s);
    options.selection = true;
    select(0, 1, 0, 7);
    NewSearch(state, options, false);
    select(0, 3, 0, 5);
    NewSearch(state, options, true);
    EXPECT_EQ(state.ScopeRange.end(), (Position{0, 7}));
    EXPECT_EQ(state.SearchRange.start(), (Position{0, 3}));
    options.up = true;
    NewSearch(state, options, true);
    EXPECT_EQ(state.SearchRange.start(), (Position{0, 5}));
    options.selection = false;
    NewSearch(state, options, true);
    EXPECT_EQ(state.ScopeRange.start(), (Position{0, 0}));
    EXPECT_EQ(state.ScopeRange.end(), (Position{0, 5}));
}

TEST_F(PlainSearch, ASelectionWiderThanFiveHundredPixelsBecomesTheScopeAgain)
{
    show(u"<DIV>abcdefgh</DIV>"_s);
    options.selection = true;
    for (const int width : {500, 501}) {
        LayoutOfWidth layout(width);
        document.setLayout(&layout);
        select(0, 1, 0, 7);
        NewSearch(state, options, false);
        select(0, 3, 0, 5);
        NewSearch(state, options, true);
        EXPECT_EQ(state.SearchRange.start(), (Position{0, 3})) << width;
        EXPECT_EQ(state.ScopeRange.end(), (Position{0, width == 500 ? 7 : 5})) << width;
        document.setLayout(nullptr);
    }
}

TEST_F(PlainSearch, ANonBreakingSpaceMatchesItsMarkToo)
{
    show(u"<DIV>a b\u007fc&nbsp;d</DIV>"_s);
    EXPECT_TRUE(find(u"\u00a0"_s));
    EXPECT_EQ(hit(), (Position{0, 5}));
    options.nbspMarks = true;
    start();
    EXPECT_TRUE(find(u"B\u00a0C"_s));
    EXPECT_EQ(hit(), (Position{0, 2}));
    EXPECT_TRUE(find(u"\u00a0"_s));
    EXPECT_EQ(hit(), (Position{0, 5}));
    start();
    options.matchCase = true;
    EXPECT_TRUE(find(u"\u00a0c\u00a0"_s));
    EXPECT_EQ(replaceAll(u"\u00a0"_s, u"_"_s), 2);
    EXPECT_EQ(text(), u"a b_c_d"_s);
}

TEST_F(PlainSearch, AReplacementIsSelected)
{
    show(u"<DIV>a<B>bc</B>d a</DIV>"_s);
    EXPECT_TRUE(find(u"bc"_s));
    const ReplaceResult result = Replace_Text(state, u"xyz"_s, options);
    EXPECT_EQ(html(0), u"a<B>xyz</B>d a"_s);
    EXPECT_EQ(selected(), u"xyz"_s);
    EXPECT_EQ(result.report, u"Found: 1 Replaced: 1"_s);
    EXPECT_FALSE(state.HitSelected);
    EXPECT_EQ(state.SearchRange.end(), document.end());
    EXPECT_TRUE(find(u"a"_s));
    EXPECT_EQ(hit(), (Position{0, 6}));
}

TEST_F(PlainSearch, WithAutoFindNextTheReplacementIsNotSelected)
{
    show(u"<DIV>abc</DIV>"_s);
    options.autoFindNext = true;
    EXPECT_TRUE(find(u"b"_s));
    const ReplaceResult result = Replace_Text(state, u"x"_s, options);
    EXPECT_TRUE(result.newText.isNull());
    EXPECT_EQ(text(), u"axc"_s);
}

TEST_F(PlainSearch, UpwardsTheSearchContinuesBeforeTheReplacement)
{
    show(u"<DIV>a a a</DIV>"_s);
    options.up = true;
    document.setSelection(document.end(), document.end());
    NewSearch(state, options, false);
    EXPECT_TRUE(find(u"a"_s));
    (void)Replace_Text(state, u"a"_s, options);
    EXPECT_EQ(state.SearchRange.start(), Position());
    EXPECT_TRUE(find(u"a"_s));
    EXPECT_EQ(hit(), (Position{0, 2}));
}

TEST_F(PlainSearch, TextSelectedByHandIsReplaced)
{
    show(u"<DIV>one two</DIV>"_s);
    EXPECT_TRUE(find(u"two"_s));
    select(0, 0, 0, 3);
    (void)Replace_Text(state, u"1"_s, options);
    EXPECT_EQ(text(), u"1 two"_s);
}

TEST_F(PlainSearch, AnEmptyReplacementDeletes)
{
    show(u"<DIV>one two</DIV>"_s);
    EXPECT_TRUE(find(u"one "_s));
    (void)Replace_Text(state, u""_s, options);
    EXPECT_EQ(text(), u"two"_s);
}

TEST_F(PlainSearch, ReplaceAllRunsFromThePositionAndIsUndoneStepByStep)
{
    show(u"<DIV>a<B>a</B></DIV><DIV>ba</DIV>"_s);
    EXPECT_EQ(replaceAll(u"a"_s, u"xy"_s), 3);
    EXPECT_EQ(text(), u"xyxy|bxy"_s);
    EXPECT_EQ(html(0), u"xy<B>xy</B>"_s);
    EXPECT_EQ(report, u"Found: 3 Replaced: 3"_s);
    EXPECT_EQ(selected(), u"xy"_s);
    EXPECT_EQ(document.selection().start(), (Position{1, 1}));
    undo(3);
    EXPECT_EQ(text(), u"aa|ba"_s);
    EXPECT_FALSE(document.canUndo());
}

TEST_F(PlainSearch, ReplaceAllCountsTheSelectedHitOnce)
{
    show(u"<DIV>a a</DIV>"_s);
    EXPECT_TRUE(find(u"a"_s));
    EXPECT_EQ(replaceAll(u"a"_s, u"x"_s), 2);
    EXPECT_EQ(text(), u"x x"_s);
    EXPECT_EQ(report, u"Found: 2 Replaced: 2"_s);
}

TEST_F(PlainSearch, ReplaceAllRunsForwardWhateverTheDirection)
{
    show(u"<DIV>a a a</DIV>"_s);
    options.up = true;
    document.setSelection({0, 2}, {0, 2});
    NewSearch(state, options, false);
    // The scope ends at the caret, but only a selected scope ends the run.
    EXPECT_EQ(replaceAll(u"a"_s, u"x"_s), 2);
    EXPECT_EQ(text(), u"a x x"_s);
}

TEST_F(PlainSearch, MarksAreStepsOfUndoToo)
{
    show(u"<DIV>a a a</DIV>"_s);
    options.markReplaced = true;
    EXPECT_EQ(replaceAll(u"a"_s, u"xy"_s), 6);
    const QString mark = u"<FONT style=\"BACKGROUND-COLOR: #ffb848\">xy</FONT>"_s;
    EXPECT_EQ(html(0), mark + u' ' + mark + u' ' + mark);
    undo(6);
    EXPECT_EQ(html(0), u"a a a"_s);
}

TEST_F(PlainSearch, AnEmptyReplacementMarksTheCharacterBefore)
{
    show(u"<DIV>ba c</DIV><DIV>ac</DIV>"_s);
    options.markReplaced = true;
    EXPECT_EQ(replaceAll(u"a"_s, u""_s), 4);
    EXPECT_EQ(html(0), u"<FONT style=\"BACKGROUND-COLOR: #ffb848\">b</FONT> c"_s);
    // Before the second hit is a line break, which shows no colour.
    EXPECT_EQ(html(1), u"c"_s);
    undo(4);
    EXPECT_EQ(text(), u"ba c|ac"_s);
}

TEST_F(PlainSearch, InsertedTextIsNotSearchedAgain)
{
    show(u"<DIV>aaa</DIV>"_s);
    EXPECT_EQ(replaceAll(u"a"_s, u"aa"_s), 3);
    EXPECT_EQ(text(), u"aaaaaa"_s);
}

TEST_F(PlainSearch, AWholeWordDependsOnTheTextInsertedBeforeIt)
{
    show(u"<DIV>.a.a.a</DIV>"_s);
    options.wholeWord = true;
    EXPECT_EQ(replaceAll(u".a"_s, u"-"_s), 3);
    EXPECT_EQ(text(), u"---"_s);
}

TEST_F(PlainSearch, ReplacementsWithLineBreaksMakeLines)
{
    show(u"<DIV id=FirstDiv>a,b,c</DIV>"_s);
    EXPECT_EQ(replaceAll(u","_s, u"uni(13)"_s), 2);
    EXPECT_EQ(text(), u"a|b|c"_s);
    undo(2);
    EXPECT_EQ(text(), u"a,b,c"_s);
}

TEST_F(PlainSearch, AStopBeforeTheFirstReplacementChangesNothing)
{
    show(u"<DIV>a a a</DIV>"_s);
    events.processEvents = [this] { state.StopRequested = true; };
    EXPECT_EQ(replaceAll(u"a"_s, u"x"_s), 0);
    EXPECT_EQ(text(), u"a a a"_s);
    EXPECT_FALSE(state.StopRequested);
    EXPECT_EQ(report, u"Found: 0 Replaced: 0"_s);
}

TEST_F(PlainSearch, EveryHundredthHitIsReported)
{
    show(u"<DIV>"_s + u"a "_s.repeated(250) + u"</DIV>"_s);
    EXPECT_EQ(replaceAll(u"a"_s, u"x"_s), 250);
    EXPECT_EQ(reports,
              (QStringList{u"...replacing...wait, please..."_s, u"Found: 100 Replaced: 100"_s,
                           u"Found: 200 Replaced: 200"_s}));
    EXPECT_EQ(report, u"Found: 250 Replaced: 250"_s);
    EXPECT_EQ(state.FoundCount, 0);
}

TEST_F(PlainSearch, ReplacingNothingLeavesTheBookAlone)
{
    show(u"<DIV>a</DIV>"_s);
    EXPECT_EQ(replaceAll(u"b"_s, u"x"_s), 0);
    EXPECT_EQ(replaceAll(u""_s, u"x"_s), 0);
    EXPECT_FALSE(document.canUndo());
}

} // namespace
} // namespace vmk
