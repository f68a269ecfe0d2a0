#pragma once

#include "DisplayToBook.h"

#include <optional>
#include <string>

namespace vmk {

class DisplayDocument;

/// The XML text that a document shows: byte for byte what `TextOfPage` makes of its saved page.
[[nodiscard]] std::string TextOfDisplay(const DisplayDocument& document, AngleMarks marks);

/// The same straight from the document's lines, in a fraction of the time. Nothing for a document that the
/// page's rules may read otherwise than it stands: with angle brackets in its tags, line ends within its
/// lines, or half a surrogate pair beside a tag.
[[nodiscard]] std::optional<std::string> TextOfLines(const DisplayDocument& document, AngleMarks marks);

} // namespace vmk
