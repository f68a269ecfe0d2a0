#include "CodePages.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <QStringConverter>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <random>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

constexpr int Pages[] = {1250, 1251, 1252};

/// The converter of the C library, which is independent of ours.
class Iconv
{
public:
    Iconv(const std::string& to, const std::string& from)
        : handle(iconv_open(to.c_str(), from.c_str()))
    {
        EXPECT_NE(handle, iconv_t(-1)) << from << " to " << to;
    }
    ~Iconv() { iconv_close(handle); }
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;

    std::optional<std::string> convert(std::string bytes) const
    {
        iconv(handle, nullptr, nullptr, nullptr, nullptr);
        std::string result(bytes.size() * 4 + 8, '\0');
        char* from = bytes.data();
        char* to = result.data();
        size_t fromLeft = bytes.size();
        size_t toLeft = result.size();
        if (iconv(handle, &from, &fromLeft, &to, &toLeft) == size_t(-1))
            return std::nullopt;
        result.resize(result.size() - toLeft);
        return result;
    }

private:
    iconv_t handle;
};

std::string PageName(int page)
{
    return "CP" + std::to_string(page);
}

class EnvironmentValue
{
public:
    explicit EnvironmentValue(const char* key, const QByteArray& value)
        : name(key)
        , before(qgetenv(key))
    {
        qputenv(name, value);
    }
    ~EnvironmentValue() { before.isEmpty() ? qunsetenv(name) : qputenv(name, before); }
    EnvironmentValue(const EnvironmentValue&) = delete;
    EnvironmentValue& operator=(const EnvironmentValue&) = delete;

private:
    const char* name;
    QByteArray before;
};

std::string RandomBytes(std::mt19937& random, bool nearlyUtf8)
{
    static const std::array<std::string, 12> pieces = {"a",
                                                       "plain ASCII over sixteen bytes",
                                                       "\xd0\x96",
                                                       "\xd1\x8f",
                                                       "\xe2\x80\x94",
                                                       "\xf0\x9f\x98\x80",
                                                       "\xc2",
                                                       "\xe2\x80",
                                                       "\xa0",
                                                       "\xed\xa0\x80",
                                                       "\xc0\x80",
                                                       "\xf4\x90\x80\x80"};
    std::string text;
    const size_t count = random() % 40;
    for (size_t i = 0; i < count; ++i)
        text += nearlyUtf8 ? pieces[random() % pieces.size()] : std::string(1, static_cast<char>(random()));
    return text;
}

} // namespace

TEST(CodePages, EveryByteThereAndBackInEachPage)
{
    for (const int page : Pages) {
        for (int b = 0; b < 256; ++b) {
            const std::string byte(1, static_cast<char>(b));
            const QString text = DecodeBytes(byte, page);
            ASSERT_EQ(text.size(), 1);
            EXPECT_EQ(text.front(), QChar(CharacterOfByte(static_cast<unsigned char>(b), page)));
            EXPECT_EQ(EncodeText(text, page), byte) << page << ' ' << b;
            EXPECT_EQ(ByteOfCharacter(text.front().unicode(), page), static_cast<unsigned char>(b));
            const std::string utf8 = BytesToUtf8(byte, page);
            EXPECT_EQ(utf8, text.toStdString());
            EXPECT_EQ(Utf8ToBytes(utf8, page), byte);
        }
    }
}

TEST(CodePages, EveryByteAsIconvReadsIt)
{
    for (const int page : Pages) {
        const Iconv toUtf8("UTF-8", PageName(page));
        int undefined = 0;
        for (int b = 0; b < 256; ++b) {
            const std::string byte(1, static_cast<char>(b));
            const auto expected = toUtf8.convert(byte);
            if (expected) {
                EXPECT_EQ(BytesToUtf8(byte, page), *expected) << page << ' ' << b;
            } else {
                ++undefined;
                EXPECT_EQ(CharacterOfByte(static_cast<unsigned char>(b), page), b)
                    << "undefined bytes are C1 controls";
            }
        }
        EXPECT_LE(undefined, 5) << page;
    }
}

