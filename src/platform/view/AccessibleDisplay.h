#pragma once

#include "DisplayDocument.h"

#include <vector>

namespace vmk {

class DisplayView;

/// Registers displays with screen readers, as editable text. One call per process is sufficient.
void InstallAccessibleDisplay();

/// The characters in which two runs of lines differ; a line break counts as one.
struct CharacterChange
{
    int offset = 0; ///< From the beginning of the first line.
    QString removed;
    QString inserted;
};
[[nodiscard]] CharacterChange ChangeBetween(const std::vector<LinePtr>& removed,
                                            const std::vector<LinePtr>& inserted);

/// Reports to screen readers which characters changed when lines, from `first` on, were replaced by others.
void ReportTextChange(DisplayView& view, int first, const std::vector<LinePtr>& removed,
                      const std::vector<LinePtr>& inserted);
/// Reports the position of caret and selection to screen readers.
void ReportCaretMove(DisplayView& view);

} // namespace vmk
