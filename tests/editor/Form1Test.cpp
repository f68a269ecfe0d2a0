#include "WindowTest.h"

#include "FileDrops.h"
#include "SettingsVariables.h"

#include <QScreen>
#include <QSettings>
#include <QToolButton>

/// The main window: menus, toolbar, controls, geometry, drops, start and end.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class Form1Test : public WindowTest
{
protected:
    /// One text for each entry: its name and caption, its accelerator, "(hidden)"; "-" for a separator that
    /// shows, "(-)" for a hidden one.
    static QStringList Listed(const QMenu& menu)
    {
        QStringList lines;
        for (const QAction* entry : menu.actions()) {
            if (entry->isSeparator()) {
                lines.append(entry->isVisible() ? u"-"_s : u"(-)"_s);
                continue;
            }
            QString line = entry->objectName() + u": "_s + entry->text();
            if (!entry->shortcut().isEmpty())
                line += u" ["_s + entry->shortcut().toString() + u']';
            lines.append(entry->isVisible() ? line : line + u" (hidden)"_s);
        }
        return lines;
    }

    QStringList Menu(const char* name) { return Listed(*form->findChild<QMenu*>(QLatin1StringView(name))); }
};

TEST_F(Form1Test, TheMenusAreInOrder)
{
    QStringList titles;
    for (const QAction* menu : form->menuBar()->actions())
        titles.append(menu->text());
    EXPECT_EQ(
        titles,
        (QStringList{u"File"_s, u"Edit"_s, u"Go"_s, u"Book"_s, u"Tools"_s, u"Configuration"_s, u"Help"_s}));
}

TEST_F(Form1Test, TheFileMenu)
{
    EXPECT_EQ(Menu("uFile"),
              (QStringList{u"uOpenFile: open (F3)"_s, u"uOpenLastFile: open last file"_s, u"-"_s,
                           u"uSaveFile: save (F4)"_s, u"uSaveFileAs: save as (F5)"_s, u"-"_s,
                           u"uSaveAndReload: save and reload"_s, u"-"_s, u"uExit: exit"_s}));
}

TEST_F(Form1Test, TheEditMenuWithItsHiddenEntries)
{
    EXPECT_EQ(Menu("uEdit"),
              (QStringList{u"uUndo: undo (Ctrl+Z)"_s,
                           u"uRedo: redo (Ctrl+Y)"_s,
                           u"-"_s,
                           u"uDelete: delete [Del]"_s,
                           u"uCut: cut (Ctrl+X, Shift+Del)"_s,
                           u"uCopy: copy (Ctrl+C, Ctrl+Ins)"_s,
                           u"uPaste: paste (Ctrl+V, Shift+Ins)"_s,
                           u"-"_s,
                           u"uCopyText: copy as text (Ctrl+T)"_s,
                           u"uPasteHtml: paste as html (Ctrl+H)"_s,
                           u"uPasteFromClipboard: paste from clipboard (hidden)"_s,
                           u"-"_s,
                           u"uRePaintSelection: re-paint selection (Esc)"_s,
                           u"uRightShift: right shift  (Tab)"_s,
                           u"uLeftShift: left shift  (Ctrl+Tab)"_s,
                           u"-"_s,
                           u"uInsertTextField: text field (hidden)"_s,
                           u"uInsertTagField: tag field (hidden)"_s,
                           u"uInsertTagAttributeField: attribute field (hidden)"_s,
                           u"uInsertTagAttributeValueField: value field (hidden)"_s,
                           u"(-)"_s,
                           u"uInsertNbsp: insert nbsp (Ctrl+Space)"_s,
                           u"-"_s,
                           u"uInsertTags: tag list [F7]"_s,
                           u"uInsertSpecialSymbols: insert special symbols"_s,
                           u"-"_s,
                           u"uBold: bold (Ctrl+B)"_s,
                           u"uItalic: italic (Ctrl+I)"_s,
                           u"uSuperscript: superscript"_s,
                           u"uSubscript: subscript"_s,
                           u"-"_s,
                           u"uLowerCase: lower case"_s,
                           u"uUpperCase: upper case"_s,
                           u"uProperCase: proper case"_s}));
}

