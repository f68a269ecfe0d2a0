#include "TagFunctions.h"

#include "ProcessorTime.h"

#include <gtest/gtest.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

constexpr size_t None = std::string_view::npos;
constexpr ExtractOptions Balanced{.balance = true};

} // namespace

TEST(ExtractBetween, ReturnsThePositionOfTheElement)
{
    const Extraction found = ExtractBetween("x<a>text</a>y", "<a>", "</a>");
    EXPECT_EQ(found.startPos, 1U);
    EXPECT_EQ(found.endPos, 12U);
    EXPECT_EQ(found.found, "<a>text</a>");
    EXPECT_EQ(found.plain, "") << "only on demand";
}

TEST(ExtractBetween, SearchesFromTheGivenPosition)
{
    const std::string text = "<a>1</a><a>2</a>";
    const Extraction first = ExtractBetween(text, "<a>", "</a>");
    const Extraction second = ExtractBetween(text, "<a>", "</a>", first.endPos);
    EXPECT_EQ(second.found, "<a>2</a>");
    EXPECT_EQ(ExtractBetween(text, "<a>", "</a>", second.endPos).startPos, None);
    EXPECT_EQ(ExtractBetween(text, "<a>", "</a>", 100).startPos, None) << "after the text";
}

TEST(ExtractBetween, WithoutBalanceTheFirstEndTagEnds)
{
    EXPECT_EQ(ExtractBetween("<section><section></section></section>", "<section>", "</section>").found,
              "<section><section></section>");
}

TEST(ExtractBetween, WithBalanceTheCompleteOuterElementIsFound)
{
    const std::string nested = "<section><section></section></section>";
    EXPECT_EQ(ExtractBetween(nested + "</section>", "<section>", "</section>", 0, Balanced).found, nested);
    const std::string attributes = "<section><section id=\"a\"><section></section></section></section>";
    EXPECT_EQ(ExtractBetween(attributes, "<section>", "</section>", 0, Balanced).found, attributes);
    EXPECT_EQ(ExtractBetween(attributes, "<section>", "</section>", 10, Balanced).found,
              "<section></section>");
}

TEST(ExtractBetween, MissingTagsReturnNothing)
{
    const Extraction noStart = ExtractBetween("text</a>", "<a>", "</a>");
    EXPECT_EQ(noStart.startPos, None);
    EXPECT_EQ(noStart.endPos, None);
    const Extraction noEnd = ExtractBetween("x<a>text", "<a>", "</a>");
    EXPECT_EQ(noEnd.startPos, 1U);
    EXPECT_EQ(noEnd.endPos, None);
    EXPECT_EQ(noEnd.found, "");
    EXPECT_EQ(ExtractBetween("<a><a></a>", "<a>", "</a>", 0, Balanced).found, "") << "never balanced";
    EXPECT_EQ(ExtractBetween("</a><a>", "<a>", "</a>").found, "") << "the end tag precedes";
}

TEST(ExtractBetween, IgnoresCaseWithTheFlag)
{
    EXPECT_EQ(ExtractBetween("<A>x</A>", "<a>", "</a>").startPos, None);
    EXPECT_EQ(
        ExtractBetween("<A><a b=\"1\"></A>x</a>", "<a>", "</a>", 0, {.ignoreCase = true, .balance = true})
            .found,
        "<A><a b=\"1\"></A>x</a>");
}

TEST(ExtractBetween, PlainTextHasBlanksForTags)
{
    const std::string text = "<a> one<b>two</b>\n<c/>&nbsp;three  </a>";
    EXPECT_EQ(ExtractBetween(text, "<a>", "</a>", 0, {.makePlain = true}).plain, "  one two \n  three   ");
    EXPECT_EQ(ExtractBetween(text, "<a>", "</a>", 0, {.makePlain = true, .tidy = true}).plain,
              "one two \n three");
    EXPECT_EQ(ExtractBetween("<a>1 < 2</a>", "<a>", "</a>", 0, {.makePlain = true}).plain, " 1  ")
        << "from any < to the next >";
}

TEST(ExtractBetween, PlainTextOmitsNonBreakingSpacesAndNoOtherBytes)
{
    const ExtractOptions plain{.makePlain = true, .tidy = true};
    EXPECT_EQ(ExtractBetween("<a>\xd0\xa0\xd1\x83\xd1\x81\xc2\xa0x</a>", "<a>", "</a>", 0, plain).plain,
              "\xd0\xa0\xd1\x83\xd1\x81 x")
        << "the letter whose tail is the byte 160 stays";
    EXPECT_EQ(ExtractBetween("<a>\xd0\xf3\xf1\xa0x</a>", "<a>", "</a>", 0, plain).plain, "\xd0\xf3\xf1 x");
}

TEST(ExtractBetween, DeeplyNestedElementsAreFoundInOnePass)
{
    std::string text;
    constexpr int Depth = 300'000;
    for (int i = 0; i < Depth; ++i)
        text += "<section>";
    for (int i = 0; i < Depth; ++i)
        text += "</section>";
    const ProcessorTime time;
    EXPECT_EQ(ExtractBetween(text, "<section>", "</section>", 0, Balanced).endPos, text.size());
    EXPECT_LT(time.seconds(), 2.0);
}