TEST(CodePages, EveryCharacterAsIconvWritesIt)
{
    for (const int page : Pages) {
        const Iconv fromUtf8(PageName(page), "UTF-8");
        int exact = 0;
        for (char32_t c = 1; c <= QChar::LastValidCodePoint; ++c) {
            if (QChar::isSurrogate(c))
                continue;
            const QString text = QString::fromUcs4(&c, 1);
            const std::string written = EncodeText(text, page);
            ASSERT_EQ(written.size(), static_cast<size_t>(text.size())) << "one byte a code unit";
            const auto expected = fromUtf8.convert(text.toStdString());
            // iconv drops the invisible tag characters: an empty result is no result.
            if (expected && !expected->empty()) {
                ++exact;
                EXPECT_EQ(written, *expected) << page << ' ' << std::hex << uint32_t{c};
                EXPECT_EQ(ByteOfCharacter(c, page), static_cast<unsigned char>(expected->front()));
            } else if (c > 0x9f) {
                EXPECT_EQ(ByteOfCharacter(c, page), std::nullopt) << page << ' ' << std::hex << uint32_t{c};
            }
        }
        EXPECT_GE(exact, 250) << page;
    }
}

TEST(CodePages, SubstitutesAreNeverMarkUp)
{
    for (const int page : Pages) {
        for (int unit = 0x80; unit < 0x10000; ++unit) {
            const std::string written = EncodeText(QString(QChar(unit)), page);
            EXPECT_EQ(written.find_first_of("<>&\"'"), std::string::npos) << page << ' ' << std::hex << unit;
            EXPECT_GE(static_cast<unsigned char>(written.front()), 0x20) << page << ' ' << std::hex << unit;
        }
    }
}

TEST(CodePages, MissingCharactersAreReplacedBySimilarOnes)
{
    const auto in = [](int page, const QString& text) { return EncodeText(text, page); };
    EXPECT_EQ(in(1251, u"café naïve Ångström"_s), "cafe naive Angstrom");
    EXPECT_EQ(in(1251, u"ÆØŒß æøœ"_s), "AOOs aoo");
    EXPECT_EQ(in(1252, u"Łódź dvořák őű"_s),
              "L\xf3"
              "dz dvor\xe1k ou");
    EXPECT_EQ(in(1250, u"Șț"_s), "\xaa\xfe") << "comma below becomes the page's cedilla";
    EXPECT_EQ(in(1252, u"Șț"_s), "St");
    EXPECT_EQ(in(1251, u"‐‑‒―−"_s), "--\x96\x97-");
    EXPECT_EQ(in(1251, u"‛‟′″"_s), "\x91\x93\x92\x94");
    EXPECT_EQ(in(1251, QString(QChar(0x2003)) + QChar(0x2009) + QChar(0x3000) + QChar(0x202f)), "   \xa0");
    EXPECT_EQ(in(1252, u"Ａｂ１"_s), "Ab1") << "full width";
    EXPECT_EQ(in(1252, u"№ Ω ⁵"_s), "N O 5");
    EXPECT_EQ(in(1251, u"ѐ"_s), "\xe5");
    EXPECT_EQ(in(1252, u"© ® ™ €"_s), "\xa9 \xae \x99 \x80") << "these exist in each page";
}

TEST(CodePages, CharactersWithoutASimilarOneBecomeQuestionMarks)
{
    EXPECT_EQ(EncodeText(u"Жук 書"_s, 1252), "??? ?");
    EXPECT_EQ(EncodeText(u"≠ ＜ ﬁ ¼"_s, 1251), "? ? ? ?") << "nothing that would say something else";
    EXPECT_EQ(EncodeText(u"\U0001F600."_s, 1251), "??.") << "one for each half of a surrogate pair";
    EXPECT_EQ(Utf8ToBytes("\xf0\x9f\x98\x80.", 1251), "??.");
    EXPECT_EQ(EncodeText(QString(QChar(0xfffd)), 1251), "?");
}