TEST_F(Form1Test, TheOtherMenus)
{
    EXPECT_EQ(Menu("uGo"),
              (QStringList{u"uPreviousPosition: previous position"_s, u"uNextPosition: next position"_s}));
    EXPECT_EQ(Menu("uBook"),
              (QStringList{u"uValidate: validate [F8]"_s, u"-"_s,
                           u"uReadInHaaliReader: read in Haali Reader [F11]"_s, u"-"_s,
                           u"uShowSchema: show schemas list"_s, u"uLoadNewSchema: load new shema [F12]"_s,
                           u"uCheckForSchemaUpdates: check for schema updates"_s, u"-"_s,
                           u"uInLineTags: in-line tags"_s}));
    EXPECT_EQ(Menu("uTools"),
              (QStringList{u"uFindReplace: find/replace [F2]"_s, u"uBookCleaner: book cleaner [F6]"_s,
                           u"uHtmlFragmentEditor: html fragment editor"_s, u"-"_s,
                           u"uSpellCheck: spell check"_s, u"-"_s, u"uExtractAllImages: extract all images"_s,
                           u"uDeleteExtractedImages: delete extracted images"_s,
                           u"uShowBinaryList: binary list"_s}));
    EXPECT_EQ(Menu("uConfiguration"), (QStringList{u"uSettings: settings [F9]"_s, u"uToolbar: toolbar"_s}));
    EXPECT_EQ(Menu("uHelp"), (QStringList{u"uAbout: about"_s, u"uFictionBookCite: Fiction Book Portal"_s}));
}

TEST_F(Form1Test, TheContextMenuRepeatsTheEditMenu)
{
    EXPECT_EQ(Listed(*form->MnRightClick),
              (QStringList{u"Ed1_Delete: delete (Del)"_s,
                           u"Ed_Cut: cut (Ctrl+X, Shift+Del)"_s,
                           u"Ed2_Copy: copy (Ctrl+C, Ctrl+Ins)"_s,
                           u"Ed3_Paste: paste (Ctrl+V, Shift+Ins)"_s,
                           u"-"_s,
                           u"Ed_CopyText: copy as text (Ctrl+T)"_s,
                           u"Ed4_PasteHtml: paste as html (Ctrl+H)"_s,
                           u"Ed_PasteFromClipboard: paste from clipboard (hidden)"_s,
                           u"-"_s,
                           u"Ed_RePaintSelection: re-paint selection (Esc)"_s,
                           u"Ed_RightShift: right shift (Tab)"_s,
                           u"Ed_LeftShift: left shift (Ctrl+Tab)"_s,
                           u"-"_s,
                           u"Ed41_InsertTextField: text field (hidden)"_s,
                           u"Ed42_InsertTagField: tag field (hidden)"_s,
                           u"Ed43_InsertTagAttributeField: attribute field (hidden)"_s,
                           u"Ed44_InsertTagAttributeValueField: value field (hidden)"_s,
                           u"(-)"_s,
                           u"Ed5_InsertNbsp: insert nbsp (Ctrl+Space)"_s,
                           u"Ed6_InsertSpecialSymbols: insert special symbols"_s,
                           u"-"_s,
                           u"Ed_Bold: bold (Ctrl+B)"_s,
                           u"Ed_Italic: italic (Ctrl+I)"_s,
                           u"Ed_Superscript: superscript"_s,
                           u"Ed_Subscript: subscript"_s,
                           u"-"_s,
                           u"Ed7_LowerCase: lower case"_s,
                           u"Ed8_UpperCase: upper case"_s,
                           u"Ed9_ProperCase: proper case"_s,
                           u"-"_s,
                           u"Ed_GoToLink: goto bookmark"_s,
                           u"-"_s,
                           u"Ed_CheckId: check id"_s,
                           u"-"_s,
                           u"Ed_ShowImage: show image"_s,
                           u"Ed_RemoveImageResource: remove image resource"_s,
                           u"Ed_AddImageResource: add image resource"_s}));
    for (const char* name :
         {"Ed_GoToLink", "Ed_CheckId", "Ed_ShowImage", "Ed_RemoveImageResource", "Ed_AddImageResource"})
        EXPECT_FALSE(form->Entry(name)->isEnabled()) << name;
}

