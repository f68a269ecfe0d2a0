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

/// The report of a successful save. Failures are always reported.
enum class SaveReport
{
    Full, ///< a status text and a sound
    WithoutSound, ///< only the status text
    None ///< the status bar is cleared at the end
};

/// Called if the output encoding lacks characters. Without a window they are substituted.
[[nodiscard]] Seam<MissingAnswer(const MissingCharacters& missing, const QString& encoding)>&
MissingCharactersSeam();

/// Returns the file of a display's text, according to the settings. Calls `MissingCharactersSeam` before
/// characters are lost to the encoding.
[[nodiscard]] BookFile FileOfDisplayText(std::string text);

/// Writes the displayed book to a file. The file then contains either the complete new book or the old one. A
/// book that is not well-formed is written too, one element per line, and the status bar reports it. If the
/// user decides for UTF-8 because the book's own encoding lacks characters, UTF-8 is the book's encoding from
/// then on. \return true if the file was written. Failures are reported in the status bar, with the reason in
/// the second
///         panel of `Status`; an empty display in a box.
bool SaveBook(const QString& path, SaveReport report = SaveReport::Full);

} // namespace vmk
