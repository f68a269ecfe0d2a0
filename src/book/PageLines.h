#pragma once

#include "DisplayValues.h"

#include <string>
#include <string_view>

namespace vmk {

struct XmlTreeText;

/// Paints the attributes of a piece of display text: names that are on the list, with the blank or colon
/// before them and the equals sign, in `FONT` of class n, their quoted values in class v. The values of
/// `xmlns` and `xmlns:l` stay unpainted, which is meant. Works on the whole text, tags or not.
void PaintAttributes(std::string& text);

/// The display's lines, `DIV` by `DIV`, of a text that the parser has laid out as a tree.
/// \param tree         begins with `declaration` if the book has an XML declaration
/// \param declaration  takes the place of any further "<?xml version" of the text
/// \param page         the lines go behind what stands there
void AppendTreeLines(const XmlTreeText& tree, std::string_view declaration, const DisplayValues& values,
                     std::string& page);

/// The display's lines of a text that does not parse: without margins.
/// \param text  lines end with CR
void AppendPlainLines(std::string_view text, const DisplayValues& values, std::string& page);

} // namespace vmk
