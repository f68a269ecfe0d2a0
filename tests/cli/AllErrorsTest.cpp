// `vmk validate --all-errors` and `--summary`: every error of a book, as xmllint finds them.

#include "BookGenerator.h"
#include "Library.h"
#include "TestPaths.h"

#include <gmock/gmock.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <random>
#include <regex>

using namespace vmk;
using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

class AllErrors : public Library
{
protected:
    /// The numbers of the lines with errors, and their reasons up to the list of what is expected.
    using Errors = std::vector<std::pair<int, std::string>>;

    [[nodiscard]] Errors byVmk(const std::string& name) const
    {
        Errors errors;
        static const std::regex line(R"(.*?:(\d+):\d+: Error against schema\. (.*))");
        for (const std::string& text : linesOf(vmk({"validate", "--all-errors", name}).output)) {
            std::smatch parts;
            EXPECT_TRUE(std::regex_match(text, parts, line)) << text;
            errors.emplace_back(std::stoi(parts[1]), withoutList(parts[2]));
        }
        return errors;
    }

    [[nodiscard]] Errors byXmllint(const std::string& name) const
    {
        Errors errors;
        static const std::regex line(R"(.*?:(\d+): element [^:]*: Schemas validity error : (.*))");
        static const std::regex space(R"(\{http://www.gribuser.ru/xml/fictionbook/2.0\})");
        const std::string command = "xmllint --noout --schema '" VMK_BIN_DIR
                                    "/VMK Office/Schemas/FictionBook.xsd' "
            + path(name) + " 2>&1";
        std::FILE* output = popen(command.c_str(), "r"); // NOLINT: a fixed command
        std::string text;
        char piece[4096];
        while (const size_t length = std::fread(piece, 1, sizeof piece, output))
            text.append(piece, length);
        pclose(output);
        for (const std::string& shown : linesOf(text)) {
            std::smatch parts;
            if (std::regex_match(shown, parts, line))
                errors.emplace_back(std::stoi(parts[1]),
                                    withoutList(std::regex_replace(parts[2].str(), space, "")));
        }
        return errors;
    }

    /// The program shortens long lists, and removes the blank at the end.
    static std::string withoutList(std::string reason)
    {
        reason = reason.substr(0, reason.find(" Expected is "));
        return reason.substr(0, reason.find(" {"));
    }
};

const char* const ManyErrors
    = "<p>one</p>\n<p y='1' z='2'>two</p>\n<image/>\n<poem></poem>\n"
      "<table><tr><td colspan='a'>x</td></tr></table>\n<empty-line>text</empty-line>\n"
      "<p id='a'/><p id='1'/><p>text<x>more</x></p>\n<x/>";

} // namespace

