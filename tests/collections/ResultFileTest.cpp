// The results of an interrupted run.

#include "ResultFile.h"
#include "QtPrinting.h"
#include "Workplace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vmk;
using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

auto StartsWith(const std::string& start)
{
    return [start](std::string_view line) { return line.starts_with(start); };
}

std::string Content(const QString& file)
{
    QFile opened(file);
    EXPECT_TRUE(opened.open(QIODevice::ReadOnly));
    return opened.readAll().toStdString();
}

} // namespace

TEST(ResultFile, IsMadeAndAppendedTo)
{
    const Workplace place;
    const QString file = place.Path(u"results"_s);
    ResultFile results(file);
    EXPECT_TRUE(results.atEnd());
    EXPECT_TRUE(results.cut(results.position()));
    EXPECT_TRUE(results.append("a: 1\n") && results.append("b: 2\n") && results.flush());
    EXPECT_EQ(Content(file), "a: 1\nb: 2\n");
}

TEST(ResultFile, LinesAreReadBookByBookAndAnIncompleteOneIsNone)
{
    const Workplace place;
    const QString file = place.Path(u"results"_s);
    place.Make(u"results"_s, "a: 1\na: 2\nb: 3\nb: 4");
    ResultFile results(file);
    EXPECT_THAT(results.readWhile(StartsWith("x")), ElementsAre());
    EXPECT_THAT(results.readWhile(StartsWith("a")), ElementsAre("a: 1", "a: 2"));
    EXPECT_FALSE(results.atEnd());
    EXPECT_EQ(results.nextLine(), "b: 3");
    EXPECT_EQ(results.position(), 10U);
    EXPECT_THAT(results.readWhile(StartsWith("b")), ElementsAre("b: 3"));
    EXPECT_TRUE(results.atEnd());
    EXPECT_TRUE(results.cut(10) && results.append("b: 5\n") && results.flush());
    EXPECT_EQ(Content(file), "a: 1\na: 2\nb: 5\n");
}

TEST(ResultFile, AFileThatCannotBeOpenedIsAProblem)
{
    const Workplace place;
    ResultFile results(place.Path(u"none/results"_s));
    EXPECT_EQ(results.problem(), u"No such file or directory"_s);
    EXPECT_TRUE(results.atEnd());
    EXPECT_FALSE(results.append("x\n"));
}
