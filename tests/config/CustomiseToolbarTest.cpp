#include "frmTBCustomise.h"

#include "ToolbarStore.h"
#include "WindowTest.h"

#include <QListWidget>
#include <QPushButton>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class CustomiseToolbarTest : public WindowTest
{
protected:
    void SetUp() override
    {
        ToolbarStore({}, {}).setValue(ToolbarStore::CustomToolbarKey, u"1,2,3"_s);
        Open();
        form->Entry("uToolbar")->trigger();
        dialog = form->findChild<frmTBCustomise*>();
        ASSERT_TRUE(dialog);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
    }

    static QStringList Lines(const QListWidget& list)
    {
        QStringList lines;
        for (int row = 0; row < list.count(); ++row)
            lines.append(list.item(row)->text());
        return lines;
    }
    QStringList Shown() const
    {
        QStringList keys;
        for (const QAction* action : form->TB->actions())
            keys.append(action->isSeparator() ? u"   Separator"_s : action->objectName());
        return keys;
    }
    void SelectLeft(const QString& text)
    {
        const int row = int(Lines(*dialog->LVLeft).indexOf(text));
        ASSERT_GE(row, 0) << text.toStdString();
        dialog->LVLeft->setCurrentRow(row);
    }
    static void Push(QPushButton* button) { QTest::mouseClick(button, Qt::LeftButton); }
    static QString Stored() { return ToolbarStore({}, {}).value(ToolbarStore::CustomToolbarKey); }

    frmTBCustomise* dialog = nullptr;
};

} // namespace

TEST_F(CustomiseToolbarTest, TheDialogShowsTheButtonsInTheirLists)
{
    EXPECT_EQ(dialog->windowTitle(), u" Customise Toolbar"_s);
    EXPECT_EQ(Lines(*dialog->LVRight), (QStringList{u"open"_s, u"save"_s, u"save as"_s}));
    const QStringList left = Lines(*dialog->LVLeft);
    ASSERT_EQ(left.size(), 17);
    EXPECT_EQ(left.mid(0, 3), (QStringList{u"   Separator"_s, u"undo"_s, u"redo"_s}));
    EXPECT_EQ(left.last(), u"load new schema"_s);
    EXPECT_FALSE(dialog->LVLeft->item(1)->icon().isNull());
    EXPECT_EQ(dialog->LVLeft->accessibleName(), u"Available buttons"_s);
    EXPECT_EQ(dialog->LVRight->accessibleName(), u"Toolbar buttons"_s);
    EXPECT_EQ(dialog->cmdRemove->text(), u"<- Remove"_s);
    EXPECT_EQ(dialog->cmdUp->text(), u"Move Up"_s);
    EXPECT_EQ(dialog->cmdDown->text(), u"Move Down"_s);
    EXPECT_EQ(dialog->cmdReset->text(), u"Reset"_s);
    EXPECT_EQ(dialog->cmdDefault->text(), u"Default"_s);
    EXPECT_EQ(dialog->cmdClose->text(), u"Save"_s);
}

TEST_F(CustomiseToolbarTest, AButtonIsAddedBeforeTheSelectedOneAndShowsAtOnce)
{
    SelectLeft(u"validate"_s);
    dialog->LVRight->setCurrentRow(1);
    Push(dialog->cmdAdd);
    EXPECT_EQ(Shown(), (QStringList{u"open"_s, u"validate"_s, u"save"_s, u"save as"_s}));
    EXPECT_EQ(Lines(*dialog->LVRight), Shown());
    EXPECT_FALSE(Lines(*dialog->LVLeft).contains(u"validate"_s));
}

TEST_F(CustomiseToolbarTest, ButtonsAddedOneAfterTheOtherKeepTheirOrder)
{
    dialog->LVRight->setCurrentRow(1);
    SelectLeft(u"undo"_s);
    Push(dialog->cmdAdd);
    SelectLeft(u"redo"_s);
    Push(dialog->cmdAdd);
    EXPECT_EQ(Shown(), (QStringList{u"open"_s, u"undo"_s, u"redo"_s, u"save"_s, u"save as"_s}));
}

TEST_F(CustomiseToolbarTest, TheSeparatorStaysAvailable)
{
    for (int i = 0; i < 3; ++i) {
        SelectLeft(u"   Separator"_s);
        Push(dialog->cmdAdd);
    }
    EXPECT_EQ(Shown().count(u"   Separator"_s), 3);
    EXPECT_EQ(Lines(*dialog->LVLeft).count(u"   Separator"_s), 1);
}

TEST_F(CustomiseToolbarTest, ARemovedButtonReturnsToItsPositionAndASeparatorIsRemoved)
{
    dialog->LVRight->setCurrentRow(1);
    Push(dialog->cmdRemove);
    EXPECT_EQ(Shown(), (QStringList{u"open"_s, u"save as"_s}));
    EXPECT_EQ(Lines(*dialog->LVLeft).mid(0, 3), (QStringList{u"   Separator"_s, u"save"_s, u"undo"_s}));
    SelectLeft(u"   Separator"_s);
    dialog->LVRight->setCurrentRow(0);
    Push(dialog->cmdAdd);
    const QStringList left = Lines(*dialog->LVLeft);
    dialog->LVRight->setCurrentRow(0);
    Push(dialog->cmdRemove);
    EXPECT_EQ(Lines(*dialog->LVLeft), left);
    EXPECT_EQ(Shown(), (QStringList{u"open"_s, u"save as"_s}));
}

