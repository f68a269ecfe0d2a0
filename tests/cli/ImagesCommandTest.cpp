// `vmk images` as the user meets it.

#include "BookImages.h"
#include "Books.h"
#include "CodePages.h"
#include "Pictures.h"
#include "ProgramRun.h"
#include "Workplace.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

std::string BookWith(const std::string& content, const std::string& binaries)
{
    std::string book = SmallBook(content);
    return book.insert(book.find("</FictionBook>"), binaries);
}

class ImagesCommand : public testing::Test
{
protected:
    ImagesCommand()
    {
        workplace.Make(
            u"good.fb2"_s,
            BookWith("<image l:href=\"#a.png\"/><image xl:href='#b.jpg'/><a l:href=\"#a.png\">x</a>",
                     Binary("a.png", SmallPng()) + Binary("b.jpg", SmallJpeg(), "image/jpeg")));
        workplace.Make(
            u"bad.fb2"_s,
            BookWith("<!-- <image l:href=\"#comment\"/> --><image l:href=\"#gone.png\"/>"
                     "<image l:href=\"#gone.png\"/><a l:href=\"#note\">x</a><image l:href=\"#cut.png\"/>",
                     Binary("cut.png", SmallPng().substr(0, 40)) + Binary("spare.png", SmallPng())
                         + Binary("spare.png", SmallPng())
                         + "<binary content-type=\"image/png\" id=\"text.png\">no base64!</binary>"
                         + "<binary content-type=\"image/png\" id=\"blanks.png\">AA AA\r\n\tBBBB</binary>"
                         + Binary("torn.png", TornPng()) + Binary("word.jpg", "a word", "image/jpeg")));
    }

    std::string Path(const char* name) { return workplace.Path(QString::fromUtf8(name)).toStdString(); }
    /// The lines of a run, without the name of the book.
    QStringList Lines(const ProgramRun& run, const char* book)
    {
        QString output = QString::fromStdString(run.output);
        output.remove(QString::fromStdString(Path(book) + ": "));
        return output.split(u'\n', Qt::SkipEmptyParts);
    }

    const Workplace workplace;
};

