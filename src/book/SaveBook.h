#pragma once

#include "DisplayToBook.h"
#include "Seam.h"

#include <QString>

namespace vmk {

/// Returns true if the display contains nothing to save. Without a window, always true.
[[nodiscard]] Seam<bool()>& IsBookEmptySeam();
[[nodiscard]] bool IsBookEmpty();

/// Returns the layout that the settings request: style, encoding, in-line tags, and the binary part of the
/// open book. Resets `OutputStyle` and `OutputEncoding` first if their values are not in their lists.
[[nodiscard]] SaveLayout SaveLayoutOfSettings();

/// Writes the displayed book to a file. The file then contains either the complete new book or the old one. A
/// book that is not well-formed is written too, one element per line, and the status bar reports it.
/// \param quiet   clears the status bar at the end
/// \param silent  plays no sound on success
/// \return true if the file was written. Failures are reported in the status bar, an empty display in a box.
bool SaveBook(const QString& path, bool quiet, bool silent);

} // namespace vmk
