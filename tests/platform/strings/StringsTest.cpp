#include "CommonEnds.h"
#include "Utf8.h"

#include <gtest/gtest.h>

#include <QStringView>

#include <string>
#include <string_view>

namespace vmk {
namespace {

struct Ends
{
    std::ptrdiff_t front;
    std::ptrdiff_t back;

    friend bool operator==(const Ends&, const Ends&) = default;
    friend void PrintTo(const Ends& ends, std::ostream* out) { *out << ends.front << ", " << ends.back; }
};

Ends EndsOf(std::string_view a, std::string_view b)
{
    const std::ptrdiff_t front = CommonFront(a, b);
    return {front, CommonBack(a, b, front)};
}

TEST(CommonEnds, AreWhatTwoTextsShareBeforeAndAfterAnEdit)
{
    EXPECT_EQ(EndsOf("abXcd", "abYYcd"), (Ends{2, 2}));
    EXPECT_EQ(EndsOf("abcd", "abcd"), (Ends{4, 0}));
    EXPECT_EQ(EndsOf("abcd", ""), (Ends{0, 0}));
    EXPECT_EQ(EndsOf("x", "y"), (Ends{0, 0}));
    EXPECT_EQ(EndsOf("abcd", "cd"), (Ends{0, 2}));
}

TEST(CommonEnds, DoNotOverlapInARepetition)
{
    EXPECT_EQ(EndsOf("aa", "aaa"), (Ends{2, 0}));
    EXPECT_EQ(EndsOf("abab", "ababab"), (Ends{4, 0}));
}

TEST(CommonEnds, HaveAFrontForEachText)
{
    const std::string_view a = "xab";
    const std::string_view b = "ab";
    EXPECT_EQ(CommonBack(a, 0, b, 0), 2);
    EXPECT_EQ(CommonBack(a, 2, b, 0), 1);
    EXPECT_EQ(CommonBack(a, 0, b, 1), 1);
}

TEST(CommonEnds, UseTheGivenComparison)
{
    const auto ignoringCase = [](QChar a, QChar b) { return a.toLower() == b.toLower(); };
    EXPECT_EQ(CommonFront(QStringView(u"ABx"), QStringView(u"aby"), ignoringCase), 2);
    EXPECT_EQ(CommonBack(QStringView(u"xAB"), QStringView(u"yab"), 0, ignoringCase), 2);
}

struct Decoded
{
    std::string bytes;
    char32_t character;
    std::size_t length;
};

class Utf8 : public testing::TestWithParam<Decoded>
{
};

TEST_P(Utf8, DecodesOneCharacterOrNone)
{
    const Decoded& expected = GetParam();
    const Utf8Character found = DecodeUtf8(expected.bytes);
    EXPECT_EQ(uint32_t(found.character), uint32_t(expected.character));
    EXPECT_EQ(found.length, expected.length);
}

constexpr char32_t None = U'\uFFFD';

INSTANTIATE_TEST_SUITE_P(Forms, Utf8,
                         testing::Values(Decoded{"a", U'a', 1}, Decoded{"\xc2\xa0z", U'\u00A0', 2},
                                         Decoded{"\xdf\xbf", U'\u07FF', 2},
                                         Decoded{"\xe0\xa0\x80", U'\u0800', 3},
                                         Decoded{"\xef\xbf\xbf", U'\uFFFF', 3},
                                         Decoded{"\xf0\x90\x80\x80", U'\U00010000', 4},
                                         Decoded{"\xf4\x8f\xbf\xbf", U'\U0010FFFF', 4}));
INSTANTIATE_TEST_SUITE_P(Faults, Utf8,
                         testing::Values(Decoded{"\x80", None, 0}, Decoded{"\xc1\xbf", None, 0},
                                         Decoded{"\xc2", None, 0}, Decoded{"\xc2z", None, 0},
                                         Decoded{"\xe0\x9f\xbf", None, 0}, Decoded{"\xed\xa0\x80", None, 0},
                                         Decoded{"\xe2\x82", None, 0}, Decoded{"\xf0\x8f\xbf\xbf", None, 0},
                                         Decoded{"\xf4\x90\x80\x80", None, 0},
                                         Decoded{"\xf5\x80\x80\x80", None, 0}, Decoded{"\xff", None, 0}));

} // namespace
} // namespace vmk
