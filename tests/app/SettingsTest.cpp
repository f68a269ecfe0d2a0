#include "Settings.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "FileOperations.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "Workplace.h"

#include <QRandomGenerator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include <sys/stat.h>

using namespace vmk;
using namespace std::string_view_literals;
using namespace Qt::StringLiterals;

namespace {

/// The settings file with all defaults and the workspace /w, byte for byte.
constexpr std::string_view DefaultFile = "\x08\0original"
                                         "\x01\0"
                                         "\x08\0original"
                                         "\x09\0tags tree"
                                         "\x01\0"
                                         "\x01\0"
                                         "\x07\0Verdana"
                                         "\x04\0"
                                         "10pt"
                                         "\x06\0normal"
                                         "\x04\0left"
                                         "\x03\0"
                                         "2px"
                                         "\x03\0"
                                         "2px"
                                         "\x07\0#000000"
                                         "\x07\0#F5F5F5"
                                         "\x05\0"
                                         "\x07\0#0000FF"
                                         "\x07\0#A52A2A"
                                         "\x07\0#008000"
                                         "\x04\0"
                                         "bold"
                                         "\x01\0"
                                         "\x01\0"
                                         "\x01\0"
                                         "\x06\0schema"
                                         "\x1a\0/w/Schemas/FictionBook.xsd"
                                         "\x0f\0/w/Book Samples"
                                         "\x03\0"
                                         "c:\\"
                                         "\x03\0"
                                         "c:\\"
                                         "\0\0"
                                         "\0\0\x16\x43" // 150
                                         "\0\0\x16\x43"
                                         "\0\x10\x24\x46" // 10500
                                         "\0\x60\xea\x45"sv; // 7500

class SettingsTest : public testing::Test
{
protected:
    SettingsTest()
    {
        qputenv("VELLUMARK_CODEPAGE", "1251");
        IniFilePath = place.Path(u"vellumark.ini"_s);
        SchemasFolder = u"/w/Schemas"_s;
        SampleBooksFolder = u"/w/Book Samples"_s;
        CurrentBook.clear();
        MainFormWindowState = 0;
        TwipsPerPixelX = 15;
        TwipsPerPixelY = 15;
        ReadSettings(true);
    }
    ~SettingsTest() override { qunsetenv("VELLUMARK_CODEPAGE"); }

    static FormPlace DefaultPlace() { return {150, 150, 10500, 7500}; }
    std::string File() const { return ReadFileText(IniFilePath); }

    Workplace place;
    QStringList boxes;
    SeamGuard<bool(BoxKind, const QString&, const QString&)> boxGuard{
        BoxSeam(), [this](BoxKind kind, const QString& text, const QString& title) {
            EXPECT_EQ(kind, BoxKind::Plain);
            boxes.append(title + u'|' + text);
            return false;
        }};
};

/// Writes the settings with a text in the field `LastSaveFolder`, reads them and returns the text.
QString ThereAndBack(const QString& text)
{
    LastSaveFolder = text;
    EXPECT_TRUE(WriteSettings({}));
    ReadSettings(false);
    return LastSaveFolder;
}

SettingsRecord RecordWithText(const QString& text)
{
    SettingsRecord record = EmptySettingsRecord();
    record.front() = text;
    return record;
}

} // namespace

// ---------------------------------------------------------------- the record

TEST_F(SettingsTest, TheDefaultsAreWrittenByteForByte)
{
    EXPECT_TRUE(WriteSettings(DefaultPlace()));
    EXPECT_EQ(File(), DefaultFile);
}

