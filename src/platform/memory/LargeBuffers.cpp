#include "LargeBuffers.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace vmk {

std::string StringWithRoom(size_t capacity)
{
    constexpr size_t WorthAsking = 4 * 1024 * 1024;
    std::string text;
    text.reserve(capacity);
    if (capacity < WorthAsking)
        return text;
    // Only whole pages are the string's own. A system that does not follow the advice changes nothing.
    const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto begin = (reinterpret_cast<uintptr_t>(text.data()) + page - 1) / page * page;
    const auto end = (reinterpret_cast<uintptr_t>(text.data()) + capacity) / page * page;
    madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
    return text;
}

} // namespace vmk
