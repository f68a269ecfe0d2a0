// `vmk display` and `vmk convert` from the view of the user.

#include "BookGenerator.h"
#include "ProgramRun.h"
#include "SettingsRecord.h"
#include "TestPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
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

    /// Expects one line on standard error, the exit code 2, and an unchanged existing file.
    void expectRefusal(std::vector<std::string> arguments, const std::string& why)
    {
        write("old", "old");
        arguments.insert(arguments.end(), {"--out", path("old")});
        const ProgramRun run = RunProgram("vmk", arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.errors, testing::HasSubstr(why));
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
    EXPECT_THAT(shown.output,
                testing::HasSubstr("<DIV style=\"MARGIN-LEFT: 10px\"><SPAN class=t>&lt;p&gt;</SPAN>a "));
    EXPECT_EQ(RunProgram("vmk", {"display", book, "--out", path("page.htm")}).exitCode, 0);
    EXPECT_EQ(read("page.htm"), shown.output);
}

TEST_F(Convert, DisplayUsesASettingsRecordWithoutChangingIt)
{
    SettingsRecord settings = EmptySettingsRecord();
    settings[14] = int16_t(30); // the pixels of a tree level
    const std::string bytes = EncodeSettings(settings);
    const std::string record = write("vellumark.ini", bytes);
    const ProgramRun run = RunProgram("vmk", {"display", write("book.fb2", Book), "--settings", record});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_THAT(run.output, testing::HasSubstr("MARGIN-LEFT: 60px"));
    EXPECT_EQ(read("vellumark.ini"), bytes);
}

TEST_F(Convert, ADamagedSettingsRecordIsRejectedAndKept)
{
    const std::string record = write("vellumark.ini", "xy");
    expectRefusal({"display", write("book.fb2", Book), "--settings", record}, "not a settings record");
    EXPECT_EQ(read("vellumark.ini"), "xy");
}

TEST_F(Convert, ConvertSavesInPlaceInTheGivenStyle)
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
    EXPECT_THAT(read("out"), testing::HasSubstr("<a>\xc3\xa9</a>"));
}

