#pragma once

#include "SearchState.h"

#include <QElapsedTimer>

namespace vmk {

/// Processes the pending events of the window during a run: often enough that a stop button responds at once,
/// and at an interval that does not slow down the run.
class RunEvents
{
public:
    explicit RunEvents(const SearchEvents& searchEvents)
        : events(searchEvents)
    {
    }

    /// Calls `prepare` and processes events, at the first call and then at most once per interval.
    template <typename Prepare>
    void process(Prepare prepare)
    {
        if (sinceLast.isValid() && sinceLast.elapsed() < Interval)
            return;
        prepare();
        events.processEvents();
        sinceLast.start();
    }

private:
    /// Milliseconds.
    static constexpr qint64 Interval = 40;

    const SearchEvents& events;
    QElapsedTimer sinceLast;
};

} // namespace vmk
