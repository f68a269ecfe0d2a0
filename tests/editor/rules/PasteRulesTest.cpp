#include "PasteRules.h"
#include "Cancelling.h"
#include "Chance.h"
#include "ClipboardRules.h"
#include "Desktop.h"
#include "RulesFixture.h"

#include <gmock/gmock.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

constexpr char TwoLines[] = "<DIV id=FirstDiv>first</DIV>\r<DIV style=\"MARGIN-LEFT: 5px\">second</DIV>";

class Pasting : public Rules
{
protected:
    /// Sets the caret as a mouse press at that position would.
    QPoint press()
    {
        const TextRange range = page::createRange(document);
        return {range.offsetLeft(), range.offsetTop()};
    }
    void pasteText(const char* html) { PasteText(document, QString::fromUtf8(html), press()); }
    void pasteHtml(const char* html) { PasteHtml(document, QString::fromUtf8(html), press()); }
    std::string allText()
    {
        std::string all;
        for (int line = 0; line < document.lineCount(); ++line)
            all += text(line) + '\n';
        return all;
    }
};

} // namespace

TEST_F(Pasting, AnEmptyOrBlankClipboardDoesNothing)
{
    show(TwoLines);
    pasteText("");
    pasteHtml("  ");
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_TRUE(BookUnchanged);
    EXPECT_FALSE(document.canUndo());
}

TEST_F(Pasting, TextWithoutLinesIsInsertedAtTheCaretAndKeepsTheFlag)
{
    show("<DIV><SPAN class=t>&lt;pp&gt;</SPAN></DIV>");
    caret(0, 2);
    pasteText("x  y");
    EXPECT_EQ(lines(), "<DIV><SPAN class=t>&lt;px yp&gt;</SPAN></DIV>");
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_TRUE(BookUnchanged);
}

TEST_F(Pasting, TwoBlanksBecomeOneAsTextAndStayAsHtml)
{
    show("<DIV>ab</DIV>");
    caret(0, 1);
    pasteText("one  two");
    EXPECT_EQ(text(0), "aone twob");
    show("<DIV>ab</DIV>");
    caret(0, 2);
    pasteHtml("one  two");
    EXPECT_EQ(text(1), "one  two");
}

TEST_F(Pasting, ACompleteLineAtTheEndOfALineIsInsertedBelow)
{
    show(TwoLines);
    caret(0, 5);
    pasteText("<DIV class=x>new</DIV>");
    EXPECT_EQ(allText(), "first\nnew\nsecond\n");
    EXPECT_EQ(caretPlace(), (Position{1, 3}));
    EXPECT_FALSE(BookUnchanged);
    undo();
    EXPECT_EQ(allText(), "first\nsecond\n");
}

TEST_F(Pasting, ACompleteLineAtTheStartOfALineIsInsertedAbove)
{
    show(TwoLines);
    caret(1, 0);
    pasteText("<DIV>new</DIV>");
    EXPECT_EQ(allText(), "first\nnew\nsecond\n");
    EXPECT_EQ(lines(),
              "<DIV id=FirstDiv>first</DIV>\n<DIV>new</DIV>\n<DIV style=\"MARGIN-LEFT: 5px\">second</DIV>");
}

TEST_F(Pasting, CompleteLinesInsideALineBecomeItsText)
{
    show(TwoLines);
    caret(1, 3);
    pasteText("<DIV>new </DIV><DIV>lines</DIV>");
    EXPECT_EQ(allText(), "first\nsecnew linesond\n");
    EXPECT_EQ(lines().substr(lines().find('\n') + 1),
              "<DIV style=\"MARGIN-LEFT: 5px\">secnew linesond</DIV>");
    undo();
    EXPECT_EQ(allText(), "first\nsecond\n");
}

