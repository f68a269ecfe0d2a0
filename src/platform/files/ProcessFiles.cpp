#include "ProcessFiles.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace vmk {

void HoldStandardHandles()
{
    for (int handle = STDIN_FILENO; handle <= STDERR_FILENO; ++handle) {
        const bool isClosed = ::fcntl(handle, F_GETFD) == -1;
        if (!isClosed)
            continue;
        // The lowest free number is this one. Opened for the wrong direction, so that using it is an error.
        const int wrongWay = handle == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        static_cast<void>(::open("/dev/null", wrongWay));
    }
}

void SurviveFileSizeLimit()
{
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
}

void SurviveBrokenPipes()
{
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
}

} // namespace vmk
