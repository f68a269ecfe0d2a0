#include "FieldRules.h"
#include "RulesFixture.h"

#include <gmock/gmock.h>

using namespace vmk;

namespace {

class Fields : public Rules
{
};

} // namespace

TEST_F(Fields, BoldAtACaretInsertsAnEmptyPairOfTags)
{
    show("<DIV>ab</DIV>");
    caret(0, 1);
    InsertInlineTag(document, InlineTag::Bold);
    EXPECT_EQ(lines(),
              "<DIV>a<SPAN class=t>&lt;strong&gt;</SPAN><SPAN class=t>&lt;/strong&gt;</SPAN>b</DIV>");
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_FALSE(BookUnchanged);
    undo();
    EXPECT_EQ(lines(), "<DIV>ab</DIV>");
}

TEST_F(Fields, EachKindInsertsItsTagsAndNestsTheSecondTime)
{
    const std::pair<InlineTag, const char*> kinds[] = {{InlineTag::Bold, "<strong>x</strong>"},
                                                       {InlineTag::Italic, "<emphasis>x</emphasis>"},
                                                       {InlineTag::Superscript, "<sup>x</sup>"},
                                                       {InlineTag::Subscript, "<sub>x</sub>"}};
    for (const auto& [kind, expected] : kinds) {
        show("<DIV>x</DIV>");
        select(0, 0, 0, 1);
        InsertInlineTag(document, kind);
        EXPECT_EQ(text(0), expected);
        // The selection stays, so that the same key nests.
        EXPECT_EQ(selected(), expected);
    }
    InsertInlineTag(document, InlineTag::Bold);
    EXPECT_EQ(text(0), "<strong><sub>x</sub></strong>");
    InsertInlineTag(document, InlineTag::Bold);
    EXPECT_EQ(text(0), "<strong><strong><sub>x</sub></strong></strong>");
    undo();
    EXPECT_EQ(text(0), "<strong><sub>x</sub></strong>");
}

TEST_F(Fields, TheCaretIsAfterAnEmptyPairOfTags)
{
    show("<DIV>ab</DIV>");
    caret(0, 1);
    InsertInlineTag(document, InlineTag::Italic);
    EXPECT_EQ(document.selection(), (Selection{{0, 22}, {0, 22}}));
}

TEST_F(Fields, TheTagsArePaintedEvenWithHighlightingOff)
{
    show("<DIV>x</DIV>");
    TagHighlighting = 0;
    select(0, 0, 0, 1);
    InsertInlineTag(document, InlineTag::Bold);
    EXPECT_EQ(lines(), "<DIV><SPAN class=t>&lt;strong&gt;</SPAN>x<SPAN class=t>&lt;/strong&gt;</SPAN></DIV>");
}

TEST_F(Fields, BoldAcrossTwoLinesKeepsBothAndAllOfTheirText)
{
    show("<DIV>one</DIV>\r<DIV>two</DIV>");
    const std::string before = lines();
    select(0, 1, 1, 2);
    InsertInlineTag(document, InlineTag::Bold);
    std::string all;
    for (int line = 0; line < document.lineCount(); ++line)
        all += text(line);
    EXPECT_EQ(all, "o<strong>netw</strong>o");
    // The lines stay lines, and only the tags are painted.
    ASSERT_GE(document.lineCount(), 2);
    int painted = 0;
    for (int line = 0; line < document.lineCount(); ++line) {
        EXPECT_EQ(document.tags()[document.line(line).block].name, QStringLiteral("DIV")) << line;
        for (const Mark& mark : document.line(line).marks) {
            painted += mark.open ? 1 : 0;
            const std::string shown = text(line).substr(size_t(mark.pos), 1);
            EXPECT_EQ(shown == "<", mark.open);
        }
    }
    EXPECT_EQ(painted, 2);
    EXPECT_EQ(selected().find("netw"), std::string::npos) << "the line end between them stays";
    EXPECT_THAT(selected(), testing::MatchesRegex("<strong>\\s*ne\\s*tw\\s*</strong>"));
    undo();
    EXPECT_EQ(lines(), before);
}

TEST_F(Fields, CaseChangesKeepTheTextSelected)
{
    show("<DIV>oNe two</DIV>");
    select(0, 0, 0, 3);
    ChangeCase(document, LetterCase::Proper);
    EXPECT_EQ(text(0), "One two");
    EXPECT_EQ(selected(), "One");
    ChangeCase(document, LetterCase::Upper);
    EXPECT_EQ(selected(), "ONE");
    ChangeCase(document, LetterCase::Lower);
    EXPECT_EQ(selected(), "one");
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_FALSE(BookUnchanged);
}

TEST_F(Fields, ProperCaseTreatsOnlyBlanksAsWordEnds)
{
    show("<DIV>one two</DIV>\r<DIV>THREE four</DIV>");
    select(0, 0, 1, 10);
    ChangeCase(document, LetterCase::Proper);
    EXPECT_EQ(text(0), "One Two");
    EXPECT_EQ(text(1), "three Four");
    EXPECT_EQ(selected(), "One Two\r\nthree Four");
}

TEST_F(Fields, CaseChangesCyrillicTextAndTheTagsWithinTheSelection)
{
    show("<DIV><SPAN class=t>&lt;p&gt;</SPAN>слово</DIV>");
    select(0, 0, 0, 8);
    ChangeCase(document, LetterCase::Upper);
    EXPECT_EQ(text(0), "<P>СЛОВО");
    EXPECT_EQ(selected(), "<P>СЛОВО");
}

