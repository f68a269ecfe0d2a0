#include "PictureInfo.h"

#include "FileSignatures.h"
#include "PngData.h"

#include <array>
#include <cstdint>
#include <optional>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr std::string_view FullPngSignature = "\x89PNG\r\n\x1a\n";
constexpr std::string_view JpegStart = "\xff\xd8\xff";

uint32_t ByteAt(std::string_view bytes, size_t at)
{
    return static_cast<unsigned char>(bytes[at]);
}

/// Most significant byte first.
uint32_t BigEndian32(std::string_view bytes, size_t at)
{
    return ByteAt(bytes, at) << 24 | ByteAt(bytes, at + 1) << 16 | ByteAt(bytes, at + 2) << 8
        | ByteAt(bytes, at + 3);
}

uint32_t BigEndian16(std::string_view bytes, size_t at)
{
    return ByteAt(bytes, at) << 8 | ByteAt(bytes, at + 1);
}

uint32_t LittleEndian16(std::string_view bytes, size_t at)
{
    return ByteAt(bytes, at + 1) << 8 | ByteAt(bytes, at);
}

constexpr auto CrcTable = [] {
    std::array<uint32_t, 256> table{};
    for (uint32_t value = 0; value < table.size(); ++value) {
        uint32_t crc = value;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? 0xedb88320U ^ crc >> 1 : crc >> 1;
        table[value] = crc;
    }
    return table;
}();

/// The checksum of a PNG chunk.
uint32_t Crc(std::string_view bytes)
{
    uint32_t crc = ~0U;
    for (const char byte : bytes)
        crc = CrcTable[(crc ^ static_cast<unsigned char>(byte)) & 0xff] ^ crc >> 8;
    return ~crc;
}

constexpr QLatin1StringView EndsEarly("the data ends early");
constexpr QLatin1StringView Damaged("the data is damaged");

// ---------------------------------------------------------------- PNG

/// Reads the chunks of a PNG file one after the other.
class PngReader
{
public:
    explicit PngReader(PictureInfo& result)
        : info(result)
    {
    }

    void take(std::string_view type, std::string_view data)
    {
        const bool isHeader = type == "IHDR";
        if (isHeader == bool(check)) {
            // The header is the first chunk, and the only one of its type.
            info.problem = Damaged;
        } else if (isHeader) {
            takeHeader(data);
        } else if (type == "PLTE") {
            hasPalette = true;
        } else if (type == "IDAT") {
            if (header.usesPalette() && !hasPalette)
                info.problem = Damaged;
            check->add(data);
        }
    }

    void finish()
    {
        if (!info.problem.isEmpty())
            return;
        if (check->state() == PngDataCheck::State::Incomplete)
            info.problem = EndsEarly;
        else if (check->state() == PngDataCheck::State::Damaged)
            info.problem = Damaged;
    }

private:
    void takeHeader(std::string_view data)
    {
        const std::optional<PngHeader> read = ReadPngHeader(data);
        if (!read) {
            info.problem = Damaged;
            return;
        }
        header = *read;
        info.width = int(header.width);
        info.height = int(header.height);
        check.emplace(header);
    }

    PictureInfo& info;
    PngHeader header;
    std::optional<PngDataCheck> check;
    bool hasPalette = false;
};

/// A chunk consists of a length, a type, that many bytes of data, and a checksum of type and data.
void ReadPng(PictureInfo& info, std::string_view bytes)
{
    constexpr size_t FrameBytes = 12;
    if (!bytes.starts_with(FullPngSignature)) {
        info.problem = Damaged;
        return;
    }
    bytes.remove_prefix(FullPngSignature.size());
    PngReader reader(info);
    while (info.problem.isEmpty()) {
        if (bytes.size() < FrameBytes || BigEndian32(bytes, 0) > bytes.size() - FrameBytes) {
            info.problem = EndsEarly;
            return;
        }
        const size_t length = BigEndian32(bytes, 0);
        const std::string_view type = bytes.substr(4, 4);
        if (Crc(bytes.substr(4, length + 4)) != BigEndian32(bytes, length + 8)) {
            info.problem = Damaged;
            return;
        }
        reader.take(type, bytes.substr(8, length));
        if (type == "IEND")
            break;
        bytes.remove_prefix(length + FrameBytes);
    }
    reader.finish();
}

