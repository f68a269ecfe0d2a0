#include "WindowTest.h"

#include <QAccessible>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

/// The text of a screen reader for an object, for the messages of failed checks.
std::string Described(QAccessibleInterface& interface)
{
    const QObject* object = interface.object();
    const QString name = object ? object->objectName() : QString();
    const char* type = object ? object->metaObject()->className() : "no object";
    return type + (" " + name.toStdString()) + ", role " + std::to_string(interface.role());
}

/// True for objects with input or information, false for containers and frames.
bool MustHaveName(QAccessible::Role role)
{
    switch (role) {
    case QAccessible::PushButton:
    case QAccessible::ButtonMenu:
    case QAccessible::CheckBox:
    case QAccessible::ComboBox:
    case QAccessible::EditableText:
    case QAccessible::MenuItem:
    case QAccessible::ToolBar:
    case QAccessible::Window:
        return true;
    default:
        return false;
    }
}

class Accessibility : public WindowTest
{
protected:
    /// Calls `look` for an object and all its visible descendants.
    static void Walk(QAccessibleInterface* interface, const std::function<void(QAccessibleInterface&)>& look)
    {
        if (!interface || !interface->isValid() || interface->state().invisible)
            return;
        look(*interface);
        for (int i = 0; i < interface->childCount(); ++i)
            Walk(interface->child(i), look);
    }

    /// The controls that the Tab key reaches from the first one on, in order.
    QStringList TabOrder()
    {
        QStringList names;
        QWidget* const first = form->TB->widgetForAction(form->TB->actions().first());
        first->setFocus(Qt::TabFocusReason);
        do {
            names.append(NameOf(QApplication::focusWidget()));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        } while (QApplication::focusWidget() != first && names.last() != "HTMLread"_L1 && names.size() < 100);
        return names;
    }

    static QString NameOf(const QWidget* widget)
    {
        const auto* button = qobject_cast<const QToolButton*>(widget);
        return button && button->defaultAction() ? button->defaultAction()->objectName()
                                                 : widget->objectName();
    }
};

TEST_F(Accessibility, EveryControlHasAName)
{
    OpenBook();
    int controls = 0;
    Walk(QAccessible::queryAccessibleInterface(form.get()), [&](QAccessibleInterface& interface) {
        if (!MustHaveName(interface.role()))
            return;
        ++controls;
        EXPECT_FALSE(interface.text(QAccessible::Name).isEmpty()) << Described(interface);
    });
    // The window, its display, two fields of the schema, the toolbar and its buttons, the menus.
    EXPECT_GE(controls, 5 + form->TB->actions().size() + form->menuBar()->actions().size());
}

TEST_F(Accessibility, EveryMenuEntryHasAName)
{
    Open();
    QList<QMenu*> menus = {form->MnRightClick};
    for (QAction* title : form->menuBar()->actions())
        menus.append(title->menu());
    for (QMenu* menu : menus) {
        int entries = 0;
        menu->popup(QPoint(0, 0));
        Walk(QAccessible::queryAccessibleInterface(menu), [&](QAccessibleInterface& interface) {
            if (interface.role() != QAccessible::MenuItem)
                return;
            ++entries;
            EXPECT_FALSE(interface.text(QAccessible::Name).isEmpty()) << Described(interface);
        });
        menu->hide();
        EXPECT_GT(entries, 0) << menu->objectName().toStdString();
    }
}

TEST_F(Accessibility, ThePanelsHaveANameAndTheirText)
{
    OpenBook();
    QStringList texts;
    Walk(QAccessible::queryAccessibleInterface(form.get()), [&](QAccessibleInterface& interface) {
        if (interface.role() == QAccessible::StaticText)
            texts.append(interface.text(QAccessible::Name) + u'|'
                         + qobject_cast<QLabel*>(interface.object())->text());
    });
    EXPECT_TRUE(texts.contains(u"message|document complete"_s)) << texts.join(u';').toStdString();
    EXPECT_FALSE(texts.filter(u"file length|file len"_s).isEmpty()) << texts.join(u';').toStdString();
}

TEST_F(Accessibility, TheTabKeyMovesThroughTheToolbarAndTheListToTheBook)
{
    OpenBook();
    form->activateWindow();
    QStringList expected;
    for (QAction* button : form->TB->actions()) {
        if (button->isEnabled() && !button->isSeparator())
            expected.append(button->objectName());
    }
    expected << u"ValidateOptL"_s << u"HTMLread"_s;
    EXPECT_EQ(TabOrder(), expected);
}

TEST_F(Accessibility, TheKeyboardMovesTheFocusOutOfTheBookAndBack)
{
    OpenBook();
    ASSERT_TRUE(View().hasFocus());
    QTest::keyClick(&View(), Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(NameOf(QApplication::focusWidget()), u"ValidateOptL"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(View().hasFocus());
}

TEST_F(Accessibility, ToolbarButtonsAndTheListWorkByKeys)
{
    OpenBook();
    QAction* const saveAs = form->ToolbarAction(u"save as"_s);
    QWidget* const button = form->TB->widgetForAction(saveAs);
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    EXPECT_EQ(requests.size(), 1U);

    form->ValidateOptL->setFocus();
    QTest::keyClick(form->ValidateOptL, Qt::Key_Down);
    EXPECT_EQ(form->ValidateOptL->currentIndex(), 1);
}

} // namespace
} // namespace vmk
