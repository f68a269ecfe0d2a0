#include "RegExp.h"
#include "RegExpSyntax.h"

#include <gtest/gtest.h>

#include <ctime>
#include <optional>
#include <utility>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

/// The matches of a pattern, each in brackets; "bad" if the call fails.
QString Matches(const QString& pattern, QStringView text, const QString& options = {})
{
    RegExp expression;
    expression.Pattern = pattern;
    expression.Global = true;
    expression.IgnoreCase = options.contains(u'i');
    expression.MultiLine = options.contains(u'm');
    expression.ByteText = options.contains(u'b');
    const auto matches = expression.Execute(text);
    if (!matches)
        return u"bad"_s;
    QString result;
    for (const RegExpMatch& match : *matches)
        result += u'[' + match.Value + u']';
    return result;
}

QString Replaced(const QString& pattern, QStringView text, QStringView replacement)
{
    RegExp expression;
    expression.Pattern = pattern;
    expression.Global = true;
    return expression.Replace(text, replacement).value_or(u"bad"_s);
}

/// Processor time, which does not depend on the load of the machine.
double WorkedSeconds()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

bool IsBad(const QString& pattern)
{
    RegExp expression;
    expression.Pattern = pattern;
    return !expression.Test(u"text").has_value();
}

} // namespace

TEST(RegExp, ExecuteReturnsPositionLengthAndGroups)
{
    RegExp expression;
    expression.Pattern = u"(\\w)(x)?(\\d+)"_s;
    expression.Global = true;
    const auto matches = expression.Execute(u"..a12 bx3");
    ASSERT_TRUE(matches);
    ASSERT_EQ(matches->size(), 2U);
    EXPECT_EQ(matches->at(0).Value, u"a12");
    EXPECT_EQ(matches->at(0).FirstIndex, 2);
    EXPECT_EQ(matches->at(0).Length, 3);
    EXPECT_EQ(matches->at(0).SubMatches, (QStringList{u"a"_s, u""_s, u"12"_s}));
    EXPECT_EQ(matches->at(1).FirstIndex, 6);
    EXPECT_EQ(matches->at(1).SubMatches, (QStringList{u"b"_s, u"x"_s, u"3"_s}));
}

TEST(RegExp, WithoutGlobalTheFirstMatchAlone)
{
    RegExp expression;
    expression.Pattern = u"a"_s;
    EXPECT_EQ(expression.Execute(u"banana")->size(), 1U);
    EXPECT_EQ(expression.Replace(u"banana", u"o"), u"bonana");
    EXPECT_EQ(expression.Count(u"banana"), 1);
    EXPECT_EQ(expression.Test(u"banana"), true);
    EXPECT_EQ(expression.Test(u"xyz"), false);
}

TEST(RegExp, IgnoreCaseCoversAllLetters)
{
    EXPECT_EQ(Matches(u"жук"_s, u"Жук жУК", u"i"_s), u"[Жук][жУК]");
    EXPECT_EQ(Matches(u"жук"_s, u"Жук жук"), u"[жук]");
    EXPECT_EQ(Matches(u"[а-я]+"_s, u"ЖУК", u"i"_s), u"[ЖУК]");
    EXPECT_EQ(Matches(u"(a)\\1"_s, u"aA", u"i"_s), u"[aA]");
}

TEST(RegExp, ByteTextHasCaseInAsciiAlone)
{
    EXPECT_EQ(Matches(u"[a\u00e9]"_s, u"A\u00c9\u00e9", u"ib"_s), u"[A][\u00e9]");
    EXPECT_EQ(Matches(u"[^a]"_s, u"a\u00ff\u0000"_s, u"b"_s), u"[\u00ff][\u0000]"_s);
}

