#include "Dialogs.h"

namespace vmk {

Seam<QStringList(const FileDialogRequest&)>& FileDialogSeam()
{
    static Seam<QStringList(const FileDialogRequest&)> seam(
        [](const FileDialogRequest&) { return QStringList(); });
    return seam;
}

QStringList AskFiles(const FileDialogRequest& request)
{
    return FileDialogSeam()(request);
}

QString AskFile(const FileDialogRequest& request)
{
    return AskFiles(request).value(0);
}

Seam<std::optional<FontChoice>(const FontDialogRequest&)>& FontDialogSeam()
{
    static Seam<std::optional<FontChoice>(const FontDialogRequest&)> seam(
        [](const FontDialogRequest&) { return std::nullopt; });
    return seam;
}

std::optional<FontChoice> AskFont(const FontDialogRequest& request)
{
    return FontDialogSeam()(request);
}

Seam<std::optional<QString>(const QString&)>& ColorDialogSeam()
{
    static Seam<std::optional<QString>(const QString&)> seam([](const QString&) { return std::nullopt; });
    return seam;
}

std::optional<QString> AskColor(const QString& current)
{
    return ColorDialogSeam()(current);
}

} // namespace vmk