TEST_F(Pasting, PasteAsHtmlInsideALineBreaksItInTwo)
{
    show(TwoLines);
    caret(1, 3);
    pasteHtml("<DIV>new</DIV>");
    EXPECT_EQ(lines(),
              "<DIV id=FirstDiv>first</DIV>\n<DIV style=\"MARGIN-LEFT: 5px\">sec</DIV>\n<DIV>new</DIV>\n"
              "<DIV style=\"MARGIN-LEFT: 5px\">ond</DIV>");
    EXPECT_EQ(caretPlace(), (Position{2, 3}));
    undo();
    EXPECT_EQ(allText(), "first\nsecond\n");
}

TEST_F(Pasting, PasteAsHtmlWithoutLinesUsesTheTagOfTheLine)
{
    show(TwoLines);
    caret(1, 6);
    pasteHtml("plain");
    EXPECT_EQ(lines().substr(lines().rfind('\n') + 1), "<DIV style=\"MARGIN-LEFT: 5px\">plain</DIV>");
}

TEST_F(Pasting, PasteAsHtmlAtTheStartPutsTheCaretBeforeTheLine)
{
    show(TwoLines);
    caret(1, 0);
    pasteHtml("<DIV>new</DIV>");
    EXPECT_EQ(allText(), "first\nnew\nsecond\n");
    EXPECT_EQ(lines(),
              "<DIV id=FirstDiv>first</DIV>\n<DIV>new</DIV>\n<DIV style=\"MARGIN-LEFT: 5px\">second</DIV>");
    EXPECT_EQ(document.selection(), (Selection{{1, 3}, {1, 3}}));
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_FALSE(BookUnchanged);
    undo();
    EXPECT_EQ(allText(), "first\nsecond\n");
}

TEST_F(Pasting, AnEntityOfANonBreakingSpaceBecomesABlankBeforeBlanksCollapse)
{
    show("<DIV>ab</DIV>");
    caret(0, 1);
    pasteText("x&nbsp;&nbsp; &nbsp;y&nbsp;");
    EXPECT_EQ(text(0), "ax y b");
    // Paste as HTML keeps it.
    show("<DIV>ab</DIV>");
    caret(0, 2);
    pasteHtml("x&nbsp;y");
    EXPECT_EQ(text(1), "x\x7fy");
    ShowNbsp = 0;
    show("<DIV>ab</DIV>");
    caret(0, 2);
    pasteHtml("x&nbsp;y");
    EXPECT_EQ(text(1), "x\xc2\xa0y");
}

TEST_F(Pasting, TheSourceOfABookKeepsTheTextOfEveryElement)
{
    const char* const source = "<title><p>Chapter one</p></title><style name=\"x\">styled words</style>"
                               "<p>code <![CDATA[a < b && c]]> end</p>"
                               "<textarea>typed</textarea><select><option>chosen</option></select>";
    for (const bool asHtml : {false, true}) {
        show(TwoLines);
        caret(1, 6);
        if (asHtml)
            pasteHtml(source);
        else
            pasteText(source);
        for (const char* words : {"Chapter one", "styled words", "a < b && c", "end", "typed", "chosen"})
            EXPECT_THAT(allText(), testing::HasSubstr(words)) << asHtml;
    }
}

TEST_F(Pasting, AParagraphWithAClassBecomesAPlainLine)
{
    show(TwoLines);
    caret(0, 5);
    pasteHtml("<P class=Normal>text</P>");
    EXPECT_EQ(lines(),
              "<DIV id=FirstDiv>first</DIV>\n<DIV>text</DIV>\n<DIV style=\"MARGIN-LEFT: 5px\">second</DIV>");
}

TEST_F(Pasting, TheMarkOfANonBreakingSpaceStaysWhileItIsShown)
{
    show("<DIV>ab</DIV>");
    caret(0, 1);
    pasteText("x\x7f"
              "y");
    EXPECT_EQ(text(0),
              "ax\x7f"
              "yb");
    ShowNbsp = 0;
    show("<DIV>ab</DIV>");
    caret(0, 1);
    pasteText("x\x7f"
              "y");
    EXPECT_EQ(text(0),
              "ax\xc2\xa0"
              "yb");
}

