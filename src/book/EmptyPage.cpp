#include "EmptyPage.h"

#include "FileOperations.h"
#include "MainWindowSeams.h"
#include "Sounds.h"
#include "StartUpVariables.h"

namespace vmk {

Seam<void(const QString&, bool)>& CaptionSeam()
{
    static Seam<void(const QString&, bool)> seam([](const QString&, bool) {});
    return seam;
}

Seam<void(const QString&, bool)>& NavigateSeam()
{
    static Seam<void(const QString&, bool)> seam([](const QString&, bool) {});
    return seam;
}

namespace {

void TellMainWindow(const QString& caption, const QString& status)
{
    constexpr int StatusPanels = 5;
    SetPointer(Pointer::Default);
    ShowStatus(status);
    for (int panel = 1; panel <= StatusPanels; ++panel)
        ShowStatusPanel(panel, QString());
    if (!caption.isEmpty())
        CaptionSeam()(caption, false);
}

} // namespace

void ShowEmptyPage(const QString& caption, const QString& status, const QString& sound, bool preview,
                   bool skipStatus)
{
    if (!skipStatus) {
        if (!preview)
            TellMainWindow(caption, status);
        else if (!caption.isEmpty())
            CaptionSeam()(caption, true);
        if (!sound.isEmpty())
            PlayProgramSound(sound, true);
    }

    const QString& page = preview ? SampleEmptyPageFile : EmptyPageFile;
    if (page.isEmpty()) // without a workspace there is no page to show
        return;
    FileOperation(DeleteFileMode, page);
    // If nothing can be written, the display shows an empty page.
    static_cast<void>(WriteScratchFile(page, "<HTML><BODY></BODY></HTML>"));
    NavigateSeam()(page, preview);
}

} // namespace vmk
