#include "SettingsValues.h"

#include "BookPage.h"
#include "BookVariables.h"
#include "DisplayValuesOfSettings.h"
#include "InitGlobals.h"
#include "NonBreakingSpace.h"
#include "PreviewPage.h"
#include "QtPrinting.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TestPaths.h"
#include "Workplace.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class SettingsValuesTest : public testing::Test
{
protected:
    SettingsValuesTest()
    {
        InitGlobals({workplace.Path(u"vellumark"_s), workplace.Path(u"user"_s)});
        ReadSettings(true);
    }

    const Workplace workplace;
};

/// Returns a text of valid and invalid parts of values.
QString AnyText(QRandomGenerator& random)
{
    static const QString Pieces[] = {u"px"_s,
                                     u"pt"_s,
                                     u"10"_s,
                                     u"-"_s,
                                     u"2"_s,
                                     u"\""_s,
                                     u"<"_s,
                                     u">"_s,
                                     u";"_s,
                                     u"{}"_s,
                                     u"#"_s,
                                     u"FF"_s,
                                     u"none"_s,
                                     u"\u0436"_s,
                                     u"\u00e9"_s,
                                     u"\U0001F600"_s,
                                     u"\t"_s,
                                     u"&quot;"_s,
                                     u"</STYLE>"_s,
                                     u"</BODY>"_s,
                                     u"'"_s,
                                     u"%"_s,
                                     u"\\"_s,
                                     u"*/"_s,
                                     QString(QChar(0x7f)),
                                     QString(QChar(0xd800))};
    QString text;
    const int count = random.bounded(6);
    for (int i = 0; i < count; ++i)
        text += Pieces[random.bounded(int(std::size(Pieces)))];
    return text;
}

SettingsValues AnyValues(QRandomGenerator& random)
{
    SettingsValues values = ValuesOfSettings();
    for (QString* text :
         {&values.fontSize, &values.leftMargin, &values.rightMargin, &values.foreColor, &values.backColor,
          &values.tagColor, &values.attrNameColor, &values.attrValColor, &values.nodeShift, &values.fontName})
        *text = AnyText(random);
    return values;
}

} // namespace

// ---------------------------------------------------------------- numbers

TEST(PixelNumberTest, TheUnitIsOptional)
{
    EXPECT_EQ(PixelNumber(u"2px"), 2);
    EXPECT_EQ(PixelNumber(u"2"), 2);
    EXPECT_EQ(PixelNumber(u" 12 PX "), 12);
    EXPECT_EQ(PixelNumber(u"-3px"), -3);
    EXPECT_EQ(PixelNumber(u"2.6"), 3);
    EXPECT_EQ(PixelNumber(u"10000"), 10000);
}

TEST(PixelNumberTest, OtherTextsAndLargeNumbersAreRejected)
{
    for (const char* none :
         {"", "x", "px", "2em", "two", "1,5", "32768", "-32769", "1e99", "nan", "inf", "2 3", "0x10"})
        EXPECT_EQ(PixelNumber(QString::fromLatin1(none)), std::nullopt) << none;
    EXPECT_EQ(PixelNumber(u"32767"), 32767);
    EXPECT_EQ(PixelNumber(u"-32768"), -32768);
}

TEST_F(SettingsValuesTest, ALeftMarginIsANumberOrZero)
{
    for (const auto& [text, pixels] :
         {std::pair(u"2px"_s, 2), {u"2"_s, 2}, {u"x"_s, 0}, {u""_s, 0}, {u"17 px"_s, 17}}) {
        DisplayLeftMargin = text;
        EXPECT_EQ(LeftMarginPx(), pixels) << text.toStdString();
    }
}

// ---------------------------------------------------------------- values and shared variables

