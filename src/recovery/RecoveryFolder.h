#pragma once

#include "JournalReader.h"
#include "PrivateFiles.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>
#include <string_view>

/// The folder `VMK Office/Recovery`: journals of sessions, journals that the user has declined, and unsaved
/// texts as complete books.
namespace vmk {

/// Unsaved texts beyond this number are removed, oldest first.
inline constexpr int MostUnsavedTexts = 20;
/// Declined and damaged journals are removed after this time.
inline constexpr int DaysOfDeclined = 30;

/// A session that ended without saving its text. It belongs to this process as long as the object exists.
struct InterruptedSession
{
    LockedFile journal;
    JournalBase state;
    QDateTime time; ///< of the last edit
    bool isComplete = true; ///< The whole journal could be read.
};

/// Returns the newest interrupted session of the folder. Journals of living processes are left alone.
/// Journals without unsaved text are removed. A journal whose base is damaged is set aside for
/// `DaysOfDeclined` days. \param damaged  receives the paths of journals that were set aside
[[nodiscard]] std::optional<InterruptedSession> NewestInterruptedSession(const QString& folder,
                                                                         QStringList& damaged);

/// Sets the journal of a session aside, so that it is not offered again.
/// \return its new path; the old one if it cannot be renamed
QString DeclineSession(InterruptedSession& session);

/// Removes what is older than this page promises.
void CleanRecoveryFolder(const QString& folder);

/// Keeps the unsaved text of a book as a complete book "NAME (unsaved DATE).fb2" in the folder, and removes
/// the oldest such texts. \param book    the path of the book \param reason  receives the system's message on
/// failure \return the path of the kept text; empty on failure
[[nodiscard]] QString KeepUnsavedBook(const QString& folder, const QString& book, std::string_view bytes,
                                      QString& reason);

/// Returns the newest unsaved text of a book that this function has not returned before; empty if there is
/// none.
[[nodiscard]] QString TakeNewsOfUnsavedText(const QString& folder, const QString& book);

} // namespace vmk
