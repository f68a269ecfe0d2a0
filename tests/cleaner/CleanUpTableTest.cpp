#include "CleanUpTable.h"

#include "QtPrinting.h"
#include "SettingsVariables.h"
#include "Workplace.h"

#include <gtest/gtest.h>

#include <random>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class CleanUpFile : public ::testing::Test
{
protected:
    CleanUpFile() { qputenv("VELLUMARK_CODEPAGE", "1251"); }
    ~CleanUpFile() override { qunsetenv("VELLUMARK_CODEPAGE"); }

public:
    CleanUpFile(const CleanUpFile&) = delete;
    CleanUpFile& operator=(const CleanUpFile&) = delete;
};

/// Returns the bytes of a file with this text.
std::string Utf16(QStringView text)
{
    std::string bytes;
    for (const QChar c : text) {
        bytes += char(c.unicode() & 0xff);
        bytes += char(c.unicode() >> 8);
    }
    return bytes;
}

const CleanUpTable Sample = {u"from cursor up"_s,
                             {{u"say \"no\""_s, u"<p>"_s, true, false, true},
                              {u"(\\w+)\\s"_s, QString(), false, true, false},
                              {u"тире"_s, u"\u2014\u00a0"_s, false, false, true}}};

TEST_F(CleanUpFile, IsUtf16LinesThatEndWithACarriageReturnAlone)
{
    EXPECT_EQ(CleanUpFileBytes(Sample),
              Utf16(u"VMKCleanUpFileйю\rfrom cursor up\r3\r"
                    u"say \"no\"\r<p>\r1\r0\r1\r"
                    u"(\\w+)\\s\r\r0\r1\r0\r"
                    u"тире\r\u2014\u00a0\r0\r0\r1\r"));
}

TEST_F(CleanUpFile, IsReadAsItWasWritten)
{
    EXPECT_EQ(CleanUpTableOfBytes(CleanUpFileBytes(Sample)), Sample);
}

TEST_F(CleanUpFile, KeepsHalvesOfSurrogatePairsAndControlCharacters)
{
    CleanUpTable table;
    table.rows.push_back({QString(QChar(0xd83d)) + QChar(0), u"\n\t\u2028\u007f"_s});
    EXPECT_EQ(CleanUpTableOfBytes(CleanUpFileBytes(table)), table);
}

TEST_F(CleanUpFile, ACarriageReturnInAValueBecomesABlank)
{
    CleanUpTable table;
    table.rows.push_back({u"a\rb"_s, u"c"_s});
    const auto read = CleanUpTableOfBytes(CleanUpFileBytes(table));
    ASSERT_TRUE(read.has_value());
    ASSERT_EQ(read->rows.size(), 1U);
    EXPECT_EQ(read->rows[0].RepWhat, u"a b"_s);
    EXPECT_EQ(read->rows[0].RepBy, u"c"_s);
}

TEST_F(CleanUpFile, ARowCountOfZeroIsAnEmptyTable)
{
    const auto table = CleanUpTableOfBytes(Utf16(u"VMKCleanUpFileйю\rwhole book\r0\r"));
    ASSERT_TRUE(table.has_value());
    EXPECT_TRUE(table->rows.empty());
}

TEST_F(CleanUpFile, AThirdLineThatIsNoNumberCountsAsZeroRows)
{
    const auto table = CleanUpTableOfBytes(Utf16(u"VMKCleanUpFileйю\rwhole book\rmany\ra\rb\r1\r1\r1\r"));
    ASSERT_TRUE(table.has_value());
    EXPECT_TRUE(table->rows.empty());
}

TEST_F(CleanUpFile, ANegativeRowCountCountsAsZeroRows)
{
    const auto table = CleanUpTableOfBytes(Utf16(u"VMKCleanUpFileйю\rwhole book\r-2\ra\rb\r1\r1\r1\r"));
    ASSERT_TRUE(table.has_value());
    EXPECT_TRUE(table->rows.empty());
}

TEST_F(CleanUpFile, AHugeRowCountReadsTheRowsThatAreThere)
{
    const auto table = CleanUpTableOfBytes(
        Utf16(u"VMKCleanUpFileйю\rwhole book\r99999999999999999999\ra\rb\r1\r1\r1\rc\r"));
    ASSERT_TRUE(table.has_value());
    const std::vector<CleanUpRow> rows
        = {{u"a"_s, u"b"_s, true, true, true}, {u"c"_s, QString(), false, false, false}};
    EXPECT_EQ(table->rows, rows);
}