TEST_F(CustomiseToolbarTest, ButtonsMoveUpAndDownAndStopAtTheEnds)
{
    dialog->LVRight->setCurrentRow(2);
    Push(dialog->cmdUp);
    Push(dialog->cmdUp);
    EXPECT_EQ(Shown(), (QStringList{u"save as"_s, u"open"_s, u"save"_s}));
    EXPECT_FALSE(dialog->cmdUp->isEnabled());
    EXPECT_EQ(dialog->LVRight->currentRow(), 0);
    Push(dialog->cmdDown);
    EXPECT_EQ(Shown(), (QStringList{u"open"_s, u"save as"_s, u"save"_s}));
    dialog->LVRight->setCurrentRow(2);
    EXPECT_FALSE(dialog->cmdDown->isEnabled());
}

TEST_F(CustomiseToolbarTest, EveryButtonCanBeTakenOutAndPutBack)
{
    while (dialog->LVRight->count() > 0) {
        dialog->LVRight->setCurrentRow(0);
        Push(dialog->cmdRemove);
    }
    EXPECT_EQ(Shown(), QStringList());
    EXPECT_FALSE(dialog->cmdRemove->isEnabled());
    EXPECT_EQ(dialog->LVLeft->count(), 20);
    SelectLeft(u"settings"_s);
    Push(dialog->cmdAdd);
    EXPECT_EQ(Shown(), QStringList{u"settings"_s});
}

TEST_F(CustomiseToolbarTest, ResetGoesBackToTheStateAtOpening)
{
    dialog->LVRight->setCurrentRow(0);
    Push(dialog->cmdRemove);
    Push(dialog->cmdRemove);
    Push(dialog->cmdReset);
    EXPECT_EQ(Shown(), (QStringList{u"open"_s, u"save"_s, u"save as"_s}));
    EXPECT_EQ(dialog->LVRightDef, (ToolbarOrder{1, 2, 3}));
    EXPECT_EQ(dialog->LVLeftDef.size(), 17U);
}

TEST_F(CustomiseToolbarTest, DefaultGoesBackToTheDesign)
{
    Push(dialog->cmdDefault);
    EXPECT_EQ(Shown().size(), 19);
    EXPECT_EQ(dialog->LVRight->count(), 19);
    EXPECT_EQ(Lines(*dialog->LVLeft), QStringList{u"   Separator"_s});
    const QRect last = form->TB->widgetForAction(form->TB->actions().last())->geometry();
    EXPECT_EQ(form->ValidateOptL->x(), last.x() + last.width() + 2);
}

TEST_F(CustomiseToolbarTest, TheSchemaControlsFollowEachStep)
{
    const int before = form->ValidateOptL->x();
    SelectLeft(u"undo"_s);
    Push(dialog->cmdAdd);
    EXPECT_GT(form->ValidateOptL->x(), before);
    Push(dialog->cmdRemove);
    Push(dialog->cmdRemove);
    EXPECT_LT(form->ValidateOptL->x(), before);
}

TEST_F(CustomiseToolbarTest, LabelsAndLargeIconsShowAtOnce)
{
    EXPECT_EQ(dialog->CboText->currentText(), u"No text"_s);
    EXPECT_EQ(dialog->cboImages->currentText(), u"Small icons"_s);
    QTest::keyClick(dialog->CboText, Qt::Key_Up);
    EXPECT_EQ(dialog->CboText->currentText(), u"Show text labels"_s);
    EXPECT_EQ(form->Toolbar.NoText, 0);
    EXPECT_EQ(form->TB->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
    QTest::keyClick(dialog->cboImages, Qt::Key_Down);
    EXPECT_EQ(form->Toolbar.LargeIcons, 1);
    EXPECT_EQ(form->TB->iconSize(), QSize(24, 24));
    EXPECT_EQ(form->HTMLread->y(), 35);
    EXPECT_EQ(form->TB->height(), 35);
    QTest::keyClick(dialog->cboImages, Qt::Key_Up);
    EXPECT_EQ(form->HTMLread->y(), 27);
}

TEST_F(CustomiseToolbarTest, SaveClosesAndTheStoreIsWrittenOnlyAtTheProgramsEnd)
{
    dialog->LVRight->setCurrentRow(0);
    Push(dialog->cmdRemove);
    Push(dialog->cmdClose);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(Shown(), (QStringList{u"save"_s, u"save as"_s}));
    EXPECT_EQ(Stored(), u"1,2,3"_s);
    form->close();
    EXPECT_EQ(Stored(), u"2,3"_s);
}

TEST_F(CustomiseToolbarTest, ADoubleClickOnALineMovesIt)
{
    const auto doubleClick = [](QListWidget* list, int row) {
        const QPoint point = list->visualItemRect(list->item(row)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, point);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, point);
    };
    doubleClick(dialog->LVRight, 0);
    EXPECT_EQ(Shown(), (QStringList{u"save"_s, u"save as"_s}));
    doubleClick(dialog->LVLeft, 1);
    EXPECT_EQ(Shown(), (QStringList{u"open"_s, u"save"_s, u"save as"_s}));
}

TEST_F(CustomiseToolbarTest, EscapeClosesTheDialog)
{
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(CustomiseToolbarTest, OpeningItTwiceShowsOneDialog)
{
    form->Entry("uToolbar")->trigger();
    EXPECT_EQ(form->findChildren<frmTBCustomise*>().size(), 1);
}

} // namespace vmk
