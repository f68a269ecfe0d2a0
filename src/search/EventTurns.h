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

    /// True when the window's turn has come; the first time it always has.
    [[nodiscard]] bool isDue() const { return !sinceTurn.isValid() || sinceTurn.elapsed() >= Interval; }
    /// Gives the window its turn, if that is due.
    void take()
    {
        if (!isDue())
            return;
        events.processEvents();
        sinceTurn.start();
    }

private:
    /// Milliseconds.
    static constexpr qint64 Interval = 20;

    const SearchEvents& events;
    QElapsedTimer sinceTurn;
};

} // namespace vmk
