#include "SettingsF.h"

#include "ColorsF1.h"
#include "NonBreakingSpace.h"
#include "PreviewF.h"
#include "PreviewPage.h"
#include "ProgramRun.h"
#include "SettingsVariables.h"
#include "ShownFont.h"
#include "WindowTest.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// A book in windows-1251 with Russian text, every kind of mark-up that has a colour, and a picture.
const char CyrillicBook[]
    = "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\r\n"
      "<FictionBook xmlns=\"http://www.gribuser.ru/xml/fictionbook/2.0\""
      " xmlns:l=\"http://www.w3.org/1999/xlink\">"
      "<description><title-info><genre>prose_classic</genre><author><nickname>N</nickname></author>"
      "<book-title>\xca\xed\xe8\xe3\xe0</book-title><lang>ru</lang></title-info><document-info><author>"
      "<nickname>N</nickname></author><program-used>Vellumark</program-used><date>2026</date><id>1</id>"
      "<version>1.0</version></document-info></description>"
      "<body><section id=\"s1\"><p>First \xf1\xeb\xee\xe2\xe0 &amp;\xa0more.</p>"
      "<p>Second <strong>line</strong> here.</p></section></body>"
      "<binary id=\"a.png\" content-type=\"image/png\">AAAA</binary></FictionBook>";

class SettingsFTest : public WindowTest
{
protected:
    ~SettingsFTest() override { SettingsF::Unload(); }

    SettingsF& Dialog()
    {
        if (!SettingsF::Existing()) {
            form->Entry("uSettings")->trigger();
            EXPECT_TRUE(QTest::qWaitForWindowActive(SettingsF::Existing()));
            EXPECT_TRUE(WaitFor([] { return SettingsF::Existing()->SettingsLoading == 0; }));
        }
        return *SettingsF::Existing();
    }
    static void Push(QPushButton* button)
    {
        ASSERT_TRUE(button->isEnabled());
        QTest::mouseClick(button, Qt::LeftButton);
    }
    /// Types a text into a field in place of what it holds.
    static void TypeInto(QLineEdit* field, const QString& text)
    {
        field->setFocus();
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        for (const QChar& c : text)
            QTest::keyClick(field, c.toLatin1());
    }
    static void Choose(QComboBox* list, const QString& entry)
    {
        ASSERT_GE(list->findText(entry), 0) << entry.toStdString();
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Home);
        while (list->currentText() != entry)
            QTest::keyClick(list, Qt::Key_Down);
    }
    static void Set(QCheckBox* check, bool on)
    {
        if (check->isChecked() != on)
            QTest::keyClick(check, Qt::Key_Space);
    }
    /// "reload", until the book is complete again.
    void Reload()
    {
        form->StatusMsg->setPanelText(1, QString());
        Push(Dialog().ReloadB);
        ASSERT_TRUE(WaitFor([this] { return Message() == "document complete"_L1; }));
    }
    /// The page that the display holds.
    QString Page() { return QString::fromUtf8(Document().savePage()); }
    QString Head() { return Document().head(); }
    static PreviewF* Preview() { return PreviewF::Existing(); }
    static bool PreviewIsVisible() { return Preview() && Preview()->isVisible(); }
    static QString PreviewPage() { return QString::fromUtf8(Preview()->FbPreview->document().savePage()); }
    bool PreviewShows(const QString& text)
    {
        return WaitFor([&] { return PreviewIsVisible() && PreviewPage().contains(text); });
    }
};

} // namespace

// ---------------------------------------------------------------- controls

