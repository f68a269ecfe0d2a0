#include "DocumentFixture.h"
#include "PageMaker.h"

#include <malloc.h>

#include <algorithm>
#include <limits>
#include <ostream>

namespace vmk {

namespace {

using DocumentKeys = Document;
using DocumentUndo = Document;

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

// ---------------------------------------------------------------- sizes

TEST(DisplayDocumentSizes, PositionsAreCountedBeyondTheRangeOf32Bits)
{
    // One line object at each position: the page needs no memory.
    constexpr int Lines = 2200;
    constexpr int Length = 1'000'000;
    constexpr qint64 LineLength = Length + 1;
    DisplayDocument document;
    const LinePtr line = MakeLine({document.tags().intern(u"DIV", {}), QString(Length, u'x'), {}});
    document.splice(0, 1, std::vector<LinePtr>(Lines, line), {{0, 0}, {1, 0}, {Lines, 0}, false});
    ASSERT_EQ(document.lineCount(), Lines);

    const qint64 end = Lines * LineLength - 1;
    ASSERT_GT(end, qint64(std::numeric_limits<int>::max()));
    EXPECT_EQ(document.characterIndex(document.end()), end);
    for (const Position& place : {Position{0, 7}, Position{2147, 483'000}, Position{2199, 999'999}}) {
        const qint64 index = place.line * LineLength + place.offset;
        EXPECT_EQ(document.characterIndex(place), index);
        EXPECT_EQ(document.positionAt(index), place);
    }
    EXPECT_EQ(document.positionAt(end + 1), document.end());

    // A move counts with 32 bits; two of them pass the limit.
    TextRange range(document, {}, {});
    constexpr int Most = std::numeric_limits<int>::max();
    EXPECT_EQ(range.move(TextUnit::Character, Most), Most);
    EXPECT_EQ(range.move(TextUnit::Character, 1000), 1000);
    EXPECT_EQ(document.characterIndex(range.start()), qint64(Most) + 1000);
    EXPECT_EQ(range.move(TextUnit::Character, -1001), -1001);
    EXPECT_EQ(document.characterIndex(range.start()), qint64(Most) - 1);
}

} // namespace vmk
