#include "ActionInfoF.h"
#include "CodePages.h"
#include "EditHtmlWbF.h"
#include "FbTagListF.h"
#include "InLineTagsF.h"
#include "ListFunctions.h"
#include "SettingsVariables.h"
#include "SpecialCharactersF.h"
#include "VMKAboutF.h"
#include "WindowTest.h"

#include <QAccessible>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

/// The windows of the tag lists, the special symbols, the fragment editor and the small forms.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class ToolWindows : public WindowTest
{
protected:
    ToolWindows() { qputenv("VELLUMARK_CODEPAGE", "1251"); }
    ~ToolWindows() override { qunsetenv("VELLUMARK_CODEPAGE"); }

    /// The toolkit's own test takes a window for active when its owner is.
    static bool HasKeyboard(const QWidget& window)
    {
        return WaitFor([&] { return QApplication::activeWindow() == &window; });
    }
    /// Opens a form by its entry and waits until it has the keyboard.
    template <typename Form>
    Form& OpenBy(const char* entry)
    {
        EXPECT_TRUE(form->Entry(entry)->isEnabled()) << entry;
        form->Entry(entry)->trigger();
        Form& tool = InstanceOf<Form>();
        EXPECT_TRUE(HasKeyboard(tool)) << entry;
        return tool;
    }
    /// Goes to the main window and back, as a user does who selects something there.
    void Leave()
    {
        form->activateWindow();
        EXPECT_TRUE(HasKeyboard(*form));
    }
    static void Return(QWidget& tool)
    {
        tool.activateWindow();
        EXPECT_TRUE(HasKeyboard(tool));
    }
    static void Click(QAbstractButton* button) { QTest::mouseClick(button, Qt::LeftButton); }
    static QStringList Rows(const QListWidget& list)
    {
        QStringList rows;
        for (int row = 0; row < list.count(); ++row)
            rows.append(list.item(row)->text());
        return rows;
    }
    static void ClickRow(QListWidget& list, int row, bool twice = false)
    {
        list.scrollToItem(list.item(row));
        const QPoint at = list.visualItemRect(list.item(row)).center();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, at);
        if (twice)
            QTest::mouseDClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, at);
    }
    void SelectText(const QString& text)
    {
        const Position at = PlaceOf(text);
        Document().setSelection(at, {at.line, at.offset + int(text.size())});
    }
    QString LineWith(const QString& text) { return LineText(std::max(0, FindLine(text))); }
};

} // namespace

// ---------------------------------------------------------------- all windows

TEST_F(ToolWindows, EscapeClosesEachAndTheEntryOpensItAgain)
{
    OpenBook();
    const auto check = [this](auto& tool, const char* entry) {
        EXPECT_FALSE(tool.isModal()) << entry;
        QTest::keyClick(tool.focusWidget() ? tool.focusWidget() : &tool, Qt::Key_Escape);
        EXPECT_FALSE(tool.isVisible()) << entry;
        form->Entry(entry)->trigger();
        EXPECT_TRUE(tool.isVisible()) << entry;
        tool.close();
    };
    check(OpenBy<InLineTagsF>("uInLineTags"), "uInLineTags");
    check(OpenBy<FbTagListF>("uInsertTags"), "uInsertTags");
    check(OpenBy<SpecialCharactersF>("uInsertSpecialSymbols"), "uInsertSpecialSymbols");
    check(OpenBy<SpecialCharactersF>("Ed6_InsertSpecialSymbols"), "Ed6_InsertSpecialSymbols");
    auto& editor = OpenBy<EditHtmlWbF>("uHtmlFragmentEditor");
    editor.HtmlEditor->setFocus();
    check(editor, "uHtmlFragmentEditor");
    check(OpenBy<VMKAboutF>("uAbout"), "uAbout");
    EXPECT_TRUE(form->ToolbarAction(u"tag list"_s)->isEnabled());
    EXPECT_TRUE(form->ToolbarAction(u"html fragment editor"_s)->isEnabled());
}

