#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

/// File names of the system as text. A name is any sequence of bytes; most are UTF-8. A byte that is not part
/// of UTF-8 becomes a lone surrogate, U+DC80 to U+DCFF, so that the text of each name denotes this name
/// again.
namespace vmk {

/// Returns the text of a name or path.
[[nodiscard]] QString DecodeFileName(const QByteArray& name);

/// Returns the bytes of a name or path; empty for a text that no file can have: with a NUL, or with a lone
/// surrogate that represents no byte.
[[nodiscard]] QByteArray EncodeFileName(const QString& name);

/// Returns the path of a local file's URL.
[[nodiscard]] QString PathOfUrl(const QUrl& url);

/// Returns a text for the eyes: each byte that is not UTF-8 appears as U+FFFD.
[[nodiscard]] QString ReadableName(QString name);

/// Returns the start of a name that has at most `bytes` bytes and ends between two characters.
[[nodiscard]] QString ShortName(QString name, qsizetype bytes);

} // namespace vmk