TEST(RegExp, DotIsAllButLineFeed)
{
    EXPECT_EQ(Matches(u".+"_s, u"a\r\nb\u2028c"), u"[a\r][b\u2028c]");
    EXPECT_EQ(Matches(u"[^]+"_s, u"a\r\nb"), u"[a\r\nb]");
    EXPECT_EQ(Matches(u"[\\s\\S]+"_s, u"a\r\nb"), u"[a\r\nb]");
}

TEST(RegExp, AnchorsMatchAtLinesOnlyWithTheFlag)
{
    EXPECT_EQ(Matches(u"^."_s, u"a\nb"), u"[a]");
    EXPECT_EQ(Matches(u"^."_s, u"a\nb", u"m"_s), u"[a][b]");
    EXPECT_EQ(Matches(u".$"_s, u"a\nb"), u"[b]");
    EXPECT_EQ(Matches(u".$"_s, u"a\nb\n"), u"") << "not before a line feed at the very end";
    EXPECT_EQ(Matches(u".$"_s, u"a\nb\n", u"m"_s), u"[a][b]");
    EXPECT_EQ(Matches(u"^"_s, u"a\n", u"m"_s), u"[][]") << "an empty last line begins too";
}

TEST(RegExp, EmptyMatchesMoveOn)
{
    EXPECT_EQ(Replaced(u"x*"_s, u"abc", u"-"), u"-a-b-c-");
    EXPECT_EQ(Replaced(u"a*"_s, u"aaab", u"-"), u"--b-");
    EXPECT_EQ(Replaced(u""_s, u"ab", u"."), u".a.b.");
    EXPECT_EQ(Replaced(u""_s, u"\U0001F600", u"."), u".\U0001F600.") << "never between the halves of a pair";
    EXPECT_EQ(Replaced(u"(?=b)"_s, u"abab", u"-"), u"a-ba-b");
    EXPECT_EQ(Matches(u"a*?"_s, u""), u"[]");
}

TEST(RegExp, ShorthandsMatchAsciiOnly)
{
    EXPECT_EQ(Matches(u"\\w+"_s, u"ab_1 жук é"), u"[ab_1]");
    EXPECT_EQ(Matches(u"\\d"_s, u"1\u0661"), u"[1]");
    EXPECT_EQ(Matches(u"\\bж"_s, u"ж aж"), u"[ж]") << "a boundary is between a and ж, none before the first";
    EXPECT_EQ(Matches(u"\\s"_s, u" \t\n\v\f\r\u00a0\u2003\u3000\ufeff"), u"[ ][\t][\n][\v][\f][\r]");
    EXPECT_EQ(Matches(u"\\S"_s, u"\u00a0"), u"[\u00a0]");
}

TEST(RegExp, CharactersByNumber)
{
    EXPECT_EQ(Matches(u"\\x41"_s, u"A"), u"[A]");
    EXPECT_EQ(Matches(u"\\u0416"_s, u"Ж"), u"[Ж]");
    EXPECT_EQ(Matches(u"\\ud83d\\ude00"_s, u"\U0001F600"), u"[\U0001F600]");
    EXPECT_EQ(Matches(u"[\\u0410-\\u042f]"_s, u"жЖ"), u"[Ж]");
    EXPECT_EQ(Matches(u"\\cM\\cj"_s, u"\r\n"), u"[\r\n]");
    EXPECT_EQ(Matches(u"a\\0b"_s, u"a\0b"_s), u"[a\0b]"_s);
    EXPECT_EQ(Matches(u"\\101\\60"_s, u"A0"), u"[A0]") << "octal";
    EXPECT_EQ(Matches(u"\\1"_s, u"\u0001"), u"[\u0001]") << "octal where there is no such group";
    EXPECT_EQ(Matches(u"\\377\\400"_s, u"\u00ff 0"), u"[\u00ff 0]") << "three digits up to 377, then two";
    EXPECT_EQ(Matches(u"\\8"_s, u"8"), u"[8]");
    EXPECT_EQ(Matches(u"[\\101\\b]"_s, u"A\b"), u"[A][\b]");
    EXPECT_EQ(Matches(u"\\x4"_s, u"x4"), u"[x4]") << "too few digits: the letter";
    EXPECT_EQ(Matches(u"\\u041"_s, u"u041"), u"[u041]");
    EXPECT_EQ(Matches(u"\\u{2}"_s, u"uu"), u"[uu]") << "braces are a quantifier";
    EXPECT_EQ(Matches(u"\\t\\n\\v\\f\\r"_s, u"\t\n\v\f\r"), u"[\t\n\v\f\r]");
    EXPECT_EQ(Matches(u"\\v"_s, u"\n"), u"") << "the vertical tab alone";
    EXPECT_EQ(Matches(u"\\.\\*\\\\\\/\\_\\ж"_s, u".*\\/_ж"), u"[.*\\/_ж]");
}

