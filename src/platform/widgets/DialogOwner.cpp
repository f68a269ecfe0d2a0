#include "DialogOwner.h"

#include <QApplication>
#include <QMainWindow>

#include <algorithm>

namespace vmk {

QWidget* DialogOwner()
{
    QWidget* const active = QApplication::activeWindow();
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto mainWindow = std::ranges::find_if(windows, [](const QWidget* window) {
        return window->isVisible() && qobject_cast<const QMainWindow*>(window);
    });
    if (mainWindow == windows.end())
        return active;
    for (const QWidget* window = active; window; window = window->parentWidget()) {
        if (window == *mainWindow)
            return active;
    }
    return *mainWindow;
}

} // namespace vmk
