#include "DisplayDocument.h"
#include "HtmlReader.h"
#include "HtmlWriter.h"

#include <gtest/gtest.h>

#include <ostream>

namespace vmk {

namespace {

/// The lines of a page as HTML, for comparisons.
std::string linesOf(const DisplayDocument& document)
{
    QString html;
    for (int i = 0; i < document.lineCount(); ++i) {
        if (i > 0)
            html += u'|';
        WriteLine(html, document.tags(), document.line(i));
    }
    return html.toStdString();
}

std::string loaded(const char* page)
{
    DisplayDocument document;
    document.loadPage(QByteArray(page));
    return linesOf(document);
}

/// A fragment of HTML as lines; text outside blocks is in square brackets.
std::string fragment(const QString& html)
{
    TagTable tags;
    const HtmlContent content = ReadFragment(tags, html);
    QString result;
    for (const LinePtr& line : content.lines) {
        if (line->block == NoTag)
            result += u'[';
        WriteLine(result, tags, *line);
        if (line->block == NoTag)
            result += u']';
    }
    return (content.openEnded ? result + u'+' : result).toStdString();
}

constexpr char BookPage[]
    = "<HTML><meta content=\"text/html; charset=utf-8\" http-equiv=\"Content-Type\"><HEAD>\r\n<STYLE>\r\n"
      "span.t\t{font-family:Verdana;\tcolor:blue;}\r\n</STYLE>\r\n</HEAD>"
      "<BODY STYLE=\"font-family:Verdana; font-size:14px\" text=\"black\" bgColor=\"white\">\r\n"
      "<DIV id=FirstDiv><SPAN class=t>&lt;?xml<FONT class=n> version=</FONT><FONT class=v>\"1.0\"</FONT>?&gt;"
      "</SPAN></DIV>\r"
      "<DIV><SPAN class=t>&lt;FictionBook&gt;</SPAN></DIV>\r"
      "<DIV style=\"MARGIN-LEFT: 5px\"><SPAN class=t>&lt;p&gt;</SPAN>\xd0\xaf &amp; \xe2\x80\xb9"
      "b\xc2\xa0\x7f<SPAN class=t>&lt;/p&gt;</SPAN></DIV></BODY></HTML>";

} // namespace

TEST(HtmlIn, ReadsABookPageLineByLine)
{
    DisplayDocument document;
    document.loadPage(BookPage);
    ASSERT_EQ(document.lineCount(), 3);
    EXPECT_EQ(document.tags()[document.line(0).block].id, QStringLiteral("FirstDiv"));
    EXPECT_EQ(document.line(0).text, QStringLiteral("<?xml version=\"1.0\"?>"));
    EXPECT_EQ(document.line(2).text,
              QString::fromUtf8("<p>\xd0\xaf & \xe2\x80\xb9"
                                "b\xc2\xa0\x7f</p>"));
    EXPECT_EQ(document.tags()[document.line(2).block].style, QStringLiteral("MARGIN-LEFT: 5px"));
    EXPECT_TRUE(document.head().endsWith(QStringLiteral("</HEAD>")));
    EXPECT_EQ(document.tags()[document.bodyTag()].value(u"bgcolor"), QStringLiteral("white"));
}

TEST(HtmlOut, SavesAPageAsABrowserDoes)
{
    DisplayDocument document;
    document.loadPage(BookPage);
    const QByteArray saved = document.savePage();
    EXPECT_TRUE(saved.startsWith("<HTML><meta content="));
    EXPECT_TRUE(saved.contains("</HEAD><BODY STYLE=\"font-family:Verdana; font-size:14px\" text=\"black\" "
                               "bgColor=\"white\">\r\n<DIV id=FirstDiv><SPAN class=t>&lt;?xml"));
    EXPECT_TRUE(saved.contains("</SPAN>\xd0\xaf &amp; \xe2\x80\xb9"
                               "b&nbsp;\x7f<SPAN class=t>&lt;/p&gt;</SPAN></DIV>\r\n"));
    EXPECT_TRUE(saved.endsWith("</DIV>\r\n</BODY></HTML>"));
}

TEST(HtmlOut, SavedPageLoadsAsTheSameDocument)
{
    DisplayDocument document;
    document.loadPage(BookPage);
    DisplayDocument again;
    again.loadPage(document.savePage());
    EXPECT_EQ(linesOf(again), linesOf(document));
    EXPECT_EQ(again.head(), document.head());
    EXPECT_EQ(again.savePage(), document.savePage());
}

TEST(HtmlOut, BlanksThatABrowserWouldDropAreProtectedInPages)
{
    DisplayDocument document;
    document.loadPage("<DIV>ab</DIV>");
    document.replaceText({0, 0}, {0, 2}, QStringLiteral(" a  b "));
    EXPECT_TRUE(document.savePage().contains("<DIV>&nbsp;a &nbsp;b&nbsp;</DIV>"));
}

TEST(HtmlIn, WhiteSpaceOfAPageCollapses)
{
    EXPECT_EQ(loaded("<DIV>  a \r\n\t b  </DIV>\r\n  <DIV>c</DIV>"), "<DIV>a b</DIV>|<DIV>c</DIV>");
    EXPECT_EQ(loaded("<DIV>a <B> b</B> </DIV>"), "<DIV>a <B>b</B></DIV>");
    EXPECT_EQ(loaded("<DIV> <B> a</B></DIV>"), "<DIV><B>a</B></DIV>");
}

TEST(HtmlIn, BlanksOfAFragmentAreKeptUnlessTheyContainALineEnd)
{
    EXPECT_EQ(fragment(QStringLiteral("a  b ")), "[a  b ]+");
    EXPECT_EQ(fragment(QStringLiteral(" ")), "[ ]+");
    EXPECT_EQ(fragment(QStringLiteral("a \r\n b\r\n")), "[a b]+");
    EXPECT_EQ(fragment(QStringLiteral("<DIV> a</DIV>\r\n<DIV>  </DIV>")), "<DIV> a</DIV><DIV>  </DIV>");
}

TEST(HtmlIn, EachBlockBeginsALine)
{
    EXPECT_EQ(
        loaded("a<P>b<P>c</P>d<BR>e<H2>f</H2><HR><UL><LI>g<LI>h</UL>"),
        "<DIV>a</DIV>|<P>b</P>|<P>c</P>|<DIV>d</DIV>|<DIV>e</DIV>|<H2>f</H2>|<HR>|<LI>g</LI>|<LI>h</LI>");
    EXPECT_EQ(loaded("<TABLE><TR><TD>a<TD>b<TR><TD>c</TABLE>"), "<TD>a</TD>|<TD>b</TD>|<TD>c</TD>");
}

TEST(HtmlIn, EmptyBlocksAreLinesButContainersAreNot)
{
    EXPECT_EQ(loaded("<DIV></DIV><DIV><DIV>a</DIV></DIV><DIV> </DIV>"),
              "<DIV></DIV>|<DIV>a</DIV>|<DIV></DIV>");
    EXPECT_EQ(loaded("<UL></UL><DIV>a</DIV>"), "<DIV>a</DIV>");
}

TEST(HtmlIn, NestedBlocksAreFlattenedAndKeepTheirAlignment)
{
    EXPECT_EQ(loaded("<DIV align=center><H2>Title</H2><FONT color=red>a</FONT><BR>b</DIV>"),
              "<H2 align=center>Title</H2>|<DIV align=center><FONT color=red>a</FONT></DIV>|"
              "<DIV align=center>b</DIV>");
}

TEST(HtmlIn, AnIdentifierStaysWithTheFirstLineOfItsBlock)
{
    EXPECT_EQ(loaded("<DIV id=FirstDiv>a<BR>b<DIV>c</DIV>d</DIV>"),
              "<DIV id=FirstDiv>a</DIV>|<DIV>b</DIV>|<DIV>c</DIV>|<DIV>d</DIV>");
}

TEST(HtmlIn, InlineElementsAreClosedInEachLine)
{
    EXPECT_EQ(loaded("<B><DIV>a</DIV><DIV>b</DIV></B>"), "<DIV><B>a</B></DIV>|<DIV><B>b</B></DIV>");
    EXPECT_EQ(loaded("<DIV><B>a</DIV><DIV>b</DIV>"), "<DIV><B>a</B></DIV>|<DIV>b</DIV>");
    EXPECT_EQ(loaded("<DIV><B>a<I>b</B>c</I></DIV>"), "<DIV><B>a<I>b</I></B><I>c</I></DIV>");
    EXPECT_EQ(loaded("<DIV><FONT class=ev>a</SPAN>b</DIV>"), "<DIV><FONT class=ev>ab</FONT></DIV>");
}

TEST(HtmlIn, EmptyInlineElementsAreKept)
{
    EXPECT_EQ(loaded("<DIV>a<A id=()*^^^%^*></A>b</DIV>"), "<DIV>a<A id=()*^^^%^*></A>b</DIV>");
    EXPECT_EQ(fragment(QStringLiteral("<SPAN class=et></SPAN>")), "[<SPAN class=et></SPAN>]+");
    EXPECT_EQ(loaded("<DIV>a<IMG src=x>b</DIV>"), "<DIV>a<IMG src=x>b</DIV>");
}

TEST(HtmlIn, InvisibleElementsAreDropped)
{
    EXPECT_EQ(loaded("<!DOCTYPE html><HTML><HEAD><TITLE>t</TITLE></HEAD><BODY>a<!-- b --><SCRIPT>c</SCRIPT>"
                     "<STYLE>d</STYLE>e</BODY></HTML>"),
              "<DIV>ae</DIV>");
}

TEST(HtmlIn, TextIsNeverLost)
{
    EXPECT_EQ(loaded("<DIV>a < b <= c <3 &lt d &bogus; &#0; <!-- e"),
              "<DIV>a &lt; b &lt;= c &lt;3 &amp;lt d &amp;bogus; \xef\xbf\xbd &lt;!-- e</DIV>");
    EXPECT_EQ(loaded("a<SCRIPT>b"), "<DIV>ab</DIV>");
    EXPECT_EQ(loaded("a</"), "<DIV>a&lt;/</DIV>");
    EXPECT_EQ(loaded("<DIV title=\"x>a</DIV>"), "<DIV title=\"x\">a</DIV>");
    EXPECT_EQ(loaded("\xff\xc3(\xe2\x82"), "<DIV>\xef\xbf\xbd\xef\xbf\xbd(\xef\xbf\xbd\xef\xbf\xbd</DIV>");
    EXPECT_EQ(loaded("text<BODY>more"), "<DIV>textmore</DIV>");
}

TEST(HtmlIn, CharacterReferencesByNameAndNumber)
{
    EXPECT_EQ(loaded("<DIV>&lt;&GT;&amp;&nbsp;&#1055;&#x41F;&mdash;&#128512;</DIV>"),
              "<DIV>&lt;&amp;GT;&amp;&nbsp;\xd0\x9f\xd0\x9f\xe2\x80\x94\xf0\x9f\x98\x80</DIV>");
}

TEST(HtmlIn, ReadsUtf16WithAByteOrderMark)
{
    EXPECT_EQ(loaded("\xef\xbb\xbf<P>a"), "<P>a</P>");
    DisplayDocument document;
    document.loadPage(QByteArray("\xff\xfe<\0P\0>\0\x2f\x04", 10));
    EXPECT_EQ(linesOf(document), "<P>\xd0\xaf</P>");
}

TEST(HtmlIn, AnEmptyPageIsOneLineWithoutABlock)
{
    DisplayDocument document;
    document.loadPage("<HTML><BODY></BODY></HTML>");
    ASSERT_EQ(document.lineCount(), 1);
    EXPECT_EQ(document.line(0).block, NoTag);
    EXPECT_EQ(document.savePage(), "<HTML><BODY>\r\n</BODY></HTML>");
}

} // namespace vmk
