#include "DisplayPage.h"
#include "PageMaker.h"
#include "WordBreaks.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <ostream>

namespace vmk {

namespace {

std::string linesOf(DisplayDocument& document)
{
    QString html;
    for (int i = 1; i <= document.lineCount(); ++i)
        html += (i > 1 ? QStringLiteral("|") : QString()) + page::item(document, i).outerHTML();
    return html.toStdString();
}

std::string text(const TextRange& range)
{
    return range.text().toStdString();
}

/// A document with three lines and a caret.
class Document : public ::testing::Test
{
protected:
    void SetUp() override
    {
        load(
            "<DIV id=FirstDiv>one</DIV><DIV style=\"MARGIN-LEFT: 5px\">a<SPAN class=t>&lt;b&gt;</SPAN>c</DIV>"
            "<DIV>three</DIV>");
    }
    void load(const char* page) { document.loadPage(QByteArray(page)); }
    void caret(int line, int offset) { document.setSelection({line, offset}, {line, offset}); }
    TextRange range(int line, int from, int to) { return {document, {line, from}, {line, to}}; }
    TextRange lines(int first, int last)
    {
        return {document, {first, 0}, {last, int(document.line(last).text.size())}};
    }

    DisplayDocument document;
};

using DocumentKeys = Document;
using DocumentUndo = Document;
using RangeText = Document;
using RangeHtml = Document;
using RangeMovement = Document;
using RangeSearch = Document;
using Elements = Document;
using SharedOperations = Document;

constexpr char Three[] = "<DIV id=FirstDiv>one</DIV>|<DIV style=\"MARGIN-LEFT: 5px\">a<SPAN class=t>&lt;b&gt;"
                         "</SPAN>c</DIV>|<DIV>three</DIV>";
constexpr char Second[] = "<DIV style=\"MARGIN-LEFT: 5px\">a<SPAN class=t>&lt;b&gt;</SPAN>c</DIV>";

} // namespace

// ---------------------------------------------------------------- keys

TEST_F(DocumentKeys, TypedTextJoinsTheSpanBeforeTheCaret)
{
    caret(1, 4);
    document.typeText(QStringLiteral("x"));
    EXPECT_EQ(page::item(document, 2).innerText(), QStringLiteral("a<b>xc"));
    EXPECT_EQ(range(1, 3, 5).htmlText(), QStringLiteral("&gt;x"));
    EXPECT_EQ(document.selection().focus, (Position{1, 5}));
}

TEST_F(DocumentKeys, TypedTextAtTheLineStartJoinsTheFirstElement)
{
    load("<DIV><SPAN class=t>&lt;p&gt;</SPAN></DIV>");
    caret(0, 0);
    document.typeText(QStringLiteral("x"));
    EXPECT_EQ(linesOf(document), "<DIV><SPAN class=t>x&lt;p&gt;</SPAN></DIV>");
}

TEST_F(DocumentKeys, TypedTextJoinsAnEmptyElementButNeverAnAnchor)
{
    load("<DIV>a<SPAN class=et></SPAN>b<A id=x></A>c</DIV>");
    caret(0, 1);
    document.typeText(QStringLiteral("1"));
    caret(0, 3);
    document.typeText(QStringLiteral("2"));
    EXPECT_EQ(linesOf(document), "<DIV>a<SPAN class=et>1</SPAN>b2<A id=x></A>c</DIV>");
}

TEST_F(DocumentKeys, EnterAddsALineWithTheSameBlockButWithoutTheIdentifier)
{
    caret(0, 1);
    document.insertLineBreak();
    caret(2, 3);
    document.insertLineBreak();
    EXPECT_EQ(linesOf(document),
              "<DIV id=FirstDiv>o</DIV>|<DIV>ne</DIV>|<DIV style=\"MARGIN-LEFT: 5px\">a"
              "<SPAN class=t>&lt;b</SPAN></DIV>|<DIV style=\"MARGIN-LEFT: 5px\"><SPAN class=t>&gt;"
              "</SPAN>c</DIV>|<DIV>three</DIV>");
    EXPECT_EQ(document.selection().focus, (Position{3, 0}));
}

TEST_F(DocumentKeys, BackspaceAtTheLineStartJoinsTheLineToThePreviousOne)
{
    caret(1, 0);
    document.deleteBackward();
    EXPECT_EQ(linesOf(document),
              "<DIV id=FirstDiv>onea<SPAN class=t>&lt;b&gt;</SPAN>c</DIV>|<DIV>three</DIV>");
    EXPECT_EQ(document.selection().focus, (Position{0, 3}));
}

TEST_F(DocumentKeys, ALineJoinedToAnEmptyOneKeepsItsMarginAndTheFirstIdentifier)
{
    load("<DIV id=FirstDiv></DIV><DIV style=\"MARGIN-LEFT: 5px\">a</DIV>");
    caret(0, 0);
    document.deleteForward();
    EXPECT_EQ(linesOf(document), "<DIV style=\"MARGIN-LEFT: 5px\" id=FirstDiv>a</DIV>");
}

TEST_F(DocumentKeys, SurrogatePairsAreTypedAndDeletedAsOneCharacter)
{
    const QString smile = QString::fromUcs4(U"\U0001F600", 1);
    caret(0, 3);
    document.typeText(smile);
    EXPECT_EQ(document.selection().focus, (Position{0, 5}));
    document.deleteBackward();
    EXPECT_EQ(linesOf(document), Three);
    document.typeText(smile);
    caret(0, 3);
    document.deleteForward();
    EXPECT_EQ(linesOf(document), Three);
    document.typeText(smile);
    caret(0, 4);
    EXPECT_EQ(document.selection().focus, (Position{0, 3}));
}

TEST_F(DocumentKeys, DeletingBeyondTheEndsDoesNothing)
{
    caret(0, 0);
    document.deleteBackward();
    caret(2, 5);
    document.deleteForward();
    EXPECT_EQ(linesOf(document), Three);
    EXPECT_FALSE(document.canUndo());
}

TEST_F(DocumentKeys, DeletingTheTextOfAnElementRemovesTheElement)
{
    document.setSelection({1, 1}, {1, 4});
    document.deleteSelection();
    EXPECT_EQ(page::item(document, 2).outerHTML(),
              QStringLiteral("<DIV style=\"MARGIN-LEFT: 5px\">ac</DIV>"));
}

TEST_F(DocumentKeys, SeveralCompleteLinesAreDeletedAsLines)
{
    document.setSelection({1, 5}, {0, 0});
    document.deleteSelection();
    EXPECT_EQ(linesOf(document), "<DIV>three</DIV>");
    EXPECT_EQ(document.selection().focus, Position());
}

TEST_F(DocumentKeys, TypingWorksAfterDeletingEverything)
{
    document.setSelection({}, document.end());
    document.eraseSelection();
    ASSERT_EQ(document.lineCount(), 1);
    EXPECT_EQ(linesOf(document), "<DIV id=FirstDiv></DIV>");
    document.typeText(QStringLiteral("x"));
    document.insertLineBreak();
    EXPECT_EQ(linesOf(document), "<DIV id=FirstDiv>x</DIV>|<DIV></DIV>");
}

// ---------------------------------------------------------------- undo

TEST_F(DocumentUndo, ConsecutiveTypingIsOneStep)
{
    caret(0, 3);
    document.typeText(QStringLiteral("a"));
    document.typeText(QStringLiteral("b"));
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(linesOf(document), Three);
    EXPECT_EQ(document.selection().focus, (Position{0, 3}));
    EXPECT_FALSE(document.undo());
    EXPECT_TRUE(document.redo());
    EXPECT_EQ(document.line(0).text, QStringLiteral("oneab"));
    EXPECT_EQ(document.selection().focus, (Position{0, 5}));
}

TEST_F(DocumentUndo, ACaretMoveOrAnotherOperationEndsTheTypingStep)
{
    caret(0, 3);
    document.typeText(QStringLiteral("a"));
    caret(0, 4);
    document.typeText(QStringLiteral("b"));
    range(2, 0, 1).setText(QStringLiteral("T"));
    document.typeText(QStringLiteral("c"));
    document.undo();
    EXPECT_EQ(document.line(0).text, QStringLiteral("oneab"));
    document.undo();
    EXPECT_EQ(document.line(2).text, QStringLiteral("three"));
    document.undo();
    EXPECT_EQ(document.line(0).text, QStringLiteral("onea"));
    document.undo();
    EXPECT_EQ(linesOf(document), Three);
}

TEST_F(DocumentUndo, TheSelectionBeforeAnEditIsRestored)
{
    document.setSelection({1, 2}, {0, 1});
    document.typeText(QStringLiteral("x"));
    EXPECT_EQ(document.line(0).text, QStringLiteral("oxb>c"));
    document.undo();
    EXPECT_EQ(document.selection().anchor, (Position{1, 2}));
    EXPECT_EQ(document.selection().focus, (Position{0, 1}));
}

TEST_F(DocumentUndo, ANewEditClearsTheRedoSteps)
{
    caret(0, 0);
    document.typeText(QStringLiteral("a"));
    document.undo();
    document.insertLineBreak();
    EXPECT_FALSE(document.redo());
}

TEST_F(DocumentUndo, UndoRestoresTheOriginalLineObjects)
{
    const LinePtr old = document.linePtr(1);
    range(1, 0, 3).pasteHTML(QStringLiteral("<DIV>x</DIV>"));
    EXPECT_EQ(document.lineCount(), 4);
    document.undo();
    EXPECT_EQ(document.linePtr(1), old);
}

/// A line of many thousand characters with elements in it.
QByteArray veryLongLine()
{
    QByteArray text;
    for (int i = 0; text.size() < 40000; ++i)
        text += "word" + QByteArray::number(i) + " <SPAN class=t>&lt;b&gt;</SPAN><I>in <B>bold</B></I> ";
    return "<DIV id=x>" + text + "</DIV>";
}

/// One random edit near the selection: at most one undo step.
void editSomewhere(DisplayDocument& document, reference::Dice& dice)
{
    const auto characters = int(document.characterIndex(document.end()));
    const int index = dice.roll(characters);
    const Position from = document.positionAt(index);
    const Position to = document.positionAt(index + dice.roll(40));
    document.setSelection(from, dice.roll(3) == 0 ? to : from);
    switch (dice.roll(8)) {
    case 0:
        for (int i = dice.roll(4); i >= 0; --i)
            document.typeText(QStringLiteral("typed"));
        break;
    case 1:
        document.deleteBackward();
        break;
    case 2:
        document.deleteForward();
        break;
    case 3:
        document.insertLineBreak();
        break;
    case 4:
        static_cast<void>(document.replaceHtml(from, to, u"a<B>b</B><DIV>c</DIV>d"));
        break;
    case 5:
        document.wrapRange(from, to, document.tags().intern(u"FONT", u"color=red"));
        break;
    case 6:
        document.setBlock(from.line, document.tags().intern(u"DIV", u"class=t"));
        break;
    default:
        const DisplayDocument::EditGroup oneStep(document);
        for (int i = 0; i < 3; ++i)
            static_cast<void>(document.replaceText(document.positionAt(index + 20 * i),
                                                   document.positionAt(index + 20 * i + 5),
                                                   QStringLiteral("x\r\ny")));
    }
}

TEST_F(DocumentUndo, VeryLongLinesAreRestoredAfterEveryKindOfEdit)
{
    document.loadPage("<DIV>first</DIV>" + veryLongLine() + veryLongLine());
    reference::Dice dice(17);
    std::vector<QByteArray> pages{document.savePage()};
    for (int round = 0; round < 300; ++round) {
        editSomewhere(document, dice);
        if (QByteArray page = document.savePage(); page != pages.back())
            pages.push_back(page);
    }
    ASSERT_GT(pages.size(), 200U);
    std::vector<QByteArray> undone{document.savePage()};
    while (document.undo()) {
        if (QByteArray page = document.savePage(); page != undone.back())
            undone.push_back(page);
    }
    std::reverse(undone.begin(), undone.end());
    EXPECT_TRUE(undone == pages);
    std::vector<QByteArray> redone{document.savePage()};
    while (document.redo()) {
        if (QByteArray page = document.savePage(); page != redone.back())
            redone.push_back(page);
    }
    EXPECT_TRUE(redone == pages);
}

TEST_F(DocumentUndo, AStepInAVeryLongLineStoresOnlyTheChange)
{
    constexpr qsizetype Length = 1 << 20;
    constexpr int Steps = 500;
    document.loadPage("<DIV>" + QByteArray(Length, 'a') + "</DIV>");
    const auto heapBytes = [] {
        const struct mallinfo2 heap = mallinfo2();
        return heap.uordblks + heap.hblkhd;
    };
    const std::size_t before = heapBytes();
    caret(0, Length / 2);
    for (int i = 0; i < Steps; ++i)
        document.deleteBackward();
    // The line before and after the last step, and little else.
    EXPECT_LT(heapBytes() - before, 4 * Length * sizeof(QChar));
    while (document.undo()) { }
    EXPECT_EQ(document.line(0).text.size(), Length);
}

TEST_F(DocumentUndo, LoadingAPageClearsTheHistory)
{
    TextRange live = range(1, 1, 2);
    document.typeText(QStringLiteral("a"));
    load("<DIV>x</DIV>");
    EXPECT_FALSE(document.canUndo());
    EXPECT_EQ(live.start(), Position());
    EXPECT_TRUE(live.isEmpty());
}

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

// ---------------------------------------------------------------- the listener

namespace {

class Recorder final : public DisplayListener
{
public:
    void linesChanged(int first, const std::vector<LinePtr>& removed,
                      const std::vector<LinePtr>& inserted) override
    {
        calls += "lines " + std::to_string(first) + " -" + std::to_string(removed.size()) + " +"
            + std::to_string(inserted.size()) + "; ";
    }
    void selectionChanged() override { calls += "selection; "; }
    void documentReset() override { calls += "reset; "; }

    std::string calls;
};

} // namespace

TEST_F(Document, NotifiesItsListenerOfTheChangedLines)
{
    Recorder recorder;
    document.setListener(&recorder);
    caret(1, 1);
    document.insertLineBreak();
    document.undo();
    load("<DIV>x</DIV>");
    document.setListener(nullptr);
    caret(0, 1);
    EXPECT_EQ(recorder.calls, "selection; lines 1 -1 +2; selection; lines 1 -2 +1; selection; reset; ");
}

TEST_F(Document, CountsCharactersBothWays)
{
    load(reference::makeBookPage(100000).constData());
    range(40, 3, 9).setText(QStringLiteral("a\r\nb"));
    qint64 index = 0;
    for (int line = 0; line < document.lineCount(); ++line) {
        for (int offset = 0; offset <= document.line(line).text.size(); offset += 7) {
            ASSERT_EQ(document.characterIndex({line, offset}), index + offset);
            ASSERT_EQ(document.positionAt(index + offset), (Position{line, offset}));
        }
        index += document.line(line).text.size() + 1;
    }
    EXPECT_EQ(document.positionAt(index + 100), document.end());
    EXPECT_EQ(document.positionAt(-1), Position());
}

} // namespace vmk
