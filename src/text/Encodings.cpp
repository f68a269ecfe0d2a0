#include "Encodings.h"

#include "BookVariables.h"
#include "CodePages.h"
#include "SettingsVariables.h"
#include "TagFunctions.h"
#include "TextFunctions.h"

#include <algorithm>

namespace vmk {
namespace {

constexpr std::string_view DefaultName = "windows-1251";
constexpr std::string_view UnicodeName = "unicode";
constexpr std::string_view Utf16Mark = "\xff\xfe";

std::string MakeDeclaration(std::string_view encodingName)
{
    return R"(<?xml version="1.0" encoding=")" + std::string(encodingName) + R"("?>)";
}

/// Control characters that do not occur in ordinary single-byte text.
constexpr bool IsRareControl(char byte)
{
    const auto code = static_cast<unsigned char>(byte);
    return code < 0x20 && code != '\t' && code != '\n' && code != '\r';
}

std::string WithoutNul(std::string text)
{
    if (text.find('\0') != std::string::npos)
        std::erase(text, '\0');
    return text;
}

/// From "<?xml" to the next ">", or empty.
std::string_view FindDeclaration(std::string_view text)
{
    const size_t begin = FindText(text, "<?xml", 0, true);
    const size_t end = begin == std::string_view::npos ? begin : text.find('>', begin);
    return end == std::string_view::npos ? std::string_view() : text.substr(begin, end + 1 - begin);
}

} // namespace

int32_t EncodingCodePage(std::string_view name)
{
    if (name == "windows-1252")
        return CodePageWestern;
    if (name == "windows-1250")
        return CodePageCentralEurope;
    if (name == "utf-8")
        return CodePageUtf8;
    if (name == UnicodeName)
        return CodePageUtf16;
    return CodePageCyrillic;
}

BookEncoding MakeBookEncoding(std::string name)
{
    const int32_t codePage = EncodingCodePage(name);
    std::string metaTag = R"(<meta content="text/html; charset=)" + name + R"(" http-equiv="Content-Type">)";
    return {std::move(name), codePage, std::move(metaTag)};
}

bool IsUnicodeText(std::string_view text)
{
    constexpr size_t SampleSize = 65'536;
    if (text.starts_with(Utf16Mark))
        return true;
    const std::string_view sample = text.substr(0, SampleSize);
    const size_t units = sample.size() / 2;
    size_t controlsFirst = 0;
    size_t controlsSecond = 0;
    for (size_t unit = 0; unit < units; ++unit) {
        controlsFirst += IsRareControl(sample[2 * unit]) ? 1 : 0;
        controlsSecond += IsRareControl(sample[2 * unit + 1]) ? 1 : 0;
    }
    return controlsSecond > controlsFirst && controlsSecond * 10 >= units;
}

bool HasCharRefs(std::string_view text)
{
    for (size_t found = text.find("&#"); found != std::string_view::npos;
         found = text.find("&#", found + 2)) {
        const char next = found + 2 < text.size() ? text[found + 2] : '\0';
        if (next >= '0' && next <= '9')
            return true;
    }
    return false;
}

DetectedEncoding DetectPreviewEncoding(std::string_view text)
{
    std::string name(DefaultName);
    std::string declaration = MakeDeclaration(name);
    const std::string_view written = FindDeclaration(text);
    if (!IsBlank(written))
        declaration = LowerCase(std::string(written));
    const std::string declared = LowerCase(GetXmlAttribute(written, "encoding", false));
    if (!IsBlank(declared))
        name = declared;
    const BookEncoding encoding = MakeBookEncoding(std::move(name));
    return {encoding, encoding, std::move(declaration)};
}

DetectedEncoding FindBookEncoding(std::string_view text, std::string_view inputEncoding)
{
    if (IsUnicodeText(text)) {
        const BookEncoding unicode = MakeBookEncoding(std::string(UnicodeName));
        return {unicode, unicode, MakeDeclaration(UnicodeName)};
    }
    DetectedEncoding detected = DetectPreviewEncoding(text);
    if (inputEncoding != "original")
        detected.work = MakeBookEncoding(LowerCase(std::string(inputEncoding)));
    return detected;
}

void DetectBookEncoding(std::string_view text)
{
    DetectedEncoding detected = FindBookEncoding(text, InputEncoding.toStdString());
    WorkEncodingName = std::move(detected.work.name);
    WorkCodePage = detected.work.codePage;
    WorkMetaTag = std::move(detected.work.metaTag);
    FileEncodingName = std::move(detected.file.name);
    FileCodePage = detected.file.codePage;
    FileMetaTag = std::move(detected.file.metaTag);
    XmlDeclaration = std::move(detected.declaration);
}

void ConvertBookToUtf8(std::string& text)
{
    BookHasCharRefs = false;
    if (WorkCodePage == CodePageUtf8)
        return;
    BookHasCharRefs = HasCharRefs(text);
    if (BookHasCharRefs)
        return;
    if (WorkCodePage == CodePageUtf16)
        UnicodeToCodePage(text, CodePageUtf8);
    else
        CodePageToUtf8(text, WorkCodePage);
}

bool UnicodeToCodePage(std::string& text, int codePage)
{
    std::string_view bytes = text;
    if (bytes.starts_with(Utf16Mark))
        bytes.remove_prefix(Utf16Mark.size());
    const size_t units = bytes.size() / 2;
    std::string converted = EncodeText(DecodeBytes(bytes, CodePageUtf16), codePage);
    // The cut is intended; a longer result causes a parse error instead of passing as the whole book.
    converted.resize(std::min(converted.size(), units));
    text = std::move(converted);
    return units > 0;
}

void Utf8ToCodePage(std::string& text, int codePage)
{
    text = WithoutNul(Utf8ToBytes(text, codePage));
}

void CodePageToUtf8(std::string& text, int codePage)
{
    text = WithoutNul(BytesToUtf8(text, codePage));
}

SavedEncoding OutputEncodingInfo(std::string_view name)
{
    std::string known = LowerCase(std::string(name));
    const bool isKnown
        = known == "windows-1251" || known == "windows-1252" || known == "windows-1250" || known == "utf-8";
    if (!isKnown)
        known = "utf-8";
    std::string declaration = MakeDeclaration(known);
    const int32_t codePage = EncodingCodePage(known);
    return {std::move(known), std::move(declaration), codePage};
}

} // namespace vmk
