#pragma once

#include "DisplayLines.h"

#include <vector>

/// The old and new lines of an edit without their common ends: the part that an undo step in a very long line
/// stores.
namespace vmk {

/// The common beginning of the first lines and the common end of the last lines of two runs of lines.
struct CommonEnds
{
    qsizetype frontText = 0;
    std::size_t frontMarks = 0;
    qsizetype backText = 0;
    std::size_t backMarks = 0; ///< Counted from the end of the line.

    friend bool operator==(const CommonEnds&, const CommonEnds&) = default;
};

/// \param before, after  not empty
[[nodiscard]] CommonEnds CommonEndsOf(const std::vector<LinePtr>& before, const std::vector<LinePtr>& after);

/// Returns the lines of one side without the common ends; only `WithEnds` can use them.
[[nodiscard]] std::vector<LinePtr> WithoutEnds(const std::vector<LinePtr>& lines, const CommonEnds& ends);

/// Restores the lines of one side from the result of `WithoutEnds` and the other side's lines.
/// \param otherFirst, otherLast  the first and the last line of the other side
[[nodiscard]] std::vector<LinePtr> WithEnds(const std::vector<LinePtr>& trimmed, const CommonEnds& ends,
                                            const Line& otherFirst, const Line& otherLast);

} // namespace vmk