TEST(RegExp, Classes)
{
    EXPECT_EQ(Matches(u"[]"_s, u"a"), u"") << "matches nothing";
    EXPECT_EQ(Matches(u"[]a]"_s, u"a]"), u"") << "the first bracket closes";
    EXPECT_EQ(Matches(u"x[^]y"_s, u"x\ny"), u"[x\ny]");
    EXPECT_EQ(Matches(u"[a-c-]"_s, u"b-d"), u"[b][-]");
    EXPECT_EQ(Matches(u"[-a]"_s, u"a-"), u"[a][-]");
    EXPECT_EQ(Matches(u"[\\d-z]"_s, u"5-zy"), u"[5][-][z]") << "a dash beside a set is a dash";
    EXPECT_EQ(Matches(u"[a-\\d]"_s, u"b-a5"), u"[-][a][5]");
    EXPECT_EQ(Matches(u"[^\\w]"_s, u"a-b"), u"[-]");
    EXPECT_EQ(Matches(u"[a^]"_s, u"^"), u"[^]");
    EXPECT_EQ(Matches(u"[.*+?(){}|$]+"_s, u".*+?(){}|$"), u"[.*+?(){}|$]");
    EXPECT_EQ(Matches(u"[[]"_s, u"["), u"[[]");
    EXPECT_EQ(Matches(u"[[:]"_s, u"[:"), u"[[][:]") << "not the name of a class";
    EXPECT_EQ(Matches(u"[\\]\\\\]"_s, u"]\\"), u"[]][\\]");
    EXPECT_EQ(Matches(u"[\U0001F600]"_s, u"\U0001F600"), u"[\U0001F600]");
}

TEST(RegExp, UnpairedBracketsAndBracesAreLiterals)
{
    EXPECT_EQ(Matches(u"]"_s, u"]"), u"[]]");
    EXPECT_EQ(Matches(u"}"_s, u"}"), u"[}]");
    EXPECT_EQ(Matches(u"a{"_s, u"a{"), u"[a{]");
    EXPECT_EQ(Matches(u"{a}"_s, u"{a}"), u"[{a}]");
    EXPECT_EQ(Matches(u"a{,2}"_s, u"a{,2}"), u"[a{,2}]");
    EXPECT_EQ(Matches(u"a{1,x}"_s, u"a{1,x}"), u"[a{1,x}]");
    EXPECT_EQ(Matches(u"a{ 1}"_s, u"a{ 1}"), u"[a{ 1}]");
    EXPECT_EQ(Matches(u"# \tx"_s, u"# \tx"), u"[# \tx]") << "blanks and # mean themselves";
}

TEST(RegExp, Quantifiers)
{
    EXPECT_EQ(Matches(u"a{2}"_s, u"aaaaa"), u"[aa][aa]");
    EXPECT_EQ(Matches(u"a{2,}"_s, u"a aaa"), u"[aaa]");
    EXPECT_EQ(Matches(u"a{1,2}?"_s, u"aa"), u"[a][a]");
    EXPECT_EQ(Matches(u"<.+?>"_s, u"<a><b>"), u"[<a>][<b>]");
    EXPECT_EQ(Matches(u"(?:ab)+c"_s, u"ababc"), u"[ababc]");
    EXPECT_EQ(Matches(u"(?:a|b)*?c"_s, u"abac"), u"[abac]");
    EXPECT_EQ(Matches(u"(?=a)?b"_s, u"b"), u"[b]") << "a look ahead may bear one";
    EXPECT_EQ(Matches(u"a??b"_s, u"ab"), u"[ab]");
}

