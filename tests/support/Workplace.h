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

/// The user that tests become where they must meet refusals: a superuser meets none.
inline constexpr uid_t PlainUserId = 65534;

/// Acts as a plain user for its scope; does nothing for a process that is one.
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

/// A folder of a test's own, gone afterwards; it belongs to the plain user.
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

    /// Makes a file by the toolkit's own means, not by those under test.
    void Make(const QString& name, std::string_view text) const
    {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(text.data(), qsizetype(text.size())), qsizetype(text.size()));
    }

    void MakeFolders(const QString& name) const { ASSERT_TRUE(QDir(Folder()).mkpath(name)); }

    /// All of it, so that a plain user may change what a superuser has made.
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
