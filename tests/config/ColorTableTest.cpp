#include "ColorTable.h"

#include "FileOperations.h"
#include "QtPrinting.h"
#include "Workplace.h"

#include <QRandomGenerator>
#include <QSet>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class ColorTableTest : public testing::Test
{
protected:
    QString path() const { return workplace.Path(u"ColorTable.dat"_s); }
    void make(std::string_view text) const { workplace.Make(u"ColorTable.dat"_s, text); }
    /// `count` lines of one colour.
    static std::string lines(int count, const std::string& line)
    {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += line + "\r\n";
        return text;
    }

    const Workplace workplace;
    ColorTable table;
};

QStringList DefaultLines()
{
    return QString::fromStdString(DefaultColorTable()).split(u"\r\n"_s);
}

} // namespace

// ---------------------------------------------------------------- the file

TEST_F(ColorTableTest, AMissingFileIsCreatedWithAll224Entries)
{
    table.read(path());
    const QString text = QString::fromStdString(ReadFileText(path()));
    EXPECT_EQ(text.toStdString(), DefaultColorTable());
    EXPECT_EQ(text.count(u"\r\n"_s), 224);
    EXPECT_EQ(table.color(0), 0x000000U);
    EXPECT_EQ(table.color(1), 0xFF0000U);
    EXPECT_EQ(table.color(27), 0xFF69B4U);
}

TEST_F(ColorTableTest, TheDefaultTableBeginsWithTheGivenColours)
{
    EXPECT_EQ(DefaultLines().mid(0, 28),
              (QStringList{u"#000000"_s, u"#FF0000"_s, u"#FFA500"_s, u"#FFFF01"_s, u"#008000"_s, u"#00FFFE"_s,
                           u"#0000FF"_s, u"#EE82EE"_s, u"#708090"_s, u"#DCDCDC"_s, u"#FFF5EE"_s, u"#FFFFFF"_s,
                           u"#FAEBD7"_s, u"#FAF0E6"_s, u"#FDF5E6"_s, u"#FFFAF0"_s, u"#FFFFF0"_s, u"#F0F8FF"_s,
                           u"#F0FFFF"_s, u"#F8F8FF"_s, u"#F0FFF0"_s, u"#F5FFFA"_s, u"#F5F5F5"_s, u"#FFFAFA"_s,
                           u"#800000"_s, u"#A0522D"_s, u"#FF1493"_s, u"#FF69B4"_s}));
}

TEST_F(ColorTableTest, TheDefaultTableIsWellFormedAndWithoutRepeats)
{
    QStringList lines = DefaultLines();
    EXPECT_EQ(lines.takeLast(), QString());
    ASSERT_EQ(lines.size(), 224);
    for (const QString& line : lines) {
        ASSERT_TRUE(ColorFromHtml(line)) << line.toStdString();
        EXPECT_EQ(HtmlOfColor(*ColorFromHtml(line)), line);
    }
    EXPECT_EQ(QSet<QString>(lines.begin(), lines.end()).size(), 224);
}

TEST_F(ColorTableTest, AnExistingFileIsReadAndNotChanged)
{
    const std::string text = lines(204, "#123456");
    make(text);
    table.read(path());
    EXPECT_EQ(table.color(0), 0x123456U);
    EXPECT_EQ(table.color(203), 0x123456U);
    EXPECT_EQ(ReadFileText(path()), text);
}

TEST_F(ColorTableTest, LinesAfterThe204thAreNotRead)
{
    make(lines(203, "#111111") + lines(1, "#222222") + lines(100, "#333333"));
    table.read(path());
    EXPECT_EQ(table.color(202), 0x111111U);
    EXPECT_EQ(table.color(203), 0x222222U);
}

TEST_F(ColorTableTest, AShorterFileLeavesTheRemainingCellsWithTheirLastColour)
{
    make(lines(204, "#AAAAAA"));
    table.read(path());
    make("#010203\r\n#040506\r\n");
    table.read(path());
    EXPECT_EQ(table.color(0), 0x010203U);
    EXPECT_EQ(table.color(1), 0x040506U);
    EXPECT_EQ(table.color(2), 0xAAAAAAU);
    EXPECT_EQ(table.color(203), 0xAAAAAAU);
}

TEST_F(ColorTableTest, CellsWithoutAColourTakeTheColourBeforeThem)
{
    make("#010203\r\n#040506\r\n");
    table.read(path());
    EXPECT_EQ(table.color(203), 0x040506U);
}

