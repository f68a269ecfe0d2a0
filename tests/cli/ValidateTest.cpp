// `vmk validate` from the view of the user: result lines, exit codes, and a clear result for every bad input.

#include "BookGenerator.h"
#include "Corpus.h"
#include "ProgramRun.h"
#include "TestPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

using namespace vmk;
using namespace Qt::StringLiterals;
using namespace std::string_literals;

namespace {

const std::string Start = "<FictionBook xmlns=\"http://www.gribuser.ru/xml/fictionbook/2.0\" "
                          "xmlns:l=\"http://www.w3.org/1999/xlink\">";
const std::string Schema = VMK_BIN_DIR "/VMK Office/Schemas/FictionBook.xsd";
const std::string SampleFolder = VMK_BIN_DIR "/VMK Office/Book Samples";

class Validate : public testing::Test
{
protected:
    void SetUp() override { chmod(folder.path().toUtf8().constData(), 0755); }

    std::string path(const std::string& name) { return folder.path().toStdString() + "/" + name; }

    std::string write(const std::string& name, const std::string& bytes)
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

    static ProgramRun validate(std::vector<std::string> arguments, const ProgramSetting& setting = {})
    {
        arguments.insert(arguments.begin(), "validate");
        return RunProgram("vmk", arguments, setting);
    }

    /// Expects one result line with an error in the book, within a second and 200 MB.
    void expectError(const std::string& bytes, const std::string& placeAndReason)
    {
        const std::string book = write("book.fb2", bytes);
        const ProgramRun run = validate({book});
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.errors, "");
        EXPECT_EQ(run.output, book + ":" + placeAndReason + "\n");
#ifndef __SANITIZE_ADDRESS__ // sanitizers need more time and memory
        EXPECT_LT(run.seconds, 1.0);
        EXPECT_LT(run.peakBytes, 200'000'000);
#endif
    }

    QTemporaryDir folder;
};

std::string Repeated(const std::string& text, size_t count)
{
    std::string result;
    for (size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

/// A complete valid book in which `section` is the content of the only section.
std::string BookWith(const std::string& section)
{
    return Start
        + "\n<description><title-info><genre>sf</genre><author><nickname>a</nickname></author>"
          "<book-title>b</book-title><lang>ru</lang></title-info><document-info><author><nickname>a</"
          "nickname></author>"
          "<date>2026</date><id>i</id><version>1.0</version></document-info></description>\n<body><section>"
        + section + "</section></body></FictionBook>";
}

} // namespace

TEST_F(Validate, ReportsACleanBook)
{
    const std::string book = write("книга один.fb2", BookWith("<p>Текст</p>"));
    const ProgramRun run = validate({book});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, book + ": No errors (against schema)\n");
    EXPECT_EQ(run.errors, "");
}

TEST_F(Validate, ReportsTheFirstErrorWithoutTheNamespace)
{
    const std::string book = write("a.fb2", BookWith("\n<p>жж</p><x/>"));
    const ProgramRun run = validate({book});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(
        run.output,
        book
            + ":4:10: Error against schema. Element 'x': This element is not expected. Expected is one of "
              "( p, poem, subtitle, cite, empty-line, table, image ).\n");
}

TEST_F(Validate, AgainstNamespaceChecksWellFormednessAndPrefixesOnly)
{
    const std::string odd = write("odd.fb2", "<any/>");
    EXPECT_EQ(validate({"--against", "namespace", odd}).output, odd + ": No errors (against namespace)\n");
    const std::string prefix = write("prefix.fb2", "<any>\n<l:a/></any>");
    const ProgramRun run = validate({"--against=namespace", prefix});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, prefix + ":2:1: Error against namespace. Namespace prefix l on a is not defined\n");
}

TEST_F(Validate, ReadsStandardInput)
{
    ProgramSetting setting;
    setting.input = BookWith("<p/>");
    const ProgramRun run = validate({"-"}, setting);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "-: No errors (against schema)\n");
    EXPECT_EQ(validate({"-"}).output, "-:1:1: Error against schema. Document is empty\n");
}

TEST_F(Validate, TheSampleBooksAreClean)
{
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SampleFolder)) {
        if (!entry.is_regular_file())
            continue;
        const ProgramRun run = validate({entry.path().string()});
        EXPECT_EQ(run.exitCode, 0) << run.output << run.errors;
        ++count;
    }
    EXPECT_GE(count, 1);
}

