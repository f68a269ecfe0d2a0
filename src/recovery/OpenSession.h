#pragma once

#include "JournalFormat.h"

namespace vmk {

/// Sets the variables of the open book (`BookVariables.h`) to those of a recorded session.
void TakeFacts(const JournalBase& session);

} // namespace vmk
