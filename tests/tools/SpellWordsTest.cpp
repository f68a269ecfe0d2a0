#include "SpellWords.h"

#include "QtPrinting.h"

#include <QElapsedTimer>
#include <QStringList>

#include <gtest/gtest.h>

#include <random>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

QStringList WordsOf(const QString& text)
{
    QStringList found;
    SpellWords words(text);
    while (words.next()) {
        EXPECT_EQ(words.word(), QStringView(text).mid(words.start(), words.length()));
        found.append(words.word().toString());
    }
    return found;
}

} // namespace

TEST(SpellWords, LettersWithInnerApostrophesAndHyphensAreOneWord)
{
    EXPECT_EQ(WordsOf(u"don't кое-как l’homme по‑русски"_s),
              QStringList({u"don't"_s, u"кое-как"_s, u"l’homme"_s, u"по‑русски"_s}));
}

TEST(SpellWords, OuterAndDoubleSignsSeparateWords)
{
    EXPECT_EQ(WordsOf(u"'one' -two- three--four five''six"_s),
              QStringList({u"one"_s, u"two"_s, u"three"_s, u"four"_s, u"five"_s, u"six"_s}));
}

TEST(SpellWords, SoftHyphensAndStressMarksBelongToTheWord)
{
    EXPECT_EQ(WordsOf(u"сло\u00ADво за\u0301мок end\u00AD ok"_s),
              QStringList({u"сло\u00ADво"_s, u"за\u0301мок"_s, u"end"_s, u"ok"_s}));
}

TEST(SpellWords, WordsWithDigitsAreSkipped)
{
    EXPECT_EQ(WordsOf(u"5-й R2D2 м² word2 два слова"_s), QStringList({u"два"_s, u"слова"_s}));
}

TEST(SpellWords, WordsInCapitalsOnlyAreSkipped)
{
    EXPECT_EQ(WordsOf(u"НАТО Я USA's США-шный Slovo A-B"_s),
              QStringList({u"USA's"_s, u"США-шный"_s, u"Slovo"_s}));
}

TEST(SpellWords, AddressesAndPathsAreSkipped)
{
    EXPECT_EQ(
        WordsOf(
            u"see http://www.site.org/some/page and (www.other.net/page) or mail some.one@host.org, now"_s),
        QStringList({u"see"_s, u"and"_s, u"or"_s, u"mail"_s, u"now"_s}));
    EXPECT_EQ(
        WordsOf(
            u"in /usr/share/words, C:\\books\\my and \\\\server\\share, ~/books; ./one a/bb/cc.txt fb.org."_s),
        QStringList({u"in"_s, u"and"_s}) + QStringList());
}

TEST(SpellWords, TextThatOnlyResemblesAPathIsRead)
{
    EXPECT_EQ(WordsOf(u"и/или слово.Слово end.Next </emphasis> image/png да/нет/либо"_s),
              QStringList({u"и"_s, u"или"_s, u"слово"_s, u"Слово"_s, u"end"_s, u"Next"_s, u"emphasis"_s,
                           u"image"_s, u"png"_s, u"да"_s, u"нет"_s, u"либо"_s}));
}

TEST(SpellWords, TagsAreTextLikeAnyOther)
{
    EXPECT_EQ(WordsOf(u"<p xml:lang=\"ru\">слово</p>"_s),
              QStringList({u"p"_s, u"xml"_s, u"lang"_s, u"ru"_s, u"слово"_s, u"p"_s}));
}

TEST(SpellWords, AScriptWithoutBlanksSeparatesWords)
{
    EXPECT_EQ(WordsOf(u"FBReader\u4f1a\u81ea\u52a8 Linux\u7248"_s),
              (QStringList{u"FBReader"_s, u"\u4f1a\u81ea\u52a8"_s, u"Linux"_s, u"\u7248"_s}));
    EXPECT_FALSE(IsInsideSpellWord(u"a\u4f1ab", 1));
    EXPECT_FALSE(IsInsideSpellWord(u"a\u4f1ab", 2));
    // Letters of the other scripts are one word, which is suspicious.
    EXPECT_EQ(WordsOf(u"\u0441at"_s), QStringList{u"\u0441at"_s});
}

TEST(SpellWords, ATextOfLoneSurrogatesContainsNoWord)
{
    EXPECT_EQ(WordsOf(QString(1000, QChar(0xD800))), QStringList());
    EXPECT_EQ(WordsOf(QString(1000, QChar(0xDC00))), QStringList());
    EXPECT_EQ(WordsOf(u"a"_s + QChar(0xD800) + u"b"_s), QStringList({u"a"_s, u"b"_s}));
}

TEST(SpellWords, LettersOutsideTheBasicPlaneAreLetters)
{
    EXPECT_EQ(WordsOf(u"\U00010428\U00010429 x"_s), QStringList({u"\U00010428\U00010429"_s, u"x"_s}));
}

TEST(SpellWords, AWordOfAMegabyteIsOneWord)
{
    EXPECT_EQ(WordsOf(QString(1 << 20, u'a')).size(), 1);
    EXPECT_EQ(WordsOf(u"a-"_s.repeated(1 << 19)).size(), 1);
    EXPECT_EQ(WordsOf(u"/"_s.repeated(1 << 20)).size(), 0);
    EXPECT_EQ(WordsOf(u"@."_s.repeated(1 << 19)).size(), 0);
}

TEST(SpellWords, TheEndOfAPieceInsideAWordIsKnown)
{
    const QString text = u"кое-как, don't end"_s;
    for (const int position : {1, 3, 4, 6, 10, 12, 13})
        EXPECT_TRUE(IsInsideSpellWord(text, position)) << position;
    for (const int position : {0, 7, 8, 9, 14, 15, 18})
        EXPECT_FALSE(IsInsideSpellWord(text, position)) << position;
}

TEST(SpellWords, WordsOfAnyTextAreInOrderAndInsideTheText)
{
    std::minstd_rand random(7);
    const QString alphabet = u"aяЯ'-\u2019\u00AD\u0301 1./\\@:<>\"wW~_"_s + QChar(0xD800) + QChar(0xDC00);
    for (int round = 0; round < 3000; ++round) {
        QString text;
        for (unsigned i = random() % 40; i > 0; --i)
            text += alphabet[qsizetype(random() % size_t(alphabet.size()))];
        SpellWords words(text);
        qsizetype end = 0;
        while (words.next()) {
            EXPECT_GE(words.start(), end);
            EXPECT_GT(words.length(), 0);
            end = words.start() + words.length();
            ASSERT_LE(end, text.size());
            EXPECT_TRUE(text[words.start()].isLetter() || text[words.start()].isHighSurrogate());
            EXPECT_FALSE(IsInCapitals(words.word()));
            for (const QChar c : words.word())
                EXPECT_FALSE(c.isDigit() || c.isSpace()) << text.toStdString();
        }
    }
}

} // namespace vmk
