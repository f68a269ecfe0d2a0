// An interrupted run continues from its own results, and ends with the same results as one that was not
// interrupted.

#include "Library.h"

#include <gmock/gmock.h>

using namespace vmk;
using testing::StartsWith;
using namespace std::string_literals;

namespace {

class Resume : public Library
{
protected:
    void SetUp() override { makeLibrary(); }

    /// Expects that the results of a command, cut at any length, are completed to the same ones.
    void expectCompleted(std::vector<std::string> command, size_t step)
    {
        command.insert(command.end(), {"--resume", "results"});
        std::filesystem::remove(path("results"));
        const ProgramRun whole = vmk(command);
        EXPECT_EQ(whole.output, "");
        const std::string results = read("results");
        for (size_t length = 0; length <= results.size(); length += step) {
            write("results", results.substr(0, length));
            const ProgramRun rest = vmk(command);
            ASSERT_EQ(read("results"), results) << "cut at " << length;
            ASSERT_EQ(rest.exitCode, whole.exitCode) << "cut at " << length;
        }
        write("results", results);
        EXPECT_EQ(vmk(command).exitCode, whole.exitCode);
        EXPECT_EQ(read("results"), results) << "of a complete run";
    }
};

} // namespace

TEST_F(Resume, TheResultsOfAValidationAreCompleted)
{
    expectCompleted({"validate", "lib"}, 41);
    expectCompleted({"validate", "--all-errors", "--summary", "lib"}, 97);
    expectCompleted({"validate", "--json", "--summary", "lib"}, 173);
}

TEST_F(Resume, TheResultsOfOtherCommandsAreCompleted)
{
    expectCompleted({"find", "two", "lib"}, 23);
    expectCompleted({"images", "--check", "lib"}, 83);
    expectCompleted({"convert", "--out-dir", "out", "lib"}, 151);
}

TEST_F(Resume, TheFileHasTheResultsAndTheLinesAboutWhatCannotBeRead)
{
    const ProgramRun plain = vmk({"validate", "lib"});
    const ProgramRun run = vmk({"validate", "--resume", "results", "lib"});
    EXPECT_EQ(run.errors, plain.errors);
    std::string withoutFailures;
    std::string failures;
    for (const std::string& line : linesOf(read("results")))
        (line.starts_with("vmk: ") ? failures : withoutFailures) += line + "\n";
    EXPECT_EQ(withoutFailures, plain.output);
    EXPECT_EQ(failures, plain.errors);
}

TEST_F(Resume, OnlyTheRestIsRead)
{
    static_cast<void>(vmk({"validate", "--resume", "results", "lib"}));
    const std::string results = read("results");
    // A book that is done is not read again: it can even be another one now.
    write("lib/a.fb2", "damaged");
    write("results", results.substr(0, results.size() - 1));
    static_cast<void>(vmk({"validate", "--resume", "results", "lib"}));
    EXPECT_EQ(read("results"), results);
}

TEST_F(Resume, TheRedirectedOutputOfARunCanBeContinued)
{
    std::filesystem::remove(path("lib/d.zip"));
    std::filesystem::remove(path("lib/c.zip"));
    const std::string output = vmk({"validate", "lib"}).output;
    write("results", output.substr(0, output.size() / 2));
    EXPECT_EQ(vmk({"validate", "--resume", "results", "lib"}).exitCode, 1);
    EXPECT_EQ(read("results"), output);
}

TEST_F(Resume, OtherResultsAreRefusedAndKept)
{
    for (const std::string& other :
         {"other.fb2: No errors (against schema)\n"s, "lib/a.fb2: No errors (against schema)\nnotes\n"s}) {
        write("results", other);
        const ProgramRun run = vmk({"validate", "--resume", "results", "lib"});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_THAT(run.errors, StartsWith("vmk: results: contains other results: "));
        EXPECT_EQ(read("results"), other);
    }
}

TEST_F(Resume, AFileThatCannotBeWrittenIsReported)
{
    const ProgramRun run = vmk({"validate", "--resume", "none/results", "lib"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "vmk: none/results: No such file or directory\n");
    const ProgramRun full = vmk({"validate", "--resume", "/dev/full", "lib"});
    EXPECT_EQ(full.exitCode, 2);
    EXPECT_EQ(full.errors, "vmk: /dev/full: is not a file\n");
}