TEST_F(Validate, EveryMadeBookIsCleanInEveryEncoding)
{
    std::vector<std::string> books;
    for (const char* encoding : {"utf-8", "utf-16", "windows-1250", "windows-1251", "windows-1252"})
        for (uint32_t seed = 1; seed <= 25; ++seed) {
            BookPlan plan;
            plan.size = 20'000 + seed * 2'000;
            plan.seed = seed;
            plan.encoding = encoding;
            plan.lineEnd = seed % 2 == 0 ? "\r\n" : "\n";
            plan.pictures = seed % 3 != 0;
            books.push_back(write(encoding + std::to_string(seed) + ".fb2", MakeBook(plan)));
        }
    const ProgramRun run = validate(books);
    EXPECT_EQ(run.exitCode, 0) << run.output << run.errors;
    EXPECT_EQ(std::ranges::count(run.output, '\n'), static_cast<std::ptrdiff_t>(books.size()));
}

TEST_F(Validate, RealBooksGetTheFirstErrorAtTheExpectedPosition)
{
    if (test::CorpusBooks().empty())
        GTEST_SKIP() << test::NoCorpus;
    const std::string corpus = test::CorpusFolder();
    const auto resultOf = [&corpus](const std::string& name) {
        const ProgramRun run = validate({corpus + "/" + name});
        EXPECT_EQ(run.exitCode, 1) << name;
        return run.output.substr(0, run.output.find(". ", corpus.size() + name.size()))
            .substr(corpus.size() + 1);
    };
    const std::string error = ": Error against schema";
    EXPECT_EQ(resultOf("example.fb2"), "example.fb2:10:27" + error); // after the unknown genre
    EXPECT_EQ(resultOf("features.fb2"), "features.fb2:48:7" + error); // the invalid date
    for (const char* name :
         {"faq-de.fb2", "faq-de-1252.fb2", "faq-ru.fb2", "faq-ru-1251.fb2", "guide-cs-1250.fb2"})
        EXPECT_EQ(resultOf(name), name + ":2:156"s + error); // a title instead of the author
    EXPECT_EQ(resultOf("help-ru.fb2"), "help-ru.fb2:2:129" + error); // an author instead of the genre
    EXPECT_EQ(resultOf("manual-ru.fb2"), "manual-ru.fb2:6:4" + error); // a title instead of the genre
}

TEST_F(Validate, RealBooksThatAreNotWellFormedHaveAPosition)
{
    if (test::CorpusBooks().empty())
        GTEST_SKIP() << test::NoCorpus;
    const std::string corpus = test::CorpusFolder();
    for (const char* name : {"help-ru.fb2", "help-zh.fb2", "manual-ru.fb2"}) {
        const ProgramRun run = validate({"--against", "namespace", corpus + "/" + name});
        EXPECT_EQ(run.exitCode, 1) << name;
        EXPECT_THAT(run.output, testing::HasSubstr(": Error against namespace. "));
    }
}

TEST_F(Validate, WritesOneJsonObjectPerBook)
{
    const std::string bad = write("bad.fb2", "<a>\n\xD0\xB6</b>");
    const std::string clean = write("clean.fb2", BookWith("<p/>"));
    const ProgramRun run = validate({"--json", bad, clean, path("none.fb2")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "");
    std::vector<QJsonObject> objects;
    for (const QByteArray& line : QByteArray::fromStdString(run.output).trimmed().split('\n'))
        objects.push_back(QJsonDocument::fromJson(line).object());
    ASSERT_EQ(objects.size(), 3U);
    EXPECT_EQ(objects[0]["book"_L1].toString().toStdString(), bad);
    EXPECT_EQ(objects[0]["valid"_L1], QJsonValue(false));
    EXPECT_EQ(objects[0]["against"_L1].toString().toStdString(), "schema");
    const QJsonObject error = objects[0]["error"_L1].toObject();
    EXPECT_EQ(error["line"_L1].toInt(), 1);
    EXPECT_EQ(error["column"_L1].toInt(), 1);
    EXPECT_FALSE(error["reason"_L1].toString().isEmpty());
    EXPECT_EQ(objects[1]["valid"_L1], QJsonValue(true));
    EXPECT_FALSE(objects[1].contains("error"_L1));
    EXPECT_EQ(objects[2]["failure"_L1].toString().toStdString(), "file not found");
    EXPECT_FALSE(objects[2].contains("valid"_L1));
}

TEST_F(Validate, AResultIsOneLineWhateverTheFileIsCalled)
{
    const std::string book = write("a\nb\t\"c\".fb2", BookWith("<p/>"));
    EXPECT_EQ(validate({book}).output, path("a\\nb\\x09\"c\".fb2") + ": No errors (against schema)\n");
    EXPECT_EQ(validate({path("none\n")}).errors, "vmk: " + path("none\\n") + ": file not found\n");
    const std::string json = validate({"--json", book}).output;
    EXPECT_EQ(std::ranges::count(json, '\n'), 1);
    EXPECT_EQ(
        QJsonDocument::fromJson(QByteArray::fromStdString(json)).object()["book"_L1].toString().toStdString(),
        book);
}

TEST_F(Validate, ABadBookAmongSeveralHidesNoneOfThem)
{
    const std::string clean = write("clean.fb2", BookWith("<p/>"));
    const ProgramRun run = validate({path("none.fb2"), clean, "/dev/null/x.fb2", clean});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.output, Repeated(clean + ": No errors (against schema)\n", 2));
    EXPECT_EQ(std::ranges::count(run.errors, '\n'), 2);
}

