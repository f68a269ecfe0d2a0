// Hostile and broken input must produce a clear error in bounded time and memory.

#include "ProcessorTime.h"
#include "XmlDocument.h"
#include "XmlSaxReader.h"

#include <gtest/gtest.h>

#include <libxml/xmlerror.h>

#include <QTemporaryDir>

#include <fstream>
#include <string>
#include <thread>
#include <utility>

using namespace vmk;
using namespace std::string_literals;
using namespace Qt::StringLiterals;

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr double MostSeconds = 10.0;
#else
constexpr double MostSeconds = 1.0;
#endif

std::string Repeated(std::string_view text, size_t count)
{
    std::string result;
    result.reserve(text.size() * count);
    for (size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

/// Ten entities, each ten times the one before: three bytes become 3 GB.
std::string Laughs(const std::string& root)
{
    std::string text = "<!DOCTYPE a [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 10; ++i)
        text += "<!ENTITY e" + std::to_string(i) + " '" + Repeated("&e" + std::to_string(i - 1) + ";", 10)
            + "'>";
    return text + "]>" + root;
}

/// Counts the characters in the text events.
class Counter : public XmlSaxHandler
{
public:
    size_t characterCount = 0;
    std::string values;
    void characters(std::string_view text) override { characterCount += text.size(); }
    void cdata(std::string_view text) override { characterCount += text.size(); }
    void startElement(std::string_view, std::span<const XmlAttribute> attributes) override
    {
        for (const XmlAttribute& attribute : attributes)
            values += attribute.value;
    }
};

int ErrorCode(std::string_view text, XmlSaxHandler* handler = nullptr)
{
    const ProcessorTime time;
    const XmlParseError error = ReadXml(text, XmlEncoding::byDeclaration(), handler);
    EXPECT_LT(time.seconds(), MostSeconds) << text.substr(0, 200);
    EXPECT_EQ(error.reason.isEmpty(), error.errorCode == 0);
    EXPECT_FALSE(error.reason.contains(u'\n'));
    EXPECT_LE(error.filepos, static_cast<decltype(error.filepos)>(text.size()));
    return error.errorCode;
}

} // namespace

TEST(XmlSafety, EmptyAndMalformedTextIsAnError)
{
    for (const std::string& text : {""s, " "s, "\n\n"s, "abc"s, "\xEF\xBB\xBF"s, "\xFF\xFE"s, "PK\x03\x04"s})
        EXPECT_EQ(ErrorCode(text), XML_ERR_DOCUMENT_EMPTY) << text;
    for (const std::string& text : {"\0"s, "\xFF"s, "\x89PNG\r\n\x1a\n\0\0\0\rIHDR"s})
        EXPECT_EQ(ErrorCode(text), XmlBadCharacter) << text;
    for (const std::string& text : {"<"s, "<\0"s, "\0<"s, "<!"s, "<![CDATA["s})
        EXPECT_EQ(ErrorCode(text), XML_ERR_NAME_REQUIRED) << text;
    EXPECT_EQ(ErrorCode("<?xml"), XML_ERR_RESERVED_XML_NAME);
    EXPECT_EQ(ErrorCode("<?xml encoding='utf-16'?><a/>"), XmlUnknownEncoding);
    EXPECT_EQ(ErrorCode("<!--"), XML_ERR_COMMENT_NOT_FINISHED);
    std::string noise;
    for (unsigned state = 1; noise.size() < 100'000;)
        noise += static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    EXPECT_EQ(ErrorCode(noise), XML_ERR_NAME_REQUIRED);
    EXPECT_EQ(ErrorCode("<a>" + noise), XML_ERR_NAME_REQUIRED);
}

TEST(XmlSafety, EveryCutOfATextIsAnErrorAndNoCrash)
{
    const std::string text = "<?xml version='1.0'?><!DOCTYPE a [<!ENTITY e 'x<b/>y'>]><a c='&e2;я'><!-- я -->"
                             "<![CDATA[я]]><?p q?>&e;&#1103;</a>";
    for (size_t length = 0; length < text.size(); ++length)
        EXPECT_NE(ErrorCode(text.substr(0, length)), 0) << length;
}

TEST(XmlSafety, AnEntityBombInTextIsAnErrorWithinASecond)
{
    EXPECT_EQ(ErrorCode(Laughs("<a>&e9;</a>")), XmlEntityTooLarge);
    Counter counter;
    EXPECT_EQ(ErrorCode(Laughs("<a>&e9;</a>"), &counter), XmlEntityTooLarge);
    EXPECT_LT(counter.characterCount, 5'000'000U);
}

TEST(XmlSafety, AnEntityBombInAnAttributeIsAnErrorWithinASecond)
{
    EXPECT_EQ(ErrorCode(Laughs("<a b='&e9;'/>")), XmlEntityTooLarge);
    EXPECT_EQ(ErrorCode("<!DOCTYPE a [<!ATTLIST a b CDATA '&x;'><!ENTITY x '<'>]><a/>"),
              XML_ERR_UNDECLARED_ENTITY);
}

TEST(XmlSafety, ABombOfEmptyEntitiesIsAnErrorToo)
{
    std::string text = "<!DOCTYPE a [<!ENTITY e0 ''>";
    for (int i = 1; i < 10; ++i)
        text += "<!ENTITY e" + std::to_string(i) + " '" + Repeated("&e" + std::to_string(i - 1) + ";", 20)
            + "'>";
    EXPECT_EQ(ErrorCode(text + "]><a>&e9;</a>"), XmlEntityTooLarge);
    EXPECT_EQ(ErrorCode(text + "]><a b='&e9;'/>"), XmlEntityTooLarge);
}

TEST(XmlSafety, ALargeEntityUsedOftenIsAnErrorWithinASecond)
{
    const std::string entity = "<!DOCTYPE a [<!ENTITY e '" + std::string(100'000, 'x') + "'>]>";
    EXPECT_EQ(ErrorCode(entity + "<a>" + Repeated("&e;", 10'000) + "</a>"), XmlEntityTooLarge);
    EXPECT_EQ(ErrorCode(entity + "<a>" + Repeated("&e;", 10) + "</a>"), 0);
}

TEST(XmlSafety, AnEntityThatContainsItselfIsAnError)
{
    EXPECT_EQ(ErrorCode("<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>"), XML_ERR_ENTITY_LOOP);
    EXPECT_EQ(ErrorCode("<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a>&e;</a>"), XML_ERR_ENTITY_LOOP);
    EXPECT_EQ(ErrorCode("<!DOCTYPE a [<!ENTITY e '&e;'>]><a b='&e;'/>"), XML_ERR_ENTITY_LOOP);
}

TEST(XmlSafety, AChainOfManyEntitiesDoesNotOverflowTheStackOfAThread)
{
    std::string text = "<!DOCTYPE a [<!ENTITY e0 'x'>";
    for (int i = 1; i < 600; ++i)
        text += "<!ENTITY e" + std::to_string(i) + " '<b>&e" + std::to_string(i - 1) + ";</b>'>";
    std::thread([&text] {
        EXPECT_EQ(ErrorCode(text + "]><a>&e599;</a>"), XML_ERR_ENTITY_LOOP);
        EXPECT_EQ(ErrorCode(text + "]><a b='&e599;'/>"), XML_ERR_LT_IN_ATTRIBUTE);
    }).join();
}

TEST(XmlSafety, ParameterEntitiesAreBoundedToo)
{
    std::string text = "<!DOCTYPE a [<!ENTITY % p0 '<!-- x -->'>";
    for (int i = 1; i < 10; ++i)
        text += "<!ENTITY % p" + std::to_string(i) + " '"
            + Repeated("&#37;p" + std::to_string(i - 1) + ";", 20) + "'>";
    EXPECT_EQ(ErrorCode(text + "%p9;]><a/>"), XML_ERR_INTERNAL_ERROR);
}

TEST(XmlSafety, AnExternalEntityIsAnErrorAndItsFileStaysUnread)
{
    const QTemporaryDir folder;
    const std::string secret = folder.filePath(u"secret.txt"_s).toStdString();
    std::ofstream(secret) << "the secret";
    const std::pair<std::string, int> uses[]
        = {{"<a>&x;</a>", XmlExternalEntity}, {"<a b='&x;'/>", XML_ERR_ENTITY_IS_EXTERNAL}};
    for (const auto& [use, code] : uses) {
        Counter counter;
        EXPECT_EQ(ErrorCode("<!DOCTYPE a [<!ENTITY x SYSTEM '" + secret + "'>]>" + use, &counter), code);
        EXPECT_EQ(ErrorCode("<!DOCTYPE a [<!ENTITY x SYSTEM 'file://" + secret + "'>]>" + use, &counter),
                  code);
        EXPECT_EQ(counter.characterCount, 0U);
        EXPECT_EQ(counter.values, "");
    }
}

TEST(XmlSafety, AnExternalDocumentTypeIsNotRead)
{
    const QTemporaryDir folder;
    const std::string file = folder.filePath(u"a.dtd"_s).toStdString();
    std::ofstream(file) << "<!ENTITY x 'the secret'><!ATTLIST a b CDATA 'the secret'>";
    Counter counter;
    EXPECT_EQ(ErrorCode("<!DOCTYPE a SYSTEM '" + file + "'><a/>", &counter), 0);
    EXPECT_EQ(ErrorCode("<!DOCTYPE a SYSTEM '" + file + "'><a>&x;</a>", &counter), XML_WAR_UNDECLARED_ENTITY);
    EXPECT_EQ(ErrorCode("<!DOCTYPE a [<!ENTITY % p SYSTEM '" + file + "'>%p;]><a>&x;</a>", &counter),
              XML_ERR_UNDECLARED_ENTITY);
    EXPECT_EQ(counter.characterCount, 0U);
    EXPECT_EQ(counter.values, "");
}

TEST(XmlSafety, NestingIsBounded)
{
    EXPECT_EQ(ErrorCode(Repeated("<a>", XmlMaxDepth) + Repeated("</a>", XmlMaxDepth)), 0);
    EXPECT_EQ(ErrorCode(Repeated("<a>", XmlMaxDepth + 1) + Repeated("</a>", XmlMaxDepth + 1)), XmlTooDeep);
    EXPECT_EQ(ErrorCode(Repeated("<a>", 1'000'000)), XmlTooDeep);
}

TEST(XmlSafety, NestingInsideTheDocumentTypeIsBounded)
{
    EXPECT_EQ(ErrorCode("<!DOCTYPE a [<!ELEMENT a " + Repeated("(", 1'000'000)),
              XML_ERR_ELEMCONTENT_NOT_FINISHED);
    EXPECT_EQ(ErrorCode("<!DOCTYPE a [<!ENTITY e '" + Repeated("<b>", 1'000'000) + "'>]><a>&e;</a>"),
              XmlDocTypeTooLarge);
}

TEST(XmlSafety, AHundredMegabytesOfOpenAnglesAreAnErrorWithinASecond)
{
    EXPECT_EQ(ErrorCode(std::string(100'000'000, '<')), XML_ERR_NAME_REQUIRED);
}

TEST(XmlSafety, LongTextOfEveryKindIsRead)
{
    const std::string text(20'000'000, 'A');
    Counter counter;
    EXPECT_EQ(ErrorCode("<a>" + text + "</a>", &counter), 0);
    EXPECT_EQ(ErrorCode("<a><![CDATA[" + text + "]]></a>", &counter), 0);
    EXPECT_EQ(counter.characterCount, 2 * text.size());
    EXPECT_EQ(ErrorCode("<a b='" + text + "'/>", &counter), 0);
    EXPECT_EQ(counter.values.size(), text.size());
    EXPECT_EQ(ErrorCode("<a><!--" + text + "--></a>"), 0);
}

TEST(XmlSafety, AThousandTextsOnFourThreadsGiveTheSameErrors)
{
    const std::string text = "<a>\n<b l:c='x'/></a>";
    const XmlParseError wanted = ReadXml(text, XmlEncoding::utf8());
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int run = 0; run < 250; ++run) {
                const XmlParseError error = ReadXml(text, XmlEncoding::utf8());
                EXPECT_EQ(error.filepos, wanted.filepos);
                EXPECT_EQ(error.reason, wanted.reason);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(HasParseError, TestsWellFormednessAndPrefixesOnly)
{
    EXPECT_FALSE(HasParseError("<a/>", XmlEncoding::utf8()));
    EXPECT_FALSE(
        HasParseError("<?xml version=\"1.0\" encoding=\"UTF-8\"?><nscheck></nscheck>", XmlEncoding::utf8()));
    EXPECT_TRUE(HasParseError("<a>", XmlEncoding::utf8()));
    EXPECT_TRUE(HasParseError("<l:a/>", XmlEncoding::utf8()));
    EXPECT_TRUE(HasParseError("", XmlEncoding::utf8()));
}

TEST(XmlEncodingChoice, AMarkWinsOverTheDeclaration)
{
    Counter counter;
    EXPECT_EQ(ErrorCode("\xEF\xBB\xBF<?xml version='1.0' encoding='windows-1251'?><a>ж</a>", &counter), 0);
    EXPECT_EQ(counter.characterCount, 2U);
}

TEST(XmlEncodingChoice, ADeclarationThatContradictsTheBytesIsAnError)
{
    EXPECT_EQ(ErrorCode("<?xml version='1.0' encoding='UTF-16'?><a/>"), XmlUnknownEncoding);
    EXPECT_EQ(ErrorCode("<?xml version='1.0' encoding='UTF-8//TRANSLIT'?><a/>"), XmlUnknownEncoding);
    EXPECT_EQ(ErrorCode("<?xml version='1.0' encoding=''?><a/>"), XmlUnknownEncoding);
}

TEST(XmlEncodingChoice, BytesWithoutACharacterInACodePageAreReadAsControls)
{
    EXPECT_EQ(ErrorCode("<?xml version='1.0' encoding='windows-1251'?><a>\x98</a>"), 0);
}

TEST(XmlSafety, ATagWithTooManyAttributesIsAnErrorAtItsStart)
{
    const auto tag = [](const std::string& prefix, int count) {
        std::string text = "<a>\n<b";
        for (int i = 0; i < count; ++i)
            text += " " + prefix + std::to_string(i) + "=\"u\"";
        return text + "/></a>";
    };
    EXPECT_EQ(ErrorCode(tag("c", 1500)), 0) << "no book has so many";
    EXPECT_EQ(ErrorCode(tag("c", 100'000)), XmlTagTooLarge);
    EXPECT_EQ(ErrorCode(tag("xmlns:c", 500)), 0);
    EXPECT_EQ(ErrorCode(tag("xmlns:c", 100'000)), XmlTagTooLarge);

    const XmlParseError error = ReadXml(tag("c", 100'000), XmlEncoding::byDeclaration(), nullptr);
    EXPECT_EQ(error.line, 2);
    EXPECT_EQ(error.linepos, 1);
    EXPECT_EQ(error.reason, u"The tag has too many attributes"_s);
}
