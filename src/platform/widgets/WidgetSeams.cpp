#include "WidgetSeams.h"

#include "Boxes.h"
#include "Cancelling.h"
#include "Desktop.h"
#include "DesktopMeasures.h"
#include "Dialogs.h"
#include "EscapeKey.h"
#include "MainWindowSeams.h"
#include "MessageBoxes.h"
#include "SelectionTransfer.h"
#include "SoundPlayer.h"
#include "StandardDialogs.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

#include <optional>

namespace vmk {

namespace {

/// The output of a program; nothing if it is not installed or fails.
std::optional<QByteArray> OutputOf(const QString& name, const QStringList& arguments)
{
    const QString program = QStandardPaths::findExecutable(name);
    constexpr int MostMilliseconds = 3000;
    QProcess process;
    if (!program.isEmpty())
        process.start(program, arguments, QIODevice::ReadOnly);
    if (program.isEmpty() || !process.waitForFinished(MostMilliseconds)
        || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return std::nullopt;
    return process.readAllStandardOutput().trimmed();
}

/// Whether the desktop says that it has no program for a file. The program that opens files only passes them
/// on, and reports no failure.
bool LacksProgramFor(const QString& path)
{
    const QString query = QStringLiteral("query");
    const QString tool = QStringLiteral("xdg-mime");
    const std::optional<QByteArray> type = OutputOf(tool, {query, QStringLiteral("filetype"), path});
    if (!type || type->isEmpty())
        return false;
    const std::optional<QByteArray> program
        = OutputOf(tool, {query, QStringLiteral("default"), QString::fromUtf8(*type)});
    return program && program->isEmpty();
}

bool OpenTarget(const QString& target)
{
    const QUrl url = UrlOfTarget(target);
    if (url.isLocalFile() && LacksProgramFor(url.toLocalFile()))
        return false;
    return QDesktopServices::openUrl(url);
}

/// The text of the clipboard, or the text selected last. Without a window system, and of this program itself,
/// the toolkit knows it.
QString TextOfDesktop(QClipboard::Mode mode)
{
    using namespace Qt::StringLiterals;
    const QClipboard& clipboard = *QGuiApplication::clipboard();
    const bool isPrimary = mode == QClipboard::Selection;
    const bool isOwn = isPrimary ? clipboard.ownsSelection() : clipboard.ownsClipboard();
    if (isOwn || QGuiApplication::platformName() != "xcb"_L1)
        return clipboard.text(mode);
    TransferredText transferred;
    {
        const CancellableWork work(u"...pasting...Esc cancels"_s, u"paste cancelled"_s);
        transferred = TransferText(isPrimary ? SharedText::Primary : SharedText::Clipboard);
    }
    if (transferred.end == TransferEnd::NoAnswer)
        ShowStatus(u"the clipboard does not answer"_s);
    return transferred.end == TransferEnd::Unavailable ? clipboard.text(mode) : transferred.text;
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
    ChoiceBoxSeam().Fill(ShowChoiceBox);
    FileDialogSeam().Fill(ShowFileDialog);
    FontDialogSeam().Fill(ShowFontDialog);
    ColorDialogSeam().Fill(ShowColorDialog);
    SoundSeam().Fill(PlayToEnd);
    BeepSeam().Fill([] { QApplication::beep(); });
    OpenSeam().Fill(OpenTarget);
    ClipboardTextSeam().Fill([] { return TextOfDesktop(QClipboard::Clipboard); });
    SetClipboardTextSeam().Fill([](const QString& text) { QGuiApplication::clipboard()->setText(text); });
    if (QGuiApplication::clipboard()->supportsSelection()) {
        PrimaryTextSeam().Fill([] { return TextOfDesktop(QClipboard::Selection); });
        SetPrimaryTextSeam().Fill(
            [](const QString& text) { QGuiApplication::clipboard()->setText(text, QClipboard::Selection); });
    }
    PointerSeam().Fill(ShowPointer);
    EscapeWatchSeam().Fill(WatchEscapeKey);
    ScreenMeasuresSeam().Fill(ReadDesktopMeasures);
}

} // namespace vmk
