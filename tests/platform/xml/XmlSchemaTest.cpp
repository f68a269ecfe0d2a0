// Compiling schemas, and the checks that a validating stream implements itself.

#include "XmlDocument.h"
#include "XmlReason.h"
#include "XmlSaxReader.h"
#include "XmlSchemaCache.h"

#include <gtest/gtest.h>

#include <libxml/xmlerror.h>

#include <QDir>
#include <QTemporaryDir>

#include <fstream>
#include <thread>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

const std::string Head = R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" xmlns:o="urn:o"
    xmlns="urn:t" targetNamespace="urn:t" elementFormDefault="qualified">)";

class XmlSchemas : public testing::Test
{
protected:
    QString write(const QString& name, const std::string& text)
    {
        const QString path = folder.filePath(name);
        std::ofstream(path.toStdString(), std::ios::binary) << text;
        return path;
    }

    QString problemOf(const QString& path)
    {
        XmlSchemaCache cache;
        EXPECT_FALSE(cache.add(u"urn:t"_s, path));
        EXPECT_TRUE(cache.isEmpty());
        EXPECT_FALSE(cache.problem().isEmpty());
        EXPECT_FALSE(cache.problem().contains(u'\n'));
        return cache.problem();
    }

    QTemporaryDir folder;
};

std::string WithRoot(const std::string& type)
{
    return Head + "<xs:element name='a' type='" + type + "'/></xs:schema>";
}

} // namespace

TEST_F(XmlSchemas, AMissingFileIsNamed)
{
    const QString path = folder.filePath(u"none.xsd"_s);
    EXPECT_EQ(problemOf(path), path + u": file not found"_s);
    EXPECT_EQ(problemOf(folder.path()), folder.path() + u": not a file"_s);
}

TEST_F(XmlSchemas, ABrokenFileIsNamedWithTheLine)
{
    const QString notXml = write(u"a.xsd"_s, "<xs:schema>\n<b>\n</xs:schema>");
    EXPECT_TRUE(problemOf(notXml).startsWith(notXml + u":"_s)) << problemOf(notXml).toStdString();
    const QString wrongType = write(u"b.xsd"_s, WithRoot("nonsense"));
    EXPECT_TRUE(problemOf(wrongType).startsWith(wrongType + u":2: "_s)) << problemOf(wrongType).toStdString();
    const QString empty = write(u"c.xsd"_s, "");
    EXPECT_EQ(problemOf(empty), empty + u": not an XML schema"_s);
    const QString otherRoot = write(u"d.xsd"_s, "<a/>");
    EXPECT_TRUE(problemOf(otherRoot).startsWith(otherRoot)) << problemOf(otherRoot).toStdString();
}

TEST_F(XmlSchemas, AMissingImportIsNamed)
{
    const QString path = write(u"a.xsd"_s,
                               Head
                                   + "<xs:import namespace='urn:o' schemaLocation='other.xsd'/>"
                                     "<xs:element name='a' type='o:b'/></xs:schema>");
    EXPECT_EQ(problemOf(path), folder.filePath(u"other.xsd"_s) + u": file not found"_s);
    // Even if nothing of it is used.
    const QString unused = write(u"b.xsd"_s,
                                 Head
                                     + "<xs:import namespace='urn:o' schemaLocation='other.xsd'/>"
                                       "<xs:element name='a'/></xs:schema>");
    EXPECT_EQ(problemOf(unused), folder.filePath(u"other.xsd"_s) + u": file not found"_s);
}

TEST_F(XmlSchemas, ABrokenImportIsNamedWithItsOwnFile)
{
    const QString other = write(u"other.xsd"_s, "<broken");
    const QString path
        = write(u"a.xsd"_s, Head + "<xs:import namespace='urn:o' schemaLocation='other.xsd'/></xs:schema>");
    EXPECT_TRUE(problemOf(path).startsWith(other + u":1: "_s)) << problemOf(path).toStdString();
}

