#include "XmlReference.h"

#include <charconv>
#include <string>

namespace vmk {

namespace {

constexpr bool IsNamePart(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':'
        || c == '-' || c == '.' || static_cast<unsigned char>(c) >= 0x80;
}

} // namespace

std::optional<XmlReference> NumericReference(std::string_view text)
{
    if (!text.starts_with("&#"))
        return std::nullopt;
    const bool hexadecimal = text.size() > 2 && text[2] == 'x';
    const char* const digits = text.data() + (hexadecimal ? 3 : 2);
    const char* const end = text.data() + text.size();
    XmlReference reference{};
    const auto [stop, problem] = std::from_chars(digits, end, reference.character, hexadecimal ? 16 : 10);
    if (problem != std::errc() || stop == end || *stop != ';')
        return std::nullopt;
    reference.length = static_cast<size_t>(stop + 1 - text.data());
    return reference;
}

std::optional<XmlReference> AnyReference(std::string_view text)
{
    if (text.starts_with("&#"))
        return NumericReference(text);
    size_t end = 1;
    while (end < text.size() && IsNamePart(text[end]))
        ++end;
    if (end == 1 || end >= text.size() || text[end] != ';')
        return std::nullopt;
    return XmlReference{end + 1, 0};
}

bool IsTagReference(std::string_view afterAmpersand)
{
    constexpr std::string_view Repeated = "amp;";
    while (afterAmpersand.starts_with(Repeated))
        afterAmpersand.remove_prefix(Repeated.size());
    if (afterAmpersand.starts_with("quot;") || afterAmpersand.starts_with("apos;"))
        return true;
    if (!afterAmpersand.starts_with('#'))
        return false;
    // Seven digits are sufficient for any character.
    constexpr size_t LongestReference = 12;
    return NumericReference('&' + std::string(afterAmpersand.substr(0, LongestReference))).has_value();
}

} // namespace vmk