TEST_F(Pasting, OutsideALineNothingIsPastedYetAnEditIsNoted)
{
    show("");
    pasteText("<DIV>new</DIV>");
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_FALSE(BookUnchanged);
    EXPECT_EQ(allText(), "\n");
}

TEST_F(Pasting, ForeignTextsKeepEveryCharacterAndLine)
{
    const std::pair<const char*, std::vector<std::string>> texts[] = {
        {"plain\r\nwith line ends\r\n", {"plain", "with", "ends"}},
        {"a < b > c & d", {"a <", "c & d"}},
        {"<html><body><!--StartFragment--><p class=MsoNormal>Word "
         "<o:p>text</o:p></p><p>two</p><!--EndFragment-->",
         {"Word", "text", "two"}},
        {"<table><tr><td>cell</td><td>other</td></tr></table>", {"cell", "other"}},
        {"\xf0\x9d\x94\xbb plane one", {"\xf0\x9d\x94\xbb plane"}},
        {"<ul><li>item<li>point two</ul>", {"item", "point two"}},
        {"<DIV>nested <DIV>inner</DIV> tail</DIV>", {"nested", "inner", "tail"}},
    };
    for (const auto& [foreign, words] : texts) {
        for (const int offset : {0, 3, 6}) {
            for (const bool asHtml : {false, true}) {
                show(TwoLines);
                caret(1, offset);
                if (asHtml)
                    pasteHtml(foreign);
                else
                    pasteText(foreign);
                std::string page = allText();
                EXPECT_EQ(page.rfind("first\n", 0), 0U) << foreign;
                std::erase(page, '\n');
                for (const std::string& word : words)
                    EXPECT_THAT(page, testing::HasSubstr(word)) << foreign;
                EXPECT_THAT(page, testing::HasSubstr(std::string("second").substr(0, size_t(offset))));
                EXPECT_THAT(page, testing::HasSubstr(std::string("second").substr(size_t(offset))));
                undo();
                EXPECT_EQ(allText(), "first\nsecond\n") << foreign;
            }
        }
    }
}

TEST_F(Pasting, CopyThenPasteInTheSameLineKeepsThePainting)
{
    show("<DIV><SPAN class=t>&lt;p&gt;</SPAN>word<SPAN class=t>&lt;/p&gt;</SPAN></DIV>");
    select(0, 0, 0, 7);
    CopySelection(document, false);
    EXPECT_EQ(ClipboardText().toStdString(), "<SPAN class=t>&lt;p&gt;</SPAN>word");
    caret(0, 7);
    PasteText(document, ClipboardText(), press());
    EXPECT_EQ(lines(),
              "<DIV><SPAN class=t>&lt;p&gt;</SPAN>word<SPAN class=t>&lt;p&gt;</SPAN>word"
              "<SPAN class=t>&lt;/p&gt;</SPAN></DIV>");
}

TEST_F(Pasting, CopyAsTextWritesTheTagInPlainAngleBrackets)
{
    show("<DIV><SPAN class=t>&lt;p&gt;</SPAN>a &amp; b</DIV>");
    select(0, 0, 0, 8);
    CopyAsText(document);
    EXPECT_EQ(ClipboardText().toStdString(), "<p>a & b");
    EXPECT_EQ(UndoSteps, 0);
}

TEST_F(Pasting, CutRemovesTheSelectionAndDoesNothingAtACaret)
{
    show(TwoLines);
    select(0, 2, 1, 3);
    CopySelection(document, true);
    EXPECT_EQ(allText(), "fiond\n");
    undo();
    EXPECT_EQ(allText(), "first\nsecond\n");
    caret(0, 0);
    CopySelection(document, true);
    EXPECT_EQ(ClipboardText(), QString());
    EXPECT_EQ(allText(), "first\nsecond\n");
}

TEST_F(Pasting, LengthOfHtmlCountsWhatIsShown)
{
    EXPECT_EQ(TextLengthOfHtml(u"<DIV>&lt;p&gt;</DIV>\r\n<SPAN>ab</SPAN>"_s), 5);
    EXPECT_EQ(TextLengthOfHtml(QString()), 0);
}