TEST_F(SettingsFTest, TheDialogHasItsCaptionsAndEntries)
{
    Open();
    const SettingsF& dialog = Dialog();
    EXPECT_EQ(dialog.windowTitle(), u" Settings"_s);
    const auto entries = [](const QComboBox* list) {
        QStringList texts;
        for (int row = 0; row < list->count(); ++row)
            texts.append(list->itemText(row));
        return texts;
    };
    EXPECT_EQ(entries(dialog.InputEncodingL),
              (QStringList{u"original"_s, u"windows-1251"_s, u"windows-1252"_s, u"windows-1250"_s, u"utf-8"_s,
                           u"unicode"_s}));
    EXPECT_EQ(entries(dialog.OutputEncodingL), OutputEncodings);
    EXPECT_EQ(entries(dialog.OutputStyleL), (QStringList{u"compact"_s, u"line ends"_s, u"tags tree"_s}));
    EXPECT_EQ(
        entries(dialog.FontsL),
        (QStringList{u"Times New Roman"_s, u"Verdana"_s, u"Tahoma"_s, u"Times"_s, u"Lucida Sans Unicode"_s,
                     u"Helvetica"_s, u"Courier New"_s, u"Arial"_s, u"Arial Narrow"_s, u"MS Sans Serif"_s}));
    EXPECT_EQ(entries(dialog.FontWeightL), (QStringList{u"normal"_s, u"bold"_s}));
    EXPECT_EQ(entries(dialog.TextAlignL), (QStringList{u"left"_s, u"justify"_s}));
    EXPECT_EQ(entries(dialog.TagFontWeightL), (QStringList{u"normal"_s, u"bold"_s}));
    QStringList labels;
    for (const QLabel* label : dialog.findChildren<QLabel*>()) {
        if (label->buddy())
            labels.append(label->objectName() + u": "_s + label->text());
    }
    labels.sort();
    EXPECT_EQ(labels,
              (QStringList{u"Check1: style"_s, u"Check5: font size"_s, u"wCheck10: tag color"_s,
                           u"wCheck11: attr. color"_s, u"wCheck12: value color"_s, u"wCheck13: font weight"_s,
                           u"wCheck14: encoding"_s, u"wCheck16: encoding"_s, u"wCheck1: fore color"_s,
                           u"wCheck2: back color"_s, u"wCheck3: font weight"_s, u"wCheck4: font"_s,
                           u"wCheck6: text align"_s, u"wCheck7: left margin"_s, u"wCheck8: right margin"_s,
                           u"wCheck9: node shift"_s}));
    QStringList frames;
    for (const QGroupBox* frame : dialog.findChildren<QGroupBox*>())
        frames.append(frame->objectName() + u": "_s + frame->title());
    frames.sort();
    EXPECT_EQ(frames,
              (QStringList{u"wFrame1: text"_s, u"wFrame2: tags"_s, u"wFrame3: view options"_s,
                           u"wFrame5: output file"_s, u"wFrame6: input file"_s}));
    const std::pair<const QPushButton*, const char*> buttons[] = {{dialog.DoneB, "done"},
                                                                  {dialog.ReloadB, "reload"},
                                                                  {dialog.DefaultB, "default"},
                                                                  {dialog.DeleteIniFile, "delete ini"},
                                                                  {dialog.PreviewB, "preview"},
                                                                  {dialog.SetColorsB, "color"},
                                                                  {dialog.SetFontB, "font"},
                                                                  {dialog.SchemaB, "schema"},
                                                                  {dialog.TreeTagsB, "in-line tags"}};
    for (const auto& [button, caption] : buttons)
        EXPECT_EQ(button->text(), QLatin1StringView(caption));
    const std::pair<const QCheckBox*, const char*> checks[]
        = {{dialog.NamespaceErrorWarningB, "namespace error warning"},
           {dialog.TagHighlightingB, "tag highlighting"},
           {dialog.SoundsB, "sounds"},
           {dialog.ShowNbspB, "show nbsp"},
           {dialog.CommandLineInfoB, "command-line info"},
           {dialog.PreviewOnChangeB, "preview on change"}};
    for (const auto& [check, caption] : checks)
        EXPECT_EQ(check->text(), QLatin1StringView(caption));
    for (const QPushButton* button : {dialog.ForeColorP, dialog.BackColorP, dialog.TagColorP,
                                      dialog.AttrNameColorP, dialog.AttrValColorP})
        EXPECT_EQ(button->toolTip(), u"push to change color"_s);
    for (const QFrame* panel : {dialog.ForeColorP1, dialog.BackColorP1, dialog.TagColorP1,
                                dialog.AttrNameColorP1, dialog.AttrValColorP1})
        EXPECT_EQ(panel->toolTip(), u"click to change color"_s);
}

TEST_F(SettingsFTest, TheControlsShowTheSettings)
{
    Open();
    SettingsF& dialog = Dialog();
    EXPECT_EQ(dialog.values(), ValuesOfSettings());
    EXPECT_EQ(dialog.NodeShiftT->text(), u"5"_s);
    EXPECT_EQ(dialog.FontsL->currentText(), u"Verdana"_s);
    EXPECT_TRUE(dialog.SoundsB->isChecked());
}