TEST_F(ToolWindows, TheFormsHaveTheirTitles)
{
    Open();
    EXPECT_EQ(InstanceOf<InLineTagsF>().windowTitle(), u" InLine Tags"_s);
    EXPECT_EQ(InstanceOf<FbTagListF>().windowTitle(), u" Fiction Book Tags"_s);
    EXPECT_EQ(InstanceOf<SpecialCharactersF>().windowTitle(), u" special symbols"_s);
    EXPECT_EQ(InstanceOf<EditHtmlWbF>().windowTitle(), u" HTML Fragment Editor"_s);
    EXPECT_EQ(InstanceOf<VMKAboutF>().windowTitle(), u" About VMK"_s);
}

TEST_F(ToolWindows, EveryControlHasANameForScreenReaders)
{
    Open();
    for (QWidget* tool :
         std::initializer_list<QWidget*>{&InstanceOf<InLineTagsF>(), &InstanceOf<FbTagListF>(),
                                         &InstanceOf<SpecialCharactersF>(), &InstanceOf<EditHtmlWbF>()}) {
        for (const QWidget* control : tool->findChildren<QWidget*>()) {
            const bool isControl
                = control->focusPolicy() != Qt::NoFocus && !control->objectName().startsWith(u"qt_");
            if (!isControl)
                continue;
            const QAccessibleInterface* accessible
                = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(control));
            EXPECT_NE(accessible->text(QAccessible::Name), QString())
                << tool->objectName().toStdString() << ' ' << control->objectName().toStdString();
        }
    }
}

// ---------------------------------------------------------------- in-line tags

TEST_F(ToolWindows, AnInLineTagIsAddedByButtonAndByEnter)
{
    Open();
    auto& tool = OpenBy<InLineTagsF>("uInLineTags");
    EXPECT_EQ(tool.InLineListL->count(), 14);
    EXPECT_FALSE(tool.AddTextT->isEnabled());
    Click(tool.AddB);
    EXPECT_TRUE(tool.AddTextT->isEnabled());
    EXPECT_TRUE(tool.AddTextT->hasFocus());
    QTest::keyClicks(tool.AddTextT, u" <Code> "_s);
    Click(tool.AddB);
    EXPECT_TRUE(tool.AddTextT->isEnabled());
    EXPECT_EQ(tool.AddTextT->text(), QString());
    QTest::keyClicks(tool.AddTextT, u"code"_s);
    QTest::keyClick(tool.AddTextT, Qt::Key_Return);
    EXPECT_FALSE(tool.AddTextT->isEnabled());
    EXPECT_EQ(Rows(*tool.InLineListL).mid(14), QStringList{u"<code>"_s});
    Click(tool.AddB);
    QTest::keyClicks(tool.AddTextT, u"  "_s);
    Click(tool.AddB);
    EXPECT_EQ(tool.InLineListL->count(), 15);
    ClickRow(*tool.InLineListL, 0);
    EXPECT_FALSE(tool.AddTextT->isEnabled());

    Click(tool.DoneB);
    EXPECT_FALSE(tool.isVisible());
    EXPECT_EQ(InLineTags.value(14), u"<code>"_s);
    EXPECT_EQ(InLineTagCount, 15);
    EXPECT_TRUE(ReadFileText(InLineTagsFile).ends_with("<sup>\r\n<code>\r\n"));
}

TEST_F(ToolWindows, ClosingInAnotherWayDropsTheChangesButNotTheDefault)
{
    Open();
    auto& tool = OpenBy<InLineTagsF>("uInLineTags");
    ClickRow(*tool.InLineListL, 0);
    Click(tool.RemoveB);
    EXPECT_EQ(tool.InLineListL->count(), 13);
    tool.close();
    EXPECT_EQ(InLineTagCount, 14);
    form->Entry("uInLineTags")->trigger();
    EXPECT_EQ(tool.InLineListL->count(), 14);

    EXPECT_TRUE(WriteFileText(InLineTagsFile, "<x>\r\n<y>\r\n"));
    ReadInLineTags();
    tool.close();
    form->Entry("uInLineTags")->trigger();
    EXPECT_EQ(Rows(*tool.InLineListL), (QStringList{u"<x>"_s, u"<y>"_s}));
    Click(tool.DefaultB);
    EXPECT_EQ(tool.InLineListL->count(), 14);
    tool.close();
    EXPECT_EQ(InLineTagCount, 14);
    EXPECT_EQ(ReadTagFile(InLineTagsFile).value(0), u"</a>"_s);
}

