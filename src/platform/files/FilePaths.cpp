#include "FilePaths.h"

#include <algorithm>

namespace vmk {

namespace {

/// Position of the last separator, or -1.
qsizetype LastSeparator(QStringView path)
{
    return std::max(path.lastIndexOf(u'\\'), path.lastIndexOf(u'/'));
}

} // namespace

QString ExtensionOf(const QString& path)
{
    return path.mid(path.lastIndexOf(u'.') + 1);
}

QString FolderOf(const QString& path)
{
    return path.left(LastSeparator(path) + 1);
}

QString FileNameOf(const QString& path)
{
    return path.mid(LastSeparator(path) + 1);
}

QString BaseNameOf(const QString& path)
{
    return WithoutExtension(FileNameOf(path));
}

QString DriveOf(const QString& path)
{
    constexpr qsizetype MarkLength = 2;
    const qsizetype mark = std::max(path.lastIndexOf(u":\\"), path.lastIndexOf(u":/"));
    return mark < 0 ? QString() : path.left(mark + MarkLength);
}

QString WithoutExtension(const QString& path)
{
    const qsizetype dot = path.lastIndexOf(u'.');
    return dot > LastSeparator(path) ? path.left(dot) : path;
}

} // namespace vmk
