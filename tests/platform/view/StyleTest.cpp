#include "DisplayDocument.h"
#include "PageStyle.h"
#include "StyleSheet.h"

#include <QFont>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr double PointsToPixels = 96.0 / 72;

TEST(StyleSheet, LengthsAreConvertedToPixels)
{
    EXPECT_DOUBLE_EQ(ParseLength(u"2px")->value, 2);
    EXPECT_DOUBLE_EQ(ParseLength(u"12pt")->value, 12 * PointsToPixels);
    EXPECT_DOUBLE_EQ(ParseLength(u" 7 ")->value, 7);
    EXPECT_TRUE(ParseLength(u"1.5em")->relative);
    EXPECT_FALSE(ParseLength(u"wide").has_value());
}

TEST(StyleSheet, ColoursAreReadInEveryForm)
{
    EXPECT_EQ(ParseColor(u"red"), QColor(255, 0, 0));
    EXPECT_EQ(ParseColor(u"#00f"), QColor(0, 0, 255));
    EXPECT_EQ(ParseColor(u"#FFFAFA"), QColor(0xff, 0xfa, 0xfa));
    EXPECT_EQ(ParseColor(u"800000"), QColor(128, 0, 0));
    EXPECT_EQ(ParseColor(u"rgb(1, 2, 3)"), QColor(1, 2, 3));
    EXPECT_FALSE(ParseColor(u"nothing").has_value());
}

TEST(StyleSheet, ReadsTheShorthandFontOfATable)
{
    const TagStyle style = ParseDeclarations(u"font: 9pt Ms Sans Serif; font-weight:bold;height=18");
    ASSERT_TRUE(style.fontSize);
    EXPECT_DOUBLE_EQ(style.fontSize->value, 9 * PointsToPixels);
    EXPECT_EQ(style.families, QStringList{u"Ms Sans Serif"_s});
    EXPECT_EQ(style.weight, QFont::Bold);
}

TEST(StyleSheet, UnknownTextIsIgnored)
{
    StyleSheet sheet;
    sheet.parse(u"@import x; } { span.t { color ; : red; font-size: ; color:blue");
    Tag tag;
    tag.name = u"SPAN"_s;
    tag.className = u"t"_s;
    EXPECT_EQ(sheet.styleOf(tag).color, std::nullopt) << "the rule is part of the unknown text";

    sheet.parse(
        u"@media x; span.t { color ; : red; font-size: ; mood: good; color:blue } b.t { color: red }");
    EXPECT_EQ(sheet.styleOf(tag).color, std::nullopt) << "the selector is unknown";
    sheet.parse(u"span.t { color ; : red; font-size: ; mood: good; color:blue }");
    EXPECT_EQ(sheet.styleOf(tag).color, QColor(Qt::blue));
    EXPECT_EQ(sheet.styleOf(tag).fontSize, std::nullopt);
}

class PageStyleTest : public testing::Test
{
protected:
    void load(const QByteArray& head, const QByteArray& lines)
    {
        document.loadPage("<HTML>" + head + lines + "</BODY></HTML>");
        style.load(document, 96);
    }
    [[nodiscard]] TextLook lookAt(int line, int offset)
    {
        TextLook look;
        style.forEachRun(document.line(line), [&](int from, int to, LookId id) {
            if (from <= offset && offset < to)
                look = style.look(id);
        });
        return look;
    }

    DisplayDocument document;
    PageStyle style;
};