TEST_F(XmlSchemas, AnImportFromTheNetworkIsRejected)
{
    const QString path = write(
        u"a.xsd"_s,
        Head + "<xs:import namespace='urn:o' schemaLocation='http://example.org/o.xsd'/></xs:schema>");
    EXPECT_EQ(problemOf(path), u"http://example.org/o.xsd: only local files are read"_s);
}

TEST_F(XmlSchemas, AnotherNamespaceIsRejected)
{
    EXPECT_TRUE(problemOf(write(u"a.xsd"_s, "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'/>"))
                    .endsWith(u"the schema is for the namespace \"\""_s));
}

TEST_F(XmlSchemas, FoldersWithBlanksAndSpecialCharactersAreFound)
{
    const QString odd = u"Ж %41 #1 ;?"_s;
    ASSERT_TRUE(QDir(folder.path()).mkdir(odd));
    write(odd + u"/o p.xsd"_s,
          "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:o'>"
          "<xs:simpleType name='b'><xs:restriction base='xs:int'/></xs:simpleType></xs:schema>");
    const QString path = write(odd + u"/a.xsd"_s,
                               Head
                                   + "<xs:import namespace='urn:o' schemaLocation='o%20p.xsd'/>"
                                     "<xs:element name='a' type='o:b'/></xs:schema>");
    auto cache = std::make_shared<XmlSchemaCache>();
    ASSERT_TRUE(cache->add(u"urn:t"_s, path)) << cache->problem().toStdString();
    EXPECT_FALSE(ReadXml("<a xmlns='urn:t'>1</a>", XmlEncoding::utf8(), nullptr, cache.get()));
    EXPECT_TRUE(ReadXml("<a xmlns='urn:t'>x</a>", XmlEncoding::utf8(), nullptr, cache.get()));
}

TEST_F(XmlSchemas, AFailedAddKeepsTheExistingSchema)
{
    XmlSchemaCache cache;
    ASSERT_TRUE(cache.add(u"urn:t"_s, write(u"a.xsd"_s, WithRoot("xs:int"))));
    EXPECT_FALSE(cache.add(u"urn:t"_s, folder.filePath(u"none.xsd"_s)));
    EXPECT_TRUE(ReadXml("<a xmlns='urn:t'>x</a>", XmlEncoding::utf8(), nullptr, &cache));
    ASSERT_TRUE(cache.add(u"urn:t"_s, write(u"b.xsd"_s, WithRoot("xs:string"))));
    EXPECT_EQ(cache.problem(), QString());
    EXPECT_FALSE(ReadXml("<a xmlns='urn:t'>x</a>", XmlEncoding::utf8(), nullptr, &cache));
}

TEST_F(XmlSchemas, ADocumentWithoutAUsableSchemaIsOnlyParsed)
{
    const auto cache = std::make_shared<XmlSchemaCache>();
    EXPECT_FALSE(cache->add(u"urn:t"_s, folder.filePath(u"none.xsd"_s)));
    XmlDocument document;
    document.schemas = cache;
    EXPECT_TRUE(document.loadXML("<a/>", XmlEncoding::utf8()));
    EXPECT_FALSE(document.loadXML("<a>", XmlEncoding::utf8()));
}

TEST_F(XmlSchemas, ADocumentValidatesOnlyWhenAsked)
{
    const auto cache = std::make_shared<XmlSchemaCache>();
    ASSERT_TRUE(cache->add(u"urn:t"_s, write(u"a.xsd"_s, WithRoot("xs:int"))));
    XmlDocument document;
    document.schemas = cache;
    EXPECT_FALSE(document.loadXML("<a xmlns='urn:t'>x</a>", XmlEncoding::utf8()));
    document.validateOnParse = false;
    EXPECT_TRUE(document.loadXML("<a xmlns='urn:t'>x</a>", XmlEncoding::utf8()));
    EXPECT_EQ(document.parseError().errorCode, 0);
}

