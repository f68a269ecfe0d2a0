// The parser of a masked stream finds the same as that of the stream itself.

#include "TextMask.h"
#include "QtPrinting.h"
#include "XmlSaxReader.h"
#include "XmlSchemaCache.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
#include <random>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

/// Masks a text in pieces of a length; an empty text if it is not usable.
std::string Masked(std::string text, size_t piece)
{
    TextMask mask;
    for (size_t at = 0; at < text.size(); at += piece)
        mask.apply(text.data() + at, std::min(piece, text.size() - at));
    return mask.usable() ? text : std::string();
}

std::string Masks(size_t count)
{
    std::string masks(count, TextMask::Mask);
    return masks;
}

/// A listener switches the mask off.
class Listener : public XmlSaxHandler
{
};

class TextMaskTest : public testing::Test
{
protected:
    /// A schema with types of text for which each character counts.
    void SetUp() override
    {
        std::ofstream((folder.path() + u"/s.xsd"_s).toStdString()) << R"(
<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" targetNamespace="s" xmlns="s" elementFormDefault="qualified">
  <xs:element name="a"><xs:complexType mixed="true"><xs:choice minOccurs="0" maxOccurs="unbounded">
    <xs:element ref="a"/>
    <xs:element name="three"><xs:simpleType><xs:restriction base="xs:string"><xs:length value="3"/></xs:restriction></xs:simpleType></xs:element>
    <xs:element name="word"><xs:simpleType><xs:restriction base="xs:token"><xs:enumeration value="слово"/><xs:enumeration value="word"/></xs:restriction></xs:simpleType></xs:element>
    <xs:element name="letters"><xs:simpleType><xs:restriction base="xs:string"><xs:pattern value="[а-я]*"/></xs:restriction></xs:simpleType></xs:element>
    <xs:element name="none"><xs:complexType/></xs:element>
    <xs:element name="only"><xs:complexType><xs:sequence><xs:element ref="a"/></xs:sequence></xs:complexType></xs:element>
  </xs:choice><xs:attribute name="t" type="xs:string"/></xs:complexType></xs:element>
</xs:schema>)";
        ASSERT_TRUE(schemas.add(u"s"_s, folder.path() + u"/s.xsd"_s)) << schemas.problem().toStdString();
    }

    void expectSame(const std::string& text, XmlEncoding encoding = XmlEncoding::byDeclaration())
    {
        Listener listener;
        const XmlParseError plain = ReadXml(text, encoding, &listener, &schemas);
        const XmlParseError masked = ReadXml(text, encoding, nullptr, &schemas);
        ASSERT_EQ(masked.errorCode, plain.errorCode) << text;
        ASSERT_EQ(masked.reason, plain.reason) << text;
        ASSERT_EQ(masked.fileByte, plain.fileByte) << text;
        ASSERT_EQ(masked.line, plain.line) << text;
        ++(plain ? invalid : valid);
    }

    QTemporaryDir folder;
    XmlSchemaCache schemas;
    int valid = 0;
    int invalid = 0;
};

} // namespace

TEST_F(TextMaskTest, MasksTextAndNothingElse)
{
    for (const size_t piece : {1U, 2U, 3U, 7U, 1000U}) {
        EXPECT_EQ(Masked("<a>я</a>", piece), "<a>" + Masks(2) + "</a>");
        EXPECT_EQ(Masked("<ж т='я>я' u=\"'я>\">x я</ж>", piece),
                  "<ж т='я>я' u=\"'я>\">x " + Masks(2) + "</ж>");
        EXPECT_EQ(Masked("<?xml я > ?>я<!-- я > -- я --->я<![CDATA[ я > ]] я ]]]>я", piece),
                  "<?xml я > ?>" + Masks(2) + "<!-- я > -- я --->" + Masks(2) + "<![CDATA[ я > ]] я ]]]>"
                      + Masks(2));
    }
}

