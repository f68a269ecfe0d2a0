#pragma once

#include "DisplayToBook.h"
#include "Seam.h"

#include <QString>

namespace vmk {

/// Whether nothing is in the display that could be saved. Without a window always.
[[nodiscard]] Seam<bool()>& IsBookEmptySeam();
[[nodiscard]] bool IsBookEmpty();

/// How the settings want a book written: style, encoding, in-line tags, and the open book's binary part.
/// Values of `OutputStyle` and `OutputEncoding` that are not on their lists are reset first.
[[nodiscard]] SaveLayout SaveLayoutOfSettings();

/// Writes the book in the display to a file, which then holds either all of the new book or the old one.
/// A book that is not well-formed is written too, one element per line, and the status says so.
/// \param quiet   leaves the status bar blank at the end
/// \param silent  no sound of success
/// \return true when the file was written. Failures are reported in the status bar, an empty display in a
/// box.
bool SaveBook(const QString& path, bool quiet, bool silent);

} // namespace vmk
