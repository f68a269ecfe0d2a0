#include "XmlDocument.h"
#include "XmlSaxReader.h"

#include <gtest/gtest.h>

#include <string>

using namespace vmk;

namespace {

/// Records the events, one per line.
class Recorder : public XmlSaxHandler
{
public:
    std::string log;

    void xmlDeclaration(std::string_view text) override { add("declaration", text); }
    void docType(std::string_view text) override { add("doctype", text); }
    void startElement(std::string_view name, std::span<const XmlAttribute> attributes) override
    {
        std::string line(name);
        for (const XmlAttribute& attribute : attributes)
            line.append(" ").append(attribute.name).append("=[").append(attribute.value).append("]");
        add("start", line);
    }
    void endElement(std::string_view name) override { add("end", name); }
    void characters(std::string_view text) override { add("text", text); }
    void cdata(std::string_view text) override { add("cdata", text); }
    void comment(std::string_view text) override { add("comment", text); }
    void processingInstruction(std::string_view target, std::string_view data) override
    {
        add("pi", std::string(target) + " " + std::string(data));
    }

private:
    void add(std::string_view kind, std::string_view text)
    {
        log += std::string(kind) + ": " + std::string(text) + "\n";
    }
};

std::string Events(std::string_view text, XmlEncoding encoding = XmlEncoding::utf8())
{
    Recorder recorder;
    const XmlParseError error = ReadXml(text, encoding, &recorder);
    return error ? "error: " + error.reason.toStdString() : recorder.log;
}

} // namespace

TEST(XmlReader, ANamespaceDoesNotHaveToBeAUri)
{
    EXPECT_EQ(Events("<a xmlns=' not a URI ' xmlns:l='http://www.w3.org/1999/xlink ' l:x='1'/>"),
              "start: a xmlns=[ not a URI ] xmlns:l=[http://www.w3.org/1999/xlink ] l:x=[1]\nend: a\n");
    // Only prefixes count.
    EXPECT_TRUE(Events("<a xmlns:l='%' k:x='1'/>").starts_with("error: "));
    EXPECT_TRUE(Events("<a xmlns:l=''/>").starts_with("error: "));
}

TEST(XmlReader, ReportsEveryKindOfEventInOrder)
{
    EXPECT_EQ(
        Events("<?xml version=\"1.0\"?>\n<!-- before --><!DOCTYPE a [<!-- in --><!ELEMENT a ANY>]><?go now?>"
               "<a x='1' xmlns:l=\"urn:l\" l:y=\"&lt;&#1103;\"><b/>one &amp; <![CDATA[<two>]]>three</a>"),
        "declaration: <?xml version=\"1.0\"?>\n"
        "comment:  before \n"
        "doctype: <!DOCTYPE a [<!-- in --><!ELEMENT a ANY>]>\n"
        "pi: go now\n"
        "start: a x=[1] xmlns:l=[urn:l] l:y=[<я]\n"
        "start: b\n"
        "end: b\n"
        "text: one & \n"
        "cdata: <two>\n"
        "text: three\n"
        "end: a\n");
}

TEST(XmlReader, ReplacesEntitiesByTheirContent)
{
    EXPECT_EQ(Events("<!DOCTYPE a [<!ENTITY e 'x<b>y</b>'>]><a t='&e2;'/>"),
              "error: Entity 'e2' not defined");
    EXPECT_EQ(Events("<!DOCTYPE a [<!ENTITY e 'x<b>y</b>'>]><a>1&e;2&e;3</a>"),
              "doctype: <!DOCTYPE a [<!ENTITY e 'x<b>y</b>'>]>\n"
              "start: a\ntext: 1x\nstart: b\ntext: y\nend: b\ntext: 2x\nstart: b\ntext: y\nend: b\ntext: "
              "3\nend: a\n");
}

TEST(XmlReader, ReadsTheGivenCodePageAndIgnoresTheDeclaration)
{
    EXPECT_EQ(
        Events("<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xc0\xdf</a>", XmlEncoding::codePage(1251)),
        "declaration: <?xml version=\"1.0\" encoding=\"UTF-8\"?>\nstart: a\ntext: АЯ\nend: a\n");
}
