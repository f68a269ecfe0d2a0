// The walk over files, folders, archives and lists: every book once, in a fixed order, whatever is damaged.

#include "BookWalk.h"
#include "FileNames.h"
#include "QtPrinting.h"
#include "Workplace.h"
#include "ZipBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <sys/stat.h>

using namespace vmk;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

class BookWalkTest : public testing::Test
{
protected:
    void SetUp() override { root = place.Folder().toStdString() + "/"; }

    std::string write(const std::string& name, const std::string& bytes)
    {
        fs::create_directories(fs::path(root + name).parent_path());
        std::ofstream(root + name, std::ios::binary) << bytes;
        return root + name;
    }

    /// The books as "NAME = CONTENT", failures as "NAME: REASON", without the path of the test's folder.
    std::vector<std::string> walk(BookInput input)
    {
        for (std::string& path : input.paths)
            if (path != "-" && !path.starts_with('/'))
                path = root + path;
        BookWalk books(std::move(input));
        std::vector<std::string> lines;
        while (std::optional<BookItem> item = books.next()) {
            if (item->failure.isEmpty())
                books.load(*item);
            // A worker receives the item as bytes.
            const BookItem sent = BookItem::ofBytes(item->toBytes());
            std::string line = EncodeFileName(sent.name).toStdString();
            if (line.starts_with(root))
                line = line.substr(root.size());
            const FileContent content = sent.failure.isEmpty() ? sent.content() : FileContent();
            if (!sent.failure.isEmpty())
                line += ": " + sent.failure.toStdString();
            else if (content.outcome != ReadOutcome::Ok)
                line += ": " + ReadFailureText(content).toStdString();
            else
                line += " = " + content.bytes;
            lines.push_back(line + (sent.output.empty() ? "" : " > " + sent.output));
        }
        return lines;
    }

    std::vector<std::string> walk(const std::vector<std::string>& paths)
    {
        return walk(BookInput{.paths = paths});
    }

    Workplace place;
    std::string root;
};

TEST_F(BookWalkTest, AFolderHasItsBooksInTheOrderOfTheBytesOfTheirPaths)
{
    for (const char* name : {"lib/b.fb2", "lib/a/2.FB2", "lib/a.fb2", "lib/a/1.fb2", "lib/a-1.fb2",
                             "lib/Я.fb2", "lib/readme.txt", "lib/fb2", "lib/c/d/e/x.fb2"})
        write(name, "x");
    write("lib/a/z.zip",
          MakeZip({{"m.fb2", "in"}, {"notes.txt", "no"}, {"dir/"}, {"dir/n.FB2", "deep", true}}));
    const std::vector<std::string> expected
        = {"lib/a-1.fb2 = x", "lib/a.fb2 = x",          "lib/a/1.fb2 = x",
           "lib/a/2.FB2 = x", "lib/a/z.zip:m.fb2 = in", "lib/a/z.zip:dir/n.FB2 = deep",
           "lib/b.fb2 = x",   "lib/c/d/e/x.fb2 = x",    "lib/Я.fb2 = x"};
    EXPECT_EQ(walk({"lib"}), expected);
    EXPECT_EQ(walk({"lib/"}), expected);
}

TEST_F(BookWalkTest, ANamedFileIsABookWhateverItsName)
{
    write("notes.txt", "text");
    EXPECT_THAT(walk({"notes.txt", "missing.fb2", "notes.txt"}),
                ElementsAre("notes.txt = text", "missing.fb2: file not found", "notes.txt = text"));
}

TEST_F(BookWalkTest, AMemberIsNamedAfterAColon)
{
    write("a.zip", MakeZip({{"x.fb2", "1"}, {"dir/y.fb2", "2"}, {"in.zip", MakeZip({{"z.fb2", "3"}})}}));
    EXPECT_THAT(walk({"a.zip:dir/y.fb2", "a.zip:x.fb2", "a.zip:in.zip:z.fb2"}),
                ElementsAre("a.zip:dir/y.fb2 = 2", "a.zip:x.fb2 = 1", "a.zip:in.zip:z.fb2 = 3"));
    EXPECT_THAT(walk({"a.zip:none.fb2", "a.zip:in.zip:none.fb2", "b.zip:x.fb2"}),
                ElementsAre("a.zip:none.fb2: the archive has no such member",
                            "a.zip:in.zip:none.fb2: the archive has no such member",
                            "b.zip:x.fb2: file not found"));
}

TEST_F(BookWalkTest, AFileWhoseNameLooksLikeAMemberIsAFile)
{
    write("a.zip", MakeZip({{"x.fb2", "member"}}));
    write("a.zip:x.fb2", "file");
    EXPECT_THAT(walk({"a.zip:x.fb2"}), ElementsAre("a.zip:x.fb2 = file"));
}

