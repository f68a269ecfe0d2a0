#pragma once

#include <QByteArray>

namespace vmk {

/// Gives an open file the extended attributes and the access control list of another one, which it replaces.
/// An attribute that the file system or the user's rights do not allow is not copied: the content is more
/// important. Capabilities and signatures are not copied: they hold for the old content only.
/// \param from  a path; a link is not followed
/// \param to  a descriptor opened for writing
void CopyFileAttributes(const QByteArray& from, int to);

} // namespace vmk
