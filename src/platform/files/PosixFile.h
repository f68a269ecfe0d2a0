#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <string_view>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

/// What the files of this folder share: system calls that are repeated after a signal.
namespace vmk {

inline constexpr std::size_t ChunkBytes = 1 << 20;
inline constexpr mode_t PermissionBits = 07777;

/// An open file descriptor; closed at the end of its scope.
class Descriptor
{
public:
    explicit Descriptor(int opened = -1)
        : handle(opened)
    {
    }
    Descriptor(Descriptor&& other) noexcept
        : handle(std::exchange(other.handle, -1))
    {
    }
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(handle, other.handle);
        return *this;
    }
    ~Descriptor() { Close(); }

    explicit operator bool() const { return handle >= 0; }
    [[nodiscard]] int Get() const { return handle; }

    /// Returns false if the system reports a delayed write error.
    bool Close() { return handle < 0 || ::close(std::exchange(handle, -1)) == 0; }

private:
    int handle;
};

/// The message of the system for an error number, in English; never empty.
[[nodiscard]] QString SystemReason(int error);

[[nodiscard]] Descriptor OpenFile(const QByteArray& path, int flags, mode_t mode = 0);
[[nodiscard]] std::optional<struct stat> StatusOf(const QByteArray& path);
[[nodiscard]] std::optional<struct stat> StatusOfLink(const QByteArray& path);

[[nodiscard]] inline bool IsSameInode(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// Returns false, with the reason in `errno`, unless every byte is written.
[[nodiscard]] bool WriteAll(int handle, std::string_view bytes);
[[nodiscard]] ssize_t ReadSome(int handle, char* buffer, std::size_t size);
/// Copies the rest of one open file to another.
[[nodiscard]] bool CopyBytes(int from, int to);

/// The folder of a path, for system calls: "." without a separator.
[[nodiscard]] QByteArray SystemFolderOf(const QByteArray& path);

/// The target of a write to a path: links are followed to the last one, whose target may not exist. Empty for
/// a cycle of links.
[[nodiscard]] QByteArray FollowLinks(QByteArray path);

/// Makes a rename durable: flushing a folder writes its entries.
void FlushFolder(const QByteArray& folder);

} // namespace vmk
