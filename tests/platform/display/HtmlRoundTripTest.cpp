// Unusual and hostile pages: the document is written in a form that reads back as the same document, and
// no text is lost.

#include "DisplayPage.h"
#include "HtmlCheck.h"
#include "HtmlElements.h"
#include "HtmlReader.h"
#include "HtmlWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// The text of a page, with `|` between its lines; checks that the page reads back unchanged.
std::string textOf(const QByteArray& html)
{
    EXPECT_EQ(reference::pageFault(html), std::string()) << html.toStdString();
    EXPECT_EQ(reference::fragmentFault(QString::fromUtf8(html)), std::string()) << html.toStdString();
    DisplayDocument document;
    document.loadPage(html);
    return page::innerText(document).replace(u"\r\n"_s, u"|"_s).toStdString();
}

/// The first line's tags and text as they are written.
std::string firstLineOf(const QByteArray& html)
{
    static_cast<void>(textOf(html));
    DisplayDocument document;
    document.loadPage(html);
    QString line;
    WriteLine(line, document.tags(), document.line(0));
    return line.toStdString();
}

} // namespace

TEST(HtmlRoundTrip, ASecondLineOfABlockOmitsOnlyTheIdentifierOfATagThatBeginsWithASlash)
{
    DisplayDocument document;
    document.loadPage("<DIV/ id=FirstDiv>a<BR>b</DIV>");
    ASSERT_EQ(document.lineCount(), 2);
    EXPECT_EQ(document.tags()[document.line(0).block].startTag(), u"<DIV / id=FirstDiv>");
    EXPECT_EQ(document.tags()[document.line(1).block].startTag(), u"<DIV>");
    EXPECT_EQ(textOf("<DIV/ id=FirstDiv>a<BR>b</DIV>"), "a|b");
}

TEST(HtmlRoundTrip, AnOpenElementAtTheEndOfThePageAddsNoLine)
{
    EXPECT_EQ(firstLineOf("<DIV>a<V x=y>"), "<DIV>a<V x=y></V></DIV>");
    EXPECT_EQ(textOf("<DIV>a<V x=y>"), "a");
    EXPECT_EQ(firstLineOf("a<V>"), "<DIV>a<V></V></DIV>");
    EXPECT_EQ(textOf("<V><DIV>"), "|");
}

TEST(HtmlRoundTrip, QuotesOfBothKindsInValues)
{
    EXPECT_EQ(firstLineOf("<DIV title='say \"a\"'>b</DIV>"), "<DIV title='say \"a\"'>b</DIV>");
    EXPECT_EQ(firstLineOf("<DIV title=\"it's\">b</DIV>"), "<DIV title=\"it's\">b</DIV>");
    EXPECT_EQ(firstLineOf("<DIV title=a\"b'c>d</DIV>"), "<DIV title=a\"b'c>d</DIV>");
    EXPECT_EQ(firstLineOf("<DIV \"a\" 'b'>c</DIV>"), "<DIV \"a\" 'b'>c</DIV>");
    EXPECT_EQ(firstLineOf("<DIV a=\"b\"c='d'e=f>g</DIV>"), "<DIV a=\"b\"c='d'e=f>g</DIV>");
    // A quote ends at the next one of the same kind.
    EXPECT_EQ(textOf("<DIV a=\"b'>c</DIV><DIV d='e\">f</DIV>"), "f");
}

TEST(HtmlRoundTrip, BracketsInValuesAndNamesAreWrittenAsReferences)
{
    EXPECT_EQ(firstLineOf("<DIV title=\"a<b>c\">d</DIV>"), "<DIV title=\"a&lt;b&gt;c\">d</DIV>");
    EXPECT_EQ(firstLineOf("<DIV title=a<b>c</DIV>"), "<DIV title=a&lt;b>c</DIV>");
    EXPECT_EQ(firstLineOf("<a<b>c"), "<DIV><A&LT;B>c</A&LT;B></DIV>");
    EXPECT_EQ(firstLineOf("<SPid=</eM>a"), "<DIV><SPID =&lt;/eM>a</SPID></DIV>");
    EXPECT_EQ(firstLineOf("<DIV title=\"</DIV>\">a</DIV>"), "<DIV title=\"&lt;/DIV&gt;\">a</DIV>");
}

TEST(HtmlRoundTrip, ReferencesInValuesStayAsWritten)
{
    EXPECT_EQ(firstLineOf("<DIV title=\"a&amp;b & &#34; &quot; &lt\">c</DIV>"),
              "<DIV title=\"a&amp;b & &#34; &quot; &lt\">c</DIV>");
    TagTable tags;
    const TagId tag = tags.intern(u"DIV", u"title=\"&#34;&lt;&amp;lt;\"");
    EXPECT_EQ(tags[tag].value(u"TITLE"), u"\"<&lt;");
}

