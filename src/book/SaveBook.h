#pragma once

#include "DisplayToBook.h"
#include "MissingCharacters.h"
#include "Seam.h"

#include <QString>

#include <string>

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

/// Asked about characters that the encoding to save in lacks: true to save in UTF-8.
[[nodiscard]] Seam<bool(const MissingCharacters& missing, const QString& encoding)>& MissingCharactersSeam();

/// The file of a display's text, written as the settings want it. Before characters are lost to the encoding
/// `MissingCharactersSeam` is asked.
[[nodiscard]] BookFile FileOfDisplayText(std::string text);

/// Writes the displayed book to a file. The file then contains either the complete new book or the old one. A
/// book that is not well-formed is written too, one element per line, and the status bar reports it.
/// \return true if the file was written. Failures are reported in the status bar, an empty display in a box.
bool SaveBook(const QString& path, SaveReport report = SaveReport::Full);

} // namespace vmk
