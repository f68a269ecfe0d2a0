#pragma once

#include <unistd.h>

#include <cstdlib>

namespace vmk {

/// Whether a test that needs that many bytes may run: the memory is free, and the environment variable
/// VMK_LARGE_TESTS is set, because such a test takes minutes with sanitizers.
inline bool MayUseMemory(double bytes)
{
    const double available = double(sysconf(_SC_AVPHYS_PAGES)) * double(sysconf(_SC_PAGESIZE));
    return std::getenv("VMK_LARGE_TESTS") != nullptr && available > bytes;
}

} // namespace vmk
