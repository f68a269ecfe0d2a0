#pragma once

#include "TreeLines.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// The number of changes that `TreeLines` makes to a text and `KeptTreeLines` does not.
struct LineLosses
{
    size_t joinedWords = 0; ///< line ends that separate two words
    size_t tornTexts = 0; ///< line ends inserted into or next to text, or into a comment, a value or similar
    size_t mergedAttributes = 0; ///< line ends that separate the words of a tag
    size_t valueBlanks = 0; ///< runs of blanks in attribute values

    friend bool operator==(const LineLosses&, const LineLosses&) = default;
};

/// Whether the mark-up beside a text may be a part of the words there.
struct TextSides
{
    bool wordBefore = false;
    bool wordAfter = false;
};

/// Appends a text to a joined one, with its lines joined: a line end between two words becomes a blank.
/// \return the number of such line ends
size_t AppendJoinedText(std::string_view text, TextSides sides, std::string& joined);

/// Appends a comment, a CDATA section, an instruction or a document type in the same way.
size_t AppendJoinedMarkup(std::string_view markup, std::string& joined);

/// Returns the names of the elements that contain text in this format, including the in-line elements.
[[nodiscard]] std::vector<std::string> TextElementNames(const InLineTagSet& inLineTags);

/// Like `TreeLines`, with the same result if that changes nothing but layout. A line end that separates two
/// words becomes a blank. No line ends are inserted within or next to text, or within a comment, a CDATA
/// section, an instruction or a value; an element next to text counts as in-line. The blanks of a value are
/// kept, all except the first as references.
/// \param losses  the changes that `TreeLines` would have made are added to it
[[nodiscard]] std::string KeptTreeLines(std::string_view text, std::string_view lineEnd,
                                        const InLineTagSet& inLineTags, LineLosses& losses);

} // namespace vmk
