#pragma once

#include <QByteArray>
#include <QString>

namespace vmk {

/// Returns the path of a page given as a path or a `file:` URL; any other address is unchanged.
[[nodiscard]] QString PathOfPage(const QString& target);

/// Returns the bytes of a page file for the document. A page whose head names the charset windows-1250, 1251
/// or 1252 is converted to UTF-8. Empty if the file cannot be read.
[[nodiscard]] QByteArray ReadPageFile(const QString& path);

} // namespace vmk
