// Any bytes as an XML text: no crash, no leak; every error position is inside the text; events are nested;
// the result is the same with and without a listener.

#include "WorkBudget.h"
#include "XmlSaxReader.h"
#include "XmlSchemaCache.h"

#include <QFile>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Checks that elements close in the order in which they open.
class Listener : public XmlSaxHandler
{
public:
    void startElement(std::string_view name, std::span<const XmlAttribute> attributes) override
    {
        Require(!name.empty());
        for (const XmlAttribute& attribute : attributes)
            Require(!attribute.name.empty());
        open.emplace_back(name);
    }
    void endElement(std::string_view name) override
    {
        Require(!open.empty() && open.back() == name);
        open.pop_back();
    }
    void characters(std::string_view text) override { Require(!text.empty() && !open.empty()); }

    [[nodiscard]] bool isBalanced() const { return open.empty(); }

private:
    std::vector<std::string> open;
};

const XmlSchemaCache& BookSchema()
{
    static const auto cache = [] {
        auto schemas = std::make_unique<XmlSchemaCache>();
        Require(schemas->add(u"http://www.gribuser.ru/xml/fictionbook/2.0"_s,
                             QFile::decodeName(VMK_SCHEMA_FOLDER "/FictionBook.xsd")));
        return schemas;
    }();
    return *cache;
}

void RequirePlaceInside(const XmlParseError& error, std::string_view text)
{
    Require(error.fileByte >= 0 && error.fileByte <= static_cast<qsizetype>(text.size()));
    Require(error.filepos >= 0 && error.filepos <= static_cast<qsizetype>(text.size()));
    Require(error.line >= 1 && error.linepos >= 1);
    Require(!error || !error.reason.isEmpty());
}

void Check(const uint8_t* data, size_t size)
{
    // The first byte selects the encoding, so that each is used with every text.
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const XmlEncoding encoding = data[0] % 4 == 0 ? XmlEncoding::utf8()
        : data[0] % 4 == 1                        ? XmlEncoding::codePage(1251)
                                                  : XmlEncoding::byDeclaration();
    Listener listener;
    const XmlParseError heard = ReadXml(text, encoding, &listener);
    RequirePlaceInside(heard, text);
    Require(heard || listener.isBalanced());

    const XmlParseError unheard = ReadXml(text, encoding);
    Require(unheard.errorCode == heard.errorCode && unheard.fileByte == heard.fileByte);

    const XmlParseError validated = ReadXml(text, encoding, nullptr, &BookSchema());
    RequirePlaceInside(validated, text);
    Require(!heard || validated);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::vector<uint8_t> plain = PlainInput(
        {0},
        "<FictionBook xmlns=\"http://www.gribuser.ru/xml/fictionbook/2.0\"><description><title-info>"
        "<genre>prose</genre><author><nickname>a</nickname></author><book-title>b</book-title><lang>en</lang>"
        "</title-info></description><body><section>",
        "<p>A <strong>plain</strong> paragraph.</p>\n", "</section></body></FictionBook>");
    if (size > 0)
        CheckWithBudget(Check, plain, data, size);
    return 0;
}
