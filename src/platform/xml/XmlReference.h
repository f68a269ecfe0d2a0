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

/// Returns the numeric reference at the beginning of a text.
[[nodiscard]] std::optional<XmlReference> NumericReference(std::string_view text);

/// Returns the named or numeric reference at the beginning of a text.
[[nodiscard]] std::optional<XmlReference> AnyReference(std::string_view text);

/// Returns true if the text after an ampersand is a reference within a tag of the display: any number of
/// "amp;", then "quot;", "apos;" or a number with its semicolon.
[[nodiscard]] bool IsTagReference(std::string_view afterAmpersand);

} // namespace vmk
