#include "PngData.h"

#include <algorithm>
#include <array>

#include <zlib.h>

namespace vmk {
namespace {

constexpr uint64_t MostBytes = uint64_t(1) << 30;
constexpr unsigned char LastFilter = 4;

uint32_t BigEndian32(std::string_view bytes)
{
    uint32_t value = 0;
    for (const char byte : bytes.substr(0, 4))
        value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

/// Returns the samples of a pixel; 0 if the colour type is not valid for the bit depth.
int SamplesOfPixel(int colorType, int bitDepth)
{
    const bool isSmall = bitDepth == 1 || bitDepth == 2 || bitDepth == 4;
    const bool isWhole = bitDepth == 8 || bitDepth == 16;
    switch (colorType) {
    case 0: // grey
        return isSmall || isWhole ? 1 : 0;
    case 2: // red, green and blue
        return isWhole ? 3 : 0;
    case 3: // an index into the palette
        return isSmall || bitDepth == 8 ? 1 : 0;
    case 4: // grey and opacity
        return isWhole ? 2 : 0;
    case 6: // red, green, blue and opacity
        return isWhole ? 4 : 0;
    default:
        return 0;
    }
}

/// Returns the number of columns or rows that a pass of an interlaced picture contains.
uint32_t CountInPass(uint32_t size, uint32_t first, uint32_t step)
{
    return size > first ? (size - first + step - 1) / step : 0;
}

} // namespace

std::optional<PngHeader> ReadPngHeader(std::string_view data)
{
    constexpr size_t HeaderBytes = 13;
    constexpr uint32_t MostPixels = 0x7fffffff;
    if (data.size() != HeaderBytes)
        return std::nullopt;
    PngHeader header;
    header.width = BigEndian32(data);
    header.height = BigEndian32(data.substr(4));
    header.bitDepth = static_cast<unsigned char>(data[8]);
    header.colorType = static_cast<unsigned char>(data[9]);
    header.interlaced = data[12] == 1;
    const bool isSize
        = header.width > 0 && header.height > 0 && header.width <= MostPixels && header.height <= MostPixels;
    const bool isFormat = SamplesOfPixel(header.colorType, header.bitDepth) > 0 && data[10] == 0
        && data[11] == 0 && (data[12] == 0 || data[12] == 1);
    return isSize && isFormat ? std::optional(header) : std::nullopt;
}

struct PngDataCheck::Stream
{
    Stream()
        : isOpen(inflateInit(&state) == Z_OK)
    {
    }
    ~Stream()
    {
        if (isOpen)
            inflateEnd(&state);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    z_stream state{};
    bool isOpen;
};

PngDataCheck::PngDataCheck(const PngHeader& header)
    : stream(std::make_unique<Stream>())
{
    struct Steps
    {
        uint32_t firstColumn, firstRow, columnStep, rowStep;
    };
    static constexpr std::array<Steps, 7> Interlacing = {
        {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4}, {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}}};
    if (header.interlaced) {
        for (const Steps& steps : Interlacing) {
            addPass(header, CountInPass(header.width, steps.firstColumn, steps.columnStep),
                    CountInPass(header.height, steps.firstRow, steps.rowStep));
        }
        std::ranges::reverse(passes);
    } else {
        addPass(header, header.width, header.height);
    }
    // Without memory for the decompression nothing can be said about the data.
    if (!stream->isOpen)
        current = State::Complete;
}

PngDataCheck::~PngDataCheck() = default;

void PngDataCheck::addPass(const PngHeader& header, uint32_t width, uint32_t height)
{
    const auto samples = uint64_t(SamplesOfPixel(header.colorType, header.bitDepth));
    const uint64_t bitsOfPixel = samples * uint64_t(header.bitDepth);
    if (width > 0 && height > 0)
        passes.push_back({.rows = height, .rowBytes = 1 + (width * bitsOfPixel + 7) / 8});
}

void PngDataCheck::add(std::string_view data)
{
    std::array<char, 32768> rows{};
    z_stream& inflated = stream->state;
    // The library does not change the input.
    inflated.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    inflated.avail_in = uInt(data.size());
    while (current == State::Incomplete) {
        inflated.next_out = reinterpret_cast<Bytef*>(rows.data());
        inflated.avail_out = uInt(rows.size());
        const int result = inflate(&inflated, Z_NO_FLUSH);
        const size_t size = rows.size() - inflated.avail_out;
        checkRows({rows.data(), size});
        checkedBytes += size;
        if (current != State::Incomplete)
            return;
        // The chunk is used up, or the stream ends before the last row.
        if (result == Z_STREAM_END || (result == Z_BUF_ERROR && size == 0))
            return;
        if (result != Z_OK && result != Z_BUF_ERROR)
            current = State::Damaged;
        else if (checkedBytes > MostBytes)
            current = State::Complete;
    }
}

void PngDataCheck::checkRows(std::string_view data)
{
    while (!data.empty() && !passes.empty()) {
        Pass& pass = passes.back();
        if (restOfRow == 0) {
            if (static_cast<unsigned char>(data.front()) > LastFilter) {
                current = State::Damaged;
                return;
            }
            restOfRow = pass.rowBytes;
        }
        const uint64_t used = std::min<uint64_t>(restOfRow, data.size());
        data.remove_prefix(used);
        restOfRow -= used;
        if (restOfRow == 0 && --pass.rows == 0)
            passes.pop_back();
    }
    if (passes.empty())
        current = State::Complete;
}

} // namespace vmk
