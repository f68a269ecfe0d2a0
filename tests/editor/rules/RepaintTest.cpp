#include "Repaint.h"
#include "RulesFixture.h"
#include "TypingRules.h"

#include "EditReference.h"

#include <random>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

class Repainting : public Rules
{
protected:
    /// The result of the plain oracle for the given lines.
    static std::string expected(const std::string& html)
    {
        reference::PaintRequest request;
        request.tagHighlighting = TagHighlighting == 1;
        request.tagFontWeight = TagFontWeight.toStdString();
        request.displayFontWeight = DisplayFontWeight.toStdString();
        return reference::PaintLines(reference::StripPainting(html), request);
    }
    void repaint() { RePaintSelection(document, {}); }
};

} // namespace

TEST_F(Repainting, ATagTypedAsTextGetsItsColours)
{
    show("<DIV style=\"MARGIN-LEFT: 5px\">&lt;image l:href=\"#a\"/&gt;</DIV>");
    caret(0, 3);
    repaint();
    EXPECT_EQ(lines(),
              "<DIV style=\"MARGIN-LEFT: 5px\"><SPAN class=t>&lt;image l<FONT class=n>:href=</FONT>"
              "<FONT class=v>\"#a\"</FONT>/&gt;</SPAN></DIV>");
    EXPECT_EQ(UndoSteps, 2);
    EXPECT_TRUE(BookUnchanged);
}

TEST_F(Repainting, OneUndoCommandRestoresTheUnpaintedLineAndTheCaretStaysInIt)
{
    show("<DIV>one</DIV>\r<DIV>&lt;p&gt;two</DIV>\r<DIV>three</DIV>");
    const std::string before = lines();
    for (int line = 0; line < 3; ++line) {
        caret(line, 2);
        repaint();
        EXPECT_EQ(caretPlace().line, line);
        undo();
        EXPECT_EQ(lines(), before);
        EXPECT_EQ(caretPlace(), (Position{line, 2}));
        EXPECT_FALSE(document.canUndo());
    }
}

TEST_F(Repainting, OneUndoCommandRestoresNothingBeforeTheRepaint)
{
    show("<DIV>&lt;p&gt;two</DIV>");
    caret(0, 4);
    InsertNbsp(document, u'x');
    const std::string typed = lines();
    repaint();
    EXPECT_NE(lines(), typed);
    undo();
    EXPECT_EQ(lines(), typed);
}

/// Records the points at which positions are searched.
class PointRecorder final : public LayoutQuery
{
public:
    explicit PointRecorder(LayoutQuery& layout)
        : inner(layout)
    {
    }
    std::vector<QRect> clientRects(Position from, Position to) override
    {
        return inner.clientRects(from, to);
    }
    Position positionAt(QPoint point) override
    {
        points.push_back(point);
        return inner.positionAt(point);
    }
    int lineAt(QPoint point) override { return inner.lineAt(point); }
    QPoint scrollOffset() override { return inner.scrollOffset(); }
    void scrollTo(QPoint offset) override { inner.scrollTo(offset); }
    void scrollIntoView(Position place) override { inner.scrollIntoView(place); }

    std::vector<QPoint> points;

private:
    LayoutQuery& inner;
};

TEST_F(Repainting, AtACaretTheNewOneIsSearchedOnePixelToTheLeft)
{
    show("<DIV>one</DIV>\r<DIV>&lt;p&gt;two</DIV>");
    caret(1, 2);
    const QPoint stored(page::createRange(document).offsetLeft(), page::createRange(document).offsetTop());
    PointRecorder recorder(layout);
    document.setLayout(&recorder);
    repaint();
    document.setLayout(&layout);
    ASSERT_FALSE(recorder.points.empty());
    EXPECT_EQ(recorder.points.back(), stored - QPoint(1, 0));
    EXPECT_EQ(caretPlace(), (Position{1, 2}));
}