TEST_F(AllErrors, EveryErrorHasALine)
{
    write("a.fb2", book("<p y='1'/>\n<p z='2'>text</p><x/>"));
    const ProgramRun run = vmk({"validate", "--all-errors", "a.fb2"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(
        linesOf(run.output),
        ElementsAre(
            "a.fb2:5:1: Error against schema. Element 'p', attribute 'y': The attribute 'y' is not "
            "allowed.",
            "a.fb2:6:1: Error against schema. Element 'p', attribute 'z': The attribute 'z' is not "
            "allowed.",
            StartsWith("a.fb2:6:18: Error against schema. Element 'x': This element is not expected.")));
    EXPECT_EQ(vmk({"validate", "a.fb2"}).output, linesOf(run.output)[0] + "\n");
}

TEST_F(AllErrors, AreThoseOfXmllint)
{
    if (std::system("xmllint --version >/dev/null 2>&1") != 0) // NOLINT: a fixed command
        GTEST_SKIP() << "xmllint is not installed";
    write("many.fb2", book(ManyErrors));
    EXPECT_GE(byXmllint("many.fb2").size(), 8U);
    EXPECT_EQ(byVmk("many.fb2"), byXmllint("many.fb2"));
    // A generated book in which single tags are renamed and attributes added.
    std::mt19937 chance(11); // NOLINT: the same books in each run
    for (const char* encoding : {"utf-8", "windows-1251", "utf-16"}) {
        std::string bytes = MakeBook({.size = 40'000, .seed = 3, .encoding = encoding});
        if (std::string(encoding) != "utf-16") {
            for (int i = 0; i < 40; ++i) {
                const size_t at = bytes.find("<p>", chance() % bytes.size());
                if (at != std::string::npos)
                    bytes.insert(at + 2, i % 2 == 0 ? " a='1'" : " style='x' b=''");
            }
        }
        write("random.fb2", bytes);
        const Errors expected = byXmllint("random.fb2");
        EXPECT_EQ(expected.size() > 10, std::string(encoding) != "utf-16");
        if (!expected.empty()) {
            EXPECT_EQ(byVmk("random.fb2"), expected) << encoding;
        }
    }
}

TEST_F(AllErrors, EndAtTheFirstErrorOfWellFormedness)
{
    write("a.fb2", book("<p y='1'/>\n<p>&none;</p><p y='1'/>"));
    const std::vector<std::string> lines = linesOf(vmk({"validate", "--all-errors", "a.fb2"}).output);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0], StartsWith("a.fb2:5:1: Error against schema. Element 'p', attribute 'y'"));
    EXPECT_THAT(lines[1], StartsWith("a.fb2:6:10: "));
    EXPECT_THAT(lines[1], testing::HasSubstr("Entity 'none' not defined"));
}

TEST_F(AllErrors, OfABookWithoutErrorsAreOneLine)
{
    write("a.fb2", book());
    EXPECT_EQ(vmk({"validate", "--all-errors", "a.fb2"}).output, "a.fb2: No errors (against schema)\n");
}

TEST_F(AllErrors, TakeTimeInProportionToTheBook)
{
    std::string text;
    for (int i = 0; i < 100'000; ++i)
        text += "<p q=''>я</p>\n";
    write("a.fb2", book(text));
    std::string cyrillic = book(text);
    cyrillic.replace(cyrillic.find("utf-8"), 5, "windows-1251");
    write("b.fb2", cyrillic);
    for (const char* name : {"a.fb2", "b.fb2"}) {
        const ProgramRun run = vmk({"validate", "--all-errors", name});
        const std::vector<std::string> lines = linesOf(run.output);
        ASSERT_EQ(lines.size(), 100'000U);
        EXPECT_THAT(lines.back(), StartsWith(std::string(name) + ":100004:1: "));
        // A search from the beginning for each error would take minutes.
        EXPECT_LT(run.seconds, 60);
    }
}

TEST_F(AllErrors, AreAnArrayInJson)
{
    write("a.fb2", book("<p y='1'/>\n<x/>"));
    const QJsonObject all
        = QJsonDocument::fromJson(
              QByteArray::fromStdString(vmk({"validate", "--all-errors", "--json", "a.fb2"}).output))
              .object();
    const QJsonArray errors = all["errors"_L1].toArray();
    ASSERT_EQ(errors.size(), 2);
    EXPECT_EQ(errors[0], all["error"_L1]);
    EXPECT_EQ(errors[1]["line"_L1].toInt(), 6);
    EXPECT_EQ(all["valid"_L1], QJsonValue(false));
}

TEST_F(AllErrors, TheSummaryCountsBooksAndKinds)
{
    write("lib/a.fb2", book());
    write("lib/b.fb2", book("<p y='1'/><p z='2'>text</p><x/>"));
    write("lib/c.fb2", book("<y/>") + "<");
    write("lib/d.zip", "damaged");
    const std::vector<std::string> lines
        = linesOf(vmk({"validate", "--all-errors", "--summary", "lib"}).output);
    ASSERT_GE(lines.size(), 5U);
    EXPECT_EQ(std::vector(lines.end() - 4, lines.end()),
              (std::vector<std::string>{"Summary: 4 books, 1 without errors, 2 with errors, 1 not read",
                                        "        2  The attribute '…' is not allowed",
                                        "        2  This element is not expected",
                                        "        1  Extra content at the end of the document"}));
    const std::string json = linesOf(vmk({"validate", "--summary", "--json", "lib"}).output).back();
    EXPECT_EQ(
        json,
        R"({"summary":{"books":4,"errors":{"The attribute '…' is not allowed":1,"This element is not expected":1},)"
        R"("invalid":2,"unread":1,"valid":1}})");
}