TEST_F(SettingsValuesTest, ApplyingTheCurrentValuesChangesNothing)
{
    NodeShift = 7;
    TagHighlighting = 0;
    DisplayLeftMargin = u"odd"_s;
    const SettingsValues before = ValuesOfSettings();
    TakeSettings(before);
    EXPECT_EQ(ValuesOfSettings(), before);
    EXPECT_EQ(NodeShift, 7);
}

TEST_F(SettingsValuesTest, ANodeShiftThatIsNoNumberKeepsTheOldValue)
{
    SettingsValues values = ValuesOfSettings();
    for (const QString& text : {u"x"_s, u""_s, u"40000"_s, u"px"_s}) {
        values.nodeShift = text;
        values.fontSize = u"12pt"_s;
        TakeSettings(values);
        EXPECT_EQ(NodeShift, 5) << text.toStdString();
        EXPECT_EQ(DisplayFontSize, u"12pt"_s);
    }
    values.nodeShift = u"9px"_s;
    TakeSettings(values);
    EXPECT_EQ(NodeShift, 9);
}

TEST_F(SettingsValuesTest, EveryValueReachesItsVariable)
{
    const SettingsValues values{u"utf-8"_s,   false,        u"windows-1252"_s,
                                u"compact"_s, u"Arial"_s,   u"11pt"_s,
                                u"bold"_s,    u"justify"_s, u"3px"_s,
                                u"4px"_s,     u"#010101"_s, u"#020202"_s,
                                u"#030303"_s, u"#040404"_s, u"#050505"_s,
                                u"normal"_s,  u"6"_s,       false,
                                false,        false,        false,
                                false};
    TakeSettings(values);
    EXPECT_EQ(InputEncoding, u"utf-8"_s);
    EXPECT_EQ(OutputEncoding, u"windows-1252"_s);
    EXPECT_EQ(OutputStyle, u"compact"_s);
    EXPECT_EQ(DisplayFontName, u"Arial"_s);
    EXPECT_EQ(DisplayFontSize, u"11pt"_s);
    EXPECT_EQ(DisplayFontWeight, u"bold"_s);
    EXPECT_EQ(DisplayTextAlign, u"justify"_s);
    EXPECT_EQ(DisplayLeftMargin, u"3px"_s);
    EXPECT_EQ(DisplayRightMargin, u"4px"_s);
    EXPECT_EQ(DisplayForeColor, u"#010101"_s);
    EXPECT_EQ(DisplayBackColor, u"#020202"_s);
    EXPECT_EQ(TagColor, u"#030303"_s);
    EXPECT_EQ(AttrNameColor, u"#040404"_s);
    EXPECT_EQ(AttrValColor, u"#050505"_s);
    EXPECT_EQ(TagFontWeight, u"normal"_s);
    EXPECT_EQ(NodeShift, 6);
    EXPECT_EQ(
        NamespaceErrorWarning + TagHighlighting + SoundsOn + ShowNbsp + CommandLineInfo + PreviewOnChange, 0);
    EXPECT_EQ(ValuesOfSettings(), values);
}

TEST_F(SettingsValuesTest, NoTypedTextMakesTheSettingsFileUnreadable)
{
    QRandomGenerator random(5);
    for (int round = 0; round < 200; ++round) {
        TakeSettings(AnyValues(random));
        const SettingsValues before = ValuesOfSettings();
        ASSERT_TRUE(WriteSettings({}));
        ReadSettings(false);
        const SettingsValues after = ValuesOfSettings();
        // No encoding can represent half of a surrogate pair.
        const auto readable = [](QString text) { return text.replace(QChar(0xd800), QChar(0xfffd)); };
        ASSERT_EQ(after.fontSize, readable(before.fontSize));
        ASSERT_EQ(after.nodeShift, before.nodeShift);
        ASSERT_EQ(after.tagFontWeight, before.tagFontWeight);
    }
}

