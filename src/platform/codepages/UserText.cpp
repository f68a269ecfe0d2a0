#include "UserText.h"

#include "CodePages.h"

namespace vmk {

QString DecodeUserText(std::string_view bytes)
{
    return DecodeBytes(bytes, IsValidUtf8(bytes) ? CodePageUtf8 : CodePageSystem);
}

std::string EncodeUserText(QStringView text)
{
    std::string bytes = EncodeText(text, CodePageSystem);
    return DecodeUserText(bytes) == text ? bytes : EncodeText(text, CodePageUtf8);
}

} // namespace vmk