TEST_F(SettingsFTest, EveryControlHasANameAndIsReachedByTheTabKey)
{
    Open();
    SettingsF& dialog = Dialog();
    QStringList order;
    dialog.InputEncodingL->setFocus();
    for (QWidget* widget = dialog.InputEncodingL; order.size() < 60;) {
        EXPECT_FALSE(widget->accessibleName().isEmpty() && widget->property("text").toString().isEmpty())
            << widget->objectName().toStdString();
        order.append(widget->objectName());
        QTest::keyClick(widget, Qt::Key_Tab);
        widget = QApplication::focusWidget();
        ASSERT_TRUE(widget);
        if (widget == dialog.InputEncodingL)
            break;
    }
    QStringList expected
        = u"InputEncodingL NamespaceErrorWarningB OutputEncodingL OutputStyleL SoundsB ShowNbspB "
          "CommandLineInfoB PreviewOnChangeB SchemaB TreeTagsB FontsL FontSizeT FontWeightL "
          "TextAlignL LeftMarginT RightMarginT ForeColorT ForeColorP BackColorT BackColorP "
          "TagColorT TagColorP AttrNameColorT AttrNameColorP AttrValColorT AttrValColorP "
          "TagFontWeightL NodeShiftT TagHighlightingB PreviewB DefaultB DeleteIniFile ReloadB "
          "DoneB"_s.split(u' ');
    if (!dialog.TreeTagsB->isEnabled())
        expected.removeOne(u"TreeTagsB"_s);
    EXPECT_EQ(order, expected);
}

TEST_F(SettingsFTest, TheDialogFitsItsScreen)
{
    Open();
    SettingsF& dialog = Dialog();
    const QRect screen = dialog.screen()->availableGeometry();
    EXPECT_LE(dialog.width(), screen.width());
    EXPECT_LE(dialog.height(), screen.height());
    EXPECT_TRUE(screen.contains(dialog.geometry().center()));
    EXPECT_LE(dialog.width(), 1024);
    EXPECT_LE(dialog.height(), 768);
    // Half the screen: the frames scroll, the buttons stay.
    dialog.resize(512, 384);
    EXPECT_EQ(dialog.size(), QSize(512, 384));
    QCoreApplication::processEvents();
    for (const QPushButton* button : {dialog.DoneB, dialog.ReloadB, dialog.DefaultB, dialog.DeleteIniFile})
        EXPECT_TRUE(dialog.rect().contains(button->geometry())) << button->text().toStdString();
}

TEST_F(SettingsFTest, AValueThatIsNotInItsListIsShownAndKept)
{
    Open();
    DisplayFontName = u"Comic Sans MS"_s;
    InputEncoding = u"koi8-r"_s;
    OutputStyle.clear();
    SettingsF& dialog = Dialog();
    EXPECT_EQ(dialog.FontsL->currentText(), u"Comic Sans MS"_s);
    EXPECT_EQ(dialog.InputEncodingL->currentText(), u"koi8-r"_s);
    Push(dialog.DoneB);
    EXPECT_EQ(DisplayFontName, u"Comic Sans MS"_s);
    EXPECT_EQ(InputEncoding, u"koi8-r"_s);
    EXPECT_EQ(OutputStyle, QString());
}

TEST_F(SettingsFTest, TheColourButtonsAndPanelsShowTheirColours)
{
    Open();
    SettingsF& dialog = Dialog();
    const auto shown = [](const QPushButton* button) {
        return button->icon().pixmap(button->iconSize()).toImage().pixelColor(10, 6);
    };
    EXPECT_EQ(shown(dialog.TagColorP), QColor(0, 0, 255));
    EXPECT_EQ(dialog.TagColorP1->palette().color(QPalette::Window), QColor(0, 0, 255));
    TypeInto(dialog.TagColorT, u"#00FF00"_s);
    EXPECT_EQ(shown(dialog.TagColorP), QColor(0, 255, 0));
    EXPECT_EQ(dialog.TagColorP1->palette().color(QPalette::Window), QColor(0, 255, 0));
    TypeInto(dialog.TagColorT, u"no colour"_s);
    EXPECT_EQ(shown(dialog.TagColorP).alpha(), 0);
}

