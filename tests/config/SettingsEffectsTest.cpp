#include "SettingsTest.h"

#include "NonBreakingSpace.h"
#include "ProgramRun.h"

/// The effect of each setting, through the window.
namespace vmk {

TEST_F(SettingsFTest, TheLookOfTheTextReachesThePage)
{
    OpenBook();
    SettingsF& dialog = Dialog();
    Choose(dialog.FontsL, u"Courier New"_s);
    TypeInto(dialog.FontSizeT, u"13pt"_s);
    Choose(dialog.FontWeightL, u"bold"_s);
    Choose(dialog.TextAlignL, u"justify"_s);
    TypeInto(dialog.LeftMarginT, u"30px"_s);
    TypeInto(dialog.RightMarginT, u"40px"_s);
    TypeInto(dialog.ForeColorT, u"#102030"_s);
    TypeInto(dialog.BackColorT, u"#FFEEDD"_s);
    Reload();
    const Position place = PlaceOf(u"First"_s);
    const DisplayView::TextRun run = View().runAt(place);
    EXPECT_EQ(run.look.families, QStringList{u"Courier New"_s});
    EXPECT_NEAR(run.look.size, 13 * 96 / 72.0, 0.01);
    EXPECT_EQ(run.look.weight, int(QFont::Bold));
    EXPECT_EQ(run.look.color, QColor(0x10, 0x20, 0x30));
    EXPECT_EQ(
        View().viewport()->grab().toImage().pixelColor(View().clientWidth() - 3, View().clientHeight() - 3),
        QColor(0xFF, 0xEE, 0xDD));
    // The first line, which is not shifted.
    EXPECT_EQ(View().clientRects({0, 0}, {0, 1}).front().left(), 30);
    EXPECT_TRUE(Page().contains(u"margin-right:40px"_s, Qt::CaseInsensitive));
    EXPECT_TRUE(Page().contains(u"text-align:justify"_s, Qt::CaseInsensitive));
    EXPECT_EQ(LeftMarginPx(), 30);
}

TEST_F(SettingsFTest, TheLookOfTheTagsReachesThePage)
{
    OpenBook(CyrillicBook);
    SettingsF& dialog = Dialog();
    TypeInto(dialog.TagColorT, u"#010203"_s);
    TypeInto(dialog.AttrNameColorT, u"#040506"_s);
    TypeInto(dialog.AttrValColorT, u"#070809"_s);
    Choose(dialog.TagFontWeightL, u"normal"_s);
    TypeInto(dialog.NodeShiftT, u"11"_s);
    Reload();
    const Position tag = PlaceOf(u"<section id"_s);
    EXPECT_EQ(View().runAt(tag).look.color, QColor(1, 2, 3));
    EXPECT_EQ(View().runAt(tag).look.weight, int(QFont::Normal));
    EXPECT_EQ(View().runAt({tag.line, tag.offset + 9}).look.color, QColor(4, 5, 6));
    EXPECT_EQ(View().runAt({tag.line, tag.offset + 12}).look.color, QColor(7, 8, 9));
    EXPECT_EQ(page::item(Document(), tag.line + 1).marginLeft(), 2 * 11);
    EXPECT_EQ(NodeShift, 11);
}

TEST_F(SettingsFTest, WithoutHighlightingTagsAreBareText)
{
    OpenBook();
    Set(Dialog().TagHighlightingB, false);
    Reload();
    EXPECT_FALSE(Page().contains(u"<SPAN"_s));
    EXPECT_EQ(View().runAt(PlaceOf(u"<section"_s)).look.color, View().runAt(PlaceOf(u"First"_s)).look.color);
    EXPECT_EQ(View().runAt(PlaceOf(u"<section"_s)).look.weight, int(QFont::Bold));
    Set(Dialog().TagHighlightingB, true);
    Reload();
    EXPECT_TRUE(Page().contains(u"<SPAN"_s));
}

TEST_F(SettingsFTest, NonBreakingSpacesAreMarkedOrNot)
{
    OpenBook(CyrillicBook);
    const int line = FindLine(u"First"_s);
    EXPECT_TRUE(LineText(line).contains(QLatin1Char(NbspMarker)));
    Set(Dialog().ShowNbspB, false);
    Reload();
    EXPECT_FALSE(LineText(line).contains(QLatin1Char(NbspMarker)));
    EXPECT_TRUE(LineText(line).contains(QChar::Nbsp));
}

TEST_F(SettingsFTest, WithoutSoundsNoneIsHeard)
{
    OpenBook();
    soundNames.clear();
    Set(Dialog().SoundsB, false);
    Reload();
    EXPECT_EQ(soundNames, QStringList());
    Set(Dialog().SoundsB, true);
    Reload();
    EXPECT_EQ(soundNames, QStringList{u"DocComplete.wav"_s});
}

TEST_F(SettingsFTest, TheWarningOfABookWithoutATreeCanBeSwitchedOff)
{
    OpenBook();
    const QString broken = MakeBook(
        "<?xml version=\"1.0\" encoding=\"utf-8\"?><FictionBook><body></FictionBook>", u"broken.fb2"_s);
    Set(Dialog().NamespaceErrorWarningB, false);
    Push(Dialog().DoneB);
    LoadAndWait(broken);
    EXPECT_EQ(boxTexts, QStringList());
    Set(Dialog().NamespaceErrorWarningB, true);
    Push(Dialog().DoneB);
    LoadAndWait(broken);
    EXPECT_EQ(boxTexts, QStringList{u"Namespace error. Tree view is skipped"_s});
}

TEST_F(SettingsFTest, TheCommandLineReportIsASettingOfTheFile)
{
    Open();
    Set(Dialog().CommandLineInfoB, false);
    Set(Dialog().PreviewOnChangeB, false);
    Push(Dialog().DoneB);
    EXPECT_EQ(CommandLineInfo, 0);
    EXPECT_EQ(PreviewOnChange, 0);
    form->close();
    ReadSettings(true);
    EXPECT_EQ(CommandLineInfo, 1);
    ReadSettings(false);
    EXPECT_EQ(CommandLineInfo, 0);
    EXPECT_EQ(PreviewOnChange, 0);
}

TEST_F(SettingsFTest, EachEncodingAndLayoutSavesWhatTheCommandLineConverts)
{
    const QString book = MakeBook(CyrillicBook, u"in.fb2"_s);
    Open();
    for (const QString& encoding : OutputEncodings) {
        for (const QString& style : OutputStyles) {
            Choose(Dialog().OutputEncodingL, encoding);
            Choose(Dialog().OutputStyleL, style);
            Push(Dialog().DoneB);
            LoadAndWait(book);
            dialogAnswer = workplace.Path(u"saved.fb2"_s);
            boxAnswer = true;
            choiceAnswer = BoxAnswer::Yes; // to UTF-8, for characters that the encoding lacks
            form->Entry("uSaveFileAs")->trigger();
            const QString expected = workplace.Path(u"expected.fb2"_s);
            const ProgramRun run
                = RunProgram("vmk",
                             {"convert", book.toStdString(), "--out", expected.toStdString(), "--encoding",
                              encoding.toStdString(), "--style", style.toStdString()});
            ASSERT_EQ(run.exitCode, 0) << run.errors;
            const std::string saved = ReadFileText(dialogAnswer);
            ASSERT_FALSE(saved.empty());
            EXPECT_EQ(saved, ReadFileText(expected)) << encoding.toStdString() << ", " << style.toStdString();
        }
    }
}

TEST_F(SettingsFTest, EachInputEncodingReadsWhatTheCommandLineReads)
{
    const QString book = MakeBook(CyrillicBook, u"in.fb2"_s);
    Open();
    for (const char* encoding : {"original", "windows-1251", "windows-1252", "windows-1250"}) {
        Choose(Dialog().InputEncodingL, QLatin1StringView(encoding));
        Choose(Dialog().OutputEncodingL, u"utf-8"_s);
        Push(Dialog().DoneB);
        LoadAndWait(book);
        dialogAnswer = workplace.Path(u"saved.fb2"_s);
        boxAnswer = true;
        form->Entry("uSaveFileAs")->trigger();
        const QString expected = workplace.Path(u"expected.fb2"_s);
        const ProgramRun run = RunProgram("vmk",
                                          {"convert", book.toStdString(), "--out", expected.toStdString(),
                                           "--input-encoding", encoding, "--encoding", "utf-8"});
        ASSERT_EQ(run.exitCode, 0) << run.errors;
        EXPECT_EQ(ReadFileText(dialogAnswer), ReadFileText(expected)) << encoding;
    }
}

// ---------------------------------------------------------------- bad input

TEST_F(SettingsFTest, ANodeShiftThatIsNoNumberKeepsTheOldOneWithoutAReport)
{
    OpenBook();
    for (const QString& text : {u"abc"_s, u""_s, u"99999"_s}) {
        TypeInto(Dialog().NodeShiftT, text);
        Reload();
        EXPECT_EQ(NodeShift, 5);
        EXPECT_EQ(Dialog().NodeShiftT->text(), u"5"_s);
    }
    EXPECT_TRUE(boxTexts.isEmpty());
}

TEST_F(SettingsFTest, NoTypedTextMakesTheDisplayUnusable)
{
    OpenBook();
    const std::string expected = [this] {
        form->SaveCurrentBook();
        return ReadFileText(CurrentBook);
    }();
    const QStringList texts
        = {u"-5"_s,   u"10000"_s,     u"10000px"_s,     u"10000pt"_s, u"0"_s,  u"2px"_s,  u"nonsense"_s,
           u""_s,     u"1e9px"_s,     u"-10000px"_s,    u"\">x<"_s,   u";}"_s, u"100%"_s, u"transparent"_s,
           u"none"_s, u"#12345678"_s, u"9999999999pt"_s};
    for (const QString& text : texts) {
        SettingsF& dialog = Dialog();
        Set(dialog.PreviewOnChangeB, true);
        for (QLineEdit* field :
             {dialog.FontSizeT, dialog.LeftMarginT, dialog.RightMarginT, dialog.NodeShiftT, dialog.ForeColorT,
              dialog.BackColorT, dialog.TagColorT, dialog.AttrNameColorT, dialog.AttrValColorT})
            TypeInto(field, text);
        Reload();
        // All of the book is there, its first line can be read, and typing works.
        form->SaveCurrentBook();
        ASSERT_EQ(ReadFileText(CurrentBook), expected) << text.toStdString();
        const Position place = PlaceOf(u"First"_s);
        View().scrollIntoView(place);
        const QRect rect = View().boundingRect(place, {place.line, place.offset + 5});
        const QRect page(0, 0, View().clientWidth(), View().clientHeight());
        EXPECT_TRUE(page.intersects(rect)) << text.toStdString();
        EXPECT_GE(rect.height(), 1);
        EXPECT_LT(View().runAt(place).look.size, 200);
        EXPECT_EQ(View().runAt(place).look.color.alpha(), 255);
        PutCaret(place);
        Type(u"x"_s);
        EXPECT_TRUE(LineText(place.line).contains(u"xFirst"_s)) << text.toStdString();
        Key(Qt::Key_Tab);
        Key(Qt::Key_Tab, Qt::ControlModifier);
        ASSERT_TRUE(WriteSettings({0, 0, 15'000, 9'000}));
        ReadSettings(false);
        CurrentBook = LastFile;
        EXPECT_TRUE(boxTexts.isEmpty()) << text.toStdString();
    }
}

} // namespace vmk