TEST(RegExp, LookAhead)
{
    EXPECT_EQ(Matches(u"a(?=b)"_s, u"ab ac"), u"[a]");
    EXPECT_EQ(Matches(u"a(?!b)."_s, u"ab ac"), u"[ac]");
    EXPECT_EQ(Matches(u"(?=(a+))a*b\\1"_s, u"baaabac"), u"[aba]");
}

TEST(RegExp, BackReferences)
{
    EXPECT_EQ(Matches(u"(.)\\1"_s, u"abba"), u"[bb]");
    EXPECT_EQ(Matches(u"(a)?b\\1"_s, u"b"), u"[b]") << "to a group without part: empty";
    EXPECT_EQ(Matches(u"\\1(a)"_s, u"a"), u"[a]") << "before its group: empty";
    EXPECT_EQ(Matches(u"(a)\\10"_s, u"aa0"), u"[aa0]") << "a group and a digit";
    EXPECT_EQ(Matches(u"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)\\10"_s, u"abcdefghijj"), u"[abcdefghijj]");
    EXPECT_EQ(Matches(u"(?:a)([(]b)\\1"_s, u"a(b(b"), u"[a(b(b]") << "only keeping groups count";
    EXPECT_EQ(Matches(u"\\(\\1"_s, u"(\u0001"), u"[(\u0001]") << "no group at all";
}

TEST(RegExp, TemplatesInsertGroupsAndContext)
{
    EXPECT_EQ(Replaced(u"(\\w+) (\\w+)"_s, u"John Smith", u"$2, $1"), u"Smith, John");
    EXPECT_EQ(Replaced(u"b"_s, u"abc", u"[$&$`$'$$]"), u"a[bac$]c");
    EXPECT_EQ(Replaced(u"b"_s, u"abc", u"$1$0$x$"), u"a$1$0$x$c") << "no such group: text";
    EXPECT_EQ(Replaced(u"(b)"_s, u"abc", u"$10$01$2"), u"ab0b$2c");
    EXPECT_EQ(Replaced(u"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)"_s, u"abcdefghij", u"$10$1"), u"ja");
    EXPECT_EQ(Replaced(u"(x)?b"_s, u"abc", u"<$1>"), u"a<>c");
    EXPECT_EQ(Replaced(u"b"_s, u"abc", u"$$1"), u"a$1c");
    EXPECT_EQ(Replaced(u"b"_s, u"abc", u""), u"ac");
    EXPECT_EQ(Replaced(u"x"_s, u"abc", u"y"), u"abc");
}

TEST(RegExp, ReplaceCounts)
{
    RegExp expression;
    expression.Pattern = u"a"_s;
    expression.Global = true;
    qsizetype count = -1;
    EXPECT_EQ(expression.Replace(u"banana", u"", &count), u"bnn");
    EXPECT_EQ(count, 3);
    expression.Pattern = u"("_s;
    EXPECT_EQ(expression.Replace(u"banana", u"", &count), std::nullopt);
    EXPECT_EQ(count, 0);
}

TEST(RegExp, PlainMistakesAreBadPatterns)
{
    for (const QString& pattern :
         {u"("_s,      u")"_s,     u"a)"_s,   u"(a"_s,    u"["_s,       u"[a"_s,     u"[^"_s,
          u"\\"_s,     u"[\\"_s,   u"*"_s,    u"+a"_s,    u"?"_s,       u"{2}"_s,    u"a|*"_s,
          u"(*a)"_s,   u"(?:*)"_s, u"^*"_s,   u"$+"_s,    u"\\b?"_s,    u"\\B{2}"_s, u"[z-a]"_s,
          u"a{3,2}"_s, u"\\c"_s,   u"\\c1"_s, u"[\\B]"_s, u"a{99999}"_s})
        EXPECT_TRUE(IsBad(pattern)) << pattern.toStdString();
}