TEST_F(SettingsFTest, AFontThatTheSystemLacksIsShownWithItsReplacement)
{
    Open();
    SettingsF& dialog = Dialog();
    for (int row = 0; row < dialog.FontsL->count(); ++row) {
        dialog.FontsL->setCurrentIndex(row);
        QFont font;
        font.setFamilies({dialog.FontsL->currentText()});
        const QString family = QFontInfo(font).family();
        const bool same = family.compare(dialog.FontsL->currentText(), Qt::CaseInsensitive) == 0;
        EXPECT_EQ(dialog.ShownFontL->text(), same ? QString() : u"shown as "_s + family);
        const QString inList = FontListDelegate().displayText(dialog.FontsL->currentText(), QLocale());
        EXPECT_EQ(inList.contains(family), true) << inList.toStdString();
    }
}

TEST_F(SettingsFTest, TheTwoButtonsWithoutAnActionAreDisabled)
{
    Open();
    EXPECT_FALSE(Dialog().SetColorsB->isEnabled());
    EXPECT_FALSE(Dialog().SetFontB->isEnabled());
}

TEST_F(SettingsFTest, TheSchemaButtonShowsTheListOfSchemas)
{
    Open();
    Push(Dialog().SchemaB);
    const auto* list = form->findChild<QWidget*>(u"SchemasF"_s);
    ASSERT_TRUE(list);
    EXPECT_TRUE(list->isVisible());
}

TEST_F(SettingsFTest, TheTagListButtonIsEnabledExactlyWhenItsWindowExists)
{
    Open();
    EXPECT_EQ(Dialog().TreeTagsB->isEnabled(), ProcedureOf(Command::InLineTags) != nullptr);
    if (!Dialog().TreeTagsB->isEnabled())
        return;
    const auto windows = [] { return QApplication::topLevelWidgets().size(); };
    const qsizetype before = windows();
    Push(Dialog().TreeTagsB);
    EXPECT_GT(windows(), before);
}

TEST_F(SettingsFTest, OpeningItTwiceShowsOneDialog)
{
    Open();
    Dialog();
    Key(Qt::Key_F9);
    form->Entry("uSettings")->trigger();
    EXPECT_EQ(form->findChildren<SettingsF*>().size(), 1);
}

// ---------------------------------------------------------------- done, reload, default, delete

TEST_F(SettingsFTest, DoneTakesTheValuesAndLeavesTheDisplayAsItIs)
{
    OpenBook();
    const QString page = Page();
    TypeInto(Dialog().FontSizeT, u"14pt"_s);
    EXPECT_EQ(DisplayFontSize, u"10pt"_s);
    Push(Dialog().DoneB);
    EXPECT_EQ(SettingsF::Existing(), nullptr);
    EXPECT_EQ(DisplayFontSize, u"14pt"_s);
    EXPECT_EQ(Page(), page);
    EXPECT_FALSE(FileExists(IniFilePath));
    LoadAndWait(CurrentBook);
    EXPECT_TRUE(Head().contains(u"font-size:14pt"_s));
}

TEST_F(SettingsFTest, ClosingByTheSystemButtonOrEscapeDropsTheChanges)
{
    Open();
    TypeInto(Dialog().FontSizeT, u"14pt"_s);
    Dialog().close();
    EXPECT_EQ(DisplayFontSize, u"10pt"_s);
    EXPECT_EQ(Dialog().FontSizeT->text(), u"10pt"_s);
    TypeInto(Dialog().FontSizeT, u"14pt"_s);
    QTest::keyClick(Dialog().FontSizeT, Qt::Key_Escape);
    EXPECT_EQ(SettingsF::Existing(), nullptr);
    EXPECT_EQ(DisplayFontSize, u"10pt"_s);
}

TEST_F(SettingsFTest, ReloadWithoutABookReportsThatTheFileIsNotFound)
{
    Open();
    TypeInto(Dialog().FontSizeT, u"14pt"_s);
    Push(Dialog().ReloadB);
    EXPECT_EQ(DisplayFontSize, u"14pt"_s);
    EXPECT_EQ(Message(), u"file not found"_s);
    EXPECT_EQ(SettingsF::Existing(), nullptr);
}