TEST(GetXmlAttribute, ReadsQuotedValues)
{
    EXPECT_EQ(GetXmlAttribute("<?xml version=\"1.0\" encoding=\"utf-8\"?>", "encoding", true), "utf-8");
    EXPECT_EQ(GetXmlAttribute("<?xml version=\"1.0\" encoding = \"utf-8\"?>", "encoding", true), "")
        << "blanks round the equals sign";
    EXPECT_EQ(GetXmlAttribute("<a id=\"x y\">", "id", true), "x y");
    EXPECT_EQ(GetXmlAttribute("<a id=\"\">", "id", true), "");
    EXPECT_EQ(GetXmlAttribute("<a id=\"x", "id", true), "") << "no closing quote";
    EXPECT_EQ(GetXmlAttribute("<a>", "id", true), "");
    EXPECT_EQ(GetXmlAttribute("", "id", true), "");
    EXPECT_EQ(GetXmlAttribute("<a id=\"x\">", "", true), "");
}

TEST(GetXmlAttribute, ReadsUnquotedValues)
{
    EXPECT_EQ(GetXmlAttribute("<IMG id=x align=left>", "id", true), "x");
    EXPECT_EQ(GetXmlAttribute("<IMG id=x align=left>", "align", true), "left");
    EXPECT_EQ(GetXmlAttribute("<IMG id=x", "id", true), "") << "neither a blank nor > follows";
    EXPECT_EQ(GetXmlAttribute("<IMG l:id=x>", "id", true), "") << "no blank before the name";
}

TEST(GetXmlAttribute, ReadsStyles)
{
    EXPECT_EQ(GetXmlAttribute("<DIV style=\"MARGIN-LEFT: 20px; COLOR: red\">", "margin-left", false), "20px");
    EXPECT_EQ(GetXmlAttribute("<DIV style=\"COLOR: red\">", "COLOR", true), "red");
    EXPECT_EQ(GetXmlAttribute("<DIV style='COLOR: red'>", "COLOR", true), "red");
    EXPECT_EQ(GetXmlAttribute("<DIV style=COLOR: red>", "COLOR", true), "red");
    EXPECT_EQ(GetXmlAttribute("<DIV style=\"A: red\" alt=\";\">", "A", true), "red alt=")
        << "a semicolon has priority at any position";
    EXPECT_EQ(GetXmlAttribute("COLOR: red", "COLOR", true), "");
}

TEST(GetXmlAttribute, ComparesNamesByTheCaseRule)
{
    EXPECT_EQ(GetXmlAttribute("<a ID=\"1\">", "id", true), "");
    EXPECT_EQ(GetXmlAttribute("<a ID=\"1\">", "id", false), "1");
}

TEST(GetXmlAttribute, FindsANameAtTheEndOfALongerOne)
{
    EXPECT_EQ(GetXmlAttribute("<image l:href=\"#cover.jpg\"/>", "href", true), "cover.jpg");
    EXPECT_EQ(GetXmlAttribute("<a hid=\"1\" id=\"2\">", "id", true), "1") << "only the first position counts";
}

TEST(GetXmlAttribute, HrefReturnsTheTextAfterTheLastHash)
{
    EXPECT_EQ(GetXmlAttribute("<image href=\"#cover.jpg\"/>", "href", true), "cover.jpg");
    EXPECT_EQ(GetXmlAttribute("<image l:href=\"a#b#c\"/>", "l:href", true), "c");
    EXPECT_EQ(GetXmlAttribute("<a href=\"http://site/\">", "href", true), "http://site/");
    EXPECT_EQ(GetXmlAttribute("<a id=\"#1\">", "id", true), "#1");
}

TEST(GetXmlAttribute, FileUrlsBecomePaths)
{
    EXPECT_EQ(GetXmlAttribute("<a href=\"File:///C:/My%20Books/a.fb2#x\">", "src", true), "");
    EXPECT_EQ(GetXmlAttribute("<img src=\"File:///C:/My%20Books/a%25.jpg\">", "src", true),
              "C:\\My Books\\a25.jpg");
    EXPECT_EQ(GetXmlAttribute("<img src=\"pics/a.jpg\">", "src", true), "pics/a.jpg");
}

TEST(GetXmlAttribute, SizesAreReturnedWithoutUnit)
{
    EXPECT_EQ(GetXmlAttribute("<img width=\"100px\">", "width", true), "100");
    EXPECT_EQ(GetXmlAttribute("<img style=\"HEIGHT: 20 PX;\">", "HEIGHT", true), "20");
    EXPECT_EQ(GetXmlAttribute("<td width=\"50%\">", "width", true), "50");
    EXPECT_EQ(GetXmlAttribute("<img size=\"20px\">", "size", true), "20px");
}

TEST(GetXmlAttribute, LineEndsAndBlanksCollapseFirst)
{
    EXPECT_EQ(GetXmlAttribute("<a\r\nid=x\r\nclass=y>", "id", true), "x");
    EXPECT_EQ(GetXmlAttribute("<a title=\"two   blanks\">", "title", true), "two blanks");
}

TEST(GetXmlAttribute, WorksOnDisplayText)
{
    EXPECT_EQ(GetXmlAttribute(u"<P title=\"Жук\">", u"TITLE", false), u"Жук");
}