TEST_F(Form1Test, AnEntryIsEnabledExactlyWhenItsCommandIsThere)
{
    for (const auto& menu : MainMenu()) {
        for (const MenuEntry& row : menu.entries) {
            if (!row.disabled) {
                // Qt treats hidden entries as disabled; such an entry works when it is shown.
                form->Entry(row.name)->setVisible(true);
                EXPECT_EQ(form->Entry(row.name)->isEnabled(), ProcedureOf(row.command) != nullptr)
                    << row.name;
            }
        }
    }
    for (const ToolbarButton& row : ToolbarDesign())
        EXPECT_EQ(form->ToolbarAction(QLatin1StringView(row.key))->isEnabled(),
                  ProcedureOf(row.command) != nullptr)
            << row.key;
}

TEST_F(Form1Test, PasteFromClipboardDoesNothingEvenIfVisible)
{
    OpenBook();
    const QByteArray before = Document().savePage();
    QAction* entry = form->Entry("uPasteFromClipboard");
    entry->setVisible(true);
    entry->setEnabled(true);
    entry->trigger();
    EXPECT_EQ(Document().savePage(), before);
    EXPECT_TRUE(boxTexts.isEmpty());
}

TEST_F(Form1Test, TheToolbarHasItsKeysAndToolTips)
{
    QStringList buttons;
    for (const QAction* button : form->TB->actions()) {
        buttons.append(button->objectName() + u" | "_s + button->toolTip());
        EXPECT_FALSE(button->icon().isNull()) << button->objectName().toStdString();
    }
    EXPECT_EQ(buttons,
              (QStringList{u"open | open (F3)"_s, u"save | save (F4)"_s, u"save as | save as  (F5)"_s,
                           u"undo | undo (Ctrl+Z)"_s, u"redo | redo (Ctrl+Y)"_s,
                           u"previous position | previous position"_s, u"next position | next position"_s,
                           u"tag list | tag list (F7)"_s, u"re-paint selection | re-paint selection (Esc)"_s,
                           u"right shift | right shift"_s, u"left shift | left shift"_s,
                           u"find/replace | find/replace (F2)"_s, u"book cleaner | book cleaner (F6)"_s,
                           u"html fragment editor | html fragment editor"_s, u"spell check | spell check"_s,
                           u"settings | settings (F9)"_s, u"read in hr | read in Haali reader (F11)"_s,
                           u"validate | validate (F8)"_s, u"load new schema | load new schema (F12)"_s}));
}

TEST_F(Form1Test, TheTabKeyReachesEveryToolbarButtonByName)
{
    for (QAction* button : form->TB->actions()) {
        const QWidget* widget = form->TB->widgetForAction(button);
        EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus) << button->objectName().toStdString();
        EXPECT_EQ(static_cast<const QToolButton*>(widget)->text(), button->objectName());
    }
}

// ---------------------------------------------------------------- measures