TEST_F(SettingsFTest, DefaultSetsAllDefaultsAtOnceAndShowsThePreview)
{
    Open();
    const SettingsValues defaults = ValuesOfSettings();
    TypeInto(Dialog().FontSizeT, u"20pt"_s);
    Set(Dialog().SoundsB, false);
    Set(Dialog().PreviewOnChangeB, false);
    Choose(Dialog().OutputStyleL, u"compact"_s);
    Dialog().ReadSettingsControls();
    LastSaveFolder = u"/elsewhere"_s;
    SchemaFile = workplace.Path(u"none.xsd"_s);
    form->ValidateOptL->setCurrentIndex(1);
    PreviewF::Unload();

    Push(Dialog().DefaultB);
    EXPECT_EQ(ValuesOfSettings(), defaults);
    EXPECT_EQ(Dialog().values(), defaults);
    EXPECT_EQ(LastSaveFolder, u"c:\\"_s);
    EXPECT_EQ(SchemaFile, SchemasFolder + u"/FictionBook.xsd"_s);
    EXPECT_EQ(ValidateOption, u"schema"_s);
    EXPECT_EQ(form->ValidateOptL->currentText(), u"schema"_s);
    EXPECT_EQ(form->SchemaFileL->text(), u"FictionBook.xsd"_s);
    EXPECT_TRUE(PreviewIsVisible());
}

TEST_F(SettingsFTest, DefaultAndThenTheSystemButtonLeaveTheDefaults)
{
    Open();
    DisplayFontSize = u"20pt"_s;
    NodeShift = 9;
    Push(Dialog().DefaultB);
    Dialog().close();
    EXPECT_EQ(DisplayFontSize, u"10pt"_s);
    EXPECT_EQ(NodeShift, 5);
}

TEST_F(SettingsFTest, DeleteIniDeletesTheFileWithoutAQuestionAndReloadsTheForm)
{
    OpenBook();
    DisplayFontSize = u"14pt"_s;
    ASSERT_TRUE(WriteSettings({0, 0, 15'000, 9'000}));
    Push(Dialog().DeleteIniFile);
    EXPECT_FALSE(FileExists(IniFilePath));
    EXPECT_TRUE(boxTexts.isEmpty());
    EXPECT_EQ(SettingsF::Existing(), nullptr);
    EXPECT_TRUE(WaitFor([this] { return View().location() == EmptyPageFile; }));
    // The variables stay, and the program's end writes them again.
    EXPECT_EQ(DisplayFontSize, u"14pt"_s);
    form->close();
    EXPECT_TRUE(FileExists(IniFilePath));
}

TEST_F(SettingsFTest, ClosingTheMainWindowClosesTheDialogAndItsWindows)
{
    Open();
    Push(Dialog().PreviewB);
    Push(Dialog().ForeColorP);
    ASSERT_TRUE(PreviewIsVisible());
    ASSERT_TRUE(WaitFor([] { return FileExists(SamplePageFile()); }));
    form->close();
    EXPECT_EQ(SettingsF::Existing(), nullptr);
    EXPECT_EQ(PreviewF::Existing(), nullptr);
    EXPECT_FALSE(FileExists(SamplePageFile()));
    EXPECT_EQ(endCount, 1);
}

// ---------------------------------------------------------------- every control's effect on the page

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

// ---------------------------------------------------------------- preview

TEST_F(SettingsFTest, ThePreviewShowsTheSampleWithWhatTheControlsHold)
{
    Open();
    Push(Dialog().PreviewB);
    ASSERT_TRUE(PreviewShows(u"Глава первая"_s));
    EXPECT_EQ(Preview()->windowTitle(), u" SampleForPreview.fb2"_s);
    EXPECT_TRUE(PreviewShows(u"Chapter two"_s));
    TypeInto(Dialog().FontSizeT, u"17pt"_s);
    EXPECT_TRUE(PreviewShows(u"font-size:17pt"_s));
    Choose(Dialog().FontsL, u"Arial"_s);
    EXPECT_TRUE(PreviewShows(u"font-family:Arial"_s));
    Choose(Dialog().FontWeightL, u"bold"_s);
    EXPECT_TRUE(PreviewShows(u"font-weight:bold; text-align:left"_s));
    Choose(Dialog().TextAlignL, u"justify"_s);
    EXPECT_TRUE(PreviewShows(u"text-align:justify"_s));
    TypeInto(Dialog().LeftMarginT, u"21px"_s);
    EXPECT_TRUE(PreviewShows(u"margin-left:21px"_s));
    TypeInto(Dialog().RightMarginT, u"22px"_s);
    EXPECT_TRUE(PreviewShows(u"margin-right:22px"_s));
    TypeInto(Dialog().NodeShiftT, u"13PX"_s);
    EXPECT_TRUE(PreviewShows(u"MARGIN-LEFT: 13px"_s));
    Choose(Dialog().TagFontWeightL, u"normal"_s);
    EXPECT_TRUE(
        PreviewShows(u"span.t\r\n\t{font-family:Arial;\r\n\tfont-size:17pt;\r\n\tfont-weight:normal"_s));
    Set(Dialog().TagHighlightingB, false);
    EXPECT_TRUE(WaitFor([] { return !PreviewPage().contains(u"<SPAN class=t"_s); }));
    // The settings are unchanged.
    EXPECT_EQ(DisplayFontSize, u"10pt"_s);
    EXPECT_EQ(NodeShift, 5);
}

