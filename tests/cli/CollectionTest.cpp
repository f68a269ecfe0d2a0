// Whole collections from the view of the user: the same results in the same order for any number of
// processes, and nothing that is damaged stops a run.

#include "Library.h"
#include "Pictures.h"
#include "SmallDictionaries.h"
#include "TestPaths.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QJsonDocument>
#include <QJsonObject>

using namespace vmk;
using namespace Qt::StringLiterals;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
namespace fs = std::filesystem;

namespace {

using CollectionTest = Library;

std::string OneOfJson(const std::string& line, QLatin1StringView key)
{
    return QJsonDocument::fromJson(QByteArray::fromStdString(line)).object()[key].toString().toStdString();
}

} // namespace

TEST_F(CollectionTest, ALibraryIsValidatedInTheOrderOfItsPaths)
{
    makeLibrary();
    const ProgramRun run = vmk({"validate", "lib"});
    EXPECT_EQ(run.exitCode, 2);
    const std::vector<std::string> lines = linesOf(run.output);
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_EQ(lines[0], "lib/a.fb2: No errors (against schema)");
    EXPECT_THAT(lines[1], StartsWith("lib/b/1.fb2:5:1: Error against schema. Element 'x'"));
    EXPECT_THAT(lines[2], StartsWith("lib/b/2.fb2:6:9:"));
    EXPECT_EQ(lines[3], "lib/c.zip:m.fb2: No errors (against schema)");
    EXPECT_THAT(lines[4],
                StartsWith("lib/c.zip:Книга.fb2:5:1: Error against schema. Element 'p', attribute 'y'"));
    EXPECT_EQ(lines[5], "lib/c.zip:m.fb2: No errors (against schema)");
    EXPECT_EQ(lines[6], "lib/e.fb2: No errors (against schema)");
    EXPECT_THAT(
        linesOf(run.errors),
        ElementsAre("vmk: lib/c.zip:n.fb2: cannot be read: damaged archive: the content of the member does "
                    "not have its checksum",
                    StartsWith("vmk: lib/d.zip: damaged archive: ")));
}

TEST_F(CollectionTest, TheNumberOfProcessesChangesNothing)
{
    makeLibrary();
    for (int i = 0; i < 300; ++i)
        write("lib/many/" + std::to_string(i) + ".fb2", i % 7 == 0 ? book("<z/>") : book());
    for (const char* json : {"--summary", "--json"}) {
        const ProgramRun one = vmk({"validate", json, "--jobs", "1", "lib"});
        EXPECT_EQ(linesOf(one.output).size(), json == "--json"s ? 309U : 311U);
        for (const char* jobs : {"2", "5"}) {
            const ProgramRun several = vmk({"validate", json, "--jobs", jobs, "lib"});
            EXPECT_EQ(several.output, one.output);
            EXPECT_EQ(several.errors, one.errors);
            EXPECT_EQ(several.exitCode, one.exitCode);
        }
    }
}

TEST_F(CollectionTest, AListIsReadFromAFileAndFromStandardInput)
{
    makeLibrary();
    write("lib/with\nline.fb2", book());
    write("list", "lib/e.fb2\nlib/a.fb2\n");
    const std::string both = "lib/e.fb2: No errors (against schema)\nlib/a.fb2: No errors (against schema)\n";
    EXPECT_EQ(vmk({"validate", "--files-from", "list"}).output, both);
    EXPECT_EQ(vmk({"validate", "--files-from=-"}, "lib/e.fb2\nlib/a.fb2").output, both);
    const std::string nul = "lib/with\nline.fb2"s + '\0' + "lib/a.fb2"s + '\0';
    EXPECT_EQ(vmk({"validate", "-0", "--files-from", "-"}, nul).output,
              "lib/with\\nline.fb2: No errors (against schema)\nlib/a.fb2: No errors (against schema)\n");
}