TEST_F(Repainting, DamagedTagsAreNotColoured)
{
    show("<DIV><SPAN class=t>p<FONT class=n> id=</FONT></SPAN>text<B>x</B></DIV>");
    caret(0, 0);
    repaint();
    EXPECT_EQ(lines(), "<DIV>p id=textx</DIV>");
}

TEST_F(Repainting, ACommentBecomesOnePieceUpToItsClosingBracket)
{
    show("<DIV>&lt;!-- note --&gt; behind</DIV>");
    caret(0, 1);
    repaint();
    EXPECT_EQ(lines(), "<DIV><SPAN class=c>&lt;!-- note --&gt;</SPAN> behind</DIV>");
}

TEST_F(Repainting, WithoutHighlightingTagsAreBoldOnlyAmongLighterText)
{
    show("<DIV>&lt;p&gt;text</DIV>");
    TagHighlighting = 0;
    caret(0, 0);
    repaint();
    EXPECT_EQ(lines(), "<DIV><B>&lt;p&gt;</B>text</DIV>");
    DisplayFontWeight = u"bold"_s;
    repaint();
    EXPECT_EQ(lines(), "<DIV>&lt;p&gt;text</DIV>");
}

TEST_F(Repainting, RepaintingAStringDoesNotChangeTheDocument)
{
    show("<DIV>&lt;p&gt;</DIV>");
    const std::string before = lines();
    EXPECT_EQ(RePaintHtml(u"&lt;p id=\"x\"&gt;"_s),
              u"<SPAN class=t>&lt;p<FONT  class=n> id=</FONT><FONT class=v>\"x\"</FONT>&gt;</SPAN>"_s);
    EXPECT_EQ(lines(), before);
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_FALSE(document.canUndo());
}

TEST_F(Repainting, ABracketAfterTwoDashesEndsAComment)
{
    EXPECT_EQ(RePaintHtml(u"&lt;!-- a --&lt;b"_s), u"<SPAN class=c>&lt;!-- a --&gt;</SPAN>b"_s);
}

TEST_F(Repainting, ATagAfterDashesInTheTextStaysATag)
{
    EXPECT_EQ(RePaintHtml(u"so--&lt;/p&gt;"_s), u"so--<SPAN class=t>&lt;/p&gt;</SPAN>"_s);
    EXPECT_EQ(RePaintHtml(u"&lt;!-- a --&gt;--&lt;p&gt;"_s),
              u"<SPAN class=c>&lt;!-- a --&gt;</SPAN>--<SPAN class=t>&lt;p&gt;</SPAN>"_s);
}

TEST_F(Repainting, AQuoteThatIsNotClosedReachesNoOtherLine)
{
    const std::string margin = "style=\"MARGIN-LEFT: 15px\"";
    show(("<DIV>&lt;p id=\"open&gt;</DIV>\r<DIV " + margin + ">next\"</DIV>").c_str());
    select(0, 0, 1, 5);
    repaint();
    EXPECT_EQ(lines(),
              "<DIV><SPAN class=t>&lt;p<FONT class=n> id=</FONT>\"open&gt;</SPAN></DIV>\n<DIV " + margin
                  + ">next\"</DIV>");
}

TEST_F(Repainting, BracketsAndQuotesInRealTagsAreKept)
{
    const std::string page = "<DIV title=\"&lt;a id=&quot;\">b <I title=\"&lt;!-- &gt;\">c</I> id=\"</DIV>";
    show(page.c_str());
    const std::string before = lines();
    caret(0, 1);
    repaint();
    EXPECT_EQ(text(0), "b c id=\"");
    const std::string after = lines();
    EXPECT_EQ(after.substr(0, after.find('>')), before.substr(0, before.find('>')));
    repaint();
    EXPECT_EQ(lines(), after);
}

TEST_F(Repainting, ASelectionEndsAsACaretAtTheLastPressOnTheScrolledPage)
{
    show("<DIV>&lt;a&gt;</DIV>\r<DIV>&lt;b&gt;</DIV>\r<DIV>c</DIV>");
    select(0, 0, 1, 2);
    RePaintSelection(document, {QPoint(20, 0), QPoint(0, 20)});
    EXPECT_EQ(layout.scrollOffset(), QPoint(0, 20));
    EXPECT_EQ(document.selection(), (Selection{{1, 2}, {1, 2}}));
}

