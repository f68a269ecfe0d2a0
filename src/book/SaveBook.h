#pragma once

#include "DisplayToBook.h"

#include <QString>

namespace vmk {

/// Returns the layout that the settings request: style, encoding, in-line tags, and the binary part of the
/// open book. Resets `OutputStyle` and `OutputEncoding` first if their values are not in their lists.
[[nodiscard]] SaveLayout SaveLayoutOfSettings();

/// What a successful save shows and plays. Failures are always reported.
enum class SaveReport
{
    Full, ///< a status text and a sound
    WithoutSound, ///< the status text alone
    None ///< the status bar is blank at the end
};

/// Writes the displayed book to a file. The file then contains either the complete new book or the old one. A
/// book that is not well-formed is written too, one element per line, and the status bar reports it.
/// \return true if the file was written. Failures are reported in the status bar, an empty display in a box.
bool SaveBook(const QString& path, SaveReport report = SaveReport::Full);

} // namespace vmk
