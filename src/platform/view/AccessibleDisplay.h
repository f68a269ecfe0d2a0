#pragma once

#include "DisplayDocument.h"

#include <vector>

namespace vmk {

class DisplayView;

/// Makes displays known to screen readers, as editable text. Once per process is enough.
void InstallAccessibleDisplay();

/// The characters in which two runs of lines differ, a line break counting as one.
struct CharacterChange
{
    int offset = 0; ///< From the first line's beginning.
    QString removed;
    QString inserted;
};
[[nodiscard]] CharacterChange ChangeBetween(const std::vector<LinePtr>& removed,
                                            const std::vector<LinePtr>& inserted);

/// Tells screen readers which characters changed when lines, from `first` on, gave way to others.
void ReportTextChange(DisplayView& view, int first, const std::vector<LinePtr>& removed,
                      const std::vector<LinePtr>& inserted);
/// Tells screen readers where caret and selection stand.
void ReportCaretMove(DisplayView& view);

} // namespace vmk