TEST_F(SettingsFTest, AChangeShowsThePreviewOnlyIfItFollowsChanges)
{
    Open();
    Set(Dialog().PreviewOnChangeB, false);
    TypeInto(Dialog().FontSizeT, u"17pt"_s);
    Choose(Dialog().FontsL, u"Arial"_s);
    EXPECT_EQ(Preview(), nullptr);
    Push(Dialog().PreviewB);
    EXPECT_TRUE(PreviewShows(u"font-size:17pt"_s));
    Preview()->close();
    Set(Dialog().PreviewOnChangeB, true);
    EXPECT_EQ(Preview(), nullptr);
    TypeInto(Dialog().FontSizeT, u"18pt"_s);
    EXPECT_TRUE(PreviewShows(u"font-size:18pt"_s));
}

TEST_F(SettingsFTest, FillingTheControlsShowsNoPreview)
{
    Open();
    DisplayFontSize = u"12pt"_s;
    DisplayFontName = u"Arial"_s;
    Dialog();
    QCoreApplication::processEvents();
    EXPECT_EQ(Preview(), nullptr);
    Dialog().SettingsLoading = 1;
    ShowFb2TextPreview(true);
    EXPECT_EQ(Preview(), nullptr);
}

TEST_F(SettingsFTest, ThePreviewLeavesTheFocusInTheField)
{
    Open();
    SettingsF& dialog = Dialog();
    TypeInto(dialog.FontSizeT, u"18pt"_s);
    ASSERT_TRUE(PreviewIsVisible());
    EXPECT_TRUE(dialog.FontSizeT->hasFocus());
    EXPECT_TRUE(Preview()->testAttribute(Qt::WA_ShowWithoutActivating));
}

TEST_F(SettingsFTest, AMissingSampleIsReportedInABox)
{
    Open();
    FileOperation(DeleteFileMode, SampleBookFile());
    Push(Dialog().PreviewB);
    EXPECT_EQ(boxTexts, QStringList{u"Preview file not found\r\n"_s + SampleBookFile()});
    EXPECT_FALSE(PreviewIsVisible());
    EXPECT_TRUE(Dialog().isVisible());
}

TEST_F(SettingsFTest, ThePreviewNeverTouchesTheOpenBook)
{
    OpenBook(CyrillicBook);
    PutCaret(PlaceOf(u"First"_s));
    Type(u"typed "_s);
    const auto state = [this] {
        return std::tuple(Page(), BinaryPart, CurrentBook, DisplayFile, WorkEncodingName, WorkCodePage,
                          FileEncodingName, XmlDeclaration, UndoSteps, BookUnchanged, form->windowTitle(),
                          Message(), Panel(1), Panel(3), View().location(), Document().selection());
    };
    const auto before = state();
    Push(Dialog().PreviewB);
    ASSERT_TRUE(PreviewShows(u"Глава первая"_s));
    TypeInto(Dialog().FontSizeT, u"18pt"_s);
    ASSERT_TRUE(PreviewShows(u"18pt"_s));
    EXPECT_EQ(state(), before);
    Dialog().close();
    EXPECT_EQ(state(), before);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(LineText(FindLine(u"First"_s)).contains(u"typed "_s));
}

TEST_F(SettingsFTest, ASampleThatIsNotWellFormedIsShownWithoutATree)
{
    Open();
    FileOperation(DeleteFileMode, SampleBookFile());
    workplace.Make(u"VMK Office/SampleForPreview.fb2"_s, "<FictionBook><body><p>Broken</body></FictionBook>");
    Push(Dialog().PreviewB);
    EXPECT_TRUE(PreviewShows(u"Broken"_s));
    EXPECT_EQ(boxTexts, QStringList{u"Namespace error. Tree view is skipped"_s});
    EXPECT_EQ(View().location(), EmptyPageFile);
}