TEST_F(PageStyleTest, ClassesOfTheHeadColourTagsNamesAndValues)
{
    load("<HEAD>\r\n<STYLE>\r\nspan.t\t{font-family:DejaVu "
         "Sans;\tfont-size:12pt;\tfont-weight:bold;\ttext-align:left;"
         "\tcolor:#800000;\tpage-break-after:avoid;}\r\nfont.n\t{color:red;\tpage-break-after:avoid;}\r\n"
         "font.v\t{color:#0000FF;}\r\nspan.c\t{color:green;}\r\n</STYLE>\r\n</HEAD>"
         "<BODY STYLE=\"font-family:DejaVu Serif; font-size:14pt; font-weight:normal; text-align:justify; "
         "margin-top:2px; margin-left:5px; margin-right:7px\" text=\"#010203\" bgColor=\"#F0F0F0\">\r\n",
         "<DIV id=FirstDiv>text</DIV>\r<DIV style=\"MARGIN-LEFT: 10px\">"
         "<SPAN class=t>&lt;a<FONT class=n> id=</FONT><FONT class=v>\"1\"</FONT>&gt;</SPAN></DIV>");
    EXPECT_EQ(style.background(), QColor(0xf0, 0xf0, 0xf0));
    EXPECT_DOUBLE_EQ(style.topMargin(), 2);
    const BlockLook first = style.block(document.line(0).block);
    EXPECT_DOUBLE_EQ(first.marginLeft, 5);
    EXPECT_DOUBLE_EQ(first.marginRight, 7);
    EXPECT_EQ(first.align, Qt::AlignJustify);
    EXPECT_DOUBLE_EQ(style.block(document.line(1).block).marginLeft, 15);

    const TextLook text = lookAt(0, 0);
    EXPECT_EQ(text.color, QColor(1, 2, 3));
    EXPECT_EQ(text.families, QStringList{u"DejaVu Serif"_s});
    EXPECT_NEAR(text.size, 14 * PointsToPixels, 1e-9);
    const TextLook tag = lookAt(1, 0);
    EXPECT_EQ(tag.color, QColor(128, 0, 0));
    EXPECT_EQ(tag.weight, QFont::Bold);
    EXPECT_EQ(tag.families, QStringList{u"DejaVu Sans"_s});
    // Names and values have the font of the tag and another colour.
    EXPECT_EQ(lookAt(1, 3).color, QColor(255, 0, 0));
    EXPECT_EQ(lookAt(1, 3).weight, QFont::Bold);
    EXPECT_EQ(lookAt(1, 7).color, QColor(0, 0, 255));
    EXPECT_EQ(lookAt(1, 9).color, QColor(128, 0, 0));
}

TEST_F(PageStyleTest, OlderPagesUseTagsAndAttributes)
{
    load(
        "<BODY STYLE=\"font-family: Tahoma; font-size:10pt; font-weight:bold; color:blue; margin-top:60px\">",
        "<H2 align=center><FONT STYLE=\"font-size:18pt; color:black\">A</FONT></H2>"
        "<DIV align=right><B>b</B><I>i</I><FONT color=#800000 size=5 face=\"Arial\">f</FONT></DIV>");
    EXPECT_DOUBLE_EQ(style.topMargin(), 60);
    const BlockLook heading = style.block(document.line(0).block);
    EXPECT_EQ(heading.align, Qt::AlignHCenter);
    EXPECT_GT(heading.marginTop, 0);
    EXPECT_EQ(lookAt(0, 0).color, QColor(0, 0, 0));
    EXPECT_DOUBLE_EQ(lookAt(0, 0).size, 18 * PointsToPixels);
    EXPECT_EQ(style.block(document.line(1).block).align, Qt::AlignRight);
    EXPECT_EQ(lookAt(1, 0).weight, QFont::Bold);
    EXPECT_TRUE(lookAt(1, 1).italic);
    EXPECT_EQ(lookAt(1, 2).color, QColor(128, 0, 0));
    EXPECT_DOUBLE_EQ(lookAt(1, 2).size, 24);
}

TEST_F(PageStyleTest, MarkedTextHasABackground)
{
    load("<BODY>", "<DIV>a<FONT style=\"BACKGROUND-COLOR: #ffff00\">b</FONT></DIV>");
    EXPECT_FALSE(lookAt(0, 0).background.isValid());
    EXPECT_EQ(lookAt(0, 1).background, QColor(255, 255, 0));
}

} // namespace
} // namespace vmk
