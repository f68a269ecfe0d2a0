#pragma once

#include "DisplayDocument.h"

/// Where words begin and end. A word is a run of letters, digits and the like, or a run of other signs,
/// with the blanks behind it; a line break is a word by itself.
namespace vmk {

/// Letters, marks on them, digits and the underscore.
[[nodiscard]] bool isWordCharacter(QChar c);

/// The next word start behind a place, or the line's end, or the next line's start; at the document's end
/// the place itself.
[[nodiscard]] Position nextWordStart(const DisplayDocument& document, Position place);
/// The same towards the document's start.
[[nodiscard]] Position previousWordStart(const DisplayDocument& document, Position place);

/// The start of the word that a place lies in; a place between two words stays.
[[nodiscard]] Position wordStartAt(const DisplayDocument& document, Position place);
/// The end of the word that a place lies in; a place between two words stays, unless `next`: then it is the
/// end of the word that begins there.
[[nodiscard]] Position wordEndAt(const DisplayDocument& document, Position place, bool next);

} // namespace vmk
