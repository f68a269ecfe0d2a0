#include "DocumentFixture.h"

namespace vmk {

namespace {

using Elements = Document;
using SharedOperations = Document;

} // namespace

// ---------------------------------------------------------------- elements

TEST_F(Elements, AreAddressedByTheirNodeIndex)
{
    EXPECT_EQ(page::item(document, 1).id(), QStringLiteral("FirstDiv"));
    EXPECT_EQ(page::item(document, 2).sourceIndex(), 2);
    EXPECT_EQ(page::item(document, 2).nodeName(), QStringLiteral("DIV"));
    EXPECT_EQ(page::item(document, 2).marginLeft(), 5);
    EXPECT_EQ(page::item(document, 2).innerText(), QStringLiteral("a<b>c"));
    EXPECT_FALSE(page::item(document, 0).exists());
    EXPECT_EQ(page::item(document, 4).sourceIndex(), -1);
}

TEST_F(Elements, MarginAndIdentifierAreSetInTheStartTag)
{
    page::item(document, 2).setMarginLeft(10);
    page::item(document, 3).setMarginLeft(5);
    page::item(document, 3).setId(QStringLiteral("x"));
    EXPECT_EQ(page::item(document, 2).outerHTML().left(36),
              QStringLiteral("<DIV style=\"MARGIN-LEFT: 10px\">a<SPA"));
    EXPECT_EQ(page::item(document, 3).outerHTML(),
              QStringLiteral("<DIV style=\"MARGIN-LEFT: 5px\" id=x>three</DIV>"));
    page::item(document, 3).setId(QString());
    document.undo();
    document.undo();
    document.undo();
    document.undo();
    EXPECT_EQ(linesOf(document), Three);
}

TEST_F(Elements, AnEmptyOuterHtmlRemovesTheLineAndTheNextMovesUp)
{
    DisplayElement second = page::item(document, 2);
    second.setOuterHTML(QString());
    EXPECT_EQ(second.innerText(), QStringLiteral("three"));
    second.insertAdjacentHTML(Adjacent::BeforeBegin, QStringLiteral("<DIV>x</DIV>\r\n<DIV>y</DIV>"));
    EXPECT_EQ(linesOf(document), "<DIV id=FirstDiv>one</DIV>|<DIV>x</DIV>|<DIV>y</DIV>|<DIV>three</DIV>");
}

TEST_F(Elements, TheReplacementOfTheLastLineIsAtTheEnd)
{
    DisplayElement last = page::item(document, 3);
    last.setOuterHTML(QString());
    EXPECT_FALSE(last.exists());
    last.insertAdjacentHTML(Adjacent::BeforeBegin, QStringLiteral("<DIV>new</DIV>"));
    EXPECT_EQ(document.line(2).text, QStringLiteral("new"));
    EXPECT_EQ(document.lineCount(), 3);
}

TEST_F(Elements, WhatReplacesAllLinesLeavesNoEmptyOne)
{
    lines(0, 2).select();
    page::clear(document);
    page::item(document, 1)
        .insertAdjacentHTML(Adjacent::BeforeBegin, QStringLiteral("<DIV id=FirstDiv>new</DIV>"));
    EXPECT_EQ(linesOf(document), "<DIV id=FirstDiv>new</DIV>");
}

TEST_F(Elements, InlineElementsAreFoundByNameOrIdentifierToo)
{
    range(1, 2, 2).pasteHTML(QStringLiteral("<A id=()*^^^%^*></A>"));
    range(2, 0, 0).pasteHTML(QStringLiteral("<A name=\"()*^^^%^*\">T</A>"));
    auto found = page::getElementsByName(document, QStringLiteral("()*^^^%^*"));
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].sourceIndex(), 2);
    EXPECT_EQ(found[0].outerHTML(), QStringLiteral("<A id=()*^^^%^*></A>"));
    EXPECT_EQ(found[1].innerText(), QStringLiteral("T"));
    found[0].setOuterHTML(QString());
    EXPECT_EQ(page::item(document, 2).outerHTML().toStdString(), Second);
    EXPECT_EQ(page::getElementsByName(document, QStringLiteral("FirstDiv")).size(), 1U);
    EXPECT_TRUE(page::getElementsByName(document, QStringLiteral("firstdiv")).empty());
}

