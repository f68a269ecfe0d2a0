#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

/// The attributes that a display paints, wherever their text occurs: in tags, texts and comments.
namespace vmk {

/// The names of attributes whose name and value are painted.
inline constexpr std::array<std::string_view, 9> PaintedAttributes
    = {"id", "href", "type", "version", "encoding", "match", "value", "name", "number"};
/// Those of which only the name is painted; the value keeps the colour of the tag.
inline constexpr std::array<std::string_view, 2> PaintedNamespaces = {"xmlns", "xmlns:l"};

struct PaintedName
{
    std::string_view name; ///< with the blank or the colon before it, and the equals sign
    bool withValue = false;
};

/// Returns the painted name at the end of a text that ends before a double quote.
inline std::optional<PaintedName> PaintedNameAtEnd(std::string_view text)
{
    if (!text.ends_with('='))
        return std::nullopt;
    const std::string_view rest = text.substr(0, text.size() - 1);
    const auto painted = [text, rest](std::string_view name, bool withValue) -> std::optional<PaintedName> {
        if (rest.size() <= name.size() || !rest.ends_with(name))
            return std::nullopt;
        const std::size_t before = rest.size() - name.size() - 1;
        const bool matches = rest[before] == ' ' || (rest[before] == ':' && name == "href");
        return matches ? std::optional(PaintedName{text.substr(before), withValue}) : std::nullopt;
    };
    for (const std::string_view name : PaintedAttributes) {
        if (const auto found = painted(name, true))
            return found;
    }
    for (const std::string_view name : PaintedNamespaces) {
        if (const auto found = painted(name, false))
            return found;
    }
    return std::nullopt;
}

} // namespace vmk
