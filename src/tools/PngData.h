#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace vmk {

/// The header of a PNG file.
struct PngHeader
{
    uint32_t width = 0; ///< Pixels.
    uint32_t height = 0;
    int bitDepth = 0; ///< Bits of a sample.
    int colorType = 0;
    bool interlaced = false;

    /// Each pixel is an index into a table of colours.
    [[nodiscard]] bool usesPalette() const { return colorType == 3; }
};

/// Reads the data of the header chunk. Returns nothing if a value is not valid.
[[nodiscard]] std::optional<PngHeader> ReadPngHeader(std::string_view data);

/// Checks the compressed data of a PNG file. It decompresses the rows without keeping them.
class PngDataCheck
{
public:
    enum class State
    {
        Incomplete, ///< Rows are missing.
        Complete,
        Damaged
    };

    explicit PngDataCheck(const PngHeader& header);
    ~PngDataCheck();
    PngDataCheck(const PngDataCheck&) = delete;
    PngDataCheck& operator=(const PngDataCheck&) = delete;

    /// Adds the content of the next data chunk. Data after the last row is ignored, as decoders do.
    void add(std::string_view data);
    /// Returns the state after the chunks added so far. A picture of more than 1 GB is not checked to its end
    /// and counts as complete.
    [[nodiscard]] State state() const { return current; }

private:
    struct Stream;
    /// The rows of one pass; a picture that is not interlaced has one pass.
    struct Pass
    {
        uint64_t rows;
        uint64_t rowBytes; ///< With the byte for the filter.
    };

    void addPass(const PngHeader& header, uint32_t width, uint32_t height);
    void checkRows(std::string_view data);

    std::unique_ptr<Stream> stream;
    std::vector<Pass> passes; ///< The remaining passes, last one first.
    uint64_t restOfRow = 0; ///< Bytes; 0 at the beginning of a row.
    uint64_t checkedBytes = 0;
    State current = State::Incomplete;
};

} // namespace vmk
