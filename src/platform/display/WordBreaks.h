#pragma once

#include "DisplayDocument.h"

/// The start and end of words. A word is a run of letters, digits and underscores, or a run of other signs,
/// with the blanks after it; a line break is a separate word.
namespace vmk {

/// Letters, combining marks, digits and the underscore.
[[nodiscard]] bool isWordCharacter(QChar c);

/// Returns the next word start after a position, or the line's end, or the next line's start; at the end of
/// the document, the position itself.
[[nodiscard]] Position nextWordStart(const DisplayDocument& document, Position place);
/// The same towards the start of the document.
[[nodiscard]] Position previousWordStart(const DisplayDocument& document, Position place);

/// Returns the start of the word around a position; a position between two words is unchanged.
[[nodiscard]] Position wordStartAt(const DisplayDocument& document, Position place);
/// Returns the end of the word around a position. A position between two words is unchanged, unless `next` is
/// true: then the result is the end of the word that begins there.
[[nodiscard]] Position wordEndAt(const DisplayDocument& document, Position place, bool next);

} // namespace vmk