TEST_F(Validate, JsonReportsThePositionInFourUnits)
{
    const std::string bad = write("bad.fb2", "<a>\r\n\xD0\xB6\xF0\x9D\x84\x9E</b>");
    const ProgramRun run = validate({"--json", "--against", "namespace", bad});
    const QJsonObject error
        = QJsonDocument::fromJson(QByteArray::fromStdString(run.output)).object()["error"_L1].toObject();
    EXPECT_EQ(error["line"_L1].toInt(), 2);
    EXPECT_EQ(error["column"_L1].toInt(), 5);
    EXPECT_EQ(error["byte"_L1].toInt(), 13);
    EXPECT_EQ(error["position"_L1].toInt(), 10);
}

TEST_F(Validate, ChecksBooksInParallelAndKeepsTheirOrder)
{
    std::vector<std::string> books;
    for (int i = 0; i < 60; ++i) {
        BookPlan plan;
        plan.size = i % 7 == 0 ? 300'000 : 20'000;
        plan.seed = static_cast<uint32_t>(i);
        books.push_back(i % 5 == 0 ? path("missing" + std::to_string(i))
                                   : write(std::to_string(i), MakeBook(plan)));
        if (i % 4 == 0)
            books.back() = write("bad" + std::to_string(i), "<a>" + std::string(static_cast<size_t>(i), 'x'));
    }
    const ProgramRun one = validate(books);
    std::vector<std::string> arguments = {"--jobs", "4"};
    arguments.insert(arguments.end(), books.begin(), books.end());
    const ProgramRun four = validate(arguments);
    EXPECT_EQ(four.output, one.output);
    EXPECT_EQ(four.errors, one.errors);
    EXPECT_EQ(four.exitCode, 2);
    arguments[1] = "256";
    EXPECT_EQ(validate(arguments).output, one.output);
}

TEST_F(Validate, TheWorstOutcomeIsTheExitCode)
{
    const std::string clean = write("clean.fb2", BookWith("<p/>"));
    const std::string bad = write("bad.fb2", "<a/>");
    EXPECT_EQ(validate({clean, clean}).exitCode, 0);
    EXPECT_EQ(validate({bad, clean}).exitCode, 1);
    EXPECT_EQ(validate({clean, path("none"), bad}).exitCode, 2);
}

TEST_F(Validate, ReadsItsOptions)
{
    const std::string clean = write("-odd.fb2", BookWith("<p/>"));
    EXPECT_EQ(validate({"--", clean}).exitCode, 0);
    EXPECT_EQ(validate({clean, "--schema", Schema}).exitCode, 0);
    for (const std::vector<std::string>& wrong : {std::vector<std::string>{},
                                                  {"--nonsense", clean},
                                                  {"--against", "dtd", clean},
                                                  {"--against"},
                                                  {"--jobs", "0", clean},
                                                  {"--jobs", "x", clean},
                                                  {"--jobs", "-1", clean},
                                                  {"--jobs", "257", clean},
                                                  {"--jobs"},
                                                  {"--schema", "", clean},
                                                  {"--schema=", clean},
                                                  {"-x", clean},
                                                  {"--json=yes", clean},
                                                  {"-", "-"},
                                                  {"--against", "namespace", "--schema", Schema, clean}}) {
        const ProgramRun run = validate(wrong);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_TRUE(run.errors.starts_with("vmk validate: ")) << run.errors;
        EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1);
    }
}

TEST_F(Validate, ShowsHelpAndVersion)
{
    EXPECT_EQ(validate({"--help"}).exitCode, 0);
    EXPECT_TRUE(validate({"--help"}).output.starts_with("usage: vmk validate "));
    EXPECT_TRUE(RunProgram("vmk", {"--help"}).output.starts_with("usage: vmk COMMAND"));
    EXPECT_TRUE(RunProgram("vmk", {"--version"}).output.starts_with("vmk "));
    EXPECT_EQ(RunProgram("vmk", {}).exitCode, 2);
    EXPECT_EQ(RunProgram("vmk", {"nonsense"}).exitCode, 2);
}

