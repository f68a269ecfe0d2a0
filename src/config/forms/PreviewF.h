#pragma once

#include <QWidget>

namespace vmk {

class DisplayView;
class SettingsF;

/// Returns the position and size of the preview, without its frame: beside the dialog if there is room there;
/// otherwise below or above the dialog with a smaller height; otherwise in the corner of the screen where it
/// covers no button and the least of the dialog, with a smaller height if necessary.
/// \param wanted   the size of the preview
/// \param frame    the frame that the window manager adds
/// \param dialog   the dialog with its frame
/// \param buttons  the part of the dialog that must remain visible
/// \param screen   the available part of the screen; all in pixels of the desktop
[[nodiscard]] QRect PreviewGeometry(const QSize& wanted, const QMargins& frame, const QRect& dialog,
                                    const QRect& buttons, const QRect& screen);

/// The preview: shows the sample book with the values in the controls of the settings dialog. The page is
/// read-only.
class PreviewF : public QWidget
{
    Q_OBJECT

public:
    explicit PreviewF(SettingsF& owner);
    ~PreviewF() override;

    /// Returns the window; null if it is not loaded.
    [[nodiscard]] static PreviewF* Existing();
    /// Opens a page in the preview's display, if the window is loaded.
    static void ShowPage(const QString& file);
    /// Sets the window's caption, if it is loaded.
    static void SetCaption(const QString& caption);
    /// Closes the window, if it is loaded.
    static void Unload();

    /// Writes the page of the sample and shows it at the current scroll position.
    void ShowSample();

    DisplayView* FbPreview = nullptr;

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void placeBeside(const SettingsF& owner);

    /// The file of the sample's page; rewritten at each preview.
    QString samplePage;
    int keptScrollTop = 0;
};

/// Shows the sample book with the values in the controls of the settings dialog. Does nothing while the
/// dialog fills its controls. \param force  true to show it also if "preview on change" is not checked
void ShowFb2TextPreview(bool force);

} // namespace vmk
