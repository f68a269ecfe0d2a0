#include "Form1.h"

#include "EmptyPage.h"
#include "Globals.h"
#include "MainWindowSeams.h"
#include "ProcessEnd.h"
#include "Settings.h"
#include "WelcomePage.h"

#include <QCloseEvent>
#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace vmk {

Form1::Form1()
{
    setObjectName(u"Form1"_s);
    setWindowTitle(u"Vellumark"_s);
    StatusSeam().Fill([this](const QString& text) {
        statusBar()->showMessage(text);
        statusBar()->repaint();
    });
    CaptionSeam().Fill([this](const QString& caption, bool preview) {
        if (!preview)
            setWindowTitle(caption);
    });
}

Form1::~Form1()
{
    StatusSeam().Fill([](const QString&) {});
    CaptionSeam().Fill([](const QString&, bool) {});
}

void Form1::Load()
{
    const auto pixels = [](float twips, float perPixel) { return qRound(twips / perPixel); };
    setGeometry(pixels(MainFormLeft, TwipsPerPixelX), pixels(MainFormTop, TwipsPerPixelY),
                pixels(MainFormWidth, TwipsPerPixelX), pixels(MainFormHeight, TwipsPerPixelY));
    show();
    UndoSteps = 0;
    if (!ValidateAfterLoad) {
        if (FirstStart)
            ShowWelcomePage();
        else
            ShowEmptyPage(QString(), u"ready"_s, QString(), false, false);
    }
    FirstStart = false;
}

void Form1::closeEvent(QCloseEvent* event)
{
    (void)WriteSettings({.left = static_cast<float>(x()) * TwipsPerPixelX,
                         .top = static_cast<float>(y()) * TwipsPerPixelY,
                         .width = static_cast<float>(width()) * TwipsPerPixelX,
                         .height = static_cast<float>(height()) * TwipsPerPixelY});
    event->accept();
    EndProcess();
}

} // namespace vmk