TEST_F(Convert, ABrokenBookIsConvertedWithARemark)
{
    const std::string book = write("book.fb2", "<a><p>x</a>");
    const ProgramRun run = RunProgram("vmk", {"convert", book, "--out", path("out")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.errors, "vmk: " + book + ": Namespace error. Tree view is skipped\n");
    EXPECT_THAT(read("out"), testing::HasSubstr("<p>x</a>"));
}

TEST_F(Convert, BadInputIsRejectedInOneLine)
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

TEST_F(Convert, AFileThatCannotBeWrittenIsReported)
{
    const ProgramRun run
        = RunProgram("vmk", {"convert", write("book.fb2", Book), "--out", path("no/such/folder/out")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.errors, testing::HasSubstr("cannot be written"));
}

TEST_F(Convert, AnEmptyBookIsRejected)
{
    expectRefusal({"convert", write("empty.fb2", "")}, "empty book - nothing to save");
    expectRefusal({"convert", write("blank.fb2", " \r\n\t ")}, "empty book - nothing to save");
}

TEST_F(Convert, UnicodeBooksAreReadWholeWithARemark)
{
    const auto utf16 = [](const std::u16string& text) {
        return std::string(reinterpret_cast<const char*>(text.data()), 2 * text.size());
    };
    const auto converted
        = [this](const std::string& book, std::vector<std::string> options, std::string& said) {
              options.insert(options.begin(), {"convert", book, "--out", path("out")});
              const ProgramRun run = RunProgram("vmk", options);
              EXPECT_EQ(run.exitCode, 0);
              said = run.errors;
              return read("out");
          };
    std::string said;
    const std::string wide = write("wide.fb2", utf16(u"\ufeff<?xml version=\"1.0\"?><a>\u0416</a>"));
    EXPECT_EQ(converted(wide, {}, said), Declaration + "\r\n<a>\xd0\x96</a>");
    EXPECT_EQ(said, "vmk: " + wide + ": kept: characters cut off at the end of the UTF-16 text: 1\n");
    EXPECT_EQ(converted(wide, {"--as-editor"}, said), Declaration + "<a>\xd0\x96</a");

    std::string highFirst;
    for (const char c : std::string("<a>b</a>"))
        highFirst += {'\0', c};
    const std::string high = write("high.fb2", "\xfe\xff" + highFirst);
    EXPECT_EQ(converted(high, {}, said), Declaration + "\r\n<a>b</a>");
    EXPECT_THAT(said, testing::HasSubstr("characters misread"));
    EXPECT_THAT(converted(write("odd.fb2", utf16(u"\ufeff<a>b</a>") + "x"), {}, said),
                testing::HasSubstr("<a>b</a>"));
    EXPECT_THAT(said, testing::HasSubstr("lost: bytes that are no characters: 1"));
}

TEST_F(Convert, AFailedConversionKeepsTheExistingFile)
{
    ASSERT_EQ(chmod(folder.path().toUtf8().constData(), 0755), 0);
    const std::string book = write("book.fb2", Book);
    ProgramSetting nobody;
    nobody.userId = geteuid() == 0 ? 65534 : -1;
    if (nobody.userId < 0)
        GTEST_SKIP() << "only root can act as another user";

    std::filesystem::create_directory(path("closed"));
    write("closed/out.fb2", "old");
    const ProgramRun closed = RunProgram("vmk", {"convert", book, "--out", path("closed/out.fb2")}, nobody);
    EXPECT_EQ(closed.exitCode, 2);
    EXPECT_EQ(closed.errors, "vmk: " + path("closed/out.fb2") + ": cannot be written: Permission denied\n");
    EXPECT_EQ(read("closed/out.fb2"), "old");

    std::filesystem::permissions(book, std::filesystem::perms::none);
    for (const std::string command : {"display", "convert"}) {
        const ProgramRun unread = RunProgram("vmk", {command, book, "--out", path("new.fb2")}, nobody);
        EXPECT_EQ(unread.exitCode, 2);
        EXPECT_EQ(unread.errors, "vmk: " + book + ": cannot be read: Permission denied\n");
        EXPECT_FALSE(std::filesystem::exists(path("new.fb2")));
    }
}

TEST_F(Convert, APageNeverReplacesItsBook)
{
    const std::string book = write("book.fb2", Book);
    std::filesystem::create_symlink("book.fb2", path("link.fb2"));
    const ProgramRun run = RunProgram("vmk", {"display", book, "--out", path("link.fb2")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "vmk: " + path("link.fb2") + ": is the book itself; the page needs another file\n");
    EXPECT_EQ(read("book.fb2"), Book);
}

TEST_F(Convert, WithoutEnoughMemoryTheOldFileStays)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "a sanitizer needs all the room there is";
#endif
    std::string text;
    text.resize(80'000'000, 'x');
    const std::string book = write("book.fb2", Declaration + "<a>" + text + "</a>");
    write("out.fb2", "old");
    ProgramSetting small;
    small.mostMemory = 200'000'000;
    const ProgramRun run = RunProgram("vmk", {"convert", book, "--out", path("out.fb2")}, small);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "vmk: " + book + ": not enough memory\n");
    EXPECT_EQ(read("out.fb2"), "old");
    small.mostMemory = 100'000'000;
    EXPECT_EQ(RunProgram("vmk", {"validate", book}, small).errors, "vmk: " + book + ": not enough memory\n");
}

TEST_F(Convert, WithoutFurtherThreadsOneDoesTheWork)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "a sanitizer's search for leaks needs a thread of its own";
#endif
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can act as a user without any other process";
    ASSERT_EQ(chmod(folder.path().toUtf8().constData(), 0755), 0);
    const std::string book = write("book.fb2", Declaration + "<a>x\ny</a>");
    ProgramSetting alone;
    alone.userId = 65533;
    alone.mostThreads = 1;
    EXPECT_EQ(RunProgram("vmk", {"display", book}, alone).exitCode, 0);
    const ProgramRun run
        = RunProgram("vmk", {"validate", "--against", "namespace", "--jobs", "4", book, book}, alone);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(run.output,
              book + ": No errors (against namespace)\n" + book + ": No errors (against namespace)\n");
}

TEST_F(Convert, AFullDeviceIsReported)
{
    const std::string book = write("book.fb2", Book);
    for (const std::string command : {"display", "convert"}) {
        const ProgramRun run = RunProgram("vmk", {command, book, "--out", "/dev/full"});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.errors, "vmk: /dev/full: cannot be written: No space left on device\n");
    }
    ProgramSetting full;
    full.outputFile = "/dev/full";
    const ProgramRun run = RunProgram("vmk", {"display", book}, full);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "vmk: standard output: cannot be written: No space left on device\n");
}

TEST_F(Convert, AFileOverTheSizeLimitIsReportedAndLeavesNoFile)
{
    const std::string book = write("book.fb2", Declaration + "<a>" + std::string(300'000, 'x') + "</a>");
    write("out.fb2", "old");
    ProgramSetting limited;
    limited.largestFile = 100'000;
    const ProgramRun run = RunProgram("vmk", {"convert", book, "--out", path("out.fb2")}, limited);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "vmk: " + path("out.fb2") + ": cannot be written: File too large\n");
    EXPECT_EQ(read("out.fb2"), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path().toStdString()), {}), 2)
        << "no temporary file stays";
}

