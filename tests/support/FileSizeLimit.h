#pragma once

#include <csignal>

#include <sys/resource.h>

namespace vmk {

/// Makes every write beyond a file size fail for its scope, as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : oldAction(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &old);
        const rlimit limit{bytes, old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &old);
        static_cast<void>(std::signal(SIGXFSZ, oldAction));
    }

private:
    rlimit old = {};
    void (*oldAction)(int);
};

} // namespace vmk