TEST_F(XmlSchemas, AttributesOfTwoTypesAreNotIdentifiers)
{
    XmlSchemaCache cache;
    ASSERT_TRUE(cache.add(u"urn:t"_s, write(u"a.xsd"_s, Head + R"(
        <xs:element name="a"><xs:complexType><xs:sequence>
          <xs:element name="b" maxOccurs="9"><xs:complexType>
            <xs:attribute name="key" type="xs:ID"/></xs:complexType></xs:element>
          <xs:element name="c" maxOccurs="9"><xs:complexType><xs:attribute name="ref" type="xs:ID"/></xs:complexType>
          </xs:element>
          <xs:element name="d" maxOccurs="9"><xs:complexType><xs:attribute name="ref" type="xs:string"/></xs:complexType>
          </xs:element></xs:sequence></xs:complexType></xs:element></xs:schema>)")));
    const auto isRefused = [&cache](const std::string& content) {
        return bool(ReadXml("<a xmlns='urn:t'>" + content + "</a>", XmlEncoding::utf8(), nullptr, &cache));
    };
    EXPECT_FALSE(isRefused("<b key='k'/><c ref='x'/><d ref='x'/><d ref='x'/>"));
    EXPECT_TRUE(isRefused("<b key='k'/><b key='k'/><c/><d/>"));
}

TEST_F(XmlSchemas, ManyThreadsUseOneSchema)
{
    XmlSchemaCache cache;
    ASSERT_TRUE(cache.add(u"urn:t"_s, write(u"a.xsd"_s, WithRoot("xs:int"))));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&cache, i] {
            for (int run = 0; run < 500; ++run) {
                const std::string number = std::to_string(run * 4 + i);
                EXPECT_FALSE(
                    ReadXml("<a xmlns='urn:t'>" + number + "</a>", XmlEncoding::utf8(), nullptr, &cache));
                EXPECT_TRUE(
                    ReadXml("<a xmlns='urn:t'>x" + number + "</a>", XmlEncoding::utf8(), nullptr, &cache));
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(XmlSchemas, ABookCannotNameASchemaToLoad)
{
    XmlSchemaCache cache;
    ASSERT_TRUE(cache.add(u"urn:t"_s, write(u"a.xsd"_s, WithRoot("xs:int"))));
    const std::string other = write(u"o.xsd"_s,
                                    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' "
                                    "targetNamespace='urn:o'><xs:element name='b'/></xs:schema>")
                                  .toStdString();
    const XmlParseError error = ReadXml(
        "<b xmlns='urn:o' xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:schemaLocation='urn:o "
            + other + "'/>",
        XmlEncoding::utf8(), nullptr, &cache);
    EXPECT_EQ(error.errorCode, XML_SCHEMAV_CVC_ELT_1);
}

TEST(XmlReason, IsOneLine)
{
    EXPECT_EQ(TidyReason("one\ntwo\n"), "one two");
}

TEST(XmlReason, CutsALongListAfterAnEntry)
{
    std::string values;
    for (int i = 0; i < 100; ++i)
        values += (i == 0 ? "'" : ", '") + std::string("value") + std::to_string(i) + "'";
    const std::string reason = TidyReason("The value 'x' is not an element of the set {" + values + "}.\n");
    EXPECT_TRUE(reason.ends_with("', …}.")) << reason;
    EXPECT_LT(reason.size(), 230U);
    EXPECT_GT(reason.size(), 160U);
    EXPECT_EQ(TidyReason("not an element of the set {'a', 'b'}."), "not an element of the set {'a', 'b'}.");
}

TEST(XmlReason, DoesNotTreatNamespacesAsListEntries)
{
    const std::string uri = "{http://www.example.org/a/rather/long/name/for/a/namespace}";
    std::string names;
    for (int i = 0; i < 8; ++i)
        names += (i == 0 ? "" : ", ") + uri + "p" + std::to_string(i);
    const std::string reason
        = "Element '" + uri + "x': This element is not expected. Expected is one of ( " + names + " ).";
    EXPECT_EQ(TidyReason(reason), reason);
}

TEST(XmlReason, OmitsTheNamespaceInAndWithoutBraces)
{
    EXPECT_EQ(WithoutNamespace(u"'{URN:t}a' in urn:T and {urn:o}b"_s, u"urn:t"_s), u"'a' in  and {urn:o}b"_s);
}
