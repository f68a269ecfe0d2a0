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
#include "WindowFunctions.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QPointer>
#include <QScreen>

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

} // namespace

PreviewF::PreviewF(QWidget& owner)
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
    resize(FormSize);
    place();
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

void PreviewF::place()
{
    // Right of the dialog, left of it, below or above it; if there is no room, in the corner of the screen.
    constexpr int ScreenCorner = 8;
    constexpr float BorderTwips = 8 * 15;
    const QRect dialog = parentWidget()->frameGeometry();
    const QSizeF screen = parentWidget()->screen()->size();
    const std::array<QPointF, 4> corners = {
        QPointF(dialog.right() + 1, dialog.top()),
        QPointF(dialog.left() - width(), dialog.top()),
        QPointF(dialog.left(), dialog.bottom() + 1),
        QPointF(dialog.left(), dialog.top() - height()),
    };
    for (const QPointF& corner : corners) {
        if (QRectF({0, 0}, screen).contains(QRectF(corner, QSizeF(size())))) {
            move(corner.toPoint());
            return;
        }
    }
    PlaceFormBeside(*this, *parentWidget(), ScreenCorner, -BorderTwips, -BorderTwips);
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