TEST_F(BookWalkTest, DamagedArchivesAndMembersAreOneLineEach)
{
    const std::string good = MakeZip({{"x.fb2", "1"}});
    write("lib/1.zip", good.substr(0, good.size() - 10));
    write("lib/2.zip", "no archive");
    write("lib/3.zip",
          MakeZip({{.name = "a.fb2", .content = "a", .checksum = 5},
                   {.name = "b.fb2", .content = "b", .isEncrypted = true},
                   {.name = "c.fb2", .content = "c"},
                   {.name = "d.fb2", .content = std::string(100, 'd'), .isDeflated = true, .size = 50}}));
    write("lib/4.zip", good);
    const std::vector<std::string> lines = walk({"lib"});
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_THAT(lines[0], HasSubstr("lib/1.zip: damaged archive: "));
    EXPECT_THAT(lines[1], HasSubstr("lib/2.zip: damaged archive: "));
    EXPECT_EQ(lines[2],
              "lib/3.zip:a.fb2: cannot be read: damaged archive: the content of the member does not have its "
              "checksum");
    EXPECT_EQ(lines[3], "lib/3.zip:b.fb2: the member is encrypted");
    EXPECT_EQ(lines[4], "lib/3.zip:c.fb2 = c");
    EXPECT_EQ(
        lines[5],
        "lib/3.zip:d.fb2: cannot be read: damaged archive: the content of the member does not have its size");
    EXPECT_EQ(lines[6], "lib/4.zip:x.fb2 = 1");
}

TEST_F(BookWalkTest, AMemberThatExpandsTooMuchIsRefused)
{
    const std::string large(40'000'000, 'x');
    write("bomb.zip",
          MakeZip({{.name = "big.fb2", .content = large, .isDeflated = true},
                   {.name = "lie.fb2", .content = "small", .size = 0x30000000},
                   {.name = "good.fb2", .content = "good"}}));
    EXPECT_THAT(
        walk({"bomb.zip"}),
        ElementsAre("bomb.zip:big.fb2: refused: the member expands to 40000000 bytes, more than 200 times "
                    "its packed size",
                    "bomb.zip:lie.fb2: refused: the member expands to 805306368 bytes",
                    "bomb.zip:good.fb2 = good"));
}

TEST_F(BookWalkTest, MembersThatShareTheirBytesCannotExpandWithoutEnd)
{
    // 15 MB each, which is allowed; all have the same few bytes.
    const std::string large(15'000'000, 'x');
    std::vector<ZipEntry> entries = {{.name = "0.fb2", .content = large, .isDeflated = true}};
    for (int i = 1; i < 50; ++i) {
        entries.push_back({.name = std::to_string(i) + ".fb2",
                           .isDeflated = true,
                           .size = 15'000'000,
                           .checksum = 1,
                           .sharesData = true});
    }
    write("bomb.zip", MakeZip(entries));
    write("next.zip", MakeZip({{"good.fb2", "good"}}));
    BookWalk books(BookInput{.paths = {root + "bomb.zip", root + "next.zip"}});
    std::vector<std::string> names;
    std::string refusal;
    while (const std::optional<BookItem> item = books.next()) {
        names.push_back(item->name.toStdString().substr(root.size()));
        if (!item->failure.isEmpty())
            refusal = item->failure.toStdString();
    }
    ASSERT_EQ(names.size(), 6U);
    EXPECT_EQ(names[3], "bomb.zip:3.fb2");
    EXPECT_EQ(names[4], "bomb.zip");
    EXPECT_EQ(refusal,
              "refused from 4.fb2 on: the members expand to more than 200 times the size of the archive");
    EXPECT_EQ(names[5], "next.zip:good.fb2");
}

TEST_F(BookWalkTest, AnArchiveInAnArchiveIsOpenedButNoDeeper)
{
    const std::string inner = MakeZip({{"x.fb2", "1"}});
    write("outer.zip",
          MakeZip({{"a.fb2", "0"},
                   {"b.zip", inner, true},
                   {"c.zip", "no archive"},
                   {"d.zip", MakeZip({{"e.zip", inner}, {"f.fb2", "2"}})},
                   {"g.fb2", "3"}}));
    const std::vector<std::string> lines = walk({"outer.zip"});
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_EQ(lines[0], "outer.zip:a.fb2 = 0");
    EXPECT_EQ(lines[1], "outer.zip:b.zip:x.fb2 = 1");
    EXPECT_THAT(lines[2], HasSubstr("outer.zip:c.zip: damaged archive: "));
    EXPECT_EQ(lines[3], "outer.zip:d.zip:e.zip: refused: an archive in an archive in an archive");
    EXPECT_EQ(lines[4], "outer.zip:d.zip:f.fb2 = 2");
    EXPECT_EQ(lines[5], "outer.zip:g.fb2 = 3");
}

