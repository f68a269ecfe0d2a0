#include "BinaryElements.h"

#include "Base64.h"
#include "CodePages.h"
#include "LineEnds.h"
#include "TextFunctions.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr std::string_view TagStart = "<binary";
constexpr std::string_view ElementEnd = "</binary>";
constexpr size_t None = std::string_view::npos;

/// Returns true for a short text that consists of line ends and at most a few other characters.
bool IsNearlyEmpty(std::string_view text)
{
    constexpr size_t ShortText = 500;
    constexpr std::ptrdiff_t LeastContent = 5;
    const auto isContent = [](char c) { return c != '\r' && c != '\n'; };
    return text.size() < ShortText && std::ranges::count_if(text, isContent) < LeastContent;
}

/// Returns the reference for a character that cannot be written literally; empty for other characters.
QString ReferenceFor(char32_t character, int codePage)
{
    switch (character) {
    case U'&':
        return u"&amp;"_s;
    // The display shows the references for angle brackets as these two quotation marks.
    case U'<':
    case U'\u2039':
        return u"&lt;"_s;
    case U'>':
    case U'\u203A':
        return u"&gt;"_s;
    case U'"':
        return u"&quot;"_s;
    default:
        break;
    }
    const bool known
        = character < 0x80 || codePage == CodePageUtf8 || ByteOfCharacter(character, codePage).has_value();
    return known ? QString() : u"&#%1;"_s.arg(uint(character));
}

} // namespace

std::optional<BinaryTag> NextBinaryTag(std::string_view binaryPart, size_t from)
{
    const size_t begin = binaryPart.find(TagStart, from);
    const size_t end = begin == None ? None : binaryPart.find('>', begin);
    if (end == None)
        return std::nullopt;
    return BinaryTag{binaryPart.substr(begin, end + 1 - begin), end};
}

std::optional<BinaryElement> ElementOfTag(std::string_view binaryPart, const BinaryTag& tag)
{
    const size_t end = binaryPart.find(ElementEnd, tag.end);
    if (end == None)
        return std::nullopt;
    return BinaryElement{tag.tag, binaryPart.substr(tag.end + 1, end - tag.end - 1), end};
}

bool IsPictureTag(std::string_view tag)
{
    return tag.find("content-type=\"image") != None;
}

size_t FindBinaryId(std::string_view binaryPart, std::string_view id)
{
    return binaryPart.find("id=\"" + std::string(id));
}

std::optional<BinaryElement> FindBinaryElement(std::string_view binaryPart, std::string_view id)
{
    const size_t at = FindBinaryId(binaryPart, id);
    const size_t tagEnd = at == None ? None : binaryPart.find('>', at);
    if (tagEnd == None)
        return std::nullopt;
    const size_t tagBegin = binaryPart.rfind('<', at);
    const std::string_view tag
        = tagBegin == None ? std::string_view() : binaryPart.substr(tagBegin, tagEnd + 1 - tagBegin);
    return ElementOfTag(binaryPart, {tag, tagEnd});
}

bool RemoveBinaryElement(std::string& binaryPart, std::string_view id)
{
    const size_t at = FindBinaryId(binaryPart, id);
    const size_t begin = at == None ? None : binaryPart.rfind(TagStart, at);
    const size_t end = begin == None ? None : binaryPart.find(ElementEnd, at);
    if (end == None)
        return false;
    binaryPart.erase(begin, end + ElementEnd.size() - begin);
    binaryPart = CollapseRepeats(std::move(binaryPart), CrLf);
    if (IsNearlyEmpty(binaryPart))
        binaryPart.clear();
    return true;
}

std::string MakeBinaryElement(const QString& extension, std::string_view id, std::string_view data)
{
    std::string element = extension == "png"_L1 ? "<binary content-type=\"image/png\" id="
                                                : "<binary content-type=\"image/jpeg\" id=";
    element.append("\"").append(id).append("\">");
    element += Base64Encode(data);
    element += ElementEnd;
    return element;
}

std::string IdInBinaryPart(const QString& shownId, int codePage)
{
    QString id;
    for (const char32_t character : shownId.toUcs4()) {
        const QString reference = ReferenceFor(character, codePage);
        id += reference.isEmpty() ? QString::fromUcs4(&character, 1) : reference;
    }
    return EncodeText(id, codePage);
}

} // namespace vmk
