#pragma once

#include <QIcon>
#include <QString>

namespace vmk {

/// The picture of a toolbar key such as "save as", drawn from its vector file at whatever size and pixel
/// density it is asked for. The three looks are `QIcon`'s modes: `Normal`; `Active`, the hot look under
/// the pointer; `Disabled`, pale and without colour. Lines follow the application's palette, so that the
/// picture reads on dark and on light bars alike. A key without a picture gives a null icon.
[[nodiscard]] QIcon ToolbarPicture(const QString& key);

/// The program's own picture, for window frames.
[[nodiscard]] QIcon ProgramPicture();

} // namespace vmk
