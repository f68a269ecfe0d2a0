#pragma once

#include <string>
#include <string_view>

/// XML declarations in a text, wherever they stand: in a comment or a CDATA section too.
namespace vmk {

/// How a declaration begins.
inline constexpr std::string_view XmlDeclarationStart = "<?xml version";

/// Where one stands at or behind `from`, ignoring case; npos if nowhere.
[[nodiscard]] size_t FindXmlDeclaration(std::string_view text, size_t from);

/// Drops what stands before the declaration of a display's text. Only the first tag is one: another further
/// on, as in a comment, must not take the book away.
void DropBeforeDeclaration(std::string& text);

/// Replaces every one at or behind `from`, each up to the next ">".
[[nodiscard]] std::string ReplaceXmlDeclarations(std::string text, size_t from, std::string_view declaration);

} // namespace vmk
