// The paths of results: always below the folder of the run, whatever a member is called.

#include "OutputPaths.h"
#include "BookItem.h"
#include "QtPrinting.h"
#include "Workplace.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

using namespace vmk;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

TEST(OutputPathOfMember, KeepsOrdinaryNames)
{
    EXPECT_EQ(OutputPathOfMember(u"book.fb2"_s), u"book.fb2"_s);
    EXPECT_EQ(OutputPathOfMember(u"Автор/Книга (1).fb2"_s), u"Автор/Книга (1).fb2"_s);
    EXPECT_EQ(OutputPathOfMember(u"..book.fb2"_s), u"..book.fb2"_s);
    EXPECT_EQ(OutputPathOfMember(u"console.fb2"_s), u"console.fb2"_s);
}

TEST(OutputPathOfMember, CannotLeaveTheFolder)
{
    EXPECT_EQ(OutputPathOfMember(u"../../etc/passwd"_s), u"__/__/etc/passwd"_s);
    EXPECT_EQ(OutputPathOfMember(u"/etc/passwd"_s), u"etc/passwd"_s);
    EXPECT_EQ(OutputPathOfMember(u"a/./b//c.fb2"_s), u"a/b/c.fb2"_s);
    EXPECT_EQ(OutputPathOfMember(u"C:\\Windows\\x.fb2"_s), u"C__Windows_x.fb2"_s);
    EXPECT_EQ(OutputPathOfMember(u"/"_s), u"_"_s);
    EXPECT_EQ(OutputPathOfMember(QString()), u"_"_s);
}

TEST(OutputPathOfMember, HasNoNamesOfDevicesAndNoImpossibleOnes)
{
    EXPECT_EQ(OutputPathOfMember(u"con.fb2"_s), u"_con.fb2"_s);
    EXPECT_EQ(OutputPathOfMember(u"NUL"_s), u"_NUL"_s);
    EXPECT_EQ(OutputPathOfMember(u"dir/Lpt1.tar.fb2"_s), u"dir/_Lpt1.tar.fb2"_s);
    EXPECT_EQ(OutputPathOfMember(u"com10.fb2"_s), u"com10.fb2"_s);
    EXPECT_EQ(OutputPathOfMember(u"a:b*c?\"<>|\n\x01.fb2"_s), u"a_b_c_______.fb2"_s);
    EXPECT_EQ(OutputPathOfMember(u"dots./blanks /x.fb2"_s), u"dots_/blanks_/x.fb2"_s);
    const QString longName = OutputPathOfMember(QString(300, u'Я') + u".fb2"_s);
    EXPECT_LE(longName.toUtf8().size(), 255);
    EXPECT_TRUE(longName.endsWith(u"Я.fb2"_s));
    // The part of a long name that is kept can end in a dot or a blank.
    EXPECT_EQ(OutputPathOfMember(QString(254, u'a') + u"."_s + QString(100, u'b')),
              QString(254, u'a') + u'_');
}

TEST(OutputPathOfMember, OfAnyNameIsBelowTheFolder)
{
    std::mt19937 chance(7); // NOLINT: the same names in each run
    const QString letters = u"../\\:.aC \u0000\n"_s;
    for (int i = 0; i < 20'000; ++i) {
        QString name;
        for (auto length = chance() % 12; length > 0; --length)
            name += letters[qsizetype(chance() % size_t(letters.size()))];
        const fs::path path = OutputPathOfMember(name).toStdString();
        ASSERT_FALSE(path.is_absolute()) << name.toStdString();
        ASSERT_FALSE(path.empty());
        for (const fs::path& part : path)
            ASSERT_TRUE(part != ".." && part != "." && !part.empty()) << name.toStdString();
    }
}

TEST(OutputPathOfFile, IsThePathAsNamed)
{
    EXPECT_EQ(OutputPathOfFile("lib/a.fb2"), "lib/a.fb2");
    EXPECT_EQ(OutputPathOfFile("./lib//x/../a.fb2"), "lib/a.fb2");
    EXPECT_EQ(OutputPathOfFile("/home/user/a.fb2"), "home/user/a.fb2");
    EXPECT_EQ(OutputPathOfFile("/../a.fb2"), "a.fb2");
    const std::string parent = fs::current_path().parent_path().string().substr(1);
    EXPECT_EQ(OutputPathOfFile("../a.fb2"), parent + "/a.fb2");
    EXPECT_EQ(OutputPathOfFile("lib/\xaa.fb2"), "lib/\xaa.fb2");
}

TEST(OutputFolder, MakesTheFoldersOfAResult)
{
    const Workplace place;
    OutputFolder outputs(place.Folder());
    QString problem;
    EXPECT_EQ(outputs.pathFor("a/b/c.fb2", &problem), place.Path(u"a/b/c.fb2"_s));
    EXPECT_EQ(outputs.pathFor("d.fb2", &problem), place.Path(u"d.fb2"_s));
    EXPECT_EQ(place.Names(u"a"_s), QStringList{u"b"_s});
    EXPECT_EQ(problem, QString());
}

TEST(OutputFolder, FollowsNoLink)
{
    const Workplace place;
    const Workplace elsewhere;
    fs::create_symlink(elsewhere.Folder().toStdString(), place.Path(u"link"_s).toStdString());
    fs::create_symlink(elsewhere.Path(u"x.fb2"_s).toStdString(), place.Path(u"x.fb2"_s).toStdString());
    OutputFolder outputs(place.Folder());
    for (const char* path : {"link/a.fb2", "link/b/a.fb2", "x.fb2"}) {
        QString problem;
        EXPECT_EQ(outputs.pathFor(path, &problem), QString());
        EXPECT_TRUE(problem.startsWith(u"is a link and is not followed: "_s)) << problem.toStdString();
    }
    EXPECT_EQ(elsewhere.Names(), QStringList());
}

TEST(OutputFolder, AFileInTheWayIsAProblem)
{
    const Workplace place;
    place.Make(u"a"_s, "file");
    OutputFolder outputs(place.Folder());
    QString problem;
    EXPECT_EQ(outputs.pathFor("a/b.fb2", &problem), QString());
    EXPECT_EQ(problem, u"the folder cannot be made: "_s + place.Path(u"a"_s));
}

TEST(OutputFolder, ABookIsNeverItsOwnResult)
{
    const Workplace place;
    place.Make(u"a.fb2"_s, "book");
    OutputFolder outputs(place.Folder());
    BookItem book;
    book.path = place.Path(u"a.fb2"_s).toStdString();
    book.output = "a.fb2";
    QString problem;
    EXPECT_EQ(outputs.pathFor(book, &problem), QString());
    EXPECT_EQ(problem, u"not written: the path of the result is that of the book"_s);
}

TEST(TakenPaths, TellsPathsApart)
{
    TakenPaths taken;
    EXPECT_TRUE(taken.take("a/b.fb2"));
    EXPECT_TRUE(taken.take("a/c.fb2"));
    EXPECT_FALSE(taken.take("a/b.fb2"));
}
