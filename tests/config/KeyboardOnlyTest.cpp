#include "WindowTest.h"

#include "Commands.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QPointer>
#include <QScrollBar>
#include <QTabBar>
#include <QToolBar>

#include <set>
#include <string>

/// Every control of every window can be reached without a mouse.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

std::string NameOf(const QWidget* widget)
{
    return widget == nullptr ? "no widget"
                             : widget->metaObject()->className() + (" " + widget->objectName().toStdString());
}

/// Whether the widget takes input itself. Parts of another control, such as the field of a drop-down, do not
/// count.
bool IsControl(const QWidget* widget)
{
    if (!widget->isVisible() || !widget->isEnabled() || qobject_cast<const QScrollBar*>(widget) != nullptr)
        return false;
    for (const QWidget* parent = widget->parentWidget(); parent != nullptr && !parent->isWindow();
         parent = parent->parentWidget()) {
        if (qobject_cast<const QComboBox*>(parent) != nullptr
            || qobject_cast<const QAbstractSpinBox*>(parent) != nullptr
            || qobject_cast<const QAbstractItemView*>(parent) != nullptr
            || qobject_cast<const QTabBar*>(parent) != nullptr
            || qobject_cast<const QLineEdit*>(parent) != nullptr
            || qobject_cast<const QToolBar*>(parent) != nullptr)
            return false;
    }
    return qobject_cast<const QAbstractButton*>(widget) != nullptr
        || qobject_cast<const QLineEdit*>(widget) != nullptr
        || qobject_cast<const QComboBox*>(widget) != nullptr
        || qobject_cast<const QAbstractItemView*>(widget) != nullptr
        || qobject_cast<const QAbstractSpinBox*>(widget) != nullptr
        || qobject_cast<const QAbstractSlider*>(widget) != nullptr
        || qobject_cast<const DisplayView*>(widget) != nullptr;
}

class KeyboardOnly : public WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        const std::string book(SmallBook);
        const std::string picture
            = "<binary id=\"dot.png\" "
              "content-type=\"image/png\">iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk"
              "+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==</binary></FictionBook>";
        OpenBook(book.substr(0, book.find("</FictionBook>")) + picture);
    }

    /// The window that a command opens.
    QWidget* windowOf(Command command)
    {
        std::set<QWidget*> before;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible())
                before.insert(window);
        }
        form->RunCommand(command);
        QTest::qWait(50);
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && !before.contains(window))
                return window;
        }
        return nullptr;
    }

    /// The controls that keys move the focus to. In a control that uses Tab itself, Ctrl+Tab leaves it.
    static std::set<const QWidget*> reached(QWidget* window)
    {
        constexpr int MostSteps = 400;
        std::set<const QWidget*> result;
        window->activateWindow();
        QApplication::setActiveWindow(window);
        if (window->focusWidget() == nullptr)
            window->setFocus(Qt::TabFocusReason);
        const QWidget* previous = nullptr;
        for (int step = 0; step < MostSteps; ++step) {
            QWidget* focused = QApplication::focusWidget();
            if (focused == nullptr || focused->window() != window)
                break;
            for (const QWidget* widget = focused; widget != nullptr; widget = widget->parentWidget())
                result.insert(widget);
            const bool stuck = focused == previous;
            previous = focused;
            QTest::keyClick(focused, Qt::Key_Tab, stuck ? Qt::ControlModifier : Qt::NoModifier);
        }
        return result;
    }
};

class KeyboardOnlyIn : public KeyboardOnly, public testing::WithParamInterface<Command>
{
};

TEST_P(KeyboardOnlyIn, EveryControlIsReached)
{
    // Some windows are deleted when they close.
    const QPointer<QWidget> window = windowOf(GetParam());
    ASSERT_TRUE(window);
    const std::set<const QWidget*> visited = reached(window);
    int controls = 0;
    for (const QWidget* widget : window->findChildren<QWidget*>()) {
        if (widget->window() != window || !IsControl(widget))
            continue;
        ++controls;
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const auto* group = button == nullptr ? nullptr : button->group();
        const bool byArrows = button != nullptr && (group != nullptr || button->autoExclusive());
        const bool byShortcut = button != nullptr && !button->shortcut().isEmpty();
        // Down in the field opens the list of its drop-down button.
        const bool byDown = widget->objectName().startsWith("Drop"_L1);
        EXPECT_TRUE(visited.contains(widget) || byArrows || byShortcut || byDown)
            << window->windowTitle().toStdString() << ": no key moves to " << NameOf(widget);
    }
    EXPECT_TRUE(controls > 0 || GetParam() == Command::About);
    QTest::keyClick(window, Qt::Key_Escape);
    QTest::qWait(50);
    EXPECT_TRUE(!window || !window->isVisible()) << "Escape closes the window";
}

INSTANTIATE_TEST_SUITE_P(Windows, KeyboardOnlyIn,
                         testing::Values(Command::FindReplace, Command::BookCleaner,
                                         Command::HtmlFragmentEditor, Command::SpellCheck,
                                         Command::InsertTags, Command::InsertSpecialSymbols,
                                         Command::InLineTags, Command::Settings, Command::Toolbar,
                                         Command::ShowSchema, Command::ShowBinaryList, Command::About));

} // namespace
} // namespace vmk