TEST_F(ToolWindows, AnEmptyInLineListLeavesNoFile)
{
    Open();
    auto& tool = OpenBy<InLineTagsF>("uInLineTags");
    tool.InLineListL->selectAll();
    Click(tool.RemoveB);
    Click(tool.DoneB);
    EXPECT_FALSE(FileExists(InLineTagsFile));
    EXPECT_EQ(InLineTagCount, 0);
    ReadInLineTags();
    EXPECT_EQ(InLineTags, QStringList{QString()});
}

TEST_F(ToolWindows, AnInLineListThatCannotBeWrittenStaysInItsWindow)
{
    Open();
    auto& tool = OpenBy<InLineTagsF>("uInLineTags");
    FileOperation(DeleteFileMode, InLineTagsFile);
    MakeFolder(InLineTagsFile);
    ClickRow(*tool.InLineListL, 0);
    Click(tool.RemoveB);
    Click(tool.DoneB);
    EXPECT_EQ(boxTexts, QStringList{u"cannot write file: "_s + InLineTagsFile});
    EXPECT_TRUE(tool.isVisible());
    EXPECT_EQ(tool.InLineListL->count(), 13);
    EXPECT_EQ(InLineTagCount, 13);
}

TEST_F(ToolWindows, AClickBelowTheInLineTagsEndsTheInput)
{
    Open();
    auto& tool = OpenBy<InLineTagsF>("uInLineTags");
    tool.InLineListL->clear();
    Click(tool.AddB);
    EXPECT_TRUE(tool.AddTextT->isEnabled());
    QTest::mouseClick(tool.InLineListL->viewport(), Qt::LeftButton);
    EXPECT_FALSE(tool.AddTextT->isEnabled());
}

TEST_F(ToolWindows, TagsThatTheCodePageLacksAreKept)
{
    Open();
    auto& tool = OpenBy<InLineTagsF>("uInLineTags");
    Click(tool.AddB);
    tool.AddTextT->setText(u"日本"_s);
    Click(tool.AddB);
    Click(tool.DoneB);
    ReadInLineTags();
    EXPECT_EQ(InLineTags.value(14), u"<日本>"_s);
}

// ---------------------------------------------------------------- tags to insert

TEST_F(ToolWindows, TheTagListIsEditedAndWritten)
{
    Open();
    auto& tool = OpenBy<FbTagListF>("uInsertTags");
    EXPECT_EQ(Rows(*tool.TagListL), DefaultFbTags());
    EXPECT_TRUE(tool.InsertB->hasFocus());
    tool.AddTextT->setFocus();
    QTest::keyClicks(tool.AddTextT, u" <Cite id=\"x\"> "_s);
    QTest::keyClick(tool.AddTextT, Qt::Key_Return);
    EXPECT_TRUE(tool.AddTextT->hasFocus());
    QTest::keyClicks(tool.AddTextT, u"<p>"_s);
    Click(tool.AddB);
    EXPECT_EQ(Rows(*tool.TagListL).mid(16), QStringList{u"<Cite id=\"x\">"_s});
    ClickRow(*tool.TagListL, 0);
    Click(tool.RemoveB);
    tool.close();
    EXPECT_EQ(ReadTagFile(FbTagsListFile), DefaultFbTags());

    form->Entry("uInsertTags")->trigger();
    EXPECT_EQ(Rows(*tool.TagListL), DefaultFbTags());
    ClickRow(*tool.TagListL, 0);
    Click(tool.RemoveB);
    Click(tool.DoneB);
    EXPECT_FALSE(tool.isVisible());
    EXPECT_EQ(ReadTagFile(FbTagsListFile), DefaultFbTags().mid(1));
    form->Entry("uInsertTags")->trigger();
    Click(tool.DefaultB);
    EXPECT_EQ(ReadTagFile(FbTagsListFile), DefaultFbTags());
}

