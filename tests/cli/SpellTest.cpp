#include "ProgramRun.h"
#include "SmallDictionaries.h"

#include <gtest/gtest.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// `vmk spell` with small dictionaries.
class SpellCommandTest : public testing::Test
{
protected:
    SpellCommandTest() { dictionaries.makeUsual(); }

    std::string book(const char* name, std::string_view text, std::string_view language = "en") const
    {
        dictionaries.folder.Make(QLatin1StringView(name),
                                 "<FictionBook><lang>" + std::string(language) + "</lang>\n<p style=\"more\">"
                                     + std::string(text) + "</p></FictionBook>\n");
        return dictionaries.folder.Path(QLatin1StringView(name)).toStdString();
    }

    const SmallDictionaries dictionaries;
};

} // namespace

TEST_F(SpellCommandTest, SuspiciousWordsAreListedWithTheirPlaces)
{
    const std::string path = book("b.fb2", "one boook\ntwo titlle, слово слвоо", "ru");
    const ProgramRun run = RunProgram("vmk", {"spell", path});
    EXPECT_EQ(run.output, path + ":2:21: boook\n" + path + ":3:5: titlle\n" + path + ":3:19: слвоо\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "");
}

TEST_F(SpellCommandTest, ABookWithoutSuspiciousWordsIsClean)
{
    const ProgramRun run = RunProgram("vmk", {"spell", book("b.fb2", "one book two HTML 5th", "en")});
    EXPECT_EQ(run.output.find("lang"), std::string::npos);
    EXPECT_NE(run.exitCode, 2);
    const ProgramRun markup = RunProgram("vmk", {"spell", "--markup", book("b.fb2", "one book", "en")});
    EXPECT_NE(markup.output.find(":1:2: FictionBook\n"), std::string::npos);
}

TEST_F(SpellCommandTest, EachWordOnceMostFrequentFirst)
{
    const std::string path = book("b.fb2", "boook titlle boook\nboook titlle zzone", "ru");
    const ProgramRun run = RunProgram("vmk", {"spell", "--unique", "--suggest", path});
    EXPECT_EQ(run.output,
              path + ":2:17: boook 3: book\n" + path + ":2:23: titlle 2: title\n" + path
                  + ":3:14: zzone 1\n");
}

TEST_F(SpellCommandTest, JsonHasOneObjectForEachWord)
{
    const std::string path = book("b.fb2", "boook", "ru");
    const ProgramRun run = RunProgram("vmk", {"spell", "--json", "--suggest", "--unique", path});
    EXPECT_EQ(run.output,
              R"({"book":")" + path
                  + R"(","column":17,"count":1,"line":2,"suggestions":["book"],"word":"boook"})" + "\n");
}

TEST_F(SpellCommandTest, SeveralJobsGiveTheSameLinesInOrder)
{
    std::vector<std::string> arguments = {"spell"};
    for (const char* name : {"a.fb2", "b.fb2", "c.fb2", "d.fb2"})
        arguments.push_back(book(name, std::string("boook ") + name[0] + "qq", "ru"));
    const ProgramRun one = RunProgram("vmk", arguments);
    arguments.insert(arguments.end(), {"--jobs", "3"});
    const ProgramRun three = RunProgram("vmk", arguments);
    EXPECT_EQ(one.output, three.output);
    EXPECT_EQ(std::count(one.output.begin(), one.output.end(), '\n'), 8);
}

TEST_F(SpellCommandTest, TheLanguageCanBeGiven)
{
    const std::string path = book("b.fb2", "Buch book", "en");
    EXPECT_NE(RunProgram("vmk", {"spell", path}).output.find(": Buch\n"), std::string::npos);
    const std::string german = RunProgram("vmk", {"spell", "--lang", "de-AT", path}).output;
    EXPECT_EQ(german.find(": Buch\n"), std::string::npos);
    EXPECT_NE(german.find(": book\n"), std::string::npos);
}

TEST_F(SpellCommandTest, WrongUseAndTroubleEndWithTwo)
{
    const std::string path = book("b.fb2", "one", "en");
    EXPECT_EQ(RunProgram("vmk", {"spell"}).exitCode, 2);
    EXPECT_EQ(RunProgram("vmk", {"spell", "--what", path}).exitCode, 2);
    EXPECT_EQ(RunProgram("vmk", {"spell", "--lang", "tlh", path}).exitCode, 2);
    EXPECT_EQ(RunProgram("vmk", {"spell", path + ".none"}).exitCode, 2);
    EXPECT_EQ(RunProgram("vmk", {"spell", "-", "-"}).exitCode, 2);
    for (const char* name : {"ru_RU.dic", "en_US.dic", "de_DE.dic"})
        dictionaries.folder.Make(QLatin1StringView(name), "damaged\n");
    const ProgramRun none = RunProgram("vmk", {"spell", path});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_NE(none.errors.find("cannot find a dictionary"), std::string::npos);
    EXPECT_NE(none.errors.find("en_US.dic"), std::string::npos);
}

TEST_F(SpellCommandTest, StandardInputIsABook)
{
    ProgramSetting setting;
    setting.input = "<p>boook</p>";
    EXPECT_EQ(RunProgram("vmk", {"spell", "-"}, setting).output, "-:1:4: boook\n");
}

TEST_F(SpellCommandTest, BinariesOfABookAreNotRead)
{
    const ProgramRun run
        = RunProgram("vmk", {"spell", book("b.fb2", "one</p><binary id=\"a\">QUJDab</binary><p>", "ru")});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.exitCode, 0);
}

} // namespace vmk
