#pragma once

#include <QIcon>
#include <QString>

namespace vmk {

/// Returns the picture of a toolbar key such as "save as". It is rendered from its vector file at the
/// requested size and pixel density. The three looks are the modes of `QIcon`: `Normal`; `Active`, under the
/// pointer; `Disabled`, pale and without colour. Lines use the application's palette, so that the picture is
/// visible on dark and on light bars. Returns a null icon for a key without a picture.
[[nodiscard]] QIcon ToolbarPicture(const QString& key);

/// Returns the program's own picture, for window frames.
[[nodiscard]] QIcon ProgramPicture();

} // namespace vmk
