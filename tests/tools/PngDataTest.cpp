#include "PngData.h"
#include "PictureInfo.h"

#include <QString>

#include <gtest/gtest.h>

#include <array>
#include <random>

#include <zlib.h>

/// The compressed data of PNG files. All files here have correct lengths and checksums.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

std::string BigEndian(uint32_t value)
{
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += char(value >> shift);
    return bytes;
}

std::string Chunk(const std::string& type, const std::string& data)
{
    const std::string checked = type + data;
    const uLong crc = crc32(0, reinterpret_cast<const Bytef*>(checked.data()), uInt(checked.size()));
    return BigEndian(uint32_t(data.size())) + checked + BigEndian(uint32_t(crc));
}

std::string Deflated(const std::string& data)
{
    uLong size = compressBound(uLong(data.size()));
    std::string result(size, '\0');
    EXPECT_EQ(compress(reinterpret_cast<Bytef*>(result.data()), &size,
                       reinterpret_cast<const Bytef*>(data.data()), uLong(data.size())),
              Z_OK);
    result.resize(size);
    return result;
}

struct Header
{
    uint32_t width = 1;
    uint32_t height = 1;
    int depth = 8;
    int type = 2;
    int interlace = 0;
    int compression = 0;
    int filter = 0;
};

std::string HeaderData(const Header& header)
{
    std::string data = BigEndian(header.width) + BigEndian(header.height);
    for (const int value : {header.depth, header.type, header.compression, header.filter, header.interlace})
        data += char(value);
    return data;
}

std::string File(const Header& header, const std::string& chunks)
{
    return "\x89PNG\r\n\x1a\n" + Chunk("IHDR", HeaderData(header)) + chunks + Chunk("IEND", "");
}

std::string Rows(size_t count, size_t bytes, char filter = 0)
{
    std::string rows;
    for (size_t row = 0; row < count; ++row)
        rows += filter + std::string(bytes, char(row));
    return rows;
}

std::string WithoutLast(std::string rows)
{
    rows.pop_back();
    return rows;
}

QString ProblemOf(const Header& header, const std::string& chunks)
{
    return ReadPictureInfo(File(header, chunks)).problem;
}

QString ProblemOfRows(const Header& header, const std::string& rows)
{
    return ProblemOf(header, Chunk("IDAT", Deflated(rows)));
}

const QString None;
const QString EndsEarly = u"the data ends early"_s;
const QString Damaged = u"the data is damaged"_s;

} // namespace

TEST(PngData, CompleteRowsOfEachFormatAreAccepted)
{
    struct Format
    {
        int type, depth;
        size_t rowBytes; ///< For 5 pixels.
    };
    constexpr std::array Formats = {Format{0, 1, 1},   Format{0, 2, 2},  Format{0, 4, 3},   Format{0, 8, 5},
                                    Format{0, 16, 10}, Format{2, 8, 15}, Format{2, 16, 30}, Format{4, 8, 10},
                                    Format{4, 16, 20}, Format{6, 8, 20}, Format{6, 16, 40}};
    for (const auto [type, depth, rowBytes] : Formats) {
        const Header header{.width = 5, .height = 7, .depth = depth, .type = type};
        EXPECT_EQ(ProblemOfRows(header, Rows(7, rowBytes)), None) << type << ' ' << depth;
        EXPECT_EQ(ProblemOfRows(header, Rows(6, rowBytes)), EndsEarly) << type << ' ' << depth;
        EXPECT_EQ(ProblemOfRows(header, WithoutLast(Rows(7, rowBytes))), EndsEarly) << type << ' ' << depth;
    }
}

TEST(PngData, APaletteMustComeBeforeItsIndexes)
{
    const Header header{.width = 3, .height = 2, .depth = 4, .type = 3};
    const std::string data = Chunk("IDAT", Deflated(Rows(2, 2)));
    EXPECT_EQ(ProblemOf(header, Chunk("PLTE", "abc") + data), None);
    EXPECT_EQ(ProblemOf(header, data), Damaged);
    EXPECT_EQ(ProblemOf(header, data + Chunk("PLTE", "abc")), Damaged);
}