TEST(HtmlToPlainText, DropsTheHeadTheTagsAndTheWraps)
{
    EXPECT_EQ(HtmlToPlainText(
                  u"<HTML><BODY text=x>\r\n<DIV>a \r\nb&nbsp;&lt;p&gt;</DIV>\r\n<DIV>c&amp;</DIV>"_s, true),
              u"a b\u00a0<p>\rc&amp;"_s);
    EXPECT_EQ(HtmlToPlainText(u"x</head>&lt;"_s, false), u"&lt;"_s);
    // The first of the three that is found ends the head, wherever the others are.
    EXPECT_EQ(HtmlToPlainText(u"<HEAD>a</HEAD><BODY>b<basefont size=2>\r\nc &nbsp;d"_s, true),
              u"c \u00a0d"_s);
}

TEST_F(Pasting, TheIdentifierStaysWithTheFirstLineWhenItIsBroken)
{
    show(TwoLines);
    caret(0, 2);
    pasteHtml("words");
    EXPECT_EQ(lines(),
              "<DIV id=FirstDiv>fi</DIV>\n<DIV>words</DIV>\n<DIV>rst</DIV>\n"
              "<DIV style=\"MARGIN-LEFT: 5px\">second</DIV>");
}

TEST_F(Pasting, ANonBreakingSpaceCountsAsText)
{
    ShowNbsp = 0;
    show("<DIV>&nbsp;word</DIV>");
    caret(0, 1);
    pasteHtml("<DIV>new</DIV>");
    EXPECT_EQ(allText(), "\xc2\xa0\nnew\nword\n");
    show("<DIV>ab</DIV>");
    caret(0, 1);
    pasteText("\xc2\xa0");
    EXPECT_EQ(text(0),
              "a\xc2\xa0"
              "b");
}

TEST_F(Pasting, HtmlOfABrowserKeepsItsWordsInLines)
{
    show(TwoLines);
    caret(0, 5);
    pasteHtml(
        "<meta charset='utf-8'><h2 style=\"color: rgb(0, 0, 0);\">Heading</h2><p>One <b>bold</b>&nbsp;word"
        "<br>next</p><ul><li>item</li></ul><script>var x;</script>");
    EXPECT_EQ(allText(), "first\nHeading\nOne bold\x7fword\nnext\nitem\nsecond\n");
    undo();
    EXPECT_EQ(allText(), "first\nsecond\n");
}

TEST_F(Pasting, HtmlOfAnOfficeProgramKeepsItsWordsInLines)
{
    show(TwoLines);
    caret(0, 5);
    pasteText("<html xmlns:o=\"urn:schemas-microsoft-com:office:office\">\r\n<head><style><!-- p.MsoNormal "
              "{margin:0cm;}"
              " --></style></head>\r\n<body lang=EN-US>\r\n<!--StartFragment-->\r\n"
              "<p class=MsoNormal style='margin-bottom:0cm'><span lang=EN-US>First "
              "<i>words</i><o:p></o:p></span></p>"
              "\r\n<p class=MsoNormal>Second</p>\r\n<!--EndFragment-->\r\n</body>\r\n</html>");
    EXPECT_EQ(allText(), "first\nFirst words\nSecond\nsecond\n");
}

TEST_F(Pasting, LineEndsOfPastedPlainTextBecomeBlanks)
{
    show(TwoLines);
    caret(1, 3);
    pasteText("one\r\ntwo\nthree");
    EXPECT_EQ(allText(), "first\nsecone two threeond\n");
}

