#pragma once

#include "DisplayDocument.h"

#include <utility>

/// The start and end of words. A word is a run of word characters, or a run of other signs, with the blanks
/// after it; a line break is a separate word.
namespace vmk {

/// Letters, combining marks, digits, the underscore and the soft hyphen.
[[nodiscard]] bool IsWordCharacter(QChar c);

/// Returns the next word start after a position, or the line's end, or the next line's start; at the end of
/// the document, the position itself.
[[nodiscard]] Position NextWordStart(const DisplayDocument& document, Position place);
/// The same towards the start of the document.
[[nodiscard]] Position PreviousWordStart(const DisplayDocument& document, Position place);

/// Returns the start of the word around a position; a position between two words is unchanged.
[[nodiscard]] Position WordStartAt(const DisplayDocument& document, Position place);
/// Returns the end of the word around a position. A position between two words is unchanged, unless `next` is
/// true: then the result is the end of the word that begins there.
[[nodiscard]] Position WordEndAt(const DisplayDocument& document, Position place, bool next);

/// Returns the run of letters, of other signs or of blanks around a position, without the blanks after it;
/// between two runs, the letters. Empty in an empty line.
[[nodiscard]] std::pair<Position, Position> WordAround(const DisplayDocument& document, Position place);

} // namespace vmk