TEST(HtmlRoundTrip, LineEndsWithinTagsAreBlanks)
{
    EXPECT_EQ(firstLineOf("<DIV\r\nid=a\rclass=b\n>c</DIV\r\n>"), "<DIV id=a class=b>c</DIV>");
    EXPECT_EQ(firstLineOf("<DIV title=\"a\r\nb\">c</DIV>"), "<DIV title=\"a  b\">c</DIV>");
    EXPECT_EQ(firstLineOf("<\nDIV>a"), "<DIV>&lt; DIV&gt;a</DIV>");
}

TEST(HtmlRoundTrip, ControlCharactersAreAllowedInNamesValuesAndText)
{
    for (int c = 0; c <= 0xA0; ++c) {
        const QByteArray sign = QString(QChar(c)).toUtf8();
        const bool isSpace = c == '\t' || c == '\n' || c == '\f' || c == '\r' || c == ' ';
        const std::string text = textOf("<DIV>a" + sign + "1</DIV>");
        EXPECT_EQ(text, isSpace ? "a 1" : "a" + sign.toStdString() + "1") << c;
        for (const QByteArray& html :
             {"<X" + sign + "Y>text</X" + sign + "Y>", "<" + sign + "X>text", "<X y" + sign + "=z>text</X>",
              "<X y=" + sign + "z>text</X>", "<X y=\"" + sign + "\">text</X>", "<X y='" + sign + "'>text</X>",
              "<X y" + sign + ">text</X>", "<DIV" + sign + ">text<BR>text</DIV>",
              "<DIV align=" + sign + "><P>text</P></DIV>", "<DIV" + sign + "id=a" + sign + ">text<BR>text"})
            EXPECT_THAT(textOf(html), testing::HasSubstr("text")) << c << html.toStdString();
    }
}

TEST(HtmlRoundTrip, ANulIsAnOrdinaryCharacter)
{
    const QByteArray html("<DIV t\0=\0>a\0b</DIV>", 19);
    EXPECT_EQ(textOf(html), std::string("a\0b", 3));
}

TEST(HtmlRoundTrip, SlashesInTags)
{
    EXPECT_EQ(firstLineOf("<DIV/>a"), "<DIV>a</DIV>");
    EXPECT_EQ(firstLineOf("<DIV / / >a"), "<DIV>a</DIV>");
    EXPECT_EQ(firstLineOf("<DIV class=\"a\"/>b"), "<DIV class=\"a\">b</DIV>");
    EXPECT_EQ(firstLineOf("<A href=http://a/>b</A>"), "<DIV><A href=http://a/>b</A></DIV>");
    EXPECT_EQ(firstLineOf("<DIV//>a"), "<DIV //>a</DIV>");
    EXPECT_EQ(firstLineOf("<DIV/id=a/>b"), "<DIV /id=a/>b</DIV>");
}

TEST(HtmlRoundTrip, MissingValues)
{
    EXPECT_EQ(firstLineOf("<DIV title=>a</DIV>"), "<DIV title=\"\">a</DIV>");
    EXPECT_EQ(firstLineOf("<DIV title= >a</DIV>"), "<DIV title=\"\">a</DIV>");
    EXPECT_EQ(firstLineOf("<DIV title= />a</DIV>"), "<DIV title=\"\">a</DIV>");
    EXPECT_EQ(firstLineOf("<DIV =>a</DIV>"), "<DIV =>a</DIV>");
    EXPECT_EQ(firstLineOf("<A href=b?c=>d</A>"), "<DIV><A href=b?c=>d</A></DIV>");
    // An attribute that is set after such an attribute does not become its value.
    TagTable tags;
    const TagId tag = tags.withAttribute(tags.intern(u"DIV", u"title="), u"style", u"a:b"_s);
    EXPECT_EQ(tags[tag].style, u"a:b");
    EXPECT_EQ(tags[tag].value(u"title"), u"");
}

TEST(HtmlRoundTrip, ADuplicateAttributeCountsOnceAndIsRemovedCompletely)
{
    TagTable tags;
    const TagId twice = tags.intern(u"DIV", u"id=a class=t ID='b'");
    EXPECT_EQ(tags[twice].id, u"a");
    EXPECT_EQ(tags[tags.withAttribute(twice, u"id", QString())].startTag(), u"<DIV class=t>");
    EXPECT_EQ(textOf("<DIV id=a id=b>c<BR>d<BR>e</DIV>"), "c|d|e");
    EXPECT_EQ(textOf("<DIV align=center align=left><P>a</P><P align=>b</P></DIV>"), "a|b");
}