TEST_F(ToolWindows, ADoubleClickOrInsertInsertsTheTag)
{
    OpenBook();
    auto& tool = OpenBy<FbTagListF>("uInsertTags");
    Leave();
    SelectText(u"words"_s);
    Return(tool);
    EXPECT_TRUE(tool.InsertB->hasFocus());
    tool.CloseTagsB->setChecked(true);
    ClickRow(*tool.TagListL, 12, true);
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First <strong>words</strong> & more.</p>"_s);
    EXPECT_EQ(SelectedText(), u"<strong>words</strong>"_s);
    form->Entry("uUndo")->trigger();
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First words & more.</p>"_s);

    tool.CloseTagsB->setChecked(false);
    PutCaret(PlaceOf(u"words"_s));
    Click(tool.InsertB);
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First <strong>words & more.</p>"_s);
    tool.InsertB->setFocus();
    QTest::keyClick(tool.InsertB, Qt::Key_Return);
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First <strong><strong>words & more.</p>"_s);
}

TEST_F(ToolWindows, WithoutABookNothingIsInserted)
{
    Open();
    const QString before = page::innerText(Document());
    auto& tags = OpenBy<FbTagListF>("uInsertTags");
    ClickRow(*tags.TagListL, 0, true);
    auto& symbols = OpenBy<SpecialCharactersF>("uInsertSpecialSymbols");
    Click(symbols.findChild<QPushButton*>(u"TM"_s));
    symbols.AsciiCodeT->setText(u"65"_s);
    Click(symbols.InsertAsciiB);
    auto& editor = OpenBy<EditHtmlWbF>("uHtmlFragmentEditor");
    editor.HtmlEditor->document().typeText(u"text"_s);
    Click(editor.ApplyB);
    EXPECT_EQ(page::innerText(Document()), before);
}

// ---------------------------------------------------------------- special symbols

TEST_F(ToolWindows, SymbolsAreInsertedIntoTheBook)
{
    OpenBook();
    auto& tool = OpenBy<SpecialCharactersF>("uInsertSpecialSymbols");
    const auto button
        = [&](const char* name) { return tool.findChild<QPushButton*>(QLatin1StringView(name)); };
    EXPECT_EQ(button("FrenchBrackets")->text(), u"« »"_s);
    EXPECT_EQ(button("UpperCavich")->text(), u"\u201C  \u201D"_s);
    EXPECT_EQ(button("LowerCavich")->text(), u"\u201E \u201E"_s);
    EXPECT_EQ(button("ThreePoints")->text(), u"..."_s);
    EXPECT_TRUE(button("Par")->toolTip().contains(u"section sign"_s));
    EXPECT_TRUE(button("Par")->toolTip().contains(u"167"_s));
    SelectText(u"words"_s);
    Click(button("FrenchBrackets"));
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First «words» & more.</p>"_s);
    Click(button("ThreePoints"));
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First «words»\u2026 & more.</p>"_s);
    tool.findChild<QPushButton*>(u"Nbsp"_s)->setFocus();
    QTest::keyClick(button("Nbsp"), Qt::Key_Return);
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First «words»\u2026\u007F & more.</p>"_s);
    tool.AsciiCodeT->setFocus();
    QTest::keyClicks(tool.AsciiCodeT, u"169 128512"_s);
    QTest::keyClick(tool.AsciiCodeT, Qt::Key_Return);
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First «words»\u2026\u007F©\U0001F600 & more.</p>"_s);
    form->Entry("uUndo")->trigger();
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First «words»\u2026\u007F & more.</p>"_s);
    EXPECT_FALSE(BookUnchanged);
    const QString before = page::innerText(Document());
    tool.AsciiCodeT->setText(u"  "_s);
    Click(tool.InsertAsciiB);
    EXPECT_EQ(page::innerText(Document()), before);
}

// ---------------------------------------------------------------- fragment editor

