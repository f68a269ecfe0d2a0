#pragma once

#include "DisplayValues.h"
#include "Seam.h"

#include <QString>

#include <optional>
#include <string>

/// Queries and calls from the conversions and the saving of a book to the window that shows it.
namespace vmk {

/// Sets the caption of the main window or of the preview window. Without a window, does nothing.
[[nodiscard]] Seam<void(const QString& caption, bool preview)>& CaptionSeam();

/// Opens a page file in the display or in the preview. Without a window, does nothing.
[[nodiscard]] Seam<void(const QString& file, bool preview)>& NavigateSeam();

/// Returns true if the display contains nothing to save. Without a window, always true.
[[nodiscard]] Seam<bool()>& IsBookEmptySeam();
[[nodiscard]] bool IsBookEmpty();

/// Whether U+2039 and U+203A become `&lt;` and `&gt;` again. Validation keeps them, so that an error has the
/// same position in the text and in the display.
enum class AngleMarks
{
    Keep,
    Restore
};

/// Returns the XML text of the displayed page. Empty without a window.
[[nodiscard]] Seam<std::string(AngleMarks marks)>& DisplayTextSeam();

/// Returns the display values of a preview: the values in the controls of the settings dialog. Returns
/// nothing without the dialog: the settings apply.
[[nodiscard]] Seam<std::optional<DisplayValues>()>& PreviewValuesSeam();

} // namespace vmk
