// A document type costs no more than a small multiple of the text's size, whatever it declares.

#include "WorkRatio.h"
#include "XmlSaxReader.h"

#include <gtest/gtest.h>

#include <libxml/xmlerror.h>

#include <string>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

std::string Times(int count, const std::string& text)
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

/// A text for each number: `make(0) + make(1) + ...`.
template <class Make>
std::string Numbered(int count, Make make)
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += make(std::to_string(i));
    return result;
}

std::string WithDocType(const std::string& subset, const std::string& root = "<a/>")
{
    return "<!DOCTYPE a [" + subset + "]>\n" + root;
}

/// Sums the sizes of all attribute values.
class ValueBytes : public XmlSaxHandler
{
public:
    size_t bytes = 0;
    size_t elements = 0;
    void startElement(std::string_view, std::span<const XmlAttribute> attributes) override
    {
        ++elements;
        for (const XmlAttribute& attribute : attributes)
            bytes += attribute.value.size();
    }
};

XmlParseError Read(const std::string& text, XmlSaxHandler* handler = nullptr)
{
    return ReadXml(text, XmlEncoding::byDeclaration(), handler);
}

/// Reads a hostile text. It is refused, and takes at most as long as plain mark-up of the
/// same size, the bytes that entities and defaults may add included. (Reading ends at the error.)
XmlParseError RefusedCheaply(const std::string& text, int code = XmlDocTypeTooLarge)
{
    const std::string paragraph = "<p>text</p>\n";
    const auto size = text.size() + size_t(XmlMaxEntityExpansion);
    const std::string plain = "<a>" + Times(int(size / paragraph.size()), paragraph) + "</a>";
    EXPECT_EQ(Read(plain).errorCode, 0);
    XmlParseError error;
    const double ratio = WorkRatio([&] { error = Read(text); }, [&] { static_cast<void>(Read(plain)); });
    EXPECT_LT(ratio, 3) << text.substr(0, 100);
    EXPECT_EQ(error.errorCode, code) << error.reason.toStdString();
    EXPECT_GE(error.line, 1);
    EXPECT_LE(error.fileByte, qsizetype(text.size()));
    return error;
}

} // namespace

