#pragma once

#include <string>
#include <string_view>

/// XML declarations at any position in a text, including those in comments and CDATA sections.
namespace vmk {

/// The beginning of a declaration.
inline constexpr std::string_view XmlDeclarationStart = "<?xml version";

/// Returns the position of the first declaration at or after `from`, ignoring case; npos if there is none.
[[nodiscard]] size_t FindXmlDeclaration(std::string_view text, size_t from);

/// Removes the text before the declaration of a display's text. Only the first tag counts as the declaration:
/// for a later one, as in a comment, this would remove the book.
void DropBeforeDeclaration(std::string& text);

/// Replaces every declaration at or after `from`, each up to the next ">".
[[nodiscard]] std::string ReplaceXmlDeclarations(std::string text, size_t from, std::string_view declaration);

} // namespace vmk
