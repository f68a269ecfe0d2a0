#pragma once

#include "SearchState.h"

#include <QElapsedTimer>

namespace vmk {

/// Lets the window have its turn during a run: often enough for a stop button to answer at once, and not so
/// often that it costs anything.
class EventTurns
{
public:
    explicit EventTurns(const SearchEvents& searchEvents)
        : events(searchEvents)
    {
    }

    /// Gives the window its turn if that is due, as it is the first time; `prepare` is called before.
    template <typename Prepare>
    void take(Prepare prepare)
    {
        if (sinceTurn.isValid() && sinceTurn.elapsed() < Interval)
            return;
        prepare();
        events.processEvents();
        sinceTurn.start();
    }

private:
    /// Milliseconds.
    static constexpr qint64 Interval = 40;

    const SearchEvents& events;
    QElapsedTimer sinceTurn;
};

} // namespace vmk