TEST_F(Repainting, EverythingSelectedKeepsEveryLine)
{
    show("<DIV id=FirstDiv>&lt;a&gt;</DIV>\r<DIV>&lt;b&gt;</DIV>\r<DIV>c</DIV>");
    const std::string before = lines();
    select(0, 0, 2, 1);
    repaint();
    EXPECT_EQ(lines(),
              "<DIV id=FirstDiv><SPAN class=t>&lt;a&gt;</SPAN></DIV>\n"
              "<DIV><SPAN class=t>&lt;b&gt;</SPAN></DIV>\n<DIV>c</DIV>");
    undo();
    EXPECT_EQ(lines(), before);
    redo();
    EXPECT_EQ(document.lineCount(), 3);
}

TEST_F(Repainting, OutsideALineNothingHappens)
{
    show("");
    repaint();
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_FALSE(document.canUndo());
}

TEST_F(Repainting, AgreesWithTheOracleOnRandomTexts)
{
    std::mt19937 random(7);
    const char* const pieces[] = {"&lt;",
                                  "&gt;",
                                  "&lt;!--",
                                  "--&gt;",
                                  "--&lt;",
                                  "--",
                                  "-",
                                  "!",
                                  " id=\"",
                                  "\"",
                                  " href=\"x\"",
                                  ":href=\"#a\"",
                                  " xmlns=\"u\"",
                                  " xmlns:l=\"v\"",
                                  " type=",
                                  "word",
                                  "&amp;",
                                  "&amp;lt;",
                                  "/",
                                  "p",
                                  " ",
                                  "\x7f",
                                  "слово",
                                  "\x03",
                                  "\x04",
                                  " name=\"",
                                  "</DIV>\r\n<DIV style=\"MARGIN-LEFT: 5px\">",
                                  "<I>",
                                  "<I title=\"&lt;\">",
                                  "</I>"};
    for (int round = 0; round < 10'000; ++round) {
        TagHighlighting = int(random() % 3 != 0);
        DisplayFontWeight = random() % 2 == 0 ? u"normal"_s : u"bold"_s;
        std::string html = "<DIV>";
        for (int count = int(random() % 14); count >= 0; --count)
            html += pieces[random() % std::size(pieces)];
        html += "</DIV>";
        reference::PaintRequest request{TagHighlighting == 1, TagFontWeight.toStdString(),
                                        DisplayFontWeight.toStdString()};
        ASSERT_EQ(PaintLines(html, CurrentTagPaint()), reference::PaintLines(html, request)) << html;
    }
}

TEST_F(Repainting, OfLinesAgreesWithTheOracleThroughTheDocument)
{
    std::mt19937 random(8);
    const char* const pieces[] = {"<SPAN class=t>&lt;p&gt;</SPAN>",
                                  "&lt;b id=\"q\"&gt;",
                                  "text ",
                                  "<FONT class=v>\"</FONT>",
                                  "<B>bold</B>",
                                  "&lt;!-- c --&gt;",
                                  "<I>kept</I>",
                                  "&amp;amp;",
                                  "<FONT color=red>r</FONT>"};
    for (int round = 0; round < 2000; ++round) {
        const int count = 1 + int(random() % 4);
        std::string page;
        for (int line = 0; line < count; ++line) {
            page += line == 0 ? "<DIV id=FirstDiv>" : "<DIV style=\"MARGIN-LEFT: 5px\">";
            for (int i = int(random() % 6); i >= 0; --i)
                page += pieces[random() % std::size(pieces)];
            page += "</DIV>";
        }
        show(page.c_str());
        select(0, 0, count - 1, int(document.line(count - 1).text.size()));
        const std::string before = lines();
        repaint();
        const std::string after = lines();
        show(expected(before).c_str());
        ASSERT_EQ(after, lines()) << before;
    }
}
