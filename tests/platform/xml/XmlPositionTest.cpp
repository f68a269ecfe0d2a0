// Positions of errors in every encoding and with every line end: a "‸" in the text marks the position.

#include "FreeMemory.h"
#include "XmlDocument.h"
#include "XmlSaxReader.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
#include <iconv.h>
#include <string>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view Marker = "‸";

struct Form
{
    const char* name; // of the encoding for iconv
    std::string mark; // byte order mark
    const char* declared; // in the XML declaration; null for none
    XmlEncoding encoding;
};

const Form Forms[] = {
    {"UTF-8", "", nullptr, XmlEncoding::byDeclaration()},
    {"UTF-8", "\xEF\xBB\xBF", "utf-8", XmlEncoding::byDeclaration()},
    {"UTF-8", "", "windows-1251", XmlEncoding::utf8()},
    {"CP1251", "", "windows-1251", XmlEncoding::byDeclaration()},
    {"CP1251", "", "UTF-8", XmlEncoding::codePage(1251)},
    {"KOI8-R", "", "koi8-r", XmlEncoding::byDeclaration()},
    {"GB18030", "", "gb18030", XmlEncoding::byDeclaration()},
    {"UTF-16LE", "\xFF\xFE", "UTF-16", XmlEncoding::byDeclaration()},
    {"UTF-16LE", "", nullptr, XmlEncoding::byDeclaration()},
    {"UTF-16BE", "\xFE\xFF", "UTF-16", XmlEncoding::byDeclaration()},
};

std::string Convert(const std::string& utf8, const char* encoding)
{
    const iconv_t converter = iconv_open(encoding, "UTF-8");
    std::string result(utf8.size() * 4 + 16, '\0');
    std::string source = utf8;
    char* from = source.data();
    char* to = result.data();
    size_t left = source.size();
    size_t room = result.size();
    EXPECT_EQ(iconv(converter, &from, &left, &to, &room), 0U) << encoding;
    iconv_close(converter);
    result.resize(result.size() - room);
    return result;
}

std::string Replaced(std::string text, std::string_view what, std::string_view by)
{
    for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
        text.replace(at, what.size(), by);
    return text;
}

/// The position after `before`, counted independently in UTF-16.
XmlPosition PositionAfter(const std::string& before, const Form& form)
{
    const QString text = QString::fromStdString(before);
    const QString normal = QString(text).replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    XmlPosition place;
    place.fileByte = static_cast<qsizetype>(form.mark.size())
        + static_cast<qsizetype>(Convert(before, form.name).size());
    place.filepos = text.size() + (form.mark.empty() ? 0 : 1);
    place.line = 1 + static_cast<int>(normal.count(u'\n'));
    place.linepos = 1 + static_cast<int>(normal.mid(normal.lastIndexOf(u'\n') + 1).toUcs4().size());
    return place;
}

/// Expects an error at the marker of `marked`, in all forms and with all line ends.
void ExpectErrorAtMarker(std::string_view marked, const XmlSchemaCache* schemas = nullptr,
                         bool wideCharacters = false)
{
    for (const Form& form : Forms) {
        const std::string_view name = form.name;
        if (wideCharacters && (name == "CP1251" || name == "KOI8-R"))
            continue;
        for (const char* lineEnd : {"\n", "\r\n", "\r"}) {
            std::string text = form.declared == nullptr
                ? std::string()
                : "<?xml version=\"1.0\" encoding=\"" + std::string(form.declared) + "\"?>\n";
            text = Replaced(text + std::string(marked), "\n", lineEnd);
            const size_t marker = text.find(Marker);
            ASSERT_NE(marker, std::string::npos);
            const XmlPosition wanted = PositionAfter(text.substr(0, marker), form);
            text.erase(marker, Marker.size());

            const XmlParseError error
                = ReadXml(form.mark + Convert(text, form.name), form.encoding, nullptr, schemas);
            SCOPED_TRACE(std::string(marked) + " in " + form.name + ": " + error.reason.toStdString());
            ASSERT_NE(error.errorCode, 0);
            EXPECT_EQ(error.fileByte, wanted.fileByte);
            EXPECT_EQ(error.filepos, wanted.filepos);
            EXPECT_EQ(error.line, wanted.line);
            EXPECT_EQ(error.linepos, wanted.linepos);
        }
    }
}