TEST_F(CollectionTest, WrongUseOfTheListIsRefused)
{
    for (const auto& [arguments, reason] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"validate"}, "no book given"},
             {{"validate", "--files-from", "none"}, "none: file not found"},
             {{"validate", "-0", "x.fb2"}, "-0 has no use without --files-from"},
             {{"validate", "--files-from", "-", "-"}, "standard input can be read only once"},
             {{"validate", "--jobs", "0", "x.fb2"}, "--jobs needs a number from 1 to 256"},
             {{"convert", "x.fb2"}, "no file given to write to (--out or --out-dir)"},
             {{"convert", "x.fb2", "--out", "a", "--out-dir", "b"}, "--out and --out-dir exclude each other"},
             {{"convert", ".", "--out", "a"}, "--out takes one book"},
             {{"images", ".", "--out", "a"}, "--out takes single books"}}) {
        const ProgramRun run = vmk(arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.errors, HasSubstr(reason));
    }
}

TEST_F(CollectionTest, AMemberIsNamedInTheInput)
{
    makeLibrary();
    EXPECT_THAT(vmk({"validate", "lib/c.zip:Книга.fb2"}).output,
                StartsWith("lib/c.zip:Книга.fb2:5:1: Error"));
    const ProgramRun none = vmk({"validate", "lib/c.zip:none.fb2"});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_EQ(none.errors, "vmk: lib/c.zip:none.fb2: the archive has no such member\n");
}

TEST_F(CollectionTest, FindSpellAndImagesReadArchivesToo)
{
    SmallDictionaries dictionaries;
    dictionaries.makeUsual();
    write("lib/a.zip",
          MakeZip({{"x.fb2", book("<p>needle</p>", Binary("i.png", SmallPng())), true},
                   {"y.fb2", book("<p>boook</p>")}}));
    write("lib/b.fb2", "<FictionBook><p>needle</p></FictionBook>");
    const ProgramRun found = vmk({"find", "needle", "lib"});
    EXPECT_EQ(found.exitCode, 0) << found.errors;
    EXPECT_THAT(linesOf(found.output), ElementsAre(StartsWith("lib/a.zip:x.fb2:"), StartsWith("lib/b.fb2:")));
    EXPECT_EQ(vmk({"find", "absent", "lib"}).exitCode, 1);
    EXPECT_THAT(vmk({"spell", "--lang", "en", "lib"}).output, HasSubstr("lib/a.zip:y.fb2:5:4: boook\n"));
    const ProgramRun images = vmk({"images", "--list", "--check", "lib"});
    EXPECT_EQ(images.exitCode, 1);
    EXPECT_THAT(linesOf(images.output),
                ElementsAre(StartsWith("lib/a.zip:x.fb2: i.png, "),
                            "lib/a.zip:x.fb2: resource without a reference: i.png",
                            "lib/a.zip:y.fb2: No errors", "lib/b.fb2: No errors"));
}

TEST_F(CollectionTest, InJsonABookThatCannotBeReadIsAnObjectOfEveryCommand)
{
    write("bad.zip", "damaged");
    write("t.dat", "");
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {"validate"}, {"find", "text"}, {"spell"}, {"images"}, {"convert", "--out-dir", "out"}}) {
        std::vector<std::string> arguments = command;
        arguments.insert(arguments.end(), {"--json", "bad.zip", "none.fb2"});
        const ProgramRun run = vmk(arguments);
        EXPECT_EQ(run.exitCode, 2) << command[0];
        EXPECT_EQ(run.errors, "") << command[0];
        const std::vector<std::string> lines = linesOf(run.output);
        ASSERT_EQ(lines.size(), 2U) << command[0] << run.output;
        EXPECT_EQ(OneOfJson(lines[0], "book"_L1), "bad.zip");
        EXPECT_THAT(OneOfJson(lines[0], "failure"_L1), StartsWith("damaged archive: "));
        EXPECT_EQ(OneOfJson(lines[1], "failure"_L1), "file not found");
    }
}

// ---------------------------------------------------------------- results below a folder