TEST_F(Pasting, ACopiedTagIsPastedWithItsPainting)
{
    show("<DIV><SPAN class=t>&lt;image<FONT class=n> l:href=</FONT>/&gt;</SPAN>word</DIV>");
    select(0, 0, 0, 16);
    CopySelection(document, false);
    EXPECT_EQ(ClipboardText().toStdString(),
              "<SPAN class=t>&lt;image<FONT class=n> l:href=</FONT>/&gt;</SPAN>");
    caret(0, 20);
    PasteText(document, ClipboardText(), press());
    EXPECT_EQ(lines(),
              "<DIV><SPAN class=t>&lt;image<FONT class=n> l:href=</FONT>/&gt;</SPAN>word"
              "<SPAN class=t>&lt;image<FONT class=n> l:href=</FONT>/&gt;</SPAN></DIV>");
}

TEST_F(Pasting, ACopiedLineIsPastedAsALineAtTheEndAndTheStartOfAnother)
{
    for (const int offset : {6, 0}) {
        show("<DIV>a<SPAN class=t>&lt;b&gt;</SPAN></DIV>\r<DIV style=\"MARGIN-LEFT: 5px\">second</DIV>");
        select(0, 0, 0, 4);
        CopySelection(document, false);
        caret(1, offset);
        PasteText(document, ClipboardText(), press());
        const std::string copy = "<DIV>a<SPAN class=t>&lt;b&gt;</SPAN></DIV>";
        const std::string other = "<DIV style=\"MARGIN-LEFT: 5px\">second</DIV>";
        EXPECT_EQ(lines(), copy + '\n' + (offset > 0 ? other + '\n' + copy : copy + '\n' + other));
    }
    // Inside a line it becomes part of the line.
    caret(0, 1);
    PasteText(document, ClipboardText(), press());
    EXPECT_EQ(text(0), "aa<b><b>");
}

TEST_F(Pasting, LinesCopiedUpToTheStartOfTheNextAddNoEmptyLine)
{
    show(TwoLines);
    select(0, 0, 1, 0);
    CopySelection(document, true);
    EXPECT_EQ(ClipboardText(), u"<DIV id=FirstDiv>first</DIV>"_s);
    EXPECT_EQ(allText(), "second\n");
    caret(0, 6);
    PasteText(document, ClipboardText(), press());
    EXPECT_EQ(allText(), "second\nfirst\n");
}

TEST_F(Pasting, APartlyCopiedPaintedTagIsPastedAsText)
{
    show("<DIV><SPAN class=t>&lt;p&gt;</SPAN>word<SPAN class=t>&lt;/p&gt;</SPAN>x</DIV>");
    select(0, 0, 0, 2);
    CopySelection(document, false);
    EXPECT_EQ(ClipboardText(), u"&lt;p"_s);
    select(0, 1, 0, 3);
    CopySelection(document, false);
    EXPECT_EQ(ClipboardText(), u"p&gt;"_s);
    // Both ends are beside a painted run, but these are two runs.
    select(0, 0, 0, 11);
    CopySelection(document, false);
    EXPECT_EQ(ClipboardText(), u"<SPAN class=t>&lt;p&gt;</SPAN>word<SPAN class=t>&lt;/p&gt;</SPAN>"_s);
}

TEST_F(Pasting, APasteInsideAPaintedTagLeavesBothSidesPainted)
{
    show("<DIV><SPAN class=t>&lt;pp&gt;</SPAN></DIV>");
    caret(0, 2);
    pasteText("<DIV>new</DIV>");
    EXPECT_EQ(lines(), "<DIV><SPAN class=t>&lt;p</SPAN>new<SPAN class=t>p&gt;</SPAN></DIV>");
    show("<DIV><SPAN class=t>&lt;pp&gt;</SPAN></DIV>");
    caret(0, 2);
    pasteHtml("<DIV>new</DIV>");
    EXPECT_EQ(lines(),
              "<DIV><SPAN class=t>&lt;p</SPAN></DIV>\n<DIV>new</DIV>\n"
              "<DIV><SPAN class=t>p&gt;</SPAN></DIV>");
}

TEST_F(Pasting, PastingIntoTheFirstLineWorksAsElsewhere)
{
    for (const bool asHtml : {false, true}) {
        show(TwoLines);
        caret(0, 0);
        if (asHtml)
            pasteHtml("<DIV>new</DIV>");
        else
            pasteText("<DIV>new</DIV>");
        EXPECT_EQ(allText(), "new\nfirst\nsecond\n");
        EXPECT_EQ(UndoSteps, 1);
    }
}

