// `vmk clean` as the user meets it.

#include "CleanUpTable.h"
#include "ProgramRun.h"
#include "QtPrinting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
#include <iterator>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;
using testing::HasSubstr;

const std::string Book
    = "<?xml version=\"1.0\" encoding=\"utf-8\"?><FictionBook><body><p>one two</p><p>Two</p></body>"
      "</FictionBook>";

class Clean : public testing::Test
{
protected:
    std::string path(const std::string& name) const { return folder.path().toStdString() + "/" + name; }
    std::string write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }
    std::string table(const std::string& name, std::vector<CleanUpRow> rows) const
    {
        return write(name, CleanUpFileBytes({u"selected fragment"_s, std::move(rows)}));
    }
    std::string read(const std::string& name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    QTemporaryDir folder;
};

TEST_F(Clean, CleansTheWholeBookAndPrintsALineForEachRow)
{
    const std::string rows = table(
        "t.dat",
        {{u"two"_s, u"2"_s}, {u"(a"_s, QString(), false, true}, {u"x"_s, QString(), false, false, false}});
    const std::string book = write("a.fb2", Book);
    const ProgramRun run = RunProgram("vmk", {"clean", "--table", rows, book, "--out", path("b.fb2")});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(run.output,
              book + ": " + rows + ":1: 2\n" + book + ": " + rows + ":2: not a valid regular expression\n"
                  + book + ": " + rows + ":3: not used\n");
    EXPECT_THAT(read("b.fb2"), HasSubstr("<p>one 2</p>"));
    EXPECT_THAT(read("b.fb2"), HasSubstr("<p>2</p>"));
    EXPECT_EQ(read("a.fb2"), Book);
}

TEST_F(Clean, WithoutAMatchItSavesWhatConvertSaves)
{
    const std::string rows = table("t.dat", {{u"nothing like it"_s, u"2"_s}});
    const std::string book = write("a.fb2", Book);
    EXPECT_EQ(RunProgram("vmk", {"clean", "--table", rows, book, "--out", path("b.fb2")}).exitCode, 0);
    EXPECT_EQ(RunProgram("vmk", {"convert", book, "--out", path("c.fb2")}).exitCode, 0);
    EXPECT_EQ(read("b.fb2"), read("c.fb2"));
}

TEST_F(Clean, SeveralTablesAreAppliedInOrder)
{
    const std::string first = table("1.dat", {{u"one"_s, u"two"_s}});
    const std::string second = table("2.dat", {{u"two"_s, u"3"_s}});
    const std::string book = write("a.fb2", Book);
    EXPECT_EQ(RunProgram("vmk", {"clean", "--table", first, "--table", second, "--in-place", book}).exitCode,
              0);
    EXPECT_THAT(read("a.fb2"), HasSubstr("<p>3 3</p>"));
}

TEST_F(Clean, ADryRunWritesNoBook)
{
    const std::string rows = table("t.dat", {{u"two"_s, u"2"_s}});
    const std::string book = write("a.fb2", Book);
    const ProgramRun run
        = RunProgram("vmk", {"clean", "--table", rows, "--dry-run", "--in-place", "--json", book});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output,
              R"({"book":")" + book + R"(","replacements":2,"row":1,"state":"applied","table":")" + rows
                  + "\"}\n");
    EXPECT_EQ(read("a.fb2"), Book);
}

TEST_F(Clean, ABookThatWouldBreakIsNotWrittenUnlessForced)
{
    const std::string rows
        = table("t.dat", {{u"two"_s, u"2"_s}, {u"</p>"_s, QString()}, {u"<body>"_s, QString()}});
    const std::string book = write("a.fb2", Book);
    const ProgramRun refused = RunProgram("vmk", {"clean", "--table", rows, "--in-place", book});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.errors, "vmk: " + book + ": not written: no longer well-formed after " + rows + ":2\n");
    EXPECT_EQ(read("a.fb2"), Book);

    const ProgramRun forced = RunProgram("vmk", {"clean", "--table", rows, "--in-place", "--force", book});
    EXPECT_EQ(forced.exitCode, 1);
    EXPECT_THAT(forced.errors, HasSubstr("written: no longer well-formed after " + rows + ":2"));
    EXPECT_THAT(read("a.fb2"), HasSubstr("<p>one 2"));
}