TEST_F(Convert, WithoutStandardHandlesItWritesOnlyItsFile)
{
    const std::string book = write("book.fb2", "<b><p>x</b>");
    ProgramSetting closed;
    closed.closedHandles = true;
    const ProgramRun run = RunProgram("vmk", {"convert", book, "--out", path("out.fb2")}, closed);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(read("out.fb2"), "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\r\n<b>\r\n<p>x</b>\r\n");
    EXPECT_EQ(RunProgram("vmk", {"display", book}, closed).exitCode, 2);
    EXPECT_EQ(RunProgram("vmk", {"validate", book}, closed).exitCode, 2);
}

TEST_F(Convert, TheFileKeepsItsPermissionsAndALinkIsWrittenThrough)
{
    const std::string book = write("book.fb2", Book);
    ASSERT_EQ(chmod(book.c_str(), 0640), 0);
    std::filesystem::create_symlink("book.fb2", path("link.fb2"));
    EXPECT_EQ(RunProgram("vmk", {"convert", book, "--out", path("link.fb2")}).exitCode, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.fb2")));
    EXPECT_EQ(static_cast<int>(std::filesystem::status(book).permissions()), 0640);
    EXPECT_TRUE(read("book.fb2").starts_with(Declaration + "\r\n<FictionBook>"));
}

TEST_F(Convert, AnyFileNameWillDo)
{
    const std::string book = write("кни га\nдва \"3\".fb2", Book);
    const std::string out = path("вы\tход.fb2");
    EXPECT_EQ(RunProgram("vmk", {"convert", book, "--out", out}).exitCode, 0);
    EXPECT_EQ(RunProgram("vmk", {"convert", path("нет\n"), "--out", out}).errors,
              "vmk: " + path("нет") + "\\n: file not found\n");
}

TEST_F(Convert, ASaveIsFlushedAndPrivateUntilItHasItsName)
{
    const std::string book = write("book.fb2", Book);
    ASSERT_EQ(chmod(book.c_str(), 0600), 0);
    const std::string trace = path("trace");
    // A sanitizer cannot look for leaks in a watched process.
    const std::string command = "ASAN_OPTIONS=detect_leaks=0 strace -f -o '" + trace
        + "' -e trace=openat,rename,fsync '" VMK_BIN_DIR "/vmk' convert '" + book + "' --out '" + book
        + "' 2>/dev/null";
    if (std::system("strace -o /dev/null true 2>/dev/null") != 0)
        GTEST_SKIP() << "system calls cannot be watched here";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::ifstream file(trace);
    std::string line;
    std::vector<std::string> steps;
    while (std::getline(file, line)) {
        if (line.find(".vmk-") != std::string::npos && line.find("openat") != std::string::npos) {
            EXPECT_NE(line.find("O_EXCL"), std::string::npos) << line;
            EXPECT_NE(line.find(", 0600)"), std::string::npos) << line;
            steps.emplace_back("create");
        } else if (steps.empty()) {
            continue; // what precedes the save of the book
        } else if (line.find("O_DIRECTORY") != std::string::npos) {
            steps.emplace_back("folder");
        } else if (line.find("fsync(") != std::string::npos) {
            steps.emplace_back("fsync");
        } else if (line.find("rename(") != std::string::npos) {
            steps.emplace_back("rename");
        }
    }
    // The last one opens the folder to look for abandoned files.
    EXPECT_EQ(steps, (std::vector<std::string>{"create", "fsync", "rename", "folder", "fsync", "folder"}));
    EXPECT_EQ(static_cast<int>(std::filesystem::status(book).permissions()), 0600);
}

TEST_F(Convert, ANameThatIsNotUtf8WillDo)
{
    const std::string book = write("\xea\xed\xe8\xe3\xe0.fb2", Book);
    const std::string out = path("\xe2\xfb\xf5\xee\xe4.fb2");
    EXPECT_EQ(RunProgram("vmk", {"convert", book, "--out", out}).exitCode, 0);
    EXPECT_TRUE(std::filesystem::exists(out));
    EXPECT_EQ(RunProgram("vmk", {"validate", "--against", "namespace", out}).output,
              out + ": No errors (against namespace)\n");
    EXPECT_EQ(RunProgram("vmk", {"validate", path("\xed\xe5\xf2")}).errors,
              "vmk: " + path("\xed\xe5\xf2") + ": file not found\n");
    const std::string json = RunProgram("vmk", {"validate", "--json", out}).output;
    // The temporary folder does not see such names.
    std::filesystem::remove(book);
    std::filesystem::remove(out);
    EXPECT_NE(json.find("\"book\":\"" + path("\xEF\xBF\xBD")), std::string::npos) << json;
}

TEST_F(Convert, AWritableFileInAClosedFolderIsOverwrittenAfterABackup)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can act as another user";
    ASSERT_EQ(chmod(folder.path().toUtf8().constData(), 0777), 0);
    std::filesystem::create_directory(path("closed"));
    const std::string book = write("closed/book.fb2", Book);
    ASSERT_EQ(chmod(book.c_str(), 0666), 0);
    ProgramSetting nobody;
    nobody.userId = 65534;
    nobody.dataFolder = path("data");
    std::filesystem::create_directory(nobody.dataFolder);
    ASSERT_EQ(chmod(nobody.dataFolder.c_str(), 0777), 0);
    const ProgramRun run = RunProgram("vmk", {"convert", book, "--out", book}, nobody);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_TRUE(read("closed/book.fb2").starts_with(Declaration + "\r\n<FictionBook>"));
    std::string kept;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path("data"))) {
        if (entry.path().string().ends_with("-book.fb2"))
            kept = read(entry.path().lexically_relative(path("")).string());
    }
    EXPECT_EQ(kept, Book);
}

