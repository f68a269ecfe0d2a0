#include "BookWords.h"

#include "BookLanguage.h"
#include "QtPrinting.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <random>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

QStringList WordsOf(const QString& xml, BookMarkup markup = BookMarkup::LeaveOut)
{
    QStringList found;
    ForEachBookWord(xml, markup, [&](const BookWord& word) {
        found.append(u"%1:%2:%3"_s.arg(word.line).arg(word.column).arg(word.word));
    });
    return found;
}

} // namespace

TEST(BookWords, TextAndAttributeValuesAreReadAndNamesAreNot)
{
    EXPECT_EQ(WordsOf(u"<p style=\"some\">one</p>\n<p/>two"_s),
              QStringList({u"1:11:some"_s, u"1:17:one"_s, u"2:5:two"_s}));
}

TEST(BookWords, NamesAreReadOnRequestInTheOrderOfTheFile)
{
    EXPECT_EQ(WordsOf(u"<p style='some'>one</p>"_s, BookMarkup::Include),
              QStringList({u"1:2:p"_s, u"1:4:style"_s, u"1:11:some"_s, u"1:17:one"_s, u"1:22:p"_s}));
}

TEST(BookWords, LinesEndInThreeWaysAndColumnsCountCharacters)
{
    EXPECT_EQ(WordsOf(u"a\r\nb\rc\nd \U0001F600 e"_s),
              QStringList({u"1:1:a"_s, u"2:1:b"_s, u"3:1:c"_s, u"4:1:d"_s, u"4:5:e"_s}));
}

TEST(BookWords, ReferencesAreResolvedWithinWords)
{
    EXPECT_EQ(WordsOf(u"caf&#233; don&apos;t &#x441;лово a&unknown;b x &amp; y &bad z"_s),
              QStringList({u"1:1:café"_s, u"1:11:don't"_s, u"1:22:слово"_s, u"1:34:a"_s, u"1:44:b"_s,
                           u"1:46:x"_s, u"1:54:y"_s, u"1:57:bad"_s, u"1:61:z"_s}));
}

TEST(BookWords, BinariesAndDoctypesAreLeftOutAndCommentsAreRead)
{
    EXPECT_EQ(
        WordsOf(
            u"<!DOCTYPE a [<!ENTITY b 'c'>]><binary id='x'>QUJDREVGab</binary><!-- note &x --><![CDATA[<d> &amp;]]>end"_s),
        QStringList({u"1:43:x"_s, u"1:70:note"_s, u"1:76:x"_s, u"1:91:d"_s, u"1:95:amp"_s, u"1:102:end"_s}));
}

TEST(BookWords, AnyTextIsReadToItsEnd)
{
    std::minstd_rand random(3);
    const QStringList pieces
        = {u"<"_s,   u">"_s,         u"\""_s,        u"'"_s, u"<!--"_s, u"-->"_s,  u"<![CDATA["_s,
           u"]]>"_s, u"<binary"_s,   u"</binary>"_s, u"&"_s, u";"_s,    u"#x41"_s, u"word "_s,
           u"/"_s,   u"<!DOCTYPE"_s, u"["_s,         u"]"_s, u"\n"_s,   u"="_s,    u"<?"_s};
    for (int round = 0; round < 3000; ++round) {
        QString xml;
        for (unsigned i = random() % 20; i > 0; --i)
            xml += pieces[qsizetype(random() % size_t(pieces.size()))];
        int line = 0;
        ForEachBookWord(xml, BookMarkup::Include, [&](const BookWord& word) {
            EXPECT_GE(word.line, line);
            EXPECT_GE(word.column, 1);
            line = word.line;
        });
    }
}

TEST(BookWords, BytesAreDecodedByMarkDeclarationOrContent)
{
    EXPECT_EQ(DecodeBook("<?xml version=\"1.0\" encoding=\"windows-1251\"?><p>\xf1\xeb</p>"),
              u"<?xml version=\"1.0\" encoding=\"windows-1251\"?><p>сл</p>"_s);
    EXPECT_EQ(DecodeBook("<p>\xd1\x81</p>"), u"<p>с</p>"_s);
    EXPECT_EQ(DecodeBook("<p>\xf1\xeb</p>"), u"<p>сл</p>"_s);
    EXPECT_EQ(DecodeBook(std::string_view("\xff\xfe<\0p\0/\0>\0", 10)), u"<p/>"_s);
    EXPECT_EQ(DecodeBook(""), QString());
}

TEST(BookLanguage, TheFirstLanguageBeforeTheBodyIsUsed)
{
    EXPECT_EQ(BookLanguage(u"<lang>ru</lang><src-lang>en</src-lang><lang>de</lang>"), u"ru"_s);
    EXPECT_EQ(BookLanguage(u"<language>x</language><lang id=\"a\"> en-GB\n</lang>"), u"en-GB"_s);
    EXPECT_EQ(BookLanguage(u"<body><lang>ru</lang>"), QString());
    EXPECT_EQ(BookLanguage(u"<lang></lang>"), QString());
    EXPECT_EQ(BookLanguage(u"<lang"), QString());
    EXPECT_EQ(BookLanguage(u"<lang>ru"), QString());
}

} // namespace vmk
