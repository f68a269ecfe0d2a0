#pragma once

#include "DisplayValues.h"

#include <string>
#include <string_view>

namespace vmk {

struct XmlTreeText;

/// Marks up the attributes in a piece of display text. Each name on the list, with the blank or colon before
/// it and the equals sign, becomes a `FONT` of class n; its quoted value becomes one of class v. The values
/// of `xmlns` and `xmlns:l` are not painted, which is intended. Applies to the whole text, not only to tags.
void PaintAttributes(std::string& text);

/// The treatment of XML declarations in a comment or a CDATA section.
enum class QuotedDeclarations
{
    Keep,
    Replace
};

/// Whether the characters 3 and 4 of a text mark a comment, as within the conversion, or belong to the text.
enum class ControlCharacters
{
    Keep,
    Mark
};

/// Appends the display lines, one `DIV` each, of a text that the parser has laid out as a tree.
/// \param tree         begins with `declaration` if the book has an XML declaration
/// \param declaration  replaces any further "<?xml version" of the text
/// \param page         the lines are appended to it
void AppendTreeLines(const XmlTreeText& tree, std::string_view declaration, const DisplayValues& values,
                     std::string& page, QuotedDeclarations quoted = QuotedDeclarations::Replace);

/// Appends the display lines of a text that does not parse, without margins.
/// \param text  lines end with CR; its ampersands are those of a page
void AppendPlainLines(std::string_view text, const DisplayValues& values, std::string& page,
                      ControlCharacters controls = ControlCharacters::Mark);

} // namespace vmk