TEST_F(TextMaskTest, GivesUpWhatItCannotFollow)
{
    EXPECT_EQ(Masked("<!DOCTYPE a []><a>я</a>", 1000), "");
    EXPECT_EQ(Masked("<a>\x7f</a>", 1000), "");
    EXPECT_EQ(Masked("<a>\xEF\xBF\xBF</a>", 1000), "");
    EXPECT_EQ(Masked("<![cdata[", 1000), "");
}

TEST_F(TextMaskTest, TheOriginalIsKnownByItsPosition)
{
    TextMask mask;
    std::string text = "<a>слово</a>";
    mask.apply(text.data(), 5);
    mask.apply(text.data() + 5, text.size() - 5);
    EXPECT_EQ(mask.original(3, 10), "слово");
    std::string more(300'000, 'x');
    mask.apply(more.data(), more.size());
    mask.forget(200'000);
    EXPECT_EQ(mask.original(3, 10), "");
    EXPECT_EQ(mask.original(250'000, 3), "xxx");
}

TEST_F(TextMaskTest, TypesOfTextSeeTheOriginal)
{
    const std::string start = "<a xmlns='s'>";
    for (const char* content : {"<three>трж</three>",
                                "<three>тржи</three>",
                                "<three>т\rж</three>",
                                "<three>т&#1078;x</three>",
                                "<three>т&amp;ж</three>",
                                "<word>слово</word>",
                                "<word>слова</word>",
                                "<word> слово\r\n</word>",
                                "<letters>буквы</letters>",
                                "<letters>Буквы</letters>",
                                "<none>я</none>",
                                "<none> </none>",
                                "<only>я<a/></only>",
                                "<only><a/></only>",
                                "я\rя",
                                "<a t='я > я'>я</a>",
                                "я ]]> я",
                                "я<!-- я -->я",
                                "<word><![CDATA[слово]]></word>",
                                "<three>\x7fжж</three>",
                                "<three>я\xEF\xBC\xA1я</three>",
                                "я\xEF\xBF\xBEя",
                                "<a>я</b>",
                                "я&nbsp;я",
                                "<?п я?>я"})
        expectSame(start + content + "</a>");
    EXPECT_GE(valid, 10);
    EXPECT_GE(invalid, 10);
    // Text of more than one buffer of the parser.
    std::string longText;
    for (int i = 0; i < 30'000; ++i)
        longText += i % 100 == 0 ? "\r\n" : "ж";
    expectSame(start + "<letters>" + longText + "</letters>" + longText + "<word>слово</word></a>");
}

TEST_F(TextMaskTest, RandomTextsHaveTheSameResult)
{
    const std::vector<std::string> parts
        = {"<a>",   "</a>", "<a t='", "'>",           "\"",      ">",        "<",         "я",
           "слово", "word", "<word>", "</word>",      "<three>", "</three>", "<letters>", "</letters>",
           "\r",    "\n",   " ",      "&lt;",         "&#1078;", "<!--",     "-->",       "<![CDATA[",
           "]]>",   "<?p ", "?>",     "\xEF\xBC\xA1", "\x7f",    "<only>",   "</only>",   "<!DOCTYPE a>"};
    std::mt19937 chance(5); // NOLINT: the same texts in each run
    for (int i = 0; i < 6000; ++i) {
        std::string text = "<a xmlns='s'>";
        std::vector<std::string> open;
        for (auto count = chance() % 12; count > 0; --count) {
            // Half of the texts are well-formed for the most part.
            const bool opens = open.empty() || chance() % 2 == 0;
            static const std::vector<std::string> names = {"a", "word", "three", "letters", "only"};
            if (i % 2 == 0) {
                text += parts[chance() % parts.size()];
            } else if (chance() % 3 == 0) {
                text += std::vector<std::string>{"я", "слово", "трж", "\r", "&lt;", "<!--ж-->"}[chance() % 6];
            } else if (opens) {
                open.push_back(names[chance() % names.size()]);
                text += "<" + open.back() + ">";
            } else {
                text += "</" + open.back() + ">";
                open.pop_back();
            }
        }
        for (; !open.empty(); open.pop_back())
            text += "</" + open.back() + ">";
        expectSame(text + "</a>");
    }
    EXPECT_GT(valid, 300);
    EXPECT_GT(invalid, 1000);
}
