#include "ImageViewerF.h"

#include "EditorState.h"
#include "FileOperations.h"
#include "MainWindowSeams.h"
#include "PanelBar.h"
#include "PictureView.h"
#include "StartUpVariables.h"

#include <QImageReader>
#include <QScrollArea>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize FormSize(500, 400);
constexpr int BarHeight = 20;
constexpr float SizePanelWidth = 900;
constexpr int EdgePixels = 10;
/// The memory limit of a decoded picture, in megabytes: 64 million pixels. A larger picture is refused before
/// memory is allocated for it.
constexpr int MemoryLimit = 256;

QString SizeText(const QSize& size)
{
    return size.isValid() ? QString::number(size.width()) + u'x' + QString::number(size.height()) : QString();
}

/// Returns why a picture is not shown.
QString ReasonNotShown(const QImageReader& reader, const QSize& size)
{
    constexpr qint64 BytesOfPixel = 4;
    if (BytesOfPixel * size.width() * size.height() > qint64(MemoryLimit) * 1024 * 1024)
        return u"The picture is too large to be shown: "_s + SizeText(size) + u" pixels."_s;
    return u"The picture cannot be shown: "_s + reader.errorString();
}

} // namespace

ImageViewerF::ImageViewerF()
    : ToolForm(u"ImageViewerF"_s, u" Fiction Book Image"_s)
{
    scrolled = new QScrollArea(this);
    scrolled->setObjectName(u"scrolled"_s);
    scrolled->setAlignment(Qt::AlignCenter);
    scrolled->setFrameShape(QFrame::NoFrame);
    ImVi = new PictureView;
    ImVi->setObjectName(u"ImVi"_s);
    ImVi->setAccessibleName(u"picture"_s);
    scrolled->setWidget(ImVi);
    StatusMsg = new PanelBar({u"size"_s, u"tag in the book"_s, u"binary tag"_s}, this);
    StatusMsg->setObjectName(u"StatusMsg"_s);
}

int ImageViewerF::placement() const
{
    constexpr int RightOfReference = 0;
    return RightOfReference;
}

void ImageViewerF::Form_Load()
{
    resize(FormSize);
}

void ImageViewerF::ShowImageInViewer(const QString& imagePath, const QString& binaryTag)
{
    if (!FileExists(imagePath))
        return;
    const HourglassScope hourglass;
    if (!isVisible()) {
        resize(FormSize);
        ShowForm();
    }
    raise();
    setWindowTitle(u" Fiction Book Image"_s);

    QImageReader::setAllocationLimit(MemoryLimit);
    QImageReader reader(imagePath);
    // The extension can differ from the format of the content.
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.size();
    const QImage picture = reader.read();
    ImVi->Show(picture, picture.isNull() ? ReasonNotShown(reader, size) : QString());
    showImageSize(picture.isNull() ? size : picture.size(), binaryTag);
}

void ImageViewerF::showImageSize(const QSize& size, const QString& binaryTag)
{
    StatusMsg->setPanelText(1, SizeText(size));
    StatusMsg->setPanelText(2, TagUnderCaret.text);
    StatusMsg->setPanelText(3, binaryTag);
    ImVi->setAccessibleDescription(ImVi->picture().isNull() ? ImVi->message() : SizeText(size));
}

void ImageViewerF::resizeEvent(QResizeEvent* event)
{
    ToolForm::resizeEvent(event);
    if (isMinimized())
        return;
    scrolled->setGeometry(0, 0, width(), height() - BarHeight);
    StatusMsg->setGeometry(0, height() - BarHeight, width(), BarHeight);
    const float rest = float(width() - EdgePixels) * TwipsPerPixelX - SizePanelWidth;
    StatusMsg->setPanelWidth(1, SizePanelWidth);
    StatusMsg->setPanelWidth(2, rest / 2);
    StatusMsg->setPanelWidth(3, rest / 2);
}

void ImageViewerF::Form_Unload()
{
    ImVi->Show(QImage(), QString());
    FileOperation(DeleteFolderMode, TempImagesFolder);
    SetPointer(Pointer::Default);
}

} // namespace vmk
