#pragma once

#include "Seam.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace vmk {

/// The parameters of a file dialog.
struct FileDialogRequest
{
    enum Kind
    {
        Open,
        OpenSeveral,
        Save
    };
    Kind kind = Open;
    QString title;
    /// The initial folder; ignored if it does not exist.
    QString folder;
    /// The initial file name, without a folder.
    QString fileName;
    /// Descriptions and patterns, separated by "|": "Fiction Book Files (*.fb2)|*.fb2|".
    QString filter;
};

/// A font as a dialog shows and returns it.
struct FontChoice
{
    QString name;
    /// In points.
    int size = 0;
    bool bold = false;
    bool italic = false;

    bool operator==(const FontChoice&) const = default;
};

/// Returns the full paths of the chosen files, empty if cancelled; at most one path unless several are
/// requested. A save dialog does not ask before replacing a file: the caller does if required. The current
/// folder of the process is unchanged. Without a window, returns as if cancelled.
[[nodiscard]] Seam<QStringList(const FileDialogRequest& request)>& FileDialogSeam();
[[nodiscard]] QStringList AskFiles(const FileDialogRequest& request);
/// Returns the first chosen file; empty if cancelled.
[[nodiscard]] QString AskFile(const FileDialogRequest& request);

/// The parameters of a font dialog.
struct FontDialogRequest
{
    QString title;
    /// The font that is selected first; the default font if it is empty.
    FontChoice current;
};

/// Returns the chosen font, or nothing if cancelled or without a window.
[[nodiscard]] Seam<std::optional<FontChoice>(const FontDialogRequest& request)>& FontDialogSeam();
[[nodiscard]] std::optional<FontChoice> AskFont(const FontDialogRequest& request);

/// Returns the chosen colour as "#RRGGBB", or nothing if cancelled or without a window.
[[nodiscard]] Seam<std::optional<QString>(const QString& current)>& ColorDialogSeam();
[[nodiscard]] std::optional<QString> AskColor(const QString& current);

} // namespace vmk