TEST_F(ToolWindows, EachActivationReadsTheSelectionAgain)
{
    OpenBook();
    SelectText(u"words"_s);
    auto& tool = OpenBy<EditHtmlWbF>("uHtmlFragmentEditor");
    EXPECT_EQ(FragmentText(tool.HtmlEditor->document()), u"words"_s);
    EXPECT_EQ(tool.FragmentFirstNode(), -1);
    tool.HtmlEditor->setFocus();
    ASSERT_TRUE(WaitFor([&] { return tool.HtmlEditor->isEditable(); }));
    QTest::keyClicks(tool.HtmlEditor, u"unapplied"_s);
    Leave();
    SelectText(u"line"_s);
    Return(tool);
    EXPECT_EQ(FragmentText(tool.HtmlEditor->document()), u"line"_s);
    Leave();
    PutCaret({0, 0});
    Return(tool);
    EXPECT_EQ(FragmentText(tool.HtmlEditor->document()), QString());
}

TEST_F(ToolWindows, AReturnFromADialogOrAnotherProgramKeepsTheText)
{
    OpenBook();
    SelectText(u"words"_s);
    auto& tool = OpenBy<EditHtmlWbF>("uHtmlFragmentEditor");
    tool.HtmlEditor->setFocus();
    ASSERT_TRUE(WaitFor([&] { return tool.HtmlEditor->isEditable(); }));
    QTest::keyClicks(tool.HtmlEditor, u"typed "_s);
    {
        QDialog dialog(&tool);
        dialog.show();
        EXPECT_TRUE(HasKeyboard(dialog));
    }
    Return(tool);
    EXPECT_EQ(FragmentText(tool.HtmlEditor->document()), u"typed words"_s);
    // Another program is active, then this window again.
    QEvent deactivated(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(&tool, &deactivated);
    QEvent activated(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&tool, &activated);
    EXPECT_EQ(FragmentText(tool.HtmlEditor->document()), u"typed words"_s);
    // Another tool window is another window of the program.
    OpenBy<SpecialCharactersF>("uInsertSpecialSymbols");
    Return(tool);
    EXPECT_EQ(FragmentText(tool.HtmlEditor->document()), u"words"_s);
}

TEST_F(ToolWindows, AFragmentOfAnotherBookIsNotWrittenToTheOneThatIsLoaded)
{
    OpenBook();
    SelectText(u"words"_s);
    auto& tool = OpenBy<EditHtmlWbF>("uHtmlFragmentEditor");
    ASSERT_EQ(FragmentText(tool.HtmlEditor->document()), u"words"_s);
    // A book that is dropped on the main window does not activate it.
    OpenBook();
    const QByteArray before = Document().savePage();
    EXPECT_EQ(FragmentText(tool.HtmlEditor->document()), QString());
    Click(tool.ApplyB);
    EXPECT_EQ(Document().savePage(), before);
    EXPECT_TRUE(BookUnchanged);
}

TEST_F(ToolWindows, AnEditedLineIsWrittenBackToTheBook)
{
    OpenBook();
    SelectText(u"words"_s);
    auto& tool = OpenBy<EditHtmlWbF>("uHtmlFragmentEditor");
    tool.ValidateSelectionB->setChecked(true);
    Click(tool.RefreshB);
    const QString source = FragmentText(tool.HtmlEditor->document());
    EXPECT_TRUE(source.startsWith(u"<DIV style=\"MARGIN-LEFT: "_s)) << source.toStdString();
    EXPECT_EQ(tool.FragmentFirstNode(), FindLine(u"First"_s) + 1);
    EXPECT_EQ(tool.FragmentLastNode(), tool.FragmentFirstNode());
    EXPECT_TRUE(BookUnchanged);
    Click(tool.ApplyB);
    EXPECT_TRUE(BookUnchanged);

    Click(tool.RefreshB);
    Click(tool.ColorB);
    TextRange range = page::createTextRange(tool.HtmlEditor->document());
    ASSERT_TRUE(range.findText(u"words"_s));
    range.select();
    ASSERT_TRUE(WaitFor([&] { return tool.HtmlEditor->isEditable(); }));
    QTest::keyClicks(tool.HtmlEditor, u"<B>text"_s);
    Click(tool.ApplyB);
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First text & more.</p>"_s);
    EXPECT_FALSE(BookUnchanged);
    EXPECT_EQ(UndoSteps, 2);
    EXPECT_EQ(tool.FragmentFirstNode(), -1);
    form->Entry("uUndo")->trigger();
    EXPECT_EQ(LineWith(u"First"_s), u"<p>First words & more.</p>"_s);
}

TEST_F(ToolWindows, AClickShowsTheCodesOfTheCharacter)
{
    OpenBook();
    SelectText(u"words"_s);
    auto& tool = OpenBy<EditHtmlWbF>("uHtmlFragmentEditor");
    ShowFragment(tool.HtmlEditor->document(), u"яB\r\nC"_s);
    const auto clickAt = [&](Position at) {
        const std::vector<QRect> rects
            = TextRange(tool.HtmlEditor->document(), at, {at.line, at.offset + 1}).getClientRects();
        ASSERT_FALSE(rects.empty());
        const QPoint left(rects.front().left() + 1, rects.front().center().y());
        QTest::mouseClick(tool.HtmlEditor->viewport(), Qt::LeftButton, Qt::NoModifier, left);
    };
    clickAt({0, 0});
    EXPECT_EQ(tool.AsciiNumT->text(), u"255"_s);
    EXPECT_EQ(tool.HexNumT->text(), u"1103"_s);
    clickAt({0, 2});
    EXPECT_EQ(tool.AsciiNumT->text(), u"line end"_s);
    EXPECT_EQ(tool.HexNumT->text(), u"line end"_s);
}

TEST_F(ToolWindows, FontFindAndHelpChangeNothing)
{
    OpenBook();
    SelectText(u"words"_s);
    auto& tool = OpenBy<EditHtmlWbF>("uHtmlFragmentEditor");
    int asked = 0;
    const SeamGuard font(FontDialogSeam(), [&](const FontDialogRequest& request) {
        ++asked;
        EXPECT_EQ(request.title, u"Change viewer font"_s);
        EXPECT_EQ(request.current, FontChoice());
        return std::optional(FontChoice{u"DejaVu Sans"_s, 40, true, false});
    });
    const int before = page::createTextRange(tool.HtmlEditor->document()).boundingWidth();
    EXPECT_GT(before, 0);
    Click(tool.FontB);
    Click(tool.FindB);
    Click(tool.HelpB);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(FragmentText(tool.HtmlEditor->document()), u"words"_s);
    EXPECT_EQ(page::createTextRange(tool.HtmlEditor->document()).boundingWidth(), before);
    EXPECT_TRUE(opened.isEmpty());
    EXPECT_TRUE(boxTexts.isEmpty());
}

TEST_F(ToolWindows, ThePaintedPageShowsTheSourceOfTheSelection)
{
    OpenBook();
    SelectText(u"line"_s);
    auto& tool = OpenBy<EditHtmlWbF>("uHtmlFragmentEditor");
    tool.ValidateSelectionB->setChecked(true);
    tool.PaintSelectionSource();
    EXPECT_TRUE(page::innerText(tool.HtmlEditor->document()).startsWith(u"<DIV style="_s));
    tool.ValidateSelectionB->setChecked(false);
}

// ---------------------------------------------------------------- small forms

TEST_F(ToolWindows, AboutShowsNameVersionAndLicenceAndClosesOnAClick)
{
    Open();
    auto& tool = OpenBy<VMKAboutF>("uAbout");
    QStringList texts;
    for (const QLabel* label : tool.findChildren<QLabel*>())
        texts.append(label->text());
    EXPECT_TRUE(texts.contains(u"Vellumark"_s));
    EXPECT_TRUE(texts.contains(u"(part of Quirewright distribution)"_s));
    EXPECT_TRUE(texts.join(u'\n').contains(u"version "_s));
    EXPECT_TRUE(texts.join(u'\n').contains(u"MIT licence"_s));
    QTest::mouseClick(&tool, Qt::LeftButton);
    EXPECT_FALSE(tool.isVisible());
}

TEST_F(ToolWindows, TheNoteIsPlacedBesideTheMainWindow)
{
    Open();
    ActionInfoF note(form.get());
    note.SpellReport->setText(u"some words"_s);
    note.show();
    EXPECT_TRUE(note.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(QGuiApplication::primaryScreen()->geometry().contains(note.geometry()));
}

} // namespace vmk