TEST_F(ColorTableTest, LinesThatEndWithLfAloneAreRead)
{
    make("#010203\n#040506\n");
    table.read(path());
    EXPECT_EQ(table.color(1), 0x040506U);
}

TEST_F(ColorTableTest, ALineThatIsNotAColourIsSkipped)
{
    make("#010203\r\nred\r\n#GGGGGG\r\n\r\n# 12345\r\n#0405060\r\n");
    table.read(path());
    for (int cell = 1; cell <= 4; ++cell)
        EXPECT_EQ(table.color(cell), 0x010203U) << cell;
    // The last six characters count.
    EXPECT_EQ(table.color(5), 0x405060U);
}

TEST_F(ColorTableTest, HostileFilesAreHarmless)
{
    QRandomGenerator random(3);
    std::string noise(200'000, '\0');
    std::generate(noise.begin(), noise.end(), [&random] { return char(random.bounded(256)); });
    for (const std::string& text : {std::string(), std::string(8'000'000, 'F'), noise,
                                    std::string(1'000'000, '\n'), std::string(3, '\0')}) {
        make(text);
        table.read(path());
        for (int cell = 0; cell < ColorCellCount; ++cell)
            ASSERT_LE(table.color(cell), 0xFFFFFFU);
    }
}

TEST_F(ColorTableTest, AFolderOrAPipeInTheFilesPlaceIsHarmless)
{
    workplace.MakeFolders(u"ColorTable.dat"_s);
    table.read(path());
    EXPECT_EQ(table.color(203), 0U);
    const QString pipe = workplace.Path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    table.read(pipe);
    EXPECT_EQ(table.color(203), 0U);
}

TEST_F(ColorTableTest, AFolderThatCannotBeWrittenShowsBlackCells)
{
    const PlainUser user;
    table.read(u"/proc/ColorTable.dat"_s);
    EXPECT_EQ(table.color(0), 0U);
}

// ---------------------------------------------------------------- colours

TEST(ColorText, TheLastSixCharactersAreThreePairsWithRedFirst)
{
    EXPECT_EQ(ColorFromHtml(u"#A52A2A"), 0xA52A2AU);
    EXPECT_EQ(ColorFromHtml(u"0000ff"), 0x0000FFU);
    EXPECT_EQ(ColorFromHtml(u"colour #00FFFE"), 0x00FFFEU);
    for (const char* none : {"", "#FFF", "#12345G", "-12345", "+12345", " 12345", "0x1234"})
        EXPECT_EQ(ColorFromHtml(QString::fromLatin1(none)), std::nullopt) << none;
}

TEST(ColorText, AColourIsWrittenInCapitalsWithSixDigits)
{
    EXPECT_EQ(HtmlOfColor(0xA52A2A), u"#A52A2A"_s);
    EXPECT_EQ(HtmlOfColor(0x00000F), u"#00000F"_s);
}

// ---------------------------------------------------------------- cells

TEST(ColorCells, TwelveCellsOf14PixelsFillARow)
{
    EXPECT_EQ(ColorCell(0), QRect(0, 0, 14, 14));
    EXPECT_EQ(ColorCell(11), QRect(154, 0, 14, 14));
    EXPECT_EQ(ColorCell(12), QRect(0, 14, 14, 14));
    EXPECT_EQ(ColorCell(203), QRect(154, 224, 14, 14));
    EXPECT_EQ(ColorCellRows, 17);
}

TEST(ColorCells, EveryPointOfTheGridBelongsToOneCell)
{
    EXPECT_EQ(ColorCellAt({0, 0}), 0);
    EXPECT_EQ(ColorCellAt({13, 13}), 0);
    EXPECT_EQ(ColorCellAt({14, 13}), 1);
    EXPECT_EQ(ColorCellAt({13, 14}), 12);
    EXPECT_EQ(ColorCellAt({167, 237}), 203);
    for (int y = 0; y < 17 * 14; ++y) {
        for (int x = 0; x < 12 * 14; ++x)
            ASSERT_EQ(ColorCellAt({x, y}), y / 14 * 12 + x / 14);
    }
}

TEST(ColorCells, APointOutsideBelongsToNone)
{
    for (const QPoint& point : {QPoint(-1, 0), QPoint(0, -1), QPoint(168, 0), QPoint(0, 238)})
        EXPECT_EQ(ColorCellAt(point), -1);
}

} // namespace vmk
