// `vmk display` and `vmk convert` as the user meets them.

#include "BookGenerator.h"
#include "ProgramRun.h"
#include "SettingsRecord.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <iterator>

using namespace vmk;

namespace {

const std::string Declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";
const std::string Book = Declaration + "<FictionBook><body><p>a <strong>b</strong></p></body></FictionBook>";

class Convert : public testing::Test
{
protected:
    std::string path(const std::string& name) { return folder.path().toStdString() + "/" + name; }

    std::string write(const std::string& name, const std::string& bytes)
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

    std::string read(const std::string& name)
    {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Expects one line on standard error, the exit code 2, and the file that stood there as it was.
    void expectRefusal(std::vector<std::string> arguments, const std::string& why)
    {
        write("old", "old");
        arguments.insert(arguments.end(), {"--out", path("old")});
        const ProgramRun run = RunProgram("vmk", arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_NE(run.errors.find(why), std::string::npos) << run.errors;
        EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << run.errors;
        EXPECT_EQ(read("old"), "old");
    }

    QTemporaryDir folder;
};

TEST_F(Convert, DisplayWritesThePageToStandardOutputOrAFile)
{
    const std::string book = write("book.fb2", Book);
    const ProgramRun shown = RunProgram("vmk", {"display", book});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_EQ(shown.errors, "");
    EXPECT_TRUE(shown.output.starts_with("<HTML><meta content="));
    EXPECT_NE(shown.output.find("<DIV style=\"MARGIN-LEFT: 10px\"><SPAN class=t>&lt;p&gt;</SPAN>a "),
              std::string::npos);
    EXPECT_EQ(RunProgram("vmk", {"display", book, "--out", path("page.htm")}).exitCode, 0);
    EXPECT_EQ(read("page.htm"), shown.output);
}

TEST_F(Convert, DisplayTakesASettingsRecordAndLeavesItAlone)
{
    SettingsRecord settings = EmptySettingsRecord();
    settings[14] = int16_t(30); // the pixels of a tree level
    const std::string bytes = EncodeSettings(settings);
    const std::string record = write("vellumark.ini", bytes);
    const ProgramRun run = RunProgram("vmk", {"display", write("book.fb2", Book), "--settings", record});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_NE(run.output.find("MARGIN-LEFT: 60px"), std::string::npos);
    EXPECT_EQ(read("vellumark.ini"), bytes);
}

TEST_F(Convert, ADamagedSettingsRecordIsRefusedAndKept)
{
    const std::string record = write("vellumark.ini", "xy");
    expectRefusal({"display", write("book.fb2", Book), "--settings", record}, "is no settings record");
    EXPECT_EQ(read("vellumark.ini"), "xy");
}

TEST_F(Convert, ConvertSavesInPlaceInTheWantedForm)
{
    const std::string book = write("book.fb2", Book);
    EXPECT_EQ(RunProgram("vmk", {"convert", book, "--out", book, "--encoding", "windows-1251"}).exitCode, 0);
    EXPECT_EQ(read("book.fb2"),
              "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\r\n<FictionBook>\r\n\t<body>\r\n"
              "\t\t<p>a <strong>b</strong></p>\r\n\t</body>\r\n</FictionBook>");
    EXPECT_EQ(RunProgram("vmk", {"convert", book, "--out", book, "--style", "compact", "--encoding=utf-8"})
                  .exitCode,
              0);
    EXPECT_EQ(read("book.fb2"),
              Declaration + "<FictionBook> <body> <p>a <strong>b</strong></p> </body> </FictionBook>");
}

TEST_F(Convert, ConvertReadsInTheNamedEncoding)
{
    const std::string book = write("book.fb2", "<?xml version=\"1.0\"?><a>\xe9</a>");
    EXPECT_EQ(RunProgram("vmk",
                         {"convert", book, "--out", path("out"), "--input-encoding", "windows-1252",
                          "--encoding", "utf-8"})
                  .exitCode,
              0);
    EXPECT_NE(read("out").find("<a>\xc3\xa9</a>"), std::string::npos);
}

TEST_F(Convert, ABrokenBookIsConvertedWithARemark)
{
    const std::string book = write("book.fb2", "<a><p>x</a>");
    const ProgramRun run = RunProgram("vmk", {"convert", book, "--out", path("out")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.errors, "vmk: " + book + ": Namespace error. Tree view is skipped\n");
    EXPECT_NE(read("out").find("<p>x</a>"), std::string::npos);
}

TEST_F(Convert, BadInputIsRefusedInOneLine)
{
    const std::string book = write("book.fb2", Book);
    expectRefusal({"display", path("missing.fb2")}, "file not found");
    expectRefusal({"convert", folder.path().toStdString()}, "folder");
    expectRefusal({"convert", write("bad.fb2", "<a><binary></a>")}, "bad binary part");
    expectRefusal({"convert", book, "--encoding", "koi8-r"}, "--encoding needs one of");
    expectRefusal({"convert", book, "--style", "spiral"}, "--style needs one of");
    expectRefusal({"convert", book, "--nonsense"}, "--nonsense");
    expectRefusal({"display", book, book}, "more than one book");
    expectRefusal({"display"}, "no book given");
}

TEST_F(Convert, AFileThatCannotBeWrittenIsTold)
{
    const ProgramRun run
        = RunProgram("vmk", {"convert", write("book.fb2", Book), "--out", path("no/such/folder/out")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.errors.find("cannot be written"), std::string::npos);
}

TEST_F(Convert, ABookOfManyLevelsAndSizesTakesItsTimeAndNoMore)
{
    const std::string book = write("book.fb2", MakeBook({.size = 4'000'000}));
    const ProgramRun run = RunProgram("vmk", {"convert", book, "--out", path("out")});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(RunProgram("vmk", {"validate", path("out")}).exitCode, 0) << "a valid book stays one";
}

} // namespace
