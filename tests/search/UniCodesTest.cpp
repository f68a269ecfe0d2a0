#include "UniCodes.h"

#include <gtest/gtest.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

QString Parsed(QString text)
{
    ParseUniCodes(text);
    return text;
}

TEST(UniCodes, ACodeIsItsCharacter)
{
    EXPECT_EQ(Parsed(u"uni(65)"_s), u"A"_s);
    EXPECT_EQ(Parsed(u"a uni(1055) b"_s), u"a \u041f b"_s);
}

TEST(UniCodes, SeveralCodesAreAList)
{
    EXPECT_EQ(Parsed(u"uni(65,66)"_s), u"AB"_s);
    EXPECT_EQ(Parsed(u"uni( 65 , 66 )uni(67)"_s), u"ABC"_s);
}

TEST(UniCodes, AnEmptyItemOfAListIsSkipped)
{
    EXPECT_EQ(Parsed(u"uni(65,,66)"_s), u"AB"_s);
}

TEST(UniCodes, ACodeFrom128To191IsAByteOfTheCodePage)
{
    qputenv("VELLUMARK_CODEPAGE", "1251");
    EXPECT_EQ(Parsed(u"uni(127)"_s), u"\u007f"_s);
    EXPECT_EQ(Parsed(u"uni(128)"_s), u"\u0402"_s);
    EXPECT_EQ(Parsed(u"uni(160)"_s), u"\u00a0"_s);
    EXPECT_EQ(Parsed(u"uni(184)"_s), u"\u0451"_s);
    EXPECT_EQ(Parsed(u"uni(191)"_s), u"\u0457"_s);
    // From 192 on, the code is that of the Unicode character.
    EXPECT_EQ(Parsed(u"uni(192)"_s), u"\u00c0"_s);
    qputenv("VELLUMARK_CODEPAGE", "1252");
    EXPECT_EQ(Parsed(u"uni(128)"_s), u"\u20ac"_s);
    qunsetenv("VELLUMARK_CODEPAGE");
}

TEST(UniCodes, ZeroAndTextAreUnchanged)
{
    EXPECT_EQ(Parsed(u"uni(0)"_s), u"uni(0)"_s);
    EXPECT_EQ(Parsed(u"uni(x)"_s), u"uni(x)"_s);
    EXPECT_EQ(Parsed(u"uni(65, x ,66)"_s), u"AxB"_s);
}

TEST(UniCodes, AnEmptyListYieldsNothingButNeverAnEmptyText)
{
    EXPECT_EQ(Parsed(u"uni()"_s), u"uni()"_s);
    EXPECT_EQ(Parsed(u"a uni( ) b"_s), u"a  b"_s);
}

TEST(UniCodes, CapitalsAreExpandedOnlyBesideSmallLetters)
{
    EXPECT_EQ(Parsed(u"UNI(65)"_s), u"UNI(65)"_s);
    EXPECT_EQ(Parsed(u"UNI(65) uni(66)"_s), u"UNI(65) B"_s);
}

TEST(UniCodes, OnlyTheLeadingDecimalNumberIsRead)
{
    EXPECT_EQ(Parsed(u"uni(65abc)"_s), u"A"_s);
    EXPECT_EQ(Parsed(u"uni(65.9)"_s), u"A"_s);
}

TEST(UniCodes, WithoutAClosingBracketTheWholeSegmentIsRead)
{
    EXPECT_EQ(Parsed(u"uni(65"_s), u"A"_s);
    EXPECT_EQ(Parsed(u"abc uni(65"_s), u"abc uni(65"_s);
}

TEST(UniCodes, ANumberThatIsNoCharacterIsUnchanged)
{
    EXPECT_EQ(Parsed(u"uni(1114112)"_s), u"uni(1114112)"_s);
    EXPECT_EQ(Parsed(u"uni(99999999999999999999)"_s), u"uni(99999999999999999999)"_s);
}

TEST(UniCodes, CharactersOutsideTheBasicPlaneAreWhole)
{
    EXPECT_EQ(Parsed(u"uni(128512)"_s), u"\U0001f600"_s);
    EXPECT_EQ(Parsed(u"uni(55357,56832)"_s), u"\U0001f600"_s);
}

} // namespace
} // namespace vmk
