// `vmk find` as the user meets it: a line for each match, exit codes as grep's, and a clear outcome for every
// bad input.

#include "CodePages.h"
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <fstream>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

class Find : public testing::Test
{
protected:
    std::string write(const std::string& name, const std::string& bytes)
    {
        std::string path = folder.path().toStdString() + "/" + name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    static std::string book(const std::string& encoding, const std::string& paragraphs)
    {
        return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n<FictionBook><body><section>"
            + paragraphs + "</section></body></FictionBook>";
    }
    static ProgramRun find(std::vector<std::string> arguments, const ProgramSetting& setting = {})
    {
        arguments.insert(arguments.begin(), "find");
        return RunProgram("vmk", arguments, setting);
    }

    const QTemporaryDir folder;
};

TEST_F(Find, EachMatchIsALineWithItsPlace)
{
    const std::string path = write("a.fb2", book("utf-8", "<p>one two One</p><p>two</p>"));
    const ProgramRun run = find({"one", path});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, path + ":5:4: <p>one two One</p>\n" + path + ":5:12: <p>one two One</p>\n");
    EXPECT_EQ(run.errors, "");
}

TEST_F(Find, SaysNothingOfLossesBecauseItWritesNoBook)
{
    // Saving by the editor's own rules would make a blank of the reference.
    const std::string path = write("a.fb2", book("utf-8", "<p>one&#160;two</p>"));
    const ProgramRun run = find({"\u00a0", path});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, path + ":5:7: <p>one\u00a0two</p>\n");
    EXPECT_EQ(run.errors, "");
}

TEST_F(Find, TagsAreTextAsInTheEditor)
{
    const std::string path = write("a.fb2", book("utf-8", "<p>x</p>"));
    EXPECT_EQ(find({"<section>", path}).output, path + ":4:1: <section>\n");
}

TEST_F(Find, NothingFoundIsOneAndTroubleIsTwo)
{
    const std::string path = write("a.fb2", book("utf-8", "<p>one</p>"));
    const ProgramRun none = find({"absent", path});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.output, "");
    const ProgramRun trouble = find({"one", path, path + ".missing"});
    EXPECT_EQ(trouble.exitCode, 2);
    EXPECT_NE(trouble.output, "");
    EXPECT_NE(trouble.errors, "");
    EXPECT_EQ(find({"one"}).exitCode, 2);
    EXPECT_EQ(find({}).exitCode, 2);
    EXPECT_EQ(find({"", path}).exitCode, 2);
    EXPECT_EQ(find({"--what", "one", path}).exitCode, 2);
}

TEST_F(Find, CaseAndWholeWordsCountWhenWanted)
{
    const std::string path = write("a.fb2", book("utf-8", "<p>Cat cats cat</p>"));
    EXPECT_EQ(find({"--match-case", "cat", path}).output,
              path + ":5:8: <p>Cat cats cat</p>\n" + path + ":5:13: <p>Cat cats cat</p>\n");
    EXPECT_EQ(find({"--match-case", "--whole-word", "cat", path}).output,
              path + ":5:13: <p>Cat cats cat</p>\n");
}

TEST_F(Find, EveryEncodingOfABookIsSearched)
{
    const QString text = u"<p>\u043d\u043e\u0447\u044c\u00a0!</p>"_s;
    const std::string shown = text.toStdString();
    for (const auto& [name, page] : {std::pair{"windows-1251", CodePageCyrillic}, {"utf-8", CodePageUtf8}}) {
        const std::string path = write(std::string(name) + ".fb2", book(name, EncodeText(text, page)));
        EXPECT_EQ(find({"\xd0\x9d\xd0\x9e\xd0\xa7\xd0\xac\xc2\xa0", path}).output,
                  path + ":5:4: " + shown + "\n");
    }
    const QString unicode
        = QString::fromStdString(book("utf-16", "")).replace(u"<section>"_s, u"<section>"_s + text);
    const std::string path = write("utf-16.fb2", "\xff\xfe" + EncodeText(unicode, CodePageUtf16));
    EXPECT_EQ(find({"\xd0\xbd\xd0\xbe\xd1\x87\xd1\x8c", path}).output, path + ":5:4: " + shown + "\n");
}

TEST_F(Find, RegularExpressions)
{
    const std::string path = write("a.fb2", book("utf-8", "<p>a1 b22</p>"));
    EXPECT_EQ(find({"--regexp", "[a-z]\\d+", path}).output,
              path + ":5:4: <p>a1 b22</p>\n" + path + ":5:7: <p>a1 b22</p>\n");
    const ProgramRun bad = find({"--regexp", "(", path});
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_NE(bad.errors.find("bad regular expression"), std::string::npos);
}

TEST_F(Find, JsonHasOneObjectForEachMatch)
{
    const std::string path = write("a.fb2", book("utf-8", "<p>say \"one\"</p>"));
    const ProgramRun run = find({"--json", "\"one\"", path});
    const QJsonObject match = QJsonDocument::fromJson(QByteArray::fromStdString(run.output)).object();
    EXPECT_EQ(match[u"book"_s].toString().toStdString(), path);
    EXPECT_EQ(match[u"line"_s].toInt(), 5);
    EXPECT_EQ(match[u"column"_s].toInt(), 8);
    EXPECT_EQ(match[u"length"_s].toInt(), 5);
    EXPECT_EQ(match[u"match"_s].toString(), u"\"one\""_s);
}

TEST_F(Find, BooksStayInOrderOnSeveralThreads)
{
    std::vector<std::string> arguments = {"--jobs", "4", "word"};
    std::string wanted;
    for (int i = 0; i < 20; ++i) {
        const std::string path
            = write("b" + std::to_string(i) + ".fb2", book(i % 2 ? "utf-8" : "windows-1251", "<p>word</p>"));
        arguments.push_back(path);
        wanted += path + ":5:4: <p>word</p>\n";
    }
    const ProgramRun run = find(arguments);
    EXPECT_EQ(run.output, wanted);
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(Find, StandardInputIsABook)
{
    ProgramSetting setting;
    setting.input = book("utf-8", "<p>one</p>");
    EXPECT_EQ(find({"one", "-"}, setting).output, "-:5:4: <p>one</p>\n");
    EXPECT_EQ(find({"one", "-", "-"}, setting).exitCode, 2);
}

TEST_F(Find, ABookThatIsNotWellFormedIsSearchedToo)
{
    const std::string path = write("a.fb2", "<FictionBook><p>one</FictionBook>");
    const ProgramRun run = find({"one", path});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.output.find("one"), std::string::npos);
}

TEST_F(Find, HelpIsShown)
{
    const ProgramRun run = find({"--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output.rfind("usage: vmk find", 0), 0U);
}

} // namespace
