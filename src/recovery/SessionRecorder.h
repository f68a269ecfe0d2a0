#pragma once

#include "DisplayDocument.h"
#include "JournalThread.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vmk {

/// Records the edits of a document in a journal, from the first change of its text on. Changes are passed to
/// the journal's thread from the event loop, so that the journal holds only states between two events; during
/// a command that takes long, after half a second at the latest.
///
/// If memory runs out, the edit is not affected: the journal is behind, and continues with the whole state as
/// soon as possible.
///
/// Uses the variables of the open book (`BookVariables.h`).
class SessionRecorder final : private DisplayListener
{
public:
    /// \param reportProblem  called from the event loop; see `JournalThread`
    SessionRecorder(DisplayDocument& recorded, const QString& recoveryFolder,
                    std::function<void(const QString& problem)> reportProblem);
    /// Unsaved text that is not kept elsewhere stays in its journal.
    ~SessionRecorder();
    SessionRecorder(const SessionRecorder&) = delete;
    SessionRecorder& operator=(const SessionRecorder&) = delete;

    /// Whether the text, or the binary part, was changed since the book was loaded or saved.
    [[nodiscard]] bool hasUnsavedText();
    /// `BinaryPart` has changed.
    void noteBinaryPartChange();
    /// The book was saved as it is, to the file at the path.
    void noteSaved(const QString& path);
    /// The unsaved text was kept as a book: its journal is removed with the end of the session.
    void noteKept() { kept = true; }
    [[nodiscard]] bool isKept() const { return kept; }
    /// The page shown was never saved: begins a journal of it.
    /// \param whenSafe  called from the event loop once the journal is on the disk
    void beginUnsaved(std::function<void()> whenSafe);
    /// Returns when all edits are on the disk, or could not be written.
    void waitUntilWritten();

private:
    void linesChanged(int first, const std::vector<LinePtr>& removed,
                      const std::vector<LinePtr>& inserted) override;
    void linesLoaded(int first, const std::vector<LinePtr>& loaded) override;
    void selectionChanged() override;
    void documentReset() override;

    void begin(std::function<void()> whenSafe);
    void endSession();
    void passLines();
    void restart();
    void fallBehind();
    [[nodiscard]] JournalBase stateOfBook();
    void gather();
    void publish();
    void publishGathered();
    void publishIfReady();
    [[nodiscard]] bool copyBinaryPart();
    void takeNewTags(std::vector<JournalTag>& tags);
    [[nodiscard]] bool changesText() const;
    [[nodiscard]] bool changesTextTogether() const;

    DisplayDocument& document;
    QObject context; ///< Calls of the thread and of the event loop end with it.
    std::function<void(const QString&)> report;
    JournalThread journal;

    bool recording = false;
    bool unsaved = false;
    bool kept = false;

    JournalBatch gathered;
    /// The lines that each of the gathered splices has removed; none if the text is unsaved anyway.
    std::vector<std::vector<LinePtr>> replaced;
    bool isReplaced = false; ///< The document has another page than the gathered splices.
    std::shared_ptr<std::string> binaryCopy; ///< the first part of `BinaryPart`, for the next journal
    bool isGathering = false;
    int64_t gatheringSince = 0;
    int knownTags = 0;
    bool isBehind = false; ///< The thread does not know all lines and edits: memory has run out.
    QTimer catchUp; ///< after that
};

} // namespace vmk
