// Any bytes as a picture, or as a book whose pictures are listed, removed and replaced. The first byte
// selects.

#include "BinaryElements.h"
#include "BookImages.h"
#include "PictureInfo.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

void CheckPicture(std::string_view bytes)
{
    const vmk::PictureInfo info = vmk::ReadPictureInfo(bytes);
    Require(info.width >= 0 && info.height >= 0);
    // A picture without a fault has a size.
    const bool isKnown = info.format != vmk::PictureFormat::Unknown;
    Require(!isKnown || !info.problem.isEmpty() || (info.width > 0 && info.height > 0));
}

void CheckBook(std::string_view bytes)
{
    const vmk::BookBytes book = vmk::ReadableBook(std::string(bytes));
    std::string part(vmk::BinaryPartOf(book.bytes));
    const vmk::BookResources found = vmk::ListResources(book);
    for (const vmk::BookResource& resource : found.resources) {
        Require(resource.bytes >= 0 && resource.uses >= 0);
        (void)vmk::DecodingProblem(resource);
    }
    std::size_t from = 0;
    std::size_t elements = 0;
    while (const std::optional<vmk::BinaryTag> tag = vmk::NextBinaryTag(part, from)) {
        Require(tag->end >= from && tag->end < part.size());
        const std::optional<vmk::BinaryElement> element = vmk::ElementOfTag(part, *tag);
        if (!element)
            break;
        Require(element->next > tag->end);
        from = element->next;
        ++elements;
    }
    Require(elements <= bytes.size());
    // Each removal makes the part shorter, until there is nothing to remove.
    std::size_t length = part.size();
    while (vmk::RemoveBinaryElement(part, "a")) {
        Require(part.size() < length);
        length = part.size();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    if (data[0] % 2 == 0)
        CheckPicture(bytes);
    else
        CheckBook(bytes);
    return 0;
}
