#include "TextFunctions.h"

#include "Chance.h"
#include "PlainText.h"
#include "ProcessorTime.h"

#include <gtest/gtest.h>

#include <random>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

/// Texts of a few different characters, so that repetitions, overlaps and runs are frequent.
std::string RandomText(std::mt19937& random, std::string_view alphabet, size_t longest)
{
    std::string text(random() % (longest + 1), ' ');
    for (char& c : text)
        c = alphabet[random() % alphabet.size()];
    return text;
}

QString Wide(const std::string& text)
{
    return QString::fromLatin1(text);
}

} // namespace

TEST(ReplaceAll, WorksFromLeftToRightAndDoesNotRescan)
{
    EXPECT_EQ(ReplaceAll("aaa", "aa", "a"), "aa");
    EXPECT_EQ(ReplaceAll("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(ReplaceAll("abc", "", "x"), "abc");
    EXPECT_EQ(ReplaceAll("", "a", "x"), "");
    EXPECT_EQ(ReplaceAll("a<b", "<", "&lt;"), "a&lt;b");
    EXPECT_EQ(ReplaceAll(u"Жук жук"_s, u"ж", u"ё"), u"Жук ёук");
}

TEST(ReplaceAll, IsCaseSensitiveByDefault)
{
    EXPECT_EQ(ReplaceAll("Aa", "a", "x"), "Ax");
    EXPECT_EQ(ReplaceAll("Aa", "a", "x", true), "xx");
    EXPECT_EQ(ReplaceAll(std::string("a\0b\0", 4), std::string_view("\0", 1), ""), "ab");
    EXPECT_EQ(ReplaceAll("\xd0\xd0", "\xf0", "x", true), "\xd0\xd0") << "bytes beyond ASCII have no case";
    EXPECT_EQ(ReplaceAll(u"Жук жук"_s, u"ж", u"ё", true), u"ёук ёук");
}

TEST(ReplaceAll, AgreesWithThePlainVersion)
{
    std::mt19937 random(3);
    for (int round = 0; round < 30000; ++round) {
        const std::string text = RandomText(random, "aAb ", 30);
        const std::string sought = RandomText(random, "aAb ", 3);
        const std::string replacement = RandomText(random, "ab ", 4);
        const bool ignoreCase = round % 2 == 0;
        const std::string expected = reference::ReplaceAll(text, sought, replacement, ignoreCase);
        ASSERT_EQ(ReplaceAll(text, sought, replacement, ignoreCase), expected) << text << '|' << sought;
        ASSERT_EQ(ReplaceAll(Wide(text), Wide(sought), Wide(replacement), ignoreCase), Wide(expected));
    }
}

TEST(FindText, StartsAtTheGivenPosition)
{
    EXPECT_EQ(FindText("<?XML <?xml", "<?xml"), 6U);
    EXPECT_EQ(FindText("<?XML <?xml", "<?xml", 0, true), 0U);
    EXPECT_EQ(FindText("<?XML <?xml", "<?Xml", 1, true), 6U);
    EXPECT_EQ(FindText("abc", "x"), std::string::npos);
    EXPECT_EQ(FindText("abc", "bcd", 0, true), std::string::npos);
    EXPECT_EQ(FindText(u"abc", u"x"), -1);
    EXPECT_EQ(FindText(u"ABC", u"b", 1, true), 1);
}

TEST(CollapseRepeats, LeavesSingleBlanksAndNoEmptyLines)
{
    EXPECT_EQ(CollapseRepeats("a   b c", " "), "a b c");
    EXPECT_EQ(CollapseRepeats("a\r\n\r\n\r\nb\r\nc", "\r\n"), "a\r\nb\r\nc");
    EXPECT_EQ(CollapseRepeats("a,,b", ","), "a,b");
    EXPECT_EQ(CollapseRepeats(u"a   b"_s, u" "), u"a b");
}

TEST(CollapseRepeats, RemovesTheSeparator)
{
    EXPECT_EQ(CollapseRepeats("\r\n \r\n \r\nx", "\r\n", " "), "\r\nx");
    EXPECT_EQ(CollapseRepeats("a b", "", " "), "ab");
    EXPECT_EQ(CollapseRepeats("ab", "", ""), "ab");
}

TEST(CollapseRepeats, IgnoringCaseInsertsTheUnitAsGiven)
{
    EXPECT_EQ(CollapseRepeats("bAaAb", "a", "", true), "bab");
    EXPECT_EQ(CollapseRepeats("bAb", "a", "", true), "bAb") << "a single one stays as it is";
    EXPECT_EQ(CollapseRepeats(u"ЖжЖ"_s, u"ж", {}, true), u"ж");
}

TEST(CollapseRepeats, AgreesWithThePlainVersion)
{
    std::mt19937 random(4);
    for (int round = 0; round < 60000; ++round) {
        const std::string_view alphabet = round % 3 == 0 ? "aA" : "aAb ";
        const std::string text = RandomText(random, alphabet, 40);
        const std::string unit = RandomText(random, alphabet, 4);
        const std::string separator = round % 2 == 0 ? "" : RandomText(random, alphabet, 2);
        const bool ignoreCase = random() % 2 == 0;
        const std::string expected = reference::CollapseRepeats(text, unit, separator, ignoreCase);
        ASSERT_EQ(CollapseRepeats(text, unit, separator, ignoreCase), expected)
            << text << '|' << unit << '|' << separator << '|' << ignoreCase;
        ASSERT_EQ(CollapseRepeats(Wide(text), Wide(unit), Wide(separator), ignoreCase), Wide(expected));
    }
}

TEST(CollapseRepeats, MillionsOfBlanksNeedOnePass)
{
    std::string text(20'000'000, ' ');
    const ProcessorTime time;
    EXPECT_EQ(CollapseRepeats(std::move(text), " "), " ");
    EXPECT_LT(time.seconds(), 2.0);
}

TEST(CountOccurrences, CountsWhatDoesNotOverlap)
{
    EXPECT_EQ(CountOccurrences("aaaa", "aa"), 2U);
    EXPECT_EQ(CountOccurrences("aaa", "aa"), 1U);
    EXPECT_EQ(CountOccurrences("abc", ""), 0U);
    EXPECT_EQ(CountOccurrences("aAa", "a"), 2U);
    EXPECT_EQ(CountOccurrences("aAa", "a", true), 3U);
    EXPECT_EQ(CountOccurrences(u"Жж", u"ж", true), 2);
    EXPECT_EQ(CountOccurrences(u"\r\n\r", u"\r"), 2);
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        const std::string text = RandomText(random, "aAb", 30);
        const std::string sought = RandomText(random, "aAb", 3);
        ASSERT_EQ(CountOccurrences(text, sought, round % 2),
                  reference::CountOccurrences(text, sought, round % 2));
    }
}

TEST(IsBlank, CountsNbspEntitiesOnlyWithTheFlag)
{
    EXPECT_FALSE(IsBlank("&nbsp;", false));
    EXPECT_TRUE(IsBlank("&nbsp; \t\r\n\xa0", true));
    EXPECT_TRUE(IsBlank("", false));
    EXPECT_FALSE(IsBlank(" x ", true));
    EXPECT_TRUE(IsBlank(u" \u00a0\r\n&nbsp;"_s, true));
    EXPECT_FALSE(IsBlank("\v", false));
}

TEST(IsBlank, AgreesWithThePlainVersion)
{
    EXPECT_TRUE(IsBlank("&nb sp;", true)) << "the blanks go first";
    EXPECT_FALSE(IsBlank("&n&nbsp;bsp;", true)) << "text joined by deleting is not searched again";
    const std::string pieces[] = {"&nbsp;", "&", "n", "bsp;", " ", "\xa0", "\t", "&nb"};
    std::mt19937 random(6);
    for (int round = 0; round < 50000; ++round) {
        std::string text;
        for (size_t i = random() % 5; i > 0; --i)
            text += pieces[random() % std::size(pieces)];
        ASSERT_EQ(IsBlank(text, round % 2), reference::IsBlank(text, round % 2)) << text;
    }
}

TEST(RegExpReplace, ReplacesAllMatchesAndCounts)
{
    int32_t count = -1;
    EXPECT_EQ(RegExpReplace("a1b22", "[0-9]+", "<$&>", true, &count), "a<1>b<22>");
    EXPECT_EQ(count, 2);
    EXPECT_EQ(RegExpReplace("Ab aB", "(a)(b)", "$2$1", false), "bA Ba");
    EXPECT_EQ(RegExpReplace("Ab ab", "ab", "x", true), "Ab x");
    EXPECT_EQ(RegExpReplace("a\nb", "^", ">", true, nullptr, true), ">a\n>b");
    EXPECT_EQ(RegExpReplace("a\nb", "^", ">", true), ">a\nb");
    EXPECT_EQ(RegExpReplace(u"Жук"_s, u"ж(.)"_s, u"$1$1"_s, false, &count), u"уук");
    EXPECT_EQ(count, 1);
}

TEST(RegExpReplace, KeepsEveryByte)
{
    std::string all(256, '\0');
    for (size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<char>(i);
    EXPECT_EQ(RegExpReplace(all, "nothing of this", "", false), all);
    EXPECT_EQ(RegExpReplace(all, "([\\x80-\\xff])", "$1", false), all);
    EXPECT_EQ(RegExpReplace("\xd0\xa0 \xc2\xa0", "\\s", "_", true), "\xd0\xa0_\xc2\xa0")
        << "no byte of a character";
    EXPECT_EQ(RegExpReplace("\xd0", "\xf0", "x", false), "\xd0") << "bytes beyond ASCII have no case";
}

TEST(RegExpReplace, BadPatternLeavesTheText)
{
    int32_t count = -1;
    EXPECT_EQ(RegExpReplace("text", "(", "x", true, &count), "text");
    EXPECT_EQ(count, 0);
}

TEST(RegExpCount, CountsMatchesAndIgnoresBadPatterns)
{
    EXPECT_EQ(RegExpCount("<section", "<section><section id=\"a\"></section>", true), 2);
    EXPECT_EQ(RegExpCount("<SECTION", "<section>", true), 0);
    EXPECT_EQ(RegExpCount("<SECTION", "<section>", false), 1);
    EXPECT_EQ(RegExpCount("[", "[[", true), 0);
    EXPECT_EQ(RegExpCount(u"ж"_s, u"Жж"_s, false), 2);
}

TEST(RandomBelow, RoundsToTheNearest)
{
    double fraction = 0;
    const SeamGuard guard(RandomSeam(), [&fraction] { return fraction; });
    EXPECT_EQ(RandomBelow(10), 0);
    fraction = 0.34;
    EXPECT_EQ(RandomBelow(10), 3);
    fraction = 0.36;
    EXPECT_EQ(RandomBelow(10), 4);
    fraction = 0.999;
    EXPECT_EQ(RandomBelow(10), 10) << "the bound itself can come";
}

TEST(GroupDigits, InsertsABlankBeforeEachThreeDigits)
{
    EXPECT_EQ(GroupDigits(999), u"999");
    EXPECT_EQ(GroupDigits(1000), u"1 000");
    EXPECT_EQ(GroupDigits(1234567), u"1 234 567");
    EXPECT_EQ(GroupDigits(0), u"0");
    EXPECT_EQ(GroupDigits(-123), u"-123");
    EXPECT_EQ(GroupDigits(-1234), u"-1 234");
    EXPECT_EQ(GroupDigits(INT64_MIN), u"-9 223 372 036 854 775 808");
}

TEST(TitleCase, CapitalisesFirstLettersAndLowersTheRest)
{
    EXPECT_EQ(TitleCase(u"LEV tolstoy"), u"Lev Tolstoy");
    EXPECT_EQ(TitleCase(u"лЕВ  ТОЛСТОЙ "), u"Лев Толстой");
    EXPECT_EQ(TitleCase(u"well-KNOWN"), u"Well-known") << "only blanks part words";
    EXPECT_EQ(TitleCase(u""), u"");
}

TEST(FindInArray, FallsBackForUnknownValues)
{
    const QStringList styles = {u"compact"_s, u"tags tree"_s};
    QString value = u"compact"_s;
    FindInArray(styles, value, u"tags tree"_s);
    EXPECT_EQ(value, u"compact");
    value = u"Compact"_s;
    FindInArray(styles, value, u"tags tree"_s);
    EXPECT_EQ(value, u"tags tree");
}

TEST(TrimBlanks, RemovesBlanksOnly)
{
    EXPECT_EQ(TrimBlanks("  a b "), "a b");
    EXPECT_EQ(TrimBlanks("\ta\t"), "\ta\t");
    EXPECT_EQ(TrimBlanks("   "), "");
}
