#pragma once

#include "QtPrinting.h"

#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string_view>

#include <unistd.h>

namespace vmk {

/// The user for tests of missing permissions; a superuser always has them.
inline constexpr uid_t PlainUserId = 65534;

/// Changes to a plain user for its scope; does nothing if the process is not a superuser's.
class PlainUser
{
public:
    PlainUser()
        : changed(::geteuid() == 0 && ::seteuid(PlainUserId) == 0)
    {
    }
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;
    ~PlainUser()
    {
        if (changed) {
            EXPECT_EQ(::seteuid(0), 0);
        }
    }

private:
    bool changed;
};

/// A folder for one test, which is removed afterwards; it belongs to the plain user.
class Workplace
{
public:
    Workplace() { GiveToPlainUser(); }

    [[nodiscard]] QString Folder() const { return folder.path(); }
    [[nodiscard]] QString Path(const QString& name) const { return folder.filePath(name); }

    /// Names of a folder's entries, sorted, hidden ones included.
    [[nodiscard]] QStringList Names(const QString& inner = QString()) const
    {
        return QDir(Path(inner))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    }

    /// Creates a file with Qt, not with the code under test.
    void Make(const QString& name, std::string_view text) const
    {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(text.data(), qsizetype(text.size())), qsizetype(text.size()));
    }

    void MakeFolders(const QString& name) const { ASSERT_TRUE(QDir(Folder()).mkpath(name)); }

    /// Changes the owner of all files, so that a plain user can change what a superuser has created.
    void GiveToPlainUser() const
    {
        if (::geteuid() == 0)
            Give(Folder());
    }

private:
    static void Give(const QString& path)
    {
        ASSERT_EQ(::lchown(QFile::encodeName(path).constData(), PlainUserId, gid_t(-1)), 0);
        const QFileInfo info(path);
        if (!info.isDir() || info.isSymLink())
            return;
        const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
        for (const QString& name : QDir(path).entryList(all))
            Give(path + QLatin1Char('/') + name);
    }

    QTemporaryDir folder;
};

} // namespace vmk
