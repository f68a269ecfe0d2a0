// A book in common form is read and laid out without the parser. Whatever the body of a book contains, the
// parser has the same result for each one that is accepted.

#include "BookPage.h"
#include "BookReading.h"
#include "DisplayDocument.h"
#include "DisplayToBook.h"
#include "HtmlReader.h"
#include "KeptLines.h"
#include "OutlinedBook.h"
#include "XmlDocument.h"

#include <cstdlib>
#include <string>

using namespace Qt::StringLiterals;

namespace {

const std::string Front = R"(<?xml version="1.0" encoding="utf-8"?>
<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0" xmlns:l="http://www.w3.org/1999/xlink">
<description><title-info/></description><body>)";
const std::string End = "</body></FictionBook>";
constexpr std::string_view Declaration = R"(<?xml version="1.0" encoding="utf-8"?>)";

void Require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

void CheckReading(const std::string& book, const vmk::DisplayValues& values, const vmk::InLineTagSet& tags)
{
    std::string bytes = book;
    std::optional<vmk::OutlinedBook> outlined
        = vmk::ReadOutlinedBook(bytes, values.showNbsp, tags, u"original"_s);
    if (!outlined)
        return Require(bytes == book);
    const vmk::KeptBook kept = vmk::ReadKeptBook(book, values, tags, u"original"_s);
    Require(kept.hasTree && vmk::PageWithOutline(*outlined->text, values) == kept.page);
    Require(outlined->binaryPart == kept.binaryPart);
    Require(outlined->losses.descriptionLines() == kept.losses.descriptionLines());

    vmk::DisplayDocument parsed;
    parsed.loadPage(QByteArray::fromStdString(kept.page));
    const vmk::OutlineLines lines(outlined->text, values, parsed.tags());
    Require(int(lines.count()) == parsed.lineCount());
    int index = 0;
    for (const vmk::LinePtr& line : lines.make(0, lines.count()))
        Require(*line == parsed.line(index++));
    Require(outlined->takeBytes() == book);
}

void CheckLayout(const std::string& book, const vmk::InLineTagSet& tags)
{
    std::optional<vmk::BookOutline> outline
        = vmk::OutlineOf(book, Declaration.size(), book.size(), tags, true);
    if (!outline)
        return;
    const std::string xml = vmk::XmlOfOutline({book, std::string(Declaration), *std::move(outline)});
    vmk::LineLosses losses;
    const std::string lines = vmk::KeptTreeLines(book, "\r\n", tags, losses);
    vmk::XmlSerializer serializer(tags.elementNames(), std::string(Declaration));
    serializer.keepTextOf(vmk::TextElementNames(tags));
    vmk::XmlDocument document;
    document.validateOnParse = false;
    Require(document.loadXML(lines, vmk::XmlEncoding::utf8(), &serializer));
    Require(xml == serializer.take().laidOut());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static const vmk::InLineTagSet tags(vmk::DefaultInLineTags());
    if (size < 1)
        return 0;
    vmk::DisplayValues values;
    values.nodeShift = 5;
    values.tagHighlighting = (data[0] & 1) != 0;
    values.showNbsp = (data[0] & 2) != 0;
    const std::string book = Front + std::string(reinterpret_cast<const char*>(data) + 1, size - 1) + End;
    CheckReading(book, values, tags);
    CheckLayout(book, tags);
    return 0;
}
