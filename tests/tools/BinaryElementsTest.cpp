#include "BinaryElements.h"

#include "Base64.h"
#include "CodePages.h"
#include "ImageFiles.h"
#include "Pictures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace vmk {

TEST(BinaryElements, AnElementIsFoundByItsId)
{
    const std::string part = Binary("a.png", "A") + "\r\n" + Binary("b.png", "B");
    const std::optional<BinaryElement> element = FindBinaryElement(part, "b.png");
    ASSERT_TRUE(element);
    EXPECT_EQ(element->tag, "<binary content-type=\"image/png\" id=\"b.png\">");
    EXPECT_EQ(element->data, Base64Encode("B"));
}

TEST(BinaryElements, TheBeginningOfAnIdFindsItToo)
{
    const std::string part = Binary("a.jpg2", "1") + Binary("a.jpg", "2") + Binary("cover.jpg", "3");
    EXPECT_EQ(FindBinaryElement(part, "cover")->data, Base64Encode("3"));
    EXPECT_EQ(FindBinaryElement(part, "a.jpg")->data, Base64Encode("1"));
    EXPECT_FALSE(FindBinaryElement(part, "over"));
}

TEST(BinaryElements, UpperCaseIsAnotherId)
{
    EXPECT_FALSE(FindBinaryElement(Binary("a.png", "A"), "A.png"));
}

TEST(BinaryElements, AnIdBeforeTheTypeFindsItsTag)
{
    const std::string part
        = Binary("z.png", "Z") + "<binary id=\"x.png\" content-type=\"image/png\">WA==</binary>";
    EXPECT_EQ(FindBinaryElement(part, "x.png")->tag, "<binary id=\"x.png\" content-type=\"image/png\">");
}

TEST(BinaryElements, AnElementWithoutItsEndIsNotFound)
{
    EXPECT_FALSE(FindBinaryElement("<binary id=\"x\">AAAA", "x"));
    EXPECT_FALSE(FindBinaryElement("<binary id=\"x\"", "x"));
    EXPECT_FALSE(FindBinaryElement("", ""));
}

TEST(BinaryElements, OnlyAnImageTypeInDoubleQuotesIsAPicture)
{
    EXPECT_TRUE(IsPictureTag("<binary content-type=\"image/svg+xml\" id=\"x\">"));
    EXPECT_FALSE(IsPictureTag("<binary content-type='image/png' id=\"x\">"));
    EXPECT_FALSE(IsPictureTag("<binary Content-Type=\"IMAGE/png\" id=\"x\">"));
    EXPECT_FALSE(IsPictureTag("<binary content-type=\"application/octet-stream\" id=\"x\">"));
}

// ---------------------------------------------------------------- removing

TEST(BinaryElements, RemovalOfTheOnlyPictureLeavesAnEmptyText)
{
    std::string part = "\r\n" + Binary("a.png", SmallPng()) + "\r\n";
    EXPECT_TRUE(RemoveBinaryElement(part, "a.png"));
    EXPECT_EQ(part, "");
}

TEST(BinaryElements, RemovalAlsoRemovesEmptyLines)
{
    std::string part
        = Binary("a.png", "A") + "\r\n" + Binary("b.png", "B") + "\r\n\r\n\r\n" + Binary("c.png", "C");
    EXPECT_TRUE(RemoveBinaryElement(part, "b.png"));
    EXPECT_EQ(part, Binary("a.png", "A") + "\r\n" + Binary("c.png", "C"));
}

TEST(BinaryElements, AMissingIdChangesNothing)
{
    for (const std::string& before :
         {std::string(), Binary("a.png", "A"), std::string("<binary id=\"x\">AAAA"),
          std::string("id=\"x\"></binary>")}) {
        std::string part = before;
        EXPECT_FALSE(RemoveBinaryElement(part, "x"));
        EXPECT_EQ(part, before);
    }
}

TEST(BinaryElements, ARemainderWithContentIsKept)
{
    std::string part = Binary("a.png", "A") + "\r\nabcde";
    EXPECT_TRUE(RemoveBinaryElement(part, "a.png"));
    EXPECT_EQ(part, "\r\nabcde");
    part = Binary("a.png", "A") + "\r\nabcd";
    EXPECT_TRUE(RemoveBinaryElement(part, "a.png"));
    EXPECT_EQ(part, "");
    part = Binary("a.png", "A") + std::string(600, '\n');
    EXPECT_TRUE(RemoveBinaryElement(part, "a.png"));
    EXPECT_EQ(part, std::string(600, '\n'));
}

// ---------------------------------------------------------------- adding

TEST(BinaryElements, AnElementIsOneLineOfTheTypeOfItsExtension)
{
    EXPECT_EQ(MakeBinaryElement(u"png"_s, "a.png", "Man"),
              "<binary content-type=\"image/png\" id=\"a.png\">TWFu</binary>");
    EXPECT_EQ(MakeBinaryElement(u"jpg"_s, "jpg_a.png", "Man"),
              "<binary content-type=\"image/jpeg\" id=\"jpg_a.png\">TWFu</binary>");
    EXPECT_EQ(MakeBinaryElement(u"png"_s, "a.png", std::string(1'000'000, 'x')).find_first_of("\r\n"),
              std::string::npos);
}

TEST(BinaryElements, AnAddedElementIsFoundWithTheSameBytes)
{
    const std::string part = "\r\n" + MakeBinaryElement(u"jpg"_s, "a.jpg", SmallJpeg());
    EXPECT_EQ(PictureBytes(FindBinaryElement(part, "a.jpg")->data), SmallJpeg());
}

// ---------------------------------------------------------------- ids

TEST(BinaryElements, AnIdIsSearchedInTheEncodingOfTheBook)
{
    const std::string part = Utf8ToBytes(Binary("обложка.jpg", "A"), CodePageCyrillic);
    EXPECT_NE(FindBinaryId(part, IdInBinaryPart(u"обложка"_s, CodePageCyrillic)), std::string::npos);
    EXPECT_EQ(FindBinaryId(part, IdInBinaryPart(u"обложка"_s, CodePageUtf8)), std::string::npos);
}

TEST(BinaryElements, MarkUpCharactersOfAnIdAreReferences)
{
    EXPECT_EQ(IdInBinaryPart(u"a&b.png"_s, CodePageUtf8), "a&amp;b.png");
    EXPECT_EQ(IdInBinaryPart(u"\u2039a\u203A\".png"_s, CodePageUtf8), "&lt;a&gt;&quot;.png");
    EXPECT_EQ(IdInBinaryPart(u"<a>"_s, CodePageUtf8), "&lt;a&gt;");
}

TEST(BinaryElements, ACharacterThatTheCodePageLacksIsAReference)
{
    EXPECT_EQ(IdInBinaryPart(u"caf\u00E9.png"_s, CodePageCyrillic), "caf&#233;.png");
    EXPECT_EQ(IdInBinaryPart(u"\U0001F600.png"_s, CodePageCyrillic), "&#128512;.png");
    EXPECT_EQ(IdInBinaryPart(u"\U0001F600.png"_s, CodePageUtf8), "\xf0\x9f\x98\x80.png");
}

} // namespace vmk
