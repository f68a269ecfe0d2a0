#pragma once

#include "ToolForm.h"

class QScrollArea;

namespace vmk {

class PanelBar;
class PictureView;

/// Shows a picture file in its original size, and the size as text. Closing the form removes
/// `TempImagesFolder`.
class ImageViewerF : public ToolForm
{
    Q_OBJECT

public:
    ImageViewerF();

    /// Shows a picture file; does nothing if it is missing. Shows a message if the file cannot be decoded or
    /// the picture is too large for the memory.
    /// \param binaryTag  the start tag of the picture's element
    void ShowImageInViewer(const QString& imagePath, const QString& binaryTag);

    PictureView* ImVi = nullptr;
    QScrollArea* scrolled = nullptr;
    /// The picture's size, the tag under the last right click, and the element's start tag.
    PanelBar* StatusMsg = nullptr;

protected:
    void Form_Load() override;
    void Form_Unload() override;
    [[nodiscard]] int placement() const override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void showImageSize(const QSize& size, const QString& binaryTag);
};

} // namespace vmk
