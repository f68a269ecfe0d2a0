#include "PreviewF.h"

#include "Boxes.h"
#include "DisplayView.h"
#include "EmptyPage.h"
#include "FileOperations.h"
#include "Form1.h"
#include "LineEnds.h"
#include "MainWindowSeams.h"
#include "PanelBar.h"
#include "PreviewPage.h"
#include "SettingsF.h"
#include "StartUpVariables.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QPointer>
#include <QPushButton>
#include <QScreen>

#include <algorithm>
#include <array>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize FormSize(480, 420);

QPointer<PreviewF> ThePreview;

/// Restores the message of the main window: the conversion reports its steps there.
class MessageKept
{
public:
    MessageKept()
        : form(Form1::Instance())
        , message(form ? form->StatusMsg->panelText(1) : QString())
    {
    }
    MessageKept(const MessageKept&) = delete;
    MessageKept& operator=(const MessageKept&) = delete;
    ~MessageKept()
    {
        if (form)
            ShowStatus(message);
    }

private:
    Form1* form;
    QString message;
};

int AreaOf(const QRect& area)
{
    return area.isEmpty() ? 0 : area.width() * area.height();
}

} // namespace

QRect PreviewGeometry(const QSize& wanted, const QMargins& frame, const QRect& dialog, const QRect& buttons,
                      const QRect& screen)
{
    const QSize outer = wanted.grownBy(frame);
    const std::array<QPoint, 4> beside = {
        QPoint(dialog.right() + 1, dialog.top()),
        QPoint(dialog.left() - outer.width(), dialog.top()),
        QPoint(dialog.left(), dialog.bottom() + 1),
        QPoint(dialog.left(), dialog.top() - outer.height()),
    };
    for (const QPoint& corner : beside) {
        if (screen.contains(QRect(corner, outer)))
            return QRect(corner, outer).marginsRemoved(frame);
    }

    // Try a lower preview below or above the dialog.
    constexpr int LowHeight = 240;
    const QRect below(QPoint(dialog.left(), dialog.bottom() + 1),
                      QSize(outer.width(), screen.bottom() - dialog.bottom()));
    const QRect above(QPoint(dialog.left(), screen.top()), QSize(outer.width(), dialog.top() - screen.top()));
    for (QRect area : {below, above}) {
        area.moveLeft(std::clamp(area.left(), screen.left(),
                                 std::max(screen.left(), screen.right() - outer.width() + 1)));
        if (area.height() >= LowHeight && screen.contains(area))
            return area.marginsRemoved(frame);
    }

    // Try the corners of the screen, and lower sizes if no corner leaves the buttons visible.
    constexpr int LeastHeight = 150;
    constexpr int Step = 10;
    QRect best;
    for (int height = outer.height(); height >= LeastHeight && best.isEmpty(); height -= Step) {
        QRect area(QPoint(), QSize(outer.width(), height).boundedTo(screen.size()));
        int covered = AreaOf(screen) + 1;
        for (const Qt::Corner corner :
             {Qt::TopRightCorner, Qt::TopLeftCorner, Qt::BottomRightCorner, Qt::BottomLeftCorner}) {
            const bool isRight = corner == Qt::TopRightCorner || corner == Qt::BottomRightCorner;
            const bool isBottom = corner == Qt::BottomLeftCorner || corner == Qt::BottomRightCorner;
            area.moveLeft(isRight ? screen.right() - area.width() + 1 : screen.left());
            area.moveTop(isBottom ? screen.bottom() - area.height() + 1 : screen.top());
            if (area.intersects(buttons) || AreaOf(area & dialog) >= covered)
                continue;
            covered = AreaOf(area & dialog);
            best = area;
        }
    }
    if (best.isEmpty())
        best = QRect(screen.topLeft(), outer.boundedTo(screen.size()));
    return best.marginsRemoved(frame);
}

PreviewF::PreviewF(SettingsF& owner)
    : QWidget(&owner, Qt::Window)
    , samplePage(SamplePageFile())
{
    setObjectName(u"PreviewF"_s);
    setWindowTitle(u" SampleForPreview.fb2"_s);
    // The field in which the user types keeps the focus.
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_DeleteOnClose);
    FbPreview = new DisplayView(this);
    FbPreview->setObjectName(u"FbPreview"_s);
    FbPreview->setAccessibleName(u"sample book"_s);
    FbPreview->events.oncontextmenu = [](DisplayEvent& event) { event.returnValue = false; };
    FbPreview->events.onbeforenavigate = [this](const QString& target, bool& cancel) {
        cancel = target != samplePage && target != SampleEmptyPageFile;
    };
    FbPreview->events.ondocumentcomplete = [this](const QString&) { FbPreview->scroll(0, keptScrollTop); };
    ThePreview = this;
    placeBeside(owner);
    ShowEmptyPage({.preview = true, .skipStatus = true});
}

PreviewF::~PreviewF()
{
    FbPreview->events = DisplayEvents();
}

PreviewF* PreviewF::Existing()
{
    return ThePreview;
}

void PreviewF::ShowPage(const QString& file)
{
    if (ThePreview)
        ThePreview->FbPreview->Navigate(file);
}

void PreviewF::SetCaption(const QString& caption)
{
    if (ThePreview)
        ThePreview->setWindowTitle(caption);
}

void PreviewF::Unload()
{
    if (ThePreview)
        ThePreview->close();
}

void PreviewF::placeBeside(const SettingsF& owner)
{
    const QRect outer = owner.frameGeometry();
    const QRect inner = owner.geometry();
    const QMargins frame(inner.left() - outer.left(), inner.top() - outer.top(),
                         outer.right() - inner.right(), outer.bottom() - inner.bottom());
    QRect buttons;
    for (const QPushButton* button : {owner.DefaultB, owner.DeleteIniFile, owner.ReloadB, owner.DoneB})
        buttons |= QRect(button->mapToGlobal(QPoint()), button->size());
    setGeometry(PreviewGeometry(FormSize, frame, outer, buttons, owner.screen()->availableGeometry()));
}

void PreviewF::ShowSample()
{
    std::string page;
    {
        const MessageKept kept;
        if (!MakeSamplePage(page))
            return;
    }
    keptScrollTop = FbPreview->scrollTop();
    if (WriteScratchFile(samplePage, page))
        FbPreview->Navigate(samplePage);
    else // The workspace is not writable.
        FbPreview->setPage(QByteArray::fromStdString(page));
}

void PreviewF::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    FbPreview->setGeometry(rect());
}

void PreviewF::closeEvent(QCloseEvent* event)
{
    FileOperation(DeleteFileMode, samplePage);
    if (ThePreview == this)
        ThePreview.clear();
    QWidget::closeEvent(event);
}

void PreviewF::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void ShowFb2TextPreview(bool force)
{
    SettingsF* settings = SettingsF::Existing();
    if (!settings || settings->SettingsLoading)
        return;
    if (!settings->PreviewOnChangeB->isChecked() && !force)
        return;
    PreviewF* preview = PreviewF::Existing() ? PreviewF::Existing() : new PreviewF(*settings);
    preview->show();
    FileOperation(DeleteFileMode, SamplePageFile());
    if (!FileExists(SampleBookFile())) {
        StopBox(u"Preview file not found"_s + QLatin1StringView(CrLf) + SampleBookFile());
        PreviewF::Unload();
        return;
    }
    preview->ShowSample();
}

} // namespace vmk
