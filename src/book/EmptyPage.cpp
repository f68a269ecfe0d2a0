#include "EmptyPage.h"

#include "FileOperations.h"
#include "Globals.h"
#include "MainWindowSeams.h"
#include "Sounds.h"

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

void ShowEmptyPage(const QString& caption, const QString& status, const QString& sound, bool preview,
                   bool skipStatus)
{
    constexpr int StatusPanels = 5;
    if (!skipStatus) {
        SetPointer(Pointer::Default);
        ShowStatus(status);
        for (int panel = 1; panel <= StatusPanels; ++panel)
            ShowStatusPanel(panel, QString());
    }
    if (!caption.isEmpty() && (preview || !skipStatus))
        CaptionSeam()(caption, preview);
    if (!sound.isEmpty())
        PlayProgramSound(sound, true);

    // Without a workspace there is no page to show. One that cannot be written shows as empty too.
    const QString& page = preview ? SampleEmptyPageFile : EmptyPageFile;
    if (page.isEmpty())
        return;
    (void)WriteFileText(page, "<HTML><BODY></BODY></HTML>");
    NavigateSeam()(page, preview);
}

} // namespace vmk
