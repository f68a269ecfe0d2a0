#pragma once

#include "JournalFormat.h"

#include <QString>

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

    /// Begins a journal, without delay.
    /// \param whenSafe  called on the thread once the base is on the disk; may be empty
    void begin(JournalBase base, std::function<void()> whenSafe = {});
    void add(JournalBatch batch);
    void end(End end);
    /// Returns when everything passed so far is on the disk, or could not be written.
    void waitUntilWritten();

private:
    class Worker;
    struct Beginning
    {
        JournalBase base;
        std::function<void()> whenSafe;
    };
    using Task = std::variant<Beginning, JournalBatch, End>;

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
    std::thread thread; ///< started with the first journal
};

} // namespace vmk
