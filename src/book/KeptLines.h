#pragma once

#include "TreeLines.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// How often `TreeLines` changes a text where `KeptTreeLines` does not.
struct LineLosses
{
    size_t joinedWords = 0; ///< line ends that part two words
    size_t tornTexts = 0; ///< line ends put into or beside text, or into a comment, a value and the like
    size_t mergedAttributes = 0; ///< line ends that part the words of a tag
    size_t valueBlanks = 0; ///< runs of blanks in attribute values

    friend bool operator==(const LineLosses&, const LineLosses&) = default;
};

/// Names of the elements that hold text by the format, with the in-line elements among them.
[[nodiscard]] std::vector<std::string> TextElementNames(const InLineTagSet& inLineTags);

/// As `TreeLines`, and equal to it wherever that changes nothing but layout. A line end that parts two words
/// becomes a blank. No line ends within text, or beside it, or within a comment, a CDATA section, an
/// instruction or a value; an element with text beside it counts as in-line. Blanks of a value stay, all but
/// the first as references.
/// \param losses  what `TreeLines` would have changed is added to it
[[nodiscard]] std::string KeptTreeLines(std::string_view text, std::string_view lineEnd,
                                        const InLineTagSet& inLineTags, LineLosses& losses);

} // namespace vmk
