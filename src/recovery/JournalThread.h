#pragma once

#include "JournalFormat.h"

#include <QString>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <variant>
#include <vector>

namespace vmk {

/// Writes the journal of a session on a thread of its own, so that the caller never waits for the disk. What
/// is passed to `add` is on the disk 0.2 s later, plus the time that the disk needs.
///
/// A journal begins with all lines of the page. The thread is therefore told the lines when they are loaded,
/// and every edit of them: a journal can then begin without a pause of the caller, even of a large book.
class JournalThread
{
public:
    /// What becomes of a journal that ends.
    enum class End
    {
        Remove, ///< its text is safe elsewhere
        SetAside ///< it stays, as after a crash
    };

    /// \param recoveryFolder  the folder of the journals; created with the first one
    /// \param reportProblem   called on the thread when writing begins to fail, with the system's message,
    /// and
    ///                        with an empty text when it succeeds again
    JournalThread(QString recoveryFolder, std::function<void(const QString& problem)> reportProblem);
    /// Writes what is outstanding; an open journal is set aside.
    ~JournalThread();
    JournalThread(const JournalThread&) = delete;
    JournalThread& operator=(const JournalThread&) = delete;

    /// The lines of the page that is shown from now on. To be called before a journal of the page begins.
    void setLines(std::vector<LinePtr> lines);
    /// Lines were added after all others, without an edit.
    void appendLines(std::vector<LinePtr> lines);
    /// Begins a journal of the lines passed so far, without delay. There is at most one for each call of
    /// `setLines`.
    /// \param base      the rest of the state; its lines are not used
    /// \param whenSafe  called on the thread once the base is on the disk; may be empty
    void begin(JournalBase base, std::function<void()> whenSafe = {});
    /// Continues the journal with this state, whatever was passed before. Begins it if it has not begun.
    void restart(JournalBase base);
    /// Whether memory has run out on the thread: nothing more is written before a restart.
    [[nodiscard]] bool isBehind() const { return behind; }
    /// Adds edits. Before a journal begins, only the lines are changed.
    void add(JournalBatch batch);
    void end(End end);
    /// Returns when everything passed so far is on the disk, or could not be written.
    void waitUntilWritten();

private:
    class Worker;
    struct AllLines
    {
        std::vector<LinePtr> lines;
    };
    struct MoreLines
    {
        std::vector<LinePtr> lines;
    };
    struct Beginning
    {
        JournalBase base;
        std::function<void()> whenSafe;
    };
    struct Restart
    {
        JournalBase base;
    };
    using Task = std::variant<AllLines, MoreLines, Beginning, Restart, JournalBatch, End>;

    [[nodiscard]] bool start();
    void put(Task task, bool isUrgent);
    void run();

    const QString folder;
    const std::function<void(const QString&)> report;
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Task> tasks;
    bool urgent = false;
    bool stopping = false;
    bool busy = false;
    std::atomic<bool> behind = false;
    std::thread thread; ///< started with the first journal, or after many edits; until then, the tasks wait
    int waitingBatches = 0;
    bool isDropping = false; ///< no thread could be started: the tasks of this page are not kept
};

} // namespace vmk
