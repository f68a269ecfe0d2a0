#include "PictureInfo.h"

#include "Pictures.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

namespace vmk {

TEST(PictureInfo, TheSizeIsReadFromTheHeader)
{
    const PictureInfo png = ReadPictureInfo(SmallPng());
    EXPECT_EQ(png.format, PictureFormat::Png);
    EXPECT_EQ(png.width, 2);
    EXPECT_EQ(png.height, 3);
    EXPECT_EQ(png.problem, QString());
    const PictureInfo jpeg = ReadPictureInfo(SmallJpeg());
    EXPECT_EQ(jpeg.format, PictureFormat::Jpeg);
    EXPECT_EQ(jpeg.width, 2);
    EXPECT_EQ(jpeg.height, 3);
    EXPECT_EQ(jpeg.problem, QString());
    const PictureInfo gif = ReadPictureInfo(std::string("GIF89a\x05\0\x07\0\x80\0\0\xff;", 15));
    EXPECT_EQ(gif.format, PictureFormat::Gif);
    EXPECT_EQ(gif.width, 5);
    EXPECT_EQ(gif.height, 7);
    EXPECT_EQ(gif.problem, QString());
}

TEST(PictureInfo, OtherContentIsUnknown)
{
    for (const char* text : {"", "x", "\x89PN", "GIF88a", "\xff\xd8", "<svg/>"}) {
        const PictureInfo info = ReadPictureInfo(text);
        EXPECT_EQ(info.format, PictureFormat::Unknown) << text;
        EXPECT_EQ(info.width, 0);
    }
}

TEST(PictureInfo, EachTruncationIsReported)
{
    for (const std::string& whole : {SmallPng(), SmallJpeg()}) {
        for (size_t length = 4; length < whole.size(); ++length)
            EXPECT_NE(ReadPictureInfo(whole.substr(0, length)).problem, QString()) << length;
    }
    EXPECT_NE(ReadPictureInfo("GIF89a").problem, QString());
}

TEST(PictureInfo, EachChangedByteOfAPngIsReported)
{
    for (size_t at = 8; at < SmallPng().size(); ++at) {
        std::string changed = SmallPng();
        changed[at] = char(changed[at] ^ 0x10);
        EXPECT_NE(ReadPictureInfo(changed).problem, QString()) << at;
    }
}

TEST(PictureInfo, AJpegWithoutASizeIsDamaged)
{
    const std::string whole = SmallJpeg();
    const size_t frame = whole.find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    // Height and width are two bytes each.
    for (const size_t at : {frame + 5, frame + 7}) {
        std::string bytes = whole;
        bytes[at] = bytes[at + 1] = '\0';
        EXPECT_EQ(ReadPictureInfo(bytes).problem, u"the data is damaged") << at;
    }
}

TEST(PictureInfo, AnyBytesAfterASignatureAreSafe)
{
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        for (const std::string& whole : {SmallPng(), SmallJpeg()}) {
            std::string changed = whole;
            for (int change = 0; change < 3; ++change)
                changed[3 + random() % (changed.size() - 3)] = char(random());
            (void)ReadPictureInfo(changed);
        }
    }
}

TEST(PictureInfo, TypesAndExtensionsNameAFormat)
{
    EXPECT_EQ(FormatOfType(u"image/png"), PictureFormat::Png);
    EXPECT_EQ(FormatOfType(u"image/JPEG"), PictureFormat::Jpeg);
    EXPECT_EQ(FormatOfType(u"jpg"), PictureFormat::Jpeg);
    EXPECT_EQ(FormatOfType(u"image/gif"), PictureFormat::Gif);
    EXPECT_EQ(FormatOfType(u"image/svg+xml"), PictureFormat::Unknown);
    EXPECT_EQ(FormatOfType(u""), PictureFormat::Unknown);
}

} // namespace vmk
