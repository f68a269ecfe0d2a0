#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct zip;

namespace vmk {

/// The compression of a `PackedMember`; the values are those of the file format.
enum class ZipMethod : uint16_t
{
    Stored = 0,
    Deflated = 8
};

/// The description of a member in the directory of its archive. The archive can lie about it.
struct ZipMember
{
    QString name; ///< with "/" between folders; a folder's name ends with "/"
    uint64_t size = 0; ///< bytes
    uint64_t packedSize = 0; ///< bytes in the archive
    bool isEncrypted = false;
};

/// The content of a member as the archive stores it.
struct PackedMember
{
    ZipMethod method = ZipMethod::Stored;
    uint64_t size = 0; ///< of the unpacked content, in bytes; never exceeded by `Unpack`
    uint32_t checksum = 0; ///< CRC-32 of the unpacked content
    std::string bytes;
};

/// A zip archive that is read. Safe for any bytes.
class ZipArchive
{
public:
    /// Opens a file. Returns null, with the reason in `problem`, if it is not a complete archive.
    [[nodiscard]] static std::unique_ptr<ZipArchive> open(const std::string& systemPath, QString* problem);
    /// Opens an archive in memory.
    [[nodiscard]] static std::unique_ptr<ZipArchive> ofBytes(std::string content, QString* problem);
    ~ZipArchive();
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    /// The number of members, folders included.
    [[nodiscard]] uint64_t count() const;
    /// Returns the description of member `index`, from 0, in the order of the archive's directory.
    [[nodiscard]] ZipMember member(uint64_t index) const;
    /// Reads a member that is not encrypted. A member in a rare compression is unpacked here.
    /// \return nothing, with the reason in `problem`, if the archive is damaged there
    [[nodiscard]] std::optional<PackedMember> read(uint64_t index, QString* problem) const;

private:
    explicit ZipArchive(zip* opened, std::string ownedBytes = {});

    std::string bytes; // of an archive in memory
    zip* handle;
};

/// Returns the content of a member.
/// \return nothing, with the reason in `problem`, if the content does not have the size or the checksum
[[nodiscard]] std::optional<std::string> Unpack(const PackedMember& member, QString* problem);

} // namespace vmk