TEST(PngData, InvalidHeadersAreReported)
{
    const std::string data = Chunk("IDAT", Deflated(Rows(1, 64)));
    const Header invalid[] = {{.width = 0},
                              {.height = 0},
                              {.width = 0x80000000U},
                              {.depth = 3},
                              {.depth = 4},
                              {.depth = 16, .type = 3},
                              {.depth = 4, .type = 6},
                              {.type = 1},
                              {.type = 5},
                              {.interlace = 2},
                              {.compression = 1},
                              {.filter = 1}};
    for (const Header& header : invalid)
        EXPECT_EQ(ProblemOf(header, data), Damaged) << testing::PrintToString(HeaderData(header));
    EXPECT_EQ(ProblemOf({}, Chunk("IHDR", HeaderData({})) + data), Damaged);
    EXPECT_EQ(ProblemOf({}, ""), EndsEarly);
    EXPECT_FALSE(ReadPngHeader(HeaderData({}) + '\0').has_value());
}

TEST(PngData, RowsOfAnInterlacedPictureAreCountedInEachPass)
{
    // 5 by 3 pixels of 3 bytes; the passes have 1x1, 1x1, 2x0, 1x1, 3x1, 2x2 and 5x1 pixels.
    const Header header{.width = 5, .height = 3, .interlace = 1};
    // A filter that is read from a wrong position is not valid.
    std::string rows;
    for (const size_t rowBytes : {3, 3, 3, 9, 6, 6, 15})
        rows += '\0' + std::string(rowBytes, 'p');
    EXPECT_EQ(ProblemOfRows(header, rows), None);
    EXPECT_EQ(ProblemOfRows(header, WithoutLast(rows)), EndsEarly);
    EXPECT_EQ(ProblemOfRows({.interlace = 1}, Rows(1, 3)), None);
    EXPECT_EQ(ProblemOfRows({.interlace = 1}, Rows(1, 2)), EndsEarly);
}

TEST(PngData, ARowWithAnUnknownFilterIsDamaged)
{
    const Header header{.width = 2, .height = 3};
    EXPECT_EQ(ProblemOfRows(header, Rows(3, 6, 4)), None);
    EXPECT_EQ(ProblemOfRows(header, Rows(3, 6, 5)), Damaged);
    std::string last = Rows(3, 6);
    last[14] = 9;
    EXPECT_EQ(ProblemOfRows(header, last), Damaged);
}

TEST(PngData, DamagedCompressionIsReported)
{
    const Header header{.width = 40, .height = 40};
    const std::string data = Deflated(Rows(40, 120));
    EXPECT_EQ(ProblemOf(header, Chunk("IDAT", data)), None);
    EXPECT_EQ(ProblemOf(header, Chunk("IDAT", "no compressed data")), Damaged);
    EXPECT_EQ(ProblemOf(header, Chunk("IDAT", data.substr(0, data.size() / 2))), EndsEarly);
    EXPECT_EQ(ProblemOf(header, Chunk("IDAT", "")), EndsEarly);
    // A stream that needs a dictionary.
    EXPECT_EQ(ProblemOf(header, Chunk("IDAT", "\x78\xbb\x01\x02\x03\x04")), Damaged);
}

TEST(PngData, ManySmallChunksAreOneStream)
{
    const Header header{.width = 30, .height = 30};
    std::string chunks;
    for (const char byte : Deflated(Rows(30, 90)))
        chunks += Chunk("IDAT", std::string(1, byte));
    EXPECT_EQ(ProblemOf(header, chunks), None);
}

TEST(PngData, DataAfterTheLastRowIsIgnored)
{
    const Header header{.width = 2, .height = 2};
    EXPECT_EQ(ProblemOfRows(header, Rows(2, 6) + "more\x09"), None);
    EXPECT_EQ(ProblemOf(header, Chunk("IDAT", Deflated(Rows(2, 6)) + "more") + Chunk("IDAT", "x")), None);
}

TEST(PngData, RandomRowsAreComplete)
{
    std::mt19937 random(3);
    for (int round = 0; round < 200; ++round) {
        const Header header{.width = 1 + uint32_t(random() % 200), .height = 1 + uint32_t(random() % 200)};
        std::string rows = Rows(header.height, size_t(header.width) * 3);
        for (char& byte : rows)
            byte = char(random() % 5);
        EXPECT_EQ(ProblemOfRows(header, rows), None);
        rows.pop_back();
        EXPECT_EQ(ProblemOfRows(header, rows), EndsEarly);
    }
}

} // namespace vmk
