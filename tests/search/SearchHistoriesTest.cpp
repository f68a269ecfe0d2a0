#include "SearchHistories.h"

#include "FileOperations.h"
#include "Workplace.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// The bytes of a text in UTF-16.
std::string Utf16(std::u16string_view text)
{
    std::string bytes;
    for (const char16_t c : text) {
        bytes += char(c & 0xFF);
        bytes += char(c >> 8);
    }
    return bytes;
}

TEST(SearchHistories, ANewTextIsFirst)
{
    QStringList list = {u"a"_s, u"b"_s};
    EXPECT_TRUE(AddToHistoryList(list, u"c"_s));
    EXPECT_EQ(list, (QStringList{u"c"_s, u"a"_s, u"b"_s}));
}

TEST(SearchHistories, ARepeatedTextMovesToTheTop)
{
    QStringList list = {u"a"_s, u"b"_s, u"c"_s};
    EXPECT_TRUE(AddToHistoryList(list, u"c"_s));
    EXPECT_EQ(list, (QStringList{u"c"_s, u"a"_s, u"b"_s}));
    EXPECT_FALSE(AddToHistoryList(list, u"c"_s));
    // Case counts.
    EXPECT_TRUE(AddToHistoryList(list, u"C"_s));
    EXPECT_EQ(list.size(), 4);
}

TEST(SearchHistories, ABlankTextIsIgnoredButNotANonBreakingSpace)
{
    QStringList list;
    EXPECT_FALSE(AddToHistoryList(list, u""_s));
    EXPECT_FALSE(AddToHistoryList(list, u"   "_s));
    EXPECT_TRUE(AddToHistoryList(list, u"\u00a0"_s));
}

TEST(SearchHistories, TheFortyFirstTextPushesOutTheOldest)
{
    QStringList list;
    for (int i = 1; i <= 41; ++i)
        AddToHistoryList(list, QString::number(i));
    EXPECT_EQ(list.size(), 40);
    EXPECT_EQ(list.first(), u"41"_s);
    EXPECT_EQ(list.last(), u"2"_s);
    AddToHistoryList(list, u"2"_s);
    EXPECT_EQ(list.size(), 40);
    EXPECT_EQ(list.last(), u"3"_s);
}

TEST(SearchHistories, AFileIsUtf16WithACarriageReturnAfterEachEntry)
{
    EXPECT_EQ(EncodeHistory({u"\u044f <b>&"_s, u"2"_s}), Utf16(u"\u044f &lt;b&gt;&\r2\r"));
    EXPECT_EQ(DecodeHistory(Utf16(u"\u044f &lt;b&gt;&\r2\r")), (QStringList{u"\u044f <b>&"_s, u"2"_s}));
}

TEST(SearchHistories, EveryCharacterComesBack)
{
    const QStringList list = {u"\u00a0\u2028\u2029\u007f\t\U0001f600\ufeff"_s, u"&amp;&nbsp;"_s, u"a\nb"_s};
    EXPECT_EQ(DecodeHistory(EncodeHistory(list)), list);
}

