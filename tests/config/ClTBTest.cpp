#include "ClTB.h"

#include "ToolbarPictures.h"
#include "ToolbarStore.h"
#include "WindowTest.h"

#include <QToolButton>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int ButtonCount = 19;
/// The design's order as stored.
const QString DesignText = u"1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19"_s;

class ClTBTest : public WindowTest
{
protected:
    static void StoreCustom(const QString& order)
    {
        ToolbarStore({}, {}).setValue(ToolbarStore::CustomToolbarKey, order);
    }
    static QString Stored(const char* key) { return ToolbarStore({}, {}).value(key); }

    /// Keys of the toolbar's buttons, "|" for a separator.
    QStringList Keys() const
    {
        QStringList keys;
        for (const QAction* action : form->TB->actions())
            keys.append(action->isSeparator() ? u"|"_s : action->objectName());
        return keys;
    }
    QStringList DesignKeys() const
    {
        QStringList keys;
        for (const ToolbarButton& row : ToolbarDesign())
            keys.append(QLatin1StringView(row.key));
        return keys;
    }
    /// Ends the program and starts it again.
    void Restart()
    {
        form->close();
        form.reset();
        form = std::make_unique<Form1>();
        Open();
    }
    ClTB& Toolbar() { return form->Toolbar; }
};

} // namespace

TEST_F(ClTBTest, AnEmptyCustomToolbarOnFirstStartShowsTheDesign)
{
    Open();
    EXPECT_EQ(Keys(), DesignKeys());
    EXPECT_EQ(Toolbar().DefButtCount(), ButtonCount);
    EXPECT_EQ(Toolbar().ButtCount(), ButtonCount);
}

TEST_F(ClTBTest, TheStoredDefaultToolbarIsAlwaysTheCurrentDesign)
{
    ToolbarStore({}, {}).setValue(ToolbarStore::DefaultToolbarKey, u"3,2,1"_s);
    StoreCustom(u"2,1"_s);
    Open();
    EXPECT_EQ(Stored(ToolbarStore::DefaultToolbarKey), DesignText);
    EXPECT_EQ(Keys(), (QStringList{u"save"_s, u"open"_s}));
}

TEST_F(ClTBTest, TheStoredOrderIsShown)
{
    StoreCustom(u"18,0,1,2"_s);
    Open();
    EXPECT_EQ(Keys(), (QStringList{u"validate"_s, u"|"_s, u"open"_s, u"save"_s}));
    EXPECT_EQ(Toolbar().ButtCount(), 4);
    EXPECT_EQ(Toolbar().DefButtCount(), ButtonCount);
}

TEST_F(ClTBTest, AStoredIndexAboveTheDesignIsSkipped)
{
    StoreCustom(u"20,2,1000000,1"_s);
    Open();
    EXPECT_EQ(Keys(), (QStringList{u"save"_s, u"open"_s}));
}

