#pragma once

#include <QString>
#include <QStringView>

#include <cstddef>
#include <string>
#include <string_view>

/// Extracts pieces of mark-up from plain text, without a parser.
namespace vmk {

/// The options of `ExtractBetween`.
struct ExtractOptions
{
    /// Fills `Extraction::plain`.
    bool makePlain = false;
    /// Ignores the case of A to Z.
    bool ignoreCase = false;
    /// Finds the complete element if it contains elements of the same name.
    bool balance = false;
    /// Trims the plain text and collapses its blanks.
    bool tidy = false;
};

/// Positions in bytes, from 0; npos if nothing was found.
struct Extraction
{
    size_t startPos = std::string_view::npos;
    /// After the end tag; npos also if the start tag has no end tag.
    size_t endPos = std::string_view::npos;
    /// From the start tag to the end tag inclusive, a view of the given text; empty if either tag is missing.
    std::string_view found;
    /// `found` with each tag, "&nbsp;" and non-breaking space replaced by a blank.
    std::string plain;
};

/// Searches from `startPos` for the start tag, and from there for the end tag. With `balance`, the end tag is
/// the first one up to which both tags occur equally often; a start tag then counts with any attributes. Tags
/// are compared literally. In UTF-8 text the non-breaking space is U+00A0, otherwise it is the byte 160.
[[nodiscard]] Extraction ExtractBetween(std::string_view text, std::string_view startTag,
                                        std::string_view endTag, size_t startPos = 0,
                                        ExtractOptions options = {});

/// Returns the value of an attribute in a tag, or of a property in a style; empty if there is none. Intended
/// for one tag: only the first occurrence of the name counts, even as the end of a longer name (`href` finds
/// `l:href`), and blanks around the equals sign hide the value. Quotes and "%" are removed from the value.
/// "file:///" URLs become paths with "\", names with "href" return the part after the last "#", and height
/// and width are returned without "px".
[[nodiscard]] std::string GetXmlAttribute(std::string_view tagText, std::string_view name,
                                          bool caseSensitive);
[[nodiscard]] QString GetXmlAttribute(QStringView tagText, QStringView name, bool caseSensitive);

} // namespace vmk