TEST_F(Pasting, ATagCopiedAsTextIsPastedAsAnElement)
{
    show("<DIV><SPAN class=t>&lt;b&gt;</SPAN>word<SPAN class=t>&lt;/b&gt;</SPAN></DIV>");
    select(0, 0, 0, 11);
    CopyAsText(document);
    EXPECT_EQ(ClipboardText(), u"<b>word</b>"_s);
    caret(0, 5);
    PasteText(document, ClipboardText(), press());
    EXPECT_EQ(text(0), "<b>wowordrd</b>");
    EXPECT_THAT(lines(), testing::HasSubstr("wo<B>word</B>rd"));
}

TEST_F(Pasting, AsHtmlOutsideALineNothingIsPastedYetAnEditIsNoted)
{
    show("");
    pasteHtml("new");
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_FALSE(BookUnchanged);
    EXPECT_EQ(allText(), "\n");
}

TEST_F(Pasting, OnlyBlanksMakeAClipboardEmpty)
{
    show(TwoLines);
    caret(1, 3);
    pasteText("\t");
    EXPECT_EQ(allText(), "first\nsec\tond\n");
    EXPECT_EQ(UndoSteps, 1);
    undo();
    pasteText("\r\n");
    EXPECT_EQ(UndoSteps, 1);
}

TEST_F(Pasting, TheCaretIsCountedFromTheLastMousePress)
{
    show("<DIV>some text</DIV>\r<DIV>word</DIV>");
    caret(1, 4);
    PasteText(document, u"<DIV>new</DIV>"_s, {2 * GridLayout::CellWidth, 0});
    EXPECT_EQ(caretPlace(), (Position{0, 2 + 3 + 1}));
    caret(1, 0);
    PasteText(document, u"<DIV>new</DIV>"_s, {2 * GridLayout::CellWidth, 0});
    EXPECT_EQ(caretPlace(), (Position{0, 2 + 3}));
}

TEST_F(Pasting, CopyAndCutDoNotChangeOtherState)
{
    show(TwoLines);
    select(0, 0, 0, 5);
    CopySelection(document, false);
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_TRUE(BookUnchanged);
    CopySelection(document, true);
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_FALSE(BookUnchanged);
}

TEST_F(Pasting, ThePageThatWasCutComesBack)
{
    for (const bool asHtml : {false, true}) {
        show("<DIV id=FirstDiv><SPAN class=t>&lt;p&gt;</SPAN>one</DIV>\r<DIV style=\"MARGIN-LEFT: "
             "5px\">two</DIV>");
        const std::string before = lines();
        document.setSelection({}, document.end());
        CopySelection(document, true);
        EXPECT_EQ(lines(), "<DIV id=FirstDiv></DIV>");
        if (asHtml)
            pasteHtml(ClipboardText().toUtf8().constData());
        else
            pasteText(ClipboardText().toUtf8().constData());
        EXPECT_EQ(lines(), before);
        EXPECT_EQ(caretPlace(), document.end());
        undo();
        EXPECT_EQ(lines(), "<DIV id=FirstDiv></DIV>");
        document.undo();
        EXPECT_EQ(lines(), before);
    }
}

// ---------------------------------------------------------------- cancelled by Escape

namespace {

/// A program in which time passes fast, and Escape is pressed at the n-th look.
class CancelledPaste : public Pasting
{
protected:
    CancelledPaste()
        : clock(TickSeam(), [this] { return now += 1000; })
        , watches(EscapeWatchSeam(), [this] { return std::make_unique<Watch>(*this); })
    {
    }

    class Watch final : public EscapeWatch
    {
    public:
        explicit Watch(CancelledPaste& watchedTest)
            : test(watchedTest)
        {
        }
        bool takeEscape() override
        {
            test.whenLooking();
            return ++test.looks == test.pressedAt;
        }

