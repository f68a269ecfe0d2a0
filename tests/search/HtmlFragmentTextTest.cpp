#include "HtmlFragmentText.h"
#include "TextFunctions.h"

#include <gtest/gtest.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

TEST(HtmlFragmentText, TagsAreRemovedAndShownTagsAreKept)
{
    const QString html = u"<DIV><SPAN class=t>&lt;p&gt;</SPAN>a<FONT class=v>b</FONT></DIV>"_s;
    EXPECT_EQ(HtmlFragmentToText(html, true), u"<p>ab"_s);
    EXPECT_EQ(HtmlFragmentToText(html, false), u"&lt;p&gt;ab"_s);
}

TEST(HtmlFragmentText, TheHeadEndsAtTheFirstMarkerFound)
{
    EXPECT_EQ(HtmlFragmentToText(u"x<BASEFONT a>\r\ny<BODY>z"_s, true), u"yz"_s);
    EXPECT_EQ(HtmlFragmentToText(u"head<BODY STYLE=\"a\">text"_s, true), u"text"_s);
    EXPECT_EQ(HtmlFragmentToText(u"head</HEAD>text"_s, true), u"text"_s);
    // In capitals only.
    EXPECT_EQ(HtmlFragmentToText(u"head<body>text"_s, true), u"headtext"_s);
}

TEST(HtmlFragmentText, AMarkerWithoutAnEndIsIgnored)
{
    EXPECT_EQ(HtmlFragmentToText(u"a<BODY b"_s, true), u"a<BODY b"_s);
}

TEST(HtmlFragmentText, LineEndsBecomeSingleCarriageReturns)
{
    EXPECT_EQ(HtmlFragmentToText(u"<DIV>a</DIV>\r\n<DIV>b</DIV>"_s, true), u"a\rb"_s);
    EXPECT_EQ(HtmlFragmentToText(u"a \r\nb"_s, true), u"a b"_s);
    EXPECT_EQ(HtmlFragmentToText(u"a  \r\nb"_s, true), u"a  b"_s);
}

TEST(HtmlFragmentText, OnlyBracketsAndNonBreakingSpacesAreDecoded)
{
    EXPECT_EQ(HtmlFragmentToText(u"a&nbsp;b&amp;lt;&quot;"_s, true), u"a\u00a0b&amp;lt;&quot;"_s);
}

TEST(HtmlFragmentText, TagsAreRemovedAsByTheExpression)
{
    for (const QString& html : {u"a<b>c<d"_s, u"<<a>>b"_s, u"a>b<"_s, u"<>a<\r\n>b"_s, u""_s})
        EXPECT_EQ(HtmlFragmentToText(html, false), RegExpReplace(html, u"<[^>]*>", u"", false));
}

} // namespace
} // namespace vmk
