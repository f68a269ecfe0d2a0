#pragma once

#include "DisplayToBook.h"

#include <QtGlobal>

#include <optional>
#include <string>

namespace vmk {

class DisplayDocument;

/// The XML text that a document shows: what `TextOfPage` makes of its saved page, with ampersands and guards
/// resolved (`DisplayCharacters.h`).
[[nodiscard]] std::string TextOfDisplay(const DisplayDocument& document, AngleMarks marks);

/// The place in a document of a place in its text.
/// \param textByte  bytes from the start of `TextOfDisplay(document, AngleMarks::Keep)`
/// \return UTF-16 units from the document's start, a line break counting as one
[[nodiscard]] int DisplayOffset(const DisplayDocument& document, qsizetype textByte);

/// What `TextOfPage` makes of the saved page, but for what it drops before a declaration, straight from the
/// document's lines, in a fraction of the time. Nothing for a document that the
/// page's rules may read otherwise than it stands: with angle brackets in its tags, line ends within its
/// lines, or half a surrogate pair beside a tag.
[[nodiscard]] std::optional<std::string> TextOfLines(const DisplayDocument& document, AngleMarks marks);

} // namespace vmk
