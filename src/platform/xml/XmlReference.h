#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// Character references in plain text.
namespace vmk {

struct XmlReference
{
    size_t length; ///< from "&" to ";"
    uint32_t character; ///< 0 for a reference by name
};

/// The reference by number at the front of a text.
[[nodiscard]] std::optional<XmlReference> NumericReference(std::string_view text);

/// The reference at the front of a text, by name or by number.
[[nodiscard]] std::optional<XmlReference> AnyReference(std::string_view text);

/// True if the text after an ampersand reads as a reference within a tag of the display: any number of
/// "amp;", and then "quot;", "apos;" or a number with its semicolon.
[[nodiscard]] bool IsTagReference(std::string_view afterAmpersand);

} // namespace vmk