TEST(HtmlRoundTrip, UnclosedTagsAreText)
{
    EXPECT_EQ(textOf("a<"), "a<");
    EXPECT_EQ(textOf("a</"), "a</");
    EXPECT_EQ(textOf("a<B"), "a<B");
    EXPECT_EQ(textOf("a<B c=\"d"), "a<B c=\"d");
    EXPECT_EQ(textOf("a</B"), "a</B");
    EXPECT_EQ(textOf("a<!"), "a<!");
    EXPECT_EQ(textOf("a<?b"), "a<?b");
    EXPECT_EQ(textOf("a<!-- b"), "a<!-- b");
    EXPECT_EQ(textOf("a<!-- b --"), "a<!-- b --");
    EXPECT_EQ(textOf("a</ b>"), "a</ b>");
    EXPECT_EQ(textOf("a<>b"), "a<>b");
    EXPECT_EQ(textOf("a<1>b"), "a<1>b");
}

TEST(HtmlRoundTrip, CommentsOfEveryForm)
{
    EXPECT_EQ(textOf("a<!--b-->c"), "ac");
    EXPECT_EQ(textOf("a<!---->b"), "ab");
    EXPECT_EQ(textOf("a<!-->b-->c"), "ac");
    EXPECT_EQ(textOf("a<!-- <DIV>b</DIV> -->c"), "ac");
    EXPECT_EQ(textOf("<B>a<!--</B>-->b</B>"), "ab");
    EXPECT_EQ(textOf("a--><!--b-->"), "a-->");
}

TEST(HtmlRoundTrip, IncompleteReferencesAreText)
{
    for (const char* text : {"&", "&;", "&#", "&#;", "&#x", "&#x;", "&lt", "&amp", "&nbsp", "&bogus;",
                             "&amp;amp", "&&lt;", "&#xg;", "&LT;", "&l t;"}) {
        DisplayDocument document;
        document.loadPage(QByteArray("<DIV>a") + text + "z</DIV>");
        const QString expected
            = QString::fromLatin1(text).replace(u"&amp;"_s, u"&"_s).replace(u"&lt;"_s, u"<"_s);
        EXPECT_EQ(page::innerText(document), u'a' + expected + u'z');
        static_cast<void>(textOf(QByteArray("<DIV>a") + text + "z</DIV>"));
    }
    EXPECT_EQ(textOf("<DIV>a&#0;&#xD800;&#x110000;&#99999999999;b</DIV>"),
              "a\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd"
              "b");
    EXPECT_EQ(textOf("<DIV>a&#13;&#10;&#9;&#32;b</DIV>"), "a b");
}

TEST(HtmlRoundTrip, InvalidUtf8IsText)
{
    for (const char* bytes : {"\x80", "\xff", "\xc2", "\xc0\x80", "\xe2\x82", "\xed\xa0\x80", "\xf0\x9f\x98",
                              "\xf4\x90\x80\x80", "\xf8\x88\x80\x80\x80"}) {
        for (const QByteArray& html :
             {QByteArray("<DIV>text") + bytes + "</DIV>", QByteArray("<X") + bytes + ">text</X" + bytes + ">",
              QByteArray("<DIV a=") + bytes + ">text</DIV>",
              QByteArray("<DIV a=\"") + bytes + "\">text</DIV>",
              QByteArray("<HTML><TITLE>") + bytes + "</TITLE><BODY>text"})
            EXPECT_THAT(textOf(html), testing::HasSubstr("text")) << html.toStdString();
    }
}

TEST(HtmlRoundTrip, LoneSurrogatesInAFragmentAreKept)
{
    constexpr char16_t High = 0xD83D;
    constexpr char16_t Low = 0xDE00;
    for (const char16_t lone : {High, Low}) {
        const QChar sign(lone);
        for (const QString& html :
             {u"<DIV>a"_s + sign + u"b</DIV>"_s, u"<X"_s + sign + u">a</X"_s + sign + u'>',
              u"<DIV t="_s + sign + u">a</DIV>"_s, u"<DIV t=\""_s + sign + u"\">a</DIV>"_s})
            EXPECT_EQ(reference::fragmentFault(html), std::string());
    }
    TagTable tags;
    EXPECT_EQ(ReadFragment(tags, u"<DIV>a"_s + QChar(High) + u"b</DIV>"_s).lines[0]->text,
              u'a' + QString(QChar(High)) + u'b');
}

TEST(HtmlRoundTrip, OverlappingElements)
{
    EXPECT_EQ(textOf("<DIV><B>a<I>b</B>c</I>d</DIV>"), "abcd");
    EXPECT_EQ(textOf("<B><DIV>a<I></B>b</DIV>c</I>"), "ab|c");
    EXPECT_EQ(textOf("<DIV><B>a<DIV>b</B>c</DIV>d</DIV>"), "a|bc|d");
    EXPECT_EQ(textOf("<B><I><P>a<P>b</I>c<P>d</B>e"), "a|bc|de");
    EXPECT_EQ(textOf("</B></DIV>a</P></B>"), "a");
    EXPECT_EQ(textOf("<B>a<BR>b<BR></B>c"), "a|b|c");
    EXPECT_EQ(textOf("<B><BR><HR><BR></B>"), "|||");
}

