#pragma once

#include "JournalFormat.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace vmk {

class DisplayDocument;

/// The book of a session, as far as its journal could be read.
struct RecordedSession
{
    JournalBase state; ///< `binary` is never null
    std::size_t usedBytes = 0; ///< the length of the valid prefix of the journal
    bool isComplete = true; ///< All bytes of the journal were used.
};

/// Reads a journal up to the first record that is damaged or incomplete. Any bytes are accepted.
/// \return nothing if the base is damaged
[[nodiscard]] std::optional<RecordedSession> ReadJournal(std::string_view bytes);

/// Shows the page of a recorded session in a document, with its caret and selection; the result is one new
/// page without undo steps.
void ShowSession(const JournalBase& session, DisplayDocument& document);

} // namespace vmk
