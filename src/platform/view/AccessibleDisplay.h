#pragma once

namespace vmk {

class DisplayView;

/// Makes displays known to screen readers, as editable text. Once per process is enough.
void InstallAccessibleDisplay();

/// Tells screen readers that lines changed: `count` lines from `first` on are new.
void ReportTextChange(DisplayView& view, int first, int count);
/// Tells screen readers where caret and selection stand.
void ReportCaretMove(DisplayView& view);

} // namespace vmk
