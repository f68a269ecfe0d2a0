#include "FileAttributes.h"

#include <QList>

#include <algorithm>
#include <array>
#include <string_view>

#include <sys/xattr.h>

namespace vmk {

namespace {

constexpr const char* AccessList = "system.posix_acl_access";

/// The system's limit for a list of names and for a value.
constexpr int LargestAttribute = 65'536;

bool HoldsForOldContentOnly(std::string_view name)
{
    constexpr std::array<std::string_view, 3> Names = {"security.capability", "security.ima", "security.evm"};
    return std::find(Names.begin(), Names.end(), name) != Names.end();
}

} // namespace

void CopyFileAttributes(const QByteArray& from, int to)
{
    QByteArray names(LargestAttribute, Qt::Uninitialized);
    const ssize_t listed = ::llistxattr(from.constData(), names.data(), std::size_t(names.size()));
    if (listed < 0)
        return;
    names.truncate(listed);
    // The new file has the default list of its folder, which the old one may not have had.
    if (!names.split('\0').contains(AccessList))
        static_cast<void>(::fremovexattr(to, AccessList));
    QByteArray value(LargestAttribute, Qt::Uninitialized);
    for (const QByteArray& name : names.split('\0')) {
        if (name.isEmpty() || HoldsForOldContentOnly(name.constData()))
            continue;
        const ssize_t length
            = ::lgetxattr(from.constData(), name.constData(), value.data(), std::size_t(value.size()));
        if (length >= 0)
            static_cast<void>(::fsetxattr(to, name.constData(), value.constData(), std::size_t(length), 0));
    }
}

} // namespace vmk
