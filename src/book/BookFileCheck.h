#pragma once

#include <QString>

#include <string_view>

namespace vmk {

/// Checks whether `path` may be a book: its extension begins with "fb", in any case.
///
/// \param boxes       if true, a missing file and a refused extension are each reported in a stop box; if
///                    false, only the extension is checked, and reported in the status bar with a sound
/// \param endOnError  if true, ends the process after a box; the caller returns at once
/// \return false if the file is refused
bool CheckBookFile(const QString& path, bool boxes, bool endOnError);

/// Checks that the XML parser exists and works. If not, offers its download page, ends the process and
/// returns false; the caller returns at once.
[[nodiscard]] bool CheckMsxml();
/// The same with a parser of the caller: `parses` returns whether it accepts a small text.
[[nodiscard]] bool CheckMsxml(bool (*parses)(std::string_view text));

/// Validates a book file according to `ValidateOption`, without a window.
/// \return true if the file has an error or cannot be read. A schema that cannot be read is ignored.
[[nodiscard]] bool ValidateFileQuietly(const QString& path);

} // namespace vmk