TEST(RegExp, SyntaxOfOtherDialectsIsRejected)
{
    for (const QString& pattern :
         {u"(?<=a)b"_s,      u"(?<!a)b"_s,  u"(?<n>a)"_s, u"(?'n'a)"_s,      u"(?P<n>a)"_s,
          u"(?P=n)"_s,       u"(?P>n)"_s,   u"(?>a)"_s,   u"(?|a|b)"_s,      u"(?#note)"_s,
          u"(?i)a"_s,        u"(?i:a)"_s,   u"(?-i)a"_s,  u"(?^)a"_s,        u"(?(1)a|b)"_s,
          u"(?R)"_s,         u"(?1)"_s,     u"(?+1)"_s,   u"(?&n)"_s,        u"(?C)"_s,
          u"(?C1)a"_s,       u"(?"_s,       u"(*UTF)a"_s, u"(*ACCEPT)"_s,    u"(*COMMIT)a"_s,
          u"a(*SKIP)"_s,     u"(*pla:a)"_s, u"a++"_s,     u"a*+"_s,          u"a?+"_s,
          u"a{2}+"_s,        u"a**"_s,      u"a???"_s,    u"a{2}{3}"_s,      u"[[:alpha:]]"_s,
          u"[^[:^word:]]"_s, u"[a[.x.]]"_s, u"[[=e=]]"_s, u"[a-[:digit:]]"_s})
        EXPECT_TRUE(IsBad(pattern)) << pattern.toStdString();
}

TEST(RegExp, LettersWithoutAMeaningAreNotEscaped)
{
    const QString meaningful = u"bBcdDfnrsStuvwWx"_s;
    for (char16_t letter = u'A'; letter <= u'z'; ++letter) {
        if (!QChar(letter).isLetter())
            continue;
        const QString pattern = u'\\' + QString(QChar(letter)) + u"J"_s;
        EXPECT_EQ(IsBad(pattern), !meaningful.contains(QChar(letter))) << pattern.toStdString();
    }
    for (const QString& pattern :
         {u"\\Qa\\E"_s, u"\\p{L}"_s, u"\\P{Lu}"_s, u"\\pL"_s, u"\\g{1}(a)"_s, u"\\k<n>"_s, u"\\o{101}"_s,
          u"\\N{U+41}"_s, u"[\\h]"_s, u"[\\R]"_s, u"[\\Qa\\E]"_s})
        EXPECT_TRUE(IsBad(pattern)) << pattern.toStdString();
}

TEST(RegExp, BadPatternsFailEachTimeAndHarmNoOther)
{
    for (int round = 0; round < 200; ++round) {
        EXPECT_TRUE(IsBad(u'(' + QString::number(round % 100)));
        EXPECT_EQ(Matches(QString::number(round), u'<' + QString::number(round) + u'>'),
                  u'[' + QString::number(round) + u']');
    }
}

