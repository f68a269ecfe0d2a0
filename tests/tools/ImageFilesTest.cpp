#include "ImageFiles.h"

#include "Base64.h"
#include "BinaryElements.h"
#include "CodePages.h"
#include "FileOperations.h"
#include "Pictures.h"
#include "Workplace.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr int Utf8 = CodePageUtf8;

class ImageFiles : public testing::Test
{
protected:
    ExtractedPictures Extract(const std::string& part, int codePage = Utf8)
    {
        numbers.clear();
        return ExtractPictures(part, codePage, Folder(), MostBinaryElements,
                               [this](int number) { numbers.append(number); });
    }
    [[nodiscard]] QString Folder() const { return workplace.Path(u"Extracted Images"_s); }
    [[nodiscard]] QStringList Files() const { return workplace.Names(u"Extracted Images"_s); }
    [[nodiscard]] std::string Content(const QString& name) const
    {
        return ReadFileText(Folder() + u'/' + name);
    }

    const Workplace workplace;
    QList<int> numbers;
};

} // namespace

TEST_F(ImageFiles, EachPictureIsWrittenToAFileNamedByItsId)
{
    const ExtractedPictures result
        = Extract(Binary("cover.png", SmallPng()) + "\r\n" + Binary("two.jpg", SmallJpeg()));
    EXPECT_EQ(result.count, 2);
    EXPECT_EQ(result.unwritten, 0);
    EXPECT_EQ(Files(), (QStringList{u"cover.png"_s, u"two.jpg"_s}));
    EXPECT_EQ(Content(u"cover.png"_s), SmallPng());
    EXPECT_EQ(Content(u"two.jpg"_s), SmallJpeg());
    EXPECT_EQ(numbers, (QList<int>{1, 2, 3}));
}

TEST_F(ImageFiles, OtherEndingsAreNamedByTheContent)
{
    Extract(Binary("pic.jpeg", SmallJpeg()) + Binary("anim.gif", "GIF89a") + Binary("cover", SmallPng())
            + Binary("SHOUT.PNG", SmallJpeg()));
    EXPECT_EQ(Files(), (QStringList{u"SHOUT.png"_s, u"anim.jpg"_s, u"cover.png"_s, u"pic.jpg"_s}));
}

TEST_F(ImageFiles, AnIdWithoutANameGetsANumber)
{
    Extract(Binary(".png", SmallPng()) + Binary("", SmallJpeg()) + Binary("  .jpg", SmallJpeg()));
    EXPECT_EQ(Files(), (QStringList{u"FbImage_1.png"_s, u"FbImage_2.jpg"_s, u"FbImage_3.jpg"_s}));
}

TEST_F(ImageFiles, ContentOtherThanPicturesIsNotCounted)
{
    const ExtractedPictures result
        = Extract(Binary("data.bin", "abc", "application/octet-stream") + Binary("a.png", SmallPng()));
    EXPECT_EQ(result.count, 1);
    EXPECT_EQ(Files(), QStringList{u"a.png"_s});
    EXPECT_EQ(numbers, (QList<int>{1, 1, 2}));
}

TEST_F(ImageFiles, TheOrderOfTheAttributesDoesNotMatter)
{
    Extract("<binary id=\"x.png\" content-type=\"image/png\">" + Base64Encode(SmallPng()) + "</binary>");
    EXPECT_EQ(Content(u"x.png"_s), SmallPng());
}

TEST_F(ImageFiles, LineEndsInTheDataAreRemoved)
{
    std::string text = Base64Encode(SmallPng());
    for (size_t at = 10; at < text.size(); at += 12)
        text.insert(at, "\r\n");
    Extract("<binary content-type=\"image/png\" id=\"x.png\">\n" + text + "\r</binary>");
    EXPECT_EQ(Content(u"x.png"_s), SmallPng());
}

TEST_F(ImageFiles, ContentThatIsNotBase64IsWrittenUnchanged)
{
    Extract("<binary content-type=\"image/gif\" id=\"x.gif\">no base64!\r\n</binary>");
    EXPECT_EQ(Content(u"x.jpg"_s), "no base64!");
}

TEST_F(ImageFiles, TheLaterOfTwoPicturesWithOneNameIsKeptAndBothCount)
{
    EXPECT_EQ(Extract(Binary("a.png", SmallPng()) + Binary("dir/a.png", SmallPng() + "later")).count, 2);
    EXPECT_EQ(Content(u"a.png"_s), SmallPng() + "later");
}

TEST_F(ImageFiles, AnElementWithoutItsEndEndsTheExtraction)
{
    EXPECT_EQ(
        Extract(Binary("a.png", SmallPng()) + "<binary content-type=\"image/png\" id=\"b.png\">AAAA").count,
        1);
    EXPECT_EQ(Extract(Binary("a.png", SmallPng()) + "<binary content-type=\"image/png\"").count, 1);
}

