#pragma once

#include <QString>

/// The parts of a path. Uses only the text of the path. Both "\" and "/" are separators. Each part of an
/// empty path is empty.
namespace vmk {

/// The text after the last "."; all of it if there is none.
[[nodiscard]] QString ExtensionOf(const QString& path);
/// The text up to and including the last separator; empty without one.
[[nodiscard]] QString FolderOf(const QString& path);
/// The text after the last separator.
[[nodiscard]] QString FileNameOf(const QString& path);
/// The name without its last extension.
[[nodiscard]] QString BaseNameOf(const QString& path);
/// The text up to and including the last ":\" or ":/"; empty without one.
[[nodiscard]] QString DriveOf(const QString& path);
/// The path without its last extension; a dot in the name of a folder does not start an extension.
[[nodiscard]] QString WithoutExtension(const QString& path);

} // namespace vmk
