// Properties of all HTML: written HTML reads back unchanged, and text is never lost.

#include "DisplayPage.h"
#include "HtmlCheck.h"
#include "HtmlReader.h"
#include "HtmlWriter.h"
#include "PageMaker.h"

#include <gtest/gtest.h>

#include <ostream>

namespace vmk {

namespace {

using reference::Dice;

/// What `randomHtml` combines.
constexpr const char* Pieces[] = {"<DIV>",
                                  "</DIV>",
                                  "<div id=FirstDiv style='margin-left: 5px'>",
                                  "<P>",
                                  "</p>",
                                  "<BR>",
                                  "<br/>",
                                  "<HR>",
                                  "<H2 align=center>",
                                  "</H2>",
                                  "<SPAN class=t>",
                                  "</SPAN>",
                                  "<FONT class=\"n\">",
                                  "</font>",
                                  "<B>",
                                  "</B>",
                                  "<I>",
                                  "</i>",
                                  "<A id=()*^^^%^*>",
                                  "</A>",
                                  "<IMG src=a.png>",
                                  "<UL>",
                                  "<LI>",
                                  "</UL>",
                                  "<TABLE><TR><TD>",
                                  "</TABLE>",
                                  "<PRE>",
                                  "</PRE>",
                                  "<!-- c -->",
                                  "<!--",
                                  "-->",
                                  "<SCRIPT>",
                                  "</SCRIPT>",
                                  "<HEAD>",
                                  "</HEAD>",
                                  "<BODY text=\"a>b\">",
                                  "</BODY>",
                                  "<a href=\"x",
                                  "<x y='",
                                  "\">",
                                  "'",
                                  "&",
                                  "&lt;",
                                  "&gt;",
                                  "&amp;",
                                  "&nbsp;",
                                  "&#10;",
                                  "&#x1F600;",
                                  "&bogus;",
                                  "<",
                                  ">",
                                  "</",
                                  "<!",
                                  "<?x",
                                  "\r\n",
                                  "  ",
                                  "\t",
                                  " ",
                                  "a",
                                  "\xd1\x8f",
                                  "\xf0\x9f\x98\x80",
                                  "\xc2\xa0",
                                  "\x7f",
                                  "\xff",
                                  "\xed\xa0\x80",
                                  "word",
                                  "=",
                                  "\"",
                                  "/"};

/// Random HTML: all kinds of tags in any order, stray characters, and text between them.
QByteArray randomHtml(Dice& dice)
{
    QByteArray html;
    for (int i = dice.roll(40); i >= 0; --i) {
        html += Pieces[dice.roll(int(std::size(Pieces)))];
        if (dice.roll(30) == 0)
            html += char(dice.roll(256));
    }
    return html;
}

} // namespace

TEST(HtmlProperty, WrittenHtmlReadsBackAsTheSameLines)
{
    constexpr int Rounds = 20000;
    Dice dice(7);
    for (int i = 0; i < Rounds; ++i) {
        const QByteArray html = randomHtml(dice);
        ASSERT_EQ(reference::fragmentFault(QString::fromUtf8(html)), std::string()) << html.toStdString();
        ASSERT_EQ(reference::pageFault(html), std::string()) << html.toStdString();
    }
}

TEST(HtmlProperty, ReplacingAnElementByItsOwnHtmlChangesNothing)
{
    constexpr int Rounds = 3000;
    Dice dice(23);
    for (int i = 0; i < Rounds; ++i) {
        const QByteArray html = randomHtml(dice);
        ASSERT_EQ(reference::elementFault(html, 100), std::string()) << html.toStdString();
    }
}

TEST(HtmlProperty, TextBetweenTagsIsKeptCompletely)
{
    constexpr int Rounds = 5000;
    constexpr const char* Tags[] = {"<DIV>",          "</DIV>",  "<P>",  "<BR>",  "<B>",     "</B>",
                                    "<SPAN class=t>", "</SPAN>", "<LI>", "</UL>", "<A id=x>"};
    Dice dice(11);
    for (int round = 0; round < Rounds; ++round) {
        QString html;
        QString expected;
        for (int i = dice.roll(30); i >= 0; --i) {
            if (dice.roll(2) == 0) {
                html += QString::fromLatin1(Tags[dice.roll(int(std::size(Tags)))]);
                continue;
            }
            const QString word = QString::number(dice.roll(1000)) + u'<' + QChar(0x42F) + u'&';
            expected += word;
            WriteText(html, word);
        }
        TagTable tags;
        QString text;
        for (const LinePtr& line : ReadFragment(tags, html).lines)
            text += line->text;
        ASSERT_EQ(text.toStdString(), expected.toStdString()) << html.toStdString();
    }
}

TEST(HtmlProperty, ABookPageIsSavedWithTheSameBytes)
{
    DisplayDocument document;
    document.loadPage(reference::makeBookPage(1 << 20));
    const QByteArray saved = document.savePage();
    DisplayDocument again;
    again.loadPage(saved);
    EXPECT_EQ(page::innerText(again), page::innerText(document));
    EXPECT_EQ(again.savePage(), saved);
}

TEST(HtmlProperty, DeepNestingCostsLinearTime)
{
    const auto linesIn = [](const QByteArray& html) {
        DisplayDocument document;
        document.loadPage(html);
        return document.lineCount();
    };
    constexpr int Many = 100000;
    EXPECT_GT(linesIn(QByteArray("<DIV>").repeated(Many)), 0);
    EXPECT_EQ(linesIn(QByteArray("<B>").repeated(Many) + "a"), 1);
    EXPECT_LE(linesIn(QByteArray("<DIV>").repeated(Many) + "a" + QByteArray("</P>").repeated(Many)), Many);
    EXPECT_EQ(linesIn(QByteArray("<SCRIPT>").repeated(Many) + "a"), 1);
    EXPECT_EQ(linesIn(QByteArray("<!--").repeated(Many)), 1);
    EXPECT_EQ(linesIn(QByteArray("<a b=\"").repeated(Many)), 1);
    EXPECT_EQ(linesIn(QByteArray("<P>a</P>").repeated(Many)), Many);
}

} // namespace vmk
