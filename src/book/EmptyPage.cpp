#include "EmptyPage.h"

#include "BookSeams.h"
#include "FileOperations.h"
#include "MainWindowSeams.h"
#include "Sounds.h"
#include "StartUpVariables.h"

namespace vmk {

namespace {

void NotifyMainWindow(const QString& caption, const QString& status)
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

void ShowEmptyPage(const EmptyPageOptions& options)
{
    if (!options.skipStatus) {
        if (!options.preview)
            NotifyMainWindow(options.caption, options.status);
        else if (!options.caption.isEmpty())
            CaptionSeam()(options.caption, true);
        if (!options.sound.isEmpty())
            PlayProgramSound(options.sound, true);
    }

    const QString& page = options.preview ? SampleEmptyPageFile : EmptyPageFile;
    if (page.isEmpty()) // without a workspace there is no page to show
        return;
    FileOperation(DeleteFileMode, page);
    // If nothing can be written, the display shows an empty page.
    static_cast<void>(WriteScratchFile(page, "<HTML><BODY></BODY></HTML>"));
    NavigateSeam()(page, options.preview);
}

} // namespace vmk
