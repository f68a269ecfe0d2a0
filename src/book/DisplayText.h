#pragma once

#include "DisplayToBook.h"

#include <QtGlobal>

#include <optional>
#include <string>

namespace vmk {

class DisplayDocument;

/// Returns the XML text that a document shows: the result of `TextOfPage` for its saved page, with ampersands
/// and guards resolved (`DisplayCharacters.h`).
[[nodiscard]] std::string TextOfDisplay(const DisplayDocument& document, AngleMarks marks);

/// Converts a position in the text of a document to a position in the document.
/// \param textByte  bytes from the start of `TextOfDisplay(document, AngleMarks::Keep)`
/// \return UTF-16 units from the start of the document; a line break counts as one
[[nodiscard]] qsizetype DisplayOffset(const DisplayDocument& document, qsizetype textByte);

/// Returns the result of `TextOfPage` for the saved page, except for the text that it removes before a
/// declaration, directly from the document's lines, in a fraction of the time. Returns nothing if the rules
/// of a page could read the document differently: it has angle brackets in its tags, line ends within its
/// lines, or half a surrogate pair next to a tag.
[[nodiscard]] std::optional<std::string> TextOfLines(const DisplayDocument& document, AngleMarks marks);

} // namespace vmk