TEST_F(Clean, ADamagedBookIsAnObjectOfTheJsonResults)
{
    const std::string rows = table("t.dat", {{u"</p>"_s, QString()}});
    const std::string book = write("a.fb2", Book);
    const ProgramRun run = RunProgram("vmk", {"clean", "--table", rows, "--dry-run", "--json", book});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.output,
                HasSubstr(R"({"book":")" + book + R"(","failure":"not written: no longer well-formed after )"
                          + rows + ":1\"}\n"));
    EXPECT_EQ(run.errors, "");
}

TEST_F(Clean, AContinuedRunReturnsTheCodeOfBooksThatAnEarlierRunDidNotWrite)
{
    const std::string rows = table("t.dat", {{u"</p>"_s, QString()}});
    for (const char* form : {"--as-editor", "--json"}) {
        const std::string results = path(form);
        std::vector<std::string> arguments
            = {"clean", "--table", rows, "--dry-run", form, "--resume", results};
        arguments.insert(arguments.end(), {write("a.fb2", Book), write("b.fb2", "<FictionBook/>")});
        EXPECT_EQ(RunProgram("vmk", arguments).exitCode, 1);
        const std::string complete = read(form);
        EXPECT_EQ(RunProgram("vmk", arguments).exitCode, 1);
        EXPECT_EQ(read(form), complete);
    }
}

TEST_F(Clean, SeveralProcessesGiveTheSameOutputAsOne)
{
    const std::string rows = table("t.dat", {{u"two"_s, u"2"_s}});
    std::vector<std::string> arguments = {"clean", "--table", rows, "--dry-run"};
    for (int i = 0; i < 7; ++i)
        arguments.push_back(write("b" + std::to_string(i) + ".fb2", Book));
    arguments.push_back(path("missing.fb2"));
    arguments.push_back(write("\xea\xed\xe8.fb2", Book)); // a name that is not UTF-8
    const ProgramRun one = RunProgram("vmk", arguments);
    arguments.insert(arguments.end(), {"--jobs", "3"});
    const ProgramRun three = RunProgram("vmk", arguments);
    EXPECT_EQ(one.exitCode, 2);
    EXPECT_EQ(three.exitCode, 2);
    EXPECT_EQ(three.output, one.output);
    EXPECT_EQ(three.errors, one.errors);
}

TEST_F(Clean, WrongUsageAndUnreadableTablesAreRefused)
{
    const std::string rows = table("t.dat", {{u"two"_s, u"2"_s}});
    const std::string book = write("a.fb2", Book);
    const auto errors = [](const std::vector<std::string>& arguments) {
        const ProgramRun run = RunProgram("vmk", arguments);
        EXPECT_EQ(run.exitCode, 2);
        return run.errors;
    };
    EXPECT_THAT(errors({"clean", book, "--in-place"}), HasSubstr("no table given"));
    EXPECT_THAT(errors({"clean", "--table", rows, "--in-place"}), HasSubstr("no book given"));
    EXPECT_THAT(errors({"clean", "--table", rows, book}), HasSubstr("no file given to write to"));
    EXPECT_THAT(errors({"clean", "--table", rows, book, "--in-place", "--out", "x"}), HasSubstr("exclude"));
    EXPECT_THAT(errors({"clean", "--table", rows, book, book, "--out", "x"}),
                HasSubstr("--out takes one book"));
    EXPECT_THAT(errors({"clean", "--table", path("none"), book, "--in-place"}), HasSubstr("file not found"));
    EXPECT_THAT(errors({"clean", "--table", book, book, "--in-place"}), HasSubstr("bad file signature"));
    EXPECT_EQ(read("a.fb2"), Book);
}

} // namespace
} // namespace vmk
