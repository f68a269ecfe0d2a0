#pragma once

#include "DisplayToBook.h"

#include <optional>
#include <string>

namespace vmk {

class DisplayDocument;

/// Returns the XML text that a document shows: identical to the result of `TextOfPage` for its saved page.
[[nodiscard]] std::string TextOfDisplay(const DisplayDocument& document, AngleMarks marks);

/// Returns the same text directly from the document's lines, in a fraction of the time. Returns nothing if
/// the rules of a page could read the document differently: it has angle brackets in its tags, line ends
/// within its lines, or half a surrogate pair next to a tag.
[[nodiscard]] std::optional<std::string> TextOfLines(const DisplayDocument& document, AngleMarks marks);

} // namespace vmk
