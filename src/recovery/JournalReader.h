#pragma once

#include "JournalFormat.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace vmk {

class DisplayDocument;
class TagTable;

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

/// Returns the lines of a recorded session for a document with these tags.
[[nodiscard]] std::vector<LinePtr> LinesOfSession(const JournalBase& session, TagTable& tags);

/// Shows the page of a recorded session in a document that is not shown itself, with its caret and selection.
void ShowSession(const JournalBase& session, DisplayDocument& document);

} // namespace vmk
