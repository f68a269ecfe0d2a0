#pragma once

#include "Seam.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace vmk {

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
    /// The folder that the dialog starts in; one that does not exist is passed over.
    QString folder;
    /// The name that stands in the dialog at first, without a folder.
    QString fileName;
    /// Descriptions and patterns, all parted by "|": "Fiction Book Files (*.fb2)|*.fb2|".
    QString filter;
};

struct FontChoice
{
    QString name;
    /// Points.
    int size = 0;
    bool bold = false;
    bool italic = false;

    bool operator==(const FontChoice&) const = default;
};

/// Full paths of the files chosen, empty when cancelled; one path unless several were asked for. A save
/// dialog does not ask about replacing: the caller does where that is wanted. The current folder of the
/// process stays as it is. Cancelled without a window.
[[nodiscard]] Seam<QStringList(const FileDialogRequest& request)>& FileDialogSeam();
[[nodiscard]] QStringList AskFiles(const FileDialogRequest& request);
/// The first of the files chosen; empty when cancelled.
[[nodiscard]] QString AskFile(const FileDialogRequest& request);

/// The font chosen, or nothing when cancelled. Cancelled without a window.
[[nodiscard]] Seam<std::optional<FontChoice>(const FontChoice& current)>& FontDialogSeam();
[[nodiscard]] std::optional<FontChoice> AskFont(const FontChoice& current);

/// The colour chosen, as "#RRGGBB", or nothing when cancelled. Cancelled without a window.
[[nodiscard]] Seam<std::optional<QString>(const QString& current)>& ColorDialogSeam();
[[nodiscard]] std::optional<QString> AskColor(const QString& current);

} // namespace vmk