TEST_F(Validate, PrintsNoLocaleWarning)
{
    ProgramSetting setting;
    setting.locale = "C";
    const std::string book = write("книга.fb2", BookWith("<p/>"));
    const ProgramRun run = validate({book}, setting);
    EXPECT_EQ(run.output, book + ": No errors (against schema)\n");
    EXPECT_EQ(run.errors, "");
}

TEST_F(Validate, AFullDiskUnderTheResultsIsAFailure)
{
    if (access("/dev/full", W_OK) != 0)
        GTEST_SKIP() << "no /dev/full here";
    ProgramSetting setting;
    setting.outputFile = "/dev/full";
    const ProgramRun run = validate({write("a.fb2", BookWith("<p/>"))}, setting);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.errors.starts_with("vmk: cannot write the results: ")) << run.errors;
}

// ---------------------------------------------------------------- bad input

TEST_F(Validate, AMissingFileIsAPlainLine)
{
    const ProgramRun run = validate({path("none.fb2")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "vmk: " + path("none.fb2") + ": file not found\n");
}

TEST_F(Validate, AFolderWithoutBooksIsReportedInOneLine)
{
    const ProgramRun run = validate({folder.path().toStdString()});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "vmk: " + folder.path().toStdString() + ": contains no book\n");
}

TEST_F(Validate, AnUnreadableFileIsAPlainLine)
{
    const std::string book = write("locked.fb2", BookWith("<p/>"));
    chmod(book.c_str(), 0);
    ProgramSetting setting;
    if (geteuid() == 0) {
        // Root can read everything: an ordinary user tries instead, if that user can run the program.
        setting.userId = 65534;
        if (RunProgram("vmk", {"--version"}, setting).exitCode != 0)
            GTEST_SKIP() << "an ordinary user cannot reach the program";
    }
    const ProgramRun run = validate({book}, setting);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.errors.starts_with("vmk: " + book + ": cannot be read: ")) << run.errors;
}

TEST_F(Validate, AnEmptyFileIsAnError)
{
    expectError("", "1:1: Error against schema. Document is empty");
}

TEST_F(Validate, BinaryRubbishIsAnError)
{
    expectError("\x89PNG\r\n\x1a\n\0\0\0\rIHDR"s,
                "1:1: Error against schema. The bytes here are not valid UTF-8");
    expectError("PK\x03\x04"s, "1:1: Error against schema. Start tag expected, '<' not found");
}

TEST_F(Validate, AHundredMegabytesOfOpenAnglesAreAnError)
{
    expectError(std::string(100'000'000, '<'), "1:2: Error against schema. StartTag: invalid element name");
}

TEST_F(Validate, AMillionLevelsAreAnError)
{
    expectError(Repeated("<a>", 1'000'000),
                "1:1: Error against schema. Element 'a': No matching global declaration available for the "
                "validation root.");
    const std::string deep = BookWith(Repeated("<p><strong>", 1) + Repeated("<emphasis>", 1'000'000));
    const ProgramRun run = validate({write("deep.fb2", deep)});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.output.ends_with("Error against schema. Elements are nested deeper than 4096\n"))
        << run.output;
}

TEST_F(Validate, AnEntityBombIsAnError)
{
    std::string bomb = "<!DOCTYPE FictionBook [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 12; ++i)
        bomb += "<!ENTITY e" + std::to_string(i) + " '" + Repeated("&e" + std::to_string(i - 1) + ";", 10)
            + "'>";
    const std::string book = bomb + "]>\n" + BookWith("<p>&e11;</p>");
    expectError(book,
                "4:19: Error against schema. The entities of the document type expand to too much text");
}

TEST_F(Validate, AnExternalEntityIsAnErrorAndItsFileStaysUnread)
{
    const std::string secret = write("secret.txt", "the secret");
    const std::string book
        = "<!DOCTYPE FictionBook [<!ENTITY x SYSTEM 'file://" + secret + "'>]>\n" + BookWith("<p>&x;</p>");
    expectError(book, "4:19: Error against schema. Entity 'x' is outside the document and is not read");
}

TEST_F(Validate, ATruncatedUtf8SequenceIsAnError)
{
    expectError(BookWith("<p>ж\xD0</p>"), "3:20: Error against schema. The bytes here are not valid UTF-8");
    expectError(Start + "\xD0", "1:104: Error against schema. The bytes here are not valid UTF-8");
}

