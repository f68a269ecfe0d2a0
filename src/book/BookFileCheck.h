#pragma once

#include <QString>

#include <string_view>

namespace vmk {

/// Whether `path` may be taken for a book: its extension begins with "fb", in any case.
///
/// \param boxes       a missing file and a refused extension are told in a stop box; without it only the
///                    extension is looked at, and told in the status bar with a sound
/// \param endOnError  ends the process behind a box; the caller returns at once
bool CheckBookFile(const QString& path, bool boxes, bool endOnError);

/// Makes sure that the XML parser is there and works. Otherwise offers its download page, ends the process
/// and gives false; the caller returns at once.
[[nodiscard]] bool CheckMsxml();
/// The same with a parser of the caller's: `parses` tells whether it takes a small text.
[[nodiscard]] bool CheckMsxml(bool (*parses)(std::string_view text));

/// Validates a book file as `ValidateOption` says, without a window; true when it has an error. A file that
/// cannot be read counts as one with an error. A schema that cannot be read is passed over.
[[nodiscard]] bool ValidateFileQuietly(const QString& path);

} // namespace vmk