TEST(HtmlRoundTrip, DeepNesting)
{
    for (const int depth : {24, 25, 255, 256, 257, 3000}) {
        const QByteArray open = QByteArray("<B>").repeated(depth);
        const QByteArray close = QByteArray("</B>").repeated(depth);
        EXPECT_EQ(textOf("<DIV>" + open + "a" + close + "b</DIV>"), "ab") << depth;
        EXPECT_EQ(textOf(open + "<DIV>a</DIV><DIV>b</DIV>" + close + "c"), "a|b|c") << depth;
        EXPECT_EQ(
            textOf(QByteArray("<DIV>").repeated(depth) + "a" + QByteArray("</DIV>").repeated(depth) + "b"),
            "a|b")
            << depth;
        EXPECT_EQ(textOf(QByteArray("<UL><LI>").repeated(depth) + "a"), "a") << depth;
    }
}

TEST(HtmlRoundTrip, EditsHaveTheSameNestingLimitAsPages)
{
    DisplayDocument document;
    document.loadPage("<DIV>a</DIV>");
    const TagId bold = document.tags().intern(u"B", {});
    for (std::size_t i = 0; i < MaxInlineDepth + 10; ++i)
        document.wrapRange({0, 0}, {0, 1}, bold);
    EXPECT_EQ(document.line(0).marks.size(), 2 * MaxInlineDepth);
    EXPECT_EQ(reference::documentFault(document), std::string());
    while (document.undo()) { }
    EXPECT_TRUE(document.line(0).marks.empty());
}

TEST(HtmlRoundTrip, TextOfARuleIsWrittenAsABlock)
{
    DisplayDocument document;
    document.loadPage("<DIV>a</DIV><HR><DIV>b</DIV>");
    document.setSelection({1, 0}, {1, 0});
    document.typeText(u"x"_s);
    EXPECT_EQ(reference::documentFault(document), std::string());
    EXPECT_EQ(page::innerText(document), u"a\r\nx\r\nb");
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(document.tags()[document.line(1).block].name, u"HR");
}

TEST(HtmlRoundTrip, AnOpenQuoteInTheHeadIsClosedThere)
{
    const QByteArray html
        = "<HTML><META a=\"><BODY text=black><DIV align='b c'><P>text</P></DIV></BODY></HTML>";
    EXPECT_EQ(textOf(html), "text");
    DisplayDocument document;
    document.loadPage(html);
    EXPECT_EQ(document.head(), u"<HTML><META a=\"\">");
    EXPECT_EQ(document.tags()[document.bodyTag()].startTag(), u"<BODY text=black>");
}

TEST(HtmlRoundTrip, AnEndTagWithALongerNameClosesNothing)
{
    EXPECT_EQ(textOf("<STYLE><BODY><STYLEX>text"), "text");
    EXPECT_EQ(textOf("<SCRIPT>a</SCRIPTS>b</SCRIPT >c"), "c");
    EXPECT_EQ(textOf("<TITLE>a</TITLE\n>b"), "b");
    EXPECT_EQ(textOf("a<SCRIPT>b</SCRIPT"), "ab</SCRIPT");
}

TEST(HtmlRoundTrip, OnlyAsciiLettersInNamesAreCapitalised)
{
    EXPECT_EQ(textOf("<T\xc4\xb1TLE>text</T\xc4\xb1TLE>"), "text");
    EXPECT_EQ(firstLineOf("<xm\xc3\xbcl>a</xm\xc3\xbcl>"), "<DIV><XM\xc3\xbcL>a</XM\xc3\xbcL></DIV>");
}

TEST(HtmlRoundTrip, PreformattedTextKeepsItsBlanksAndLines)
{
    EXPECT_EQ(textOf("<PRE>  a\n\n b\t</PRE>"), "  a|| b\t");
    EXPECT_EQ(textOf("<PRE><B>a\nb</B></PRE>c  d"), "a|b|c d");
}

TEST(HtmlRoundTrip, ByteOrderMarksAloneAreAnEmptyPage)
{
    EXPECT_EQ(textOf("\xef\xbb\xbf"), "");
    EXPECT_EQ(textOf("\xff\xfe"), "");
    EXPECT_EQ(textOf("\xfe\xff"), "");
    EXPECT_EQ(textOf("\xef\xbb\xbf\xef\xbb\xbf<P>a"), "a");
}

} // namespace vmk
