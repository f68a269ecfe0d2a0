#pragma once

#include "DisplayDocument.h"

#include <vector>

/// Old and new lines of an edit without what they share: what a step of undo in a very long line keeps.
namespace vmk {

/// What two runs of lines share at the front of their first lines and at the back of their last ones.
struct CommonEnds
{
    qsizetype frontText = 0;
    std::size_t frontMarks = 0;
    qsizetype backText = 0;
    std::size_t backMarks = 0; ///< Alike as counted from the line's end.

    friend bool operator==(const CommonEnds&, const CommonEnds&) = default;
};

/// @param before, after neither is empty.
[[nodiscard]] CommonEnds commonEnds(const std::vector<LinePtr>& before, const std::vector<LinePtr>& after);

/// The lines of one side without the ends; only `withEnds` can make use of them.
[[nodiscard]] std::vector<LinePtr> withoutEnds(const std::vector<LinePtr>& lines, const CommonEnds& ends);

/// The lines of one side again, from what `withoutEnds` left of them and the other side's lines.
/// @param otherFirst, otherLast the first and the last line of the other side.
[[nodiscard]] std::vector<LinePtr> withEnds(const std::vector<LinePtr>& trimmed, const CommonEnds& ends,
                                            const Line& otherFirst, const Line& otherLast);

} // namespace vmk