TEST_F(BookWalkTest, MembersWithTheSameNameAreAllRead)
{
    write("a.zip", MakeZip({{"x.fb2", "1"}, {"x.fb2", "2"}}));
    EXPECT_THAT(walk({"a.zip"}), ElementsAre("a.zip:x.fb2 = 1", "a.zip:x.fb2 = 2"));
}

TEST_F(BookWalkTest, ALinkToAFileIsReadAndALinkToAFolderIsNot)
{
    write("lib/a.fb2", "a");
    write("other/b.fb2", "b");
    fs::create_symlink(root + "other/b.fb2", root + "lib/b.fb2");
    fs::create_symlink(root + "other", root + "lib/folder");
    fs::create_symlink(root + "lib", root + "lib/self");
    fs::create_symlink(root + "none", root + "lib/none.fb2");
    ASSERT_EQ(mkfifo((root + "lib/pipe.fb2").c_str(), 0600), 0);
    EXPECT_THAT(walk({"lib"}), ElementsAre("lib/a.fb2 = a", "lib/b.fb2 = b"));
}

TEST_F(BookWalkTest, AFolderThatCannotBeReadIsOneLine)
{
    write("lib/a/1.fb2", "1");
    write("lib/b/2.fb2", "2");
    write("lib/c/3.fb2", "3");
    chmod((root + "lib/b").c_str(), 0);
    const PlainUser plain;
    EXPECT_THAT(
        walk({"lib"}),
        ElementsAre("lib/a/1.fb2 = 1", "lib/b/: cannot be read: Permission denied", "lib/c/3.fb2 = 3"));
    chmod((root + "lib/b").c_str(), 0755);
}

TEST_F(BookWalkTest, NamesThatAreNotUtf8AreShownAndRead)
{
    write("lib/\xaa\xad\xa8.fb2", "866");
    write("lib/\xaa\xd0\xb0.fb2", "mixed");
    EXPECT_THAT(walk({"lib"}), ElementsAre("lib/\xaa\xad\xa8.fb2 = 866", "lib/\xaa\xd0\xb0.fb2 = mixed"));
    // Qt cannot remove them.
    fs::remove_all(root + "lib");
}

TEST_F(BookWalkTest, AnInputWithoutBooksIsReported)
{
    write("empty.zip", MakeZip({{"notes.txt", "no"}}));
    fs::create_directories(root + "empty/inner");
    write("lib/empty.zip", MakeZip({{"notes.txt", "no"}}));
    write("lib/x.fb2", "x");
    EXPECT_THAT(walk({"empty.zip", "empty", "lib"}),
                ElementsAre("empty.zip: contains no book", "empty: contains no book", "lib/x.fb2 = x"));
}

TEST_F(BookWalkTest, AListHasPathsInLinesOrWithNul)
{
    write("a.fb2", "a");
    write("with\nline.fb2", "b");
    write("lib/c.fb2", "c");
    const std::string list = write("list", root + "a.fb2\n\n" + root + "lib\n" + root + "none.fb2");
    EXPECT_THAT(walk({.listFile = list}),
                ElementsAre("a.fb2 = a", "lib/c.fb2 = c", "none.fb2: file not found"));
    const std::string nul = write("nul", root + "with\nline.fb2" + '\0' + root + "a.fb2" + '\0');
    EXPECT_THAT(walk({.paths = {"lib"}, .listFile = nul, .listSeparator = '\0'}),
                ElementsAre("lib/c.fb2 = c", "with\nline.fb2 = b", "a.fb2 = a"));
    EXPECT_THAT(walk({.paths = {"a.fb2"}, .listFile = root + "missing"}),
                ElementsAre("a.fb2 = a", "missing: cannot be read: No such file or directory"));
}

TEST_F(BookWalkTest, TheFolderOfTheResultsIsNotEntered)
{
    write("lib/a.fb2", "a");
    write("lib/out/b.fb2", "b");
    EXPECT_THAT(walk({.paths = {"lib"}, .skippedFolder = root + "lib/out"}), ElementsAre("lib/a.fb2 = a"));
}

TEST_F(BookWalkTest, OutputsHaveThePathsOfTheInput)
{
    write("lib/a.fb2", "a");
    write("lib/z.zip", MakeZip({{"../../m.fb2", "m"}, {"in.zip", MakeZip({{"/n.fb2", "n"}})}}));
    const std::string below = root.substr(1);
    EXPECT_THAT(walk({.paths = {"lib"}, .withOutputs = true}),
                ElementsAre("lib/a.fb2 = a > " + below + "lib/a.fb2",
                            "lib/z.zip:../../m.fb2 = m > " + below + "lib/z.zip/__/__/m.fb2",
                            "lib/z.zip:in.zip:/n.fb2 = n > " + below + "lib/z.zip/in.zip/n.fb2"));
}

} // namespace