TEST_F(Form1Test, TheBarsAreAtTheirDefinedPositions)
{
    Open();
    form->PlaceForm(150, 150, 15'000, 9'000);
    const float W = form->FormWidth();
    const float H = form->FormHeight();
    EXPECT_EQ(W, 15'000);
    EXPECT_EQ(H, 9'000);
    const float statusTop = H - CaptionHeight * 15 - 600 - 120;
    EXPECT_EQ(form->Status->geometry(), QRect(0, qRound(statusTop / 15), qRound((W + 200) / 15), 20));
    EXPECT_EQ(form->StatusMsg->geometry(),
              QRect(0, qRound((statusTop - 300) / 15), qRound((W + 200) / 15), 20));
    EXPECT_EQ(form->HTMLread->geometry(),
              QRect(0, 27, int(W / 15) - 10, qRound((H - CaptionHeight * 15 - 900 - 100 - 27 * 15) / 15)));
}

TEST_F(Form1Test, ThePanelsHaveTheirWidths)
{
    Open();
    form->PlaceForm(150, 150, 15'000, 9'000);
    EXPECT_EQ(form->Status->panelWidth(1), 15'000 - 4'000 - 1'500 - 600 - 1'000 - 200);
    EXPECT_EQ(form->Status->panelWidth(2), 4'000);
    EXPECT_EQ(form->Status->panelWidth(3), 1'500);
    EXPECT_EQ(form->Status->panelWidth(4), 600);
    EXPECT_EQ(form->Status->panelWidth(5), 1'000);
    EXPECT_EQ(form->StatusMsg->panelWidth(1), 15'000 - 130);
}

TEST_F(Form1Test, TheWindowIsNotLetShrinkBelow620By300Pixels)
{
    Open();
    form->resize(10, 10);
    EXPECT_EQ(form->FormWidth(), 620 * 15);
    EXPECT_EQ(form->FormHeight(), 300 * 15);
    EXPECT_EQ(MainFormMinWidth, 620 * 15);
    EXPECT_EQ(MainFormMinHeight, 300 * 15);
    EXPECT_GT(form->SchemaFileL->width(), 0);
}

TEST_F(Form1Test, TheWindowWorksAt4K)
{
    Open();
    form->resize(3840, 2160);
    EXPECT_EQ(form->HTMLread->width(), form->centralWidget()->width() - 2);
    EXPECT_EQ(form->Status->y() + form->Status->height(), form->centralWidget()->height());
}

TEST_F(Form1Test, TheSchemaControlsFollowTheLastButton)
{
    Open();
    const QRect last = form->TB->widgetForAction(form->TB->actions().last())->geometry();
    EXPECT_EQ(form->ValidateOptL->pos(), QPoint(last.x() + last.width() + 2, last.y()));
    EXPECT_EQ(form->SchemaFileL->x(), form->ValidateOptL->x() + form->ValidateOptL->width() + 2);
    EXPECT_EQ(form->SchemaFileL->y(), form->ValidateOptL->y());
    EXPECT_EQ(form->SchemaFileL->width(),
              int(form->FormWidth() / 15) - (form->ValidateOptL->x() + form->ValidateOptL->width()) - 12);
}

TEST_F(Form1Test, ScrollingByAResizeIsNotRemembered)
{
    Open();
    SkipPositionRemember = false;
    form->resize(form->size() + QSize(50, 50));
    EXPECT_TRUE(SkipPositionRemember);
}

TEST_F(Form1Test, AMinimisedWindowIgnoresResizes)
{
    Open();
    form->showMinimized();
    SkipPositionRemember = false;
    TemporalBookmarkSet = false;
    QResizeEvent event(QSize(800, 600), form->size());
    QCoreApplication::sendEvent(form.get(), &event);
    EXPECT_FALSE(SkipPositionRemember);
    EXPECT_FALSE(TemporalBookmarkSet);
}

// ---------------------------------------------------------------- schema field

TEST_F(Form1Test, TheSchemaFieldShowsTheFilesName)
{
    Open();
    EXPECT_EQ(form->ValidateOptL->currentText(), u"schema"_s);
    EXPECT_EQ(form->SchemaFileL->text(), u"FictionBook.xsd"_s);
    EXPECT_FALSE(form->SchemaFileL->isReadOnly());
    EXPECT_TRUE(form->SchemaFileL->isEnabled());
    EXPECT_EQ(form->SchemaFileL->palette().color(QPalette::Text), QColor(Qt::black));
}

TEST_F(Form1Test, ChoosingTheNamespaceBlanksTheSchemaField)
{
    Open();
    form->ValidateOptL->setCurrentText(u"namespace!"_s);
    EXPECT_EQ(form->SchemaFileL->text(), QString());
    EXPECT_FALSE(form->SchemaFileL->isEnabled());
    EXPECT_EQ(form->SchemaFileL->palette().color(QPalette::Base),
              QApplication::palette(form->SchemaFileL).color(QPalette::Button));
    EXPECT_EQ(ValidateOption, u"namespace!"_s);
    form->ValidateOptL->setCurrentText(u"schema"_s);
    EXPECT_EQ(form->SchemaFileL->text(), u"FictionBook.xsd"_s);
    EXPECT_TRUE(form->SchemaFileL->isEnabled());
}

TEST_F(Form1Test, AMissingSchemaIsReportedInRed)
{
    Open();
    SchemaFile = workplace.Path(u"nowhere.xsd"_s);
    form->RefreshSchemaField();
    EXPECT_EQ(form->SchemaFileL->text(),
              u"Schema file not found. Only namespace validatioon is available."_s);
    EXPECT_TRUE(form->SchemaFileL->isReadOnly());
    EXPECT_TRUE(form->SchemaFileL->isEnabled());
    EXPECT_EQ(form->SchemaFileL->palette().color(QPalette::Text), QColor(255, 0, 0));
}

TEST_F(Form1Test, TheSavedModeIsSelectedInTheList)
{
    ValidateOption = u"namespace!"_s;
    form = nullptr;
    form = std::make_unique<Form1>();
    Open();
    EXPECT_EQ(form->ValidateOptL->currentText(), u"namespace!"_s);
    EXPECT_FALSE(form->SchemaFileL->isEnabled());
    EXPECT_EQ(form->ValidateOptL->accessibleName(), u"validate against"_s);
}

TEST_F(Form1Test, ASchemaIsChosenByDialog)
{
    Open();
    form->ValidateOptL->setCurrentText(u"namespace!"_s);
    workplace.Make(u"Mine.xsd"_s, "<xs:schema/>");
    dialogAnswer = workplace.Path(u"Mine.xsd"_s);
    form->Entry("uLoadNewSchema")->trigger();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].title, u"Load new Fiction Book Schema"_s);
    EXPECT_EQ(requests[0].filter, u"Fiction Book Shemes Files (*.xsd)|*.xsd|"_s);
    EXPECT_EQ(requests[0].fileName, u"FictionBook"_s);
    EXPECT_EQ(SchemaFile, dialogAnswer);
    EXPECT_EQ(form->ValidateOptL->currentText(), u"schema"_s);
    EXPECT_EQ(form->SchemaFileL->text(), u"Mine.xsd"_s);
}

TEST_F(Form1Test, SelectingAFileThatIsNoSchemaChangesNothing)
{
    Open();
    const QString before = SchemaFile;
    form->ValidateOptL->setCurrentText(u"namespace!"_s);
    workplace.Make(u"Mine.txt"_s, "text");
    dialogAnswer = workplace.Path(u"Mine.txt"_s);
    form->LoadNewFbSchema_Dialog();
    dialogAnswer.clear();
    form->LoadNewFbSchema_Dialog();
    EXPECT_EQ(SchemaFile, before);
    EXPECT_EQ(form->ValidateOptL->currentText(), u"namespace!"_s);
}

TEST_F(Form1Test, ASchemaIsDroppedOnItsField)
{
    Open();
    workplace.Make(u"Mine.XSD"_s, "<xs:schema/>");
    workplace.Make(u"Other.txt"_s, "");
    EXPECT_TRUE(DropFile(*form->SchemaFileL, workplace.Path(u"Other.txt"_s)));
    EXPECT_EQ(form->SchemaFileL->text(), u"FictionBook.xsd"_s);
    form->ValidateOptL->setCurrentText(u"namespace!"_s);
    form->SchemaFileL->setEnabled(true);
    EXPECT_TRUE(DropFile(*form->SchemaFileL, workplace.Path(u"Mine.XSD"_s)));
    EXPECT_EQ(SchemaFile, workplace.Path(u"Mine.XSD"_s));
    EXPECT_EQ(form->ValidateOptL->currentText(), u"schema"_s);
    EXPECT_EQ(form->SchemaFileL->text(), u"Mine.XSD"_s);
}

TEST_F(Form1Test, ASchemaDroppedOnItsDisabledFieldEnablesIt)
{
    Open();
    workplace.Make(u"Mine.xsd"_s, "<xs:schema/>");
    form->ValidateOptL->setCurrentText(u"namespace!"_s);
    ASSERT_FALSE(form->SchemaFileL->isEnabled());
    // A disabled control passes the drag on to the window.
    const QPoint place = form->SchemaFileL->mapTo(form.get(), form->SchemaFileL->rect().center());
    EXPECT_TRUE(DropUrls(*form, {QUrl::fromLocalFile(workplace.Path(u"Mine.xsd"_s))}, place));
    EXPECT_EQ(SchemaFile, workplace.Path(u"Mine.xsd"_s));
    EXPECT_EQ(form->ValidateOptL->currentText(), u"schema"_s);
    EXPECT_TRUE(form->SchemaFileL->isEnabled());
}

TEST_F(Form1Test, TheToolTipOfTheSchemaFieldShowsTheCompletePath)
{
    Open();
    EXPECT_EQ(form->SchemaFileL->toolTip(), SchemaFile);
    SchemaFile = workplace.Path(u"nowhere.xsd"_s);
    form->RefreshSchemaField();
    EXPECT_EQ(form->SchemaFileL->toolTip(), form->SchemaFileL->text());
    form->ValidateOptL->setCurrentText(u"namespace!"_s);
    EXPECT_EQ(form->SchemaFileL->toolTip(), QString());
}

// ---------------------------------------------------------------- start and stop

TEST_F(Form1Test, TheWindowOpensAtItsSavedRectangle)
{
    roomy = false;
    MainFormLeft = 600;
    MainFormTop = 450;
    MainFormWidth = 12'000;
    MainFormHeight = 8'100;
    Open();
    EXPECT_EQ(form->pos(), QPoint(40, 30));
    EXPECT_EQ(form->FormWidth(), 12'000);
    EXPECT_EQ(form->FormHeight(), 8'100);
    EXPECT_EQ(Message(), u"ready"_s);
    EXPECT_TRUE(FolderExists(TempFolder));
}

TEST_F(Form1Test, AWindowSavedOnARemovedScreenOpensOnTheMainOne)
{
    roomy = false;
    MainFormLeft = 150'000;
    MainFormTop = 60'000;
    Open();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(form->pos(), screen.topLeft());
    // A window that is still visible keeps its position.
    form->PlaceForm(float(screen.right() - 100) * 15, 600, 12'000, 9'000);
    EXPECT_EQ(form->pos(), QPoint(screen.right() - 100, 40));
    form->PlaceForm(-300, -300, 12'000, 9'000);
    EXPECT_EQ(form->pos(), QPoint(-20, -20));
}

TEST_F(Form1Test, AFirstStartShowsTheWelcomePage)
{
    FirstStart = true;
    form->Load();
    ASSERT_TRUE(WaitFor([this] { return FindLine(u"Vellumark"_s) >= 0; }));
    EXPECT_EQ(View().location(), WelcomeFile);
    EXPECT_GE(FindLine(u"!!!БУДЬТЕ БДИТЕЛЬНЫ - ВМК НЕ ДРЕМЛЕТ!!!"_s), 0);
    EXPECT_EQ(View().designMode(), u"Off"_s);
    EXPECT_FALSE(FirstStart);
}

TEST_F(Form1Test, AFailedValidationOpensNoPage)
{
    ValidateAfterLoad = true;
    const QString before = View().location();
    form->Load();
    QTest::qWait(50);
    EXPECT_EQ(View().location(), before);
    ValidateAfterLoad = false;
}

TEST_F(Form1Test, ClosingWritesTheSettingsAndRemovesTheTemporaryTree)
{
    OpenBook();
    FileOperation(DeleteFileMode, IniFilePath);
    const float width = form->FormWidth();
    form->RunCommand(Command::Exit);
    EXPECT_EQ(endCount, 1);
    EXPECT_FALSE(FolderExists(TempFolder));
    EXPECT_FALSE(FileExists(EmptyPageFile));
    ASSERT_TRUE(FileExists(IniFilePath));
    const QString book = CurrentBook;
    ReadSettings(false);
    EXPECT_EQ(LastFile, book);
    EXPECT_EQ(MainFormWidth, width);
}

TEST_F(Form1Test, ClosingWithEditsSavesNothingAndAsksNothing)
{
    OpenBook();
    PutCaret(PlaceOf(u"First"_s));
    Type(u"x"_s);
    EXPECT_FALSE(BookUnchanged);
    form->close();
    EXPECT_TRUE(boxTexts.isEmpty());
    EXPECT_EQ(ReadFileText(CurrentBook), SmallBook);
}

// ---------------------------------------------------------------- menus that open

TEST_F(Form1Test, OpenLastFileIsEnabledOnlyWhileTheFileExists)
{
    Open();
    QMenu* menu = form->findChild<QMenu*>(u"uFile"_s);
    LastFile = workplace.Path(u"gone.fb2"_s);
    Q_EMIT menu->aboutToShow();
    EXPECT_FALSE(form->Entry("uOpenLastFile")->isEnabled());
    LastFile = MakeBook(SmallBook);
    Q_EMIT menu->aboutToShow();
    EXPECT_TRUE(form->Entry("uOpenLastFile")->isEnabled());
}

TEST_F(Form1Test, AMissingLastFileIsReportedInABox)
{
    Open();
    LastFile = workplace.Path(u"gone.fb2"_s);
    form->OpenLastBook();
    EXPECT_EQ(boxTexts, QStringList{u"last file not found"_s});
}

TEST_F(Form1Test, ThePortalPagesOpenInTheSystemsBrowser)
{
    Open();
    form->Entry("uCheckForSchemaUpdates")->trigger();
    form->Entry("uFictionBookCite")->trigger();
    ASSERT_EQ(opened.size(), 2);
    EXPECT_TRUE(opened[0].endsWith(u"/ru/programs/redact.html"_s));
    EXPECT_TRUE(opened[1].endsWith(u"/ru/news/"_s));
}

TEST_F(Form1Test, TheTimersHaveTheirIntervalsAndAreStopped)
{
    Open();
    const std::pair<const QTimer*, int> timers[] = {
        {form->TimerDesignMode, 50}, {form->TimerValidate, 50},      {form->TimerWBDrop, 200},
        {form->TimerGetOffset, 10},  {form->TimerTrOnMouseDown, 10}, {form->TimerTripleClick, 500},
        {form->TimerPopUp, 20},      {form->TimerScroll, 10},        {form->TmpBookmarkTimer, 50},
        {form->TimerHtwFocus, 50},   {form->TimerColor, 50},
    };
    for (const auto& [timer, interval] : timers) {
        EXPECT_EQ(timer->interval(), interval) << timer->objectName().toStdString();
        EXPECT_EQ(timer->isSingleShot(), timer != form->TimerScroll) << timer->objectName().toStdString();
    }
    for (const QTimer* idle : {form->TimerHtwFocus, form->TimerShiftClick, form->TimerColor})
        EXPECT_FALSE(idle->isActive());
}

} // namespace
} // namespace vmk