class XmlSchemaPosition : public testing::Test
{
protected:
    void SetUp() override
    {
        const QString file = folder.filePath(u"s.xsd"_s);
        std::ofstream(file.toStdString()) << R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema"
    targetNamespace="urn:t" elementFormDefault="qualified">
  <xs:element name="book"><xs:complexType><xs:sequence>
    <xs:element name="kind" minOccurs="0"><xs:simpleType><xs:restriction base="xs:token">
      <xs:enumeration value="один"/><xs:enumeration value="два"/>
    </xs:restriction></xs:simpleType></xs:element>
    <xs:element name="part" minOccurs="0" maxOccurs="unbounded"><xs:complexType>
      <xs:sequence><xs:element name="line" type="xs:string" maxOccurs="unbounded"/></xs:sequence>
      <xs:attribute name="id" type="xs:ID"/><xs:attribute name="number" type="xs:integer"/>
    </xs:complexType></xs:element>
  </xs:sequence></xs:complexType></xs:element>
</xs:schema>)";
        ASSERT_TRUE(schemas.add(u"urn:t"_s, file)) << schemas.problem().toStdString();
    }

    void expectErrorAtMarker(const std::string& content)
    {
        ExpectErrorAtMarker("<book xmlns='urn:t'>\n<!-- ж -->\n" + content + "\n</book>", &schemas);
    }

    QTemporaryDir folder;
    XmlSchemaCache schemas;
};

} // namespace

TEST(XmlPosition, OfAWrongEndTagIsAfterItsSlash)
{
    ExpectErrorAtMarker("<a>я\n<b>ж</‸a>");
    ExpectErrorAtMarker("<a>я\n<b>ж</‸c></a>");
}

TEST(XmlPosition, OfABadReferenceIsWhereTheParserStopped)
{
    ExpectErrorAtMarker("<a>\nя &‸ ж</a>");
    ExpectErrorAtMarker("<a>\nя &foo;‸ ж</a>");
    ExpectErrorAtMarker("<a>\nя &foo‸ ж</a>");
    ExpectErrorAtMarker("<a>\nя &#0;‸ ж</a>");
    ExpectErrorAtMarker("<a b='\nя &foo;‸'/>");
}

TEST(XmlPosition, OfABadTagIsWhereTheParserStopped)
{
    ExpectErrorAtMarker("<a>\nж<‸1/></a>");
    ExpectErrorAtMarker("<a>\nж <‸ ж</a>");
    ExpectErrorAtMarker("<a>\nж<b c=‸1/></a>");
    ExpectErrorAtMarker("<a>\nж<b c='ж‸<'/></a>");
    ExpectErrorAtMarker("<a>\nж<b c='1' c='ж'‸/></a>");
    ExpectErrorAtMarker("<a>\nж<b‸");
}

TEST(XmlPosition, OfBadCharactersIsBeforeThem)
{
    ExpectErrorAtMarker("<a>ж\nж‸\x01</a>");
    ExpectErrorAtMarker("<a>ж\nж‸]]>ж</a>");
}

TEST(XmlPosition, OfAnUnclosedElementIsTheEndOfTheText)
{
    ExpectErrorAtMarker("<a>ж\n<b>ж\n‸");
}

TEST(XmlPosition, OfTextAfterTheRootIsItsStart)
{
    ExpectErrorAtMarker("<a>ж</a>\n‸ж");
    ExpectErrorAtMarker("<a>ж</a>\n‸<b/>");
}

TEST(XmlPosition, OfAnUndeclaredPrefixIsTheStartTag)
{
    ExpectErrorAtMarker("<a>ж\n‸<l:b c='ж'/>\n</a>");
    ExpectErrorAtMarker("<a>ж\n‸<b\n l:c='ж'/>\n</a>");
}

