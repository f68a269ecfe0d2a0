#pragma once

#include "RecoveryFolder.h"
#include "SessionRecorder.h"

#include <QString>

#include <optional>

namespace vmk {

class DisplayView;

/// The main window's side of the recovery of unsaved text: records the edits of the display, and offers the
/// text of interrupted sessions.
class BookSafety
{
public:
    explicit BookSafety(DisplayView& recorded);
    ~BookSafety();
    BookSafety(const BookSafety&) = delete;
    BookSafety& operator=(const BookSafety&) = delete;

    /// Asks about each interrupted session, the newest first, until the user wants one back. Sessions that
    /// were not asked about are offered at the next start; declined ones are not offered again. \return true
    /// if the text of one is being shown
    bool offerRecovery();

    /// The page of a book is complete. If it is that of an interrupted session, restores its selection and
    /// records it as unsaved text. \return the status text
    [[nodiscard]] QString completionText();

private:
    [[nodiscard]] bool show(InterruptedSession& session);
    [[nodiscard]] QString finishRecovery();

    DisplayView& view;
    SessionRecorder recorder;
    /// The session whose text is being shown. Its journal stays until the text is in a new one.
    std::optional<InterruptedSession> shown;
    bool isShowing = false;
    QString news; ///< what became of a declined session
};

} // namespace vmk