TEST(SearchHistories, AnOddByteAndEmptyEntriesAreIgnored)
{
    EXPECT_EQ(DecodeHistory(Utf16(u"\r\ra\r\rb") + 'x'), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_TRUE(DecodeHistory("").isEmpty());
    EXPECT_TRUE(DecodeHistory("x").isEmpty());
}

class HistoryFiles : public testing::Test
{
protected:
    const Workplace workplace;
    const QString path = workplace.Path(u"list.hf"_s);
    [[nodiscard]] std::string bytes() const { return ReadFileText(path); }
    static void setMode(const QString& file, mode_t mode)
    {
        EXPECT_EQ(::chmod(file.toUtf8().constData(), mode), 0);
    }
};

TEST_F(HistoryFiles, AnEmptyListLeavesNoFile)
{
    EXPECT_TRUE(WriteHistoryFile({u"a"_s}, path));
    EXPECT_EQ(bytes(), Utf16(u"a\r"));
    EXPECT_TRUE(WriteHistoryFile({}, path));
    EXPECT_FALSE(FileExists(path));
    EXPECT_TRUE(WriteHistoryFile({}, path));
}

TEST_F(HistoryFiles, AMissingFileIsAnEmptyList)
{
    QStringList list = {u"old"_s};
    EXPECT_TRUE(ReadHistoryFile(list, path));
    EXPECT_TRUE(list.isEmpty());
}

TEST_F(HistoryFiles, AnUnchangedListIsNotWritten)
{
    // The program would write other bytes: there is an odd byte, and brackets are not escaped.
    const std::string written = Utf16(u"<b>a</b>\r") + 'x';
    workplace.Make(u"list.hf"_s, written);
    History history;
    history.path = path;
    LoadHistory(history);
    EXPECT_EQ(history.entries, QStringList{u"<b>a</b>"_s});
    EXPECT_TRUE(SaveHistory(history));
    EXPECT_EQ(bytes(), written);
    history.changed = AddToHistoryList(history.entries, u"c"_s);
    EXPECT_TRUE(SaveHistory(history));
    EXPECT_EQ(bytes(), Utf16(u"c\r&lt;b&gt;a&lt;/b&gt;\r"));
}

TEST_F(HistoryFiles, AMillionEntriesAreRead)
{
    std::string written;
    for (int i = 0; i < 1'000'000; ++i)
        written += Utf16(u"ab\r");
    workplace.Make(u"list.hf"_s, written);
    History history;
    history.path = path;
    LoadHistory(history);
    EXPECT_EQ(history.entries.size(), 1'000'000);
    AddToHistoryList(history.entries, u"new"_s);
    EXPECT_EQ(history.entries.size(), MostHistoryEntries);
}

TEST_F(HistoryFiles, AFileThatCannotBeReadIsNotOverwritten)
{
    workplace.Make(u"list.hf"_s, Utf16(u"a\r"));
    setMode(workplace.Path(QString()), 0777);
    setMode(path, 0);
    {
        const PlainUser user;
        History history;
        history.path = path;
        LoadHistory(history);
        history.changed = AddToHistoryList(history.entries, u"new"_s);
        EXPECT_FALSE(SaveHistory(history));
    }
    setMode(path, 0600);
    EXPECT_EQ(bytes(), Utf16(u"a\r"));
}

TEST_F(HistoryFiles, AFolderWithTheNameOfTheFileIsKept)
{
    ASSERT_TRUE(MakeFolder(path));
    History history;
    history.path = path;
    LoadHistory(history);
    EXPECT_TRUE(history.entries.isEmpty());
    history.changed = AddToHistoryList(history.entries, u"new"_s);
    EXPECT_FALSE(SaveHistory(history));
    EXPECT_TRUE(history.changed);
    EXPECT_TRUE(FolderExists(path));
}

TEST_F(HistoryFiles, AReadOnlyFolderKeepsItsFile)
{
    workplace.Make(u"list.hf"_s, Utf16(u"a\r"));
    setMode(path, 0444);
    setMode(workplace.Path(QString()), 0555);
    History history;
    history.path = path;
    {
        const PlainUser user;
        LoadHistory(history);
        history.changed = AddToHistoryList(history.entries, u"new"_s);
        EXPECT_FALSE(SaveHistory(history));
    }
    EXPECT_TRUE(history.changed);
    EXPECT_EQ(bytes(), Utf16(u"a\r"));
    setMode(workplace.Path(QString()), 0755);
    EXPECT_TRUE(SaveHistory(history));
    EXPECT_EQ(bytes(), Utf16(u"new\ra\r"));
}

TEST_F(HistoryFiles, AMissingFolderFails)
{
    EXPECT_FALSE(WriteHistoryFile({u"a"_s}, workplace.Path(u"no/list.hf"_s)));
}

} // namespace
} // namespace vmk