TEST(XmlDocTypeLimits, AnOrdinaryDocumentTypeIsRead)
{
    ValueBytes values;
    const std::string subset = "<!ENTITY nbsp '&#160;'><!ENTITY copy '(c)'><!-- remark -->"
                               "<!ATTLIST p lang CDATA 'ru'><!ATTLIST a kind (one|two) 'one'>";
    EXPECT_EQ(Read(WithDocType(subset, "<a>" + Times(20'000, "<p>&nbsp;&copy; text</p>") + "</a>"), &values)
                  .errorCode,
              0);
    EXPECT_EQ(values.bytes, 3U + 20'000 * 2U);
}

TEST(XmlDocTypeLimits, ALargeDefaultValueOnManyElementsIsRefused)
{
    const std::string text = WithDocType("<!ATTLIST p b CDATA '" + std::string(100'000, 'x') + "'>",
                                         "<a>\n" + Times(20'000, "<p/>") + "</a>");
    const XmlParseError error = RefusedCheaply(text);
    EXPECT_EQ(error.line, 3);
    EXPECT_EQ(text.substr(size_t(error.fileByte), 4), "<p/>");
    ValueBytes values;
    static_cast<void>(Read(text, &values));
    EXPECT_LT(values.bytes, 20 * text.size() + size_t(XmlMaxEntityExpansion));
}

TEST(XmlDocTypeLimits, ManyDefaultValuesOnManyElementsAreRefused)
{
    const auto attribute = [](const std::string& i) { return " b" + i + " CDATA 'x'"; };
    const std::string body = "<a>" + Times(5000, "<a/>") + "</a>";
    RefusedCheaply(WithDocType("<!ATTLIST a" + Numbered(900, attribute) + ">", body));
    RefusedCheaply(WithDocType("<!ATTLIST a" + Numbered(20'000, attribute) + ">", body));
}

TEST(XmlDocTypeLimits, ManyDefaultNamespacesOnManyElementsAreRefused)
{
    const auto space = [](const std::string& i) { return " xmlns:b" + i + " CDATA 'x'"; };
    RefusedCheaply(
        WithDocType("<!ATTLIST a" + Numbered(900, space) + ">", "<a>" + Times(5000, "<a/>") + "</a>"));
}

TEST(XmlDocTypeLimits, ManyDefaultValuesOnTheElementsOfAnEntityAreRefused)
{
    const auto attribute = [](const std::string& i) { return " b" + i + " CDATA 'x'"; };
    const std::string subset
        = "<!ATTLIST a" + Numbered(900, attribute) + "><!ENTITY e '" + Times(50'000, "<a/>") + "'>";
    RefusedCheaply(WithDocType(subset, "<a>&e;</a>"));
    RefusedCheaply(WithDocType(subset + "<!ENTITY f '&e;&e;'>", "<a>&f;&f;</a>"));
}

TEST(XmlDocTypeLimits, ADuplicateAlternativeIsNoError)
{
    EXPECT_EQ(Read(WithDocType("<!ATTLIST a b (x|x) 'x'>")).errorCode, 0);
    EXPECT_EQ(Read(WithDocType("<!NOTATION x SYSTEM 'x'><!ATTLIST a b NOTATION (x|x) #IMPLIED>")).errorCode,
              0);
    EXPECT_EQ(Read(WithDocType("<!ATTLIST a b ID 'x'><!ATTLIST a b ID 'x'>")).errorCode, 0);
    EXPECT_EQ(Read(WithDocType("<!ELEMENT a (b|b)*><!ELEMENT a (#PCDATA|b|b)*>")).errorCode, 0);
}

TEST(XmlDocTypeLimits, ADefaultValueIsReadInAnyTextOfAReasonableSize)
{
    // 100 bytes for each paragraph of 100 characters.
    const std::string paragraph = "<p>" + std::string(100, 'x') + "</p>";
    EXPECT_EQ(Read(WithDocType("<!ATTLIST p b CDATA '" + std::string(100, 'x') + "'>",
                               "<a>" + Times(100'000, paragraph) + "</a>"))
                  .errorCode,
              0);
}

TEST(XmlDocTypeLimits, ALongEnumerationIsRefused)
{
    const auto alternative = [](const std::string& i) { return "v" + i + "|"; };
    const std::string names = Numbered(120'000, alternative) + "z";
    RefusedCheaply(WithDocType("<!ATTLIST a b (" + names + ") 'z'>"));
    RefusedCheaply(WithDocType("<!ATTLIST a b NOTATION (" + names + ") 'z'>"));
    EXPECT_EQ(Read(WithDocType("<!ATTLIST a b (" + Numbered(300, alternative) + "z) 'z'>")).errorCode, 0);
}

TEST(XmlDocTypeLimits, AnEnumerationInAParameterEntityIsCounted)
{
    const auto alternative = [](const std::string& i) { return "v" + i + "&#124;"; };
    RefusedCheaply(
        WithDocType("<!ENTITY % p \"<!ATTLIST a b (" + Numbered(1900, alternative) + "z) 'z'>\">%p;"));
    const std::string entity = "<!ENTITY % p \"<!ATTLIST a b (" + Numbered(600, alternative) + "z) 'z'>\">";
    EXPECT_EQ(Read(WithDocType(entity + "%p;")).errorCode, 0);
    // The parser itself refuses the second use.
    RefusedCheaply(WithDocType(entity + Times(10'000, "%p; ")), XML_ERR_INTERNAL_ERROR);
}

TEST(XmlDocTypeLimits, TooManyDeclarationsAreRefusedAtThatPosition)
{
    const auto entity = [](const std::string& i) { return "<!ENTITY e" + i + " 'x'>\n"; };
    EXPECT_EQ(Read(WithDocType(Numbered(1000, entity))).errorCode, 0);
    const XmlParseError error = RefusedCheaply(WithDocType(Numbered(480'000, entity)));
    EXPECT_EQ(error.reason, u"The document type has too many declarations"_s);
    EXPECT_GT(error.line, XmlMaxDeclarations / 2);
    EXPECT_LT(error.line, XmlMaxDeclarations * 2);
}

TEST(XmlDocTypeLimits, ALargeDocumentTypeIsRefused)
{
    const std::string comment = "<!--" + std::string(1000, 'x') + "-->";
    EXPECT_EQ(Read(WithDocType(Times(200, comment))).errorCode, 0);
    RefusedCheaply(WithDocType(Times(300, comment)));
}