TEST_F(Validate, AnUnknownEncodingIsAnErrorAtItsName)
{
    expectError("<?xml version=\"1.0\" encoding=\"windows-9999\"?>" + BookWith("<p/>"),
                "1:31: Error against schema. The declared encoding 'windows-9999' is not known");
}

TEST_F(Validate, AnIdentifierUsedTwiceIsAnError)
{
    expectError(BookWith("<p id='a'/>\n<v/><p id='a'/>"),
                "4:1: Error against schema. Element 'v': This element is not expected. Expected is one of "
                "( p, poem, subtitle, cite, empty-line, table, image ).");
    expectError(
        BookWith("<p id='a'/>\n<p id='a'/>"),
        "4:1: Error against schema. Element 'p', attribute 'id': The identifier 'a' is used a second time.");
}

TEST_F(Validate, AnEmptyLineMayHaveBlanksAndAnIdentifier)
{
    const std::string book = write("a.fb2", BookWith("<empty-line> \n</empty-line><empty-line id='x'/><p/>"));
    EXPECT_EQ(validate({book}).output, book + ": No errors (against schema)\n");
    EXPECT_EQ(validate({write("b.fb2", BookWith("<empty-line>x</empty-line>"))}).exitCode, 1);
    EXPECT_EQ(validate({write("b.fb2", BookWith("<empty-line><p/></empty-line>"))}).exitCode, 1);
    EXPECT_EQ(validate({write("b.fb2", BookWith("<empty-line id='x'/><p id='x'/>"))}).exitCode, 1);
}

TEST_F(Validate, ANamespaceWithABlankIsAnotherNamespaceButNoError)
{
    const std::string book
        = write("a.fb2", BookWith("<p><a xmlns:k='http://www.w3.org/1999/xlink ' k:href='#x'>y</a></p>"));
    EXPECT_EQ(validate({"--against", "namespace", book}).output, book + ": No errors (against namespace)\n");
}

TEST_F(Validate, AMissingOrBrokenSchemaIsAPlainLine)
{
    const std::string book = write("a.fb2", BookWith("<p/>"));
    const auto expectRefused = [&](const std::string& schema, const std::string& problem) {
        const ProgramRun run = validate({"--schema", schema, book});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_TRUE(run.errors.starts_with("vmk: schema " + problem)) << run.errors;
        EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1);
    };
    expectRefused(path("none.xsd"), path("none.xsd") + ": file not found");
    const std::string broken = write("broken.xsd", "<xs:schema");
    expectRefused(broken, broken + ":1: ");
    const std::string importing
        = write("importing.xsd",
                "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' "
                "targetNamespace='http://www.gribuser.ru/xml/fictionbook/2.0'>"
                "<xs:import namespace='urn:o' schemaLocation='gone.xsd'/></xs:schema>");
    expectRefused(importing, path("gone.xsd") + ": file not found");
    const std::string other = write("other.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'/>");
    expectRefused(other, other + ": the schema is for the namespace \"\"");
}

TEST_F(Validate, ManyIdentifiersTakeNoQuadraticTime)
{
    std::string section;
    for (int i = 0; i < 100'000; ++i)
        section += "<p id='p" + std::to_string(i) + "'>x</p>\n";
    const ProgramRun run = validate({write("ids.fb2", BookWith(section))});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.errors;
    EXPECT_LT(run.seconds, 2.0);
}

TEST_F(Validate, ALargePictureTakesNoQuadraticTime)
{
    std::string book = BookWith("<p/>");
    book.insert(book.rfind("</FictionBook>"),
                "<binary id='b' content-type='image/png'>" + Repeated(std::string(76, 'A') + "\n", 400'000)
                    + "</binary>");
    const ProgramRun run = validate({write("picture.fb2", book)});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.errors;
    EXPECT_LT(run.seconds, 3.0);
}

TEST_F(Validate, WritesNothingIntoTheWorkspace)
{
    const auto listing = [] {
        std::vector<std::string> names;
        // Other tests convert books at the same time, and the program keeps earlier versions of them.
        for (const auto& entry : std::filesystem::recursive_directory_iterator(VMK_BIN_DIR "/VMK Office"))
            if (entry.path().string().find("/Backup") == std::string::npos)
                names.push_back(entry.path().string());
        std::ranges::sort(names);
        return names;
    };
    const auto before = listing();
    (void)validate({write("a.fb2", BookWith("<p/>"))});
    EXPECT_EQ(listing(), before);
}