TEST_F(Convert, ByteOrderMarksAreReadAsTheRulesSay)
{
    const auto converted = [this](const std::string& bytes) {
        const std::string book = write("book.fb2", bytes);
        EXPECT_EQ(RunProgram("vmk", {"convert", book, "--out", path("out")}).exitCode, 0);
        return read("out");
    };
    EXPECT_EQ(converted("\xef\xbb\xbf" + Declaration + "<a>\xd0\x96</a>"),
              Declaration + "\r\n<a>\xd0\x96</a>");
    EXPECT_EQ(converted("\xef\xbb\xbf<a>\xd0\x96</a>"), Declaration + "\r\n<a>\xd0\x96</a>");
}

TEST_F(Convert, HostileBooksAreConvertedCompletelyOrShownWithoutATree)
{
    const auto whole = [this](const std::string& bytes, const std::string& part) {
        const std::string book = write("book.fb2", bytes);
        const ProgramRun run = RunProgram("vmk", {"convert", book, "--out", path("out")});
        EXPECT_EQ(run.exitCode, 0) << run.errors;
#ifndef __SANITIZE_ADDRESS__
        EXPECT_LT(run.seconds, 2.0);
#endif
        EXPECT_THAT(read("out"), testing::HasSubstr(part)) << part.substr(0, 100);
        return run.errors;
    };
    const std::string remark = "vmk: " + path("book.fb2") + ": Namespace error. Tree view is skipped\n";
    std::string deep;
    for (int i = 0; i < 100'000; ++i)
        deep += "<b>";
    EXPECT_EQ(whole(Declaration + deep + "x", "<b>\r\n<b>\r\n<b>x"), remark);
    EXPECT_EQ(
        whole(Declaration + "<a b=\"" + std::string(5'000'000, 'x') + "\"/>", std::string(5'000'000, 'x')),
        "");
    EXPECT_EQ(whole("<!DOCTYPE a [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><a>&e;</a>", "<a>&e;</a>"),
              remark);
    EXPECT_EQ(whole("<!DOCTYPE a SYSTEM \"file:///etc/passwd\"><a>x</a>", "<!DOCTYPE a SYSTEM"), "");
    EXPECT_TRUE(whole(Declaration + "<a>\xd0", "<a>\xd0").ends_with(remark))
        << "UTF-8 cut within a character";
    EXPECT_EQ(whole(Declaration + "<a>b" + std::string(1, '\0') + "c</a>", "b" + std::string(1, '\0') + "c"),
              remark);
    std::string many = Declaration + "<a";
    for (int i = 0; i < 100'000; ++i)
        many += " b" + std::to_string(i) + "=\"c\"";
    EXPECT_EQ(whole(many + "/>", " b99999=\"c\"/>"), remark);
}

TEST_F(Convert, DeepBooksAreConvertedInLinearTime)
{
    const std::string book = write("book.fb2", MakeBook({.size = 4'000'000}));
    const ProgramRun run = RunProgram("vmk", {"convert", book, "--out", path("out")});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(RunProgram("vmk", {"validate", path("out")}).exitCode, 0) << "a valid book stays one";
}

} // namespace
