#include "WidgetSeams.h"

#include "Boxes.h"
#include "Desktop.h"
#include "DesktopMeasures.h"
#include "Dialogs.h"
#include "MainWindowSeams.h"
#include "MessageBoxes.h"
#include "SoundPlayer.h"
#include "StandardDialogs.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace vmk {

namespace {

bool OpenTarget(const QString& target)
{
    const QFileInfo file(target);
    return QDesktopServices::openUrl(file.exists() ? QUrl::fromLocalFile(file.absoluteFilePath())
                                                   : QUrl(target));
}

/// At most one hourglass, even after several calls: one call restores the default.
void ShowPointer(Pointer pointer)
{
    const bool shown = QGuiApplication::overrideCursor() != nullptr;
    if (pointer == Pointer::Hourglass && !shown)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else if (pointer == Pointer::Default && shown)
        QGuiApplication::restoreOverrideCursor();
}

} // namespace

void FillWidgetSeams()
{
    BoxSeam().Fill(ShowMessageBox);
    FileDialogSeam().Fill(ShowFileDialog);
    FontDialogSeam().Fill(ShowFontDialog);
    ColorDialogSeam().Fill(ShowColorDialog);
    SoundSeam().Fill(PlayToEnd);
    BeepSeam().Fill([] { QApplication::beep(); });
    OpenSeam().Fill(OpenTarget);
    ClipboardTextSeam().Fill([] { return QGuiApplication::clipboard()->text(); });
    SetClipboardTextSeam().Fill([](const QString& text) { QGuiApplication::clipboard()->setText(text); });
    PointerSeam().Fill(ShowPointer);
    ScreenMeasuresSeam().Fill(ReadDesktopMeasures);
}

} // namespace vmk
