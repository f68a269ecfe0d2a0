#include "DocumentFixture.h"
#include "WordBreaks.h"

#include <memory>

namespace vmk {

namespace {

using RangeText = Document;
using RangeHtml = Document;
using RangeMovement = Document;
using RangeSearch = Document;

} // namespace

// ---------------------------------------------------------------- text of ranges

TEST_F(RangeText, LineBreaksReadAsCrLf)
{
    EXPECT_EQ(text(page::createTextRange(document)), "one\r\na<b>c\r\nthree");
    EXPECT_EQ(page::innerText(document), QStringLiteral("one\r\na<b>c\r\nthree"));
}

TEST_F(RangeText, EachKindOfLineEndBreaksTheLineWithItsBlock)
{
    range(1, 5, 5).setText(QStringLiteral("1\r\n2\r3\n4"));
    EXPECT_EQ(document.lineCount(), 6);
    EXPECT_EQ(page::item(document, 5).outerHTML(), QStringLiteral("<DIV style=\"MARGIN-LEFT: 5px\">4</DIV>"));
}

TEST_F(RangeText, SettingTextMovesTheRangeAfterItSoThatMovingBackSelectsIt)
{
    TextRange range(document, {0, 1}, {1, 1});
    range.setText(QStringLiteral("x\r\nyz"));
    EXPECT_TRUE(range.isEmpty());
    EXPECT_EQ(range.moveStart(u"character", -4), -4);
    EXPECT_EQ(text(range), "x\r\nyz");
}

TEST_F(RangeText, TheElementAroundTheReplacedTextEnclosesTheNewText)
{
    range(1, 1, 4).setText(QStringLiteral("<i>"));
    EXPECT_EQ(range(1, 0, 5).htmlText(), QStringLiteral("a<SPAN class=t>&lt;i&gt;</SPAN>c"));
}

TEST_F(RangeText, ReplacingTextAcrossElementsRemovesThem)
{
    range(1, 0, 4).setText(QStringLiteral("A<B>"));
    EXPECT_EQ(range(1, 0, 5).htmlText(), QStringLiteral("A&lt;B&gt;c"));
}

TEST_F(RangeText, AnEmptiedElementAcceptsText)
{
    TextRange field = range(0, 1, 1);
    field.pasteHTML(QStringLiteral("<SPAN class=et>&nbsp;</SPAN>"));
    EXPECT_EQ(field.moveStart(u"character", -1), -1);
    EXPECT_EQ(text(field), "\u00a0");
    field.setText(QString());
    field.select();
    document.typeText(QStringLiteral("x"));
    EXPECT_EQ(document.line(0).text, QStringLiteral("oxne"));
    EXPECT_EQ(range(0, 0, 4).htmlText(), QStringLiteral("o<SPAN class=et>x</SPAN>ne"));
}

TEST_F(RangeText, LiveRangesGrowAndShrinkWithTheirText)
{
    TextRange scope = lines(0, 1);
    TextRange before = range(0, 0, 1);
    TextRange after = range(2, 0, 5);
    TextRange hit = range(1, 4, 5);
    hit.setText(QStringLiteral("long\r\ner"));
    EXPECT_EQ(text(scope), "one\r\na<b>long\r\ner");
    EXPECT_EQ(text(before), "o");
    EXPECT_EQ(text(after), "three");
    document.undo();
    EXPECT_EQ(text(scope), "one\r\na<b>c");
    EXPECT_EQ(text(after), "three");
}

TEST_F(RangeText, ARangeOutlivesItsDocument)
{
    auto gone = std::make_unique<DisplayDocument>();
    TextRange range = page::createTextRange(*gone);
    gone.reset();
    range.setText(QStringLiteral("x"));
    EXPECT_TRUE(range.isNull());
    EXPECT_EQ(text(range), "");
    EXPECT_EQ(range.moveEnd(u"character", 1), 0);
}

// ---------------------------------------------------------------- HTML of ranges

TEST_F(RangeHtml, OfSeveralLinesEachInItsBlock)
{
    EXPECT_EQ(
        TextRange(document, {0, 1}, {1, 2}).htmlText(),
        QStringLiteral(
            "<DIV id=FirstDiv>ne</DIV>\r\n<DIV style=\"MARGIN-LEFT: 5px\">a<SPAN class=t>&lt;</SPAN></DIV>"));
}

TEST_F(RangeHtml, PartlyCoveredElementsAreClosedAndEnclosingOnesOmitted)
{
    EXPECT_EQ(range(1, 0, 2).htmlText(), QStringLiteral("a<SPAN class=t>&lt;</SPAN>"));
    EXPECT_EQ(range(1, 3, 5).htmlText(), QStringLiteral("<SPAN class=t>&gt;</SPAN>c"));
    EXPECT_EQ(range(1, 2, 3).htmlText(), QStringLiteral("b"));
    EXPECT_EQ(range(1, 2, 2).htmlText(), QString());
}

TEST_F(RangeHtml, ANonBreakingSpaceReadsAsItsReference)
{
    range(0, 1, 2).setText(QString(QChar(0xA0)));
    EXPECT_EQ(range(0, 1, 2).htmlText(), QStringLiteral("&nbsp;"));
}

TEST_F(RangeHtml, LongLinesAreNotWrapped)
{
    range(0, 0, 3).setText(QStringLiteral("word ").repeated(2000));
    EXPECT_FALSE(range(0, 0, 9000).htmlText().contains(u'\n'));
}

TEST_F(RangeHtml, TextWithoutBlocksIsPastedIntoTheCurrentSpan)
{
    TextRange place = range(1, 2, 2);
    place.pasteHTML(QStringLiteral("x  <B>y</B>"));
    EXPECT_EQ(page::item(document, 2).outerHTML(),
              QStringLiteral("<DIV style=\"MARGIN-LEFT: 5px\">a<SPAN class=t>&lt;x  "
                             "<B>y</B>b&gt;</SPAN>c</DIV>"));
    EXPECT_EQ(place.start(), (Position{1, 6}));
}

TEST_F(RangeHtml, BlocksPastedIntoALineBecomeSeparateLines)
{
    range(0, 1, 2).pasteHTML(QStringLiteral("<DIV>x</DIV>"));
    EXPECT_EQ(linesOf(document).substr(0, 60),
              std::string("<DIV id=FirstDiv>o</DIV>|<DIV>x</DIV>|<DIV>e</DIV>|<DIV style=\"").substr(0, 60));
    load("<DIV id=FirstDiv>ab</DIV>");
    range(0, 0, 0).pasteHTML(QStringLiteral("<P>x</P>"));
    EXPECT_EQ(linesOf(document), "<P>x</P>|<DIV id=FirstDiv>ab</DIV>");
    range(1, 0, 2).pasteHTML(QStringLiteral("<P>y</P>"));
    EXPECT_EQ(linesOf(document), "<P>x</P>|<P>y</P>");
}

TEST_F(RangeHtml, ReplacingARangeByItsOwnHtmlChangesNothing)
{
    for (int from = 0; from < 15; ++from) {
        for (int to = from + 1; to <= 15; ++to) {
            TextRange range(document, document.positionAt(from), document.positionAt(to));
            range.pasteHTML(range.htmlText());
            // Only an element across the end of the range is split in two.
            QString html = QString::fromStdString(linesOf(document));
            html.remove(QStringLiteral("</SPAN><SPAN class=t>"));
            ASSERT_EQ(html.toStdString(), Three) << from << " to " << to;
            document.undo();
        }
    }
}

TEST_F(RangeHtml, TagsAroundASelectionOfSeveralLines)
{
    TextRange range(document, {0, 1}, {1, 1});
    range.pasteHTML(QStringLiteral("<SPAN class=t>&lt;strong&gt;</SPAN>") + range.htmlText()
                    + QStringLiteral("<SPAN class=t>&lt;/strong&gt;</SPAN>"));
    EXPECT_EQ(text(page::createTextRange(document)), "o<strong>\r\nne\r\na\r\n</strong><b>c\r\nthree");
}

TEST_F(RangeHtml, ColoursWrapTheTextOfEachLine)
{
    EXPECT_TRUE(
        TextRange(document, {0, 2}, {1, 2}).execCommand(u"BackColor", false, QStringLiteral("#ffb848")));
    EXPECT_EQ(linesOf(document),
              "<DIV id=FirstDiv>on<FONT style=\"BACKGROUND-COLOR: #ffb848\">e</FONT></DIV>|<DIV "
              "style=\"MARGIN-LEFT: "
              "5px\"><FONT style=\"BACKGROUND-COLOR: #ffb848\">a</FONT><SPAN class=t><FONT "
              "style=\"BACKGROUND-COLOR: "
              "#ffb848\">&lt;</FONT>b&gt;</SPAN>c</DIV>|<DIV>three</DIV>");
    document.undo();
    EXPECT_EQ(linesOf(document), Three);
    EXPECT_TRUE(range(1, 0, 5).execCommand(u"ForeColor", false, QStringLiteral("#0000FF")));
    EXPECT_EQ(range(1, 0, 5).htmlText(), QStringLiteral("a<SPAN class=t>&lt;b&gt;</SPAN>c"));
    EXPECT_TRUE(page::item(document, 2).outerHTML().contains(QStringLiteral("<FONT color=#0000FF>a<SPAN")));
    EXPECT_FALSE(range(1, 0, 5).execCommand(u"Bold", false, QString()));
    EXPECT_FALSE(range(1, 0, 0).execCommand(u"BackColor", false, QStringLiteral("red")));
}

TEST_F(RangeHtml, TouchesTheElementsBesideACaret)
{
    EXPECT_FALSE(range(1, 0, 0).touchesElement(u"SPAN"));
    EXPECT_TRUE(range(1, 1, 1).touchesElement(u"span"));
    EXPECT_TRUE(range(1, 2, 2).touchesElement(u"SPAN"));
    EXPECT_TRUE(range(1, 4, 4).touchesElement(u"SPAN"));
    EXPECT_FALSE(range(1, 5, 5).touchesElement(u"SPAN"));
    EXPECT_FALSE(range(1, 0, 2).touchesElement(u"SPAN"));
}

// ---------------------------------------------------------------- movement

TEST_F(RangeMovement, ALineBreakIsOneCharacter)
{
    TextRange caret = range(0, 3, 3);
    EXPECT_EQ(caret.move(u"character", 1), 1);
    EXPECT_EQ(caret.start(), (Position{1, 0}));
    EXPECT_EQ(caret.move(u"character", -2), -2);
    EXPECT_EQ(caret.start(), (Position{0, 2}));
}

TEST_F(RangeMovement, AnEndMovedPastTheOtherMovesItToo)
{
    TextRange moving = range(2, 1, 3);
    EXPECT_EQ(moving.moveStart(u"character", 3), 3);
    EXPECT_EQ(moving.start(), (Position{2, 4}));
    EXPECT_EQ(moving.end(), (Position{2, 4}));
    EXPECT_EQ(moving.moveEnd(u"character", -2), -2);
    EXPECT_EQ(moving.start(), (Position{2, 2}));
}

TEST_F(RangeMovement, MovesStopAtTheDocumentEndsAndReturnTheDistance)
{
    TextRange caret = range(1, 2, 2);
    EXPECT_EQ(caret.move(u"character", -1000000000), -6);
    EXPECT_EQ(caret.move(u"character", 1000000000), 15);
    EXPECT_EQ(caret.move(u"character", 1), 0);
}

TEST_F(RangeMovement, AMoveNeverEndsInsideASurrogatePair)
{
    range(0, 1, 2).setText(QString::fromUcs4(U"\U0001F600", 1));
    TextRange caret = range(0, 1, 1);
    EXPECT_EQ(caret.move(u"character", 1), 2);
    EXPECT_EQ(caret.start(), (Position{0, 3}));
    EXPECT_EQ(caret.move(u"character", -1), -2);
    EXPECT_EQ(caret.start(), (Position{0, 1}));
}

TEST_F(RangeMovement, ByWordsWithTheBlanksAfterThem)
{
    load("<DIV></DIV><DIV>x</DIV>");
    range(0, 0, 0).setText(QStringLiteral("one  two, three"));
    TextRange word = range(0, 0, 0);
    EXPECT_EQ(word.moveEnd(u"word", 1), 1);
    EXPECT_EQ(text(word), "one  ");
    EXPECT_EQ(word.moveEnd(u"word", 2), 2);
    EXPECT_EQ(text(word), "one  two, ");
    EXPECT_EQ(word.moveEnd(u"word", -3), -3);
    EXPECT_TRUE(word.isEmpty());
    EXPECT_EQ(word.moveEnd(u"word", 200), 6);
    EXPECT_EQ(word.end(), document.end());
    word = range(0, 6, 6);
    EXPECT_TRUE(word.expand(u"word"));
    EXPECT_EQ(text(word), "two");
    word = range(0, 1, 7);
    word.expand(u"word");
    EXPECT_EQ(text(word), "one  two");
    EXPECT_FALSE(word.expand(u"word"));
}

TEST_F(RangeMovement, TextEditReachesTheDocumentsEnds)
{
    TextRange moving = range(1, 1, 2);
    EXPECT_EQ(moving.moveStart(u"textedit", -1), -1);
    EXPECT_EQ(moving.moveEnd(u"textedit"), 1);
    EXPECT_EQ(text(moving), "one\r\na<b>c\r\nthree");
    EXPECT_FALSE(moving.expand(u"textedit"));
    moving.collapse(false);
    EXPECT_EQ(moving.moveEnd(u"TextEdit", 1), 0);
    EXPECT_TRUE(moving.expand(u"textedit"));
    moving.collapse();
    EXPECT_EQ(moving.end(), Position());
    EXPECT_TRUE(moving.expand(u"character"));
    EXPECT_EQ(text(moving), "o");
}

TEST_F(RangeMovement, EndPointsAreSetAndCompared)
{
    TextRange a = range(0, 1, 2);
    const TextRange b = range(1, 0, 3);
    EXPECT_EQ(a.compareEndPoints(u"StartToStart", b), -1);
    EXPECT_EQ(b.compareEndPoints(u"startToEnd", a), 1);
    a.setEndPoint(u"EndToStart", b);
    EXPECT_EQ(text(a), "ne\r\n");
    EXPECT_EQ(a.compareEndPoints(u"EndToStart", b), 0);
    a.setEndPoint(u"EndToEnd", b);
    EXPECT_TRUE(a.inRange(b));
    EXPECT_FALSE(b.inRange(a));
    a.setEndPoint(u"StartToEnd", b);
    EXPECT_TRUE(a.isEmpty());
    a.setEndPoint(u"StartToStart", b);
    EXPECT_TRUE(a.isEqual(b));
}

TEST_F(RangeMovement, AStartBeyondTheEndTakesTheEndAlong)
{
    TextRange a = range(0, 0, 2);
    const TextRange b = range(1, 1, 3);
    a.setEndPoint(u"StartToStart", b);
    EXPECT_TRUE(a.isEmpty());
    EXPECT_EQ(a.start(), b.start());
    EXPECT_EQ(a.end(), b.start());
    TextRange c = range(1, 1, 3);
    c.setEndPoint(u"EndToEnd", range(0, 0, 2));
    EXPECT_TRUE(c.isEmpty());
    EXPECT_EQ(c.start(), (Position{0, 2}));
}

TEST_F(RangeMovement, AHitNeverEndsInsideASurrogatePair)
{
    TextRange all = range(0, 0, 0);
    all.setText(QStringLiteral("x\U0001F600y"));
    TextRange search = page::createTextRange(document);
    EXPECT_FALSE(search.findText(QStringLiteral("x") + QChar(0xd83d)));
    search = page::createTextRange(document);
    EXPECT_FALSE(search.findText(QChar(0xde00) + QStringLiteral("y")));
    search = page::createTextRange(document);
    EXPECT_TRUE(search.findText(QStringLiteral("x\U0001F600")));
}

TEST(Words, ADoubleClickAndTheUnitOfMovementAgreeAboutTheSoftHyphen)
{
    DisplayDocument document;
    document.loadPage("<HTML><BODY><DIV>so\xc2\xad"
                      "ft, x</DIV></BODY></HTML>");
    const auto [from, to] = WordAround(document, {0, 1});
    EXPECT_EQ(from, (Position{0, 0}));
    EXPECT_EQ(to, (Position{0, 5}));
    TextRange range(document, {0, 0}, {0, 0});
    range.moveEnd(TextUnit::Word);
    EXPECT_EQ(range.end(), to);
}

TEST(Words, AroundAPositionAreTheLettersAtABorder)
{
    DisplayDocument document;
    document.loadPage("<HTML><BODY><DIV>ab, c</DIV><DIV></DIV></BODY></HTML>");
    using Pair = std::pair<Position, Position>;
    EXPECT_EQ(WordAround(document, {0, 2}), (Pair{{0, 0}, {0, 2}})) << "between the letters and the comma";
    EXPECT_EQ(WordAround(document, {0, 3}), (Pair{{0, 3}, {0, 4}})) << "the blank";
    EXPECT_EQ(WordAround(document, {0, 5}), (Pair{{0, 4}, {0, 5}})) << "the end of the line";
    EXPECT_EQ(WordAround(document, {1, 0}), (Pair{{1, 0}, {1, 0}})) << "an empty line";
}

TEST_F(RangeMovement, UnitsAndEndPointsHaveTheirNamesInAnyCase)
{
    static_assert(TextUnitNamed(u"character") == TextUnit::Character);
    static_assert(TextUnitNamed(u"Word") == TextUnit::Word);
    static_assert(TextUnitNamed(u"TEXTEDIT") == TextUnit::Textedit);
    static_assert(!TextUnitNamed(u"sentence"));
    static_assert(!TextUnitNamed(u""));
    static_assert(EndPointsNamed(u"StartToStart") == EndPoints::StartToStart);
    static_assert(EndPointsNamed(u"starttoend") == EndPoints::StartToEnd);
    static_assert(EndPointsNamed(u"ENDTOSTART") == EndPoints::EndToStart);
    static_assert(EndPointsNamed(u"EndToEnd") == EndPoints::EndToEnd);
    static_assert(!EndPointsNamed(u"Sideways"));
    // A literal that names nothing does not compile; one that names a unit is that unit.
    EXPECT_EQ(TextUnitName(u"Character").unit, TextUnit::Character);
    EXPECT_EQ(EndPointsName(u"StartToEnd").ends, EndPoints::StartToEnd);
}

TEST_F(RangeMovement, SelectingSetsTheSelectionAndItsType)
{
    EXPECT_EQ(page::type(document), QStringLiteral("None"));
    range(1, 1, 3).select();
    EXPECT_EQ(page::type(document), QStringLiteral("Text"));
    EXPECT_TRUE(page::createRange(document).isEqual(range(1, 1, 3)));
    page::empty(document);
    EXPECT_EQ(page::type(document), QStringLiteral("None"));
    EXPECT_EQ(document.selection().focus, (Position{1, 3}));
}

// ---------------------------------------------------------------- search

TEST_F(RangeSearch, ForwardFromTheRangesStartToTheDocumentsEnd)
{
    TextRange search = range(0, 0, 1);
    EXPECT_TRUE(search.findText(QStringLiteral("THREE")));
    EXPECT_EQ(search.start(), (Position{2, 0}));
    EXPECT_TRUE(search.findText(QStringLiteral("three")));
    search.collapse(false);
    EXPECT_FALSE(search.findText(QStringLiteral("e")));
    EXPECT_EQ(search.start(), (Position{2, 5}));
}

TEST_F(RangeSearch, BackwardFromTheRangesEnd)
{
    TextRange search = range(2, 4, 4);
    EXPECT_TRUE(search.findText(QStringLiteral("e"), -1));
    EXPECT_EQ(search.start(), (Position{2, 3}));
    search.collapse(true);
    EXPECT_TRUE(search.findText(QStringLiteral("e"), -1));
    EXPECT_EQ(search.start(), (Position{0, 2}));
}

TEST_F(RangeSearch, AcrossMarksAndLineBreaks)
{
    TextRange search = page::createTextRange(document);
    EXPECT_TRUE(search.findText(QStringLiteral("a<B>c")));
    for (const QString& lineEnd : {QStringLiteral("\r\n"), QStringLiteral("\r"), QStringLiteral("\n")}) {
        search = page::createTextRange(document);
        EXPECT_TRUE(
            search.findText(QStringLiteral("e") + lineEnd + QStringLiteral("a<b>c") + lineEnd + u't'));
        EXPECT_EQ(search.start(), (Position{0, 2}));
        EXPECT_EQ(search.end(), (Position{2, 1}));
        search = page::createTextRange(document);
        EXPECT_TRUE(search.findText(lineEnd, -1));
        EXPECT_EQ(search.start(), (Position{1, 5}));
    }
}

TEST_F(RangeSearch, FlagsSelectWholeWordsAndCase)
{
    load("<DIV>concat Cat cat_ \xd0\x9a\xd0\x9e\xd0\xa2 cat</DIV>");
    TextRange search = page::createTextRange(document);
    EXPECT_TRUE(search.findText(QStringLiteral("cat"), 1, 0));
    EXPECT_EQ(search.start().offset, 3);
    search = page::createTextRange(document);
    EXPECT_TRUE(search.findText(QStringLiteral("cat"), 1, TextRange::WholeWord));
    EXPECT_EQ(search.start().offset, 7);
    search = page::createTextRange(document);
    EXPECT_TRUE(search.findText(QStringLiteral("cat"), 1, TextRange::WholeWord + TextRange::MatchCase));
    EXPECT_EQ(search.start().offset, 20);
    search = page::createTextRange(document);
    EXPECT_TRUE(search.findText(QString::fromUtf8("\xd0\xba\xd0\xbe\xd1\x82"), 1, 0));
    EXPECT_FALSE(page::createTextRange(document).findText(QString(), 1, 0));
}

TEST_F(RangeSearch, ReplacesAllHitsInOnePass)
{
    load("<DIV>aXbxc</DIV><DIV>x</DIV>");
    TextRange search = page::createTextRange(document);
    int hits = 0;
    while (search.findText(QStringLiteral("x"), 1, 0)) {
        search.setText(QStringLiteral("xx"));
        ++hits;
    }
    EXPECT_EQ(hits, 3);
    EXPECT_EQ(page::innerText(document), QStringLiteral("axxbxxc\r\nxx"));
}

} // namespace vmk
