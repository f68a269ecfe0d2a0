#include "ToolForm.h"

#include "Form1.h"
#include "WindowFunctions.h"

#include <QCloseEvent>
#include <QKeyEvent>

namespace vmk {

ToolForm::ToolForm(const QString& name, const QString& title)
    // The window manager keeps a dialog above its owner.
    : QWidget(Form1::Instance(), Qt::Dialog | Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint)
{
    setObjectName(name);
    setWindowTitle(title);
}

int ToolForm::placement() const
{
    constexpr int CentreOfReference = 14;
    return CentreOfReference;
}

void ToolForm::ShowForm()
{
    if (!isVisible() && parentWidget())
        PlaceFormBeside(*this, *parentWidget(), placement(), 0, 0);
    if (isMinimized())
        showNormal();
    else
        show();
    raise();
    activateWindow();
}

void ToolForm::showEvent(QShowEvent* event)
{
    // When the window manager restores a minimised form, the form is not loaded again.
    if (!event->spontaneous() && !loaded) {
        loaded = true;
        Form_Load();
    }
    QWidget::showEvent(event);
}

void ToolForm::closeEvent(QCloseEvent* event)
{
    event->accept();
    if (loaded) {
        loaded = false;
        Form_Unload();
    }
}

void ToolForm::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace vmk
