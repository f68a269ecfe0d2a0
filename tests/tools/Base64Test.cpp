#include "Base64.h"

#include "Base64Vector.h"
#include "PlainBase64.h"

#include <gtest/gtest.h>

#include <QByteArray>

#include <random>

using namespace vmk;

namespace {

std::string RandomBytes(std::mt19937& random, size_t size)
{
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

} // namespace

TEST(Base64, EmptyInputReturnsEmptyOutput)
{
    EXPECT_EQ(Base64Encode(""), "");
    EXPECT_EQ(Base64Decode(""), "");
}

TEST(Base64, OneTwoAndThreeBytes)
{
    EXPECT_EQ(Base64Encode("M"), "TQ==");
    EXPECT_EQ(Base64Encode("Ma"), "TWE=");
    EXPECT_EQ(Base64Encode("Man"), "TWFu");
    EXPECT_EQ(Base64Decode("TQ=="), "M");
    EXPECT_EQ(Base64Decode("TWE="), "Ma");
    EXPECT_EQ(Base64Decode("TWFu"), "Man");
}

TEST(Base64, ThreeMillionBytesAreOneLineOfFourMillionCharacters)
{
    std::mt19937 random(1);
    const std::string data = RandomBytes(random, 3'000'000);
    const std::string text = Base64Encode(data);
    EXPECT_EQ(text.size(), 4'000'000U);
    EXPECT_EQ(text.find_first_not_of(reference::Base64Alphabet), std::string::npos);
    EXPECT_TRUE(Base64Decode(text) == data);
}

TEST(Base64, LineEndsAndBlanksFailTheDecoding)
{
    EXPECT_EQ(Base64Decode("TWFu\r"), std::nullopt);
    EXPECT_EQ(Base64Decode("TWFu\nTWFu"), std::nullopt);
    EXPECT_EQ(Base64Decode("TW Fu"), std::nullopt);
    EXPECT_EQ(Base64Decode("TWFu\t"), std::nullopt);
}

TEST(Base64, EveryForeignByteFailsAtEveryPosition)
{
    const std::string alphabet = std::string(reference::Base64Alphabet) + "=";
    for (const size_t size : {1, 3, 4, 64, 203}) {
        for (size_t place = 0; place < size; ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string text(size, 'A');
                text[place] = static_cast<char>(byte);
                const bool good = alphabet.find(static_cast<char>(byte)) != std::string::npos;
                ASSERT_EQ(Base64Decode(text).has_value(), good) << size << ' ' << place << ' ' << byte;
            }
        }
    }
}

TEST(Base64, SpareCharactersAtTheEndAreDropped)
{
    EXPECT_EQ(Base64Decode("TWFuTQ"), "Man");
    EXPECT_EQ(Base64Decode("TWFuT"), "Man");
    EXPECT_EQ(Base64Decode("TWF"), "");
}

TEST(Base64, PaddingAtTheFirstTwoPositionsMeansZeroBits)
{
    EXPECT_EQ(Base64Decode("=WFu"), reference::Base64Decode("=WFu"));
    EXPECT_EQ(Base64Decode("T=Fu"), reference::Base64Decode("T=Fu"));
    EXPECT_EQ(Base64Decode("===="), std::string(1, '\0'));
    EXPECT_EQ(Base64Decode("TQ=A"), reference::Base64Decode("TQ=A")) << "padding only at the third position";
    EXPECT_EQ(Base64Decode("TQ=A")->size(), 2U);
}

TEST(Base64, TextsThatWereJoinedRunOn)
{
    EXPECT_EQ(Base64Decode("TQ==TWFu"), "MMan");
    EXPECT_EQ(Base64Decode("TQ==TWE=TWFu"), "MMaMan");
}

TEST(Base64, EncodesLikeAnIndependentEncoder)
{
    std::mt19937 random(2);
    for (int round = 0; round < 3000; ++round) {
        const std::string data = RandomBytes(random, random() % 300);
        const std::string text = Base64Encode(data);
        ASSERT_EQ(text, QByteArray::fromStdString(data).toBase64().toStdString());
        ASSERT_EQ(text, reference::Base64Encode(data));
        ASSERT_EQ(Base64Decode(text), data);
    }
}

TEST(Base64, DecodesLikeThePlainVersionWithPaddingAnywhere)
{
    const std::string alphabet = std::string(reference::Base64Alphabet) + "==========";
    std::mt19937 random(3);
    for (int round = 0; round < 50'000; ++round) {
        std::string text(random() % 200, 'A');
        for (char& c : text)
            c = round % 2 == 0 ? alphabet[random() % 64] : alphabet[random() % alphabet.size()];
        if (round % 4 == 0 && !text.empty())
            text[random() % text.size()] = '=';
        if (round % 50 == 0 && !text.empty())
            text[random() % text.size()] = static_cast<char>(random());
        ASSERT_EQ(Base64Decode(text), reference::Base64Decode(text)) << testing::PrintToString(text);
    }
}

TEST(Base64, LongTextsCrossTheInnerBlocks)
{
    std::mt19937 random(4);
    for (size_t size = 12'200; size < 12'400; ++size) {
        const std::string data = RandomBytes(random, size);
        const std::string text = Base64Encode(data);
        ASSERT_TRUE(text == reference::Base64Encode(data)) << size;
        ASSERT_TRUE(Base64Decode(text) == data) << size;
    }
}

TEST(Base64, VectorLoopsDoOnlyWhatTheySay)
{
    // On every processor, the loops touch no group beyond those that they report, except for their margin.
    std::mt19937 random(5);
    for (size_t groups = 0; groups < 40; ++groups) {
        const std::string data = RandomBytes(random, 3 * groups);
        std::string text(4 * groups + VectorSlack, '#');
        const size_t encoded = EncodeGroupsByVector(data.data(), groups, text.data());
        ASSERT_LE(encoded, groups);
        EXPECT_EQ(text.substr(0, 4 * encoded), reference::Base64Encode(data.substr(0, 3 * encoded)));
        EXPECT_EQ(text.substr(4 * groups), std::string(VectorSlack, '#'));

        const std::string good = reference::Base64Encode(data);
        std::string bytes(3 * groups + VectorSlack, '#');
        const size_t decoded = DecodeGroupsByVector(good.data(), groups, bytes.data());
        ASSERT_LE(decoded, groups);
        EXPECT_EQ(bytes.substr(0, 3 * decoded), data.substr(0, 3 * decoded));
    }
}