TEST_F(SettingsValuesTest, NoTypedTextChangesTheStructureOfThePage)
{
    QRandomGenerator random(6);
    PageRequest request;
    const std::string text = "<a>text</a>";
    for (int round = 0; round < 300; ++round) {
        request.values = PreviewDisplayValues(AnyValues(random));
        const std::optional<XmlTreeText> tree = TreeOfBook(text, request);
        ASSERT_TRUE(tree);
        const QString page = QString::fromStdString(PageWithTree(*tree, request));
        // One body tag, closed by the first ">" after it, with three quoted attributes.
        const qsizetype body = page.indexOf(u"<BODY"_s);
        const QString tag = page.mid(body, page.indexOf(u'>', body) - body);
        ASSERT_TRUE(tag.endsWith(u'"')) << tag.toStdString();
        ASSERT_EQ(tag.count(u'"'), 6) << tag.toStdString();
        ASSERT_TRUE(page.mid(body + tag.size()).startsWith(u">\r\n<DIV id=FirstDiv>"_s));
        ASSERT_EQ(page.count(u"</STYLE>"_s), 1);
        ASSERT_EQ(page.count(u'{'), page.count(u'}'));
    }
}

TEST_F(SettingsValuesTest, OrdinaryValuesReachThePageAsTheyAre)
{
    SettingsValues values = ValuesOfSettings();
    values.fontName = u"'Lucida Sans Unicode', Arial"_s;
    values.leftMargin = u"5%"_s;
    values.foreColor = u"rgb(1, 2, 3)"_s;
    values.nodeShift = u"8px"_s;
    const DisplayValues display = PreviewDisplayValues(values);
    EXPECT_EQ(display.fontName, "'Lucida Sans Unicode', Arial");
    EXPECT_EQ(display.leftMargin, "5%");
    EXPECT_EQ(display.foreColor, "rgb(1, 2, 3)");
    EXPECT_EQ(display.nodeShift, 8);
    TakeSettings(values);
    EXPECT_EQ(DisplayValuesOfSettings().fontName, display.fontName);
    EXPECT_EQ(DisplayValuesOfSettings().nodeShift, 8);
}

// ---------------------------------------------------------------- the sample book

TEST_F(SettingsValuesTest, TheSampleIsShownAlikeWhateverEncodingTheOpenBookHas)
{
    OfficeFolder = QStringLiteral(VMK_BIN_DIR "/VMK Office");
    std::string first;
    for (const int codePage : {65001, 1250, 1251, 1252, 1200, 0}) {
        WorkCodePage = codePage;
        XmlDeclaration = "<?xml version=\"1.0\"?>";
        std::string page;
        ASSERT_TRUE(MakeSamplePage(page));
        EXPECT_NE(page.find("Глава первая"), std::string::npos) << codePage;
        EXPECT_NE(page.find("Chapter two"), std::string::npos) << codePage;
        EXPECT_EQ(page.find("&#"), std::string::npos) << codePage;
        if (first.empty())
            first = page;
        EXPECT_EQ(page, first) << codePage;
    }
    WorkCodePage = 0;
    XmlDeclaration.clear();
}

TEST_F(SettingsValuesTest, TheSampleHasEveryKindOfLine)
{
    OfficeFolder = QStringLiteral(VMK_BIN_DIR "/VMK Office");
    std::string page;
    ASSERT_TRUE(MakeSamplePage(page));
    for (const char* name :
         {"title", "epigraph", "poem", "stanza", "v", "cite", "table", "th", "td", "subtitle", "text-author",
          "empty-line/", "strong", "emphasis", "sup", "sub", "strikethrough"})
        EXPECT_NE(page.find("&lt;" + std::string(name) + "&gt;"), std::string::npos) << name;
    EXPECT_NE(page.find("&lt;image"), std::string::npos);
    EXPECT_NE(page.find("<SPAN class=c>"), std::string::npos);
    EXPECT_NE(page.find("\"notes\""), std::string::npos);
    EXPECT_NE(page.find(NbspMarker), std::string::npos);
}

} // namespace vmk