TEST(XmlPosition, CountsACharacterBeyondTheBasicPlaneAsOneColumnAndTwoUnits)
{
    ExpectErrorAtMarker("<a>𝄞𝄞 ж &‸ b</a>", nullptr, true);
}

TEST(XmlPosition, IsExactFarIntoALongText)
{
    std::string text = "<a>";
    for (int line = 0; line < 4'000; ++line)
        text += "<b c='ж'>Съешь ещё этих мягких булок</b>\n";
    ExpectErrorAtMarker(text + "ж</‸b></a>");
}

TEST(XmlPosition, IsExactInALongLineAndAfterLongText)
{
    std::string text = "<a>";
    for (int word = 0; word < 20'000; ++word)
        text += "слово ";
    ExpectErrorAtMarker(text + "&‸ ж</a>");
}

TEST(XmlPosition, OfMalformedUtf8IsItsFirstByte)
{
    for (const std::string_view bad :
         {"\xD0", "\xFF", "\xC1\x81", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x80"}) {
        for (const std::string_view front :
             {"<a>ж", "<a b='ж", "<a><!-- ж", "<a><?p ж", "<a><![CDATA[ж", "<a ж"}) {
            const std::string text = std::string(front) + std::string(bad);
            const XmlParseError error = ReadXml(text, XmlEncoding::utf8());
            EXPECT_EQ(error.errorCode, XmlBadCharacter) << text;
            EXPECT_EQ(error.fileByte, static_cast<qsizetype>(front.size())) << text;
        }
    }
}

TEST(XmlPosition, OfBytesThatTheDeclaredEncodingLacksIsTheirFirst)
{
    const XmlParseError cut
        = ReadXml("<?xml version='1.0' encoding='gb18030'?>\n<a>\xB0\xA1\x81", XmlEncoding::byDeclaration());
    EXPECT_EQ(cut.errorCode, XmlBadCharacter);
    EXPECT_EQ(cut.line, 2);
    EXPECT_EQ(cut.linepos, 5);
    EXPECT_EQ(cut.fileByte, 46);

    using namespace std::string_literals;
    const XmlParseError lone = ReadXml("\xFF\xFE<\0a\0>\0\x00\xD8<\0"s, XmlEncoding::byDeclaration());
    EXPECT_EQ(lone.errorCode, XmlBadCharacter);
    EXPECT_EQ(lone.fileByte, 8);
    EXPECT_EQ(lone.filepos, 4);
}

TEST(XmlPosition, OfANulIsItsPlaceWhereverItIs)
{
    using namespace std::string_literals;
    const auto expectNul = [](const std::string& text) {
        const XmlParseError error = ReadXml(text, XmlEncoding::utf8());
        EXPECT_NE(error.errorCode, 0) << text;
        EXPECT_EQ(error.fileByte, qsizetype(text.find('\0'))) << text;
    };
    expectNul("<a>x\0y</a>"s);
    expectNul("<a>x</a>\0"s);
    expectNul("<a>x</a>\r\n\0garbage"s);
    expectNul("<a><!-- \0 --></a>"s);
    EXPECT_EQ(ReadXml("<a>\n\0</a>"s, XmlEncoding::utf8()).line, 2);
}

TEST(XmlPosition, OfAnUnknownEncodingIsItsName)
{
    const XmlParseError error
        = ReadXml("<?xml version='1.0' encoding='ebcdic-xyz'?><a/>", XmlEncoding::byDeclaration());
    EXPECT_EQ(error.errorCode, XmlUnknownEncoding);
    EXPECT_EQ(error.linepos, 31);
    EXPECT_EQ(error.reason.toStdString(), "The declared encoding 'ebcdic-xyz' is not known");
}

TEST(XmlPosition, InATextOfCharactersCountsItsUnits)
{
    XmlDocument document;
    EXPECT_FALSE(document.loadXML(u"<?xml version=\"1.0\" encoding=\"windows-1251\"?>\r\n<a>ж𝄞</b>"));
    EXPECT_EQ(document.parseError().filepos, 47 + 3 + 3 + 2);
    EXPECT_EQ(document.parseError().line, 2);
    EXPECT_EQ(document.parseError().linepos, 8);
}

TEST_F(XmlSchemaPosition, OfAnUnexpectedElementIsItsStartTag)
{
    expectErrorAtMarker("‸<x/>");
    expectErrorAtMarker("<part><line>ж</line>\n‸<kind>один</kind></part>");
    expectErrorAtMarker("<part><line>ж‸<b\n c='ж'>ж</b></line></part>");
}

TEST_F(XmlSchemaPosition, OfAWrongAttributeIsTheStartTag)
{
    expectErrorAtMarker("‸<part number='ж'\n><line/></part>");
    expectErrorAtMarker("‸<part zz='1'><line/></part>");
    expectErrorAtMarker("‸<part id='1'><line/></part>");
}

TEST_F(XmlSchemaPosition, OfAMissingChildIsAfterTheSlashOfTheEndTag)
{
    expectErrorAtMarker("<part>\n <!-- ж --></‸part>");
}

TEST_F(XmlSchemaPosition, OfAMissingChildOfAnEmptyTagIsTheTag)
{
    expectErrorAtMarker("‸<part\n id='a'/>");
}

TEST_F(XmlSchemaPosition, OfAWrongValueIsAfterTheSlashOfTheEndTag)
{
    expectErrorAtMarker("<kind>три</‸kind>");
    expectErrorAtMarker("<kind>три</‸kind\n >");
}

TEST_F(XmlSchemaPosition, OfTextBetweenElementsIsItsFirstCharacter)
{
    expectErrorAtMarker("<part>\n ‸ж ж <line/></part>");
    expectErrorAtMarker("<part><line>ж</line>\n  ‸жж</part>");
    expectErrorAtMarker("<part><!-- ж --> ‸ж<line/></part>");
    expectErrorAtMarker("<part id='я'>‸<![CDATA[ж]]><line/></part>");
}

TEST_F(XmlSchemaPosition, OfAnIdentifierUsedTwiceIsTheSecondStartTag)
{
    expectErrorAtMarker("<part id='ж'><line/></part>\n‸<part id=' ж '><line/></part>");
}

TEST_F(XmlSchemaPosition, OfAnUnknownRootIsItsStartTag)
{
    ExpectErrorAtMarker("<!-- ж -->\n‸<other>ж</other>", &schemas);
    ExpectErrorAtMarker("<!-- ж -->\n‸<book/>", &schemas);
}

TEST_F(XmlSchemaPosition, OfAnErrorInsideAnEntityIsTheReference)
{
    ExpectErrorAtMarker("<!DOCTYPE book [<!ENTITY e '<x>ж</x>'>]>\n<book xmlns='urn:t'>\n‸&e;</book>",
                        &schemas);
}

TEST(XmlPositions, ThePositionOfAnErrorBeyondTheRangeOf32Bits)
{
    if (!MayUseMemory(8e9))
        GTEST_SKIP() << "needs VMK_LARGE_TESTS and 8 GB";
    std::string text = "<a>";
    const std::string line = std::string(998, 'x') + "\r\n";
    constexpr qsizetype Lines = 2'200'000;
    text.reserve(Lines * 1000 + 100);
    for (qsizetype i = 0; i < Lines; ++i)
        text += line;
    text += "yz</b>";
    XmlDocument document;
    EXPECT_FALSE(document.loadXML(text, XmlEncoding::utf8()));
    const XmlParseError& error = document.parseError();
    EXPECT_EQ(error.line, Lines + 1) << error.reason.toStdString();
    EXPECT_GT(error.filepos, 3 + Lines * 1000);
    EXPECT_LE(error.filepos, 3 + Lines * 1000 + 8);
    EXPECT_EQ(error.filepos, error.fileByte);
}
