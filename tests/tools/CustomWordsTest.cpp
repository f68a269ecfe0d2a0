#include "CustomWords.h"

#include "Workplace.h"

#include <QFile>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class CustomWordsTest : public testing::Test
{
protected:
    CustomWordsTest() { qputenv("VELLUMARK_CODEPAGE", "1251"); }
    ~CustomWordsTest() override { qunsetenv("VELLUMARK_CODEPAGE"); }

    std::string content() const
    {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll().toStdString() : "(none)";
    }

    const Workplace workplace;
    const QString file = workplace.Path(u"CustomDictionary.dat"_s);
    CustomDictionary dictionary;
};

} // namespace

TEST_F(CustomWordsTest, WordsAreLinesInTheSystemsCodePage)
{
    workplace.Make(u"CustomDictionary.dat"_s, "word\r\n\xf1\xeb\xee\xe2\xee\r\n  trimmed \r\n\r\n");
    dictionary.LoadCustomWords(file);
    EXPECT_EQ(dictionary.CustomWords, QStringList({u"word"_s, u"слово"_s, u"trimmed"_s}));
    EXPECT_EQ(dictionary.CustomWordCount, 3);
    dictionary.SaveCustomWords(file);
    EXPECT_EQ(content(), "word\r\n\xf1\xeb\xee\xe2\xee\r\ntrimmed\r\n");
}

TEST_F(CustomWordsTest, AWordThatThePageLacksIsKeptInUtf8)
{
    dictionary.LoadCustomWords(file);
    for (const QString& word : {u"señor"_s, u"слово"_s, u"日本"_s, u"Р°"_s})
        dictionary.AddWord(word);
    dictionary.SaveCustomWords(file);
    CustomDictionary again;
    again.LoadCustomWords(file);
    EXPECT_EQ(again.CustomWords, dictionary.CustomWords);
    EXPECT_NE(content().find("\xf1\xeb\xee\xe2\xee\r\n"), std::string::npos);
    EXPECT_NE(content().find("se\xc3\xb1or\r\n"), std::string::npos);
}

TEST_F(CustomWordsTest, ByteOrderMarksBeforeAWordAreIgnored)
{
    const QStringList words
        = DecodeCustomWords("\xef\xbb\xbfone\r\n\xef\xbb\xbf\xef\xbb\xbf two\r\n\xef\xbb\xbf\r\n");
    EXPECT_EQ(words, (QStringList{u"one"_s, u"two"_s}));
    EXPECT_EQ(DecodeCustomWords(EncodeCustomWords(words)), words);
}

TEST_F(CustomWordsTest, AMissingFileIsAnEmptyDictionary)
{
    dictionary.LoadCustomWords(file);
    EXPECT_EQ(dictionary.CustomWordCount, 0);
    EXPECT_FALSE(dictionary.IsCustomWord(u"word"_s));
}

TEST_F(CustomWordsTest, AFileThatCannotBeReadIsNotOverwritten)
{
    workplace.Make(u"CustomDictionary.dat"_s, "kept\r\n");
    const QByteArray name = file.toUtf8();
    ASSERT_EQ(::chmod(workplace.Path(QString()).toUtf8().constData(), 0777), 0);
    ASSERT_EQ(::chmod(name.constData(), 0), 0);
    {
        const PlainUser user;
        dictionary.LoadCustomWords(file);
        dictionary.AddWord(u"word"_s);
        dictionary.SaveCustomWords(file);
    }
    ASSERT_EQ(::chmod(name.constData(), 0600), 0);
    EXPECT_EQ(content(), "kept\r\n");
    EXPECT_TRUE(dictionary.IsCustomWord(u"word"_s));
}

TEST_F(CustomWordsTest, AFolderWithTheNameOfTheFileIsKept)
{
    workplace.MakeFolders(u"CustomDictionary.dat"_s);
    dictionary.LoadCustomWords(file);
    dictionary.AddWord(u"word"_s);
    dictionary.SaveCustomWords(file);
    EXPECT_TRUE(QFileInfo(file).isDir());
    EXPECT_TRUE(dictionary.IsCustomWord(u"word"_s));
}

TEST_F(CustomWordsTest, AWordIsComparedTrimmedAndCaseSensitively)
{
    dictionary.AddWord(u" Word "_s);
    EXPECT_TRUE(dictionary.IsCustomWord(u"Word"_s));
    EXPECT_TRUE(dictionary.IsCustomWord(u" Word"_s));
    EXPECT_FALSE(dictionary.IsCustomWord(u"word"_s));
    EXPECT_FALSE(dictionary.IsCustomWord(u"Words"_s));
}

TEST_F(CustomWordsTest, BlanksAreNotAdded)
{
    dictionary.AddWord(u"  "_s);
    EXPECT_EQ(dictionary.CustomWordCount, 0);
}

TEST_F(CustomWordsTest, RemovalKeepsTheCountAndTheNextWordFollowsAGap)
{
    for (const QString& word : {u"a"_s, u"b"_s, u"c"_s, u"d"_s})
        dictionary.AddWord(word);
    dictionary.Remove({u"a"_s, u"d"_s}, 2);
    EXPECT_EQ(dictionary.CustomWords, QStringList({u"a"_s, u"d"_s}));
    EXPECT_EQ(dictionary.CustomWordCount, 4);
    EXPECT_EQ(dictionary.ListedWords(), QStringList({u"a"_s, u"d"_s}));
    EXPECT_FALSE(dictionary.IsCustomWord(u"b"_s));
    dictionary.AddWord(u"e"_s);
    EXPECT_EQ(dictionary.CustomWords, QStringList({u"a"_s, u"d"_s, QString(), QString(), u"e"_s}));
    dictionary.SaveCustomWords(file);
    EXPECT_EQ(content(), "a\r\nd\r\n\r\n\r\ne\r\n");
    CustomDictionary again;
    again.LoadCustomWords(file);
    EXPECT_EQ(again.CustomWords, QStringList({u"a"_s, u"d"_s, u"e"_s}));
}

TEST_F(CustomWordsTest, ClearingKeepsTheEntriesUntilTheNextWord)
{
    dictionary.AddWord(u"a"_s);
    dictionary.AddWord(u"b"_s);
    dictionary.ClearAll();
    EXPECT_FALSE(dictionary.IsCustomWord(u"a"_s));
    EXPECT_TRUE(dictionary.ListedWords().isEmpty());
    dictionary.AddWord(u"c"_s);
    EXPECT_EQ(dictionary.CustomWords, QStringList({u"c"_s}));
}

TEST_F(CustomWordsTest, TheListIsWrittenTrimmedAndWithoutEmptyLines)
{
    dictionary.SaveCustomWordsFromList({u" a "_s, u" "_s, QString(), u"b"_s}, file);
    EXPECT_EQ(content(), "a\r\nb\r\n");
}

} // namespace vmk
