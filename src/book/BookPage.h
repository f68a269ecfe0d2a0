#pragma once

#include "DisplayValues.h"
#include "TreeLines.h"
#include "XmlInput.h"
#include "XmlSerializer.h"

#include <optional>
#include <string>
#include <string_view>

/// From a book's XML text to the page of the display, without looking at any shared variable.
namespace vmk {

/// What the making of a page needs to know besides the text.
struct PageRequest
{
    DisplayValues values;
    InLineTagSet inLineTags;
    /// Stands in the page in place of the text's own declaration.
    std::string xmlDeclaration;
    /// UTF-8, or the code page of a text whose references have not been resolved yet.
    XmlEncoding encoding = XmlEncoding::utf8();
};

/// The text laid out as a tree, in UTF-8, by one pass of the parser. Nothing if the text, as it is or with
/// its lines prepared, is not well-formed. \param text  with protected angle brackets
[[nodiscard]] std::optional<XmlTreeText> TreeOfBook(const std::string& text, const PageRequest& request);

/// The page of a text with a tree.
[[nodiscard]] std::string PageWithTree(const XmlTreeText& tree, const PageRequest& request);

/// The page of a text without one: no margins, no line that the text's tags do not call for.
/// \param text  with protected angle brackets, in UTF-8
[[nodiscard]] std::string PageWithoutTree(std::string text, const PageRequest& request);

/// The style rules of the page, from `<HEAD>` to `</HEAD>`; empty without tag highlighting.
[[nodiscard]] std::string HeadBlock(const DisplayValues& values);

} // namespace vmk