TEST(CodePages, MalformedUtf8BecomesOneReplacementPerByte)
{
    const QString bad(QChar::ReplacementCharacter);
    EXPECT_EQ(DecodeBytes("a\xff"
                          "b",
                          CodePageUtf8),
              u"a"_s + bad + u"b"_s);
    EXPECT_EQ(DecodeBytes("\xe2\x80", CodePageUtf8), bad + bad) << "cut at the end";
    EXPECT_EQ(DecodeBytes("\xc0\xaf", CodePageUtf8), bad + bad) << "too long a form";
    EXPECT_EQ(DecodeBytes("\xed\xa0\x80", CodePageUtf8), bad + bad + bad) << "half a surrogate pair";
    EXPECT_EQ(DecodeBytes("\xf4\x90\x80\x80", CodePageUtf8), bad + bad + bad + bad)
        << "beyond the last character";
    EXPECT_EQ(Utf8ToBytes("\xe2\x80", 1251), "??");
    EXPECT_EQ(BytesToUtf8("a\xe2\x80z", CodePageUtf8), "a\xef\xbf\xbd\xef\xbf\xbdz");
}

TEST(CodePages, ByteOrderMarkStaysInTheText)
{
    EXPECT_EQ(DecodeBytes("\xef\xbb\xbf<", CodePageUtf8), u"\ufeff<"_s);
    EXPECT_EQ(BytesToUtf8("\xef\xbb\xbf<", CodePageUtf8), "\xef\xbb\xbf<");
    EXPECT_EQ(DecodeBytes(std::string_view("\xff\xfe<\0", 4), CodePageUtf16), u"\ufeff<"_s);
}

TEST(CodePages, Utf16LittleEndianWithoutATrailingOddByte)
{
    const std::string bytes("\x16\x04"
                            "a\0z",
                            5);
    EXPECT_EQ(DecodeBytes(bytes, CodePageUtf16), u"Жa"_s);
    EXPECT_EQ(EncodeText(u"Жa"_s, CodePageUtf16), bytes.substr(0, 4));
    EXPECT_EQ(BytesToUtf8(bytes, CodePageUtf16),
              "\xd0\x96"
              "a");
    EXPECT_EQ(Utf8ToBytes("\xd0\x96"
                          "a",
                          CodePageUtf16),
              bytes.substr(0, 4));
    EXPECT_EQ(EncodeText(QString(QChar(0xd800)), CodePageUtf8), "\xef\xbf\xbd") << "a lone surrogate";
}

TEST(CodePages, DirectRoutesAgreeWithTheRouteOverText)
{
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        const std::string bytes = RandomBytes(random, round % 2 == 0);
        const QString text = DecodeBytes(bytes, CodePageUtf8);
        ASSERT_EQ(BytesToUtf8(bytes, CodePageUtf8), text.toStdString()) << testing::PrintToString(bytes);
        ASSERT_EQ(IsValidUtf8(bytes), QByteArrayView(bytes).isValidUtf8()) << testing::PrintToString(bytes);
        for (const int page : Pages) {
            ASSERT_EQ(Utf8ToBytes(bytes, page), EncodeText(text, page)) << testing::PrintToString(bytes);
            ASSERT_EQ(BytesToUtf8(bytes, page), DecodeBytes(bytes, page).toStdString());
        }
    }
}

