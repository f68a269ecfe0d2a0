#include "Cancelling.h"

#include "Chance.h"
#include "MainWindowSeams.h"

#include <limits>
#include <utility>

namespace vmk {

namespace {

/// Shorter work is not interrupted, and an Escape that is pressed after it has its usual meaning.
constexpr std::int64_t Moment = 100;
/// The time between two looks for the key, in milliseconds.
constexpr std::int64_t Interval = 20;

CancellableWork* underWay = nullptr;

} // namespace

Seam<std::unique_ptr<EscapeWatch>()>& EscapeWatchSeam()
{
    static Seam<std::unique_ptr<EscapeWatch>()> seam([] { return std::unique_ptr<EscapeWatch>(); });
    return seam;
}

CancellableWork::CancellableWork(QString working, QString cancelled)
    : workingText(std::move(working))
    , cancelledText(std::move(cancelled))
    , nextLook(TickMilliseconds() + Moment)
{
    if (!underWay)
        underWay = this;
}

CancellableWork::~CancellableWork()
{
    if (underWay == this)
        underWay = nullptr;
    if (watch)
        ShowStatus(cancelledByUser ? cancelledText : QString());
}

bool CancellableWork::isCancelled()
{
    if (!underWay)
        return false;
    if (!underWay->cancelledByUser && !underWay->isLooking && TickMilliseconds() >= underWay->nextLook)
        underWay->lookForKey();
    return underWay->cancelledByUser;
}

bool CancellableWork::wasCancelled()
{
    return underWay && underWay->cancelledByUser;
}

void CancellableWork::cancel()
{
    if (underWay)
        underWay->cancelledByUser = true;
}

void CancellableWork::lookForKey()
{
    if (!watch) {
        watch = EscapeWatchSeam()();
        if (!watch) {
            nextLook = std::numeric_limits<std::int64_t>::max();
            return;
        }
        ShowStatus(workingText);
    }
    isLooking = true;
    const bool isPressed = watch->takeEscape();
    isLooking = false;
    cancelledByUser = cancelledByUser || isPressed;
    nextLook = TickMilliseconds() + Interval;
}

} // namespace vmk
