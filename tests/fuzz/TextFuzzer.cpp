// Any bytes as the text of a book: encodings are detected and converted, tags extracted; fast code agrees
// with plain code.

#include "CodePages.h"
#include "Encodings.h"
#include "PlainText.h"
#include "TagFunctions.h"
#include "TextFunctions.h"

#include <cstdint>
#include <cstdlib>

namespace {

void Check(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckConversions(const std::string& bytes)
{
    const QString text = vmk::DecodeBytes(bytes, vmk::CodePageUtf8);
    Check(vmk::IsValidUtf8(vmk::BytesToUtf8(bytes, vmk::CodePageUtf8)));
    for (const int page : {1250, 1251, 1252}) {
        Check(vmk::Utf8ToBytes(vmk::BytesToUtf8(bytes, page), page) == bytes);
        Check(vmk::Utf8ToBytes(bytes, page) == vmk::EncodeText(text, page));
    }
    std::string utf16 = bytes;
    vmk::UnicodeToCodePage(utf16, 1251);
    Check(utf16.size() <= bytes.size() / 2);
}

void CheckTags(const std::string& bytes)
{
    const vmk::ExtractOptions options{.makePlain = true, .ignoreCase = true, .balance = true, .tidy = true};
    const vmk::Extraction found = vmk::ExtractBetween(bytes, "<a>", "</a>", 0, options);
    if (!found.found.empty())
        Check(bytes.substr(found.startPos, found.endPos - found.startPos) == found.found);
    for (const char* name : {"href", "width", "id"})
        Check(vmk::GetXmlAttribute(bytes, name, false).find('"') == std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    CheckConversions(bytes);
    CheckTags(bytes);
    const vmk::DetectedEncoding encoding = vmk::FindBookEncoding(bytes, "original");
    Check(encoding.work == encoding.file);
    Check(vmk::CollapseRepeats(bytes, "\r\n") == vmk::reference::CollapseRepeats(bytes, "\r\n", ""));
    Check(vmk::CollapseRepeats(bytes, "a", " ", true)
          == vmk::reference::CollapseRepeats(bytes, "a", " ", true));
    Check(vmk::IsBlank(bytes, true) == vmk::reference::IsBlank(bytes, true));
    return 0;
}
