#pragma once

#include "Dialogs.h"

namespace vmk {

/// "Books (*.fb2)|*.fb2|All files|*.*|" as the toolkit's list of filters; a description without its patterns
/// gets them, several patterns may be parted by ";". An odd last piece is dropped.
[[nodiscard]] QStringList NameFilters(const QString& filter);

/// Shows the dialog over the active window. The current folder of the process stays as it is.
[[nodiscard]] QStringList ShowFileDialog(const FileDialogRequest& request);

[[nodiscard]] std::optional<FontChoice> ShowFontDialog(const FontChoice& current);

/// \param current a colour's name or "#RRGGBB"; anything else starts with black
[[nodiscard]] std::optional<QString> ShowColorDialog(const QString& current);

} // namespace vmk