TEST_F(ImagesCommand, ListsIdTypeBytesSizeAndUses)
{
    const ProgramRun run = RunProgram("vmk", {"images", Path("good.fb2")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(Lines(run, "good.fb2"),
              (QStringList{u"a.png, image/png, %1 bytes, 2x3, used by 2 tags"_s.arg(SmallPng().size()),
                           u"b.jpg, image/jpeg, %1 bytes, 2x3, used by 1 tag"_s.arg(SmallJpeg().size())}));
}

TEST_F(ImagesCommand, ListsAsJson)
{
    const ProgramRun run = RunProgram("vmk", {"images", "--list", "--json", Path("good.fb2")});
    const QList<QByteArray> lines = QByteArray::fromStdString(run.output).trimmed().split('\n');
    ASSERT_EQ(lines.size(), 2);
    const QJsonObject first = QJsonDocument::fromJson(lines[0]).object();
    EXPECT_EQ(first[u"id"].toString(), u"a.png"_s);
    EXPECT_EQ(first[u"type"].toString(), u"image/png"_s);
    EXPECT_EQ(first[u"bytes"].toInteger(), qint64(SmallPng().size()));
    EXPECT_EQ(first[u"width"].toInt(), 2);
    EXPECT_EQ(first[u"height"].toInt(), 3);
    EXPECT_EQ(first[u"uses"].toInt(), 2);
    EXPECT_EQ(first[u"book"].toString().toStdString(), Path("good.fb2"));
}

TEST_F(ImagesCommand, CheckFindsEveryFault)
{
    const ProgramRun run = RunProgram("vmk", {"images", "--check", Path("bad.fb2")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(
        Lines(run, "bad.fb2"),
        (QStringList{
            u"reference without a resource: gone.png"_s, u"undecodable data: cut.png: the data ends early"_s,
            u"resource without a reference: spare.png"_s, u"id used more than once: spare.png"_s,
            u"resource without a reference: text.png"_s,
            u"undecodable data: text.png: the content is not base64"_s,
            u"resource without a reference: blanks.png"_s,
            u"undecodable data: blanks.png: the base64 text contains blanks"_s,
            u"resource without a reference: torn.png"_s, u"undecodable data: torn.png: the data is damaged"_s,
            u"resource without a reference: word.jpg"_s,
            u"undecodable data: word.jpg: the content is no picture"_s}));
    const ProgramRun good = RunProgram("vmk", {"images", "--check", Path("good.fb2")});
    EXPECT_EQ(good.exitCode, 0);
    EXPECT_EQ(Lines(good, "good.fb2"), QStringList{u"No errors"_s});
    EXPECT_EQ(RunProgram("vmk", {"images", "--check", Path("good.fb2"), Path("bad.fb2")}).exitCode, 1);
}

TEST_F(ImagesCommand, ExtractsUnderTheNamesOfTheEditor)
{
    const ProgramRun run = RunProgram("vmk", {"images", Path("good.fb2"), "--out", Path("out")});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(workplace.Names(u"out"_s), (QStringList{u"a.png"_s, u"b.jpg"_s}));
    QFile file(workplace.Path(u"out/b.jpg"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toStdString(), SmallJpeg());
}

TEST_F(ImagesCommand, SeveralBooksGetAFolderEach)
{
    workplace.MakeFolders(u"more"_s);
    workplace.Make(u"more/good.fb2"_s, BookWith("", Binary("c.png", SmallPng())));
    const ProgramRun run
        = RunProgram("vmk", {"images", Path("good.fb2"), Path("more/good.fb2"), "--out", Path("out")});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(workplace.Names(u"out"_s), (QStringList{u"good"_s, u"good (2)"_s}));
    EXPECT_EQ(workplace.Names(u"out/good (2)"_s), QStringList{u"c.png"_s});
}

TEST_F(ImagesCommand, WrongUseAndUnreadableBooksEndWithTwo)
{
    EXPECT_EQ(RunProgram("vmk", {"images"}).exitCode, 2);
    EXPECT_EQ(RunProgram("vmk", {"images", "--what", Path("good.fb2")}).exitCode, 2);
    EXPECT_EQ(RunProgram("vmk", {"images", Path("none.fb2")}).exitCode, 2);
    EXPECT_EQ(RunProgram("vmk", {"images", Path("none.fb2"), "--check", Path("good.fb2")}).exitCode, 2);
    workplace.Make(u"file"_s, "");
    EXPECT_EQ(RunProgram("vmk", {"images", Path("good.fb2"), "--out", Path("file")}).exitCode, 2);
}

TEST_F(ImagesCommand, IdsBeyondAsciiMatchInEveryEncoding)
{
    std::string book = BookWith("<image l:href=\"#обложка.png\"/>", Binary("обложка.png", SmallPng()));
    workplace.Make(u"utf16.fb2"_s, "\xff\xfe" + EncodeText(QString::fromStdString(book), CodePageUtf16));
    book.replace(book.find("UTF-8"), 5, "windows-1251");
    workplace.Make(u"1251.fb2"_s, Utf8ToBytes(book, CodePageCyrillic));
    for (const char* name : {"utf16.fb2", "1251.fb2"}) {
        const ProgramRun run = RunProgram("vmk", {"images", "--check", Path(name)});
        EXPECT_EQ(run.exitCode, 0) << run.output;
        EXPECT_EQ(Lines(RunProgram("vmk", {"images", Path(name)}), name).value(0).section(u',', 0, 0),
                  u"обложка.png"_s);
    }
}

TEST_F(ImagesCommand, ReferencesInIdsAreResolved)
{
    workplace.Make(u"amp.fb2"_s,
                   BookWith("<image l:href=\"#a&amp;b&#33;.png\"/>", Binary("a&#x26;b!.png", SmallPng())));
    EXPECT_EQ(RunProgram("vmk", {"images", "--check", Path("amp.fb2")}).exitCode, 0);
}

TEST_F(ImagesCommand, ABookThatIsNotWellFormedHasResourcesToo)
{
    workplace.Make(u"torn.fb2"_s, "<p><image l:href=\"#a.png\" <b> & < \"'<a" + Binary("a.png", SmallPng()));
    const ProgramRun run = RunProgram("vmk", {"images", Path("torn.fb2")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(Lines(run, "torn.fb2").size(), 1);
}

TEST_F(ImagesCommand, ABookWithoutBinariesHasNoLine)
{
    workplace.Make(u"plain.fb2"_s, SmallBook());
    const ProgramRun run = RunProgram("vmk", {"images", Path("plain.fb2")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "");
}

} // namespace
} // namespace vmk