TEST_F(CollectionTest, ConvertedBooksHaveThePathsOfTheInput)
{
    makeLibrary();
    const ProgramRun run = vmk({"convert", "--encoding", "windows-1251", "--out-dir", "out", "lib"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(filesBelow("out"),
                ElementsAre("lib/a.fb2", "lib/b/1.fb2", "lib/b/2.fb2", "lib/c.zip/m.fb2",
                            "lib/c.zip/Книга.fb2", "lib/e.fb2"));
    EXPECT_THAT(linesOf(run.output),
                testing::Contains("lib/c.zip:Книга.fb2: saved to out/lib/c.zip/Книга.fb2"));
    EXPECT_EQ(linesOf(run.output).size(), 6U);
    EXPECT_THAT(
        run.errors,
        HasSubstr("vmk: lib/c.zip:m.fb2: not written: an earlier book has the path lib/c.zip/m.fb2\n"));
    EXPECT_THAT(read("out/lib/a.fb2"), HasSubstr("encoding=\"windows-1251\""));
    EXPECT_THAT(read("out/lib/c.zip/m.fb2"), Not(HasSubstr("again")));
    EXPECT_EQ(vmk({"validate", "out/lib/a.fb2", "out/lib/e.fb2"}).exitCode, 0);
}

TEST_F(CollectionTest, AConvertedCollectionIsTheSameAsItsBooksOneByOne)
{
    makeLibrary();
    EXPECT_EQ(vmk({"convert", "--jobs", "3", "--out-dir", "out", "lib"}).exitCode, 2);
    for (const char* name : {"lib/a.fb2", "lib/b/1.fb2", "lib/b/2.fb2", "lib/e.fb2"}) {
        EXPECT_EQ(vmk({"convert", name, "--out", "single.fb2"}).exitCode, 0);
        EXPECT_EQ(read("out/"s + name), read("single.fb2")) << name;
    }
    EXPECT_EQ(vmk({"convert", "lib/c.zip:m.fb2", "--out", "single.fb2"}).exitCode, 0);
    EXPECT_EQ(read("out/lib/c.zip/m.fb2"), read("single.fb2"));
}

TEST_F(CollectionTest, NothingIsWrittenOutsideTheFolder)
{
    write("in/evil.zip",
          MakeZip({{"../../../up.fb2", book()},
                   {"/root.fb2", book()},
                   {"..\\back.fb2", book()},
                   {"C:\\drive.fb2", book()},
                   {"con.fb2", book()},
                   {"a/../../b.fb2", book()},
                   {"x\ny.fb2", book()}}));
    fs::create_directories(path("out"));
    fs::create_directories(path("elsewhere"));
    fs::create_symlink(path("elsewhere"), path("out/link"));
    write("link/c.fb2", book());
    const ProgramRun run = vmk({"convert", "--out-dir", "out", "in", "link"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "vmk: link/c.fb2: is a link and is not followed: out/link\n");
    fs::remove(path("out/link"));
    EXPECT_THAT(filesBelow("out"),
                ElementsAre("in/evil.zip/C_/drive.fb2", "in/evil.zip/__/__/__/up.fb2",
                            "in/evil.zip/__/back.fb2", "in/evil.zip/_con.fb2", "in/evil.zip/a/__/__/b.fb2",
                            "in/evil.zip/root.fb2", "in/evil.zip/x_y.fb2"));
    EXPECT_TRUE(filesBelow("elsewhere").empty());
    EXPECT_THAT(filesBelow("."), testing::SizeIs(9)); // those, the archive and the book
}

TEST_F(CollectionTest, TheInputIsNeverOverwritten)
{
    write("lib/a.fb2", book());
    const std::string before = read("lib/a.fb2");
    const ProgramRun run = vmk({"convert", "--out-dir", ".", "lib"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "vmk: lib/a.fb2: not written: the path of the result is that of the book\n");
    EXPECT_EQ(read("lib/a.fb2"), before);
}

TEST_F(CollectionTest, ResultsWithinTheInputAreNotReadAgain)
{
    write("lib/a.fb2", book());
    for (int run = 0; run < 2; ++run)
        EXPECT_EQ(vmk({"convert", "--out-dir", "lib/out", "lib"}).output,
                  "lib/a.fb2: saved to lib/out/lib/a.fb2\n");
    EXPECT_THAT(filesBelow("lib"), ElementsAre("a.fb2", "out/lib/a.fb2"));
}

TEST_F(CollectionTest, ImagesOfACollectionAreBelowTheirBooks)
{
    const std::string images = Binary("i.png", SmallPng()) + Binary("../j.jpg", SmallJpeg(), "image/jpeg");
    write("lib/a.fb2", book("<p/>", images));
    write("lib/b.zip", MakeZip({{"x.fb2", book("<p/>", images), true}, {"y.fb2", book()}}));
    const ProgramRun run = vmk({"images", "--out-dir", "out", "lib"});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(linesOf(run.output).size(), 4U);
    EXPECT_EQ(read("out/lib/a.fb2/i.png"), SmallPng());
    EXPECT_EQ(read("out/lib/b.zip/x.fb2/i.png"), SmallPng());
    EXPECT_EQ(filesBelow("out").size(), 4U);
    EXPECT_FALSE(fs::exists(path("out/lib/j.jpg")));
}

// ---------------------------------------------------------------- limits

TEST_F(CollectionTest, MemoryDoesNotGrowWithTheNumberOfBooks)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "a sanitizer keeps freed memory";
#endif
    const auto peak = [this](size_t books) {
        // The members share one content, so that the test itself, whose memory is counted too, needs little.
        const std::string content = "<a>" + std::string(30'000, 'x') + "</a>";
        std::vector<ZipEntry> entries = {{"first.fb2", content, true}};
        for (size_t i = 1; i < books; ++i)
            entries.push_back({.name = std::to_string(i) + std::string(150, 'n') + ".fb2",
                               .isDeflated = true,
                               .size = uint32_t(content.size()),
                               .checksum = ZipChecksum(content),
                               .sharesData = true});
        write("lib.zip", MakeZip(entries));
        const ProgramRun run = vmk({"validate", "--against", "namespace", "lib.zip"});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(linesOf(run.output).size(), books);
        return run.peakBytes;
    };
    const long few = peak(100);
    EXPECT_LT(peak(4000), few + 10'000'000);
}

TEST_F(CollectionTest, ABookThatNeedsTooMuchMemoryDoesNotEndTheRun)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "a sanitizer needs all the room there is";
#endif
    write("lib/a.fb2", book());
    write("lib/b.fb2", "<a>" + std::string(80'000'000, 'x') + "</a>");
    write("lib/c.fb2", book());
    ProgramSetting setting;
    setting.workingFolder = folder.path().toStdString();
    setting.mostMemory = 100'000'000;
    const ProgramRun run = RunProgram("vmk", {"validate", "lib"}, setting);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.output, "lib/a.fb2: No errors (against schema)\nlib/c.fb2: No errors (against schema)\n");
    EXPECT_EQ(run.errors, "vmk: lib/b.fb2: not enough memory\n");
}

TEST_F(CollectionTest, WithoutOtherProcessesTheRunIsTheSame)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs a user without processes";
    makeLibrary();
    fs::permissions(folder.path().toStdString(), fs::perms(0755));
    ProgramSetting setting;
    setting.workingFolder = folder.path().toStdString();
    setting.userId = 65534;
    setting.mostThreads = 1;
    EXPECT_EQ(RunProgram("vmk", {"validate", "lib"}, setting).output, vmk({"validate", "lib"}).output);
}

// ---------------------------------------------------------------- progress

TEST_F(CollectionTest, ProgressIsShownOnlyOnATerminal)
{
    for (int i = 0; i < 40; ++i)
        write("lib/" + std::to_string(i) + ".fb2", book());
    // A list that is never ready keeps the run waiting until the progress is shown.
    ASSERT_EQ(mkfifo(path("pipe.fb2").c_str(), 0600), 0);
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    ASSERT_GE(child, 0);
    if (child == 0) {
        const int nothing = open("/dev/null", O_WRONLY);
        dup2(nothing, STDOUT_FILENO);
        if (chdir(folder.path().toUtf8().constData()) == 0)
            execl(VMK_BIN_DIR "/vmk", "vmk", "validate", "lib", "pipe.fb2", nullptr);
        _exit(127);
    }
    std::string shown;
    char piece[4096];
    bool isWritten = false;
    for (ssize_t got = 0; (got = ::read(terminal, piece, sizeof piece)) > 0;) {
        shown.append(piece, static_cast<size_t>(got));
        if (!isWritten && shown.find("of 41 books") != std::string::npos) {
            std::ofstream(path("pipe.fb2")) << "<a/>";
            isWritten = true;
        }
    }
    int status = 0;
    waitpid(child, &status, 0);
    close(terminal);
    EXPECT_THAT(shown, HasSubstr(" of 41 books, "));
    EXPECT_THAT(shown, HasSubstr(" left"));
    EXPECT_TRUE(shown.ends_with("\r\033[K")) << "the line is removed at the end";
    EXPECT_EQ(vmk({"validate", "lib"}).errors, "");
}
