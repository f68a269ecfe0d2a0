// Archives: names in old code pages, and a clear reason for everything that is damaged.

#include "ZipArchive.h"
#include "MemberNames.h"
#include "QtPrinting.h"
#include "ZipBuilder.h"

#include <gtest/gtest.h>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

/// Reads and unpacks one member; the reason on failure.
std::string Content(const std::string& zip, uint64_t index)
{
    QString problem;
    const auto archive = ZipArchive::ofBytes(zip, &problem);
    if (!archive)
        return "archive: " + problem.toStdString();
    const std::optional<PackedMember> packed = archive->read(index, &problem);
    if (!packed)
        return "read: " + problem.toStdString();
    const std::optional<std::string> content = Unpack(*packed, &problem);
    return content ? *content : "unpack: " + problem.toStdString();
}

} // namespace

TEST(ZipArchive, StoredAndDeflatedMembersAreReadInTheOrderOfTheDirectory)
{
    const std::string text(300'000, 'x');
    const std::string zip
        = MakeZip({{"one.fb2", "first"}, {"folder/"}, {"folder/two.fb2", text, true}, {"empty.fb2"}});
    QString problem;
    const auto archive = ZipArchive::ofBytes(zip, &problem);
    ASSERT_TRUE(archive) << problem.toStdString();
    ASSERT_EQ(archive->count(), 4U);
    EXPECT_EQ(archive->member(1).name, u"folder/"_s);
    EXPECT_EQ(archive->member(2).name, u"folder/two.fb2"_s);
    EXPECT_EQ(archive->member(2).size, 300'000U);
    EXPECT_LT(archive->member(2).packedSize, 1000U);
    EXPECT_EQ(Content(zip, 0), "first");
    EXPECT_EQ(Content(zip, 2), text);
    EXPECT_EQ(Content(zip, 3), "");
}

TEST(ZipArchive, TheContentMustHaveItsSizeAndItsChecksum)
{
    const std::string text(1000, 'x');
    EXPECT_EQ(Content(MakeZip({{.name = "a", .content = text, .checksum = 1}}), 0),
              "unpack: damaged archive: the content of the member does not have its checksum");
    for (const uint32_t size : {0U, 999U, 1001U, 0x7fffffffU})
        EXPECT_EQ(Content(MakeZip({{.name = "a", .content = text, .isDeflated = true, .size = size}}), 0),
                  "unpack: damaged archive: the content of the member does not have its size")
            << size;
    std::string damaged = MakeZip({{.name = "a", .content = text, .isDeflated = true}});
    damaged[31] = '\xff'; // the first byte of the data
    EXPECT_EQ(Content(damaged, 0),
              "unpack: damaged archive: the content of the member does not have its size");
}

TEST(ZipArchive, AnArchiveCutAnywhereIsRefusedOrReadsTheSame)
{
    const std::string zip = MakeZip({{"a.fb2", "first", true}, {"b.fb2", "second"}});
    for (size_t length = 0; length < zip.size(); ++length)
        EXPECT_TRUE(Content(zip.substr(0, length), 1).starts_with("archive: damaged archive: ")) << length;
    EXPECT_EQ(Content(zip, 1), "second");
}

TEST(ZipArchive, AChangedByteNeverChangesAContentUnnoticed)
{
    const std::string zip = MakeZip({{"a.fb2", "the content of the only book", true}});
    for (size_t at = 0; at < zip.size(); ++at) {
        for (const int change : {1, 0x80, 0xff}) {
            std::string other = zip;
            other[at] = static_cast<char>(other[at] ^ change);
            const std::string content = Content(other, 0);
            EXPECT_TRUE(content == "the content of the only book" || content.find("damaged archive: ") <= 9)
                << at << ' ' << content;
        }
    }
}

TEST(ZipArchive, AMissingFileIsAProblem)
{
    QString problem;
    EXPECT_EQ(ZipArchive::open("/nonexistent/a.zip", &problem), nullptr);
    EXPECT_TRUE(problem.startsWith(u"damaged archive: "_s)) << problem.toStdString();
}

TEST(ZipArchive, EncryptedMembersAreMarked)
{
    QString problem;
    const auto archive = ZipArchive::ofBytes(
        MakeZip({{.name = "a", .content = "secret", .isEncrypted = true}, {.name = "b", .content = "open"}}),
        &problem);
    ASSERT_TRUE(archive);
    EXPECT_TRUE(archive->member(0).isEncrypted);
    EXPECT_FALSE(archive->member(1).isEncrypted);
}

TEST(ZipArchive, AnUnknownCompressionIsAProblemOfTheMember)
{
    EXPECT_TRUE(Content(MakeZip({{.name = "a", .content = "text", .method = 77}}), 0)
                    .starts_with("read: damaged archive: "));
}

TEST(MemberName, IsInCodePage866UnlessItIsUtf8)
{
    EXPECT_EQ(MemberName("book.fb2", false), u"book.fb2"_s);
    // "Книга Ёж.fb2" in code page 866.
    EXPECT_EQ(MemberName("\x8a\xad\xa8\xa3\xa0 \xf0\xa6.fb2", false), u"Книга Ёж.fb2"_s);
    EXPECT_EQ(MemberName("Книга Ёж.fb2", true), u"Книга Ёж.fb2"_s);
    // Without the mark, as some programs write it.
    EXPECT_EQ(MemberName("Книга Ёж.fb2", false), u"Книга Ёж.fb2"_s);
    // "раб" in code page 866 is also valid UTF-8, of a letter that no name has.
    EXPECT_EQ(MemberName("\xe0\xa0\xa1.fb2", false), u"раб.fb2"_s);
    // A mark on bytes that are not UTF-8 is wrong.
    EXPECT_EQ(MemberName("\x8a\xad\xa8\xa3\xa0", true), u"Книга"_s);
    // Each of the 128 upper characters is a different one.
    std::string upper;
    for (int i = 128; i < 256; ++i)
        upper += static_cast<char>(i);
    QString names = MemberName(upper, false);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
    EXPECT_EQ(MemberName("\xdf", false), u"▀"_s);
}

TEST(MemberName, AnArchiveDecidesByItsMark)
{
    QString problem;
    const auto archive
        = ZipArchive::ofBytes(MakeZip({{"\x8a\xad.fb2", "x"},
                                       {.name = "Кн.fb2", .content = "x", .isUtf8 = true},
                                       {.name = "\xe0\xa0\xa1.fb2", .content = "x", .isUtf8 = true},
                                       {"folder\\a.fb2", "x"}}),
                              &problem);
    ASSERT_TRUE(archive);
    EXPECT_EQ(archive->member(0).name, u"Кн.fb2"_s);
    EXPECT_EQ(archive->member(1).name, u"Кн.fb2"_s);
    EXPECT_EQ(archive->member(2).name, QString::fromUtf8("\xe0\xa0\xa1.fb2"));
    EXPECT_EQ(archive->member(3).name, u"folder/a.fb2"_s);
}
