#pragma once

#include "DisplayValues.h"
#include "KeptLines.h"
#include "OutlinePage.h"
#include "TreeLines.h"
#include "XmlInput.h"
#include "XmlSerializer.h"

#include <optional>
#include <string>
#include <string_view>

/// Converts the XML text of a book to the page of the display. Does not use any shared variable.
namespace vmk {

/// The values besides the text that the conversion to a page needs.
struct PageRequest
{
    DisplayValues values;
    InLineTagSet inLineTags;
    /// Replaces the text's own declaration in the page.
    std::string xmlDeclaration;
    /// UTF-8, or the code page of a text whose character references are not resolved yet.
    XmlEncoding encoding = XmlEncoding::utf8();
    /// Only the first declaration and the tags are rewritten: quoted ones are unchanged.
    bool keepsText = false;
};

/// Returns the text laid out as a tree, in UTF-8, after one pass of the parser. Returns nothing if the text,
/// either as it is or with its lines prepared, is not well-formed.
/// \param text  with protected angle brackets
[[nodiscard]] std::optional<XmlTreeText> TreeOfBook(const std::string& text, const PageRequest& request);

/// The same, with the lines of `KeptTreeLines`. The meaning of its elements decides which text stays
/// together.
/// \param losses  receives the changes that `TreeOfBook` would have made in the lines
/// \param moved   receives the number of elements within text that it would have put on their own lines
[[nodiscard]] std::optional<XmlTreeText> KeptTreeOfBook(const std::string& text, const PageRequest& request,
                                                        LineLosses& losses, size_t& moved);

/// Returns the page of a text that has a tree.
[[nodiscard]] std::string PageWithTree(const XmlTreeText& tree, const PageRequest& request);

/// The page of a text in common form, in pieces.
class PageOfLines
{
public:
    PageOfLines(const OutlinedText& outlined, const DisplayValues& displayValues);

    /// Appends the lines from `first` to before `last`, and the parts of the page before the first line and
    /// after the last one.
    void append(std::size_t first, std::size_t last, std::string& page) const;

private:
    const OutlinedText& text;
    const DisplayValues& values;
    OutlineDivs lines;
};

/// Returns the whole page of a text in common form.
[[nodiscard]] std::string PageWithOutline(const OutlinedText& text, const DisplayValues& values);

/// Returns a page without lines: its head, its style rules, and its body.
[[nodiscard]] std::string PageWithoutLines(const DisplayValues& values);

/// Returns the page of a text that has no tree: without margins, with line breaks only where its tags require
/// them.
/// \param text  with protected angle brackets, in UTF-8
[[nodiscard]] std::string PageWithoutTree(std::string text, const PageRequest& request);

/// Returns the page of such a text whose lines, each ended by CR, exist already; its ampersands are those of
/// a page.
[[nodiscard]] std::string PageOfPlainLines(const std::string& lines, const PageRequest& request);

/// Returns the style rules of the page, from `<HEAD>` to `</HEAD>`; empty without tag highlighting.
[[nodiscard]] std::string HeadBlock(const DisplayValues& values);

} // namespace vmk