TEST_F(Fields, AFieldIsMadeOnlyAwayFromPaintedPieces)
{
    show("<DIV>ab<SPAN class=t>&lt;p&gt;</SPAN>cd</DIV>");
    const std::string before = lines();
    for (const int offset : {2, 5}) {
        caret(0, offset);
        InsertField(document, Field::Tag);
        EXPECT_EQ(lines(), before);
    }
    caret(0, 1);
    InsertField(document, Field::Tag);
    EXPECT_EQ(text(0), "ab<p>cd");
    document.typeText(QStringLiteral("xy"));
    EXPECT_EQ(lines(), "<DIV>a<SPAN class=et>xy</SPAN>b<SPAN class=t>&lt;p&gt;</SPAN>cd</DIV>");
    EXPECT_EQ(UndoSteps, 0);
}

TEST_F(Fields, ASelectedTextIsPutIntoAFieldCharacterByCharacter)
{
    for (const Field kind : {Field::Text, Field::Tag, Field::Attribute, Field::Value}) {
        show("<DIV>a&lt;b &amp;amp; c&gt;d</DIV>");
        const std::string before = text(0);
        select(0, 1, 0, 6);
        InsertField(document, kind);
        EXPECT_EQ(text(0), before);
        EXPECT_THAT(lines(),
                    testing::HasSubstr(kind == Field::Value           ? "<FONT class=ev>&lt;b"
                                           : kind == Field::Attribute ? "<FONT class=en>&lt;b"
                                           : kind == Field::Tag       ? "<SPAN class=et>&lt;b"
                                                                      : "<SPAN class=b>&lt;b"));
        EXPECT_EQ(UndoSteps, 0);
        EXPECT_TRUE(BookUnchanged);
    }
}

TEST_F(Fields, ASelectionOverLinesGetsAFieldInEachOfThem)
{
    show("<DIV>one</DIV>\r<DIV style=\"MARGIN-LEFT: 5px\">a &lt; b</DIV>\r<DIV>two</DIV>");
    select(0, 1, 2, 2);
    InsertField(document, Field::Tag);
    EXPECT_EQ(lines(),
              "<DIV>o<SPAN class=et>ne</SPAN></DIV>\n"
              "<DIV style=\"MARGIN-LEFT: 5px\"><SPAN class=et>a &lt; b</SPAN></DIV>\n"
              "<DIV><SPAN class=et>tw</SPAN>o</DIV>");
}

TEST_F(Fields, ASelectionOfEmptyLinesKeepsThem)
{
    for (const Field kind : {Field::Text, Field::Tag, Field::Attribute, Field::Value}) {
        show("<DIV>a</DIV>\r<DIV></DIV>\r<DIV></DIV>\r<DIV></DIV>\r<DIV>b</DIV>");
        select(1, 0, 3, 0);
        InsertField(document, kind);
        EXPECT_EQ(document.lineCount(), 5);
        select(0, 1, 4, 0);
        InsertField(document, kind);
        EXPECT_EQ(document.lineCount(), 5);
        EXPECT_EQ(text(0) + text(4), "ab");
    }
}

TEST_F(Fields, AValueFieldClosesWithTheEndOfAnotherElementAndLeavesTheRestUnpainted)
{
    show("<DIV>one two three</DIV>");
    select(0, 4, 0, 7);
    InsertField(document, Field::Value);
    EXPECT_EQ(lines(), "<DIV>one <FONT class=ev>two</FONT> three</DIV>");
}

TEST_F(Fields, AnAttributeFieldAtACaretContainsABlankAndOthersNothing)
{
    const std::pair<Field, const char*> kinds[] = {{Field::Tag, "<DIV>a<SPAN class=et></SPAN>b</DIV>"},
                                                   {Field::Attribute, "<DIV>a<FONT class=en> </FONT>b</DIV>"},
                                                   {Field::Value, "<DIV>a<FONT class=ev></FONT>b</DIV>"},
                                                   {Field::Text, "<DIV>a<SPAN class=b></SPAN>b</DIV>"}};
    for (const auto& [kind, expected] : kinds) {
        show("<DIV>ab</DIV>");
        caret(0, 1);
        InsertField(document, kind);
        EXPECT_EQ(lines(), expected);
        EXPECT_TRUE(BookUnchanged);
        EXPECT_EQ(UndoSteps, 0);
    }
}

TEST_F(Fields, BoldAroundLinesInsertsTheTagsOutsideThem)
{
    show("<DIV>one</DIV>\r<DIV style=\"MARGIN-LEFT: 5px\">two</DIV>");
    select(0, 0, 1, 3);
    InsertInlineTag(document, InlineTag::Bold);
    std::string all;
    for (int line = 0; line < document.lineCount(); ++line)
        all += text(line) + '|';
    EXPECT_EQ(all, "<strong>|one|two|</strong>|");
}

TEST_F(Fields, AChangedTagIsUnpaintedUntilItIsRepainted)
{
    show("<DIV>a <SPAN class=t>&lt;p&gt;</SPAN>b</DIV>");
    select(0, 1, 0, 6);
    ChangeCase(document, LetterCase::Upper);
    EXPECT_EQ(lines(), "<DIV>a &lt;P&gt;B</DIV>");
}
