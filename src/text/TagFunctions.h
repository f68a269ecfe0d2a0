#pragma once

#include <QString>
#include <QStringView>

#include <cstddef>
#include <string>
#include <string_view>

/// Picks pieces of mark-up out of plain text, without a parser.
namespace vmk {

struct ExtractOptions
{
    /// Make `Extraction::plain`.
    bool makePlain = false;
    /// A to Z have no case.
    bool ignoreCase = false;
    /// An element nested in itself is found whole.
    bool balance = false;
    /// The plain text is trimmed and its blanks are collapsed.
    bool tidy = false;
};

/// Positions in bytes, from 0; npos where nothing was found.
struct Extraction
{
    size_t startPos = std::string_view::npos;
    /// Behind the end tag. npos also when the start tag has no end tag.
    size_t endPos = std::string_view::npos;
    /// From the start tag to behind the end tag, a part of the text given; empty when either is missing.
    std::string_view found;
    /// `found` with each tag, "&nbsp;" and non-breaking space turned into a blank.
    std::string plain;
};

/// Looks from `startPos` on for the start tag and from there for the end tag. With `balance` the end tag is
/// the first up to which both tags occur equally often; a start tag then counts with whatever attributes.
/// Tags are taken literally. In text that is UTF-8 the non-breaking space is U+00A0, else it is the byte 160.
[[nodiscard]] Extraction ExtractBetween(std::string_view text, std::string_view startTag,
                                        std::string_view endTag, size_t startPos = 0,
                                        ExtractOptions options = {});

/// The value of an attribute in a tag's text, or of a property in a style; empty if there is none. Meant for
/// one tag: only the first occurrence of the name counts, also as the tail of a longer name (`href` finds
/// `l:href`), and blanks round the equals sign hide the value. Quotes and "%" are taken out of the value,
/// "file:///" URLs become paths with "\", names with "href" give what follows the last "#", and height and
/// width come without "px".
[[nodiscard]] std::string GetXmlAttribute(std::string_view tagText, std::string_view name,
                                          bool caseSensitive);
[[nodiscard]] QString GetXmlAttribute(QStringView tagText, QStringView name, bool caseSensitive);

} // namespace vmk