TEST_F(CleanUpFile, FewerRowsThanLinesReadsTheAnnouncedOnes)
{
    const auto table
        = CleanUpTableOfBytes(Utf16(u"VMKCleanUpFileйю\rwhole book\r1\ra\rb\r1\r1\r1\rc\rd\r1\r1\r1\r"));
    ASSERT_TRUE(table.has_value());
    ASSERT_EQ(table->rows.size(), 1U);
    EXPECT_EQ(table->rows[0].RepWhat, u"a"_s);
}

TEST_F(CleanUpFile, AnyTextButOneInAFlagLineIsUnchecked)
{
    const auto table = CleanUpTableOfBytes(Utf16(u"VMKCleanUpFileйю\rwhole book\r1\ra\rb\r2\r 1\r11\r"));
    ASSERT_TRUE(table.has_value());
    ASSERT_EQ(table->rows.size(), 1U);
    EXPECT_FALSE(table->rows[0].Case);
    EXPECT_FALSE(table->rows[0].RegExp);
    EXPECT_FALSE(table->rows[0].Enabled);
}

TEST_F(CleanUpFile, ASignatureInBytesIsABadSignature)
{
    EXPECT_FALSE(CleanUpTableOfBytes("VMKCleanUpFile\xe9\xfe\rwhole book\r0\r").has_value());
}

TEST_F(CleanUpFile, ASignatureOfAnotherCodePageIsABadSignature)
{
    const std::string bytes = CleanUpFileBytes(Sample);
    qputenv("VELLUMARK_CODEPAGE", "1252");
    EXPECT_FALSE(CleanUpTableOfBytes(bytes).has_value());
    EXPECT_TRUE(CleanUpTableOfBytes(CleanUpFileBytes(Sample)).has_value());
}

TEST_F(CleanUpFile, AByteOrderMarkIsABadSignature)
{
    EXPECT_FALSE(CleanUpTableOfBytes(Utf16(u"\ufeffVMKCleanUpFileйю\rwhole book\r0\r")).has_value());
}

TEST_F(CleanUpFile, AnEmptyFileIsABadSignature)
{
    EXPECT_FALSE(CleanUpTableOfBytes("").has_value());
    EXPECT_FALSE(CleanUpTableOfBytes("V").has_value());
}

TEST_F(CleanUpFile, CutAnywhereItReadsTheRowsBeforeTheCut)
{
    const std::string bytes = CleanUpFileBytes(Sample);
    const size_t signature = 2 * size_t(CleanUpSignature().size());
    for (size_t length = 0; length < bytes.size(); ++length) {
        const auto table = CleanUpTableOfBytes(std::string_view(bytes).substr(0, length));
        EXPECT_EQ(table.has_value(), length >= signature) << length;
        if (!table)
            continue;
        ASSERT_LE(table->rows.size(), Sample.rows.size());
        for (size_t i = 0; i + 1 < table->rows.size(); ++i)
            EXPECT_EQ(table->rows[i], Sample.rows[i]) << length;
    }
}

TEST_F(CleanUpFile, TheScopeOfAFileWithoutASignatureIsANumberInItsFirstLine)
{
    const Workplace workplace;
    CurrentCleanUpFile = workplace.Path(u"missing.dat"_s);
    ReadCleanWhereData();
    EXPECT_EQ(CleanWhereData, u"-1"_s);
    CurrentCleanUpFile = workplace.Path(u"t.dat"_s);
    const std::pair<std::string, QString> cases[] = {{"0\r\n5", u"0"_s}, {"2", u"2"_s},    {"2\n", u"2"_s},
                                                     {"1\r\n", u"1"_s},  {"20\r", u"1"_s}, {"", u"1"_s}};
    for (const auto& [content, expected] : cases) {
        workplace.Make(u"t.dat"_s, content);
        ReadCleanWhereData();
        EXPECT_EQ(CleanWhereData, expected) << content;
    }
    workplace.Make(u"t.dat"_s, CleanUpFileBytes(Sample));
    ReadCleanWhereData();
    EXPECT_EQ(CleanWhereData, u"1"_s);
    CurrentCleanUpFile.clear();
}

TEST_F(CleanUpFile, RandomTablesAreReadAsTheyWereWritten)
{
    std::mt19937 random(7);
    const auto value = [&random] {
        QString text;
        for (size_t i = random() % 12; i > 0; --i) {
            const auto c = char16_t(random() % (random() % 2 == 0 ? 128 : 65536));
            text += c == u'\r' ? u'"' : c;
        }
        return text;
    };
    for (int round = 0; round < 500; ++round) {
        CleanUpTable table{value(), {}};
        for (size_t i = random() % 5; i > 0; --i)
            table.rows.push_back({value(), value(), random() % 2 == 0, random() % 2 == 0, random() % 2 == 0});
        ASSERT_EQ(CleanUpTableOfBytes(CleanUpFileBytes(table)), table) << round;
    }
}

} // namespace
} // namespace vmk
