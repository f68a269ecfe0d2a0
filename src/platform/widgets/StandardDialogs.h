#pragma once

#include "Dialogs.h"

namespace vmk {

/// Converts "Books (*.fb2)|*.fb2|All files|*.*|" to the toolkit's list of filters. The patterns are added to
/// a description without them; several patterns may be separated by ";". An unpaired last piece is ignored.
[[nodiscard]] QStringList NameFilters(const QString& filter);

/// Shows the dialog over the active window. Does not change the current folder of the process.
[[nodiscard]] QStringList ShowFileDialog(const FileDialogRequest& request);

[[nodiscard]] std::optional<FontChoice> ShowFontDialog(const FontDialogRequest& request);

/// \param current  the name of a colour or "#RRGGBB"; anything else starts with black
[[nodiscard]] std::optional<QString> ShowColorDialog(const QString& current);

} // namespace vmk
