#pragma once

#include "ToolForm.h"

class QScrollArea;

namespace vmk {

class PanelBar;
class PictureView;

/// Shows one picture file at its own size and tells the size. Closing it removes `TempImagesFolder`.
class ImageViewerF : public ToolForm
{
    Q_OBJECT

public:
    ImageViewerF();

    /// Shows a picture file; does nothing if there is none. A file that cannot be shown, or whose picture is
    /// too large for the memory, shows as a line of text.
    /// @param binaryTag the start tag of the picture's element
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
