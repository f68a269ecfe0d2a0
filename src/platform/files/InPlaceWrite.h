#pragma once

#include "Files.h"

#include <QByteArray>

#include <optional>

namespace vmk {

/// Overwrites a file in place, after a copy of its content is on the disk in `backupFolder`. After a failed
/// write, the old content is restored from the copy; if that fails too, the reason names the copy. \return
/// nothing if the file is not a regular file that the user can write
[[nodiscard]] std::optional<WriteResult> WriteInPlace(const QByteArray& path, std::string_view bytes,
                                                      const QString& backupFolder);

} // namespace vmk
