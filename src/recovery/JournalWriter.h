#pragma once

#include "JournalFormat.h"
#include "LineStore.h"
#include "PrivateFiles.h"

#include <QString>

#include <cstdint>
#include <string>

namespace vmk {

/// Writes the journal of one session. Keeps the present state of the book, so that it can write a new base at
/// any time: when the journal becomes long, and after a failure.
///
/// A journal is never longer than three times the book (or 96 KB, if that is more), including a new base that
/// is being written beside the old journal.
class JournalWriter
{
public:
    /// \param recoveryFolder  created when the first journal begins
    explicit JournalWriter(QString recoveryFolder);

    /// Begins a journal. A journal that is open is set aside.
    /// \return false on failure; a later `write` tries again
    bool begin(JournalBase base);
    /// Continues the open journal with a new state, also after `giveUp`; begins one if none is open.
    /// \return as `begin`
    bool restart(JournalBase base);
    /// Adds edits to the journal. Does nothing if none is open.
    /// \return false on failure; the edits are not lost: a later `write` writes a new base
    bool write(const JournalBatch& batch);
    /// Writes a new base if the last call has failed.
    bool retry() { return !isBegun || isUsable || (!isGivenUp && writeBase()); }
    /// Waits until everything is on the disk.
    bool flush();
    /// Closes the journal and removes its file.
    void remove();
    /// Closes the journal; its file stays, as after a crash.
    void setAside();
    /// Writes nothing more to the journal, which stays as it is on the disk until it is removed or set aside:
    /// the state of the book is no longer known. A journal without a file is open afterwards too, and never
    /// good.
    /// \param reason  for `reason`
    void giveUp(const QString& reason);

    [[nodiscard]] bool isOpen() const { return isBegun; }
    [[nodiscard]] bool isBehind() const { return isGivenUp; }
    /// False after a failure, until a later call has succeeded.
    [[nodiscard]] bool isGood() const { return isBegun && isUsable; }
    /// The system's message for the last failure.
    [[nodiscard]] const QString& reason() const { return lastReason; }
    [[nodiscard]] const QString& path() const { return file.path(); }
    /// The length of the journal in bytes.
    [[nodiscard]] std::uint64_t length() const { return fileBytes; }
    /// How often a base was written.
    [[nodiscard]] int baseCount() const { return bases; }

private:
    bool writeBase();
    bool appendBase(LockedFile& fresh, std::uint64_t& written);
    [[nodiscard]] std::string encode(const JournalBatch& batch);
    void keep(const JournalBatch& batch);
    void encodeSplice(ByteWriter& writer, const LineSplice& splice);
    [[nodiscard]] std::uint64_t longest() const;
    bool fail(const QString& reason);

    QString folder;
    LockedFile file;
    QString lastReason;
    bool isBegun = false;
    bool isUsable = false; ///< The file is complete up to the last batch.
    bool isGivenUp = false;
    bool isFlushed = true;
    JournalBase state; ///< without its lines
    LineStore lines;
    std::uint64_t checksum = 0;
    std::uint64_t fileBytes = 0;
    std::uint64_t baseBytes = 0;
    int bases = 0;
};

} // namespace vmk