TEST_F(SettingsTest, EveryFieldIsRestored)
{
    place.Make(u"schema.xsd"_s, "x");
    place.Make(u"book.fb2"_s, "x");
    const std::array<QString*, 20> texts
        = {&InputEncoding,     &OutputEncoding,   &OutputStyle,       &DisplayFontName,    &DisplayFontSize,
           &DisplayFontWeight, &DisplayTextAlign, &DisplayLeftMargin, &DisplayRightMargin, &DisplayForeColor,
           &DisplayBackColor,  &TagColor,         &AttrNameColor,     &AttrValColor,       &TagFontWeight,
           &ValidateOption,    &LastBookFolder,   &LastSaveFolder,    &LastImageFolder,    &SchemaFile};
    const std::array<int*, 7> numbers
        = {&NamespaceErrorWarning, &TagHighlighting, &PreviewOnChange, &NodeShift, &SoundsOn, &ShowNbsp,
           &CommandLineInfo};
    for (std::size_t i = 0; i < texts.size(); ++i)
        *texts[i] = u"text "_s + QString::number(i);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        *numbers[i] = 100 + int(i);
    SchemaFile = place.Path(u"schema.xsd"_s);
    CurrentBook = place.Path(u"book.fb2"_s);
    ASSERT_TRUE(WriteSettings({-1.5F, 2, 3, 4}));

    ReadSettings(true);
    ReadSettings(false);
    for (std::size_t i = 0; i + 1 < texts.size(); ++i)
        EXPECT_EQ(*texts[i], u"text "_s + QString::number(i));
    for (std::size_t i = 0; i < numbers.size(); ++i)
        EXPECT_EQ(*numbers[i], 100 + int(i));
    EXPECT_EQ(SchemaFile, place.Path(u"schema.xsd"_s));
    EXPECT_EQ(LastFile, CurrentBook);
    EXPECT_EQ((std::array{MainFormLeft, MainFormTop, MainFormWidth, MainFormHeight}),
              (std::array{-1.5F, 2.0F, 3.0F, 4.0F}));
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(SettingsTest, IntegersAreSignedAndHeldToSixteenBits)
{
    for (const auto& [number, stored] : {std::pair(-3, -3), {40000, 32767}, {-40000, -32768}}) {
        NodeShift = number;
        ASSERT_TRUE(WriteSettings({}));
        ReadSettings(false);
        EXPECT_EQ(NodeShift, stored);
    }
}

TEST_F(SettingsTest, APathIsStoredInTheSystemsCodePage)
{
    const QString path = u"/книги"_s;
    EXPECT_EQ(ThereAndBack(path), path);
    EXPECT_THAT(File(), testing::HasSubstr("\x06\0/\xea\xed\xe8\xe3\xe8"sv));
}

TEST_F(SettingsTest, APathInACodePageIsReadDifferentlyUnderAnother)
{
    ThereAndBack(u"/книги"_s);
    qputenv("VELLUMARK_CODEPAGE", "1252");
    ReadSettings(false);
    EXPECT_EQ(LastSaveFolder, u"/êíèãè"_s);
}

TEST_F(SettingsTest, APathBeyondTheCodePageIsStoredInUtf8AndReadUnderAnyPage)
{
    const QString path = u"/книги/日本/😀/é"_s;
    EXPECT_EQ(ThereAndBack(path), path);
    EXPECT_THAT(File(), testing::HasSubstr(path.toStdString()));
    qputenv("VELLUMARK_CODEPAGE", "1250");
    ReadSettings(false);
    EXPECT_EQ(LastSaveFolder, path);
}

TEST_F(SettingsTest, ATextWhoseBytesWouldReadAsUtf8IsStoredInUtf8)
{
    // In code page 1251 these two letters are the UTF-8 bytes of another one.
    const QString text = u"Р°"_s;
    EXPECT_EQ(ThereAndBack(text), text);
}

TEST_F(SettingsTest, RandomTextsAreRestoredUnderEachCodePage)
{
    QRandomGenerator random(1);
    for (const char* page : {"1250", "1251", "1252"}) {
        qputenv("VELLUMARK_CODEPAGE", page);
        for (int i = 0; i < 2000; ++i) {
            QString text;
            for (int length = random.bounded(8); length > 0; --length)
                text.append(QChar(random.bounded(1, random.bounded(2) ? 0x500 : 0xd800)));
            const std::optional<SettingsRecord> record = DecodeSettings(EncodeSettings(RecordWithText(text)));
            ASSERT_TRUE(record);
            ASSERT_EQ(std::get<QString>(record->front()), text) << page;
        }
    }
}

TEST_F(SettingsTest, ATextTooLongForItsLengthFieldIsCutBetweenCharacters)
{
    for (const QString& part : {u"a"_s, u"я"_s, u"日"_s, u"😀"_s}) {
        const QString text = part.repeated(70000);
        const std::optional<SettingsRecord> record = DecodeSettings(EncodeSettings(RecordWithText(text)));
        ASSERT_TRUE(record);
        const QString& back = std::get<QString>(record->front());
        EXPECT_EQ(back, part.repeated(back.size() / part.size()));
        EXPECT_GE(back.toUtf8().size(), 65532);
    }
}

// ---------------------------------------------------------------- reading

TEST_F(SettingsTest, WithoutAFileAllDefaultsApply)
{
    NodeShift = 99;
    CleanUpFontSize = 99;
    ReadSettings(false);
    EXPECT_EQ(NodeShift, 5);
    EXPECT_EQ(SchemaFile, u"/w/Schemas/FictionBook.xsd"_s);
    EXPECT_EQ(LastBookFolder, u"/w/Book Samples"_s);
    EXPECT_EQ(LastSaveFolder, u"c:\\"_s);
    EXPECT_EQ(MainFormWidth, 10500);
    EXPECT_EQ(CurrentCleanUpFile, QString());
    EXPECT_EQ(CleanUpFontName, u"Ms Sans Serif"_s);
    EXPECT_EQ(CleanUpFontSize, 9);
    EXPECT_TRUE(CleanUpFontBold);
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_FALSE(FileExists(IniFilePath));
}

TEST_F(SettingsTest, DefaultsOnRequestLeaveTheFile)
{
    NodeShift = 99;
    ASSERT_TRUE(WriteSettings({}));
    ReadSettings(true);
    EXPECT_EQ(NodeShift, 5);
    ReadSettings(false);
    EXPECT_EQ(NodeShift, 99);
}

TEST_F(SettingsTest, ATruncatedRecordIsReportedOnceDeletedAndReplacedByDefaults)
{
    for (std::size_t size = 0; size < DefaultFile.size(); ++size) {
        std::string cut(DefaultFile.substr(0, size));
        // A changed first field must not be used either.
        if (size > 2)
            cut[2] = 'X';
        ASSERT_TRUE(WriteFileText(IniFilePath, cut));
        boxes.clear();
        NodeShift = 99;
        ReadSettings(false);
        ASSERT_EQ(boxes,
                  QStringList{u"Vellumark|error reading VmkValidator.ini file\r\n"
                              "The default settings will be used"_s})
            << "cut at " << size;
        ASSERT_EQ(InputEncoding, u"original"_s);
        ASSERT_EQ(NodeShift, 5);
        ASSERT_EQ(MainFormHeight, 7500);
        ASSERT_FALSE(FileExists(IniFilePath));
    }
    // The damage is not reported again.
    boxes.clear();
    ASSERT_TRUE(WriteFileText(IniFilePath, DefaultFile));
    ReadSettings(false);
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_TRUE(FileExists(IniFilePath));
}

TEST_F(SettingsTest, APositionThatIsNoNumberIsDamage)
{
    for (const float position :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        ASSERT_TRUE(WriteSettings({150, position, 1, 1}));
        ReadSettings(false);
        EXPECT_EQ(MainFormTop, 150);
    }
    EXPECT_EQ(boxes.size(), 2);
}

TEST_F(SettingsTest, BytesAfterTheRecordAreIgnored)
{
    ASSERT_TRUE(WriteFileText(IniFilePath, std::string(DefaultFile) + "more"));
    ReadSettings(false);
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_EQ(MainFormHeight, 7500);
}

TEST_F(SettingsTest, AFolderInsteadOfTheFileIsReportedAndKept)
{
    ASSERT_TRUE(MakeFolder(IniFilePath));
    ReadSettings(false);
    EXPECT_EQ(boxes.size(), 1);
    EXPECT_EQ(NodeShift, 5);
    EXPECT_TRUE(FolderExists(IniFilePath));
    EXPECT_FALSE(WriteSettings({}));
}

TEST_F(SettingsTest, AMissingSchemaIsReplacedByTheDefault)
{
    place.Make(u"own.xsd"_s, "x");
    SchemaFile = place.Path(u"own.xsd"_s);
    ASSERT_TRUE(WriteSettings({}));
    ReadSettings(false);
    EXPECT_EQ(SchemaFile, place.Path(u"own.xsd"_s));
    FileOperation(DeleteFileMode, SchemaFile);
    ReadSettings(false);
    EXPECT_EQ(SchemaFile, u"/w/Schemas/FictionBook.xsd"_s);
}

TEST_F(SettingsTest, AMissingLastFileBecomesEmpty)
{
    place.Make(u"book.fb2"_s, "x");
    CurrentBook = place.Path(u"book.fb2"_s);
    ASSERT_TRUE(WriteSettings({}));
    ReadSettings(false);
    EXPECT_EQ(LastFile, CurrentBook);
    FileOperation(DeleteFileMode, CurrentBook);
    ReadSettings(false);
    EXPECT_EQ(LastFile, QString());
}

// ---------------------------------------------------------------- writing

TEST_F(SettingsTest, ASessionWithoutABookStoresNoLastFile)
{
    place.Make(u"book.fb2"_s, "x");
    LastFile = place.Path(u"book.fb2"_s);
    ASSERT_TRUE(WriteSettings({}));
    EXPECT_EQ(LastFile, QString());
}

TEST_F(SettingsTest, AMaximisedWindowIsStoredWithoutItsFrame)
{
    TwipsPerPixelX = 12;
    MainFormWindowState = 2;
    ASSERT_TRUE(WriteSettings({-60, -60, 12000, 9000}));
    ReadSettings(false);
    EXPECT_EQ((std::array{MainFormLeft, MainFormTop, MainFormWidth, MainFormHeight}),
              (std::array{-48.0F, -45.0F, 11976.0F, 8970.0F}));
}

TEST_F(SettingsTest, AFailedWriteKeepsTheOldFile)
{
    ASSERT_TRUE(WriteSettings(DefaultPlace()));
    ASSERT_EQ(::chmod(QFile::encodeName(place.Folder()).constData(), 0555), 0);
    const PlainUser plain;
    NodeShift = 99;
    EXPECT_FALSE(WriteSettings(DefaultPlace()));
    EXPECT_EQ(File(), DefaultFile);
}
