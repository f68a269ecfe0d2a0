#pragma once

#include "Files.h"
#include "PosixFile.h"

namespace vmk {

/// A name next to `target` that no file has; short, so that it fits even if the target name is long.
[[nodiscard]] QByteArray TemporaryName(const QByteArray& target);

/// The new content of a target: a temporary file next to it, deleted unless committed. The file is locked as
/// long as this process works with it; one without a lock was left by a process that was killed.
class PendingFile
{
public:
    /// `path` is not a link. The temporary file takes the permissions, owner and extended
    /// attributes of an existing file.
    explicit PendingFile(const QByteArray& path);
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    ~PendingFile();

    explicit operator bool() const { return bool(handle); }
    [[nodiscard]] int Get() const { return handle.Get(); }
    /// The reason why the file could not be created, as in `errno`.
    [[nodiscard]] int Error() const { return openError; }

    /// Renames only when every byte is written, and flushed to the disk if requested. A flushed commit also
    /// removes the files next to the target that killed processes left.
    /// \return false with the reason in `errno`
    bool Commit(Durability durability = Durability::Flushed, std::optional<mode_t> permissions = {});

private:
    Descriptor OpenTemporary();
    void TakeOwner();

    QByteArray target;
    QByteArray name;
    std::optional<struct stat> old;
    std::optional<mode_t> oldMode;
    int openError = 0;
    Descriptor handle;
    Descriptor lock;
};

/// Removes the temporary files in a folder that no living process owns. A large folder is searched at most
/// once a second.
void RemoveLeftovers(const QByteArray& folder);

} // namespace vmk