    private:
        CancelledPaste& test;
    };

    static QString Long(const char* piece) { return QString::fromLatin1(piece).repeated(4000); }

    int64_t now = 0;
    int looks = 0;
    int pressedAt = 0;
    std::function<void()> whenLooking = [] {};
    SeamGuard<int64_t()> clock;
    SeamGuard<std::unique_ptr<EscapeWatch>()> watches;
};

} // namespace

TEST_F(CancelledPaste, LeavesTextCaretAndMarksAtAnyMoment)
{
    const QString clipboards[]
        = {Long("text <b>bold</b> "), Long("<DIV>a line</DIV>"), Long("<p>a paragraph"), Long("    ") + u'x'};
    for (const QString& clipboard : clipboards) {
        for (const int offset : {0, 3, 6}) {
            for (const bool asHtml : {false, true}) {
                int cancelled = 0;
                for (bool isComplete = false; !isComplete; ++cancelled) {
                    show("<DIV id=FirstDiv>one</DIV>\r<DIV>second</DIV>");
                    caret(1, offset);
                    document.typeText(u"T"_s);
                    const std::string before = lines();
                    const Position place = caretPlace();
                    const std::size_t steps = document.undoSteps();
                    const QPoint pressed = press();
                    looks = 0;
                    pressedAt = cancelled + 1;
                    asHtml ? PasteHtml(document, clipboard, pressed, QChar(127))
                           : PasteText(document, clipboard, pressed, QChar(127));
                    isComplete = looks < pressedAt;
                    ASSERT_EQ(document.undoSteps(), steps + (isComplete ? 1 : 0));
                    ASSERT_EQ(UndoSteps, isComplete ? 1 : 0);
                    ASSERT_EQ(lines() == before, !isComplete) << cancelled;
                    if (!isComplete) {
                        ASSERT_EQ(caretPlace(), place) << cancelled;
                        ASSERT_TRUE(BookUnchanged);
                    }
                    ASSERT_TRUE(document.undo());
                    EXPECT_EQ(lines() == before, isComplete);
                }
                // While the text is read, and when it has been inserted.
                EXPECT_GE(cancelled, 3);
            }
        }
    }
}

TEST_F(CancelledPaste, ReplacesNoSelection)
{
    show("<DIV id=FirstDiv>one</DIV>\r<DIV>second</DIV>");
    select(0, 1, 1, 3);
    const std::string before = lines();
    const Selection selected = document.selection();
    for (pressedAt = 1; pressedAt <= 3; ++pressedAt) {
        looks = 0;
        PasteText(document, Long("text "), press(), QChar(127));
        ASSERT_EQ(looks, pressedAt);
        ASSERT_EQ(lines(), before);
        ASSERT_EQ(document.selection(), selected);
    }
}

TEST_F(CancelledPaste, APasteIsCancelledIfTheBookChangesMeanwhile)
{
    for (const bool asHtml : {false, true}) {
        show("<DIV id=FirstDiv>one</DIV>\r<DIV>second</DIV>");
        caret(1, 3);
        const QPoint pressed = press();
        looks = 0;
        whenLooking = [this] {
            if (looks == 1)
                document.loadPage("<HTML><BODY>\r\n<DIV>another</DIV></BODY></HTML>");
        };
        asHtml ? PasteHtml(document, Long("<DIV>a line</DIV>"), pressed, QChar(127))
               : PasteText(document, Long("text "), pressed, QChar(127));
        EXPECT_EQ(lines(), "<DIV>another</DIV>");
        EXPECT_FALSE(document.canUndo());
        EXPECT_EQ(UndoSteps, 0);
    }
}

TEST_F(CancelledPaste, WhatTheProgramInsertsItselfIsNotCancelled)
{
    show("<DIV>ab</DIV>");
    pressedAt = 1;
    document.insertLines(1, Long("<DIV>a line</DIV>"));
    EXPECT_EQ(document.lineCount(), 4001);
    EXPECT_EQ(looks, 0);
}
