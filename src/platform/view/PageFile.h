#pragma once

#include <QByteArray>
#include <QString>

namespace vmk {

/// The path of a page given by path or by a `file:` URL; another address stays as it is.
[[nodiscard]] QString PathOfPage(const QString& target);

/// The bytes of a page file for the document. A page that names the charset windows-1250, 1251 or 1252 in
/// its head comes in UTF-8. Empty when the file cannot be read.
[[nodiscard]] QByteArray ReadPageFile(const QString& path);

} // namespace vmk
