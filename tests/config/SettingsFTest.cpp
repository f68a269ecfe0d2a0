#include "SettingsTest.h"

#include "ColorsF1.h"
#include "PreviewPage.h"
#include "ShownFont.h"

#include <QAbstractItemView>
#include <QGroupBox>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>

/// The controls and buttons of the settings dialog.
namespace vmk {

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
    // Half the screen: the frames scroll, the buttons remain visible.
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

TEST_F(SettingsFTest, DoneAppliesTheValuesAndDoesNotChangeTheDisplay)
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
    // The variables are unchanged, and the end of the program writes them again.
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

} // namespace vmk
