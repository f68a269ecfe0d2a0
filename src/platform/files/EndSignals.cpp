#include "EndSignals.h"

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace vmk {

namespace {

int WriteEnd = -1;

void NoteSignal(int /*number*/)
{
    const int error = errno;
    constexpr char Byte = 1;
    // A full pipe contains enough bytes already.
    [[maybe_unused]] const ssize_t written = ::write(WriteEnd, &Byte, 1);
    errno = error;
}

} // namespace

int WatchEndSignals()
{
    std::array<int, 2> ends = {-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    WriteEnd = ends[1];
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction old = {};
        if (::sigaction(number, nullptr, &old) == 0 && old.sa_handler == SIG_IGN)
            continue;
        struct sigaction action = {};
        action.sa_handler = NoteSignal;
        action.sa_flags = SA_RESTART;
        static_cast<void>(::sigaction(number, &action, nullptr));
    }
    return ends[0];
}

} // namespace vmk
