#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// A member of an archive that a test makes. The archive can be given any lie about it.
struct ZipEntry
{
    std::string name;
    std::string content = {};
    bool isDeflated = false;
    bool isUtf8 = false; ///< the name is marked as UTF-8
    bool isEncrypted = false;
    std::optional<uint32_t> size = {}; ///< in place of that of the content
    std::optional<uint32_t> checksum = {};
    uint16_t method = 0; ///< in place of "stored"
    bool sharesData = false; ///< has the data of the member before it, and no own
};

/// The CRC-32 of a zip archive, bit by bit.
inline uint32_t ZipChecksum(std::string_view bytes)
{
    uint32_t sum = 0xFFFFFFFFU;
    for (const char c : bytes) {
        sum ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return ~sum;
}

/// Returns the bytes of an archive, written by the format's description and without a library of archives.
inline std::string MakeZip(const std::vector<ZipEntry>& entries)
{
    const auto number = [](std::string& to, uint64_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            to += static_cast<char>(i < 8 ? value >> (8 * i) : 0);
    };
    std::string archive;
    std::string directory;
    uint32_t offset = 0;
    std::string packed;
    for (const ZipEntry& entry : entries) {
        if (!entry.sharesData) {
            packed = entry.content;
            if (entry.isDeflated) {
                // Without the length before it, and the header and the checksum of zlib around it.
                const QByteArray zlib = qCompress(reinterpret_cast<const uchar*>(entry.content.data()),
                                                  static_cast<qsizetype>(entry.content.size()), 9);
                packed = zlib.mid(6, zlib.size() - 10).toStdString();
            }
            offset = static_cast<uint32_t>(archive.size());
        }
        std::string common;
        number(common, 20, 2);
        number(common, (entry.isUtf8 ? 0x800U : 0U) | (entry.isEncrypted ? 1U : 0U), 2);
        number(common, entry.isDeflated ? 8 : entry.method, 2);
        number(common, 0x5A216000, 4); // time and date
        number(common, entry.checksum.value_or(ZipChecksum(entry.content)), 4);
        number(common, packed.size(), 4);
        number(common, entry.size.value_or(static_cast<uint32_t>(entry.content.size())), 4);
        number(common, entry.name.size(), 2);
        number(common, 0, 2);
        if (!entry.sharesData)
            archive += "PK\x03\x04" + common + entry.name + packed;
        directory += "PK\x01\x02";
        number(directory, 20, 2);
        directory += common;
        number(directory, 0, 2 + 2 + 2 + 4);
        number(directory, offset, 4);
        directory += entry.name;
    }
    const size_t start = archive.size();
    archive += directory + "PK\x05\x06";
    number(archive, 0, 4);
    number(archive, entries.size(), 2);
    number(archive, entries.size(), 2);
    number(archive, directory.size(), 4);
    number(archive, start, 4);
    number(archive, 0, 2);
    return archive;
}

} // namespace vmk