TEST_F(Elements, HtmlIsInsertedBesideAnInlineElement)
{
    range(1, 2, 2).pasteHTML(QStringLiteral("<A id=x></A>"));
    page::getElementsByName(document, QStringLiteral("x"))[0].insertAdjacentHTML(Adjacent::AfterEnd,
                                                                                 QStringLiteral("2"));
    page::getElementsByName(document, QStringLiteral("x"))[0].insertAdjacentHTML(Adjacent::BeforeBegin,
                                                                                 QStringLiteral("1"));
    EXPECT_TRUE(page::item(document, 2).outerHTML().contains(QStringLiteral("&lt;1<A id=x></A>2b&gt;")));
}

// ---------------------------------------------------------------- shared operations

TEST_F(SharedOperations, TheLineOfARangesFirstAndLastCharacter)
{
    EXPECT_EQ(NodeAtRangeStart(range(1, 2, 2)), 2);
    EXPECT_EQ(NodeAtRangeEnd(range(1, 0, 0)), 2);
    const TextRange withBreak(document, {0, 0}, {1, 0});
    EXPECT_EQ(NodeAtRangeStart(withBreak), 1);
    EXPECT_EQ(NodeAtRangeEnd(withBreak), 1);
    load("");
    EXPECT_EQ(NodeAtRangeStart(page::createTextRange(document)), -1);
}

TEST_F(SharedOperations, ARangesLengthCountsALineBreakOnce)
{
    EXPECT_EQ(RangeLength(page::createTextRange(document)), 15);
    EXPECT_EQ(RangeLength(range(1, 2, 2)), 0);
}

TEST_F(SharedOperations, TheSelectionGrowsToWholeLines)
{
    document.setSelection({1, 2}, {0, 1});
    const SelectedNodes nodes = SelectNodes(document, {.select = true, .returnHtml = true});
    EXPECT_EQ(nodes.first, 1);
    EXPECT_EQ(nodes.last, 2);
    EXPECT_EQ(text(nodes.range), "one\r\na<b>c");
    EXPECT_TRUE(page::createRange(document).isEqual(nodes.range));
    EXPECT_EQ(nodes.html.toStdString(), std::string("<DIV id=FirstDiv>one</DIV>\r\n") + Second);

    caret(2, 2);
    EXPECT_EQ(SelectNodes(document, {.returnHtml = true}).html, QStringLiteral("<DIV>three</DIV>"));
    EXPECT_TRUE(document.selection().isEmpty());
}

TEST_F(SharedOperations, NoLinesAreSelectedOnAnEmptyPage)
{
    load("<HTML><BODY></BODY></HTML>");
    const SelectedNodes nodes = SelectNodes(document, {.select = true, .returnHtml = true});
    EXPECT_EQ(nodes.first, -1);
    EXPECT_EQ(nodes.last, -1);
    EXPECT_EQ(nodes.html, QString());
}

TEST_F(SharedOperations, TheCaretInsideATag)
{
    caret(1, 1);
    EXPECT_FALSE(CaretInsideTag(document));
    caret(1, 2);
    EXPECT_TRUE(CaretInsideTag(document));
    caret(1, 3);
    EXPECT_TRUE(CaretInsideTag(document));
    caret(1, 4);
    EXPECT_FALSE(CaretInsideTag(document));
}

TEST_F(SharedOperations, ATagIsSearchedUpToFiftyOneCharactersAway)
{
    range(1, 2, 3).setText(QString(50, u'x'));
    caret(1, 52);
    EXPECT_TRUE(CaretInsideTag(document));
    document.typeText(QStringLiteral("y"));
    EXPECT_FALSE(CaretInsideTag(document));
}

} // namespace vmk