TEST_F(ImageFiles, NoMoreElementsThanTheLimitAreRead)
{
    std::string part;
    for (int i = 0; i < 12; ++i)
        part += Binary("a" + std::to_string(i) + ".png", "x");
    int calls = 0;
    const ExtractedPictures result = ExtractPictures(part, Utf8, Folder(), 10, [&](int) { ++calls; });
    EXPECT_EQ(result.count, 10);
    EXPECT_EQ(calls, 10);
    EXPECT_EQ(Files().size(), 10);
}

TEST_F(ImageFiles, AnIdBeyondAsciiNamesItsFileInAnyEncoding)
{
    Extract(EncodeText(QString::fromStdString(Binary("обложка.png", SmallPng())), CodePageCyrillic),
            CodePageCyrillic);
    EXPECT_EQ(Files(), QStringList{u"обложка.png"_s});
}

// ---------------------------------------------------------------- ids that are not to be trusted

TEST_F(ImageFiles, NothingIsWrittenOutsideTheFolder)
{
    const QStringList before = workplace.Names();
    const std::vector<std::string> ids = {"../../x.png",
                                          "..\\..\\y.png",
                                          "/etc/z.png",
                                          "C:\\w.png",
                                          "C:v.png",
                                          ".",
                                          "..",
                                          "...",
                                          "../",
                                          "/",
                                          "a/../../b.png",
                                          std::string("nul\0byte.png", 12),
                                          "tab\there.png",
                                          "line\nend.png",
                                          "escape\x1b[2J.png",
                                          std::string(5000, 'n') + ".png",
                                          std::string(251, 'm') + ".png",
                                          "Case.png",
                                          "case.png",
                                          "CON.png"};
    std::string part;
    for (const std::string& id : ids)
        part += Binary(id, SmallPng());
    const ExtractedPictures result = Extract(part);
    EXPECT_EQ(result.count, int(ids.size()));
    EXPECT_EQ(result.unwritten, 0);
    QStringList after = workplace.Names();
    after.removeOne(u"Extracted Images"_s);
    EXPECT_EQ(after, before);
    const QStringList files = Files();
    for (const QString& name :
         {u"x.png"_s, u"y.png"_s, u"z.png"_s, u"w.png"_s, u"b.png"_s, u"Case.png"_s, u"case.png"_s})
        EXPECT_TRUE(files.contains(name)) << name.toStdString();
    for (const QString& name : files) {
        EXPECT_TRUE(QFileInfo(Folder() + u'/' + name).isFile()) << name.toStdString();
        EXPECT_FALSE(name.contains(QRegularExpression(u"[[:cntrl:]/]"_s))) << name.toStdString();
    }
}

TEST_F(ImageFiles, ANameThatTheFileSystemRefusesIsReplacedByANumber)
{
    Extract(Binary("a.png", SmallPng()) + Binary(std::string(5000, 'n') + ".png", SmallPng())
            + Binary("bell\a.jpg", SmallJpeg()));
    EXPECT_EQ(Files(), (QStringList{u"FbImage_2.png"_s, u"FbImage_3.jpg"_s, u"a.png"_s}));
}

TEST_F(ImageFiles, AFolderWithTheNameIsKeptAndThePictureGetsANumber)
{
    workplace.MakeFolders(u"Extracted Images/a.png"_s);
    Extract(Binary("a.png", SmallPng()));
    EXPECT_EQ(Files(), (QStringList{u"FbImage_1.png"_s, u"a.png"_s}));
}

TEST_F(ImageFiles, ALinkWithTheNameIsNotWrittenThrough)
{
    workplace.Make(u"precious"_s, "text");
    workplace.MakeFolders(u"Extracted Images"_s);
    ASSERT_TRUE(QFile::link(workplace.Path(u"precious"_s), Folder() + u"/a.png"_s));
    Extract(Binary("a.png", SmallPng()));
    EXPECT_EQ(ReadFileText(workplace.Path(u"precious"_s)), "text");
    EXPECT_FALSE(QFileInfo(Folder() + u"/a.png"_s).isSymLink());
    EXPECT_EQ(Content(u"a.png"_s), SmallPng());
}

TEST_F(ImageFiles, PicturesThatCannotBeWrittenAreCountedSeparately)
{
    workplace.Make(u"Extracted Images"_s, "a file");
    const ExtractedPictures result = Extract(Binary("a.png", SmallPng()));
    EXPECT_EQ(result.count, 1);
    EXPECT_EQ(result.unwritten, 1);
}

} // namespace vmk