TEST_F(ClTBTest, GarbageInTheStoreGivesTheDefaultToolbar)
{
    for (const QString& garbage :
         {u"rubbish"_s, u"1,2,<b>"_s, u"1,2,"_s + u"0,"_s.repeated(100'000), u"99,100"_s, u"\t"_s}) {
        StoreCustom(garbage);
        form.reset();
        form = std::make_unique<Form1>();
        Open();
        EXPECT_EQ(Keys(), DesignKeys()) << garbage.left(40).toStdString();
    }
}

TEST_F(ClTBTest, GarbageInTheLooksGivesTheDefaultLooks)
{
    ToolbarStore({}, {}).setValue(ToolbarStore::NoTextKey, u"yes"_s);
    ToolbarStore({}, {}).setValue(ToolbarStore::LargeIconsKey, u"4e9"_s);
    Open();
    EXPECT_EQ(Toolbar().NoText, 1);
    EXPECT_EQ(Toolbar().LargeIcons, 0);
    EXPECT_EQ(form->TB->toolButtonStyle(), Qt::ToolButtonIconOnly);
    EXPECT_EQ(form->TB->iconSize(), QSize(16, 16));
}

TEST_F(ClTBTest, OrderAndLooksSurviveARestart)
{
    Open();
    Toolbar().NoText = 0;
    Toolbar().LargeIcons = 1;
    Toolbar().ShowOrder({5, SeparatorIndex, 3, SeparatorIndex});
    Restart();
    EXPECT_EQ(Keys(), (QStringList{u"redo"_s, u"|"_s, u"save as"_s, u"|"_s}));
    EXPECT_EQ(form->TB->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
    EXPECT_EQ(form->TB->iconSize(), QSize(24, 24));
    EXPECT_EQ(Stored(ToolbarStore::CustomToolbarKey), u"5,0,3,0"_s);
    EXPECT_EQ(Stored(ToolbarStore::NoTextKey), u"0"_s);
    EXPECT_EQ(Stored(ToolbarStore::LargeIconsKey), u"1"_s);
}

TEST_F(ClTBTest, ACrashLosesTheChangesSinceTheStart)
{
    Open();
    Toolbar().ShowOrder({2, 1});
    // Without the end of the program.
    form.reset();
    form = std::make_unique<Form1>();
    Open();
    EXPECT_EQ(Keys(), DesignKeys());
}

TEST_F(ClTBTest, ReloadingTheFormAppliesTheStoredOrder)
{
    StoreCustom(u"3,2"_s);
    Open();
    Toolbar().ShowOrder({1});
    form->ReloadForm1();
    EXPECT_EQ(Keys(), (QStringList{u"save as"_s, u"save"_s}));
    EXPECT_EQ(Toolbar().DefButtCount(), ButtonCount);
}

TEST_F(ClTBTest, AnEmptyToolbarIsTheDesignAfterARestart)
{
    Open();
    Toolbar().ClearButtons();
    EXPECT_EQ(Toolbar().ButtCount(), 0);
    form->MoveSchemaControls();
    EXPECT_EQ(form->ValidateOptL->x(), 2);
    Restart();
    EXPECT_EQ(Keys(), DesignKeys());
}

TEST_F(ClTBTest, LoadDefsRestoresTheDesignAndKeepsTheStoredCustomOrder)
{
    StoreCustom(u"2,1"_s);
    Open();
    Toolbar().LoadDefs();
    EXPECT_EQ(Keys(), DesignKeys());
    EXPECT_FALSE(Toolbar().UseDefaults);
    EXPECT_EQ(Stored(ToolbarStore::CustomToolbarKey), u"2,1"_s);
}

TEST_F(ClTBTest, AStoreWithUseDefaultsIsWrittenToTheDefaultKeyOnce)
{
    Open();
    Toolbar().ShowOrder({4, 2});
    Toolbar().UseDefaults = true;
    Toolbar().SaveToReg();
    EXPECT_EQ(Stored(ToolbarStore::DefaultToolbarKey), u"4,2"_s);
    EXPECT_EQ(Stored(ToolbarStore::CustomToolbarKey), QString());
    Toolbar().SaveToReg();
    EXPECT_EQ(Stored(ToolbarStore::CustomToolbarKey), u"4,2"_s);
}

TEST_F(ClTBTest, TheStoreGoesByApplicationNameAndSection)
{
    Open();
    Toolbar().ApplicationName = u"other"_s;
    Toolbar().SectionName = u"part"_s;
    Toolbar().ShowOrder({2});
    Toolbar().SaveToReg();
    EXPECT_EQ(ToolbarStore(u"other"_s, u"part"_s).value(ToolbarStore::CustomToolbarKey), u"2"_s);
    EXPECT_EQ(Stored(ToolbarStore::CustomToolbarKey), QString());
}

TEST_F(ClTBTest, TheCaptionIsShownAgainWithTheLabels)
{
    Open();
    Toolbar().NoText = 1;
    Toolbar().ShowOrder({1});
    auto* button = qobject_cast<QToolButton*>(form->TB->widgetForAction(form->TB->actions().first()));
    EXPECT_EQ(button->toolButtonStyle(), Qt::ToolButtonIconOnly);
    const int narrow = button->sizeHint().width();
    Toolbar().NoText = 0;
    Toolbar().ShowOrder({1});
    button = qobject_cast<QToolButton*>(form->TB->widgetForAction(form->TB->actions().first()));
    EXPECT_EQ(button->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
    EXPECT_EQ(button->text(), u"open"_s);
    EXPECT_GT(button->sizeHint().width(), narrow + 10);
}

TEST_F(ClTBTest, AButtonsPropertiesAreRestoredFromTheSnapshot)
{
    Open();
    ToolbarButtonSnapshot* open = Toolbar().Button(1);
    ASSERT_TRUE(open);
    EXPECT_EQ(open->BKey, u"open"_s);
    EXPECT_EQ(open->BCaption, u"open"_s);
    EXPECT_EQ(open->BTooltip, u"open (F3)"_s);
    EXPECT_EQ(open->BStyle, ToolbarButtonStyle::Push);
    EXPECT_EQ(open->BImage, 1);
    EXPECT_TRUE(open->BEnabled && open->BVisible);
    EXPECT_FALSE(open->BValue || open->BMixedState);
    open->BTooltip = u"another tip"_s;
    open->BCaption = u"another caption"_s;
    open->BDescript = u"description"_s;
    open->BTag = 7;
    open->BEnabled = false;
    open->BWidth = 90;
    open->BImage = 2;
    Toolbar().LoadTBFromReg();
    const QAction* action = form->ToolbarAction(u"open"_s);
    EXPECT_EQ(action->toolTip(), u"another tip"_s);
    EXPECT_EQ(action->text(), u"another caption"_s);
    EXPECT_EQ(action->statusTip(), u"description"_s);
    EXPECT_EQ(action->data(), QVariant(7));
    EXPECT_FALSE(action->isEnabled());
    EXPECT_EQ(form->TB->widgetForAction(form->TB->actions().first())->width(), 90);
    const auto picture = [](const QString& key) { return ToolbarPicture(key).pixmap(16).toImage(); };
    EXPECT_EQ(action->icon().pixmap(16).toImage(), picture(u"save"_s));
    EXPECT_NE(action->icon().pixmap(16).toImage(), picture(u"open"_s));
    EXPECT_EQ(Toolbar().Button(0), nullptr);
    EXPECT_EQ(Toolbar().Button(ButtonCount + 1), nullptr);
}

TEST_F(ClTBTest, AHiddenButtonStaysHidden)
{
    Open();
    Toolbar().Button(2)->BVisible = false;
    Toolbar().LoadTBFromReg();
    EXPECT_FALSE(form->ToolbarAction(u"save"_s)->isVisible());
    EXPECT_EQ(Toolbar().ButtCount(), ButtonCount);
}

TEST_F(ClTBTest, IndexFromPositionGoesByTheDesign)
{
    Open();
    Toolbar().ShowOrder({18, SeparatorIndex, 3});
    int index = -5;
    EXPECT_TRUE(Toolbar().IndexFromPosition(1, index));
    EXPECT_EQ(index, 18);
    EXPECT_TRUE(Toolbar().IndexFromPosition(2, index));
    EXPECT_EQ(index, SeparatorIndex);
    EXPECT_TRUE(Toolbar().IndexFromPosition(3, index));
    EXPECT_EQ(index, 3);
    index = -5;
    EXPECT_FALSE(Toolbar().IndexFromPosition(0, index));
    EXPECT_FALSE(Toolbar().IndexFromPosition(4, index));
    EXPECT_EQ(index, -5);
}

TEST_F(ClTBTest, ADropDownMenuIsRestoredWithItsButton)
{
    QToolBar bar;
    QMenu menu;
    QAction* first = menu.addAction(u"first"_s);
    QAction* second = menu.addAction(u"second"_s);
    second->setEnabled(false);
    bar.addAction(u"push"_s);
    QAction* dropDown = bar.addAction(u"menu"_s);
    dropDown->setMenu(&menu);
    ClTB toolbar;
    toolbar.ApplicationName = u"drop"_s;
    toolbar.setTbar(&bar);
    ASSERT_EQ(toolbar.Button(2)->BStyle, ToolbarButtonStyle::DropDown);
    ASSERT_EQ(toolbar.Button(2)->Buttmnu.size(), 2);
    EXPECT_FALSE(toolbar.Button(2)->Buttmnu[1].enabled);
    first->setText(u"changed"_s);
    second->setEnabled(true);
    toolbar.Button(2)->Buttmnu[0].visible = false;
    toolbar.ShowOrder({2, 1});
    EXPECT_EQ(bar.actions().first(), dropDown);
    EXPECT_EQ(first->text(), u"first"_s);
    EXPECT_FALSE(first->isVisible());
    EXPECT_FALSE(second->isEnabled());
}

TEST_F(ClTBTest, ThePicturesFollowModeAndSize)
{
    const auto plain = [](Qt::GlobalColor color) {
        QPixmap pixmap(24, 24);
        pixmap.fill(color);
        return QIcon(pixmap);
    };
    QToolBar bar;
    QAction* action = bar.addAction(u"one"_s);
    ClTB toolbar;
    toolbar.ApplicationName = u"pictures"_s;
    toolbar.TBImages = {{16, 16}, {plain(Qt::red)}};
    toolbar.TBHotImages = {{16, 16}, {plain(Qt::green)}};
    toolbar.TBDisImages = {{16, 16}, {plain(Qt::white)}};
    toolbar.TBImagesL = {{24, 24}, {plain(Qt::black)}};
    toolbar.setTbar(&bar);
    toolbar.LoadTBFromReg();
    const auto color = [action](QIcon::Mode mode) {
        return action->icon().pixmap(QSize(16, 16), 1.0, mode).toImage().pixelColor(8, 8);
    };
    EXPECT_EQ(color(QIcon::Normal), QColor(Qt::red));
    EXPECT_EQ(color(QIcon::Active), QColor(Qt::green));
    const int light = color(QIcon::Disabled).lightness();
    toolbar.TBDisImages = {};
    toolbar.LoadTBFromReg();
    EXPECT_LT(color(QIcon::Disabled).lightness(), light);
    toolbar.LargeIcons = 1;
    toolbar.LoadTBFromReg();
    EXPECT_EQ(bar.iconSize(), QSize(24, 24));
    EXPECT_EQ(color(QIcon::Normal), QColor(Qt::black));
    // A list without pictures leaves the normal one.
    EXPECT_EQ(color(QIcon::Active), QColor(Qt::black));
}

// ---------------------------------------------------------------- in the main window

TEST_F(ClTBTest, ButtonsStillRunTheirCommandsInAnotherOrder)
{
    StoreCustom(u"3,0,1"_s);
    Open();
    QTest::mouseClick(form->TB->widgetForAction(form->TB->actions().at(2)), Qt::LeftButton);
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].title, u"Open new Fiction Book file"_s);
    QTest::mouseClick(form->TB->widgetForAction(form->TB->actions().at(0)), Qt::LeftButton);
    EXPECT_EQ(boxTexts, QStringList{u"empty book - nothing to save"_s});
}

TEST_F(ClTBTest, EveryButtonIsReachedByTheTabKeyAfterARebuild)
{
    StoreCustom(u"5,4"_s);
    Open();
    for (QAction* action : form->TB->actions())
        EXPECT_TRUE(form->TB->widgetForAction(action)->focusPolicy() & Qt::TabFocus);
}

TEST_F(ClTBTest, LargeIconsMoveTheDisplayDown)
{
    Open();
    const int top = form->HTMLread->y();
    EXPECT_EQ(top, 27);
    Toolbar().LargeIcons = 1;
    Restart();
    EXPECT_EQ(form->HTMLread->y(), top + 8);
    EXPECT_GE(form->TB->height(), 24 + 8);
}

TEST_F(ClTBTest, TheSchemaControlsStayInTheWindowWhenTheButtonsNeedMoreRoom)
{
    ToolbarStore({}, {}).setNumber(ToolbarStore::NoTextKey, 0);
    roomy = false;
    Open();
    form->resize(form->minimumSize());
    EXPECT_LT(form->ValidateOptL->geometry().right(), form->width());
    EXPECT_GT(form->SchemaFileL->width(), 20);
    EXPECT_LE(form->SchemaFileL->geometry().right(), form->width());
    EXPECT_LE(form->TB->geometry().right(), form->ValidateOptL->x());
    auto* arrow = form->TB->findChild<QWidget*>(u"qt_toolbar_ext_button"_s);
    ASSERT_TRUE(arrow);
    EXPECT_TRUE(arrow->isVisible());
}

TEST_F(ClTBTest, ADoubleClickOnTheToolbarOpensTheCustomisingDialog)
{
    StoreCustom(u"1,0,2"_s);
    Open();
    QTest::mouseDClick(form->TB->widgetForAction(form->TB->actions().at(1)), Qt::LeftButton);
    EXPECT_TRUE(form->findChild<QWidget*>(u"frmTBCustomise"_s));
}

TEST_F(ClTBTest, ADoubleClickOnAButtonIsTwoClicks)
{
    Open();
    QWidget* button = form->TB->widgetForAction(form->ToolbarAction(u"open"_s));
    QTest::mouseDClick(button, Qt::LeftButton);
    EXPECT_FALSE(form->findChild<QWidget*>(u"frmTBCustomise"_s));
}

} // namespace vmk