TEST_F(SettingsFTest, ASampleWithADamagedBinaryPartEmptiesThePreviewAlone)
{
    OpenBook();
    const QString page = Page();
    FileOperation(DeleteFileMode, SampleBookFile());
    workplace.Make(u"VMK Office/SampleForPreview.fb2"_s,
                   "<FictionBook><body/><binary id=\"a\">AAAA</FictionBook>");
    Push(Dialog().PreviewB);
    EXPECT_EQ(boxTexts, QStringList{u"Cannot load file: bad binary part"_s});
    EXPECT_EQ(Preview()->windowTitle(), u"Cannot open file: bad binary part"_s);
    EXPECT_EQ(Page(), page);
}

TEST_F(SettingsFTest, ThePreviewsPageIsDeletedWithItsWindow)
{
    Open();
    Push(Dialog().PreviewB);
    EXPECT_TRUE(FileExists(SamplePageFile()));
    Preview()->close();
    EXPECT_FALSE(FileExists(SamplePageFile()));
    EXPECT_TRUE(Dialog().isVisible());
    Push(Dialog().PreviewB);
    EXPECT_TRUE(FileExists(SamplePageFile()));
    Dialog().close();
    EXPECT_FALSE(FileExists(SamplePageFile()));
    EXPECT_EQ(Preview(), nullptr);
}

TEST_F(SettingsFTest, ThePreviewIsReadOnly)
{
    Open();
    Push(Dialog().PreviewB);
    ASSERT_TRUE(PreviewShows(u"Chapter two"_s));
    DisplayView& view = *Preview()->FbPreview;
    EXPECT_FALSE(view.isEditable());
    const QString page = PreviewPage();
    QTest::keyClick(&view, Qt::Key_A);
    EXPECT_EQ(PreviewPage(), page);
    EXPECT_FALSE(view.Navigate(MakeBook(SmallBook)));
    EXPECT_EQ(view.location(), SamplePageFile());
    Preview()->resize(333, 222);
    EXPECT_EQ(view.geometry(), Preview()->rect());
}

TEST_F(SettingsFTest, ThePreviewKeepsItsScrollPositionAfterAChange)
{
    Open();
    Push(Dialog().PreviewB);
    ASSERT_TRUE(PreviewShows(u"Chapter two"_s));
    DisplayView& view = *Preview()->FbPreview;
    view.scroll(0, 150);
    TypeInto(Dialog().LeftMarginT, u"3px"_s);
    ASSERT_TRUE(PreviewShows(u"margin-left:3px"_s));
    EXPECT_EQ(view.scrollTop(), 150);
}

// ---------------------------------------------------------------- palette

namespace {

class ColorsF1Test : public SettingsFTest
{
protected:
    ColorsF1& Palette(QPushButton* button)
    {
        Push(button);
        auto* palette = Dialog().findChild<ColorsF1*>();
        EXPECT_TRUE(palette);
        EXPECT_TRUE(palette->isVisible());
        return *palette;
    }
    static void ClickCell(ColorsF1& palette, int cell, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(&palette, button, {}, ColorCell(cell).center());
    }
};

} // namespace

TEST_F(ColorsF1Test, AClickSetsTheFieldForWhichThePaletteWasOpened)
{
    Open();
    SettingsF& dialog = Dialog();
    struct Field
    {
        QPushButton* button;
        QLineEdit* text;
        QFrame* panel;
        const char* name;
    };
    const Field fields[]
        = {{dialog.ForeColorP, dialog.ForeColorT, dialog.ForeColorP1, "fore color"},
           {dialog.BackColorP, dialog.BackColorT, dialog.BackColorP1, "back color"},
           {dialog.TagColorP, dialog.TagColorT, dialog.TagColorP1, "tag color"},
           {dialog.AttrNameColorP, dialog.AttrNameColorT, dialog.AttrNameColorP1, "attr. color"},
           {dialog.AttrValColorP, dialog.AttrValColorT, dialog.AttrValColorP1, "value color"}};
    for (const Field& field : fields) {
        ColorsF1& palette = Palette(field.button);
        EXPECT_EQ(palette.windowTitle(), u" Set Colors"_s);
        EXPECT_EQ(palette.SetColorForB->text(), QLatin1StringView(field.name));
        const SettingsValues before = dialog.values();
        ClickCell(palette, 26);
        EXPECT_EQ(field.text->text(), u"#FF1493"_s);
        EXPECT_EQ(field.panel->palette().color(QPalette::Window), QColor(0xFF, 0x14, 0x93));
        EXPECT_TRUE(palette.isVisible());
        ClickCell(palette, 3);
        EXPECT_EQ(field.text->text(), u"#FFFF01"_s);
        // Nothing else has changed.
        field.text->setText(u"-"_s);
        SettingsValues after = dialog.values();
        SettingsValues expected = before;
        for (SettingsValues* values : {&after, &expected}) {
            QString* const texts[] = {&values->foreColor, &values->backColor, &values->tagColor,
                                      &values->attrNameColor, &values->attrValColor};
            *texts[&field - fields] = u"-"_s;
        }
        EXPECT_EQ(after, expected);
    }
}