TEST(RegExp, RunawayPatternsEndInAnError)
{
    // The text contains the last character of the pattern; otherwise the engine would not even start.
    const QString as = QString(50'000, u'a') + u" bz"_s;
    QString words;
    for (int i = 0; i < 2500; ++i)
        words += u"aaaaaaaaaaaaaaaaaaa "_s;
    const std::pair<QString, QString> runaways[] = {
        {u"(a+)+b"_s, as},
        {u"(a|a)*b"_s, as},
        {u"(a|aa)+$b"_s, as},
        {u"a*a*a*a*b"_s, as},
        {u"(?:a?){40}a{40}b"_s, as},
        {u"(x+x+)+y|(a+a+)+ z"_s, words},
        {u"(?=(a+)+b)"_s, as},
        {u"(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|"
         u"a)(a|a)"
         u"(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)b"_s,
         as},
    };
    for (const auto& [pattern, text] : runaways) {
        const double begin = WorkedSeconds();
        EXPECT_EQ(Matches(pattern, text), u"bad") << pattern.toStdString();
        EXPECT_LT(WorkedSeconds() - begin, 0.6) << pattern.toStdString();
    }
}

TEST(RegExp, HonestPatternsFinishOnLongTexts)
{
    constexpr int Lines = 12'000;
    const QString text
        = u"<p>Был ясный день; часы показывали 13, said <emphasis>nobody</emphasis>.</p>\r\n"_s.repeated(
            Lines);
    const std::pair<QString, int> matchesPerLine[] = {
        {u"<[^>]*>"_s, 4},     {u"[а-яё]+"_s, 5},      {u"\\w+\\s+\\w+"_s, 0},         {u"<p>(.*?)</p>"_s, 1},
        {u"([.;])\\s*<"_s, 1}, {u"(\\S+)\\s\\1"_s, 0}, {u"(?:[а-я]|[a-z]|\\s)+"_s, 9},
    };
    const auto matchCount = [&text](const QString& pattern) {
        RegExp expression;
        expression.Pattern = pattern;
        expression.Global = true;
        const auto matches = expression.Execute(text);
        return matches ? int(matches->size()) : -1;
    };
    for (const auto& [pattern, count] : matchesPerLine)
        EXPECT_EQ(matchCount(pattern), count * Lines) << pattern.toStdString();
    EXPECT_EQ(matchCount(u"[^]*nobody"_s), 1);
}

TEST(RegExp, LongRepeatedGroupsDoNotOverflow)
{
    const QString text(3'000'000, u'a');
    RegExp expression;
    expression.Pattern = u"(?:a|b)*c"_s;
    const double begin = WorkedSeconds();
    EXPECT_EQ(expression.Test(text), std::nullopt) << "the search exceeds its limit";
    EXPECT_LT(WorkedSeconds() - begin, 2);
}

TEST(RegExpSyntax, ChecksOnlyWhereASearchMayBranch)
{
    const auto checks
        = [](const QString& pattern) { return TranslatePattern(pattern)->text.count(CheckPoint); };
    EXPECT_EQ(checks(u"plain[text](?:x)(y)^$"_s), 0);
    EXPECT_EQ(checks(u"<[^>]*>"_s), 1) << "at the beginning alone";
    EXPECT_EQ(checks(u"a|b"_s), 0);
    EXPECT_EQ(checks(u"(a|b)c"_s), 1);
    EXPECT_EQ(checks(u"(a|b)+"_s), 1);
    EXPECT_EQ(checks(u"\\w+\\s+"_s), 3);
}

TEST(RegExpSyntax, CountsGroups)
{
    const auto groups = [](const QString& pattern) { return TranslatePattern(pattern)->groupCount; };
    EXPECT_EQ(groups(u"(a)(?:b)(?=c)(?!d)\\([(](e)"_s), 2);
    EXPECT_EQ(groups(u"abc"_s), 0);
    EXPECT_EQ(groups(u"((()))"_s), 3);
}

TEST(RegExpReplace, AResultThatWouldFillTheMemoryIsAFailure)
{
    RegExp expression;
    expression.Pattern = u"x"_s;
    expression.Global = true;
    const QString text(20'000, u'x');
    qsizetype count = -1;
    EXPECT_EQ(expression.Replace(text, u"$`$'"_s, &count), std::nullopt);
    EXPECT_EQ(count, 0);
    const auto copied = expression.Replace(text, u"$&$&$&"_s, &count);
    ASSERT_TRUE(copied);
    EXPECT_EQ(copied->size(), 60'000);
    EXPECT_EQ(count, 20'000);
}
