// `vmk versions` and `vmk recover` from the view of the user.

#include "JournalWriter.h"
#include "ProgramRun.h"
#include "TestPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <iterator>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

const std::string Book
    = "<?xml version=\"1.0\" encoding=\"utf-8\"?><FictionBook><body><p>text</p></body></FictionBook>";

/// A portable folder with the program, so that its workspace belongs to the test alone.
class VersionsOfBooks : public testing::Test
{
protected:
    VersionsOfBooks()
    {
        std::filesystem::copy_file(VMK_BIN_DIR "/vmk", path("vmk"));
        QDir(folder.path()).mkdir(u"VMK Office"_s);
        std::ofstream(path("book.fb2"), std::ios::binary) << Book;
    }

    std::string path(const std::string& name) const { return folder.path().toStdString() + "/" + name; }
    std::string read(const std::string& name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    ProgramRun run(const std::vector<std::string>& arguments) const
    {
        return RunProgram(path("vmk"), arguments);
    }

    QTemporaryDir folder;
};

TEST_F(VersionsOfBooks, AReplacedBookIsListedAndRestored)
{
    EXPECT_EQ(run({"convert", path("book.fb2"), "--out", path("book.fb2"), "--style", "compact"}).exitCode,
              0);
    const std::string converted = read("book.fb2");
    EXPECT_NE(converted, Book);
    const ProgramRun list = run({"versions", path("book.fb2")});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_THAT(list.output,
                testing::MatchesRegex("1: 20[0-9-]+ [0-9:]+, " + std::to_string(Book.size())
                                      + " bytes, .*/VMK Office/Backup/book.fb2-.*\\.version\n"));

    EXPECT_EQ(run({"versions", path("book.fb2"), "--restore", "1", "--out", path("old.fb2")}).exitCode, 0);
    EXPECT_EQ(read("old.fb2"), Book);
    EXPECT_EQ(read("book.fb2"), converted);

    EXPECT_EQ(run({"versions", path("book.fb2"), "--restore", "1"}).exitCode, 0);
    EXPECT_EQ(read("book.fb2"), Book);
    // The book that was replaced is a version now.
    EXPECT_EQ(run({"versions", path("book.fb2"), "--restore", "1"}).exitCode, 0);
    EXPECT_EQ(read("book.fb2"), converted);
}

TEST_F(VersionsOfBooks, AsJson)
{
    EXPECT_EQ(run({"convert", path("book.fb2"), "--out", path("book.fb2")}).exitCode, 0);
    const ProgramRun list = run({"versions", "--json", path("book.fb2")});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_THAT(list.output, testing::StartsWith("{\"book\":\""));
    EXPECT_THAT(list.output, testing::HasSubstr("\"version\":1"));
}

TEST_F(VersionsOfBooks, ABookWithoutVersionsIsNoError)
{
    const ProgramRun list = run({"versions", path("book.fb2")});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_EQ(list.output, "");
    EXPECT_THAT(list.errors, testing::HasSubstr("no earlier versions"));
    EXPECT_FALSE(std::filesystem::exists(path("VMK Office/Backup")));
}

TEST_F(VersionsOfBooks, AMissingVersionIsRefused)
{
    const ProgramRun restored = run({"versions", path("book.fb2"), "--restore", "1"});
    EXPECT_EQ(restored.exitCode, 2);
    EXPECT_THAT(restored.errors, testing::HasSubstr("there is no version 1"));
    EXPECT_EQ(read("book.fb2"), Book);
}

TEST_F(VersionsOfBooks, WrongArgumentsAreRefused)
{
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"versions"},
                                               {"versions", "a", "b"},
                                               {"versions", "a", "--restore", "0"},
                                               {"versions", "a", "--restore", "x"},
                                               {"versions", "a", "--out", "b"},
                                               {"versions", "a", "--nonsense"},
                                               {"recover", "a"},
                                               {"recover", "--out", "a"},
                                               {"recover", "a", "b", "--out", "c"}}) {
        const ProgramRun refused = run(arguments);
        EXPECT_EQ(refused.exitCode, 2);
        EXPECT_THAT(refused.errors, testing::HasSubstr("--help"));
    }
}

TEST_F(VersionsOfBooks, WithoutAWorkspaceNothingIsKept)
{
    QDir(folder.path()).rmdir(u"VMK Office"_s);
    EXPECT_EQ(run({"convert", path("book.fb2"), "--out", path("book.fb2")}).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(path("VMK Office")));
}

// ---------------------------------------------------------------- journals

/// Writes a journal as a crashed editor leaves it; returns its path.
std::string MakeJournal(const QString& recovery, const QString& book)
{
    JournalBase base;
    base.facts.path = book;
    base.facts.pageFront = "<HTML><BODY>";
    base.facts.fileEncodingName = "utf-8";
    base.facts.fileCodePage = 65001;
    base.binary = std::make_shared<const std::string>();
    base.tags = {{u"DIV"_s, QString()}};
    for (const char* text : {"<FictionBook>", "<p>recovered</p>", "</FictionBook>"})
        base.lines.push_back(MakeLine({1, QString::fromLatin1(text), {}}));
    JournalWriter writer(recovery);
    EXPECT_TRUE(writer.begin(base));
    return writer.path().toStdString();
}

TEST_F(VersionsOfBooks, AJournalIsListedAndConverted)
{
    const QString office = folder.path() + u"/VMK Office"_s;
    const std::string journal = MakeJournal(office + u"/Recovery"_s, u"/books/lost.fb2"_s);
    const ProgramRun list = run({"recover"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_THAT(list.output, testing::StartsWith(journal + ": 20"));
    EXPECT_THAT(list.output, testing::EndsWith(", /books/lost.fb2\n"));

    const ProgramRun converted = run({"recover", journal, "--out", path("found.fb2")});
    EXPECT_EQ(converted.exitCode, 0) << converted.errors;
    EXPECT_THAT(read("found.fb2"), testing::HasSubstr("<p>recovered</p>"));
    EXPECT_TRUE(std::filesystem::exists(journal));
}

TEST_F(VersionsOfBooks, AJournalOfARunningProgramIsRefused)
{
    const QString recovery = folder.path() + u"/VMK Office/Recovery"_s;
    const std::string journal = MakeJournal(recovery, u"/books/lost.fb2"_s);
    const LockedFile lock = LockedFile::open(QString::fromStdString(journal));
    ASSERT_TRUE(lock);
    const ProgramRun refused = run({"recover", journal, "--out", path("found.fb2")});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_THAT(refused.errors, testing::HasSubstr("cannot be read"));
    EXPECT_FALSE(std::filesystem::exists(path("found.fb2")));
}

TEST_F(VersionsOfBooks, ADamagedJournalIsRefused)
{
    const ProgramRun refused = run({"recover", path("book.fb2"), "--out", path("found.fb2")});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_THAT(refused.errors, testing::HasSubstr("damaged"));
}

} // namespace