// ---------------------------------------------------------------- JPEG

bool IsFrameMarker(uint32_t marker)
{
    // The range without the tables for Huffman and arithmetic coding and a reserved code.
    return marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

bool StandsAlone(uint32_t marker)
{
    return marker == 0x01 || (marker >= 0xd0 && marker <= 0xd8);
}

/// Returns the position of the code of the next marker; skips compressed data.
std::optional<size_t> NextMarker(std::string_view bytes, size_t from)
{
    for (size_t at = bytes.find('\xff', from); at != std::string_view::npos && at + 1 < bytes.size();
         at = bytes.find('\xff', at + 1)) {
        const uint32_t code = ByteAt(bytes, at + 1);
        const bool isFill = code == 0xff;
        const bool isData = code == 0 || (code >= 0xd0 && code <= 0xd7);
        if (!isFill && !isData)
            return at + 1;
    }
    return std::nullopt;
}

/// A file is a sequence of segments up to the end marker. Compressed data follows the header of each scan.
void ReadJpeg(PictureInfo& info, std::string_view bytes)
{
    constexpr uint32_t ScanMarker = 0xda;
    constexpr uint32_t EndMarker = 0xd9;
    bool hasScan = false;
    size_t at = 2;
    while (true) {
        const std::optional<size_t> marker = NextMarker(bytes, at);
        if (!marker) {
            info.problem = EndsEarly;
            return;
        }
        const uint32_t code = ByteAt(bytes, *marker);
        at = *marker + 1;
        if (code == EndMarker)
            break;
        if (StandsAlone(code))
            continue;
        const size_t length = bytes.size() - at >= 2 ? BigEndian16(bytes, at) : 0;
        if (length < 2 || length > bytes.size() - at) {
            info.problem = EndsEarly;
            return;
        }
        constexpr size_t FrameHeaderBytes = 7;
        if (IsFrameMarker(code) && length >= FrameHeaderBytes) {
            info.height = int(BigEndian16(bytes, at + 3));
            info.width = int(BigEndian16(bytes, at + 5));
        }
        hasScan = hasScan || code == ScanMarker;
        at += length;
    }
    // A height after the data, which the format allows, is not read by decoders either.
    if (!hasScan || info.width == 0 || info.height == 0)
        info.problem = Damaged;
}

// ---------------------------------------------------------------- GIF

void ReadGif(PictureInfo& info, std::string_view bytes)
{
    constexpr size_t HeaderBytes = 13;
    constexpr char Trailer = ';';
    if (bytes.size() < HeaderBytes) {
        info.problem = EndsEarly;
        return;
    }
    info.width = int(LittleEndian16(bytes, 6));
    info.height = int(LittleEndian16(bytes, 8));
    if (info.width == 0 || info.height == 0)
        info.problem = Damaged;
    else if (bytes.find(Trailer, HeaderBytes) == std::string_view::npos)
        info.problem = EndsEarly;
}

} // namespace

PictureInfo ReadPictureInfo(std::string_view bytes)
{
    PictureInfo info;
    if (bytes.starts_with(PngSignature)) {
        info.format = PictureFormat::Png;
        ReadPng(info, bytes);
    } else if (bytes.starts_with(JpegStart)) {
        info.format = PictureFormat::Jpeg;
        ReadJpeg(info, bytes);
    } else if (bytes.starts_with("GIF87a") || bytes.starts_with("GIF89a")) {
        info.format = PictureFormat::Gif;
        ReadGif(info, bytes);
    }
    return info;
}

QString FormatName(PictureFormat format)
{
    switch (format) {
    case PictureFormat::Png:
        return u"PNG"_s;
    case PictureFormat::Jpeg:
        return u"JPEG"_s;
    case PictureFormat::Gif:
        return u"GIF"_s;
    case PictureFormat::Unknown:
        break;
    }
    return {};
}

PictureFormat FormatOfType(QStringView type)
{
    const QString name = type.mid(type.lastIndexOf(u'/') + 1).toString().toLower();
    if (name == "png"_L1)
        return PictureFormat::Png;
    if (name == "jpg"_L1 || name == "jpeg"_L1)
        return PictureFormat::Jpeg;
    return name == "gif"_L1 ? PictureFormat::Gif : PictureFormat::Unknown;
}

} // namespace vmk
