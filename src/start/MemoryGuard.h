#pragma once

#include <functional>

namespace vmk {

/// Runs one delivery of an event. If memory runs out in it, the steps of editing that it made are undone, the
/// page is laid out again, and a box reports it; the open book stays. If this fails too, the unsaved text is
/// kept as at closing, as far as possible, and the process ends; the journal of the session contains the
/// text. On other threads than that of the application, it only delivers the event.
/// \param deliver  delivers the event; may be nested
/// \return its result; true after a failure: the event is handled
bool GuardMemory(const std::function<bool()>& deliver);

} // namespace vmk