TEST_F(ColorsF1Test, ItsCellsAreDrawnWithTheColoursOfTheFile)
{
    Open();
    ColorsF1& palette = Palette(Dialog().TagColorP);
    EXPECT_EQ(palette.width(), 168);
    EXPECT_GE(palette.height(), 245);
    const QImage picture = palette.grab().toImage();
    ColorTable table;
    table.read(ColorTableFile());
    for (int cell = 0; cell < ColorCellCount; ++cell)
        ASSERT_EQ(picture.pixelColor(ColorCell(cell).center()), QColor::fromRgb(table.color(cell))) << cell;
    EXPECT_GE(palette.SetColorForB->y(), 17 * 14);
}

TEST_F(ColorsF1Test, OtherButtonsAndPointsOutsideEveryCellDoNothing)
{
    Open();
    ColorsF1& palette = Palette(Dialog().TagColorP);
    ClickCell(palette, 26, Qt::RightButton);
    ClickCell(palette, 26, Qt::MiddleButton);
    QTest::mouseClick(&palette, Qt::LeftButton, {}, {50, 17 * 14 + 2});
    EXPECT_EQ(Dialog().TagColorT->text(), u"#0000FF"_s);
}

TEST_F(ColorsF1Test, APickedColourShowsInThePreviewIfItFollowsChanges)
{
    Open();
    ColorsF1& palette = Palette(Dialog().TagColorP);
    ClickCell(palette, 26);
    EXPECT_TRUE(PreviewShows(u"color:#FF1493"_s));
    Preview()->close();
    Set(Dialog().PreviewOnChangeB, false);
    ClickCell(palette, 25);
    EXPECT_EQ(Preview(), nullptr);
}

TEST_F(ColorsF1Test, TheArrowKeysChooseACellAndEnterTakesIt)
{
    Open();
    ColorsF1& palette = Palette(Dialog().TagColorP);
    QTest::keyClick(&palette, Qt::Key_Return);
    EXPECT_EQ(Dialog().TagColorT->text(), u"#0000FF"_s);
    QTest::keyClick(&palette, Qt::Key_Right);
    EXPECT_EQ(palette.currentCell(), 0);
    QTest::keyClick(&palette, Qt::Key_Left);
    QTest::keyClick(&palette, Qt::Key_Up);
    EXPECT_EQ(palette.currentCell(), 0);
    QTest::keyClick(&palette, Qt::Key_Down);
    QTest::keyClick(&palette, Qt::Key_Down);
    QTest::keyClick(&palette, Qt::Key_Right);
    QTest::keyClick(&palette, Qt::Key_Right);
    EXPECT_EQ(palette.currentCell(), 26);
    EXPECT_EQ(palette.accessibleDescription(), u"#FF1493"_s);
    QTest::keyClick(&palette, Qt::Key_Return);
    EXPECT_EQ(Dialog().TagColorT->text(), u"#FF1493"_s);
    QTest::keyClick(&palette, Qt::Key_End);
    EXPECT_EQ(palette.currentCell(), 203);
    QTest::keyClick(&palette, Qt::Key_Down);
    QTest::keyClick(&palette, Qt::Key_Right);
    EXPECT_EQ(palette.currentCell(), 203);
    QTest::keyClick(&palette, Qt::Key_Home);
    Push(palette.SetColorForB);
    EXPECT_EQ(Dialog().TagColorT->text(), u"#000000"_s);
    QTest::keyClick(&palette, Qt::Key_Escape);
    EXPECT_FALSE(palette.isVisible());
}

TEST_F(ColorsF1Test, ThePaletteIsClosedWithTheDialog)
{
    Open();
    const QPointer<ColorsF1> palette = &Palette(Dialog().TagColorP);
    Dialog().close();
    EXPECT_FALSE(palette && palette->isVisible());
}

} // namespace vmk
