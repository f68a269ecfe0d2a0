#include "SchemaCatalogue.h"
#include "SchemaPage.h"
#include "Workplace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr char Imports[] = "<xs:schema>\r\n"
                           "<xs:import namespace=\"a\" schemaLocation=\"Genres.xsd\"/>\r\n"
                           "<xs:import schemaLocation=\"deeper/Links.xsd\" namespace=\"b\"></xs:import>\r\n"
                           "</xs:schema>";

TEST(SchemaCatalogue, ListsTheMainSchemaAndItsDirectImports)
{
    const Workplace place;
    place.Make(u"Main.xsd"_s, Imports);
    place.Make(u"Genres.xsd"_s, "<xs:schema><xs:import schemaLocation=\"Third.xsd\"/></xs:schema>");

    const std::vector<SchemaRow> rows = ListSchemas(place.Path(u"Main.xsd"_s));

    ASSERT_EQ(rows.size(), 3u);
    EXPECT_TRUE(rows[0].main);
    EXPECT_TRUE(rows[0].found);
    EXPECT_EQ(rows[0].created, QDate::currentDate());
    EXPECT_EQ(rows[1].path, place.Path(u"Genres.xsd"_s));
    EXPECT_FALSE(rows[1].main);
    EXPECT_TRUE(rows[1].found);
}

TEST(SchemaCatalogue, JoinsALocationWithASubFolderUnchanged)
{
    const Workplace place;
    place.Make(u"Main.xsd"_s, Imports);

    const std::vector<SchemaRow> rows = ListSchemas(place.Path(u"Main.xsd"_s));

    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[2].path, place.Folder() + u"/deeper/Links.xsd"_s);
    EXPECT_FALSE(rows[2].found);
    EXPECT_FALSE(rows[2].created.isValid());
}

TEST(SchemaCatalogue, ReturnsOneRowForASchemaWithoutImports)
{
    const Workplace place;
    place.Make(u"Main.xsd"_s, "<xs:schema/>");
    EXPECT_EQ(ListSchemas(place.Path(u"Main.xsd"_s)).size(), 1u);
}

TEST(SchemaCatalogue, ReturnsOneRowForAMissingSchema)
{
    const Workplace place;
    const std::vector<SchemaRow> rows = ListSchemas(place.Path(u"Main.xsd"_s));
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_FALSE(rows[0].found);
    EXPECT_FALSE(rows[0].created.isValid());
}

/// The lines of the page without the frame around them.
std::string LinesOf(std::string_view xml)
{
    const std::string page = SchemaPage(xml);
    const size_t begin = page.find(">\r\n", page.find("<BODY")) + 3;
    return page.substr(begin, page.rfind("</BODY></HTML>") - begin);
}

TEST(SchemaPage, ShowsOneElementALineIndentedByDepth)
{
    EXPECT_EQ(LinesOf("<a><b>text</b><c><d/></c></a>"),
              "<DIV style=\"MARGIN-LEFT: 0px\"><SPAN class=t>&lt;a&gt;</SPAN></DIV>\r\n"
              "<DIV style=\"MARGIN-LEFT: 16px\"><SPAN class=t>&lt;b&gt;</SPAN>text"
              "<SPAN class=t>&lt;/b&gt;</SPAN></DIV>\r\n"
              "<DIV style=\"MARGIN-LEFT: 16px\"><SPAN class=t>&lt;c&gt;</SPAN></DIV>\r\n"
              "<DIV style=\"MARGIN-LEFT: 32px\"><SPAN class=t>&lt;d/&gt;</SPAN></DIV>\r\n"
              "<DIV style=\"MARGIN-LEFT: 16px\"><SPAN class=t>&lt;/c&gt;</SPAN></DIV>\r\n"
              "<DIV style=\"MARGIN-LEFT: 0px\"><SPAN class=t>&lt;/a&gt;</SPAN></DIV>\r\n");
}

TEST(SchemaPage, PaintsAttributesAndKeepsEscapesAsWritten)
{
    EXPECT_EQ(LinesOf("<a b='x &lt; y'>1 &amp; 2</a>"),
              "<DIV style=\"MARGIN-LEFT: 0px\"><SPAN class=t>&lt;a<FONT class=n> b=</FONT>"
              "<FONT class=v>\"x &amp;lt; y\"</FONT>&gt;</SPAN>1 &amp;amp; 2"
              "<SPAN class=t>&lt;/a&gt;</SPAN></DIV>\r\n");
}

TEST(SchemaPage, ShowsCommentsLineByLine)
{
    EXPECT_EQ(LinesOf("<a><!-- one\r\n two --></a>"),
              "<DIV style=\"MARGIN-LEFT: 0px\"><SPAN class=t>&lt;a&gt;</SPAN></DIV>\r\n"
              "<DIV style=\"MARGIN-LEFT: 16px\"><SPAN class=c>&lt;!-- one</SPAN></DIV>\r\n"
              "<DIV style=\"MARGIN-LEFT: 16px\"><SPAN class=c> two --&gt;</SPAN></DIV>\r\n"
              "<DIV style=\"MARGIN-LEFT: 0px\"><SPAN class=t>&lt;/a&gt;</SPAN></DIV>\r\n");
}

TEST(SchemaPage, ShowsABrokenTextUnchanged)
{
    EXPECT_EQ(LinesOf("<a>\r\n<b></a>"), "<DIV>&lt;a&gt;</DIV>\r\n<DIV>&lt;b&gt;&lt;/a&gt;</DIV>\r\n");
}

TEST(SchemaPage, ReadsTheEncodingThatTheFileDeclares)
{
    const std::string lines = LinesOf("<?xml version=\"1.0\" encoding=\"windows-1251\"?><a>\xc0</a>");
    EXPECT_THAT(lines, testing::HasSubstr("\xd0\x90"));
}

} // namespace
} // namespace vmk