TEST(CodePages, TheValidPrefixEndsAfterTheLastCompleteCharacter)
{
    const std::string characters[] = {"a", "\xd0\x96", "\xe2\x82\xac", "\xf0\x9f\x98\x80"};
    std::mt19937 random(3);
    for (const size_t longest : {size_t{1}, size_t{2}, std::size(characters)}) {
        std::string text;
        std::vector<size_t> ends = {0};
        while (text.size() < 2'000) {
            text += characters[random() % longest];
            ends.push_back(text.size());
        }
        EXPECT_EQ(ValidUtf8Prefix(text), text.size());
        for (size_t cut = 0; cut < text.size(); ++cut) {
            const size_t whole = *std::prev(std::ranges::upper_bound(ends, cut));
            ASSERT_EQ(ValidUtf8Prefix(std::string_view(text).substr(0, cut)), whole);
            for (const char wrong : {'\xff', '\xc0', '\xf8'}) {
                std::string damaged = text;
                damaged[cut] = wrong;
                ASSERT_EQ(ValidUtf8Prefix(damaged), whole);
            }
        }
    }
}

TEST(CodePages, EverySequenceOfFourBytesIsJudgedAsTheToolkitDoes)
{
    // One byte of each kind that the rules distinguish.
    const std::string kinds("\x00\x41\x7f\x80\x8f\x90\x9f\xa0\xbf\xc0\xc1\xc2\xdf\xe0\xe1\xec\xed\xee\xef"
                            "\xf0\xf1\xf3\xf4\xf5\xff",
                            25);
    for (const char a : kinds) {
        for (const char b : kinds) {
            for (const char c : kinds) {
                for (const char d : kinds) {
                    const std::string bytes{a, b, c, d};
                    ASSERT_EQ(IsValidUtf8(bytes), QByteArrayView(bytes).isValidUtf8())
                        << testing::PrintToString(bytes);
                }
            }
        }
    }
}

TEST(CodePages, LongTextsThereAndBack)
{
    std::mt19937 random(2);
    std::string bytes(300'001, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random() % 3 == 0 ? 'a' : random());
    for (const int page : Pages)
        EXPECT_TRUE(Utf8ToBytes(BytesToUtf8(bytes, page), page) == bytes) << page;
}

TEST(SystemCodePage, FollowsTheUsersLanguage)
{
    const auto pageOf = [](const char* name) { return CodePageOfLocale(QLocale(QString::fromLatin1(name))); };
    EXPECT_EQ(pageOf("ru_RU"), 1251);
    EXPECT_EQ(pageOf("uk_UA"), 1251);
    EXPECT_EQ(pageOf("bg_BG"), 1251);
    EXPECT_EQ(pageOf("pl_PL"), 1250);
    EXPECT_EQ(pageOf("cs_CZ"), 1250);
    EXPECT_EQ(pageOf("de_DE"), 1252);
    EXPECT_EQ(pageOf("ja_JP"), 1252);
    EXPECT_EQ(pageOf("sr_Latn_RS"), 1250);
    EXPECT_EQ(pageOf("sr_Cyrl_RS"), 1251);
    EXPECT_EQ(pageOf("C"), 1252);
    qunsetenv("VELLUMARK_CODEPAGE");
    EXPECT_EQ(SystemCodePage(), CodePageOfLocale(QLocale::system()));
}

TEST(SystemCodePage, EnvironmentOverridesTheLanguage)
{
    {
        const EnvironmentValue page("VELLUMARK_CODEPAGE", "1250");
        EXPECT_EQ(SystemCodePage(), 1250);
        EXPECT_EQ(EncodeText(u"ř"_s, CodePageSystem), "\xf8");
    }
    {
        const EnvironmentValue page("VELLUMARK_CODEPAGE", "1251");
        EXPECT_EQ(EncodeText(u"Ж"_s, CodePageSystem), "\xc6");
        EXPECT_EQ(EncodeText(u"Ж"_s, 866), "\xc6") << "an unknown number is the system's page";
    }
    const EnvironmentValue page("VELLUMARK_CODEPAGE", "866");
    EXPECT_EQ(SystemCodePage(), CodePageOfLocale(QLocale::system())) << "not one of the three";
}
